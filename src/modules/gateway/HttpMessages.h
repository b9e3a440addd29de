#pragma once

#include <optional>

#include <QByteArray>
#include <QString>
#include <QVector>

// One request as it came in: the path and the query are percent-decoded, the body is complete.
struct HttpRequest {
    QByteArray method;
    QString path;
    QVector<QPair<QString, QString>> query;
    QByteArray lastEventId;
    QByteArray ifNoneMatch;
    QByteArray body;
    // The path or the query holds bytes that are no UTF-8.
    bool illegalText = false;
    // More than HttpServer::MaxBody arrived; `body` is empty then.
    bool bodyTooLarge = false;

    // The first parameter of that name.
    std::optional<QString> parameter(const QString& name) const {
        for (const auto& pair : query) {
            if (pair.first == name)
                return pair.second;
        }
        return std::nullopt;
    }
};

struct HttpResponse {
    int status = 200;
    QByteArray contentType;
    QByteArray body;
    QVector<QPair<QByteArray, QByteArray>> headers;
};

// The body of an answer that has no end. Belongs to the connection that reads it and is deleted
// with it.
class HttpBodySource {
public:
    virtual ~HttpBodySource() = default;
    // Copies up to `size` bytes to `buffer` and returns how many. With 0 the connection rests until
    // the exchange's wake() is called.
    virtual qint64 read(char* buffer, qint64 size) = 0;
};
