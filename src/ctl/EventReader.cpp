#include "EventReader.h"

#include <memory>

#include <QEventLoop>
#include <QNetworkReply>
#include <QTimer>

#include "ApiClient.h"
#include "ClientFailure.h"
#include "Output.h"

namespace {
constexpr int RetryMs = 1000;
} // namespace

// Reads one connection to its end. False when there never was one.
bool EventReader::readConnection(const Handler& handler) {
    m_parser.restart();
    const std::unique_ptr<QNetworkReply> reply(m_client->openEvents(m_watched, m_parser.lastId()));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, [&] {
        for (const DeviceEvent& event : m_parser.feed(reply->readAll())) {
            m_ended = m_ended || !handler(event);
            if (m_ended) {
                loop.quit();
                return;
            }
        }
    });
    loop.exec();
    m_reason = reply->errorString();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    reply->abort();
    return status == HttpOk;
}

void EventReader::read(const Handler& handler) {
    bool connected = readConnection(handler);
    if (!connected)
        throw ClientFailure::refused(
            QStringLiteral("no events from %1: %2").arg(m_client->url().toString(), m_reason));
    while (!m_ended) {
        if (connected)
            Output::message(QStringLiteral("the connection is lost, trying again"));
        QEventLoop pause;
        QTimer::singleShot(RetryMs, &pause, &QEventLoop::quit);
        pause.exec();
        connected = readConnection(handler);
    }
}
