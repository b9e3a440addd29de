#pragma once

#include "CMLog.h"

// The player's logger. May be used from any thread.
log4cplus::Logger& playerLog();
