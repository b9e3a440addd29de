#pragma once

#include <optional>

#include <QByteArray>
#include <QVector>

#include "CMPath.h"
#include "HttpMessages.h"

class EventHub;

// One reader of the events: a place in the hub's history and the frame that is just being sent. A
// reader that is too slow falls out of the history and is told to read everything again; it costs
// no memory and delays no other. Owned by its connection; the hub knows it while it lives.
class EventStream : public HttpBodySource {
public:
    // Goes on after `lastEventId`, or begins with what comes next. The values at `watched` count as
    // watched while the stream lives: there are some that only then have events.
    EventStream(EventHub* hub, std::optional<quint64> lastEventId, const QVector<CMPath>& watched);
    ~EventStream() override;
    EventStream(const EventStream&) = delete;
    EventStream& operator=(const EventStream&) = delete;

    qint64 read(char* buffer, qint64 size) override;
    // Sends a comment line unless something is on its way anyhow.
    void sendComment();

private:
    bool nextFrame();

    EventHub* m_hub;
    QVector<CMPath> m_watched;
    quint64 m_position;
    QByteArray m_frame;
    int m_sent = 0;
    bool m_commentDue = false;
};
