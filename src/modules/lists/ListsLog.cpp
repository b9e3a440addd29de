#include "ListsLog.h"

log4cplus::Logger& listsLog() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Lists"));
    return instance;
}
