#pragma once

#include <functional>
#include <optional>

#include "AsyncApi.h"
#include "EventParser.h"

// The device, waited for: each call runs the event loop until the answer is there. What is refused,
// and a device that is not there, is a ClientFailure. Made by main.
class Device {
public:
    static constexpr int LastRow = AsyncApi::LastRow;

    explicit Device(AsyncApi* api) : m_api(api) {}

    AsyncApi* api() const { return m_api; }

    // The path text behind the name of a path function.
    QString path(const QString& function);
    const QJsonObject& paths();

    // The rows `from` to `to`, both included, counted from 0; `to` beyond the end means up to the
    // end.
    RowsAnswer rows(const QString& path, const QStringList& roles, int from = 0, int to = LastRow);
    int rowsCount(const QString& path);
    // Null when there is no list at the path.
    std::optional<RowsAnswer> tryRows(const QString& path, const QStringList& roles, int from = 0,
                                      int to = LastRow);

    // Sends the record to the command behind the name; gives its result.
    QJsonValue command(const QString& function, const QJsonObject& record);
    // Sends any value to any path; gives the whole answer.
    QJsonObject send(const QString& path, const QJsonValue& value);
    // The value at a path in its JSON form.
    QJsonValue value(const QString& path);
    QJsonValue setValue(const QString& path, const QJsonValue& value);

    // Follows the changes, over lost connections too, until the handler gives false. `watched`: the
    // values whose changes come only while a client watches them.
    void follow(const QStringList& watched,
                const std::function<bool(const DeviceEvent& event)>& handler);

    // Throws what the error of an answer with this status says; nothing when there is none.
    void check(const QString& error, int status) const;

private:
    QJsonObject await(const std::function<void(const AsyncApi::Answered& answered)>& begin) const;

    AsyncApi* m_api;
    QJsonObject m_paths;
};
