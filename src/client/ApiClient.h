#pragma once

#include <optional>

#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QUrl>
#include <QUrlQuery>

constexpr int HttpOk = 200;

// Requests to the device's HTTP interface, one after the other, each waited for. What is refused,
// and a device that is not there, is a ClientFailure.
class ApiClient {
public:
    // `token`: what the device asks for; empty for one that asks for nothing.
    explicit ApiClient(const QUrl& url, const QByteArray& token = {});

    QJsonObject get(const QString& resource, const QUrlQuery& query = {});
    // Null when the device says that there is nothing at that path, or that it does not do that.
    std::optional<QJsonObject> tryGet(const QString& resource, const QUrlQuery& query);
    QJsonObject post(const QString& resource, const QJsonObject& body) {
        return send("POST", resource, {}, body);
    }
    QJsonObject put(const QString& resource, const QJsonObject& body) {
        return send("PUT", resource, {}, body);
    }

    // The stream of events from the one after `lastId` on, or from now on; the caller deletes it.
    // `watched`: the values whose changes come only while somebody watches.
    QNetworkReply* openEvents(const QStringList& watched, const QByteArray& lastId);

    // Why it was refused, in the device's own words where it has some.
    QString refusal(int status, const QJsonObject& answer) const;

    QNetworkRequest request(const QString& resource, const QUrlQuery& query = {}) const;
    QNetworkAccessManager& manager() { return m_manager; }
    const QUrl& url() const { return m_url; }

    // A query whose values are kept byte for byte, "+" and "%" included.
    static QUrlQuery query(const QVector<QPair<QString, QString>>& items);

private:
    QJsonObject send(const QByteArray& method, const QString& resource, const QUrlQuery& query,
                     const QJsonObject& body, int* refusedStatus = nullptr);

    QUrl m_url;
    QByteArray m_token;
    QNetworkAccessManager m_manager;
};
