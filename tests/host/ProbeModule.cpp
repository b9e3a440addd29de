#include <stdexcept>
#include <sys/resource.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>
#include <QTimer>

#include "CMLog.h"
#include "CMRootWorker.h"

// A module that does what the environment variable ORVO_PROBE says, and writes what happens to it
// to probe.log in the working directory. Built twice, under two names.
namespace {

void report(const QString& line) {
    QFile file(QStringLiteral("probe.log"));
    if (file.open(QIODevice::Append))
        file.write(line.toUtf8() + '\n');
}

log4cplus::Logger& logger() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Probe"));
    return instance;
}

class ProbeWorker : public CMNodesWorker {
public:
    explicit ProbeWorker(const QHash<QString, QVariant>& config)
        : CMNodesWorker(config, QStringLiteral(PROBE_NAME)) {
        report(QStringLiteral("create " PROBE_NAME));
        QFile file(QStringLiteral("config.json"));
        if (file.open(QIODevice::WriteOnly))
            file.write(QJsonDocument(QJsonObject::fromVariantHash(config)).toJson());
        const QVariant visible = CMRoot()->getValue(OrvoPlayListSettingsPlayqueueVisibilityPath());
        report(QStringLiteral("queue visible: ") + (OrvoValue(visible).bool_() ? "yes" : "no"));
    }
    ~ProbeWorker() override {
        report(QStringLiteral("destroy " PROBE_NAME));
        while (qgetenv("ORVO_PROBE") == "hang")
            QThread::sleep(1);
    }
};

// One setting after the other, for ever.
void writeSettings(QObject* parent) {
    auto* timer = new QTimer(parent);
    QObject::connect(timer, &QTimer::timeout, parent, [number = 0]() mutable {
        CMRoot()->setValue(OrvoPlayListsSettingsDataBaseItemsLimitPath(), ++number, CMVoidReply());
    });
    timer->start(0);
}

// More than a log is to have of one request, then one line of the next.
void logAlike(int lines) {
    for (int i = 1; i <= lines; ++i)
        LOG4CPLUS_WARN(logger(), "alike " << i);
    QTimer::singleShot(0, [] { LOG4CPLUS_WARN(logger(), "the next turn"); });
}

void logLongName(int length) {
    const QString name(length, QChar(0xe4));
    LOG4CPLUS_INFO(logger(), "the name is " << name << " and no other");
    LOG4CPLUS_INFO(logger(), "the value is " << QVariant(QVariantList{1, name}));
    qWarning("%s", qUtf8Printable(name));
}

// Three requests in one turn of the event loop.
void logThreeRequests() {
    for (int request = 1; request <= 3; ++request) {
        Q_EMIT CMRoot()->requestBegins();
        for (int i = 1; i <= 21; ++i)
            LOG4CPLUS_WARN(logger(), "alike " << i);
    }
}

// A setting is stored and a line logged while no file can be opened, then again.
void runOutOfDescriptors() {
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    const rlimit none = {0, files.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const CMVoidReply without;
    CMRoot()->setValue(OrvoPlayListsSettingsDataBaseItemsLimitPath(), 5, without);
    LOG4CPLUS_INFO(logger(), "without descriptors");
    setrlimit(RLIMIT_NOFILE, &files);
    const CMVoidReply with;
    CMRoot()->setValue(OrvoPlayListSettingsDataBaseVacuumPath(), true, with);
    report(QStringLiteral("without: ") + without.error().message().toString());
    report(QStringLiteral("with: ") + with.error().message().toString());
}

} // namespace

extern "C" Q_DECL_EXPORT CMAbstractWorker* worker_create(QHash<QString, QVariant> config) {
    const QByteArray mode = qgetenv("ORVO_PROBE");
    if (mode == "null")
        return nullptr;
    if (mode == "throw")
        throw std::runtime_error("no such luck");
    if (mode == "fatal")
        cmFatal("the probe cannot go on");
    if (mode == "forge") {
        LOG4CPLUS_INFO(logger(), "one\ntwo \x1b[31mred\tend");
        qWarning("a word from Qt");
    }
    if (mode == "slow") {
        LOG4CPLUS_INFO(logger(), "the probe takes its time");
        QThread::msleep(300);
    }
    LOG4CPLUS_DEBUG(logger(), "a debug line");
    auto* worker = new ProbeWorker(config);
    if (mode == "write")
        writeSettings(worker);
    if (mode == "alike")
        QTimer::singleShot(0, [] { logAlike(600'000); });
    if (mode == "some")
        QTimer::singleShot(0, [] { logAlike(21); });
    if (mode == "requests")
        QTimer::singleShot(0, logThreeRequests);
    if (mode == "flood")
        QTimer::singleShot(0, [] { logAlike(20'000); });
    if (mode == "huge")
        logLongName(8'000'000);
    if (mode == "long")
        logLongName(10'000);
    if (mode == "descriptors")
        runOutOfDescriptors();
    return worker;
}
