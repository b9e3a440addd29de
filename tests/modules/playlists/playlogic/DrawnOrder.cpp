#include "DrawnOrder.h"

#include <algorithm>
#include <numeric>

QVector<int> DrawnOrder::ascending(int size) {
    QVector<int> order(size);
    std::iota(order.begin(), order.end(), 0);
    return order;
}

QVector<int> DrawnOrder::shuffled(QVector<int> order, int from, quint64 seed) {
    MinimalStandard engine(seed);
    std::shuffle(order.begin() + from, order.end(), engine);
    return order;
}
