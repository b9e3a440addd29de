#include "EventFeed.h"

#include <QNetworkReply>

#include "AsyncApi.h"

namespace {
constexpr int RetryMs = 1000;
// A shorter loss is not worth a message.
constexpr int ShowLossAfterMs = 400;
} // namespace

EventFeed::EventFeed(AsyncApi* api, const QStringList& watched) : m_api(api), m_watched(watched) {
    m_retry.setSingleShot(true);
    m_retry.setInterval(RetryMs);
    connect(&m_retry, &QTimer::timeout, this, &EventFeed::connectNow);
    m_loss.setSingleShot(true);
    m_loss.setInterval(ShowLossAfterMs);
    connect(&m_loss, &QTimer::timeout, this, [this] { setOnline(false); });
}

EventFeed::~EventFeed() {
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
    }
}

void EventFeed::start() {
    connectNow();
}

void EventFeed::connectNow() {
    m_parser.restart();
    m_isOpen = false;
    m_reply = m_api->openEvents(m_watched, m_parser.lastId());
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &EventFeed::onOpened);
    connect(m_reply, &QNetworkReply::readyRead, this, &EventFeed::onData);
    connect(m_reply, &QNetworkReply::finished, this, &EventFeed::onEnded);
}

void EventFeed::onOpened() {
    if (m_isOpen || m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() != HttpOk)
        return;
    m_isOpen = true;
    m_loss.stop();
    // What was read before the first stream stood may be out of date already.
    const bool mayHaveMissed = m_parser.lastId().isEmpty();
    setOnline(true);
    if (mayHaveMissed)
        Q_EMIT resync();
}

void EventFeed::onData() {
    if (!m_isOpen)
        return;
    for (const DeviceEvent& event : m_parser.feed(m_reply->readAll())) {
        Q_EMIT received(event);
        if (event.isResync())
            Q_EMIT resync();
    }
}

void EventFeed::onEnded() {
    const bool wasOpen = m_isOpen;
    const QString reason = m_reply->errorString();
    m_reply->deleteLater();
    m_reply = nullptr;
    m_isOpen = false;
    noteLoss();
    m_retry.start();
    Q_EMIT ended(wasOpen, reason);
}

void EventFeed::noteReached(bool isThere) {
    if (!isThere)
        noteLoss();
    else if (m_isOpen)
        m_loss.stop();
}

void EventFeed::noteLoss() {
    if (m_isOnline && !m_loss.isActive())
        m_loss.start();
}

void EventFeed::setOnline(bool isOnline) {
    if (m_isOnline == isOnline)
        return;
    m_isOnline = isOnline;
    Q_EMIT onlineChanged(isOnline);
}
