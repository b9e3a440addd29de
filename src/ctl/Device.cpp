#include "Device.h"

#include <deque>

#include "Awaited.h"
#include "ClientFailure.h"
#include "EventFeed.h"
#include "Output.h"

void Device::check(const QString& error, int status) const {
    if (!error.isEmpty())
        throw ClientFailure::refused(status == 0 ? m_api->unreachable() : error);
}

QJsonObject
Device::await(const std::function<void(const AsyncApi::Answered& answered)>& begin) const {
    const ApiAnswer answer = awaited<ApiAnswer>(begin);
    check(answer.error, answer.status);
    return answer.body;
}

const QJsonObject& Device::paths() {
    if (m_paths.isEmpty())
        m_paths =
            await([this](const auto& done) { m_api->get(QStringLiteral("/api/paths"), {}, done); });
    return m_paths;
}

QString Device::path(const QString& function) {
    const QString text = paths().value(function).toString();
    if (text.isEmpty())
        throw ClientFailure::refused(QStringLiteral("this device has no %1").arg(function));
    return text;
}

std::optional<RowsAnswer> Device::tryRows(const QString& path, const QStringList& roles, int from,
                                          int to) {
    const auto answer =
        awaited<RowsAnswer>([&](const auto& done) { m_api->readAll(path, roles, from, to, done); });
    if (answer.status == HttpNotFound || answer.status == HttpRefused)
        return std::nullopt;
    check(answer.error, answer.status);
    return answer;
}

RowsAnswer Device::rows(const QString& path, const QStringList& roles, int from, int to) {
    const auto answer =
        awaited<RowsAnswer>([&](const auto& done) { m_api->readAll(path, roles, from, to, done); });
    check(answer.error, answer.status);
    return answer;
}

int Device::rowsCount(const QString& path) {
    return rows(path, {QStringLiteral("type")}, 0, 0).count;
}

QJsonObject Device::send(const QString& path, const QJsonValue& value) {
    return await([&](const auto& done) { m_api->post(path, value, done); });
}

QJsonValue Device::command(const QString& function, const QJsonObject& record) {
    return send(path(function), record).value(QStringLiteral("result"));
}

QJsonValue Device::value(const QString& path) {
    return await([&](const auto& done) { m_api->value(path, done); })
        .value(QStringLiteral("value"));
}

QJsonValue Device::setValue(const QString& path, const QJsonValue& value) {
    return await([&](const auto& done) { m_api->setValue(path, value, done); })
        .value(QStringLiteral("value"));
}

// The handler is called outside of the feed's signals, so that it may wait for answers itself.
void Device::follow(const QStringList& watched,
                    const std::function<bool(const DeviceEvent& event)>& handler) {
    EventFeed feed(m_api, watched);
    QEventLoop loop;
    std::deque<DeviceEvent> waiting;
    bool wasConnected = false;
    QString failure;
    QObject::connect(&feed, &EventFeed::received, &loop, [&](const DeviceEvent& event) {
        waiting.push_back(event);
        loop.quit();
    });
    QObject::connect(&feed, &EventFeed::ended, &loop, [&](bool wasOpen, const QString& reason) {
        wasConnected = wasConnected || wasOpen;
        if (wasOpen)
            Output::message(QStringLiteral("the connection is lost, trying again"));
        if (!wasConnected)
            failure = QStringLiteral("no events from %1: %2").arg(m_api->url().toString(), reason);
        loop.quit();
    });
    feed.start();
    while (failure.isEmpty()) {
        if (waiting.empty())
            loop.exec();
        while (!waiting.empty()) {
            const DeviceEvent event = waiting.front();
            waiting.pop_front();
            if (!handler(event))
                return;
        }
    }
    throw ClientFailure::refused(failure);
}
