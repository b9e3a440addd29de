#pragma once

#include <memory>
#include <optional>

#include <QObject>
#include <QTimer>

#include "CMSubscribe.h"
#include "EventHistory.h"
#include "HttpLimits.h"

class EventStream;
class HttpExchange;

// Turns every change of the data model into an event and wakes those who read them. Owned by the
// worker, outlives the server that carries the streams; the worker's thread. Never fails: what a
// reader missed it is told to read again.
class EventHub : public QObject {
    Q_OBJECT
public:
    // More readers than `maxStreams` are sent away.
    EventHub(CMSubscribe* events, const EventHistory::Limits& limits, int commentIntervalMs,
             int maxStreams = HttpLimits().eventStreams);

    // Answers the exchange with a stream. False when there are too many already.
    bool serve(const std::shared_ptr<HttpExchange>& exchange, std::optional<quint64> lastEventId,
               const QVector<CMPath>& watched = {});

    // Called by a stream that ends.
    void remove(EventStream* stream);

    const EventHistory& history() const { return m_history; }
    int streams() const { return m_streams.size(); }
    int maxStreams() const { return m_maxStreams; }

private:
    void onChanged(const CMChange& change);
    void sendComments();
    void wakeAll();

    EventHistory m_history;
    int m_maxStreams;
    QTimer m_commentTimer;
    QHash<EventStream*, std::weak_ptr<HttpExchange>> m_streams;
};
