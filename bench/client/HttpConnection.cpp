#include "HttpConnection.h"

#include <charconv>
#include <stdexcept>

namespace {

constexpr std::string_view HeadEnd = "\r\n\r\n";
constexpr std::string_view LengthName = "\r\nContent-Length: ";

std::size_t number(std::string_view text) {
    std::size_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc())
        throw std::runtime_error("no number in an answer's head");
    return value;
}

} // namespace

std::string HttpConnection::get(std::string_view target) {
    return "GET " + std::string(target) + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
}

std::string HttpConnection::post(std::string_view target, std::string_view body) {
    return "POST " + std::string(target) +
           " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + std::string(body);
}

std::string HttpConnection::command(std::string_view path, std::string_view value) {
    return post("/api/data",
                R"({"path":")" + std::string(path) + R"(","value":)" + std::string(value) + '}');
}

std::string HttpConnection::page(std::string_view path, int from, int to) {
    // The roles that the web page asks for; see web/js/core/device.js.
    return get("/api/rows?path=" + std::string(path) + "&from=" + std::to_string(from) +
               "&to=" + std::to_string(to) +
               "&roles=title,path,type,containerType,value,modifiable,id,context,mediaData");
}

void HttpConnection::send(std::string_view request) {
    m_buffer.clear();
    m_status = 0;
    m_bodyAt = 0;
    m_socket.sendAll(request);
}

bool HttpConnection::receive() {
    if (!m_socket.receive(&m_buffer))
        throw std::runtime_error("the connection was closed before the answer was complete");
    if (m_bodyAt == 0) {
        const std::size_t end = m_buffer.find(HeadEnd);
        if (end == std::string::npos)
            return false;
        const std::string_view head(m_buffer.data(), end);
        const std::size_t length = head.find(LengthName);
        if (length == std::string_view::npos)
            throw std::runtime_error("an answer without a length");
        m_bodySize = number(head.substr(length + LengthName.size()));
        m_status = int(number(head.substr(head.find(' ') + 1)));
        m_bodyAt = end + HeadEnd.size();
    }
    return m_buffer.size() >= m_bodyAt + m_bodySize;
}

void HttpConnection::exchange(std::string_view request) {
    send(request);
    while (!receive()) {
    }
}

std::string_view HttpConnection::mustExchange(std::string_view request) {
    exchange(request);
    if (m_status != 200)
        throw std::runtime_error("status " + std::to_string(m_status) + ": " +
                                 std::string(body().substr(0, 200)));
    return body();
}

std::string_view HttpConnection::body() const {
    return std::string_view(m_buffer).substr(m_bodyAt, m_bodySize);
}
