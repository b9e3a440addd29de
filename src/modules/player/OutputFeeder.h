#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "AudioOutput.h"
#include "TrackDecoder.h"

// The thread that carries sound from the decoder of what plays into the output, which never
// notices where one item ends and the next begins. It decides nothing: at the end of an item it
// says so and waits. All public functions belong to the worker's thread; those that change what
// is carried first let the thread rest (some 20 ms at most). Owned by the engine.
class OutputFeeder {
public:
    OutputFeeder(std::unique_ptr<AudioOutput> output, EngineEvents& events);
    ~OutputFeeder();
    OutputFeeder(const OutputFeeder&) = delete;
    OutputFeeder& operator=(const OutputFeeder&) = delete;

    // Plays a ready decoder from `positionMs` on, in place of whatever sounds. False, with
    // SourceFailed to come, when the output cannot be opened.
    bool start(std::shared_ptr<TrackDecoder> decoder, qint64 positionMs);
    // Goes on with this one, without a gap, after the one that has ended.
    void continueWith(std::shared_ptr<TrackDecoder> decoder);
    bool seek(qint64 ms);
    void stop();

    void setPaused(bool paused);
    void setVolume(int volume);
    void fallBack();

    // Where what is heard stands in its item. 0 while the end of the item before is still heard.
    qint64 position() const;
    // The format that sound must come in to be carried without an interruption.
    std::optional<AudioFormat> format() const;
    // Events of an earlier epoch are out of date.
    quint64 epoch() const { return m_epoch; }

private:
    using Lock = std::unique_lock<std::mutex>;

    // The thread rests while one of these lives.
    class Rest {
    public:
        explicit Rest(OutputFeeder& feeder);
        ~Rest();
        Rest(const Rest&) = delete;
        Rest& operator=(const Rest&) = delete;

    private:
        OutputFeeder& m_feeder;
        Lock m_lock;
    };

    bool begin(std::shared_ptr<TrackDecoder> decoder, qint64 positionMs);
    void newEpoch();
    void breakOff();
    void run();
    void carry(Lock& lock);
    void waitForTheEndToBeHeard(Lock& lock);

    EngineEvents& m_events;
    std::unique_ptr<AudioOutput> m_output;

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_quit = false;
    bool m_busy = false; // the thread is at work outside the lock
    bool m_restWanted = false;
    bool m_paused = false;
    std::shared_ptr<TrackDecoder> m_decoder;
    bool m_sourceDone = false;
    bool m_sourceBroke = false;
    bool m_drainReported = false;
    std::optional<AudioFormat> m_format;
    qint64 m_written = 0;      // frames since the output was started
    qint64 m_itemStart = 0;    // the first of them that belongs to the item
    qint64 m_itemPosition = 0; // … and its place in the item, in milliseconds
    quint64 m_epoch = 0;
    std::vector<char> m_pcm; // the thread's own

    std::thread m_thread;
};
