#pragma once

#include <QtGlobal>

// The monotonic clock, which the shuffle takes its seed from, standing at a given time while one of
// these lives. It stands for the whole program: nothing may wait meanwhile.
class TestClock {
public:
    explicit TestClock(qint64 ms) { set(ms); }
    ~TestClock();
    TestClock(const TestClock&) = delete;
    TestClock& operator=(const TestClock&) = delete;

    void set(qint64 ms);
};
