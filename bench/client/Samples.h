#pragma once

#include <chrono>
#include <vector>

using Clock = std::chrono::steady_clock;

inline double microsecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

// Measured durations in microseconds.
class Samples {
public:
    void add(double microseconds) { m_values.push_back(microseconds); }
    bool isEmpty() const { return m_values.empty(); }
    std::size_t count() const { return m_values.size(); }

    double median() const { return percentile(50); }
    // The smallest value that this share of all values does not exceed; 100 is the largest. 0
    // without any.
    double percentile(double share) const;

private:
    std::vector<double> m_values;
};
