#include "PendingDecisions.h"

PendingDecisions::Ticket PendingDecisions::addPlay(StreamerPlayLogic* from) {
    Ticket ticket = addOther(true);
    ticket.plays = true;
    ++m_pendingPlays;
    m_lastSender = from;
    return ticket;
}

PendingDecisions::Ticket PendingDecisions::addOther(bool decides) {
    m_count += decides ? 1 : 0;
    m_pending += decides ? 1 : 0;
    return {.decides = decides, .cancellations = m_cancellations};
}

bool PendingDecisions::resolve(const Ticket& ticket) {
    m_pending -= ticket.decides ? 1 : 0;
    // Those that were cancelled are not counted any more.
    if (ticket.plays && ticket.cancellations != m_cancellations)
        return false;
    m_pendingPlays -= ticket.plays ? 1 : 0;
    return true;
}

void PendingDecisions::cancelPlays() {
    m_pendingPlays = 0;
    ++m_cancellations;
}
