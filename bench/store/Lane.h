#pragma once

#include <sys/types.h>
#include <vector>

#include "Work.h"

// Microseconds of each turn; the two of one turn stand at the same place. `base` is empty where
// there is nothing to hold against.
struct Times {
    std::vector<double> base;
    std::vector<double> ours;
};

// One work at one setting, in a process of its own: what other works have left of the heap is no
// part of it, and works of several sizes can take turns.
class Lane {
public:
    // Returns when the work is set up.
    Lane(const Work& work, const Setting& setting);
    // What the work laid out is gone afterwards.
    ~Lane();
    Lane(const Lane&) = delete;
    Lane& operator=(const Lane&) = delete;

    // False when a turn failed; there are no more then.
    bool takeTurns(int count);
    const Times& times() const { return m_times; }

private:
    void receive(int count, std::vector<double>& values);

    bool m_hasBase;
    pid_t m_child = -1;
    int m_asks = -1;
    int m_answers = -1;
    bool m_ok = true;
    Times m_times;
};
