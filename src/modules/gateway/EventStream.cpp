#include "EventStream.h"

#include <cstring>

#include "CMRootWorker.h"
#include "EventFrame.h"
#include "EventHub.h"

namespace {
// How long a browser waits before it connects again, in milliseconds.
constexpr int RetryMs = 2000;
} // namespace

EventStream::EventStream(EventHub* hub, std::optional<quint64> lastEventId,
                         const QVector<CMPath>& watched)
    : m_hub(hub), m_watched(watched) {
    for (const CMPath& path : watched)
        CMRoot()->addValueWatcher(path);
    const EventHistory& history = hub->history();
    m_position = lastEventId.value_or(history.lastId());
    // A reader that loses its connection before the first event can name the place, too.
    std::optional<quint64> place = m_position;
    if (!history.reaches(m_position)) {
        m_position = EventHistory::NoId;
        place.reset();
    }
    m_frame = EventFrame::greeting(RetryMs, place);
}

EventStream::~EventStream() {
    m_hub->remove(this);
    if (CMRootWorker* root = CMRootWorker::instance()) {
        for (const CMPath& path : qAsConst(m_watched))
            root->removeValueWatcher(path);
    }
}

qint64 EventStream::read(char* buffer, qint64 size) {
    qint64 count = 0;
    while (count < size && (m_sent < m_frame.size() || nextFrame())) {
        const qint64 part = qMin<qint64>(size - count, m_frame.size() - m_sent);
        std::memcpy(buffer + count, m_frame.constData() + m_sent, size_t(part));
        m_sent += int(part);
        count += part;
    }
    return count;
}

void EventStream::sendComment() {
    if (m_sent == m_frame.size() && m_position == m_hub->history().lastId())
        m_commentDue = true;
}

bool EventStream::nextFrame() {
    const EventHistory& history = m_hub->history();
    m_sent = 0;
    if (!history.reaches(m_position)) {
        m_position = history.lastId();
        m_frame = EventFrame::resync(m_position);
    } else if (m_position != history.lastId()) {
        m_frame = history.frameAfter(m_position++);
    } else if (m_commentDue) {
        m_frame = EventFrame::comment();
    } else {
        m_frame.clear();
        return false;
    }
    m_commentDue = false;
    return true;
}
