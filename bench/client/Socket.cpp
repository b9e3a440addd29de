#include "Socket.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

template <typename Address>
int connectTo(int family, const Address& address) {
    const int descriptor = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        fail("socket");
    if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const int reason = errno;
        ::close(descriptor);
        errno = reason;
        return -1;
    }
    return descriptor;
}

} // namespace

Socket::Socket(Socket&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

Socket& Socket::operator=(Socket&& other) noexcept {
    if (this != &other) {
        close();
        m_descriptor = std::exchange(other.m_descriptor, -1);
    }
    return *this;
}

void Socket::close() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

bool Socket::tryPort(std::uint16_t port, Socket* socket) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int descriptor = connectTo(AF_INET, address);
    if (descriptor < 0)
        return false;
    const int on = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    *socket = Socket(descriptor);
    return true;
}

bool Socket::tryFile(const std::string& path, Socket* socket) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        throw std::runtime_error("too long for a socket: " + path);
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int descriptor = connectTo(AF_UNIX, address);
    if (descriptor < 0)
        return false;
    *socket = Socket(descriptor);
    return true;
}

Socket Socket::toPort(std::uint16_t port) {
    Socket socket;
    if (!tryPort(port, &socket))
        fail("no connection to port " + std::to_string(port));
    return socket;
}

Socket Socket::toFile(const std::string& path) {
    Socket socket;
    if (!tryFile(path, &socket))
        fail("no connection to " + path);
    return socket;
}

std::uint16_t Socket::freePort() {
    const Socket probe(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* plain = reinterpret_cast<sockaddr*>(&address);
    if (::bind(probe.descriptor(), plain, size) != 0 ||
        ::getsockname(probe.descriptor(), plain, &size) != 0)
        fail("no free port");
    return ntohs(address.sin_port);
}

void Socket::sendAll(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent < 0)
            fail("send");
        bytes.remove_prefix(std::size_t(sent));
    }
}

bool Socket::receive(std::string* buffer) {
    // One for all: filling a fresh block with zeros would cost as much as reading it.
    static char block[256 * 1024];
    ssize_t count = -1;
    do {
        count = ::recv(m_descriptor, block, sizeof block, 0);
    } while (count < 0 && errno == EINTR);
    if (count < 0)
        fail("receive");
    buffer->append(block, std::size_t(count));
    return count > 0;
}

bool Socket::readable(int timeoutMs) const {
    pollfd entry{m_descriptor, POLLIN, 0};
    return ::poll(&entry, 1, timeoutMs) > 0;
}
