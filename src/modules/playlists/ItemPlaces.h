#pragma once

#include <QList>

// Where added items come to stand: one position for each, ascending, in the list as it is
// afterwards. A value of the command that adds them.
//   a b c, new x y at 1 and 3  ->  a x b y c
struct ItemPlaces {
    QList<int> positions;
    // All of the items are added or none; otherwise as many as the store has room for.
    bool allOrNothing = false;

    // Whether there is one for each of `count` items, which a list of `size` entries can take.
    bool fit(int size, int count) const;

    // Where the entry numbered `number` stands once these were taken.
    static int afterAdding(const QList<int>& positions, int number);
};
