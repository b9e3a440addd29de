#include <stdexcept>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
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
    ~ProbeWorker() override { report(QStringLiteral("destroy " PROBE_NAME)); }
};

} // namespace

extern "C" Q_DECL_EXPORT CMAbstractWorker* worker_create(QHash<QString, QVariant> config) {
    const QByteArray mode = qgetenv("ORVO_PROBE");
    if (mode == "null")
        return nullptr;
    if (mode == "throw")
        throw std::runtime_error("no such luck");
    if (mode == "fatal")
        cmFatal("the probe cannot go on");
    if (mode == "forge")
        LOG4CPLUS_INFO(logger(), "one\ntwo \x1b[31mred\tend");
    LOG4CPLUS_DEBUG(logger(), "a debug line");
    auto* worker = new ProbeWorker(config);
    if (mode == "write")
        QTimer::singleShot(0, worker, [] {
            for (int i = 0;; ++i)
                CMRoot()->setValue(OrvoPlayListsSettingsDataBaseItemsLimitPath(), i, CMVoidReply());
        });
    return worker;
}
