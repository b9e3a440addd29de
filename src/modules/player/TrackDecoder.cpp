#include "TrackDecoder.h"

#include <array>
#include <cmath>
#include <cstring>
#include <thread>

#include "Descriptors.h"
#include "PlayerLog.h"

namespace {
// Long enough not to spin, short enough for the feeder to be called to rest.
constexpr GstClockTime PullWait = 20 * GST_MSECOND;
// What is decoded ahead; a second or two with the usual decoders.
constexpr guint BuffersAhead = 32;

// Passed by the thread that makes a decoder and then by GStreamer's threads when they come to it.
// GStreamer orders these itself, but with locks that the thread sanitizer does not see; this one
// it sees, and so it can watch over everything of ours behind it.
std::mutex& handOver() {
    static std::mutex mutex;
    return mutex;
}

// Plugging in a part takes milliseconds; what was not heard of its error by then never will be.
constexpr std::chrono::milliseconds UnheardAfter{200};

constexpr guint FirstRedirect = 300;
constexpr guint LastRedirect = 399;

// Kinds of elements that open what is named inside of a file.
constexpr std::array<const char*, 2> KindsThatOpenMore = {"Adaptive", "Editing"};

// A change of state that meets one of the pipeline's own threads at the wrong moment fails half way
// and leaves elements running, so it is made again. False when it does not help.
bool bringToRest(GstElement* pipeline) {
    constexpr int Tries = 100;
    constexpr std::chrono::milliseconds Pause{5};
    for (int i = 0; i < Tries; ++i) {
        if (gst_element_set_state(pipeline, GST_STATE_NULL) == GST_STATE_CHANGE_SUCCESS)
            return true;
        std::this_thread::sleep_for(Pause);
    }
    return false;
}

std::string errorText(GstMessage* message) {
    GError* raw = nullptr;
    gst_message_parse_error(message, &raw, nullptr);
    const GErrorPtr error(raw);
    return error ? error->message : "it cannot be decoded";
}

qint64 toFrames(GstClockTime time, int rate) {
    return std::llround(double(time) / double(GST_SECOND) * rate);
}

// What of a buffer of `frames` belongs to the item. A seek into its middle begins before the place
// that was asked for; and a decoder that rounds the item's end to the wrong side of a frame gives
// one too many, which would shift everything that follows without a gap.
struct Part {
    qint64 first = 0;
    qint64 count = 0;
};

Part belonging(GstBuffer* buffer, const GstSegment* segment, qint64 frames, int rate) {
    constexpr qint64 RoundingFrames = 2;
    Part part{0, frames};
    if (!GST_BUFFER_PTS_IS_VALID(buffer) || segment->format != GST_FORMAT_TIME)
        return part;
    const qint64 begin = toFrames(GST_BUFFER_PTS(buffer), rate);
    part.first = qBound<qint64>(0, toFrames(segment->start, rate) - begin, frames);
    if (GST_CLOCK_TIME_IS_VALID(segment->stop)) {
        const qint64 excess = begin + frames - toFrames(segment->stop, rate);
        if (excess > 0 && excess <= RoundingFrames)
            frames -= excess;
    }
    part.count = qMax<qint64>(0, frames - part.first);
    return part;
}
} // namespace

TrackDecoder::TrackDecoder(quint64 id, const SourceRules::Source& source,
                           std::optional<AudioFormat> wanted, EngineEvents& events)
    : m_id(id), m_source(source), m_events(events) {
    if (!source.refusal.isEmpty()) {
        fail(source.refusal.toStdString());
        return;
    }
    if (!descriptorsAreFree(DescriptorsOfAPipeline) || !build(wanted)) {
        fail("there are not enough file descriptors or memory");
        return;
    }
    if (gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
        fail("it cannot be opened"); // unless something told more already
}

TrackDecoder::~TrackDecoder() {
    // Ends GStreamer's threads for this item; no callback runs afterwards.
    if (m_pipeline && !bringToRest(m_pipeline.get())) {
        // Ending elements that run would end the process.
        LOG4CPLUS_ERROR(playerLog(), "a decoder does not come to rest and is kept");
        GstAppSinkCallbacks none{};
        gst_app_sink_set_callbacks(m_sink, &none, nullptr, nullptr);
        const GstBusPtr bus(gst_element_get_bus(m_pipeline.get()));
        gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
        static_cast<void>(m_pipeline.release());
    }
    const std::lock_guard lock(m_mutex);
}

bool TrackDecoder::build(const std::optional<AudioFormat>& wanted) {
    m_pipeline.reset(gst_pipeline_new(nullptr));
    GstElement* source = addElement(m_pipeline.get(), "uridecodebin");
    m_convert = addElement(m_pipeline.get(), "audioconvert");
    GstElement* resample = addElement(m_pipeline.get(), "audioresample");
    GstElement* sink = addElement(m_pipeline.get(), "appsink");
    if (!source || !m_convert || !resample || !sink) {
        m_pipeline.reset();
        return false;
    }
    m_sink = GST_APP_SINK(sink);

    const GstCapsPtr decoded(gst_caps_from_string("audio/x-raw(ANY)"));
    g_object_set(source, "uri", m_source.url.toEncoded().constData(), "caps", decoded.get(),
                 "expose-all-streams", FALSE, nullptr);
    // No dithering: the same file always gives the same samples.
    gst_util_set_object_arg(G_OBJECT(m_convert), "dithering", "none");
    gst_util_set_object_arg(G_OBJECT(m_convert), "noise-shaping", "none");
    const std::string caps = wanted ? wanted->caps() : AudioFormat::anyCaps();
    const GstCapsPtr delivered(gst_caps_from_string(caps.c_str()));
    g_object_set(sink, "sync", FALSE, "caps", delivered.get(), "max-buffers", BuffersAhead,
                 nullptr);

    gst_element_link_many(m_convert, resample, sink, nullptr);
    g_signal_connect(m_pipeline.get(), "deep-element-added", G_CALLBACK(onElementAdded), this);
    g_signal_connect(source, "source-setup", G_CALLBACK(onSourceSetup), this);
    g_signal_connect(source, "autoplug-select", G_CALLBACK(onAutoplugSelect), this);
    g_signal_connect(source, "pad-added", G_CALLBACK(onPadAdded), this);
    g_signal_connect(source, "no-more-pads", G_CALLBACK(onNoMorePads), this);
    GstAppSinkCallbacks callbacks{};
    callbacks.new_preroll = onPreroll;
    callbacks.eos = onEos;
    gst_app_sink_set_callbacks(m_sink, &callbacks, this, nullptr);
    const GstBusPtr bus(gst_element_get_bus(m_pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), onMessage, this, nullptr);
    const std::lock_guard lock(handOver());
    return true;
}

void TrackDecoder::ready(const AudioFormat& format) {
    const std::lock_guard lock(m_mutex);
    if (m_reported)
        return;
    m_reported = true;
    m_format = format;
    m_events.push({EngineEvent::Kind::DecoderReady, m_id, 0, {}});
}

void TrackDecoder::fail(const std::string& text) {
    const std::lock_guard lock(m_mutex);
    if (m_error.empty())
        m_error = text;
    if (m_reported)
        return; // the feeder finds the error when it gets there
    m_reported = true;
    m_events.push({EngineEvent::Kind::DecoderFailed, m_id, 0, text});
}

void TrackDecoder::giveUp(const std::string& text) {
    if (!isReported())
        fail(text);
}

void TrackDecoder::lookForUnheardError() {
    const std::string text = unheardError();
    if (!text.empty())
        giveUp(text);
}

// The error of a part that is still in use, empty when all is well.
std::string TrackDecoder::unheardError() {
    const std::lock_guard lock(m_mutex);
    if (!m_partsError.from || std::chrono::steady_clock::now() - m_partsError.at < UnheardAfter)
        return {};
    // One that failed when it was tried was taken out again, for another one.
    return gst_object_has_as_ancestor(GST_OBJECT(m_partsError.from.get()),
                                      GST_OBJECT(m_pipeline.get()))
               ? m_partsError.text
               : std::string();
}

AudioFormat TrackDecoder::format() const {
    const std::lock_guard lock(m_mutex);
    return m_format;
}

bool TrackDecoder::isReported() const {
    const std::lock_guard lock(m_mutex);
    return m_reported;
}

std::string TrackDecoder::error() const {
    const std::lock_guard lock(m_mutex);
    return m_error;
}

qint64 TrackDecoder::duration() const {
    gint64 duration = 0;
    if (!m_pipeline || !gst_element_query_duration(m_pipeline.get(), GST_FORMAT_TIME, &duration) ||
        duration < 0)
        return 0;
    return qint64(GST_TIME_AS_MSECONDS(GstClockTime(duration)));
}

bool TrackDecoder::seek(qint64 ms) {
    return gst_element_seek_simple(m_pipeline.get(), GST_FORMAT_TIME,
                                   GstSeekFlags(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE),
                                   ms * gint64(GST_MSECOND));
}

TrackDecoder::Pulled TrackDecoder::pull(std::vector<char>& pcm) {
    const auto begin = std::chrono::steady_clock::now();
    const bool over = gst_app_sink_is_eos(m_sink);
    const GstSamplePtr sample(gst_app_sink_try_pull_sample(m_sink, PullWait));
    if (!sample) {
        m_waited += std::chrono::steady_clock::now() - begin;
        if (!over && m_waited > std::chrono::milliseconds(m_source.timeoutMs))
            fail("it gives nothing more");
        const std::string unheard = over ? std::string() : unheardError();
        if (!unheard.empty())
            fail(unheard);
        if (!error().empty())
            return Pulled::Failed;
        return over ? Pulled::Ended : Pulled::NotYet;
    }
    m_waited = {};
    GstBuffer* buffer = gst_sample_get_buffer(sample.get());
    const AudioFormat form = format();
    const gsize frameBytes = gsize(form.frameBytes());
    const Part part = belonging(buffer, gst_sample_get_segment(sample.get()),
                                qint64(gst_buffer_get_size(buffer) / frameBytes), form.rate);
    if (part.count == 0)
        return Pulled::NotYet;
    pcm.resize(gsize(part.count) * frameBytes);
    gst_buffer_extract(buffer, gsize(part.first) * frameBytes, pcm.data(), pcm.size());
    return Pulled::Sound;
}

// What follows runs on GStreamer's threads.

TrackDecoder* TrackDecoder::entered(gpointer self) {
    const std::lock_guard lock(handOver());
    return static_cast<TrackDecoder*>(self);
}

TrackDecoder::Parts TrackDecoder::enteredParts(gpointer parts) {
    const std::lock_guard lock(handOver());
    return *static_cast<const Parts*>(parts);
}

GstPadPtr TrackDecoder::soundEntry() const {
    const std::lock_guard lock(m_mutex);
    return GstPadPtr(gst_element_get_static_pad(m_convert, "sink"));
}

void TrackDecoder::onElementAdded(GstBin*, GstBin*, GstElement* element, gpointer self) {
    const GstElementFactory* factory = gst_element_get_factory(element);
    if (!factory || std::strcmp(GST_OBJECT_NAME(factory), "decodebin") != 0)
        return;
    const std::lock_guard lock(handOver());
    GstBin* bin = GST_BIN(element);
    gst_bus_set_sync_handler(bin->child_bus, onPartsMessage,
                             new Parts{static_cast<TrackDecoder*>(self), bin}, [](gpointer parts) {
                                 const std::lock_guard released(handOver());
                                 delete static_cast<Parts*>(parts);
                             });
}

void TrackDecoder::onSourceSetup(GstElement*, GstElement* source, gpointer self) {
    TrackDecoder* decoder = entered(self);
    if (decoder->m_source.url.isLocalFile())
        return;
    if (!g_object_class_find_property(G_OBJECT_GET_CLASS(source), "automatic-redirect")) {
        decoder->fail("the HTTP source cannot be kept from following redirects");
        return;
    }
    // Its own time is out a little later than ours.
    g_object_set(source, "automatic-redirect", FALSE, "timeout",
                 guint(decoder->m_source.timeoutMs / 1000 + 2), nullptr);
}

int TrackDecoder::onAutoplugSelect(GstElement*, GstPad*, GstCaps*, GstElementFactory* factory,
                                   gpointer) {
    constexpr int Try = 0;
    constexpr int Skip = 2;
    const char* kind = gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_KLASS);
    for (const char* word : KindsThatOpenMore) {
        if (kind && std::strstr(kind, word))
            return Skip;
    }
    return Try;
}

void TrackDecoder::onPadAdded(GstElement*, GstPad* pad, gpointer self) {
    const GstPadPtr entry = entered(self)->soundEntry();
    if (!gst_pad_is_linked(entry.get()))
        gst_pad_link(pad, entry.get());
}

void TrackDecoder::onNoMorePads(GstElement*, gpointer self) {
    TrackDecoder* decoder = entered(self);
    if (!gst_pad_is_linked(decoder->soundEntry().get()))
        decoder->fail("there is no sound in it");
}

GstFlowReturn TrackDecoder::onPreroll(GstAppSink* sink, gpointer self) {
    TrackDecoder* decoder = entered(self);
    const GstPadPtr pad(gst_element_get_static_pad(GST_ELEMENT(sink), "sink"));
    const GstCapsPtr caps(gst_pad_get_current_caps(pad.get()));
    const std::optional<AudioFormat> format = AudioFormat::fromCaps(caps.get());
    if (format)
        decoder->ready(*format);
    else
        decoder->fail("its sound cannot be read");
    return GST_FLOW_OK;
}

void TrackDecoder::onEos(GstAppSink*, gpointer self) {
    TrackDecoder* decoder = entered(self);
    if (!decoder->isReported())
        decoder->fail("there is no sound in it");
}

GstBusSyncReply TrackDecoder::onMessage(GstBus*, GstMessage* message, gpointer self) {
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
        entered(self)->fail(errorText(message));
    else if (gst_message_has_name(message, "http-headers"))
        entered(self)->noteHeaders(gst_message_get_structure(message));
    gst_message_unref(message);
    return GST_BUS_DROP;
}

void TrackDecoder::noteHeaders(const GstStructure* headers) {
    guint status = 0;
    const GValue* fields = gst_structure_get_value(headers, "response-headers");
    if (!gst_structure_get_uint(headers, "http-status-code", &status) || status < FirstRedirect ||
        status > LastRedirect || !fields || !GST_VALUE_HOLDS_STRUCTURE(fields))
        return;
    const GstStructure* response = gst_value_get_structure(fields);
    for (int i = 0; i < gst_structure_n_fields(response); ++i) {
        const char* name = gst_structure_nth_field_name(response, guint(i));
        const char* location = gst_structure_get_string(response, name);
        if (g_ascii_strcasecmp(name, "Location") != 0 || !location)
            continue;
        const std::lock_guard lock(m_mutex);
        if (!m_reported)
            m_events.push({EngineEvent::Kind::DecoderRedirected, m_id, 0, location});
        m_reported = true;
    }
}

// The bin that finds the decoders holds back what a new element reports until it is plugged in. An
// element with a thread of its own may have given up by then: its error is dropped, and nothing
// else ever comes of it.
GstBusSyncReply TrackDecoder::onPartsMessage(GstBus*, GstMessage* message, gpointer data) {
    const Parts parts = enteredParts(data);
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
        parts.decoder->noteError(message);
    GST_BIN_GET_CLASS(parts.bin)->handle_message(parts.bin, message);
    return GST_BUS_DROP;
}

void TrackDecoder::noteError(GstMessage* message) {
    const std::lock_guard lock(m_mutex);
    GstObject* from = GST_MESSAGE_SRC(message);
    if (!GST_IS_ELEMENT(from) || m_partsError.from.get() == GST_ELEMENT(from))
        return; // the first one of an element tells most
    m_partsError.from.reset(GST_ELEMENT(gst_object_ref(from)));
    m_partsError.text = errorText(message);
    m_partsError.at = std::chrono::steady_clock::now();
}
