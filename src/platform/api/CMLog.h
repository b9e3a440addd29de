#pragma once

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>
#include <ostream>

#include <QString>
#include <QVariant>

#include "CMPath.h"
#include "orvo_api_export.h"

// Qt values in log lines.
ORVO_API_EXPORT std::ostream& operator<<(std::ostream& out, const QString& text);
ORVO_API_EXPORT std::ostream& operator<<(std::ostream& out, const QVariant& value);
ORVO_API_EXPORT std::ostream& operator<<(std::ostream& out, const CMPath& path);
ORVO_API_EXPORT std::ostream& operator<<(std::ostream& out, const QStringList& texts);
// Of a longer value just so much is written that its line is too long as well, so that a name of
// megabytes costs no more than what the log keeps of it. 0, where it begins: values are whole.
ORVO_API_EXPORT void cmSetMaxLogText(int characters);

// The scoped "Enter" line: the full signature and, where given, the arguments as name=value pairs.
// The arguments are evaluated only when trace is on. They go on with the stream, so they stand
// without parentheses.
#define CM_ENTER(logger) LOG4CPLUS_TRACE(logger, "Enter " << __PRETTY_FUNCTION__)
#define CM_ENTER_ARGS(logger, args)                                                                \
    LOG4CPLUS_TRACE(logger, "Enter " << __PRETTY_FUNCTION__ << ": " << args) // NOLINT

// Ends the process with a log line at fatal level. For programming errors and a platform that
// cannot be used, never for anything that a request can bring.
[[noreturn]] ORVO_API_EXPORT void cmFatal(const char* text);
#define CM_ASSERT(condition, text) ((condition) ? static_cast<void>(0) : cmFatal(text))
