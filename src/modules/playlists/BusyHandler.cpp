#include "BusyHandler.h"

#include <algorithm>
#include <sqlite3.h>

#include <QThread>

#include "CMEnding.h"
#include "ModuleLog.h"

void BusyHandler::attachTo(sqlite3* connection) {
    sqlite3_busy_handler(connection, &BusyHandler::onBusy, this);
}

int BusyHandler::onBusy(void* handler, int tries) {
    return static_cast<BusyHandler*>(handler)->wait(tries) ? 1 : 0;
}

void BusyHandler::beginToWait() {
    if (!m_isStarting) {
        m_end.setRemainingTime(MaxWaitMs);
    } else if (!m_hasWaited) {
        m_hasWaited = true;
        m_end.setRemainingTime(m_maxStartWaitMs);
        LOG4CPLUS_WARN(moduleLog(), "Another process holds the PlayList database file, waiting "
                                    "for it for up to "
                                        << m_maxStartWaitMs << " ms");
    }
}

bool BusyHandler::wait(int tries) {
    constexpr qint64 MaxPauseMs = 25;
    constexpr int LastShortPause = 4; // 1, 2, 4, 8, 16 ms
    if (tries == 0)
        beginToWait();
    if (cmEndRequested() || m_end.hasExpired())
        return false;
    const qint64 pause = tries > LastShortPause ? MaxPauseMs : qint64(1) << tries;
    QThread::msleep(ulong(std::clamp<qint64>(m_end.remainingTime(), 1, pause)));
    return true;
}
