#pragma once

#include <gtest/gtest.h>
#include <log4cplus/consoleappender.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>
#include <memory>

// For the body of a death test: the fatal line of the process that ends goes where the test looks
// for it.
inline void fatalToStderr() {
    log4cplus::SharedAppenderPtr appender(new log4cplus::ConsoleAppender(true, true));
    appender->setLayout(std::make_unique<log4cplus::PatternLayout>(LOG4CPLUS_TEXT("%p <%m>%n")));
    log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Platform"));
    logger.setLogLevel(log4cplus::FATAL_LOG_LEVEL);
    logger.addAppender(appender);
}

// Logging has threads, so each process that is to die starts anew and runs nothing but its test.
class DeathTest : public ::testing::Test {
protected:
    DeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};
