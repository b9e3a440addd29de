#include "HttpConnections.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

constexpr int SlowestCheckMs = 1000;
constexpr int QuickestCheckMs = 10;

// `name` is getsockname or getpeername.
template <typename Name>
IpAddress addressOf(int descriptor, Name name) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (name(descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        return {};
    return IpAddress::of(address);
}

} // namespace

HttpConnections::HttpConnections(const Limits& limits) : m_limits(limits) {
    m_clock.start();
    m_timer.setInterval(
        qBound(QuickestCheckMs, qMin(limits.idleMs, limits.requestMs) / 8, SlowestCheckMs));
    QObject::connect(&m_timer, &QTimer::timeout, this, &HttpConnections::cutOverdue);
}

HttpConnection* HttpConnections::open(int descriptor) {
    auto owned = std::make_unique<HttpConnection>();
    HttpConnection* connection = owned.get();
    m_all.emplace(connection, std::move(owned));
    connection->descriptor = descriptor;
    connection->localAddress = addressOf(descriptor, getsockname);
    connection->peer = addressOf(descriptor, getpeername);
    // A reader that vanished from the network without a word is noticed by what it never confirms.
    const auto timeout = static_cast<unsigned>(m_limits.idleMs);
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_USER_TIMEOUT, &timeout, sizeof timeout);
    setPhase(connection, HttpConnection::Phase::Waiting, m_limits.requestMs);
    ++m_live;
    if (++m_perAddress[connection->peer] > m_limits.perAddress &&
        !m_limits.proxies.contains(connection->peer)) {
        cut(connection);
    } else if (m_live > m_limits.connections) {
        HttpConnection* idle = longestWaiting(connection);
        cut(idle ? idle : connection);
    }
    if (!m_timer.isActive())
        m_timer.start();
    return connection;
}

void HttpConnections::close(HttpConnection* connection) {
    if (!connection->cut)
        leave(connection);
    m_all.erase(connection);
    if (m_all.empty())
        m_timer.stop();
}

void HttpConnections::setPhase(HttpConnection* connection, HttpConnection::Phase phase,
                               int timeoutMs) {
    connection->phase = phase;
    connection->since = m_clock.elapsed();
    connection->deadline = timeoutMs == Forever ? Forever : connection->since + timeoutMs;
}

void HttpConnections::setWaiting(HttpConnection* connection) {
    setPhase(connection, HttpConnection::Phase::Waiting, m_limits.idleMs);
}

void HttpConnections::setArriving(HttpConnection* connection) {
    setPhase(connection, HttpConnection::Phase::Arriving, m_limits.requestMs);
}

void HttpConnections::setHandling(HttpConnection* connection) {
    setPhase(connection, HttpConnection::Phase::Handling, Forever);
}

void HttpConnections::setAnswering(HttpConnection* connection) {
    setPhase(connection, HttpConnection::Phase::Answering, m_limits.requestMs);
}

void HttpConnections::setStreaming(HttpConnection* connection) {
    setPhase(connection, HttpConnection::Phase::Answering, m_limits.idleMs);
}

void HttpConnections::cut(HttpConnection* connection) {
    connection->cut = true;
    leave(connection);
    ::shutdown(connection->descriptor, SHUT_RDWR);
}

void HttpConnections::leave(const HttpConnection* connection) {
    --m_live;
    const auto count = m_perAddress.find(connection->peer);
    if (--*count == 0)
        m_perAddress.erase(count);
}

void HttpConnections::cutOverdue() {
    const qint64 now = m_clock.elapsed();
    for (const auto& entry : m_all) {
        HttpConnection* connection = entry.first;
        if (!connection->cut && connection->deadline != Forever && connection->deadline < now)
            cut(connection);
    }
}

HttpConnection* HttpConnections::longestWaiting(const HttpConnection* except) const {
    HttpConnection* longest = nullptr;
    for (const auto& entry : m_all) {
        HttpConnection* connection = entry.first;
        if (connection->phase == HttpConnection::Phase::Waiting && !connection->cut &&
            connection != except && (!longest || connection->since < longest->since))
            longest = connection;
    }
    return longest;
}
