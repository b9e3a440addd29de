#pragma once

#include <QByteArray>

// A TCP connection that does nothing by itself: what is not read stays in the kernel, as with a
// client that stopped.
class RawSocket {
public:
    // `from` is the address that the server sees, any of the loopback's.
    explicit RawSocket(quint16 port, const char* from = "127.0.0.1");
    ~RawSocket();
    RawSocket(const RawSocket&) = delete;
    RawSocket& operator=(const RawSocket&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    void write(const QByteArray& bytes);
    // All that has come so far.
    QByteArray read();
    // Whether something has come, and whether the server ended it; both look without reading.
    bool hasBytes() const;
    bool isClosed();

private:
    int m_descriptor = -1;
    QByteArray m_read;
    bool m_closed = false;
};
