#include "NameTable.h"

#include <algorithm>
#include <numeric>

#include "NameOrder.h"

quint32 NameTable::add(const QString& name) {
    const auto it = m_ids.constFind(name);
    if (it != m_ids.cend())
        return *it;
    const QString folded = name.toCaseFolded();
    auto same = m_folded.constFind(folded);
    if (same == m_folded.cend()) {
        same = m_folded.insert(folded, size());
        m_names.push_back(name);
    }
    return *m_ids.insert(name, *same);
}

std::vector<quint32> NameTable::finish() {
    const QCollator collator = NameOrder::collator();
    std::vector<QCollatorSortKey> keys;
    keys.reserve(m_names.size());
    for (const QString& name : m_names)
        keys.push_back(collator.sortKey(name));
    std::vector<quint32> order(m_names.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [this, &keys](quint32 a, quint32 b) {
        if (m_names[a].isEmpty() || m_names[b].isEmpty())
            return !m_names[a].isEmpty() && m_names[b].isEmpty();
        const int compared = keys[a].compare(keys[b]);
        return compared != 0 ? compared < 0 : m_names[a] < m_names[b];
    });
    std::vector<quint32> ids(order.size());
    std::vector<QString> names;
    names.reserve(order.size());
    for (const quint32 before : order) {
        ids[before] = quint32(names.size());
        names.push_back(m_names[before]);
    }
    m_names = std::move(names);
    m_ids = {};
    m_folded = {};
    return ids;
}

std::optional<quint32> NameTable::find(const QString& name) const {
    if (name.isEmpty())
        return !m_names.empty() && m_names.back().isEmpty() ? std::optional(size() - 1)
                                                            : std::nullopt;
    const QCollator collator = NameOrder::collator();
    const auto end = m_names.end() - (!m_names.empty() && m_names.back().isEmpty() ? 1 : 0);
    auto it = std::lower_bound(
        m_names.begin(), end, name,
        [&collator](const QString& a, const QString& b) { return collator.compare(a, b) < 0; });
    // "1" and "01" are in the same place, and two names.
    for (; it != end && collator.compare(*it, name) == 0; ++it) {
        if (NameOrder::areSame(*it, name))
            return quint32(it - m_names.begin());
    }
    return std::nullopt;
}
