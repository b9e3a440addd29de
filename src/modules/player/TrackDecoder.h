#pragma once

#include <gst/app/gstappsink.h>
#include <mutex>
#include <vector>

#include <QString>

#include "AudioFormat.h"
#include "EngineEvents.h"
#include "GstPointers.h"

// Decodes one item to PCM, ahead of its use by a bounded amount. It begins with construction and
// reports DecoderReady or DecoderFailed exactly once. Owned by the engine, shared with the feeder
// while that plays it. The worker's thread constructs, seeks and destroys it (seeks while the
// feeder rests), the feeder's thread pulls; GStreamer's threads only touch what the mutex guards.
class TrackDecoder {
public:
    // `wanted`: the format to deliver; without it, the one nearest to the item's own.
    TrackDecoder(quint64 id, const QString& uri, std::optional<AudioFormat> wanted,
                 EngineEvents& events);
    ~TrackDecoder();
    TrackDecoder(const TrackDecoder&) = delete;
    TrackDecoder& operator=(const TrackDecoder&) = delete;

    quint64 id() const { return m_id; }
    const QString& uri() const { return m_uri; }
    // Valid once it is ready.
    AudioFormat format() const;
    // What went wrong, empty when all is well.
    std::string error() const;
    // In milliseconds, 0 when nobody knows.
    qint64 duration() const;
    // False when this item cannot be sought in. What is pulled afterwards is from there, exactly.
    bool seek(qint64 ms);

    enum class Pulled { Sound, NotYet, Ended, Failed };
    // Waits for sound for a few milliseconds and puts it, whole frames, into `pcm`.
    Pulled pull(std::vector<char>& pcm);

private:
    // How GStreamer's threads come in.
    static TrackDecoder* entered(gpointer self);
    static void onPadAdded(GstElement*, GstPad* pad, gpointer self);
    static void onNoMorePads(GstElement*, gpointer self);
    static GstFlowReturn onPreroll(GstAppSink* sink, gpointer self);
    static void onEos(GstAppSink* sink, gpointer self);
    static GstBusSyncReply onMessage(GstBus*, GstMessage* message, gpointer self);

    GstPadPtr soundEntry() const;
    void build(const std::optional<AudioFormat>& wanted);
    void ready(const AudioFormat& format);
    void fail(const std::string& text);
    bool isReported() const;

    const quint64 m_id;
    const QString m_uri;
    EngineEvents& m_events;
    GstElementPtr m_pipeline;
    GstElement* m_convert = nullptr; // the pipeline's
    GstAppSink* m_sink = nullptr;    // the pipeline's

    mutable std::mutex m_mutex;
    bool m_reported = false;
    AudioFormat m_format;
    std::string m_error;
};
