#include "PositionPublisher.h"

#include "CMConnect.h"
#include "CMRootWorker.h"
#include "OrvoPlayerPaths.h"
#include "PlayerTransport.h"

namespace {
constexpr int IntervalMs = 500;

} // namespace

PositionPublisher::PositionPublisher(const PlayerTransport& transport, CMSubscribe* events,
                                     QObject* parent)
    : QObject(parent), m_transport(transport), m_events(events) {
    m_timer.setSingleShot(true);
    // Coarse timers may come early, and then there would be three in a second.
    m_timer.setTimerType(Qt::PreciseTimer);
    cmConnect(&m_timer, &QTimer::timeout, this, &PositionPublisher::publish);
    cmConnect(&transport, &PlayerTransport::changed, this, &PositionPublisher::publishSoon);
    cmConnect(&transport, &PlayerTransport::repositioned, this, &PositionPublisher::publishSoon);
    cmConnect(CMRoot(), &CMRootWorker::valueWatched, this, &PositionPublisher::publishSoon);
}

void PositionPublisher::publishSoon() {
    if (m_timer.isActive() || !CMRoot()->isValueWatched(OrvoPlayerPositionPath()))
        return;
    const qint64 since = m_sinceLast.isValid() ? m_sinceLast.elapsed() : IntervalMs;
    m_timer.start(int(qBound<qint64>(0, IntervalMs - since, IntervalMs)));
}

void PositionPublisher::publish() {
    if (!CMRoot()->isValueWatched(OrvoPlayerPositionPath()))
        return;
    const qint64 position = m_transport.position();
    if (position != m_last) {
        m_events->valueChanged(OrvoPlayerPositionPath(), OrvoValue::fromI64(position),
                               OrvoValue::fromI64(m_last));
        m_last = position;
        m_sinceLast.start();
    }
    Q_EMIT ticked();
    if (m_transport.state() == OrvoPlayerState::Playing)
        m_timer.start(IntervalMs);
}
