#include "ApiClient.h"

#include <memory>

#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QNetworkReply>

#include "ClientFailure.h"

namespace {
// Longer than the device itself waits for a module's answer.
constexpr int PatienceMs = 60000;
// In a stream of events the device shows every 15 s that it is there.
constexpr int SilenceMs = 45000;
constexpr int NotFound = 404;
constexpr int Refused = 422;
} // namespace

ApiClient::ApiClient(const QUrl& url, const QByteArray& token) : m_url(url), m_token(token) {
    m_manager.setProxy(QNetworkProxy::NoProxy);
}

QUrlQuery ApiClient::query(const QVector<QPair<QString, QString>>& items) {
    QUrlQuery result;
    for (const auto& item : items)
        result.addQueryItem(item.first, QString::fromLatin1(QUrl::toPercentEncoding(item.second)));
    return result;
}

QNetworkRequest ApiClient::request(const QString& resource, const QUrlQuery& query) const {
    QUrl url = m_url;
    url.setPath(m_url.path() + resource);
    url.setQuery(query);
    QNetworkRequest request(url);
    if (!m_token.isEmpty())
        request.setRawHeader("Authorization", "Bearer " + m_token);
    return request;
}

QJsonObject ApiClient::get(const QString& resource, const QUrlQuery& query) {
    return send("GET", resource, query, {});
}

std::optional<QJsonObject> ApiClient::tryGet(const QString& resource, const QUrlQuery& query) {
    int refused = 0;
    const QJsonObject answer = send("GET", resource, query, {}, &refused);
    return refused ? std::nullopt : std::optional(answer);
}

QNetworkReply* ApiClient::openEvents(const QStringList& watched, const QByteArray& lastId) {
    QVector<QPair<QString, QString>> items;
    for (const QString& path : watched)
        items.append({QStringLiteral("watch"), path});
    QNetworkRequest outgoing = request(QStringLiteral("/api/events"), query(items));
    outgoing.setRawHeader("Accept", "text/event-stream");
    outgoing.setTransferTimeout(SilenceMs);
    if (!lastId.isEmpty())
        outgoing.setRawHeader("Last-Event-ID", lastId);
    return m_manager.get(outgoing);
}

QJsonObject ApiClient::send(const QByteArray& method, const QString& resource,
                            const QUrlQuery& query, const QJsonObject& body, int* refusedStatus) {
    QNetworkRequest outgoing = request(resource, query);
    outgoing.setTransferTimeout(PatienceMs);
    QByteArray data;
    if (method != "GET") {
        outgoing.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        data = QJsonDocument(body).toJson(QJsonDocument::Compact);
    }
    const std::unique_ptr<QNetworkReply> reply(m_manager.sendCustomRequest(outgoing, method, data));
    if (!reply->isFinished()) {
        QEventLoop loop;
        QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
    }
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 0)
        throw ClientFailure::refused(
            QStringLiteral("no device at %1: %2").arg(m_url.toString(), reply->errorString()));
    const QJsonObject answer = QJsonDocument::fromJson(reply->readAll()).object();
    if (status == HttpOk)
        return answer;
    if (refusedStatus && (status == NotFound || status == Refused)) {
        *refusedStatus = status;
        return {};
    }
    throw ClientFailure::refused(refusal(status, answer));
}

QString ApiClient::refusal(int status, const QJsonObject& answer) const {
    const QString message = answer.value(QStringLiteral("error"))
                                .toObject()
                                .value(QStringLiteral("message"))
                                .toString();
    return message.isEmpty()
               ? QStringLiteral("%1 answers with status %2").arg(m_url.toString()).arg(status)
               : message;
}
