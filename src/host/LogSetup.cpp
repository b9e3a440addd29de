#include "LogSetup.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <log4cplus/consoleappender.h>
#include <log4cplus/fileappender.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include <QAbstractEventDispatcher>
#include <QFile>

#include "CMConnect.h"
#include "CMLog.h"
#include "OneLineLayout.h"

namespace {

void logQtMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
    log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Qt"));
    switch (type) {
    case QtDebugMsg:
        LOG4CPLUS_DEBUG(logger, text);
        break;
    case QtInfoMsg:
        LOG4CPLUS_INFO(logger, text);
        break;
    case QtWarningMsg:
        LOG4CPLUS_WARN(logger, text);
        break;
    case QtCriticalMsg:
        LOG4CPLUS_ERROR(logger, text);
        break;
    case QtFatalMsg:
        LOG4CPLUS_FATAL(logger, text);
        break;
    }
}

log4cplus::SharedAppenderPtr consoleAppender() {
    return log4cplus::SharedAppenderPtr(
        new log4cplus::ConsoleAppender(/*logToStdErr=*/true, /*immediateFlush=*/true));
}

log4cplus::SharedAppenderPtr fileAppender(const std::string& file, bool rotates,
                                          const LogLimits& limits) {
    if (rotates && limits.fileBytes > 0)
        return log4cplus::SharedAppenderPtr(new log4cplus::RollingFileAppender(
            file, limits.fileBytes, limits.files - 1, /*immediateFlush=*/true));
    return log4cplus::SharedAppenderPtr(
        new log4cplus::FileAppender(file, std::ios_base::app, /*immediateFlush=*/true));
}

} // namespace

LogSetup::LogSetup(log4cplus::LogLevel level, const QString& file, const LogLimits& limits)
    : m_repeatedLogLimit(limits.alike) {
    const QByteArray name = QFile::encodeName(file);
    bool isRegular = false;
    if (!file.isEmpty()) {
        // Not waiting: a pipe is taken when a reader has it open and refused when none has.
        const int probe =
            ::open(name.constData(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666);
        struct stat about {};
        if (probe < 0 || ::fstat(probe, &about) != 0)
            m_fileError = QString::fromLocal8Bit(std::strerror(errno));
        isRegular = S_ISREG(about.st_mode);
        if (probe >= 0)
            ::close(probe);
    }
    m_writesToFile = !file.isEmpty() && m_fileError.isEmpty();

    log4cplus::SharedAppenderPtr appender =
        m_writesToFile ? fileAppender(name.toStdString(), isRegular, limits) : consoleAppender();
    appender->setLayout(std::make_unique<OneLineLayout>(std::size_t(limits.lineBytes)));
    appender->addFilter([this](const log4cplus::spi::InternalLoggingEvent& event) {
        return m_repeatedLogLimit.admits(event) ? log4cplus::spi::NEUTRAL : log4cplus::spi::DENY;
    });
    cmSetMaxLogText(limits.lineBytes);
    log4cplus::Logger rootLogger = log4cplus::Logger::getRoot();
    rootLogger.setLogLevel(level);
    rootLogger.addAppender(appender);
    qInstallMessageHandler(logQtMessage);
    cmConnect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &m_turns,
              [this] { beginRequest(); });
}

LogSetup::~LogSetup() {
    beginRequest();
    qInstallMessageHandler(nullptr);
}
