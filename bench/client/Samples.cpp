#include "Samples.h"

#include <algorithm>
#include <cmath>

double Samples::percentile(double share) const {
    if (m_values.empty())
        return 0;
    std::vector<double> sorted = m_values;
    const auto rank = std::size_t(std::ceil(share / 100 * double(sorted.size())));
    const auto at = sorted.begin() + std::ptrdiff_t(std::max<std::size_t>(rank, 1) - 1);
    std::nth_element(sorted.begin(), at, sorted.end());
    return *at;
}
