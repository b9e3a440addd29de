#pragma once

#include <QString>

// A bound and listening TCP socket. Closes itself unless released. Lives where it is made.
class ListenSocket {
public:
    ListenSocket() = default;
    ~ListenSocket();
    ListenSocket(const ListenSocket&) = delete;
    ListenSocket& operator=(const ListenSocket&) = delete;

    // `address` is "127.0.0.1:8080", "[::1]:8080" or "localhost:8080". On failure the reason is in
    // `error`. `loopbackOnly`: an address that other machines reach is a failure, too.
    bool open(const QString& address, bool loopbackOnly, QString* error);
    int descriptor() const { return m_descriptor; }
    quint16 port() const { return m_port; }
    // Hands the descriptor over to the caller.
    int release();

private:
    int m_descriptor = -1;
    quint16 m_port = 0;
};
