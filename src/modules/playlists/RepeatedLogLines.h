#pragma once

#include "ModuleLog.h"

// The lines alike of one command: the first few are written, the others counted. On the stack of
// the code that writes them, around its loop; worker's thread.
//     RepeatedLogLines lines(moduleLog(), log4cplus::WARN_LOG_LEVEL);
//     for (…)
//         if (lines.next())
//             LOG4CPLUS_WARN(moduleLog(), …);
class RepeatedLogLines {
public:
    static constexpr int MaxWritten = 5;

    RepeatedLogLines(const log4cplus::Logger& logger, log4cplus::LogLevel level)
        : m_logger(logger), m_level(level) {}
    ~RepeatedLogLines() { end(); }
    RepeatedLogLines(const RepeatedLogLines&) = delete;
    RepeatedLogLines& operator=(const RepeatedLogLines&) = delete;

    // Counts one line. True when it is to be written.
    bool next() { return ++m_count <= MaxWritten; }
    // Writes "and 99,995 more" where lines were left out, before other lines follow.
    void end();

private:
    const log4cplus::Logger& m_logger;
    log4cplus::LogLevel m_level;
    int m_count = 0;
};
