#include "DecoderReport.h"

namespace {
// Plugging in a part takes milliseconds; what was not heard of its error by then never will be.
constexpr std::chrono::milliseconds UnheardAfter{200};
} // namespace

void DecoderReport::setEntry(GstPadPtr entry) {
    const std::lock_guard lock(m_mutex);
    m_entry = std::move(entry);
}

GstPadPtr DecoderReport::entry() const {
    const std::lock_guard lock(m_mutex);
    return GstPadPtr(m_entry ? GST_PAD(gst_object_ref(m_entry.get())) : nullptr);
}

void DecoderReport::close() {
    const std::lock_guard lock(m_mutex);
    m_closed = true;
    // Both belong to the pipeline, whose callbacks own this.
    m_entry.reset();
    m_partsError.from.reset();
}

void DecoderReport::push(EngineEvent::Kind kind, const std::string& text) {
    if (!m_reported && !m_closed)
        m_events.push({kind, m_id, 0, text});
    m_reported = true;
}

void DecoderReport::ready(const AudioFormat& format) {
    const std::lock_guard lock(m_mutex);
    if (!m_reported)
        m_format = format;
    push(EngineEvent::Kind::DecoderReady);
}

void DecoderReport::fail(const std::string& text) {
    const std::lock_guard lock(m_mutex);
    if (m_error.empty())
        m_error = text;
    // After its first sound the feeder finds the error when it gets there.
    push(EngineEvent::Kind::DecoderFailed, text);
}

void DecoderReport::redirect(const std::string& location) {
    const std::lock_guard lock(m_mutex);
    push(EngineEvent::Kind::DecoderRedirected, location);
}

void DecoderReport::noteError(GstMessage* message) {
    const std::lock_guard lock(m_mutex);
    GstObject* from = GST_MESSAGE_SRC(message);
    if (m_closed || !GST_IS_ELEMENT(from) || m_partsError.from.get() == GST_ELEMENT(from))
        return; // the first one of an element tells most
    m_partsError.from.reset(GST_ELEMENT(gst_object_ref(from)));
    m_partsError.text = errorText(message);
    m_partsError.at = std::chrono::steady_clock::now();
}

std::string DecoderReport::unheardError(GstElement* pipeline) const {
    const std::lock_guard lock(m_mutex);
    if (!m_partsError.from || std::chrono::steady_clock::now() - m_partsError.at < UnheardAfter)
        return {};
    // One that failed when it was tried was taken out again, for another one.
    return gst_object_has_as_ancestor(GST_OBJECT(m_partsError.from.get()), GST_OBJECT(pipeline))
               ? m_partsError.text
               : std::string();
}

AudioFormat DecoderReport::format() const {
    const std::lock_guard lock(m_mutex);
    return m_format;
}

bool DecoderReport::isReported() const {
    const std::lock_guard lock(m_mutex);
    return m_reported;
}

std::string DecoderReport::error() const {
    const std::lock_guard lock(m_mutex);
    return m_error;
}

std::string errorText(GstMessage* message) {
    GError* raw = nullptr;
    gst_message_parse_error(message, &raw, nullptr);
    const GErrorPtr error(raw);
    return error ? error->message : "it cannot be decoded";
}
