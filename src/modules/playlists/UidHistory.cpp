#include "UidHistory.h"

#include <algorithm>

void UidHistory::noteAssigned(int first, qint64 revision) {
    while (!m_additions.empty() && m_additions.back().first >= first)
        m_additions.pop_back();
    m_additions.push_back({first, revision});
}

bool UidHistory::isAssignedAfter(int uid, qint64 revision) const {
    const auto behind = std::upper_bound(
        m_additions.cbegin(), m_additions.cend(), uid,
        [](int wanted, const Addition& addition) { return wanted < addition.first; });
    return behind != m_additions.cbegin() && std::prev(behind)->revision > revision;
}
