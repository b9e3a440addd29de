#include "HostOptions.h"

#include <limits>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

constexpr int UsageError = 2;

struct LevelRow {
    const char* name;
    log4cplus::LogLevel level;
};
constexpr LevelRow Levels[] = {
    {"trace", log4cplus::TRACE_LOG_LEVEL}, {"debug", log4cplus::DEBUG_LOG_LEVEL},
    {"info", log4cplus::INFO_LOG_LEVEL},   {"warn", log4cplus::WARN_LOG_LEVEL},
    {"error", log4cplus::ERROR_LOG_LEVEL}, {"fatal", log4cplus::FATAL_LOG_LEVEL},
};

struct LogLimitRow {
    const char* key;
    int LogLimits::*member;
    int least;
    int most;
    bool canBeLifted = true; // by 0
};
// A line has room for its time, level and logger, and for what is said of a cut. 204800 is the
// smallest file that log4cplus rotates.
constexpr LogLimitRow LogLimitRows[] = {
    {.key = "log/maxLineBytes", .member = &LogLimits::lineBytes, .least = 200, .most = 1 << 30},
    {.key = "log/maxAlike",
     .member = &LogLimits::alike,
     .least = 1,
     .most = std::numeric_limits<int>::max()},
    {.key = "log/maxFileBytes",
     .member = &LogLimits::fileBytes,
     .least = 204800,
     .most = std::numeric_limits<int>::max()},
    {.key = "log/files",
     .member = &LogLimits::files,
     .least = 1,
     .most = 1000,
     .canBeLifted = false},
};

QString absolute(const QString& file) {
    return file.isEmpty() ? file : QDir::cleanPath(QDir::current().absoluteFilePath(file));
}

// A module given by its bare name is looked for among the installed ones, unless there is such a
// file here.
QString absoluteModule(const QString& file) {
    const bool bare = !file.contains(QLatin1Char('/'));
    return bare && !QFileInfo::exists(file) ? file : absolute(file);
}

// The web page beside an installed program, or in the sources around a build folder.
QString defaultWebRoot() {
    const QDir bin(QCoreApplication::applicationDirPath());
    for (const char* candidate : {"../share/orvo/web", "../../../web"}) {
        const QFileInfo folder(bin.filePath(QString::fromLatin1(candidate)));
        if (folder.isDir())
            return folder.canonicalFilePath();
    }
    return {};
}

void addOptions(QCommandLineParser* parser) {
    parser->addOptions({
        {"data",
         "The folder for everything that is kept; made if missing, becomes the working directory.",
         "DIR", "."},
        {"music", "The folder with the music files.", "DIR"},
        {"listen", "Where the HTTP interface listens.", "ADDRESS:PORT", "127.0.0.1:8080"},
        {"token-file",
         "The file with the token that clients give; needed to listen on more than the loopback.",
         "FILE"},
        {"config", "A configuration key for the log or the modules; repeatable.", "KEY=VALUE"},
        {"module", "Load this module; repeatable, replaces the default list.", "FILE"},
        {"log-level", "The least level to log: trace, debug, info, warn, error or fatal.", "LEVEL",
         "info"},
        {"log-file", "Append the log to this file instead of standard error.", "FILE"},
        {"set", "Store a setting before the modules are loaded; repeatable.", "PATH=VALUE"},
        {"port-file", "The file to write the port to that the HTTP interface got.", "FILE"},
        {"web", "The folder with the web page.", "DIR"},
        {"audio-sink",
         "Where sound goes: auto, null (silent, as fast as it can) or wav=FILE (all that sounds).",
         "SINK", "auto"},
    });
}

} // namespace

std::optional<HostOptions::Ending> HostOptions::read(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Loads the device's modules and runs them until it is told to end."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    addOptions(&parser);
    const auto wrong = [](const QString& text) {
        return Ending{
            UsageError,
            QStringLiteral("orvo-host: %1\norvo-host: --help lists the options\n").arg(text)};
    };
    if (!parser.parse(arguments))
        return wrong(parser.errorText());
    if (parser.isSet(help) || parser.isSet(QStringLiteral("help-all")))
        return Ending{0, parser.helpText()};
    if (parser.isSet(version))
        return Ending{0, QStringLiteral("orvo-host %1\n").arg(QStringLiteral(ORVO_VERSION))};
    if (!parser.positionalArguments().isEmpty())
        return wrong(
            QStringLiteral("what is \"%1\"?").arg(parser.positionalArguments().constFirst()));
    for (const QString& name : parser.optionNames()) {
        if (parser.values(name).contains(QString()))
            return wrong(QStringLiteral("--%1 needs a value").arg(name));
    }

    if (auto error = readValues(parser))
        return wrong(*error);
    return {};
}

std::optional<QString> HostOptions::readValues(const QCommandLineParser& parser) {
    if (auto error = readListen(parser.value(QStringLiteral("listen"))))
        return error;
    if (auto error = readLogLevel(parser.value(QStringLiteral("log-level"))))
        return error;
    if (auto error = readAudioSink(parser.value(QStringLiteral("audio-sink"))))
        return error;
    if (auto error = readPairs(QStringLiteral("--set takes PATH=VALUE, not \"%1\""),
                               parser.values(QStringLiteral("set")), &m_settings))
        return error;
    if (auto error = readPairs(QStringLiteral("--config takes KEY=VALUE, not \"%1\""),
                               parser.values(QStringLiteral("config")), &m_config))
        return error;
    if (auto error = readLogLimits())
        return error;

    m_dataDir = absolute(parser.value(QStringLiteral("data")));
    m_musicDir = absolute(parser.value(QStringLiteral("music")));
    m_logFile = absolute(parser.value(QStringLiteral("log-file")));
    m_portFile = absolute(parser.value(QStringLiteral("port-file")));
    m_tokenFile = absolute(parser.value(QStringLiteral("token-file")));
    m_webRoot = parser.isSet(QStringLiteral("web")) ? absolute(parser.value(QStringLiteral("web")))
                                                    : defaultWebRoot();
    for (const QString& module : parser.values(QStringLiteral("module")))
        m_modules.append(absoluteModule(module));
    return {};
}

std::optional<QString> HostOptions::readListen(const QString& text) {
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    bool isNumber = false;
    const uint port = text.mid(colon + 1).toUInt(&isNumber);
    constexpr uint HighestPort = 65535;
    if (colon <= 0 || !isNumber || port > HighestPort)
        return QStringLiteral("--listen takes ADDRESS:PORT, not \"%1\"").arg(text);
    m_listen = text;
    return {};
}

std::optional<QString> HostOptions::readLogLevel(const QString& text) {
    for (const LevelRow& row : Levels) {
        if (text == QLatin1String(row.name)) {
            m_logLevel = row.level;
            return {};
        }
    }
    return QStringLiteral("there is no log level \"%1\"").arg(text);
}

std::optional<QString> HostOptions::readLogLimits() {
    for (const auto& [key, value] : qAsConst(m_config)) {
        for (const LogLimitRow& row : LogLimitRows) {
            if (key != QLatin1String(row.key))
                continue;
            bool isNumber = false;
            const int number = value.toInt(&isNumber);
            const bool lifts = row.canBeLifted && number == 0;
            if (!isNumber || (!lifts && (number < row.least || number > row.most)))
                return QStringLiteral("%1 takes %2a number from %3 to %4, not \"%5\"")
                    .arg(key, row.canBeLifted ? QStringLiteral("0 or ") : QString())
                    .arg(row.least)
                    .arg(row.most)
                    .arg(value);
            m_logLimits.*row.member = number;
        }
    }
    return {};
}

std::optional<QString> HostOptions::readAudioSink(const QString& text) {
    const QString wav = QStringLiteral("wav=");
    const bool toFile = text.startsWith(wav) && text.size() > wav.size();
    if (!toFile && text != QLatin1String("auto") && text != QLatin1String("null"))
        return QStringLiteral("--audio-sink takes auto, null or wav=FILE, not \"%1\"").arg(text);
    m_audioSink = toFile ? wav + absolute(text.mid(wav.size())) : text;
    return {};
}

std::optional<QString> HostOptions::readPairs(const QString& complaint, const QStringList& texts,
                                              QList<QPair<QString, QString>>* pairs) {
    for (const QString& text : texts) {
        const int equals = text.indexOf(QLatin1Char('='));
        if (equals <= 0)
            return complaint.arg(text);
        pairs->append({text.left(equals), text.mid(equals + 1)});
    }
    return {};
}

QHash<QString, QVariant> HostOptions::moduleConfig() const {
    QHash<QString, QVariant> config = {
        {QStringLiteral("dataDir"), m_dataDir},
        {QStringLiteral("musicDir"), m_musicDir},
        {QStringLiteral("gateway/listen"), m_listen},
        {QStringLiteral("gateway/tokenFile"), m_tokenFile},
        {QStringLiteral("gateway/portFile"), m_portFile},
        {QStringLiteral("gateway/webRoot"), m_webRoot},
        {QStringLiteral("player/audioSink"), m_audioSink},
    };
    // What has an option of its own is not overwritten.
    for (const auto& [key, value] : m_config) {
        if (!config.contains(key))
            config.insert(key, value);
    }
    return config;
}
