#include "EventConnection.h"

#include <stdexcept>

EventConnection::EventConnection(std::uint16_t port) : m_socket(Socket::toPort(port)) {
    m_socket.sendAll(HttpConnection::get("/api/events"));
    waitFor("retry:");
}

bool EventConnection::receive(std::string_view text) {
    // A text may come in two parts.
    const std::size_t before = m_text.size();
    if (!m_socket.receive(&m_text))
        throw std::runtime_error("a stream of events has ended");
    const std::size_t from = before < text.size() ? 0 : before - text.size();
    return m_text.find(text, from) != std::string::npos;
}

void EventConnection::waitFor(std::string_view text) {
    while (!receive(text)) {
    }
}

void EventConnection::settle(int quietMs) {
    while (m_socket.readable(quietMs))
        receive({});
    clear();
}
