#pragma once

#include <QVector>

class PlayListBase;

// What will be heard after the playing item, as it stands at this moment. Two that are equal list
// the same tracks. A value; made by the play logic.
struct UpNext {
    // Null when nothing plays.
    PlayListBase* list = nullptr;
    qint64 revision = 0;
    int size = 0;
    // The sequence number of the playing item.
    int playing = 0;
    bool repeatsOne = false;
    // The first item follows the last. Not under shuffle: there the order is shown to its end.
    bool wraps = false;
    bool isShuffled = false;
    QVector<int> order;
    // Where the playing item stands in it.
    int place = 0;

    int count() const {
        if (!list)
            return 0;
        if (repeatsOne)
            return 1;
        // Without a place nothing follows, unless the order begins anew.
        if (isShuffled)
            return place < 0 && !wraps ? 0 : order.size() - 1 - place;
        return wraps ? size : size - 1 - playing;
    }

    // The sequence number of the track at `row`, which is less than count().
    int number(int row) const {
        if (repeatsOne)
            return playing;
        return isShuffled ? order.at(place + 1 + row) : (playing + 1 + row) % size;
    }

    bool operator==(const UpNext&) const = default;
};
