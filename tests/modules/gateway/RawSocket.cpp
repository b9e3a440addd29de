#include "RawSocket.h"

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

RawSocket::RawSocket(quint16 port, const char* from) {
    m_descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // Small, so that a reader that stops is noticed soon.
    const int small = 16 * 1024;
    ::setsockopt(m_descriptor, SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    ::inet_pton(AF_INET, from, &address.sin_addr);
    ::bind(m_descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::inet_pton(AF_INET, "127.0.0.1", &address.sin_addr);
    address.sin_port = htons(port);
    // The kernel accepts for a listening server, also one that runs on this thread.
    if (::connect(m_descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        ::close(m_descriptor);
        m_descriptor = -1;
    }
}

RawSocket::~RawSocket() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

void RawSocket::write(const QByteArray& bytes) {
    if (::send(m_descriptor, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL | MSG_DONTWAIT) <
            0 &&
        errno != EAGAIN)
        m_closed = true;
}

QByteArray RawSocket::read() {
    char bytes[65536];
    ssize_t count = 0;
    while ((count = ::recv(m_descriptor, bytes, sizeof bytes, MSG_DONTWAIT)) > 0)
        m_read.append(bytes, int(count));
    m_closed = m_closed || count == 0 || errno != EAGAIN;
    return m_read;
}

bool RawSocket::hasBytes() const {
    char byte = 0;
    return ::recv(m_descriptor, &byte, 1, MSG_DONTWAIT | MSG_PEEK) > 0;
}

bool RawSocket::isClosed() {
    char byte = 0;
    const ssize_t count = ::recv(m_descriptor, &byte, 1, MSG_DONTWAIT | MSG_PEEK);
    m_closed = m_closed || count == 0 || (count < 0 && errno != EAGAIN);
    return m_closed;
}
