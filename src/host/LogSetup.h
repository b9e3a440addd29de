#pragma once

#include <log4cplus/initializer.h>
#include <log4cplus/loglevel.h>

#include <QString>

// The process's log, from construction to destruction: every line of `level` and above goes to
// standard error or, when `file` is named, to the end of that file, written out line by line so
// that nothing is lost when the process dies. Qt's own messages go there too, under the logger
// "Qt". Made once, by main. Construction never fails; a file that cannot be written leaves the log
// at standard error and is reported by fileError().
class LogSetup {
public:
    LogSetup(log4cplus::LogLevel level, const QString& file);
    ~LogSetup();
    LogSetup(const LogSetup&) = delete;
    LogSetup& operator=(const LogSetup&) = delete;

    // Empty when all is well.
    const QString& fileError() const { return m_fileError; }
    bool writesToFile() const { return m_writesToFile; }

private:
    log4cplus::Initializer m_initializer;
    QString m_fileError;
    bool m_writesToFile = false;
};
