#include "SignalWatcher.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <QSocketNotifier>

#include "CMConnect.h"

SignalWatcher::SignalWatcher(QObject* parent) : QObject(parent) {
    std::signal(SIGPIPE, SIG_IGN);
    sigemptyset(&m_signals);
    sigaddset(&m_signals, SIGINT);
    sigaddset(&m_signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &m_signals, nullptr);
    m_descriptor = signalfd(-1, &m_signals, SFD_CLOEXEC | SFD_NONBLOCK);
    CM_ASSERT(m_descriptor >= 0, "signalfd(-1, &m_signals, SFD_CLOEXEC | SFD_NONBLOCK)");
    auto* notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    cmConnect(notifier, &QSocketNotifier::activated, this, [this] { readSignal(); });
}

SignalWatcher::~SignalWatcher() {
    close(m_descriptor);
}

void SignalWatcher::readSignal() {
    signalfd_siginfo info{};
    if (read(m_descriptor, &info, sizeof info) != ssize_t(sizeof info))
        return;
    pthread_sigmask(SIG_UNBLOCK, &m_signals, nullptr);
    Q_EMIT endRequested(int(info.ssi_signo));
}
