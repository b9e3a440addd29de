#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>

#include "EventParser.h"

class AsyncApi;
class QNetworkReply;

// The device's changes as they happen, without waiting for them, and whether there is a connection
// at all. Connects again by itself and goes on behind the last event; where that cannot be,
// everything is to be read again (resync). Owned by the program that follows the device.
class EventFeed : public QObject {
    Q_OBJECT
public:
    // `watched`: the values whose changes come only while a client watches them.
    EventFeed(AsyncApi* api, const QStringList& watched);
    ~EventFeed() override;

    void start();
    bool isOnline() const { return m_isOnline; }
    // Another request found the device there, or not.
    void noteReached(bool isThere);

Q_SIGNALS:
    // Each event, those of the type "resync" included.
    void received(const DeviceEvent& event);
    void resync();
    // A connection is over; `wasOpen` says whether it ever stood. The next one is tried by itself.
    void ended(bool wasOpen, const QString& reason);
    void onlineChanged(bool isOnline);

private:
    void connectNow();
    void onOpened();
    void onData();
    void onEnded();
    void noteLoss();
    void setOnline(bool isOnline);

    AsyncApi* m_api;
    QStringList m_watched;
    EventParser m_parser;
    QPointer<QNetworkReply> m_reply;
    QTimer m_retry;
    QTimer m_loss;
    bool m_isOnline = true;
    bool m_isOpen = false;
};
