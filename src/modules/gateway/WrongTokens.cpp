#include "WrongTokens.h"

#include "GatewayLog.h"

namespace {

constexpr qint64 NsPerMs = 1000 * 1000;
constexpr qint64 NsPerSecond = 1000 * NsPerMs;

} // namespace

WrongTokens::WrongTokens(const Limits& limits) : m_limits(limits) {
    m_clock.start();
}

bool WrongTokens::isOver(const Window& window) const {
    return leftNs(window) <= 0;
}

// Of the window's time. In nanoseconds, so that of many addresses it is told whose began first.
qint64 WrongTokens::leftNs(const Window& window) const {
    return window.since + m_limits.windowMs * NsPerMs - m_clock.nsecsElapsed();
}

void WrongTokens::note(const IpAddress& address) {
    if (!m_windows.contains(address))
        makePlace();
    Window& window = m_windows[address];
    if (window.count == 0 || isOver(window))
        window = {m_clock.nsecsElapsed(), 0};
    ++window.count;
    log(address, window.count);
}

int WrongTokens::blockedSeconds(const IpAddress& address) const {
    const auto window = m_windows.find(address);
    if (window == m_windows.end() || window->count < m_limits.attempts || isOver(*window))
        return 0;
    return int((leftNs(*window) + NsPerSecond - 1) / NsPerSecond);
}

void WrongTokens::makePlace() {
    if (m_windows.size() < MaxAddresses)
        return;
    auto oldest = m_windows.begin();
    for (auto it = m_windows.begin(); it != m_windows.end(); ++it) {
        if (it->since < oldest->since)
            oldest = it;
    }
    m_windows.erase(oldest);
}

void WrongTokens::log(const IpAddress& address, int count) {
    if (m_logged.count == 0 || isOver(m_logged)) {
        if (m_logged.count > MaxLogged)
            LOG4CPLUS_WARN(gatewayLog(),
                           m_logged.count - MaxLogged << " more wrong tokens were not logged");
        m_logged = {m_clock.nsecsElapsed(), 0};
    }
    if (++m_logged.count > MaxLogged)
        return;
    LOG4CPLUS_WARN(gatewayLog(), "a wrong token from " << address.toString().constData() << ", "
                                                       << count << " of " << m_limits.attempts
                                                       << " before it has to wait");
}
