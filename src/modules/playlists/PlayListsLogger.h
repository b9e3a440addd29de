#pragma once

#include "CMLog.h"

// The logger of the whole module, except for its play logic.
inline log4cplus::Logger& playListsLogger() {
    static log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("PlayLists"));
    return logger;
}
