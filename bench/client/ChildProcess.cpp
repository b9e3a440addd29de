#include "ChildProcess.h"

#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

ChildProcess::ChildProcess(const std::vector<std::string>& command, const std::string& outputFile) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const int output = ::open(outputFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (output < 0)
        throw std::runtime_error("cannot write " + outputFile);
    const pid_t parent = ::getpid();
    m_pid = ::fork();
    if (m_pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            ::_exit(127);
        ::dup2(output, STDOUT_FILENO);
        ::dup2(output, STDERR_FILENO);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(output);
    if (m_pid < 0)
        throw std::runtime_error("cannot start " + command.front());
}

bool ChildProcess::isRunning() {
    if (m_pid > 0 && ::waitpid(m_pid, nullptr, WNOHANG) == m_pid)
        m_pid = -1;
    return m_pid > 0;
}

void ChildProcess::end() {
    constexpr int Patience = 100;
    constexpr useconds_t Pause = 50'000;
    if (!isRunning())
        return;
    ::kill(m_pid, SIGTERM);
    for (int i = 0; i < Patience && isRunning(); ++i)
        ::usleep(Pause);
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
    m_pid = -1;
}

ProcessMemory ProcessMemory::of(pid_t pid) {
    std::ifstream rollup("/proc/" + std::to_string(pid) + "/smaps_rollup");
    std::string line;
    std::getline(rollup, line); // the range that all of it covers
    ProcessMemory memory;
    std::string name;
    std::string unit;
    for (long value = 0; rollup >> name >> value >> unit;) {
        if (name == "Rss:")
            memory.rss = value;
        else if (name == "Pss:")
            memory.pss = value;
        else if (name == "Private_Clean:" || name == "Private_Dirty:")
            memory.privateKiB += value;
    }
    if (memory.rss == 0)
        throw std::runtime_error("no memory figures of a process; did it end?");
    return memory;
}
