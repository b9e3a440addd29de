#include "PlayerEngine.h"

#include "CMConnect.h"
#include "PlayerLog.h"

namespace {

constexpr int WatchOpeningEveryMs = 100;

void initializeGStreamer() {
    GError* raw = nullptr;
    const bool done = gst_init_check(nullptr, nullptr, &raw);
    const GErrorPtr error(raw);
    CM_ASSERT(done, error ? error->message : "GStreamer cannot be used");
    for (const char* name : {"uridecodebin", "audioconvert", "audioresample", "appsink", "appsrc",
                             "volume", "fakesink"}) {
        const GstFactoryPtr factory(gst_element_factory_find(name));
        CM_ASSERT(factory, "GStreamer's base plugins are missing");
    }
}

std::unique_ptr<AudioOutput> makeOutput(const QString& sink, EngineEvents& events) {
    const auto failed = [&events] { events.push({EngineEvent::Kind::OutputFailed, 0, 0, {}}); };
    QString error;
    std::unique_ptr<AudioOutput> output = AudioOutput::make(sink, failed, &error);
    if (!output) {
        LOG4CPLUS_ERROR(playerLog(), error << "; using auto");
        output = AudioOutput::make(QStringLiteral("auto"), failed, &error);
    }
    return output;
}

} // namespace

PlayerEngine::PlayerEngine(const QString& sink, const SourceRules& rules, QObject* parent)
    : QObject(parent),
      m_rules(rules),
      m_events([this](const EngineEvent& event) { onEvent(event); }) {
    initializeGStreamer();
    m_feeder = std::make_unique<OutputFeeder>(makeOutput(sink, m_events), m_events);
    m_watch.setInterval(WatchOpeningEveryMs);
    cmConnect(&m_watch, &QTimer::timeout, this, &PlayerEngine::watchOpening);
}

PlayerEngine::~PlayerEngine() {
    stop();
}

PlayerEngine::Item PlayerEngine::open(Generation generation, const QString& uri) {
    Item item;
    item.generation = generation;
    item.source = m_rules.source(uri);
    item.deadline.setRemainingTime(item.source.timeoutMs);
    decode(item);
    return item;
}

void PlayerEngine::decode(Item& item) {
    item.ready = false;
    item.decoder =
        std::make_shared<TrackDecoder>(++m_lastDecoder, item.source, m_feeder->format(), m_events);
    m_watch.start();
}

void PlayerEngine::watchOpening() {
    bool opening = false;
    for (const Item* item : {&m_current, &m_next}) {
        if (!item->decoder || item->ready || item->broken)
            continue;
        opening = true;
        if (item->deadline.hasExpired())
            item->decoder->giveUp("it does not begin in time");
        else
            item->decoder->lookForUnheardError();
    }
    if (!opening)
        m_watch.stop();
}

void PlayerEngine::play(Generation generation, const QString& uri, qint64 startMs, bool paused) {
    stop();
    m_startMs = startMs;
    m_feeder->setPaused(paused);
    m_current = open(generation, uri);
}

void PlayerEngine::setNext(Generation generation, const QString& uri) {
    m_next = {};
    if (m_current.generation == 0)
        return; // nothing for it to follow
    m_next = open(generation, uri);
}

void PlayerEngine::clearNext() {
    m_next = {};
    // The one that was dropped was waited for: the end of the current one is to be told after all.
    if (m_drained)
        m_events.push(
            {EngineEvent::Kind::SourceDrained, m_current.decoder->id(), m_feeder->epoch(), {}});
}

void PlayerEngine::goOn() {
    if (!m_current.broken)
        return;
    m_ended = true;
    m_events.push(
        {EngineEvent::Kind::SourceDrained, m_current.decoder->id(), m_feeder->epoch(), {}});
}

void PlayerEngine::setPaused(bool paused) {
    m_feeder->setPaused(paused);
}

bool PlayerEngine::seek(qint64 ms) {
    if (!m_current.ready || m_current.broken || !m_feeder->seek(ms))
        return false;
    m_ended = m_drained = false;
    return true;
}

void PlayerEngine::stop() {
    m_next = {};
    m_feeder->stop();
    m_current = {};
    m_ended = m_drained = false;
}

void PlayerEngine::setVolume(int volume) {
    m_feeder->setVolume(volume);
}

qint64 PlayerEngine::position() const {
    return m_current.ready ? m_feeder->position() : 0;
}

qint64 PlayerEngine::duration() const {
    return m_current.ready ? m_current.decoder->duration() : 0;
}

const QList<PlayerEngine::EventRow>& PlayerEngine::eventRows() {
    using Kind = EngineEvent::Kind;
    static const QList<EventRow> rows = {
        {Kind::DecoderReady, &PlayerEngine::onDecoderReady},
        {Kind::DecoderFailed, &PlayerEngine::onDecoderFailed},
        {Kind::DecoderRedirected, &PlayerEngine::onDecoderRedirected},
        {Kind::SourceEnded, &PlayerEngine::onSourceEnded},
        {Kind::SourceDrained, &PlayerEngine::onSourceDrained},
        {Kind::SourceFailed, &PlayerEngine::onSourceFailed},
        {Kind::OutputFailed, &PlayerEngine::onOutputFailed},
    };
    return rows;
}

void PlayerEngine::onEvent(const EngineEvent& event) {
    for (const EventRow& row : eventRows()) {
        if (row.kind == event.kind)
            (this->*row.handle)(event);
    }
}

bool PlayerEngine::isCurrent(const EngineEvent& event) const {
    return m_current.decoder && m_current.decoder->id() == event.decoder &&
           m_feeder->epoch() == event.epoch;
}

void PlayerEngine::onDecoderReady(const EngineEvent& event) {
    if (m_current.decoder && m_current.decoder->id() == event.decoder) {
        m_current.ready = true;
        if (!m_feeder->start(m_current.decoder, m_startMs))
            return;
        matchNextFormat();
        Q_EMIT started(m_current.generation);
    } else if (m_next.decoder && m_next.decoder->id() == event.decoder) {
        m_next.ready = true;
        matchNextFormat();
        tryHandOver();
    }
}

void PlayerEngine::matchNextFormat() {
    // Announced before the output's format was known, and its own is another one.
    const std::optional<AudioFormat> format = m_feeder->format();
    if (!m_next.ready || !format || m_next.decoder->format() == *format)
        return;
    m_next.deadline.setRemainingTime(m_next.source.timeoutMs);
    decode(m_next);
}

void PlayerEngine::onDecoderRedirected(const EngineEvent& event) {
    for (Item* item : {&m_current, &m_next}) {
        if (!item->decoder || item->decoder->id() != event.decoder)
            continue;
        item->source = m_rules.redirected(item->source.url, QString::fromStdString(event.text));
        if (++item->redirects > SourceRules::MaxRedirects)
            item->source.refusal = QStringLiteral("it is redirected too often");
        decode(*item);
    }
}

void PlayerEngine::onDecoderFailed(const EngineEvent& event) {
    const QString text = QString::fromStdString(event.text);
    if (m_current.decoder && m_current.decoder->id() == event.decoder) {
        m_current.broken = true;
        Q_EMIT failed(m_current.generation, text);
    } else if (m_next.decoder && m_next.decoder->id() == event.decoder) {
        // Told when its turn comes.
        m_next.broken = true;
        m_next.failure = text;
        if (m_drained)
            finishCurrent();
    }
}

void PlayerEngine::onSourceEnded(const EngineEvent& event) {
    if (!isCurrent(event))
        return;
    m_ended = true;
    Q_EMIT ended(m_current.generation);
    tryHandOver();
}

bool PlayerEngine::tryHandOver() {
    if (!m_ended || !m_next.ready)
        return false;
    const bool broken = m_current.broken;
    m_current = m_next;
    m_next = {};
    m_ended = m_drained = false;
    // After what is broken the output may never have been opened.
    if (!broken)
        m_feeder->continueWith(m_current.decoder);
    else if (!m_feeder->start(m_current.decoder, 0))
        return true;
    Q_EMIT started(m_current.generation);
    return true;
}

void PlayerEngine::onSourceDrained(const EngineEvent& event) {
    if (!isCurrent(event))
        return;
    m_drained = true;
    if (!tryHandOver())
        finishCurrent();
}

void PlayerEngine::finishCurrent() {
    if (m_next.generation == 0) {
        Q_EMIT finished(m_current.generation);
    } else if (m_next.broken) {
        const Item broken = m_next;
        m_next = {};
        Q_EMIT failed(broken.generation, broken.failure);
    }
    // Otherwise the next one is still opening.
}

void PlayerEngine::onSourceFailed(const EngineEvent& event) {
    if (!isCurrent(event))
        return;
    m_current.broken = true;
    Q_EMIT failed(m_current.generation, QString::fromStdString(event.text));
}

void PlayerEngine::onOutputFailed(const EngineEvent&) {
    m_feeder->fallBack();
}
