#pragma once

#include <gst/gst.h>
#include <optional>
#include <string>

// How sound lies in memory: interleaved little-endian PCM. A value.
struct AudioFormat {
    enum class Sample { S16, S32 };
    Sample sample = Sample::S16;
    int rate = 44100;
    int channels = 2;

    bool operator==(const AudioFormat&) const = default;

    int sampleBytes() const { return sample == Sample::S16 ? 2 : 4; }
    int frameBytes() const { return sampleBytes() * channels; }

    // As GStreamer writes it.
    std::string caps() const;
    // Everything that fits into this type.
    static std::string anyCaps();
    static std::optional<AudioFormat> fromCaps(const GstCaps* caps);
};
