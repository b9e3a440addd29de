#include "TestClock.h"

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {
constexpr qint64 Running = -1;
qint64 standingAt = Running;
} // namespace

// Stands in for the C library's, also for the libraries that this program loads.
extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock,
                                                                    timespec* time) noexcept {
    if (standingAt == Running || clock != CLOCK_MONOTONIC)
        return int(syscall(SYS_clock_gettime, clock, time));
    time->tv_sec = time_t(standingAt / 1000);
    time->tv_nsec = long(standingAt % 1000) * 1000000;
    return 0;
}

TestClock::~TestClock() {
    standingAt = Running;
}

void TestClock::set(qint64 ms) {
    standingAt = ms;
}
