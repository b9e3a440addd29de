#pragma once

#include <QList>

// Where an add command wants its items, if it says so. How many there will be shows only when they
// are prepared and checked.
struct WantedPlaces {
    enum class Kind { None, FromOneOn, OneEach };

    Kind kind = Kind::None;
    // Ascending; of FromOneOn the first.
    QList<int> positions;
};
