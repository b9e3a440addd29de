#include "LogCapture.h"

#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

#include <QRegularExpression>

namespace {
// Signatures stand in the log as the compiler spells them; the tests have gcc's way.
QString inOneSpelling(const QString& text) {
#ifdef __clang__
    static const QRegularExpression beforeName(QStringLiteral(" ([*&]+)(?=\\w)"));
    static const QRegularExpression atTheEnd(QStringLiteral(" ([*&]+)(?=[,)])"));
    return QString(text)
        .replace(QStringLiteral("(anonymous namespace)"), QStringLiteral("{anonymous}"))
        .replace(beforeName, QStringLiteral("\\1 "))
        .replace(atTheEnd, QStringLiteral("\\1"));
#else
    return text;
#endif
}
} // namespace

class LogCapture::Sink : public log4cplus::Appender {
public:
    ~Sink() override { destructorImpl(); }
    void close() override {}

    QStringList lines;

protected:
    void append(const log4cplus::spi::InternalLoggingEvent& event) override {
        const std::string level = log4cplus::getLogLevelManager().toString(event.getLogLevel());
        lines.append(QString::fromStdString(level) + QLatin1Char(' ') +
                     inOneSpelling(QString::fromStdString(event.getMessage())));
    }
};

namespace {
log4cplus::Logger loggerNamed(const QString& name) {
    return name.isEmpty() ? log4cplus::Logger::getRoot()
                          : log4cplus::Logger::getInstance(name.toStdString());
}
} // namespace

LogCapture::LogCapture(const QString& loggerName, log4cplus::LogLevel level)
    : m_sink(new Sink), m_appender(m_sink), m_loggerName(loggerName) {
    log4cplus::Logger logger = loggerNamed(m_loggerName);
    m_oldLevel = logger.getLogLevel();
    logger.setLogLevel(level);
    logger.addAppender(m_appender);
}

LogCapture::~LogCapture() {
    log4cplus::Logger logger = loggerNamed(m_loggerName);
    logger.removeAppender(m_appender);
    logger.setLogLevel(m_oldLevel);
}

const QStringList& LogCapture::lines() const {
    return m_sink->lines;
}

QStringList LogCapture::texts(const QString& level) const {
    QStringList result;
    for (const QString& line : m_sink->lines) {
        if (line.startsWith(level + QLatin1Char(' ')))
            result.append(line.mid(level.size() + 1));
    }
    return result;
}

void LogCapture::clear() {
    m_sink->lines.clear();
}
