#pragma once

#include <QObject>

#include "ApiClient.h"
#include "RowReader.h"

// Requests to the device that nobody waits for. Each is answered later, with an empty error or with
// the words to show; those still under way when this goes are never answered. Owned by the browser.
class AsyncApi : public QObject, public RowReader {
    Q_OBJECT
public:
    // `answer` is the body; `status` 0 stands for a device that could not be reached.
    using Answered =
        std::function<void(const QJsonObject& answer, const QString& error, int status)>;

    explicit AsyncApi(ApiClient* client) : m_client(client) {}

    void read(const QString& path, int from, int to, const Done& done) override;
    void get(const QString& resource, const QUrlQuery& query, const Answered& done);
    // Runs a command, or acts on a node.
    void post(const QString& path, const QJsonObject& value, const Answered& done);
    // The value at a path in its JSON form.
    void value(const QString& path, const std::function<void(const QJsonObject& value)>& done);

Q_SIGNALS:
    // After each request: whether there was a device.
    void reached(bool isThere);

private:
    void await(QNetworkReply* reply, const Answered& done);

    ApiClient* m_client;
};
