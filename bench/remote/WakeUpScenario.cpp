#include <sched.h>
#include <stdexcept>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "../client/Samples.h"
#include "Scenarios.h"

namespace {

constexpr int Trips = 5000;
constexpr int WarmUp = 200;

// A byte to another thread and back. Both sleep until it comes, as a device and its client do.
Samples byteThereAndBack(const cpu_set_t* processors) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
        throw std::runtime_error("no pair of sockets");
    std::thread other([processors, end = ends[1]] {
        if (processors)
            ::sched_setaffinity(0, sizeof *processors, processors);
        char byte = 0;
        while (::read(end, &byte, 1) == 1 && ::write(end, &byte, 1) == 1) {
        }
    });
    Samples trips;
    char byte = 'x';
    for (int i = 0; i < WarmUp + Trips; ++i) {
        const Clock::time_point start = Clock::now();
        if (::write(ends[0], &byte, 1) != 1 || ::read(ends[0], &byte, 1) != 1)
            break;
        if (i >= WarmUp)
            trips.add(microsecondsSince(start));
    }
    ::close(ends[0]);
    other.join();
    ::close(ends[1]);
    if (trips.count() != Trips)
        throw std::runtime_error("a byte did not come back");
    return trips;
}

} // namespace

void Scenarios::wakeUps(const cpu_set_t& others, Report& report) {
    const auto tell = [&report](const std::string& work, const Samples& trips) {
        report.add(work, "median", trips.median(), "us");
        report.add(work, "99th percentile", trips.percentile(99), "us");
    };
    tell("a byte there and back, where clients run", byteThereAndBack(nullptr));
    if (CPU_COUNT(&others) > 0)
        tell("a byte there and back, to another processor", byteThereAndBack(&others));
}
