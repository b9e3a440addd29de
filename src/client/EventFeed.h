#pragma once

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>

#include "EventParser.h"

class ApiClient;
class QNetworkReply;

// The device's changes as they happen, without waiting for them, and whether there is a connection
// at all. Connects again by itself and goes on behind the last event; where that cannot be,
// everything is to be read again (resync). Owned by the browser.
class EventFeed : public QObject {
    Q_OBJECT
public:
    // `watched`: the values whose changes come only while somebody watches.
    EventFeed(ApiClient* client, const QStringList& watched);
    ~EventFeed() override;

    void start();
    bool isOnline() const { return m_isOnline; }
    // Somebody else found the device there, or not.
    void noteReached(bool isThere);

Q_SIGNALS:
    void received(const QString& type, const QJsonObject& data);
    void resync();
    void onlineChanged(bool isOnline);

private:
    void connectNow();
    void onOpened();
    void onData();
    void onEnded();
    void noteLoss();
    void setOnline(bool isOnline);

    ApiClient* m_client;
    QStringList m_watched;
    EventParser m_parser;
    QPointer<QNetworkReply> m_reply;
    QTimer m_retry;
    QTimer m_loss;
    bool m_isOnline = true;
    bool m_isOpen = false;
};
