#pragma once

#include <log4cplus/loglevel.h>
#include <optional>

#include <QHash>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "LogLimits.h"

class QCommandLineParser;

// What the command line asks for. A value; all file names in it are absolute, because the process
// moves to its data folder afterwards.
class HostOptions {
public:
    struct Ending {
        int exitStatus;
        QString text;
    };

    // Reads the arguments (the program's name first). The result is set when there is nothing to
    // run: after --help and --version with status 0, after a wrong call with status 2 and a message
    // that says what is wrong.
    std::optional<Ending> read(const QStringList& arguments);

    QString dataDir() const { return m_dataDir; }
    // The --module values; empty: the default list.
    QStringList modules() const { return m_modules; }
    log4cplus::LogLevel logLevel() const { return m_logLevel; }
    // Empty: standard error.
    QString logFile() const { return m_logFile; }
    // The --config values whose keys begin with log/.
    LogLimits logLimits() const { return m_logLimits; }
    // The --set values in the order given: path and value text.
    QList<QPair<QString, QString>> settings() const { return m_settings; }

    // What every module is given.
    QHash<QString, QVariant> moduleConfig() const;

private:
    // These return what is wrong.
    std::optional<QString> readValues(const QCommandLineParser& parser);
    std::optional<QString> readListen(const QString& text);
    std::optional<QString> readLogLevel(const QString& text);
    std::optional<QString> readLogLimits();
    std::optional<QString> readAudioSink(const QString& text);
    static std::optional<QString> readPairs(const QString& complaint, const QStringList& texts,
                                            QList<QPair<QString, QString>>* pairs);

    QString m_dataDir;
    QString m_musicDir;
    QString m_listen;
    QString m_tokenFile;
    QString m_portFile;
    QString m_webRoot;
    QString m_audioSink;
    QString m_logFile;
    QStringList m_modules;
    QList<QPair<QString, QString>> m_settings;
    QList<QPair<QString, QString>> m_config;
    LogLimits m_logLimits;
    log4cplus::LogLevel m_logLevel = log4cplus::INFO_LOG_LEVEL;
};
