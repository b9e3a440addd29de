#pragma once

#include <QJsonObject>
#include <QVector>

#include "ApiClient.h"

// Part of a list, as the device shows it.
struct DeviceRows {
    QString title;
    int count = 0;        // of the whole list
    QJsonObject roles;    // the list's own
    qint64 revision = -1; // of a list of tracks, when reading began
    int lastPlayed = -1;  // of a list of tracks: the index of its last played one
    QVector<QJsonObject> rows;
};

// The device in terms of lists, commands and values. Failures are ClientFailure.
class Device {
public:
    // Rows are fetched in pages of this many.
    static constexpr int PageSize = 1000;

    explicit Device(ApiClient* client) : m_client(client) {}

    // The path text behind the name of a path function.
    QString path(const QString& function);
    const QJsonObject& paths();

    // The rows `from` to `to`, both included, counted from 0; `to` beyond the end means up to the
    // end.
    DeviceRows rows(const QString& path, const QStringList& roles, int from = 0, int to = LastRow);
    int rowsCount(const QString& path);
    // Null when there is no list at the path.
    std::optional<DeviceRows> tryRows(const QString& path, const QStringList& roles, int from = 0,
                                      int to = LastRow);

    // Sends the record to the command behind the name; gives its result.
    QJsonValue command(const QString& function, const QJsonObject& record);
    // The value at a path in its JSON form.
    QJsonValue value(const QString& path);

    ApiClient& client() { return *m_client; }

    static constexpr int LastRow = 0x7FFFFFFF;

private:
    static QUrlQuery rowsQuery(const QString& path, const QStringList& roles, int from, int to);
    DeviceRows complete(const QString& path, const QStringList& roles, int from, int to,
                        const QJsonObject& firstPage);

    ApiClient* m_client;
    QJsonObject m_paths;
};
