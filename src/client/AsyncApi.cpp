#include "AsyncApi.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkReply>

namespace {

// Longer than the device itself waits for a module's answer.
constexpr int PatienceMs = 60000;

const QStringList& rowRoles() {
    static const QStringList roles = {
        QStringLiteral("title"),
        QStringLiteral("path"),
        QStringLiteral("type"),
        QStringLiteral("containerType"),
        QStringLiteral("containerPlayable"),
        QStringLiteral("value"),
        QStringLiteral("modifiable"),
        QStringLiteral("id"),
        QStringLiteral("context"),
        QStringLiteral("mediaData"),
    };
    return roles;
}

} // namespace

void AsyncApi::await(QNetworkReply* reply, const Answered& done) {
    connect(reply, &QNetworkReply::finished, this, [this, reply, done] {
        reply->deleteLater();
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        const QJsonObject answer = QJsonDocument::fromJson(reply->readAll()).object();
        Q_EMIT reached(status != 0);
        if (status == 0)
            done({}, QStringLiteral("The device cannot be reached."), 0);
        else
            done(answer, status == HttpOk ? QString() : m_client->refusal(status, answer), status);
    });
}

void AsyncApi::get(const QString& resource, const QUrlQuery& query, const Answered& done) {
    QNetworkRequest request = m_client->request(resource, query);
    request.setTransferTimeout(PatienceMs);
    await(m_client->manager().get(request), done);
}

void AsyncApi::post(const QString& path, const QJsonObject& value, const Answered& done) {
    QNetworkRequest request = m_client->request(QStringLiteral("/api/data"));
    request.setTransferTimeout(PatienceMs);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    const QJsonObject body{{QStringLiteral("path"), path}, {QStringLiteral("value"), value}};
    await(m_client->manager().post(request, QJsonDocument(body).toJson(QJsonDocument::Compact)),
          done);
}

void AsyncApi::value(const QString& path,
                     const std::function<void(const QJsonObject& value)>& done) {
    get(QStringLiteral("/api/value"), ApiClient::query({{QStringLiteral("path"), path}}),
        [done](const QJsonObject& answer, const QString& error, int) {
            if (error.isEmpty())
                done(answer.value(QStringLiteral("value")).toObject());
        });
}

void AsyncApi::read(const QString& path, int from, int to, const Done& done) {
    const QUrlQuery query =
        ApiClient::query({{QStringLiteral("path"), path},
                          {QStringLiteral("from"), QString::number(from)},
                          {QStringLiteral("to"), QString::number(to)},
                          {QStringLiteral("roles"), rowRoles().join(QLatin1Char(','))}});
    get(QStringLiteral("/api/rows"), query,
        [done](const QJsonObject& answer, const QString& error, int status) {
            RowsAnswer result;
            result.error = error;
            result.status = status;
            result.title = answer.value(QStringLiteral("title")).toString();
            result.count = qMax(0, answer.value(QStringLiteral("rowsCount")).toInt());
            result.roles = answer.value(QStringLiteral("roles")).toObject();
            const QJsonArray rows = answer.value(QStringLiteral("rows")).toArray();
            result.rows.reserve(rows.size());
            for (const QJsonValue& row : rows)
                result.rows.append(row.toObject());
            done(result);
        });
}
