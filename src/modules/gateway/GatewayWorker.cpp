#include "GatewayWorker.h"

#include <QSaveFile>

#include "CMLog.h"
#include "CMRootWorker.h"

namespace {

constexpr int DefaultAnswerTimeoutMs = 30000;
constexpr int DefaultCommentMs = 15000;

log4cplus::Logger& logger() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Gateway"));
    return instance;
}

int positive(const QHash<QString, QVariant>& config, const char* key, int fallback) {
    const int number = OrvoHash::toInt(config.value(QString::fromLatin1(key)), fallback);
    return number > 0 ? number : fallback;
}

EventHistory::Limits limits(const QHash<QString, QVariant>& config) {
    EventHistory::Limits result;
    result.events = positive(config, "gateway/historyEvents", result.events);
    return result;
}

const CMPath& portPath() {
    static const CMPath path{QStringLiteral("gateway:port")};
    return path;
}

} // namespace

GatewayWorker::GatewayWorker(const QHash<QString, QVariant>& config)
    : CMNodesWorker(config, QStringLiteral("Gateway")),
      m_feed(CMRoot()->events(), limits(config),
             positive(config, "gateway/commentMs", DefaultCommentMs)),
      m_pages(config.value(QStringLiteral("gateway/webRoot")).toString()),
      m_artwork(config.value(QStringLiteral("musicDir")).toString()),
      m_router(&m_feed, &m_pages, &m_artwork,
               positive(config, "gateway/answerTimeoutMs", DefaultAnswerTimeoutMs)),
      m_server(
          [this](const std::shared_ptr<HttpExchange>& exchange) { m_router.handle(exchange); }) {}

bool GatewayWorker::start() {
    const QString address =
        config()
            .value(QStringLiteral("gateway/listen"), QStringLiteral("127.0.0.1:8080"))
            .toString();
    QString error;
    if (!m_server.listen(address, &error)) {
        LOG4CPLUS_FATAL(logger(), "cannot listen on " << address << ": " << error);
        return false;
    }
    const QString portFile = config().value(QStringLiteral("gateway/portFile")).toString();
    if (!portFile.isEmpty() && !writePortFile(portFile))
        return false;
    const QString host = address.left(address.lastIndexOf(QLatin1Char(':')));
    LOG4CPLUS_INFO(logger(), "listening on http://" << host << ":" << port());
    return true;
}

bool GatewayWorker::writePortFile(const QString& file) const {
    QSaveFile out(file);
    const QByteArray text = QByteArray::number(port()) + '\n';
    if (out.open(QIODevice::WriteOnly) && out.write(text) == text.size() && out.commit())
        return true;
    LOG4CPLUS_FATAL(logger(), "cannot write the port to " << file << ": " << out.errorString());
    return false;
}

QVariant GatewayWorker::getValue(const CMPath& path) {
    return path == portPath() ? OrvoValue::fromI32(port()).toVariant()
                              : CMNodesWorker::getValue(path);
}
