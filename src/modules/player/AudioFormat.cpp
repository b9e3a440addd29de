#include "AudioFormat.h"

#include <cstring>

namespace {
const char* sampleName(AudioFormat::Sample sample) {
    return sample == AudioFormat::Sample::S16 ? "S16LE" : "S32LE";
}
} // namespace

std::string AudioFormat::caps() const {
    return std::string("audio/x-raw,layout=interleaved,format=") + sampleName(sample) +
           ",rate=" + std::to_string(rate) + ",channels=" + std::to_string(channels);
}

std::string AudioFormat::anyCaps() {
    return "audio/x-raw,layout=interleaved,format={S16LE,S32LE},rate=[1,384000],channels=[1,2]";
}

std::optional<AudioFormat> AudioFormat::fromCaps(const GstCaps* caps) {
    if (!caps || gst_caps_is_empty(caps) || !gst_caps_is_fixed(caps))
        return {};
    const GstStructure* structure = gst_caps_get_structure(caps, 0);
    const char* name = gst_structure_get_string(structure, "format");
    AudioFormat format;
    if (!name || !gst_structure_get_int(structure, "rate", &format.rate) ||
        !gst_structure_get_int(structure, "channels", &format.channels))
        return {};
    for (const Sample sample : {Sample::S16, Sample::S32}) {
        format.sample = sample;
        if (std::strcmp(name, sampleName(sample)) == 0)
            return format;
    }
    return {};
}
