#pragma once

#include "PlayListPlayLogic.h"

// The look of tests and benchmarks at what the play logic keeps to itself; a test may lay it out by
// hand.
class PlayLogicProbe {
public:
    explicit PlayLogicProbe(PlayListPlayLogic* logic) : m(logic) {}

    PlayListManager* manager() { return m->m_manager; }
    PlayListBase* current() { return m->m_currentPlayList; }
    bool& shuffle() { return m->m_shuffleEnabled; }
    PlayListPlayLogic::RepeatMode& repeat() { return m->m_repeatMode; }
    QVector<int>& order() { return m->m_shuffleOrder.m_shuffleSeq; }
    int& cursor() { return m->m_shuffleOrder.m_shuffleCurIndex; }
    OrvoRoles& announcedRoles() { return m->m_announcedRoles; }
    int& errorCount() { return m->m_errorCount; }
    bool& nextMediaPrepared() { return m->m_nextMediaPrepared; }

private:
    PlayListPlayLogic* m;
};
