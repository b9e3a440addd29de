#pragma once

#include <cstddef>
#include <log4cplus/layout.h>
#include <string>

// Time, level, logger and message, always one line of plain text: control characters (names and
// tags come from files and strangers) are written as escapes, so that no message can forge a second
// line or steer a terminal.
//
// A line that would be longer than `maxBytes` (0: any length) is cut and ends with "… (cut)".
//
//   2026-03-01 12:00:00.250 INFO  Files - scanning
class OneLineLayout : public log4cplus::Layout {
public:
    explicit OneLineLayout(std::size_t maxBytes) : m_maxBytes(maxBytes) {}

    void formatAndAppend(log4cplus::tostream& output,
                         const log4cplus::spi::InternalLoggingEvent& event) override;

    // "a<newline>b" becomes "a\nb" with a backslash and an n; others become \x1b. At most `room`
    // bytes, cut between two characters; what is behind them is not looked at.
    static std::string escaped(const std::string& text, std::size_t room = std::string::npos);

private:
    std::size_t m_maxBytes;
};
