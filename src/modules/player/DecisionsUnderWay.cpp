#include "DecisionsUnderWay.h"

DecisionsUnderWay::Ticket DecisionsUnderWay::sendPlay(StreamerPlayLogic* from) {
    Ticket ticket = sendOther(true);
    ticket.plays = true;
    ++m_playsUnderWay;
    m_lastSender = from;
    return ticket;
}

DecisionsUnderWay::Ticket DecisionsUnderWay::sendOther(bool decides) {
    m_count += decides ? 1 : 0;
    m_underWay += decides ? 1 : 0;
    return {decides, false, m_stops};
}

bool DecisionsUnderWay::takeTurn(const Ticket& ticket) {
    m_underWay -= ticket.decides ? 1 : 0;
    // Those that were called off are not counted any more.
    if (ticket.plays && ticket.stops != m_stops)
        return false;
    m_playsUnderWay -= ticket.plays ? 1 : 0;
    return true;
}

void DecisionsUnderWay::callOffPlays() {
    m_playsUnderWay = 0;
    ++m_stops;
}
