#pragma once

#include <functional>
#include <log4cplus/spi/loggingevent.h>
#include <map>
#include <string>
#include <thread>
#include <tuple>

// Keeps one request from filling the log: of the lines that come from the same place in the code,
// with the same logger and level, the first `most` are written (0: all) and the others counted.
// Lines of other threads than its own, which serve no request, and fatal ones are always written.
// Owned by LogSetup, whose appender asks it; lives on the event loop's thread.
class RepeatedLogLimit {
public:
    explicit RepeatedLogLimit(int most) : m_most(most) {}

    bool admits(const log4cplus::spi::InternalLoggingEvent& event);
    // Writes "… and 12 more like this, from Database.cpp:88" where lines were left out, and counts
    // anew.
    void beginRequest();

private:
    // Line, level, file and logger: the numbers first, because they tell most places apart.
    using Kind = std::tuple<int, log4cplus::LogLevel, std::string, std::string>;

    const int m_most;
    const std::thread::id m_thread = std::this_thread::get_id();
    std::map<Kind, int, std::less<>> m_lines;
};
