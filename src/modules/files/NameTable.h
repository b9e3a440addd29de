#pragma once

#include <optional>
#include <vector>

#include <QHash>
#include <QString>

// The different names of one kind that tracks have (artists, albums …), numbered in the order of a
// person; the empty name, of those that have none, comes last. Names that differ in case only are
// one, in the spelling that was added first. Filled by add(), then finished, then never changed, so
// that threads share it.
class NameTable {
public:
    // A number that counts until finish().
    quint32 add(const QString& name);
    // Puts the names in order. Tells for each number that add() gave the one that counts now.
    std::vector<quint32> finish();

    quint32 size() const { return quint32(m_names.size()); }
    const QString& name(quint32 id) const { return m_names[id]; }
    std::optional<quint32> find(const QString& name) const;

private:
    std::vector<QString> m_names;
    QHash<QString, quint32> m_ids;    // as spelt; until finish()
    QHash<QString, quint32> m_folded; // without case; until finish()
};
