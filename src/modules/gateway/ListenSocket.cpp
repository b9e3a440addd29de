#include "ListenSocket.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A crowd that comes at once waits here; a client that finds it full tries again only after a
// second.
constexpr int Backlog = 1024;
constexpr int SendBuffer = 256 * 1024;

QString systemError(const QString& what) {
    return QStringLiteral("%1: %2").arg(what, QString::fromLocal8Bit(std::strerror(errno)));
}

quint16 boundPort(int descriptor) {
    sockaddr_storage bound{};
    socklen_t length = sizeof bound;
    if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&bound), &length) != 0)
        return 0;
    // The port stands at the same place in both families.
    return ntohs(reinterpret_cast<const sockaddr_in*>(&bound)->sin_port);
}

bool isLoopback(const sockaddr* address) {
    if (address->sa_family == AF_INET)
        return (ntohl(reinterpret_cast<const sockaddr_in*>(address)->sin_addr.s_addr) >> 24) ==
               IN_LOOPBACKNET;
    const in6_addr& v6 = reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr;
    return IN6_IS_ADDR_LOOPBACK(&v6) ||
           (IN6_IS_ADDR_V4MAPPED(&v6) && v6.s6_addr[12] == IN_LOOPBACKNET);
}

} // namespace

ListenSocket::~ListenSocket() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

int ListenSocket::release() {
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    return descriptor;
}

bool ListenSocket::open(const QString& address, bool loopbackOnly, QString* error) {
    const int colon = address.lastIndexOf(QLatin1Char(':'));
    bool portOk = false;
    const ushort port = address.mid(colon + 1).toUShort(&portOk);
    QString host = address.left(qMax(colon, 0));
    if (host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']')))
        host = host.mid(1, host.size() - 2);
    if (host == QLatin1String("localhost"))
        host = QStringLiteral("127.0.0.1");
    if (host.isEmpty() || !portOk) {
        *error = QStringLiteral("\"%1\" is not ADDRESS:PORT").arg(address);
        return false;
    }

    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.toUtf8().constData(), QByteArray::number(port).constData(), &hints,
                    &found) != 0) {
        *error = QStringLiteral("\"%1\" is not a numeric address").arg(host);
        return false;
    }
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> info(found, freeaddrinfo);

    if (loopbackOnly && !isLoopback(info->ai_addr)) {
        *error = QStringLiteral("other machines reach %1: that needs a token file").arg(host);
        return false;
    }

    m_descriptor = ::socket(info->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_descriptor < 0) {
        *error = systemError(QStringLiteral("socket"));
        return false;
    }
    const int on = 1;
    // What a client that reads slowly can make the kernel keep for it; accepted sockets inherit it.
    ::setsockopt(m_descriptor, SOL_SOCKET, SO_SNDBUF, &SendBuffer, sizeof SendBuffer);
    // A device that is started again at once gets its port although old connections linger in it.
    ::setsockopt(m_descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(m_descriptor, info->ai_addr, info->ai_addrlen) != 0 ||
        ::listen(m_descriptor, Backlog) != 0) {
        *error = systemError(address);
        ::close(release());
        return false;
    }
    m_port = boundPort(m_descriptor);
    return true;
}
