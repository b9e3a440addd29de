#include "SignalWatcher.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>

#include "CMConnect.h"
#include "CMEnding.h"

namespace {

constexpr int Watched[] = {SIGINT, SIGTERM};

// The pipe's end that the handler writes to. Outlives the watcher: a handler may still run.
int writer = -1;

// Runs between any two instructions of any thread: only what POSIX allows there.
extern "C" void onSignal(int number) {
    const int errnoBefore = errno;
    for (const int watched : Watched)
        std::signal(watched, SIG_DFL);
    cmRequestEnd();
    const auto byte = static_cast<unsigned char>(number);
    [[maybe_unused]] const ssize_t written = write(writer, &byte, sizeof byte);
    errno = errnoBefore;
}

} // namespace

SignalWatcher::SignalWatcher(QObject* parent) : QObject(parent) {
    std::signal(SIGPIPE, SIG_IGN);
    int ends[2] = {};
    const int code = pipe2(ends, O_CLOEXEC | O_NONBLOCK);
    CM_ASSERT(code == 0, "pipe2(ends, O_CLOEXEC | O_NONBLOCK)");
    m_reader = ends[0];
    writer = ends[1];
    auto* notifier = new QSocketNotifier(m_reader, QSocketNotifier::Read, this);
    cmConnect(notifier, &QSocketNotifier::activated, this, [this] { readSignal(); });
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int watched : Watched)
        sigaction(watched, &action, nullptr);
}

SignalWatcher::~SignalWatcher() {
    for (const int watched : Watched)
        std::signal(watched, SIG_DFL);
    close(m_reader);
}

void SignalWatcher::readSignal() {
    unsigned char number = 0;
    if (read(m_reader, &number, sizeof number) == ssize_t(sizeof number))
        Q_EMIT endRequested(number);
}
