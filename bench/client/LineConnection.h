#pragma once

#include "Socket.h"

// A connection that is asked in lines and answers in lines, the last of which is "OK" or begins
// with "ACK": the protocol of the Music Player Daemon. A plain client: one question at a time.
// Failures as in Socket, a refusal as well.
class LineConnection {
public:
    // Takes the greeting.
    explicit LineConnection(Socket socket);

    // Sends `lines` (each with its end, or a command list) and waits for the answer, which is
    // without its last line. False when it takes longer than that: the connection is of no use
    // then.
    bool ask(std::string_view lines, int timeoutMs, std::string* answer = nullptr);

    static std::string list(const std::string& commands) {
        return "command_list_begin\n" + commands + "command_list_end\n";
    }

private:
    Socket m_socket;
};
