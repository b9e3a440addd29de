#include "EventHub.h"

#include "CMConnect.h"
#include "EventStream.h"
#include "HttpExchange.h"
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

void write(const CMChange& change, JsonWriter* writer) {
    JsonWriter& json = *writer;
    json.beginObject();
    json.name(QStringLiteral("path"));
    json.value(change.path.toString());
    if (change.kind == CMChange::Kind::Value) {
        json.name(QStringLiteral("value"));
        json.value(change.newValue.toVariant());
        json.name(QStringLiteral("oldValue"));
        json.value(change.oldValue.toVariant());
    } else {
        json.name(QStringLiteral("changes"));
        json.value(QVariant(change.changes));
        json.name(QStringLiteral("start"));
        json.value(qint64(change.start));
        json.name(QStringLiteral("count"));
        json.value(qint64(change.count));
        if (change.revision) {
            json.name(QStringLiteral("revision"));
            json.value(*change.revision);
        }
    }
    json.endObject();
}

} // namespace

EventHub::EventHub(CMSubscribe* events, const EventHistory::Limits& limits, int commentIntervalMs,
                   int maxStreams)
    : m_history(limits), m_maxStreams(maxStreams) {
    cmConnect(events, &CMSubscribe::changed, this, &EventHub::onChanged);
    m_commentTimer.setInterval(commentIntervalMs);
    cmConnect(&m_commentTimer, &QTimer::timeout, this, &EventHub::sendComments);
}

bool EventHub::serve(const std::shared_ptr<HttpExchange>& exchange,
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

void EventHub::remove(EventStream* stream) {
    m_streams.remove(stream);
    if (m_streams.isEmpty())
        m_commentTimer.stop();
}

void EventHub::onChanged(const CMChange& change) {
    JsonWriter json(m_history.maxBytes());
    write(change, &json);
    if (json.isFull())
        m_history.skip();
    else
        m_history.append(typeOf(change.kind), json.text());
    wakeAll();
}

void EventHub::sendComments() {
    for (auto it = m_streams.begin(); it != m_streams.end(); ++it)
        it.key()->sendComment();
    wakeAll();
}

void EventHub::wakeAll() {
    for (const auto& reader : qAsConst(m_streams)) {
        if (const auto exchange = reader.lock())
            exchange->wake();
    }
}
