#include "SleepTimer.h"

#include "CMConnect.h"

SleepTimer::SleepTimer(QObject* parent) : QObject(parent) {
    m_timer.setSingleShot(true);
    cmConnect(&m_timer, &QTimer::timeout, this, [this] {
        Q_EMIT elapsed();
        Q_EMIT changed();
    });
}

void SleepTimer::start(qint64 ms) {
    set(ms, false);
}

void SleepTimer::startAtEndOfTrack() {
    set(0, true);
}

void SleepTimer::set(qint64 ms, bool atEndOfTrack) {
    const bool wasOff = !m_timer.isActive() && !m_atEndOfTrack;
    m_timer.stop();
    m_atEndOfTrack = atEndOfTrack;
    if (ms > 0) {
        m_since.start();
        m_timer.start(int(ms));
    }
    if (ms > 0 || atEndOfTrack || !wasOff)
        Q_EMIT changed();
}

qint64 SleepTimer::leftMs() const {
    return m_timer.isActive() ? qMax<qint64>(1, m_timer.interval() - m_since.elapsed()) : 0;
}
