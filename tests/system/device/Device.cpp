#include "Device.h"

#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <QDir>
#include <QFile>

#include "SoundFiles.h"

namespace {
constexpr int EndPatienceMs = 10000;

QByteArray fileText(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

void UnprivilegedProcess::setupChildProcess() {
    constexpr unsigned long dacOverride = 1;
    constexpr unsigned long dacReadSearch = 2;
    prctl(PR_CAPBSET_DROP, dacOverride, 0, 0, 0);
    prctl(PR_CAPBSET_DROP, dacReadSearch, 0, 0, 0);
    if (m_openFiles >= 0) {
        const rlimit limit = {rlim_t(m_openFiles), rlim_t(m_openFiles)};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    if (m_fileSize < 0)
        return;
    // The write fails, instead of the process being ended by a signal.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {rlim_t(m_fileSize), rlim_t(m_fileSize)};
    setrlimit(RLIMIT_FSIZE, &limit);
}

Device::Device(const QStringList& arguments) : m_arguments(arguments) {
    for (int album = 1; album <= 3; ++album) {
        for (int track = 1; track <= 4; ++track) {
            SoundTags tags;
            tags.title = QStringLiteral("Track %1.%2").arg(album).arg(track);
            tags.artist = QStringLiteral("Band %1").arg(album);
            tags.album = QStringLiteral("Album %1").arg(album);
            tags.track = track;
            SoundFiles::writeWav(
                m_folder.filePath(QStringLiteral("music/Band %1/Album %1/%2 track.wav")
                                      .arg(album)
                                      .arg(track, 2, 10, QLatin1Char('0'))),
                tags, 200);
        }
    }
}

Device::~Device() {
    // Politely, so that a leak check comes to its turn.
    m_client.reset();
    m_process.terminate();
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(EndPatienceMs))
        kill();
    if (::testing::Test::HasFailure()) {
        m_folder.setAutoRemove(false);
        std::printf("the folder of the failed test is kept: %s\n", qPrintable(m_folder.path()));
    }
}

QStringList Device::hostArguments() const {
    return QStringList{"--data",      m_folder.filePath("device"),
                       "--music",     musicFolder(),
                       "--listen",    "127.0.0.1:0",
                       "--port-file", portFile()} +
           m_arguments;
}

bool Device::launch() {
    QFile::remove(portFile());
    m_process.setStandardErrorFile(m_folder.filePath("device.log"), QIODevice::Append);
    m_process.start(QStringLiteral(ORVO_HOST), hostArguments());
    return m_process.waitForStarted();
}

bool Device::waitUntilReady() {
    QByteArray output;
    const bool ready = waitUntil([&] {
        output += m_process.readAllStandardOutput();
        return output.contains("orvo-host is ready") || m_process.state() == QProcess::NotRunning;
    });
    if (!ready || m_process.state() == QProcess::NotRunning) {
        ADD_FAILURE() << "the device did not start:\n" << qPrintable(log());
        return false;
    }
    m_port = quint16(fileText(portFile()).trimmed().toUInt());
    m_client = std::make_unique<HttpClient>(m_port);
    return m_port != 0;
}

bool Device::waitForLog(const QString& text, int times) {
    return waitUntil([&] { return log().count(text) >= times; });
}

int Device::end() {
    m_client.reset();
    m_process.terminate();
    if (m_process.waitForFinished(EndPatienceMs))
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    kill();
    return -1;
}

Device::ProgramRun Device::failingStart() {
    m_process.setStandardErrorFile(QString());
    m_process.start(QStringLiteral(ORVO_HOST), hostArguments());
    ProgramRun result;
    if (!m_process.waitForFinished(EndPatienceMs)) {
        ADD_FAILURE() << "the device has started";
        kill();
        return result;
    }
    if (m_process.exitStatus() == QProcess::NormalExit)
        result.status = m_process.exitCode();
    result.out = QString::fromUtf8(m_process.readAllStandardOutput());
    result.err = QString::fromUtf8(m_process.readAllStandardError());
    return result;
}

void Device::kill() {
    m_client.reset();
    m_process.kill();
    m_process.waitForFinished();
}

void Device::waitForScan() {
    const bool scanned = waitUntil([this] {
        return m_client->get("/api/value?path=files:scan")
                   .json()
                   .value("value")
                   .toObject()
                   .value("state") == "ready";
    });
    EXPECT_TRUE(scanned);
}

QString Device::stringValue(const QByteArray& path) {
    return m_client->get("/api/value?path=" + path)
        .json()
        .value("value")
        .toObject()
        .value("string")
        .toString();
}

bool Device::waitForValue(const QByteArray& path, const QString& value) {
    return waitUntil([&] { return stringValue(path) == value; });
}

HttpAnswer Device::command(const QByteArray& path, const QByteArray& value) {
    return m_client->post("/api/data", "{\"path\":\"" + path + "\",\"value\":" + value + "}");
}

QJsonObject Device::rows(const QByteArray& path, const QByteArray& roles) {
    return m_client->get("/api/rows?path=" + path + "&roles=" + roles).json();
}

QStringList Device::titles(const QByteArray& path) {
    QStringList result;
    const QJsonArray all = rows(path).value("rows").toArray();
    for (const QJsonValue& row : all)
        result.append(row.toObject().value("title").toString());
    return result;
}

Device::ProgramRun Device::ctl(const QStringList& arguments) {
    QProcess program;
    program.start(QStringLiteral(ORVOCTL), QStringList{"--url", url()} + arguments);
    ProgramRun result;
    if (!program.waitForFinished(PatienceMs))
        return result;
    result.status = program.exitCode();
    result.out = QString::fromUtf8(program.readAllStandardOutput());
    result.err = QString::fromUtf8(program.readAllStandardError());
    return result;
}

QString Device::log() const {
    return QString::fromUtf8(fileText(m_folder.filePath("device.log")));
}

void Device::expectInvariants() const {
    EXPECT_EQ(StoreFile(databaseFile()).brokenRules(), QStringList());
}
