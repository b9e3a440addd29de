#pragma once

#include <QVector>

// What a shuffle should come to, worked out independently of the code under test.
namespace DrawnOrder {

// The minimal standard generator, written down once more: each number is 16807 times the one
// before, modulo 2^31 - 1.
class MinimalStandard {
public:
    using result_type = quint64;
    static constexpr result_type min() { return 1; }
    static constexpr result_type max() { return 2147483646; }
    explicit MinimalStandard(quint64 seed) : m_state(seed) {}
    result_type operator()() { return m_state = m_state * 16807 % 2147483647; }

private:
    quint64 m_state;
};

// 0, 1, 2, …
QVector<int> ascending(int size);
// `order` with the positions from `from` on shuffled.
QVector<int> shuffled(QVector<int> order, int from, quint64 seed);

} // namespace DrawnOrder
