#include "EventHistory.h"

#include <QRandomGenerator>

#include "EventFrame.h"

namespace {
// Room for a million events between the bases of two runs that happen to be neighbours.
constexpr int EventBits = 20;

quint64 randomBase() {
    return quint64(QRandomGenerator::system()->generate()) << EventBits;
}
} // namespace

EventHistory::EventHistory(const Limits& limits) : EventHistory(limits, randomBase()) {}

EventHistory::EventHistory(const Limits& limits, quint64 base)
    : m_limits(limits), m_firstId(base + 1) {}

void EventHistory::append(const QByteArray& type, const QByteArray& json) {
    const QByteArray frame = EventFrame::event(lastId() + 1, type, json);
    m_frames.push_back(frame);
    m_bytes += frame.size();
    while (m_frames.size() > size_t(m_limits.events) || m_bytes > m_limits.bytes) {
        m_bytes -= m_frames.front().size();
        m_frames.pop_front();
        ++m_firstId;
    }
}

void EventHistory::skip() {
    m_firstId = lastId() + 2;
    m_frames.clear();
    m_bytes = 0;
}
