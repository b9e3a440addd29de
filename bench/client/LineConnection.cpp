#include "LineConnection.h"

#include <poll.h>
#include <stdexcept>

#include "Samples.h"

LineConnection::LineConnection(Socket socket) : m_socket(std::move(socket)) {
    std::string greeting;
    m_socket.receive(&greeting);
    if (greeting.rfind("OK MPD", 0) != 0)
        throw std::runtime_error("no greeting: " + greeting);
}

bool LineConnection::ask(std::string_view lines, int timeoutMs, std::string* answer) {
    constexpr std::string_view Done = "OK\n";
    std::string text;
    const Clock::time_point start = Clock::now();
    m_socket.sendAll(lines);
    while (true) {
        const int left = timeoutMs - int(microsecondsSince(start) / 1000);
        if (left <= 0 || !m_socket.readable(left))
            return false;
        if (!m_socket.receive(&text))
            throw std::runtime_error("the connection was closed: " + text.substr(0, 200));
        const std::size_t refused = text.rfind("ACK ", 0) == 0 ? 0 : text.find("\nACK ");
        if (refused != std::string::npos && text.back() == '\n')
            throw std::runtime_error("refused: " + text.substr(refused, 200));
        const bool complete = text == Done || (text.size() > Done.size() &&
                                               text.compare(text.size() - 4, 4, "\nOK\n") == 0);
        if (complete)
            break;
    }
    if (answer)
        *answer = text.substr(0, text.size() - Done.size());
    return true;
}
