#include "EventFeed.h"

#include "CMConnect.h"
#include "EventStream.h"
#include "HttpServer.h"
#include "JsonWriter.h"

namespace {

QByteArray typeOf(CMChange::Kind kind) {
    switch (kind) {
    case CMChange::Kind::Rows:
        return "rows";
    case CMChange::Kind::StartingWith:
        return "startingWith";
    case CMChange::Kind::Value:
        break;
    }
    return "value";
}

QByteArray dataOf(const CMChange& change) {
    JsonWriter json(64 + 8 * change.changes.size());
    json.beginObject();
    json.member("path", true);
    json.value(change.path.toString());
    if (change.kind == CMChange::Kind::Value) {
        json.member("value");
        json.value(change.newValue.toVariant());
        json.member("oldValue");
        json.value(change.oldValue.toVariant());
    } else {
        json.member("changes");
        json.value(QVariant(change.changes));
        json.member("start");
        json.value(qint64(change.start));
        json.member("count");
        json.value(qint64(change.count));
    }
    json.endObject();
    return json.text();
}

} // namespace

EventFeed::EventFeed(CMSubscribe* events, const EventHistory::Limits& limits, int commentIntervalMs,
                     int maxStreams)
    : m_history(limits), m_maxStreams(maxStreams) {
    cmConnect(events, &CMSubscribe::changed, this, &EventFeed::onChanged);
    m_commentTimer.setInterval(commentIntervalMs);
    cmConnect(&m_commentTimer, &QTimer::timeout, this, &EventFeed::sendComments);
}

bool EventFeed::serve(const std::shared_ptr<HttpExchange>& exchange,
                      std::optional<quint64> lastEventId, const QVector<CMPath>& watched) {
    if (m_streams.size() >= m_maxStreams)
        return false;
    auto stream = std::make_unique<EventStream>(this, lastEventId, watched);
    m_streams.insert(stream.get(), exchange);
    if (!m_commentTimer.isActive())
        m_commentTimer.start();
    exchange->respondStream("text/event-stream", std::move(stream));
    return true;
}

void EventFeed::remove(EventStream* stream) {
    m_streams.remove(stream);
    if (m_streams.isEmpty())
        m_commentTimer.stop();
}

void EventFeed::onChanged(const CMChange& change) {
    m_history.append(typeOf(change.kind), dataOf(change));
    wakeAll();
}

void EventFeed::sendComments() {
    for (auto it = m_streams.begin(); it != m_streams.end(); ++it)
        it.key()->sendComment();
    wakeAll();
}

void EventFeed::wakeAll() {
    for (const auto& reader : qAsConst(m_streams)) {
        if (const auto exchange = reader.lock())
            exchange->wake();
    }
}
