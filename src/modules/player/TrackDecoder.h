#pragma once

#include <chrono>
#include <gst/app/gstappsink.h>
#include <memory>
#include <vector>

#include <QString>

#include "AudioFormat.h"
#include "DecoderReport.h"
#include "EngineEvents.h"
#include "GstPointers.h"
#include "SourceRules.h"

// Decodes one item to PCM, ahead of its use by a bounded amount. It begins with construction and
// reports DecoderReady, DecoderFailed or DecoderRedirected exactly once. Owned by the engine,
// shared with the feeder while that plays it. The worker's thread constructs, seeks and destroys it
// (seeks while the feeder rests), the feeder's thread pulls; GStreamer's threads only touch the
// report.
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
    AudioFormat format() const { return m_report->format(); }
    // What went wrong, empty when all is well.
    std::string error() const { return m_report->error(); }
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
    // False when there are no means for it.
    bool build(const std::optional<AudioFormat>& wanted);
    // Lets the report hear what GStreamer's threads have to say.
    void listen(GstElement* source);

    const quint64 m_id;
    const SourceRules::Source m_source;
    GstElementPtr m_pipeline;
    GstAppSink* m_sink = nullptr; // the pipeline's
    std::shared_ptr<DecoderReport> m_report;
    // What pull() has waited for since it gave sound; the feeder's.
    std::chrono::steady_clock::duration m_waited{};
};
