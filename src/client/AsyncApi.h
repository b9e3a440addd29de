#pragma once

#include <memory>

#include <QNetworkAccessManager>
#include <QObject>
#include <QStringList>
#include <QUrlQuery>

#include "Connection.h"
#include "RowReader.h"

constexpr int HttpOk = 200;
constexpr int HttpNotFound = 404;
constexpr int HttpRefused = 422;

// What the device answered to a request.
struct ApiAnswer {
    int status = 0; // of HTTP; 0 stands for a device that could not be reached
    QString error;  // empty when all went well, otherwise the words to show
    QJsonObject body;
};

// Requests to the device's HTTP interface. Each is answered later; those still under way when this
// goes are never answered. On the thread of the event loop.
class AsyncApi : public QObject, public RowReader {
    Q_OBJECT
public:
    using Answered = std::function<void(const ApiAnswer& answer)>;

    // The index behind every list's end.
    static constexpr int LastRow = 0x7FFFFFFF;

    explicit AsyncApi(const Connection& connection);

    void get(const QString& resource, const QUrlQuery& query, const Answered& answered);
    // Runs a command, or acts on a node.
    void post(const QString& path, const QJsonValue& value, const Answered& answered);
    // The value at a path in its JSON form is the "value" of the answer.
    void value(const QString& path, const Answered& answered);
    void setValue(const QString& path, const QJsonValue& value, const Answered& answered);

    // A page of a list with everything that a browser shows of a row.
    void read(const QString& path, int from, int to, const Done& done) override;
    // The rows `from` to `to`, both included, however many: page by page. `to` beyond the end means
    // up to the end.
    void readAll(const QString& path, const QStringList& roles, int from, int to, const Done& done);

    // The stream of events from the one after `lastId` on, or from now on; the caller deletes it.
    // `watched`: the values whose changes come only while a client watches them.
    QNetworkReply* openEvents(const QStringList& watched, const QByteArray& lastId);

    // Where the device was last looked for in vain, and why: "no device at URL: reason".
    QString unreachable() const;
    const QUrl& url() const { return m_connection.url; }

Q_SIGNALS:
    // After each request: whether there was a device.
    void reached(bool isThere);

private:
    void send(const QByteArray& method, const QString& resource, const QUrlQuery& query,
              const QJsonObject& body, const Answered& answered);
    void readPage(const QString& path, const QStringList& roles, int from, int to,
                  const Done& done);
    void readOn(const QString& path, const QStringList& roles, int from, int to,
                const std::shared_ptr<RowsAnswer>& before, const Done& done);
    QNetworkRequest request(const QString& resource, const QUrlQuery& query) const;
    QString refusal(int status, const QJsonObject& answer) const;

    Connection m_connection;
    QString m_reason;
    QNetworkAccessManager m_manager;
};
