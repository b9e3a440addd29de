#pragma once

#include <memory>
#include <optional>

#include <QByteArray>
#include <QByteArrayList>
#include <QFile>
#include <QString>
#include <QVector>

#include "IpAddress.h"

// One request as it came in: the path and the query are percent-decoded, the body is complete.
struct HttpRequest {
    QByteArray method;
    QString path;
    QVector<QPair<QString, QString>> query;
    QByteArray lastEventId;
    QByteArray host;
    int hostCount = 0;
    QByteArrayList origins;
    QByteArray fetchSite;
    QByteArray fetchMode;
    QByteArray fetchDest;
    QByteArray authorization;
    QByteArray cookie;
    QByteArrayList forwardedFor;
    // Whose request it is: the other end of the connection, or whom a trusted proxy names.
    IpAddress client;
    IpAddress localAddress; // that the client reached
    int headerFields = 0;
    QByteArray ifNoneMatch;
    QByteArray body;
    // The path or the query holds bytes that are no UTF-8, or a zero byte.
    bool illegalText = false;
    // The head could be read in two ways.
    bool headIsUnclear = false;
    // More header fields, or more bytes of them and the request line, than the server takes.
    bool headTooLarge = false;

    // Everything else is a file of the page.
    bool isForApi() const { return path.startsWith(QLatin1String("/api/")); }

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
    QVector<QPair<QByteArray, QByteArray>> headers = {};
    // Instead of a body the first `fileSize` bytes of an open file, read when the client takes
    // them.
    std::shared_ptr<QFile> file = nullptr;
    qint64 fileSize = 0;
    // The hash of a style sheet that stands in the page itself, as a content-security policy names
    // it.
    QByteArray ownStyle = {};
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
