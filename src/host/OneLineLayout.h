#pragma once

#include <log4cplus/layout.h>
#include <string>

// Time, level, logger and message, always one line of plain text: control characters (names and
// tags come from files and strangers) are written as escapes, so that no message can forge a second
// line or steer a terminal.
//
//   2026-03-01 12:00:00.250 INFO  Files - scanning
class OneLineLayout : public log4cplus::Layout {
public:
    void formatAndAppend(log4cplus::tostream& output,
                         const log4cplus::spi::InternalLoggingEvent& event) override;

    // "a<newline>b" becomes "a\nb" with a backslash and an n; others become \x1b.
    static std::string escaped(const std::string& text);
};
