#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <numeric>
#include <random>

#include <QElapsedTimer>

#include "AlikeLines.h"
#include "PlayListBase.h"
#include "PlayListPlayLogic.h"
#include "PlayLogicLog.h"

namespace {
// The minimal standard generator. Multiplier and modulus are fixed: a seed gives the same order
// everywhere.
using MinimalStandardEngine =
    std::linear_congruential_engine<std::uint_fast64_t, 16807, 0, 2147483647>;
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
        m_shuffleSeq.clear();
        m_shuffleCurIndex = -1;
        return;
    }
    const int size = m_currentPlayList->getSize();
    if (size <= 0) {
        // Nothing to order: order and cursor stay.
        LOG4CPLUS_DEBUG(playLogicLog(), "size <= 0");
        return;
    }
    m_shuffleSeq.resize(size);
    std::iota(m_shuffleSeq.begin(), m_shuffleSeq.end(), 0);
    randomizeShuffleItems(0);
    if (startItem >= 0) {
        const int index = m_shuffleSeq.indexOf(startItem);
        LOG4CPLUS_DEBUG(playLogicLog(), "index of startItem in sequence: " << index);
        if (index >= 0) {
            m_shuffleSeq.remove(index);
            m_shuffleSeq.prepend(startItem);
        }
    }
    debugShuffleItems();
    m_shuffleCurIndex = 0;
    if (m_cursorBeforeAnnouncement)
        m_cursorBeforeAnnouncement = 0;
}

void PlayListPlayLogic::randomizeShuffleItems(int from) {
    // For modules of the same process that use rand(); the shuffle below does not draw from it.
    std::srand(unsigned(std::time(nullptr))); // NOLINT(cert-msc51-cpp)
    QElapsedTimer clock;
    clock.start();
    const qint64 seed = clock.msecsSinceReference() % SeedModulus;
    shuffleTail(m_shuffleSeq, from, quint64(seed));
}

void PlayListPlayLogic::shuffleTail(QVector<int>& order, int from, quint64 seed) {
    if (from < 0 || from >= order.size())
        return;
    MinimalStandardEngine engine(seed == 0 ? 1 : seed);
    std::shuffle(order.begin() + from, order.end(), engine);
}

int PlayListPlayLogic::nextShufflePlace() const {
    if (m_shuffleCurIndex >= 0 && m_shuffleCurIndex + 1 < m_shuffleSeq.size())
        return m_shuffleCurIndex + 1;
    return m_repeatMode == RepeatAll && !m_shuffleSeq.isEmpty() ? 0 : -1;
}

int PlayListPlayLogic::getNextShuffleItem() {
    LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex before next: " << m_shuffleCurIndex);
    const int size = m_shuffleSeq.size();
    int result = -1;
    if (size == 0) {
        LOG4CPLUS_DEBUG(playLogicLog(), "error: m_shuffleSeq.size: " << size);
    } else if (const int place = nextShufflePlace(); place >= 0) {
        m_shuffleCurIndex = place;
        if (place == 0)
            LOG4CPLUS_DEBUG(playLogicLog(),
                            "m_shuffleCurIndex is set to first item in m_shuffleSeq");
        result = m_shuffleSeq.at(place);
    }
    LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex after next: " << m_shuffleCurIndex);
    LOG4CPLUS_DEBUG(playLogicLog(), "index: " << result);
    return result;
}

int PlayListPlayLogic::getPrevShuffleItem() {
    LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex before prev: " << m_shuffleCurIndex);
    const int size = m_shuffleSeq.size();
    int result = -1;
    if (size == 0) {
        LOG4CPLUS_DEBUG(playLogicLog(), "error: m_shuffleSeq.size: " << size);
    } else if (m_shuffleCurIndex > 0 && m_shuffleCurIndex < size) {
        result = m_shuffleSeq.at(--m_shuffleCurIndex);
    } else if (m_repeatMode == RepeatAll) {
        m_shuffleCurIndex = size - 1;
        LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex is set to last item in m_shuffleSeq");
        result = m_shuffleSeq.at(m_shuffleCurIndex);
    }
    LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleCurIndex after prev: " << m_shuffleCurIndex);
    LOG4CPLUS_DEBUG(playLogicLog(), "index: " << result);
    return result;
}

void PlayListPlayLogic::debugShuffleItems() const {
    if (!playLogicLog().isEnabledFor(log4cplus::DEBUG_LOG_LEVEL))
        return;
    LOG4CPLUS_DEBUG(playLogicLog(), "m_shuffleSeq.size(): " << m_shuffleSeq.size());
    AlikeLines entries(playLogicLog(), log4cplus::DEBUG_LOG_LEVEL);
    for (int i = 0; i < m_shuffleSeq.size(); ++i) {
        if (entries.next())
            LOG4CPLUS_DEBUG(playLogicLog(),
                            "m_shuffleSeq entry: #" << i << " " << m_shuffleSeq.at(i));
    }
}
