#include "AsyncApi.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QNetworkReply>

namespace {

// Longer than the device itself waits for a module's answer.
constexpr int RequestTimeoutMs = 60000;
// In a stream of events the device shows every 15 s that it is there.
constexpr int SilenceMs = 45000;
constexpr int PageSize = 1000;

const QStringList& browseRoles() {
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

// A query whose values are kept byte for byte, "+" and "%" included.
QUrlQuery queryOf(const QVector<QPair<QString, QString>>& items) {
    QUrlQuery result;
    for (const auto& item : items)
        result.addQueryItem(item.first, QString::fromLatin1(QUrl::toPercentEncoding(item.second)));
    return result;
}

RowsAnswer rowsOf(const ApiAnswer& answer) {
    RowsAnswer result;
    result.error = answer.error;
    result.status = answer.status;
    result.title = answer.body.value(QStringLiteral("title")).toString();
    result.count = qMax(0, answer.body.value(QStringLiteral("rowsCount")).toInt());
    result.roles = answer.body.value(QStringLiteral("roles")).toObject();
    result.revision = qint64(answer.body.value(QStringLiteral("revision")).toDouble(-1));
    result.resumeIndex = answer.body.value(QStringLiteral("resumeIndex")).toInt(-1);
    const QJsonArray rows = answer.body.value(QStringLiteral("rows")).toArray();
    result.rows.reserve(rows.size());
    for (const QJsonValue& row : rows)
        result.rows.append(row.toObject());
    return result;
}

} // namespace

AsyncApi::AsyncApi(const Connection& connection) : m_connection(connection) {
    m_manager.setProxy(QNetworkProxy::NoProxy);
}

QNetworkRequest AsyncApi::request(const QString& resource, const QUrlQuery& query) const {
    QUrl url = m_connection.url;
    url.setPath(url.path() + resource);
    url.setQuery(query);
    QNetworkRequest request(url);
    if (!m_connection.token.isEmpty())
        request.setRawHeader("Authorization", "Bearer " + m_connection.token);
    return request;
}

void AsyncApi::send(const QByteArray& method, const QString& resource, const QUrlQuery& query,
                    const QJsonObject& body, const Answered& answered) {
    QNetworkRequest outgoing = request(resource, query);
    outgoing.setTransferTimeout(RequestTimeoutMs);
    QByteArray data;
    if (method != "GET") {
        outgoing.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        data = QJsonDocument(body).toJson(QJsonDocument::Compact);
    }
    QNetworkReply* reply = m_manager.sendCustomRequest(outgoing, method, data);
    connect(reply, &QNetworkReply::finished, this, [this, reply, answered] {
        reply->deleteLater();
        ApiAnswer answer;
        answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (answer.status == 0) {
            m_reason = reply->errorString();
            answer.error = QStringLiteral("The device cannot be reached.");
        } else {
            answer.body = QJsonDocument::fromJson(reply->readAll()).object();
            if (answer.status != HttpOk)
                answer.error = refusal(answer.status, answer.body);
        }
        Q_EMIT reached(answer.status != 0);
        answered(answer);
    });
}

// Why it was refused, in the device's own words where it has some.
QString AsyncApi::refusal(int status, const QJsonObject& answer) const {
    const QString message = answer.value(QStringLiteral("error"))
                                .toObject()
                                .value(QStringLiteral("message"))
                                .toString();
    return message.isEmpty()
               ? QStringLiteral("%1 answers with status %2").arg(url().toString()).arg(status)
               : message;
}

QString AsyncApi::unreachable() const {
    return QStringLiteral("no device at %1: %2").arg(url().toString(), m_reason);
}

void AsyncApi::get(const QString& resource, const QUrlQuery& query, const Answered& answered) {
    send("GET", resource, query, {}, answered);
}

void AsyncApi::post(const QString& path, const QJsonValue& value, const Answered& answered) {
    send("POST", QStringLiteral("/api/data"), {},
         {{QStringLiteral("path"), path}, {QStringLiteral("value"), value}}, answered);
}

void AsyncApi::value(const QString& path, const Answered& answered) {
    get(QStringLiteral("/api/value"), queryOf({{QStringLiteral("path"), path}}), answered);
}

void AsyncApi::setValue(const QString& path, const QJsonValue& value, const Answered& answered) {
    send("PUT", QStringLiteral("/api/value"), {},
         {{QStringLiteral("path"), path}, {QStringLiteral("value"), value}}, answered);
}

void AsyncApi::readPage(const QString& path, const QStringList& roles, int from, int to,
                        const Done& done) {
    get(QStringLiteral("/api/rows"),
        queryOf({{QStringLiteral("path"), path},
                 {QStringLiteral("from"), QString::number(from)},
                 {QStringLiteral("to"), QString::number(to)},
                 {QStringLiteral("roles"), roles.join(QLatin1Char(','))}}),
        [done](const ApiAnswer& answer) { done(rowsOf(answer)); });
}

void AsyncApi::read(const QString& path, int from, int to, const Done& done) {
    readPage(path, browseRoles(), from, to, done);
}

void AsyncApi::readAll(const QString& path, const QStringList& roles, int from, int to,
                       const Done& done) {
    readOn(path, roles, from, to, nullptr, done);
}

void AsyncApi::readOn(const QString& path, const QStringList& roles, int from, int to,
                      const std::shared_ptr<RowsAnswer>& before, const Done& done) {
    const int last = int(qMin<qint64>(to, qint64(from) + PageSize - 1));
    readPage(path, roles, from, last, [=, this](const RowsAnswer& page) {
        const auto all = before ? before : std::make_shared<RowsAnswer>(page);
        all->error = page.error;
        all->status = page.status;
        // A list gives its last row where the range lies behind its end.
        if (from > 0 && from >= page.count)
            all->rows = before ? all->rows : QVector<QJsonObject>();
        else if (before)
            all->rows += page.rows;
        const int next = from + page.rows.size();
        if (page.rows.isEmpty() || next > qMin(to, all->count - 1))
            done(*all);
        else
            readOn(path, roles, next, to, all, done);
    });
}

QNetworkReply* AsyncApi::openEvents(const QStringList& watched, const QByteArray& lastId) {
    QVector<QPair<QString, QString>> items;
    for (const QString& path : watched)
        items.append({QStringLiteral("watch"), path});
    QNetworkRequest outgoing = request(QStringLiteral("/api/events"), queryOf(items));
    outgoing.setRawHeader("Accept", "text/event-stream");
    outgoing.setTransferTimeout(SilenceMs);
    if (!lastId.isEmpty())
        outgoing.setRawHeader("Last-Event-ID", lastId);
    return m_manager.get(outgoing);
}
