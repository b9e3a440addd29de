#pragma once

#include <chrono>
#include <gst/app/gstappsink.h>
#include <mutex>
#include <vector>

#include <QString>

#include "AudioFormat.h"
#include "EngineEvents.h"
#include "GstPointers.h"
#include "SourceRules.h"

// Decodes one item to PCM, ahead of its use by a bounded amount. It begins with construction and
// reports DecoderReady, DecoderFailed or DecoderRedirected exactly once. Owned by the engine,
// shared with the feeder while that plays it. The worker's thread constructs, seeks and destroys it
// (seeks while the feeder rests), the feeder's thread pulls; GStreamer's threads only touch what
// the mutex guards.
class TrackDecoder {
public:
    // `wanted`: the format to deliver; without it, the one nearest to the item's own.
    TrackDecoder(quint64 id, const SourceRules::Source& source, std::optional<AudioFormat> wanted,
                 EngineEvents& events);
    ~TrackDecoder();
    TrackDecoder(const TrackDecoder&) = delete;
    TrackDecoder& operator=(const TrackDecoder&) = delete;

    quint64 id() const { return m_id; }
    // Valid once it is ready.
    AudioFormat format() const;
    // What went wrong, empty when all is well.
    std::string error() const;
    // In milliseconds, 0 when unknown.
    qint64 duration() const;
    // False when this item cannot be sought in. What is pulled afterwards is from there, exactly.
    bool seek(qint64 ms);

    // While it is opening: fails it when it went wrong without a report.
    void lookForUnheardError();
    // Fails it unless it was reported already.
    void giveUp(const std::string& text);

    enum class Pulled { Sound, NotYet, Ended, Failed };
    // Waits for sound for a few milliseconds and puts it, whole frames, into `pcm`. Fails when it
    // gave nothing for as long as its source may take, the time between two calls left out.
    Pulled pull(std::vector<char>& pcm);

private:
    // A bin of the pipeline, with the decoder that hears what its parts report.
    struct Parts {
        TrackDecoder* decoder;
        GstBin* bin;
    };

    // How GStreamer's threads come in.
    static TrackDecoder* entered(gpointer self);
    static Parts enteredParts(gpointer parts);
    static void onElementAdded(GstBin*, GstBin*, GstElement* element, gpointer self);
    static void onSourceSetup(GstElement*, GstElement* source, gpointer self);
    static int onAutoplugSelect(GstElement*, GstPad*, GstCaps*, GstElementFactory* factory,
                                gpointer self);
    static void onPadAdded(GstElement*, GstPad* pad, gpointer self);
    static void onNoMorePads(GstElement*, gpointer self);
    static GstFlowReturn onPreroll(GstAppSink* sink, gpointer self);
    static void onEos(GstAppSink* sink, gpointer self);
    static GstBusSyncReply onMessage(GstBus*, GstMessage* message, gpointer self);
    static GstBusSyncReply onPartsMessage(GstBus*, GstMessage* message, gpointer parts);

    GstPadPtr soundEntry() const;
    // False when there are no means for it.
    bool build(const std::optional<AudioFormat>& wanted);
    void ready(const AudioFormat& format);
    void fail(const std::string& text);
    bool isReported() const;
    void noteHeaders(const GstStructure* headers);
    void noteError(GstMessage* message);
    std::string unheardError();

    const quint64 m_id;
    const SourceRules::Source m_source;
    EngineEvents& m_events;
    GstElementPtr m_pipeline;
    GstElement* m_convert = nullptr; // the pipeline's
    GstAppSink* m_sink = nullptr;    // the pipeline's
    // What pull() has waited for since it gave sound; the feeder's.
    std::chrono::steady_clock::duration m_waited{};

    mutable std::mutex m_mutex;
    bool m_reported = false;
    AudioFormat m_format;
    std::string m_error;
    // The last error of one of the pipeline's parts, which may not come through.
    struct {
        GstElementPtr from;
        std::string text;
        std::chrono::steady_clock::time_point at;
    } m_partsError;
};
