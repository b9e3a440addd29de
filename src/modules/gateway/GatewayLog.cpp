#include "GatewayLog.h"

log4cplus::Logger& gatewayLog() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Gateway"));
    return instance;
}
