#include <algorithm>

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
constexpr int Gone = ShuffleOrder::None;
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
    m_shuffleOrder.playAtCursor();
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
        m_shuffleOrder.insertNext(firstSeqNum, count);
    } else if (position == OrvoPlayListAddPosition::Append) {
        // Mixed into what has not played yet: shuffling the tail once gives what shuffling it after
        // each item would.
        for (int i = 0; i < count; ++i)
            m_shuffleOrder.append(firstSeqNum + i);
        randomizeShuffleItems(m_shuffleOrder.cursor() + 1);
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
    if (m_shuffleEnabled) {
        // The new items are mixed into what has not played yet.
        m_shuffleOrder.renumber(moved);
        for (int position : positions)
            m_shuffleOrder.append(position);
        randomizeShuffleItems(m_shuffleOrder.cursor() + 1);
    }
    renumberAnnounced(moved);
    updateSequenceNumberInData();
    announceAnew();
}

void PlayListPlayLogic::on_currentPlayList_itemsRemoved(const QList<int>& indices,
                                                        int lastSeqNumBeforeRemove) {
    LOG4CPLUS_DEBUG(playLogicLog(), "indices.size()=" << indices.size()
                                                      << " lastSeqNum=" << lastSeqNumBeforeRemove);
    if (m_currentPlayList->getSize() == 0) {
        on_currentPlayList_cleared();
        return;
    }
    if (m_shuffleEnabled)
        m_shuffleOrder.remove(indices);
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
    m_shuffleOrder.returnToPlaying();
    if (!replacement.isEmpty()) {
        if (m_shuffleEnabled)
            m_shuffleOrder.playInstead(position);
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
    if (m_shuffleEnabled) {
        // The two numbers are exchanged and those between are not shifted, though their tracks are:
        // "Order under shuffle" in docs/commands.md.
        m_shuffleOrder.renumber([=](int entry) {
            if (entry == from)
                return to;
            return entry == to ? from : entry;
        });
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
    if (m_shuffleEnabled)
        m_shuffleOrder.renumber(moved);
    renumberAnnounced(moved);
    updateSequenceNumberInData();
    announceAnew();
}

int PlayListPlayLogic::nextNumber() const {
    const int playing = m_currentPlayList->getLastSequenceNumber();
    if (m_repeatMode == RepeatOne)
        return playing;
    const bool repeats = m_repeatMode == RepeatAll;
    if (m_shuffleEnabled)
        return m_shuffleOrder.numberAfterPlaying(repeats);
    const int next = playing + 1;
    if (next < m_currentPlayList->getSize())
        return next;
    return repeats ? 0 : Gone;
}

void PlayListPlayLogic::announceAnew() {
    Q_EMIT upNextChanged();
    if (!m_shuffleOrder.isAnnounced() || !m_hasPlayingItem)
        return;
    const int next = nextNumber();
    const OrvoValue announced = m_announcedRoles.value();
    const bool isNext = announced.containsI32_() ? announced.i32() == next
                                                 : m_announcedRoles.isEmpty() && next == Gone;
    if (!isNext)
        prepareNextMedia();
    else if (m_shuffleEnabled && m_repeatMode != RepeatOne)
        m_shuffleOrder.announceNext(m_repeatMode == RepeatAll);
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
