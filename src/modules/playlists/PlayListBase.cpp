#include "PlayListBase.h"

#include <algorithm>
#include <utility>

#include <QVector>

bool PlayListBase::isOrder(const QList<int>& order) const {
    const int size = getSize();
    if (order.size() != size)
        return false;
    QVector<bool> named(size, false);
    return std::none_of(order.cbegin(), order.cend(), [&](int number) {
        return number < 0 || number >= size || std::exchange(named[number], true);
    });
}
