#pragma once

#include <QList>
#include <QString>

#include "CMLog.h"

// The module's logger, "PlayLists".
log4cplus::Logger& moduleLog();

// Numbers for a log line: "1, 2, 5".
QString joined(const QList<int>& numbers);
