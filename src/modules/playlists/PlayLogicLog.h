#pragma once

#include "CMLog.h"

// The play logic's logger, "PlayListsPlayLogic".
log4cplus::Logger& playLogicLog();
