#pragma once

#include "CMLog.h"

// The module's one logger.
log4cplus::Logger& gatewayLog();
