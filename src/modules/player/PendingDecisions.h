#pragma once

#include <QPointer>

#include "StreamerPlayLogic.h"

// Counts the decisions about what plays from the moment when they are sent: each takes its turn in
// the transport's queue, and until then what plays is not what was decided. A user's stop cancels
// the play commands that are pending. A value of the transport, on its thread.
class PendingDecisions {
public:
    // What a command is counted as.
    struct Ticket {
        bool decides = false;
        bool plays = false;
        quint64 cancellations = 0; // by then
    };

    // A play command is a decision.
    Ticket addPlay(StreamerPlayLogic* from);
    Ticket addOther(bool decides);
    // The command's turn has come. False for a play command that was cancelled.
    bool resolve(const Ticket& ticket);
    void cancelPlays();

    bool hasAny() const { return m_pending > 0; }
    bool hasPlay() const { return m_pendingPlays > 0; }
    // Who sent the last play command, null when it is gone.
    StreamerPlayLogic* lastSender() const { return m_lastSender; }

    // Counts a user's request, which decides at once. All decisions so far, those of users
    // included: as long as this is the same, no other has come.
    quint64 countRequest() { return ++m_count; }
    quint64 count() const { return m_count; }

private:
    quint64 m_count = 0;
    int m_pending = 0;
    int m_pendingPlays = 0;
    QPointer<StreamerPlayLogic> m_lastSender;
    quint64 m_cancellations = 0;
};
