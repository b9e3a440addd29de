#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include "CMSubscribe.h"

class PlayerTransport;

// Publishes where playback stands, at most twice a second and only while a client watches that
// value. Owned by the worker, on its thread.
class PositionPublisher : public QObject {
    Q_OBJECT
public:
    PositionPublisher(const PlayerTransport& transport, CMSubscribe* events,
                      QObject* parent = nullptr);

Q_SIGNALS:
    // As time goes by; other values may have become better known.
    void ticked();

private:
    void publishSoon();
    void publish();

    const PlayerTransport& m_transport;
    CMSubscribe* m_events;
    QTimer m_timer;
    QElapsedTimer m_sinceLast;
    qint64 m_last = 0;
};
