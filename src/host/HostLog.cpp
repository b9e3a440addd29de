#include "HostLog.h"

log4cplus::Logger& hostLog() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Host"));
    return instance;
}
