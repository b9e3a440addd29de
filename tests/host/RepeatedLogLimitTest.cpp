#include "RepeatedLogLimit.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

using log4cplus::spi::InternalLoggingEvent;

InternalLoggingEvent line(const char* logger, log4cplus::LogLevel level, const char* file,
                          int number) {
    return {logger, level, "text", file, number};
}

const InternalLoggingEvent Warning = line("A", log4cplus::WARN_LOG_LEVEL, "a.cpp", 1);

TEST(RepeatedLogLimitTest, linesOfAnotherPlaceLoggerOrLevelAreNotAlike) {
    RepeatedLogLimit limit(2);
    for (const InternalLoggingEvent& other :
         {Warning, line("B", log4cplus::WARN_LOG_LEVEL, "a.cpp", 1),
          line("A", log4cplus::ERROR_LOG_LEVEL, "a.cpp", 1),
          line("A", log4cplus::WARN_LOG_LEVEL, "b.cpp", 1),
          line("A", log4cplus::WARN_LOG_LEVEL, "a.cpp", 2)}) {
        EXPECT_TRUE(limit.admits(other));
        EXPECT_TRUE(limit.admits(other));
        EXPECT_FALSE(limit.admits(other));
    }
}

TEST(RepeatedLogLimitTest, aRequestBeginsWithACountOfItsOwn) {
    RepeatedLogLimit limit(1);
    for (int request = 1; request <= 3; ++request) {
        EXPECT_TRUE(limit.admits(Warning));
        EXPECT_FALSE(limit.admits(Warning));
        limit.beginRequest();
    }
}

TEST(RepeatedLogLimitTest, fatalLinesAreAlwaysWritten) {
    RepeatedLogLimit limit(1);
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(limit.admits(line("A", log4cplus::FATAL_LOG_LEVEL, "a.cpp", 1)));
}

TEST(RepeatedLogLimitTest, linesOfOtherThreadsServeNoRequest) {
    RepeatedLogLimit limit(1);
    std::thread([&limit] {
        for (int i = 0; i < 5; ++i)
            EXPECT_TRUE(limit.admits(Warning));
    }).join();
    EXPECT_TRUE(limit.admits(Warning));
    EXPECT_FALSE(limit.admits(Warning));
}

} // namespace
