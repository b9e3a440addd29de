#pragma once

#include <log4cplus/initializer.h>
#include <log4cplus/loglevel.h>

#include <QObject>
#include <QString>

#include "LogLimits.h"
#include "RepeatedLogLimit.h"

// The process's log, from construction to destruction: every line of `level` and above, within
// `limits`, goes to standard error or, when `file` is named, to the end of that file, written out
// line by line so that nothing is lost when the process dies. Qt's own messages go there too, under
// the logger "Qt". Made once, by main, after the application. Construction never fails and never
// waits; a file that cannot be written leaves the log at standard error and is reported by
// fileError().
class LogSetup {
public:
    LogSetup(log4cplus::LogLevel level, const QString& file, const LogLimits& limits);
    ~LogSetup();
    LogSetup(const LogSetup&) = delete;
    LogSetup& operator=(const LogSetup&) = delete;

    // Lines alike are counted from here on anew. Each turn of the event loop does it as well.
    void beginRequest() { m_repeatedLogLimit.beginRequest(); }

    // Empty when all is well.
    const QString& fileError() const { return m_fileError; }
    bool writesToFile() const { return m_writesToFile; }

private:
    // Before the appenders, which the initializer takes away.
    RepeatedLogLimit m_repeatedLogLimit;
    log4cplus::Initializer m_initializer;
    QObject m_turns;
    QString m_fileError;
    bool m_writesToFile = false;
};
