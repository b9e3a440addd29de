#include <algorithm>
#include <iterator>
#include <numeric>

#include <QScopedValueRollback>

#include "OrvoPlayEnums.h"
#include "OrvoPlayListEnums.h"
#include "PlayListBase.h"
#include "PlayListPlayLogic.h"
#include "PlayLogicInterface.h"
#include "PlayLogicLog.h"

// A slot that stops or starts playback returns at once: the stop may come back and take the current
// playlist away.

namespace {
constexpr int Gone = -1;
} // namespace

template <typename Moved>
void PlayListPlayLogic::renumberAnnounced(Moved moved) {
    const OrvoValue position = m_announcedRoles.value();
    if (!position.containsI32_())
        return;
    const int newNumber = moved(position.i32());
    if (newNumber == Gone)
        m_announcedRoles.removeAttribute(OrvoRoles::Value());
    else
        m_announcedRoles.setValue(OrvoValue::fromI32(newNumber));
}

void PlayListPlayLogic::stopPlayer() {
    m_hasPlayingItem = false;
    PlayLogicInterface::playerInstance()->stop(OrvoPlayerStopReason::Requested);
    Q_EMIT upNextChanged();
}

void PlayListPlayLogic::on_playlist_deleted(int plid) {
    if (!m_currentPlayList || m_currentPlayList->getUid() != plid)
        return;
    stopPlayer();
    setCurrentPlayList(nullptr);
}

void PlayListPlayLogic::on_currentPlayList_cleared() {
    CM_ENTER(playLogicLog());
    // The item that was announced went, too.
    m_announcedRoles = OrvoRoles();
    m_cursorBeforeAnnouncement.reset();
    stopPlayer();
}

void PlayListPlayLogic::on_currentPlayList_itemsAdded(const QString& positionStr, int firstSeqNum,
                                                      int count) {
    LOG4CPLUS_DEBUG(playLogicLog(), "pos=" << positionStr << " lastSeq="
                                           << m_currentPlayList->getLastSequenceNumber());
    const OrvoPlayListAddPosition::Enum position = OrvoPlayListAddPosition::fromString(positionStr);
    if (position == OrvoPlayListAddPosition::AfterCurrent &&
        m_announcedRoles.value().containsI32_()) {
        // The player hears of its next item before the order is patched, and once more below where
        // the patched order leads to another.
        prepareNextMedia();
    } else {
        renumberAnnounced(
            [=](int seqNum) { return seqNum >= firstSeqNum ? seqNum + count : seqNum; });
    }
    putCursorOnPlaying();
    if (m_shuffleEnabled)
        addToShuffle(position, firstSeqNum, count);
    // With nothing announced the player asks when the track ends.
    if (m_announcedRoles.isEmpty())
        Q_EMIT upNextChanged();
    else
        announceAnew();
}

void PlayListPlayLogic::addToShuffle(int position, int firstSeqNum, int count) {
    if (position == OrvoPlayListAddPosition::Now ||
        position == OrvoPlayListAddPosition::AfterCurrent) {
        // The new items play next, in their own order.
        for (int& entry : m_shuffleSeq) {
            if (entry >= firstSeqNum)
                entry += count;
        }
        const int at = std::min(m_shuffleCurIndex + 1, m_shuffleSeq.size());
        m_shuffleSeq.insert(at, count, 0);
        std::iota(m_shuffleSeq.begin() + at, m_shuffleSeq.begin() + at + count, firstSeqNum);
    } else if (position == OrvoPlayListAddPosition::Append) {
        // Mixed into what has not played yet: shuffling the tail once gives what shuffling it after
        // each item would.
        const int size = m_shuffleSeq.size();
        m_shuffleSeq.resize(size + count);
        std::iota(m_shuffleSeq.begin() + size, m_shuffleSeq.end(), firstSeqNum);
        randomizeShuffleItems(m_shuffleCurIndex + 1);
    } else {
        LOG4CPLUS_DEBUG(playLogicLog(), "Unknown position specifier: "
                                            << OrvoPlayListAddPosition::toString(position));
    }
}

void PlayListPlayLogic::on_currentPlayList_itemsInserted(const QList<int>& positions) {
    CM_ENTER_ARGS(playLogicLog(), "positions.size()=" << positions.size());
    const auto moved = [&positions](int seqNum) {
        return ItemPlaces::afterAdding(positions, seqNum);
    };
    putCursorOnPlaying();
    if (m_shuffleEnabled) {
        // The new items are mixed into what has not played yet.
        std::transform(m_shuffleSeq.begin(), m_shuffleSeq.end(), m_shuffleSeq.begin(), moved);
        std::copy(positions.cbegin(), positions.cend(), std::back_inserter(m_shuffleSeq));
        randomizeShuffleItems(m_shuffleCurIndex + 1);
    }
    renumberAnnounced(moved);
    updateSequenceNumberInData();
    announceAnew();
}

// Several removed indices are applied one after the other as they are, although each removal has
// already renumbered what stands behind it ("Order under shuffle" in docs/commands.md). So the j-th
// of them, from 0, takes the entry that was j higher to begin with, and one pass does for all of
// them.
//   order 4 2 0 3 1, indices 1 and 2: the entries 1 and 3 go, 2 1 0 are left
void PlayListPlayLogic::removeFromShuffle(const QList<int>& indices) {
    QVector<int> taken;
    taken.reserve(indices.size());
    for (int index : indices)
        taken.append(index + taken.size());

    int kept = 0;
    int cursor = m_shuffleCurIndex;
    for (int i = 0; i < m_shuffleSeq.size(); ++i) {
        const int entry = m_shuffleSeq.at(i);
        const auto at = std::lower_bound(taken.cbegin(), taken.cend(), entry);
        if (at == taken.cend() || *at != entry)
            m_shuffleSeq[kept++] = entry - int(at - taken.cbegin());
        else if (i <= m_shuffleCurIndex)
            --cursor;
    }
    m_shuffleSeq.resize(kept);
    m_shuffleCurIndex = cursor;
}

void PlayListPlayLogic::replaceInShuffle(int seqNum) {
    const int place = m_shuffleSeq.indexOf(seqNum);
    if (place < 0)
        return;
    const int played = place <= m_shuffleCurIndex ? m_shuffleCurIndex : m_shuffleCurIndex + 1;
    m_shuffleSeq.move(place, played);
    m_shuffleCurIndex = played;
}

void PlayListPlayLogic::on_currentPlayList_itemsRemoved(const QList<int>& indices,
                                                        int lastSeqNumBeforeRemove) {
    LOG4CPLUS_DEBUG(playLogicLog(), "indices.size()=" << indices.size()
                                                      << " lastSeqNum=" << lastSeqNumBeforeRemove);
    if (m_currentPlayList->getSize() == 0) {
        on_currentPlayList_cleared();
        return;
    }
    putCursorOnPlaying();
    if (m_shuffleEnabled)
        removeFromShuffle(indices);
    // How many of the removed ones stood before this one; `indices` are ascending.
    const auto removedBefore = [&indices](int seqNum) {
        return int(std::lower_bound(indices.cbegin(), indices.cend(), seqNum) - indices.cbegin());
    };
    const auto isRemoved = [&indices](int seqNum) {
        return std::binary_search(indices.cbegin(), indices.cend(), seqNum);
    };
    if (!m_hasPlayingItem || !isRemoved(lastSeqNumBeforeRemove)) {
        renumberAnnounced(
            [&](int seqNum) { return isRemoved(seqNum) ? Gone : seqNum - removedBefore(seqNum); });
        updateSequenceNumberInData();
        announceAnew();
        return;
    }

    // The playing item went: what has moved into its position plays.
    const int position = lastSeqNumBeforeRemove - removedBefore(lastSeqNumBeforeRemove);
    const OrvoRoles replacement = getTrackAbsolute(position);
    m_announcedRoles = OrvoRoles();
    m_cursorBeforeAnnouncement.reset();
    if (!replacement.isEmpty()) {
        if (m_shuffleEnabled)
            replaceInShuffle(position);
        playTrackRoles(replacement);
        return;
    }
    OrvoRoles next;
    if (m_currentPlayList->getRepeatAll()) {
        // Also where it was switched on in this turn of the loop and is not in force yet.
        const QScopedValueRollback<RepeatMode> repeating(m_repeatMode, RepeatAll);
        next = getNextTrack();
    }
    if (!next.isEmpty())
        playTrackRoles(next);
    else
        stopPlayer();
}

void PlayListPlayLogic::on_currentPlayList_itemMoved(int from, int to) {
    CM_ENTER_ARGS(playLogicLog(), "from=" << from << " to=" << to);
    putCursorOnPlaying();
    if (m_shuffleEnabled) {
        // The two numbers are exchanged and those between are not shifted, though their tracks are:
        // "Order under shuffle" in docs/commands.md.
        for (int& entry : m_shuffleSeq) {
            if (entry == from)
                entry = to;
            else if (entry == to)
                entry = from;
        }
    }
    renumberAnnounced([=](int seqNum) {
        if (seqNum == from)
            return to;
        if (from < to)
            return seqNum > from && seqNum <= to ? seqNum - 1 : seqNum;
        return seqNum >= to && seqNum < from ? seqNum + 1 : seqNum;
    });
    updateSequenceNumberInData();
}

void PlayListPlayLogic::on_currentPlayList_itemsMoved() {
    announceAnew();
}

void PlayListPlayLogic::on_currentPlayList_itemsReordered(const QList<int>& order) {
    CM_ENTER_ARGS(playLogicLog(), "order.size()=" << order.size());
    QVector<int> placeOf(order.size());
    for (int i = 0; i < order.size(); ++i)
        placeOf[order.at(i)] = i;
    const auto moved = [&placeOf](int seqNum) { return placeOf.value(seqNum, seqNum); };
    putCursorOnPlaying();
    if (m_shuffleEnabled)
        std::transform(m_shuffleSeq.begin(), m_shuffleSeq.end(), m_shuffleSeq.begin(), moved);
    renumberAnnounced(moved);
    updateSequenceNumberInData();
    announceAnew();
}

int PlayListPlayLogic::nextNumber() const {
    const int playing = m_currentPlayList->getLastSequenceNumber();
    if (m_repeatMode == RepeatOne)
        return playing;
    const bool repeats = m_repeatMode == RepeatAll;
    if (!m_shuffleEnabled) {
        const int next = playing + 1;
        if (next < m_currentPlayList->getSize())
            return next;
        return repeats ? 0 : Gone;
    }
    const int place = nextShufflePlace();
    return place < 0 ? Gone : m_shuffleSeq.at(place);
}

void PlayListPlayLogic::announceAnew() {
    Q_EMIT upNextChanged();
    if (!m_cursorBeforeAnnouncement)
        return;
    // The edit has left the cursor on the playing item, or on the one that played last.
    m_cursorBeforeAnnouncement = m_shuffleCurIndex;
    if (!m_hasPlayingItem)
        return;
    const int next = nextNumber();
    const OrvoValue announced = m_announcedRoles.value();
    const bool isNext = announced.containsI32_() ? announced.i32() == next
                                                 : m_announcedRoles.isEmpty() && next == Gone;
    if (!isNext)
        prepareNextMedia();
    else if (m_shuffleEnabled && m_repeatMode != RepeatOne && next != Gone)
        m_shuffleCurIndex = nextShufflePlace();
}

void PlayListPlayLogic::on_currentPlayList_shuffleChanged(bool newValue) {
    if (newValue == publishedShuffle())
        return;
    if (const std::optional<PlayMode> mode = PlayMode::fromNumber(playMode()))
        setPlayMode(PlayMode{newValue, mode->repeat}.number());
}

void PlayListPlayLogic::on_currentPlayList_repeatAllChanged(bool newValue) {
    if (newValue == (publishedRepeat() == RepeatAll))
        return;
    const RepeatMode repeat = newValue ? RepeatAll : RepeatOff;
    setPlayMode(PlayMode{publishedShuffle(), repeat}.number());
}

void PlayListPlayLogic::updateSequenceNumberInData() {
    if (!m_currentPlayList)
        return;
    OrvoPlayLogicData published = data();
    OrvoRoles trackRoles = published.trackRoles();
    if (!trackRoles.value().containsI32_()) {
        LOG4CPLUS_DEBUG(playLogicLog(), "No current sequence number in playlogic data");
        return;
    }
    const int position = m_currentPlayList->getLastSequenceNumber();
    if (trackRoles.value().i32() == position)
        return;
    trackRoles.setValue(OrvoValue::fromI32(position));
    published.setTrackRoles(trackRoles);
    setData(published);
}
