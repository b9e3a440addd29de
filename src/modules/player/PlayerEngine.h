#pragma once

#include <memory>

#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>

#include "EngineEvents.h"
#include "OutputFeeder.h"
#include "SourceRules.h"

// Makes items sound, one after the other and without a gap, and hides how. An item is known by the
// number its user gives it (its generation, rising, never 0). At most one plays and one is next; a
// next one that was replaced or dropped never starts, because the step to it is taken on the
// worker's thread, by the announcement that holds then.
//
//   play(1, a)   started(1)
//   setNext(2, b)
//                ended(1)      all of a was handed over, b may still be replaced
//                started(2)    at once if b is ready
//                ended(2)
//                finished(2)   heard to its end, and nothing was next
//
// Owned by the transport. Everything here runs on the worker's thread and every signal comes from
// its event loop, never from inside a call. Failures are signals.
class PlayerEngine : public QObject {
    Q_OBJECT
public:
    using Generation = quint64;

    // `sink`: see AudioOutput::make. One that cannot be had is logged as an error and replaced by
    // "auto".
    PlayerEngine(const QString& sink, const SourceRules& rules, QObject* parent = nullptr);
    ~PlayerEngine() override;

    void play(Generation generation, const QString& uri, qint64 startMs, bool paused);
    void setNext(Generation generation, const QString& uri);
    void clearNext();
    // What plays has failed: goes on as after its end.
    void goOn();
    void setPaused(bool paused);
    // False when it cannot be sought in.
    bool seek(qint64 ms);
    void stop();
    void setVolume(int volume);

    // Of what plays, in milliseconds; 0 when unknown or nothing plays.
    qint64 position() const;
    qint64 duration() const;

Q_SIGNALS:
    void started(PlayerEngine::Generation generation);
    void ended(PlayerEngine::Generation generation);
    void finished(PlayerEngine::Generation generation);
    // It could not be opened, did not begin in time or broke off; everything before it was heard.
    // The text is for the log alone.
    void failed(PlayerEngine::Generation generation, const QString& text);

private:
    struct Item {
        Generation generation = 0;
        SourceRules::Source source;
        int redirects = 0;
        // Until then it has begun.
        QDeadlineTimer deadline;
        std::shared_ptr<TrackDecoder> decoder;
        bool ready = false;
        bool broken = false;
        QString failure;
    };
    struct EventRow {
        EngineEvent::Kind kind;
        void (PlayerEngine::*handle)(const EngineEvent& event);
    };
    static const QList<EventRow>& eventRows();

    void onEvent(const EngineEvent& event);
    void onDecoderReady(const EngineEvent& event);
    void onDecoderFailed(const EngineEvent& event);
    void onDecoderRedirected(const EngineEvent& event);
    void onSourceEnded(const EngineEvent& event);
    void onSourceDrained(const EngineEvent& event);
    void onSourceFailed(const EngineEvent& event);
    void onOutputFailed(const EngineEvent& event);

    bool isCurrent(const EngineEvent& event) const;
    Item open(Generation generation, const QString& uri);
    void decode(Item& item);
    void watchOpening();
    void matchNextFormat();
    bool tryHandOver();
    void finishCurrent();

    const SourceRules m_rules;
    EngineEvents m_events;
    std::unique_ptr<OutputFeeder> m_feeder;
    quint64 m_lastDecoder = 0;
    Item m_current;
    Item m_next;
    QTimer m_watch; // runs while something is opening
    qint64 m_startMs = 0;
    bool m_ended = false;   // everything of the current item was handed over
    bool m_drained = false; // … and was heard
};
