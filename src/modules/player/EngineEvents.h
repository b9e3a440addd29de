#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <string>

#include <QSocketNotifier>

// What the engine's threads tell the worker's thread.
struct EngineEvent {
    enum class Kind {
        DecoderReady,      // its first sound is there
        DecoderFailed,     // before its first sound
        DecoderRedirected, // its server sends it on to the address in `text`
        SourceEnded,       // everything of it was handed to the output
        SourceDrained,     // … and was heard
        SourceFailed,      // it broke off, and all before was heard
        OutputFailed
    };
    Kind kind;
    quint64 decoder = 0;
    // Of the feeder when it happened: an event from before a seek is out of date.
    quint64 epoch = 0;
    std::string text;
};

// Carries events from any thread to the thread that made it, in order. The engine's threads meet
// the rest of the module here and nowhere else: they hand over plain values and touch no QObject.
// Owned by the engine, outlives everything that pushes.
class EngineEvents {
public:
    explicit EngineEvents(std::function<void(const EngineEvent&)> receiver);
    ~EngineEvents();
    EngineEvents(const EngineEvents&) = delete;
    EngineEvents& operator=(const EngineEvents&) = delete;

    void push(EngineEvent event);

private:
    void deliver();

    std::function<void(const EngineEvent&)> m_receiver;
    std::mutex m_mutex;
    std::deque<EngineEvent> m_events;
    int m_wakeFd;
    QSocketNotifier m_notifier;
};
