#include "TrackDecoder.h"

#include <array>
#include <cmath>
#include <cstring>
#include <mutex>
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

// What follows runs on GStreamer's threads, each callback with its own part of the report.
using ReportPtr = std::shared_ptr<DecoderReport>;

// A bin of the pipeline, with the report that hears what its parts say.
struct BinReport {
    ReportPtr report;
    GstBin* bin;
};

struct HttpReport {
    ReportPtr report;
    int timeoutMs;
};

template <typename T>
T entered(gpointer data) {
    const std::lock_guard lock(handOver());
    return *static_cast<const T*>(data);
}

template <typename T>
void release(gpointer data) {
    const std::lock_guard lock(handOver());
    delete static_cast<T*>(data);
}

template <typename T, typename Callback>
void connect(gpointer object, const char* signal, Callback callback, T data) {
    g_signal_connect_data(
        object, signal, G_CALLBACK(callback), new T(std::move(data)),
        [](gpointer gone, GClosure*) { release<T>(gone); }, GConnectFlags(0));
}

// The bin that finds the decoders holds back what a new element reports until it is plugged in. An
// element with a thread of its own may have given up by then: its error is dropped, and nothing
// else ever comes of it.
GstBusSyncReply onPartsMessage(GstBus*, GstMessage* message, gpointer data) {
    const auto parts = entered<BinReport>(data);
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
        parts.report->noteError(message);
    GST_BIN_GET_CLASS(parts.bin)->handle_message(parts.bin, message);
    return GST_BUS_DROP;
}

void onElementAdded(GstBin*, GstBin*, GstElement* element, gpointer data) {
    const GstElementFactory* factory = gst_element_get_factory(element);
    if (!factory || std::strcmp(GST_OBJECT_NAME(factory), "decodebin") != 0)
        return;
    GstBin* bin = GST_BIN(element);
    auto parts = std::make_unique<BinReport>(BinReport{entered<ReportPtr>(data), bin});
    const std::lock_guard lock(handOver());
    gst_bus_set_sync_handler(bin->child_bus, onPartsMessage, parts.release(), release<BinReport>);
}

void onHttpSetup(GstElement*, GstElement* source, gpointer data) {
    const auto http = entered<HttpReport>(data);
    if (!g_object_class_find_property(G_OBJECT_GET_CLASS(source), "automatic-redirect")) {
        http.report->fail("the HTTP source cannot be kept from following redirects");
        return;
    }
    // Its own time is out a little later than ours.
    g_object_set(source, "automatic-redirect", FALSE, "timeout", guint(http.timeoutMs / 1000 + 2),
                 nullptr);
}

int onAutoplugSelect(GstElement*, GstPad*, GstCaps*, GstElementFactory* factory, gpointer) {
    constexpr int Try = 0;
    constexpr int Skip = 2;
    const char* kind = gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_KLASS);
    for (const char* word : KindsThatOpenMore) {
        if (kind && std::strstr(kind, word))
            return Skip;
    }
    return Try;
}

void onPadAdded(GstElement*, GstPad* pad, gpointer data) {
    const GstPadPtr entry = entered<ReportPtr>(data)->entry();
    if (entry && !gst_pad_is_linked(entry.get()))
        gst_pad_link(pad, entry.get());
}

void onNoMorePads(GstElement*, gpointer data) {
    const auto report = entered<ReportPtr>(data);
    const GstPadPtr entry = report->entry();
    if (entry && !gst_pad_is_linked(entry.get()))
        report->fail("there is no sound in it");
}

GstFlowReturn onPreroll(GstAppSink* sink, gpointer data) {
    const auto report = entered<ReportPtr>(data);
    const GstPadPtr pad(gst_element_get_static_pad(GST_ELEMENT(sink), "sink"));
    const GstCapsPtr caps(gst_pad_get_current_caps(pad.get()));
    const std::optional<AudioFormat> format = AudioFormat::fromCaps(caps.get());
    if (format)
        report->ready(*format);
    else
        report->fail("its sound cannot be read");
    return GST_FLOW_OK;
}

void onEos(GstAppSink*, gpointer data) {
    const auto report = entered<ReportPtr>(data);
    if (!report->isReported())
        report->fail("there is no sound in it");
}

void noteHeaders(DecoderReport& report, const GstStructure* headers) {
    guint status = 0;
    const GValue* fields = gst_structure_get_value(headers, "response-headers");
    if (!gst_structure_get_uint(headers, "http-status-code", &status) || status < FirstRedirect ||
        status > LastRedirect || !fields || !GST_VALUE_HOLDS_STRUCTURE(fields))
        return;
    const GstStructure* response = gst_value_get_structure(fields);
    for (int i = 0; i < gst_structure_n_fields(response); ++i) {
        const char* name = gst_structure_nth_field_name(response, guint(i));
        const char* location = gst_structure_get_string(response, name);
        if (location && g_ascii_strcasecmp(name, "Location") == 0)
            report.redirect(location);
    }
}

GstBusSyncReply onMessage(GstBus*, GstMessage* message, gpointer data) {
    const auto report = entered<ReportPtr>(data);
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
        report->fail(errorText(message));
    else if (gst_message_has_name(message, "http-headers"))
        noteHeaders(*report, gst_message_get_structure(message));
    gst_message_unref(message);
    return GST_BUS_DROP;
}
} // namespace

TrackDecoder::TrackDecoder(quint64 id, const SourceRules::Source& source,
                           std::optional<AudioFormat> wanted, EngineEvents& events)
    : m_id(id), m_source(source), m_report(std::make_shared<DecoderReport>(id, events)) {
    if (!source.refusal.isEmpty()) {
        m_report->fail(source.refusal.toStdString());
        return;
    }
    if (!descriptorsAreFree(DescriptorsOfAPipeline) || !build(wanted)) {
        m_report->fail("there are not enough file descriptors or memory");
        return;
    }
    if (gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
        m_report->fail("it cannot be opened"); // unless something told more already
}

TrackDecoder::~TrackDecoder() {
    m_report->close();
    if (m_pipeline && !bringToRest(m_pipeline.get())) {
        // Ending elements that run would end the process.
        LOG4CPLUS_ERROR(playerLog(), "a decoder does not come to rest and is kept");
        static_cast<void>(m_pipeline.release());
    }
}

bool TrackDecoder::build(const std::optional<AudioFormat>& wanted) {
    m_pipeline.reset(gst_pipeline_new(nullptr));
    GstElement* source = addElement(m_pipeline.get(), "uridecodebin");
    GstElement* convert = addElement(m_pipeline.get(), "audioconvert");
    GstElement* resample = addElement(m_pipeline.get(), "audioresample");
    GstElement* sink = addElement(m_pipeline.get(), "appsink");
    if (!source || !convert || !resample || !sink) {
        m_pipeline.reset();
        return false;
    }
    m_sink = GST_APP_SINK(sink);
    m_report->setEntry(GstPadPtr(gst_element_get_static_pad(convert, "sink")));

    const GstCapsPtr decoded(gst_caps_from_string("audio/x-raw(ANY)"));
    g_object_set(source, "uri", m_source.url.toEncoded().constData(), "caps", decoded.get(),
                 "expose-all-streams", FALSE, nullptr);
    // No dithering: the same file always gives the same samples.
    gst_util_set_object_arg(G_OBJECT(convert), "dithering", "none");
    gst_util_set_object_arg(G_OBJECT(convert), "noise-shaping", "none");
    const std::string caps = wanted ? wanted->caps() : AudioFormat::anyCaps();
    const GstCapsPtr delivered(gst_caps_from_string(caps.c_str()));
    g_object_set(sink, "sync", FALSE, "caps", delivered.get(), "max-buffers", BuffersAhead,
                 nullptr);
    gst_element_link_many(convert, resample, sink, nullptr);
    listen(source);
    return true;
}

void TrackDecoder::listen(GstElement* source) {
    connect(m_pipeline.get(), "deep-element-added", onElementAdded, m_report);
    if (!m_source.url.isLocalFile())
        connect(source, "source-setup", onHttpSetup, HttpReport{m_report, m_source.timeoutMs});
    connect(source, "autoplug-select", onAutoplugSelect, m_report);
    connect(source, "pad-added", onPadAdded, m_report);
    connect(source, "no-more-pads", onNoMorePads, m_report);
    GstAppSinkCallbacks callbacks{};
    callbacks.new_preroll = onPreroll;
    callbacks.eos = onEos;
    gst_app_sink_set_callbacks(m_sink, &callbacks, new ReportPtr(m_report), release<ReportPtr>);
    const GstBusPtr bus(gst_element_get_bus(m_pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), onMessage, new ReportPtr(m_report), release<ReportPtr>);
    const std::lock_guard lock(handOver());
}
void TrackDecoder::giveUp(const std::string& text) {
    if (!m_report->isReported())
        m_report->fail(text);
}

void TrackDecoder::lookForUnheardError() {
    const std::string text = m_report->unheardError(m_pipeline.get());
    if (!text.empty())
        giveUp(text);
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
            m_report->fail("it gives nothing more");
        const std::string unheard = over ? std::string() : m_report->unheardError(m_pipeline.get());
        if (!unheard.empty())
            m_report->fail(unheard);
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
