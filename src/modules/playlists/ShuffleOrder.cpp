#include "ShuffleOrder.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace {
// The minimal standard generator; multiplier and modulus are fixed.
using MinimalStandardEngine =
    std::linear_congruential_engine<std::uint_fast64_t, 16807, 0, 2147483647>;
} // namespace

ShuffleOrder::ShuffleOrder(const QVector<int>& entries, int cursor)
    : m_shuffleSeq(entries), m_shuffleCurIndex(cursor) {}

void ShuffleOrder::setPlayingPlace(int place) {
    m_shuffleCurIndex = place;
    if (isAnnounced())
        m_cursorBeforeAnnouncement = place;
}

void ShuffleOrder::restart(int size) {
    m_shuffleSeq.resize(size);
    std::iota(m_shuffleSeq.begin(), m_shuffleSeq.end(), 0);
    setPlayingPlace(0);
}

void ShuffleOrder::shuffleTail(int from, quint64 seed) {
    if (from < 0 || from >= m_shuffleSeq.size())
        return;
    MinimalStandardEngine engine(seed == 0 ? 1 : seed);
    std::shuffle(m_shuffleSeq.begin() + from, m_shuffleSeq.end(), engine);
}

int ShuffleOrder::bringToFront(int number) {
    const int place = m_shuffleSeq.indexOf(number);
    if (place >= 0)
        m_shuffleSeq.move(place, 0);
    return place;
}

int ShuffleOrder::placeAfter(int place, bool wraps) const {
    if (place >= 0 && place + 1 < m_shuffleSeq.size())
        return place + 1;
    return wraps && !m_shuffleSeq.isEmpty() ? 0 : None;
}

int ShuffleOrder::next(bool wraps) {
    const int place = placeAfter(m_shuffleCurIndex, wraps);
    if (place == None)
        return None;
    m_shuffleCurIndex = place;
    return m_shuffleSeq.at(place);
}

int ShuffleOrder::previous(bool wraps) {
    const int size = m_shuffleSeq.size();
    if (m_shuffleCurIndex > 0 && m_shuffleCurIndex < size)
        --m_shuffleCurIndex;
    else if (wraps && size > 0)
        m_shuffleCurIndex = size - 1;
    else
        return None;
    return m_shuffleSeq.at(m_shuffleCurIndex);
}

int ShuffleOrder::numberAfterPlaying(bool wraps) const {
    const int place = placeAfter(playingPlace(), wraps);
    return place == None ? None : m_shuffleSeq.at(place);
}

void ShuffleOrder::announceNext(bool wraps) {
    const int playing = playingPlace();
    returnToPlaying();
    next(wraps);
    setAnnounced(playing);
}

void ShuffleOrder::returnToPlaying() {
    m_shuffleCurIndex = playingPlace();
    m_cursorBeforeAnnouncement.reset();
}

void ShuffleOrder::insertNext(int first, int count) {
    renumber([=](int number) { return number >= first ? number + count : number; });
    const int at = std::min(m_shuffleCurIndex + 1, m_shuffleSeq.size());
    m_shuffleSeq.insert(at, count, 0);
    std::iota(m_shuffleSeq.begin() + at, m_shuffleSeq.begin() + at + count, first);
}

void ShuffleOrder::append(int number) {
    m_shuffleSeq.append(number);
    setPlayingPlace(playingPlace());
}

void ShuffleOrder::remove(const QList<int>& indices) {
    // The j-th index, from 0, takes the entry that was j higher to begin with: one pass does for
    // all of them.
    QVector<int> taken;
    taken.reserve(indices.size());
    for (int index : indices)
        taken.append(index + taken.size());

    const int playing = playingPlace();
    int playingLeft = playing;
    int left = 0;
    for (int place = 0; place < m_shuffleSeq.size(); ++place) {
        const int number = m_shuffleSeq.at(place);
        const auto at = std::lower_bound(taken.cbegin(), taken.cend(), number);
        if (at == taken.cend() || *at != number)
            m_shuffleSeq[left++] = number - int(at - taken.cbegin());
        else if (place <= playing)
            --playingLeft;
    }
    m_shuffleSeq.resize(left);
    setPlayingPlace(playingLeft);
}

void ShuffleOrder::playInstead(int number) {
    const int place = m_shuffleSeq.indexOf(number);
    if (place < 0)
        return;
    const int heard = playingPlace();
    const int now = place <= heard ? heard : heard + 1;
    m_shuffleSeq.move(place, now);
    setPlayingPlace(now);
}
