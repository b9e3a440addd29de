#include "SoundDevice.h"

#include <gst/base/gstbasesink.h>
#include <gst/gst.h>
#include <mutex>

namespace {

std::mutex mutex;
std::vector<char> playedBytes;
std::vector<SoundDevice::Chunk> playedChunks;
int chunksLeft = -1;
bool isPresent = true;

// GStreamer hands the buffer from thread to thread with locks of its own, which the thread
// sanitizer does not see.
__attribute__((no_sanitize("thread"))) SoundDevice::Chunk chunkOf(const GstBuffer* buffer) {
    const qint64 begin = qint64(GST_BUFFER_PTS(buffer));
    return {begin, begin + qint64(GST_BUFFER_DURATION(buffer))};
}

} // namespace

extern "C" {

struct OrvoTestDevice {
    GstBaseSink parent;
};
struct OrvoTestDeviceClass {
    GstBaseSinkClass parentClass;
};

static GType orvo_test_device_get_type();
G_DEFINE_TYPE(OrvoTestDevice, orvo_test_device, GST_TYPE_BASE_SINK)

static GstFlowReturn orvo_test_device_render(GstBaseSink* sink, GstBuffer* buffer) {
    const std::lock_guard lock(mutex);
    if (chunksLeft == 0) {
        GST_ELEMENT_ERROR(sink, RESOURCE, WRITE, ("the plug was pulled"), (nullptr));
        return GST_FLOW_ERROR;
    }
    if (chunksLeft > 0)
        --chunksLeft;
    const size_t at = playedBytes.size();
    playedBytes.resize(at + gst_buffer_get_size(buffer));
    gst_buffer_extract(buffer, 0, playedBytes.data() + at, playedBytes.size() - at);
    playedChunks.push_back(chunkOf(buffer));
    return GST_FLOW_OK;
}

static GstStateChangeReturn orvo_test_device_change_state(GstElement* element,
                                                          GstStateChange change) {
    {
        const std::lock_guard lock(mutex);
        if (change == GST_STATE_CHANGE_NULL_TO_READY && !isPresent)
            return GST_STATE_CHANGE_FAILURE;
    }
    return GST_ELEMENT_CLASS(orvo_test_device_parent_class)->change_state(element, change);
}

static void orvo_test_device_class_init(OrvoTestDeviceClass* klass) {
    GstElementClass* element = GST_ELEMENT_CLASS(klass);
    gst_element_class_set_static_metadata(element, "Test device", "Sink/Audio", "For tests",
                                          "Orvo");
    GstCaps* caps = gst_caps_from_string("audio/x-raw,format={S16LE,S32LE},layout=interleaved");
    gst_element_class_add_pad_template(
        element, gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
    element->change_state = orvo_test_device_change_state;
    GST_BASE_SINK_CLASS(klass)->render = orvo_test_device_render;
}

static void orvo_test_device_init(OrvoTestDevice* device) {
    gst_base_sink_set_sync(GST_BASE_SINK(device), TRUE);
}

} // extern "C"

void SoundDevice::install() {
    gst_init(nullptr, nullptr);
    static const gboolean registered = gst_element_register(
        nullptr, "orvotestdevice", GST_RANK_PRIMARY + 1000, orvo_test_device_get_type());
    Q_UNUSED(registered)
    reset();
}

void SoundDevice::reset() {
    const std::lock_guard lock(mutex);
    playedBytes.clear();
    playedChunks.clear();
    chunksLeft = -1;
    isPresent = true;
}

void SoundDevice::breakAfter(int chunks) {
    const std::lock_guard lock(mutex);
    chunksLeft = chunks;
}

void SoundDevice::setPresent(bool present) {
    const std::lock_guard lock(mutex);
    isPresent = present;
}

std::vector<char> SoundDevice::played() {
    const std::lock_guard lock(mutex);
    return playedBytes;
}

std::vector<SoundDevice::Chunk> SoundDevice::chunks() {
    const std::lock_guard lock(mutex);
    return playedChunks;
}
