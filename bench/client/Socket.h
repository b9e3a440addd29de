#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// A descriptor that closes itself: a stream socket to this machine, and nothing else. Every failure
// is a std::runtime_error, for a measurement without its connection is none.
class Socket {
public:
    Socket() = default;
    ~Socket() { close(); }
    Socket(Socket&& other) noexcept;
    Socket& operator=(Socket&& other) noexcept;
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    static Socket toPort(std::uint16_t port);
    static Socket toFile(const std::string& path);
    // Nothing where nobody listens yet.
    static bool tryPort(std::uint16_t port, Socket* socket);
    static bool tryFile(const std::string& path, Socket* socket);

    // One that nobody listens on at the moment.
    static std::uint16_t freePort();

    int descriptor() const { return m_descriptor; }
    void sendAll(std::string_view bytes);
    // Waits until there is something, and appends it. False when the other side has closed.
    bool receive(std::string* buffer);
    // Whether something can be read within the time; negative: without end.
    bool readable(int timeoutMs) const;

private:
    explicit Socket(int descriptor) : m_descriptor(descriptor) {}
    void close();

    int m_descriptor = -1;
};
