#include "ItemPlaces.h"

#include <algorithm>
#include <functional>

bool ItemPlaces::fit(int size, int count) const {
    return count > 0 && positions.size() == count && positions.first() >= 0 &&
           positions.last() < qint64(size) + count &&
           std::adjacent_find(positions.cbegin(), positions.cend(), std::greater_equal<int>()) ==
               positions.cend();
}

int ItemPlaces::afterAdding(const QList<int>& positions, int number) {
    // The i-th new item stands behind as many old entries as its position is greater than i.
    int before = 0;
    int end = positions.size();
    while (before < end) {
        const int middle = (before + end) / 2;
        if (positions.at(middle) - middle <= number)
            before = middle + 1;
        else
            end = middle;
    }
    return number + before;
}
