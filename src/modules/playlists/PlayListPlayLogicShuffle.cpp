#include <cstdlib>
#include <ctime>

#include <QElapsedTimer>

#include "PlayListBase.h"
#include "PlayListPlayLogic.h"
#include "PlayLogicLog.h"
#include "RepeatedLogLines.h"

namespace {
constexpr qint64 SeedModulus = 0x7FFFFFFF;
} // namespace

void PlayListPlayLogic::setShuffleEnabled(bool enabled) {
    CM_ENTER_ARGS(playLogicLog(), "enabled=" << enabled);
    m_shuffleEnabled = enabled;
    if (!m_currentPlayList)
        return;
    m_currentPlayList->setShuffle(enabled);
    if (enabled)
        initShuffle(m_currentPlayList->getLastSequenceNumber());
    Q_EMIT upNextChanged();
}

void PlayListPlayLogic::initShuffle(int startItem) {
    if (!m_currentPlayList) {
        m_shuffleOrder = ShuffleOrder();
        return;
    }
    const int size = m_currentPlayList->getSize();
    if (size <= 0) {
        // Nothing to order: order and cursor stay.
        LOG4CPLUS_DEBUG(playLogicLog(), "size <= 0");
        return;
    }
    m_shuffleOrder.restart(size);
    randomizeShuffleItems(0);
    if (startItem >= 0) {
        const int index = m_shuffleOrder.bringToFront(startItem);
        LOG4CPLUS_DEBUG(playLogicLog(), "index of startItem in sequence: " << index);
    }
    debugShuffleItems();
}

void PlayListPlayLogic::randomizeShuffleItems(int from) {
    // For modules of the same process that use rand(); the shuffle below does not draw from it.
    std::srand(unsigned(std::time(nullptr))); // NOLINT(cert-msc51-cpp)
    QElapsedTimer clock;
    clock.start();
    const qint64 seed = clock.msecsSinceReference() % SeedModulus;
    m_shuffleOrder.shuffleTail(from, quint64(seed));
}

int PlayListPlayLogic::getNextShuffleItem() {
    LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex before next: " << m_shuffleOrder.cursor());
    const int result = m_shuffleOrder.next(m_repeatMode == RepeatAll);
    const int size = m_shuffleOrder.entries().size();
    if (size == 0)
        LOG4CPLUS_DEBUG(playLogicLog(), "error: m_shuffleSeq.size: " << size);
    else if (result != ShuffleOrder::None && m_shuffleOrder.cursor() == 0)
        LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex is set to first item in m_shuffleSeq");
    LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex after next: " << m_shuffleOrder.cursor());
    LOG4CPLUS_DEBUG(playLogicLog(), "index: " << result);
    return result;
}

int PlayListPlayLogic::getPrevShuffleItem() {
    LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex before prev: " << m_shuffleOrder.cursor());
    const int result = m_shuffleOrder.previous(m_repeatMode == RepeatAll);
    const int size = m_shuffleOrder.entries().size();
    if (size == 0)
        LOG4CPLUS_DEBUG(playLogicLog(), "error: m_shuffleSeq.size: " << size);
    else if (result != ShuffleOrder::None && m_shuffleOrder.cursor() == size - 1)
        LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex is set to last item in m_shuffleSeq");
    LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex after prev: " << m_shuffleOrder.cursor());
    LOG4CPLUS_DEBUG(playLogicLog(), "index: " << result);
    return result;
}

void PlayListPlayLogic::debugShuffleItems() const {
    if (!playLogicLog().isEnabledFor(log4cplus::DEBUG_LOG_LEVEL))
        return;
    const QVector<int>& order = m_shuffleOrder.entries();
    LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleSeq.size(): " << order.size());
    RepeatedLogLines entries(playLogicLog(), log4cplus::DEBUG_LOG_LEVEL);
    for (int i = 0; i < order.size(); ++i) {
        if (entries.next())
            LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleSeq entry: #" << i << " " << order.at(i));
    }
}
