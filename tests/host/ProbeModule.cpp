#include <stdexcept>

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
    return worker;
}
