#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "Samples.h"

// How much of the processors that this program may use a hypervisor has given to other machines
// since this object was made, in percent of the time. 0 on a machine of its own.
class StolenTime {
public:
    StolenTime() : m_start(Clock::now()), m_before(now()) {}
    double percent() const;

private:
    struct Ticks {
        long stolen = 0;
        int processors = 0;
    };
    static Ticks now();

    Clock::time_point m_start;
    Ticks m_before;
};

template <typename Figures>
struct Measured {
    Figures figures;
    double stolenPercent;
};

// Measures until nothing was stolen from `kept` measurements, but not more often than `tries`, and
// keeps those from which the least was stolen, whatever they measured.
template <typename Measure>
auto leastDisturbed(std::size_t kept, int tries, const Measure& measure) {
    std::vector<Measured<decltype(measure())>> all;
    std::size_t undisturbed = 0;
    for (int i = 0; i < tries && undisturbed < kept; ++i) {
        const StolenTime stolen;
        auto figures = measure();
        const double percent = stolen.percent();
        all.push_back({std::move(figures), percent});
        undisturbed += percent == 0;
    }
    std::stable_sort(all.begin(), all.end(), [](const auto& one, const auto& other) {
        return one.stolenPercent < other.stolenPercent;
    });
    all.erase(all.begin() + std::ptrdiff_t(std::min(kept, all.size())), all.end());
    return all;
}
