#pragma once

#include "../client/HttpConnection.h"

// A reader of the device's events. Looks at nothing but whether a text has come.
class EventConnection {
public:
    explicit EventConnection(std::uint16_t port);

    int descriptor() const { return m_socket.descriptor(); }
    Socket& socket() { return m_socket; }
    // Forgets what has come so far; everything that is under way has to be waited for first.
    void clear() { m_text.clear(); }
    // Reads once. True when the text has come since clear().
    bool receive(std::string_view text);
    void waitFor(std::string_view text);
    // Takes whatever comes until it is quiet for so long.
    void settle(int quietMs);

private:
    Socket m_socket;
    std::string m_text;
};
