#include "TerminalSignals.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int Watched[] = {SIGWINCH, SIGINT, SIGTERM, SIGHUP};
constexpr std::size_t WatchedCount = std::size(Watched);

// A handler may do no more than this: pass its number on.
int pipeEnds[2] = {-1, -1};
std::array<struct sigaction, WatchedCount> before;

void passOn(int number) {
    const auto byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
}

} // namespace

TerminalSignals::TerminalSignals() {
    if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    struct sigaction action {};
    action.sa_handler = passOn;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < WatchedCount; ++i)
        ::sigaction(Watched[i], &action, &before[i]);
    auto* notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &TerminalSignals::onWoken);
}

TerminalSignals::~TerminalSignals() {
    if (pipeEnds[0] < 0)
        return;
    for (std::size_t i = 0; i < WatchedCount; ++i)
        ::sigaction(Watched[i], &before[i], nullptr);
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
    pipeEnds[0] = pipeEnds[1] = -1;
}

void TerminalSignals::onWoken() {
    char number = 0;
    while (::read(pipeEnds[0], &number, 1) == 1) {
        if (number == SIGWINCH)
            Q_EMIT resized();
        else
            Q_EMIT ended();
    }
}
