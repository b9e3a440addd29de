#pragma once

#include <algorithm>
#include <optional>

#include <QList>
#include <QVector>

// The order in which a shuffled playlist is heard: its sequence numbers, each once, and a cursor on
// the one that plays. Once the next one is announced, the cursor is ahead: on the announced entry.
// Places count from 0. A value, the play logic's; nothing here fails, what is not there is None.
//
//   4 2 [0] 3 1: the cursor is at place 2, on the track 0; 4 and 2 were heard, 3 and 1 come
class ShuffleOrder {
public:
    static constexpr int None = -1;

    ShuffleOrder() = default;
    ShuffleOrder(const QVector<int>& entries, int cursor);

    const QVector<int>& entries() const { return m_shuffleSeq; }
    int cursor() const { return m_shuffleCurIndex; }
    // The cursor's place, or where the cursor was before the announcement.
    int playingPlace() const { return m_cursorBeforeAnnouncement.value_or(m_shuffleCurIndex); }

    // --- drawing ---

    // The numbers below `size` as they are, the first one playing.
    //   4 2 [0] 3 1, size 3  ->  [0] 1 2
    void restart(int size);
    // Shuffles the entries from the place `from` to the end; the cursor stays. A seed gives the
    // same order with every build for one standard library.
    void shuffleTail(int from, quint64 seed);
    // The place where `number` was; the cursor stays.
    //   [0] 1 2, number 2  ->  [2] 0 1, returns 2
    int bringToFront(int number);

    // --- the walk: a step of the cursor gives the number there ---

    //   4 2 [0] 3 1  ->  4 2 0 [3] 1, returns 3
    //   4 2 0 3 [1]  ->  the same, returns None; or, if it wraps, [4] 2 0 3 1, returns 4
    int next(bool wraps);
    //   4 2 [0] 3 1  ->  4 [2] 0 3 1, returns 2
    //   [4] 2 0 3 1  ->  the same, returns None; or, if it wraps, 4 2 0 3 [1], returns 1
    int previous(bool wraps);
    // What next() would give while nothing is announced.
    int numberAfterPlaying(bool wraps) const;

    // --- the announcement; with shuffle off there is one, too, and the cursor rests ---

    bool isAnnounced() const { return m_cursorBeforeAnnouncement.has_value(); }
    // The cursor has gone ahead of what plays.
    void setAnnounced(int playingPlace) { m_cursorBeforeAnnouncement = playingPlace; }
    // The entry after the playing one, if any, is the announced one.
    void announceNext(bool wraps);
    // Nothing is announced any more; the cursor is back on what plays.
    void returnToPlaying();
    // Nothing is announced any more; what the cursor is on plays.
    void playAtCursor() { m_cursorBeforeAnnouncement.reset(); }

    // --- edits of the list. They put the cursor back on what plays and keep it there ---

    // The new tracks `first` to `first` + count - 1 play next, in their order.
    //   2 [0] 1, first 1, count 2  ->  4 [0] 1 2 3
    void insertNext(int first, int count);
    // A new track plays last.
    void append(int number);
    // The tracks at `indices`, ascending, have gone. They are applied one after the other as they
    // are, although each removal has already renumbered what stands behind it ("Order under
    // shuffle" in docs/commands.md).
    //   4 2 [0] 3 1, indices 1 and 2: the entries 1 and 3 go  ->  2 1 [0]
    void remove(const QList<int>& indices);
    // Each track has the number moved(its old number).
    //   2 [0] 1, moved 0 -> 1 -> 2 -> 0  ->  0 [1] 2
    template <typename Moved>
    void renumber(Moved moved) {
        std::transform(m_shuffleSeq.begin(), m_shuffleSeq.end(), m_shuffleSeq.begin(), moved);
        setPlayingPlace(playingPlace());
    }
    // The playing track was removed: `number` plays instead, behind what was heard.
    //   4 [2] 0 3 1, number 3  ->  4 2 [3] 0 1
    //   4 2 [0] 3 1, number 4  ->  2 0 [4] 3 1
    void playInstead(int number);

private:
    friend class PlayLogicProbe; // the tests lay an order out by hand

    // The place behind `place`, or None.
    int placeAfter(int place, bool wraps) const;
    void setPlayingPlace(int place);

    QVector<int> m_shuffleSeq;
    // The place of the playing entry, or of the announced one.
    int m_shuffleCurIndex = None;
    // Set while an announcement stands.
    std::optional<int> m_cursorBeforeAnnouncement;
};
