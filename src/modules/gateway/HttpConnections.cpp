#include "HttpConnections.h"

#include <algorithm>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

constexpr int SlowestCheckMs = 1000;
constexpr int QuickestCheckMs = 10;

QByteArray localAddressOf(int descriptor) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        return {};
    char text[INET6_ADDRSTRLEN] = "";
    if (address.ss_family == AF_INET) {
        inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in&>(address).sin_addr, text,
                  sizeof text);
        return text;
    }
    const auto& v6 = reinterpret_cast<const sockaddr_in6&>(address).sin6_addr;
    // A client that came over IPv4 to a socket for both names the short form.
    if (IN6_IS_ADDR_V4MAPPED(&v6))
        inet_ntop(AF_INET, v6.s6_addr + 12, text, sizeof text);
    else
        inet_ntop(AF_INET6, &v6, text, sizeof text);
    return text;
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
    connection->localAddress = localAddressOf(descriptor);
    // A reader that vanished from the network without a word is noticed by what it never confirms.
    const auto patience = static_cast<unsigned>(m_limits.idleMs);
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_USER_TIMEOUT, &patience, sizeof patience);
    enter(connection, HttpConnection::Phase::Waiting, m_limits.requestMs);
    if (++m_live > m_limits.connections) {
        HttpConnection* idle = longestWaiting(connection);
        cut(idle ? idle : connection);
    }
    if (!m_timer.isActive())
        m_timer.start();
    return connection;
}

void HttpConnections::close(HttpConnection* connection) {
    if (!connection->cut)
        --m_live;
    m_all.erase(connection);
    if (m_all.empty())
        m_timer.stop();
}

void HttpConnections::enter(HttpConnection* connection, HttpConnection::Phase phase,
                            int patienceMs) {
    connection->phase = phase;
    connection->since = m_clock.elapsed();
    connection->deadline = patienceMs == Forever ? Forever : connection->since + patienceMs;
}

void HttpConnections::wait(HttpConnection* connection) {
    enter(connection, HttpConnection::Phase::Waiting, m_limits.idleMs);
}

void HttpConnections::arrive(HttpConnection* connection) {
    enter(connection, HttpConnection::Phase::Arriving, m_limits.requestMs);
}

void HttpConnections::handle(HttpConnection* connection) {
    enter(connection, HttpConnection::Phase::Handling, Forever);
}

void HttpConnections::answer(HttpConnection* connection) {
    enter(connection, HttpConnection::Phase::Answering, m_limits.requestMs);
}

void HttpConnections::stream(HttpConnection* connection) {
    enter(connection, HttpConnection::Phase::Answering, m_limits.idleMs);
}

void HttpConnections::cut(HttpConnection* connection) {
    connection->cut = true;
    --m_live;
    ::shutdown(connection->descriptor, SHUT_RDWR);
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
