#include "Device.h"

#include <QJsonArray>

#include "ClientFailure.h"

namespace {
const QString RowsResource = QStringLiteral("/api/rows");

int lastOfPage(int from, int to) {
    return int(qMin<qint64>(to, qint64(from) + Device::PageSize - 1));
}
} // namespace

const QJsonObject& Device::paths() {
    if (m_paths.isEmpty())
        m_paths = m_client->get(QStringLiteral("/api/paths"));
    return m_paths;
}

QString Device::path(const QString& function) {
    const QString text = paths().value(function).toString();
    if (text.isEmpty())
        throw ClientFailure::refused(QStringLiteral("this device has no %1").arg(function));
    return text;
}

QUrlQuery Device::rowsQuery(const QString& path, const QStringList& roles, int from, int to) {
    return ApiClient::query({{QStringLiteral("path"), path},
                             {QStringLiteral("from"), QString::number(from)},
                             {QStringLiteral("to"), QString::number(to)},
                             {QStringLiteral("roles"), roles.join(QLatin1Char(','))}});
}

DeviceRows Device::rows(const QString& path, const QStringList& roles, int from, int to) {
    return complete(
        path, roles, from, to,
        m_client->get(RowsResource, rowsQuery(path, roles, from, lastOfPage(from, to))));
}

std::optional<DeviceRows> Device::tryRows(const QString& path, const QStringList& roles, int from,
                                          int to) {
    const auto page =
        m_client->tryGet(RowsResource, rowsQuery(path, roles, from, lastOfPage(from, to)));
    return page ? std::optional(complete(path, roles, from, to, *page)) : std::nullopt;
}

DeviceRows Device::complete(const QString& path, const QStringList& roles, int from, int to,
                            const QJsonObject& firstPage) {
    DeviceRows result;
    result.title = firstPage.value(QStringLiteral("title")).toString();
    result.roles = firstPage.value(QStringLiteral("roles")).toObject();
    result.count = firstPage.value(QStringLiteral("rowsCount")).toInt();
    result.revision = qint64(firstPage.value(QStringLiteral("revision")).toDouble(-1));
    result.lastPlayed = firstPage.value(QStringLiteral("lastPlayedIndex")).toInt(-1);
    // A list gives its last row where the range lies behind its end.
    if (from > 0 && from >= result.count)
        return result;
    QJsonObject page = firstPage;
    int next = from;
    while (true) {
        const QJsonArray rows = page.value(QStringLiteral("rows")).toArray();
        for (const QJsonValue& row : rows)
            result.rows.append(row.toObject());
        next += rows.size();
        if (rows.isEmpty() || next > qMin(to, result.count - 1))
            return result;
        page = m_client->get(RowsResource, rowsQuery(path, roles, next, lastOfPage(next, to)));
    }
}

int Device::rowsCount(const QString& path) {
    return m_client->get(RowsResource, rowsQuery(path, {QStringLiteral("type")}, 0, 0))
        .value(QStringLiteral("rowsCount"))
        .toInt();
}

QJsonValue Device::command(const QString& function, const QJsonObject& record) {
    return m_client
        ->post(QStringLiteral("/api/data"),
               {{QStringLiteral("path"), path(function)}, {QStringLiteral("value"), record}})
        .value(QStringLiteral("result"));
}

QJsonValue Device::value(const QString& path) {
    return m_client
        ->get(QStringLiteral("/api/value"), ApiClient::query({{QStringLiteral("path"), path}}))
        .value(QStringLiteral("value"));
}
