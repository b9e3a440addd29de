#pragma once

#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

// Every log line is written, down to the finest level, and goes nowhere: what a line makes of an
// input is part of what is tried. While it lives.
class QuietLog {
public:
    QuietLog() {
        log4cplus::Logger::getRoot().setLogLevel(log4cplus::TRACE_LOG_LEVEL);
        log4cplus::Logger::getRoot().addAppender(
            log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    }

private:
    log4cplus::Initializer m_initializer;
};
