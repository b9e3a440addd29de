#include "DeviceOutput.h"

#include <cmath>
#include <cstring>
#include <gst/app/gstappsrc.h>

#include "Descriptors.h"
#include "PlayerLog.h"

namespace {

// What is taken ahead of what is heard: rides out a busy moment of the worker's thread at the
// change from item to item, and is the most by which an item counts as started before it is heard.
constexpr double SecondsAhead = 0.5;
// Room for the first sound after the output ran dry.
constexpr double SecondsToCatchUp = 0.05;
constexpr std::chrono::seconds LookAgainAfter{10};
constexpr GstClockTime SettleTime = 300 * GST_MSECOND;

// An automatic sink that found nothing plays into a fake of its own.
bool isFake(GstElement* sink) {
    const GstElementFactory* factory = gst_element_get_factory(sink);
    if (factory && std::strncmp(GST_OBJECT_NAME(factory), "fake", 4) == 0)
        return true;
    if (!GST_IS_BIN(sink))
        return false;
    bool fake = false;
    GstIterator* children = gst_bin_iterate_elements(GST_BIN(sink));
    GValue child = G_VALUE_INIT;
    while (gst_iterator_next(children, &child) == GST_ITERATOR_OK) {
        fake = fake || isFake(GST_ELEMENT(g_value_get_object(&child)));
        g_value_reset(&child);
    }
    g_value_unset(&child);
    gst_iterator_free(children);
    return fake;
}

} // namespace

DeviceOutput::DeviceOutput(std::string sinkFactory, std::function<void()> failed)
    : m_sinkFactory(std::move(sinkFactory)), m_failed(std::move(failed)) {}

DeviceOutput::~DeviceOutput() {
    close();
}

void DeviceOutput::close() {
    if (m_pipeline)
        gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    m_pipeline.reset();
    m_source = m_loudness = m_sink = nullptr;
    m_broken = false;
}

bool DeviceOutput::open(const char* sinkFactory) {
    close();
    if (!descriptorsAreFree(DescriptorsOfAPipeline))
        return false;
    m_pipeline.reset(gst_pipeline_new(nullptr));
    m_source = addElement(m_pipeline.get(), "appsrc");
    m_loudness = addElement(m_pipeline.get(), "volume");
    GstElement* convert = addElement(m_pipeline.get(), "audioconvert");
    GstElement* resample = addElement(m_pipeline.get(), "audioresample");
    GstElement* sink = addElement(m_pipeline.get(), sinkFactory);
    m_sink = sink;
    if (!m_source || !m_loudness || !convert || !resample || !sink) {
        close();
        return false;
    }
    g_object_set(m_source, "format", GST_FORMAT_TIME, "max-bytes", guint64(0), nullptr);
    gst_element_link_many(m_source, m_loudness, convert, resample, sink, nullptr);
    if (gst_element_set_state(m_pipeline.get(), GST_STATE_READY) == GST_STATE_CHANGE_FAILURE) {
        close();
        return false;
    }
    m_silent = isFake(sink);
    if (m_silent)
        g_object_set(sink, "sync", TRUE, nullptr);
    const GstBusPtr bus(gst_element_get_bus(m_pipeline.get()));
    gst_bus_set_flushing(bus.get(), TRUE); // drops what the search for a device had to say
    gst_bus_set_flushing(bus.get(), FALSE);
    gst_bus_set_sync_handler(bus.get(), onMessage, this, nullptr);
    return true;
}

bool DeviceOutput::openSilence() {
    if (!open("fakesink"))
        return false;
    if (!m_silenceSaid)
        LOG4CPLUS_WARN(playerLog(), "no sound device, playing silently in real time");
    m_silenceSaid = true;
    return true;
}

bool DeviceOutput::openDevice() {
    m_lastLook = std::chrono::steady_clock::now();
    if (!open(m_sinkFactory.c_str()) || m_silent)
        return openSilence();
    m_silenceSaid = false;
    return true;
}

// Back to where nothing was played yet. False when the device is no longer there.
bool DeviceOutput::reopen() {
    if (gst_element_set_state(m_pipeline.get(), GST_STATE_READY) == GST_STATE_CHANGE_FAILURE)
        return false;
    return m_silent || !isFake(m_sink);
}

bool DeviceOutput::start(const AudioFormat& format) {
    const auto sinceLook = std::chrono::steady_clock::now() - m_lastLook;
    const bool isOpen = m_pipeline && !(m_silent && sinceLook > LookAgainAfter) && reopen();
    if (!isOpen && !openDevice()) {
        m_running = false;
        return false;
    }
    m_running = true;
    m_taken = false;
    m_format = format;
    {
        const std::lock_guard lock(m_mutex);
        m_written = m_base = m_late = m_heard = 0;
    }
    play();
    return true;
}

void DeviceOutput::play() {
    const GstCapsPtr caps(gst_caps_from_string(m_format.caps().c_str()));
    g_object_set(m_source, "caps", caps.get(), nullptr);
    setVolume(m_volume);
    setPaused(m_paused);
}

void DeviceOutput::stop() {
    m_running = false;
    // Frees the device for others.
    if (m_pipeline)
        gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    const std::lock_guard lock(m_mutex);
    m_written = m_base = m_late = m_heard = 0;
}

void DeviceOutput::setPaused(bool paused) {
    m_paused = paused;
    if (!m_running || m_broken)
        return;
    // A change of state on top of one that is just being completed can leave the sink behind for
    // good, so that one is awaited; without sound to complete it there is nothing to wait for.
    gst_element_get_state(m_pipeline.get(), nullptr, nullptr, m_taken ? SettleTime : 0);
    if (gst_element_set_state(m_pipeline.get(), paused ? GST_STATE_PAUSED : GST_STATE_PLAYING) ==
            GST_STATE_CHANGE_FAILURE &&
        !m_broken.exchange(true))
        m_failed();
}

void DeviceOutput::setVolume(int volume) {
    m_volume = volume;
    // Loudness is heard as the cube root of the amplitude, roughly.
    if (m_loudness)
        g_object_set(m_loudness, "volume", std::pow(double(volume) / MaxVolume, 3), nullptr);
}

bool DeviceOutput::fallBack() {
    if (!m_broken)
        return true;
    if (!openSilence()) {
        m_running = false;
        return false;
    }
    m_taken = false;
    {
        // What the device still had to play counts as heard.
        const std::lock_guard lock(m_mutex);
        m_base = m_heard = m_written;
        m_late = 0;
    }
    if (m_running)
        play();
    return true;
}

qint64 DeviceOutput::runningFrames() const {
    GstState state = GST_STATE_NULL;
    gst_element_get_state(m_pipeline.get(), &state, nullptr, 0);
    // Stands still during a pause and before the first sound has arrived.
    const GstClockTime time = state == GST_STATE_PLAYING
                                  ? gst_element_get_current_running_time(m_pipeline.get())
                                  : gst_element_get_start_time(m_pipeline.get());
    if (!GST_CLOCK_TIME_IS_VALID(time))
        return 0;
    return qint64(gst_util_uint64_scale(time, guint64(m_format.rate), GST_SECOND));
}

qint64 DeviceOutput::heardFrames() {
    if (!m_pipeline)
        return 0;
    const qint64 running = runningFrames();
    const guint64 waiting = gst_app_src_get_current_level_bytes(GST_APP_SRC(m_source));
    const std::lock_guard lock(m_mutex);
    // What the sink has not even fetched was not heard, whatever the clock says.
    const qint64 fetched = m_written - qint64(waiting) / m_format.frameBytes();
    m_heard = qMax(m_heard, qMin(m_base + running - m_late, fetched));
    return m_heard;
}

bool DeviceOutput::hasRoom() {
    if (m_broken)
        return false;
    const qint64 heard = heardFrames();
    const std::lock_guard lock(m_mutex);
    return double(m_written - heard) < SecondsAhead * m_format.rate;
}

void DeviceOutput::write(const char* data, qint64 bytes) {
    const qint64 frames = bytes / m_format.frameBytes();
    const qint64 running = runningFrames();
    const guint64 rate = guint64(m_format.rate);
    qint64 at = 0;
    {
        const std::lock_guard lock(m_mutex);
        at = m_written - m_base + m_late;
        if (at > 0 && running > at) {
            // The output ran dry: sound with a time that has passed would be dropped.
            const qint64 jump = running - at + qint64(SecondsToCatchUp * m_format.rate);
            m_late += jump;
            at += jump;
        }
        m_written += frames;
    }
    GstBuffer* buffer = gst_buffer_new_memdup(data, gsize(bytes));
    GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(guint64(at), GST_SECOND, rate);
    GST_BUFFER_DURATION(buffer) =
        gst_util_uint64_scale(guint64(at + frames), GST_SECOND, rate) - GST_BUFFER_PTS(buffer);
    m_taken = true;
    gst_app_src_push_buffer(GST_APP_SRC(m_source), buffer);
}

// Runs on GStreamer's threads.
GstBusSyncReply DeviceOutput::onMessage(GstBus*, GstMessage* message, gpointer self) {
    auto* output = static_cast<DeviceOutput*>(self);
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR && !output->m_broken.exchange(true))
        output->m_failed();
    gst_message_unref(message);
    return GST_BUS_DROP;
}
