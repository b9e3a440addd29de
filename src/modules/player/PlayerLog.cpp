#include "PlayerLog.h"

log4cplus::Logger& playerLog() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Player"));
    return instance;
}
