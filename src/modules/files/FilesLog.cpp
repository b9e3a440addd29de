#include "FilesLog.h"

log4cplus::Logger& filesLog() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Files"));
    return instance;
}
