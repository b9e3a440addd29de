#include "GatewayWorker.h"

#include <sys/resource.h>

#include <QSaveFile>

#include "CMRootWorker.h"
#include "GatewayLog.h"
#include "TokenFile.h"

namespace {

constexpr int DefaultCommentMs = 15000;
// More than any limit of the gateway asks for.
constexpr rlim_t MaxDescriptors = 1 << 30;

// A number from 1 on; a text is read as one, because the command line gives texts.
int positive(const QHash<QString, QVariant>& config, const char* key, int fallback) {
    const QVariant value = config.value(QString::fromLatin1(key));
    bool isNumber = false;
    const int number = value.userType() == QMetaType::QString ? value.toString().toInt(&isNumber)
                                                              : OrvoHash::toInt(value, fallback);
    return number > 0 ? number : fallback;
}

struct LimitRow {
    const char* key;
    int HttpLimits::*member;
};
constexpr LimitRow LimitRows[] = {
    {"gateway/maxConnections", &HttpLimits::connections},
    {"gateway/maxConnectionsPerAddress", &HttpLimits::connectionsPerAddress},
    {"gateway/maxHeadBytes", &HttpLimits::headBytes},
    {"gateway/maxHeaderFields", &HttpLimits::headerFields},
    {"gateway/maxBodyBytes", &HttpLimits::bodyBytes},
    {"gateway/maxBodiesBytes", &HttpLimits::bodiesBytes},
    {"gateway/maxAnswersBytes", &HttpLimits::answersBytes},
    {"gateway/maxFiles", &HttpLimits::files},
    {"gateway/maxEventStreams", &HttpLimits::eventStreams},
    {"gateway/idleTimeoutMs", &HttpLimits::idleMs},
    {"gateway/requestTimeoutMs", &HttpLimits::requestMs},
};

HttpLimits httpLimits(const QHash<QString, QVariant>& config, QString* failure) {
    HttpLimits limits;
    QString error;
    const auto proxies = TrustedProxies::parse(
        config.value(QStringLiteral("gateway/trustedProxies")).toString(), &error);
    if (!proxies)
        *failure = QStringLiteral("gateway/trustedProxies: %1").arg(error);
    limits.proxies = proxies.value_or(TrustedProxies());
    for (const LimitRow& row : LimitRows)
        limits.*row.member = positive(config, row.key, limits.*row.member);
    rlimit descriptors{};
    if (::getrlimit(RLIMIT_NOFILE, &descriptors) == 0 &&
        limits.fitInto(long(qMin<rlim_t>(descriptors.rlim_cur, MaxDescriptors))))
        LOG4CPLUS_WARN(gatewayLog(),
                       "only " << descriptors.rlim_cur << " files can be open: at most "
                               << limits.connections << " connections, " << limits.eventStreams
                               << " event streams and " << limits.files << " files that are sent");
    return limits;
}

ApiLimits apiLimits(const QHash<QString, QVariant>& config) {
    ApiLimits limits;
    limits.answerMs = positive(config, "gateway/answerTimeoutMs", limits.answerMs);
    limits.answerBytes = positive(config, "gateway/maxAnswerBytes", limits.answerBytes);
    limits.bodyValues = positive(config, "gateway/maxBodyValues", limits.bodyValues);
    return limits;
}

EventHistory::Limits historyLimits(const QHash<QString, QVariant>& config) {
    EventHistory::Limits result;
    result.events = positive(config, "gateway/historyEvents", result.events);
    return result;
}

AccessGuard makeGuard(const QHash<QString, QVariant>& config, QString* failure) {
    const QString tokenFile = config.value(QStringLiteral("gateway/tokenFile")).toString();
    WrongTokens::Limits limits;
    limits.attempts = positive(config, "gateway/maxWrongTokens", limits.attempts);
    limits.windowMs = positive(config, "gateway/wrongTokensMs", limits.windowMs);
    return AccessGuard(config.value(QStringLiteral("gateway/hosts"))
                           .toString()
                           .split(QLatin1Char(','), Qt::SkipEmptyParts),
                       tokenFile.isEmpty() ? QByteArray() : TokenFile::read(tokenFile, failure),
                       limits);
}

const CMPath& portPath() {
    static const CMPath path{QStringLiteral("gateway:port")};
    return path;
}

bool writePort(quint16 port, const QString& file, QString* error) {
    QSaveFile out(file);
    const QByteArray text = QByteArray::number(port) + '\n';
    if (out.open(QIODevice::WriteOnly) && out.write(text) == text.size() && out.commit())
        return true;
    *error = out.errorString();
    return false;
}

} // namespace

GatewayWorker::GatewayWorker(const QHash<QString, QVariant>& config)
    : CMNodesWorker(config, QStringLiteral("Gateway")),
      m_limits(httpLimits(config, &m_failure)),
      m_hub(CMRoot()->events(), historyLimits(config),
            positive(config, "gateway/commentMs", DefaultCommentMs), m_limits.eventStreams),
      m_pages(config.value(QStringLiteral("gateway/webRoot")).toString()),
      m_artwork(config.value(QStringLiteral("musicDir")).toString(),
                config.value(QStringLiteral("dataDir")).toString()),
      m_guard(makeGuard(config, &m_failure)),
      m_router(&m_hub, &m_pages, &m_artwork, &m_guard, apiLimits(config)),
      m_server(
          m_limits, [this](const HttpRequest& request) { return admit(request); },
          [this](const std::shared_ptr<HttpExchange>& exchange) {
              Q_EMIT CMRoot()->requestBegins();
              m_router.handle(exchange);
          }) {}

HttpServer::Admission GatewayWorker::admit(const HttpRequest& request) {
    return {m_guard.refusal(request), qMin(ApiRouter::maxBody(request), m_limits.bodyBytes)};
}

QString GatewayWorker::text(const char* key) const {
    return config().value(QString::fromLatin1(key)).toString();
}

bool GatewayWorker::start() {
    // A token file that cannot be used never means "no token".
    if (!m_failure.isEmpty())
        return fail(m_failure);
    const QString address =
        config()
            .value(QStringLiteral("gateway/listen"), QStringLiteral("127.0.0.1:8080"))
            .toString();
    QString error;
    if (!m_server.listen(address, !m_guard.wantsToken(), &error))
        return fail(QStringLiteral("cannot listen on %1: %2").arg(address, error));
    m_guard.setPort(port());
    const QString portFile = text("gateway/portFile");
    if (!portFile.isEmpty() && !writePort(port(), portFile, &error))
        return fail(QStringLiteral("cannot write the port to %1: %2").arg(portFile, error));
    const QString host = address.left(address.lastIndexOf(QLatin1Char(':')));
    LOG4CPLUS_INFO(gatewayLog(), "listening on http://" << host << ":" << port());
    return true;
}

bool GatewayWorker::fail(const QString& reason) {
    m_failure = reason;
    LOG4CPLUS_FATAL(gatewayLog(), reason);
    return false;
}

// What the device is called.
QString GatewayWorker::name() const {
    const QString given = text("gateway/name");
    return given.isEmpty() ? QSysInfo::machineHostName() : given;
}

QVariant GatewayWorker::getValue(const CMPath& path) {
    static const CMPath namePath{QStringLiteral("gateway:name")};
    if (path == namePath)
        return OrvoValue::fromString(name()).toVariant();
    return path == portPath() ? OrvoValue::fromI32(port()).toVariant()
                              : CMNodesWorker::getValue(path);
}
