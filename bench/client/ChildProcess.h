#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

// A program that was started here and ends here: asked first, killed when it does not go. It ends
// with this program, too, however that one ends.
class ChildProcess {
public:
    // Its output goes to the file.
    ChildProcess(const std::vector<std::string>& command, const std::string& outputFile);
    ~ChildProcess() { end(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return m_pid; }
    bool isRunning();
    void end();

private:
    pid_t m_pid = -1;
};

// What the kernel says a process holds, in KiB.
struct ProcessMemory {
    long rss = 0;
    long pss = 0;
    long privateKiB = 0; // not shared with anybody: what would come back if it ended

    static ProcessMemory of(pid_t pid);
};
