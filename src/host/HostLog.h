#pragma once

#include "CMLog.h"

// The host's one logger.
log4cplus::Logger& hostLog();
