#pragma once

#include <log4cplus/appender.h>
#include <log4cplus/loglevel.h>

#include <QString>
#include <QStringList>

// Captures what is logged while it lives, as "LEVEL text" lines in order, for one logger or for
// all.
class LogCapture {
public:
    explicit LogCapture(const QString& loggerName = {},
                        log4cplus::LogLevel level = log4cplus::TRACE_LOG_LEVEL);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const QStringList& lines() const;
    // The texts of one level, e.g. "ERROR".
    QStringList texts(const QString& level) const;
    QStringList errors() const { return texts(QStringLiteral("ERROR")); }
    bool contains(const QString& level, const QString& text) const {
        return texts(level).contains(text);
    }
    void clear();

private:
    class Sink;
    Sink* m_sink;
    log4cplus::SharedAppenderPtr m_appender;
    QString m_loggerName;
    log4cplus::LogLevel m_oldLevel;
};
