#pragma once

#include <string>
#include <string_view>

#include "Socket.h"

// One kept-alive HTTP/1.1 connection to the device. Requests are texts made beforehand, so that
// nothing but the exchange itself is in a measured stretch. Failures as in Socket.
class HttpConnection {
public:
    explicit HttpConnection(std::uint16_t port) : m_socket(Socket::toPort(port)) {}
    explicit HttpConnection(Socket socket) : m_socket(std::move(socket)) {}

    static std::string get(std::string_view target);
    static std::string post(std::string_view target, std::string_view body);
    // A command's request; `value` is JSON.
    static std::string command(std::string_view path, std::string_view value);
    static std::string page(std::string_view path, int from, int to);

    int descriptor() const { return m_socket.descriptor(); }
    Socket& socket() { return m_socket; }

    void send(std::string_view request);
    // Reads once. True when the whole answer is there.
    bool receive();
    // Sends and waits for the whole answer.
    void exchange(std::string_view request);
    // The same, and the answer's status must be 200. For everything around a measurement.
    std::string_view mustExchange(std::string_view request);

    int status() const { return m_status; }
    std::string_view body() const;

private:
    Socket m_socket;
    std::string m_buffer;
    int m_status = 0;
    std::size_t m_bodyAt = 0;
    std::size_t m_bodySize = 0;
};
