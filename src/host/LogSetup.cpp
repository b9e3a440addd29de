#include "LogSetup.h"

#include <log4cplus/consoleappender.h>
#include <log4cplus/fileappender.h>
#include <memory>

#include <QFile>

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

log4cplus::SharedAppenderPtr fileAppender(const QString& file) {
    return log4cplus::SharedAppenderPtr(new log4cplus::FileAppender(
        QFile::encodeName(file).toStdString(), std::ios_base::app, /*immediateFlush=*/true));
}

} // namespace

LogSetup::LogSetup(log4cplus::LogLevel level, const QString& file) {
    QFile probe(file);
    if (!file.isEmpty() && !probe.open(QIODevice::WriteOnly | QIODevice::Append))
        m_fileError = probe.errorString();
    m_writesToFile = !file.isEmpty() && m_fileError.isEmpty();

    log4cplus::SharedAppenderPtr appender = m_writesToFile ? fileAppender(file) : consoleAppender();
    appender->setLayout(std::make_unique<OneLineLayout>());
    log4cplus::Logger rootLogger = log4cplus::Logger::getRoot();
    rootLogger.setLogLevel(level);
    rootLogger.addAppender(appender);
    qInstallMessageHandler(logQtMessage);
}

LogSetup::~LogSetup() {
    qInstallMessageHandler(nullptr);
}
