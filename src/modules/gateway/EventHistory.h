#pragma once

#include <deque>

#include <QByteArray>

// The last events, ready to be sent, so that a reader that lost its connection, or reads slowly,
// can go on where it was. Bounded in number and bytes; what no longer fits is forgotten, oldest
// first. Owned by the hub.
//
// Ids rise by one from a base that is drawn at random for every run, so an id of an earlier run is
// recognised: ids stay below 2^53, whole in every client's numbers.
class EventHistory {
public:
    // No event ever has this id.
    static constexpr quint64 NoId = ~quint64(0);

    struct Limits {
        int events = 4096;
        int bytes = 4 * 1024 * 1024;
    };

    explicit EventHistory(const Limits& limits);
    EventHistory(const Limits& limits, quint64 base);

    void append(const QByteArray& type, const QByteArray& json);
    // An event that is larger than all there is room for: its readers read everything again.
    void skip();

    // The id of the newest event; before the first one the base.
    quint64 lastId() const { return m_firstId + m_frames.size() - 1; }
    // Whether everything that came after the event `id` is still here.
    bool reaches(quint64 id) const { return id + 1 >= m_firstId && id <= lastId(); }
    // The event after `id`, as it goes over the wire. `id` is reached and not the last one.
    const QByteArray& frameAfter(quint64 id) const { return m_frames[id + 1 - m_firstId]; }
    qint64 bytes() const { return m_bytes; }
    int maxBytes() const { return m_limits.bytes; }

private:
    Limits m_limits;
    quint64 m_firstId;
    std::deque<QByteArray> m_frames;
    qint64 m_bytes = 0;
};
