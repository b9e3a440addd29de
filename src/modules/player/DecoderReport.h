#pragma once

#include <chrono>
#include <mutex>
#include <string>

#include "AudioFormat.h"
#include "EngineEvents.h"
#include "GstPointers.h"

// What GStreamer's threads tell of one item that is being decoded. They share it with the decoder,
// for one of them may still be on its way here when the pipeline has come to rest and the decoder
// is gone.
class DecoderReport {
public:
    DecoderReport(quint64 id, EngineEvents& events) : m_id(id), m_events(events) {}

    // Where the decoded sound goes in; null before it is set, and once it is closed.
    void setEntry(GstPadPtr entry);
    GstPadPtr entry() const;

    // Nothing that is told afterwards goes anywhere.
    void close();

    // Exactly one event comes of these three, the first; a failure after it is kept as the error.
    void ready(const AudioFormat& format);
    void fail(const std::string& text);
    void redirect(const std::string& location);

    // What a part of the pipeline reports, which may not come through.
    void noteError(GstMessage* message);
    // The error of a part that is still in use, empty when all is well.
    std::string unheardError(GstElement* pipeline) const;

    // Valid once it is ready.
    AudioFormat format() const;
    bool isReported() const;
    // What went wrong, empty when all is well.
    std::string error() const;

private:
    // The caller holds the mutex.
    void push(EngineEvent::Kind kind, const std::string& text = {});

    const quint64 m_id;
    EngineEvents& m_events;

    mutable std::mutex m_mutex;
    GstPadPtr m_entry;
    bool m_closed = false;
    bool m_reported = false;
    AudioFormat m_format;
    std::string m_error;
    // The last error of one of the pipeline's parts.
    struct {
        GstElementPtr from;
        std::string text;
        std::chrono::steady_clock::time_point at;
    } m_partsError;
};

// A message's own words for what went wrong.
std::string errorText(GstMessage* message);
