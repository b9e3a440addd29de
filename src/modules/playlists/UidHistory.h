#pragma once

#include <vector>

#include <QtGlobal>

// Knows since when a uid names the item that it names. SQLite gives a new item the uid after the
// highest in use, so the uid of a deleted item comes again, and a client that kept it would mean
// another item. A value, owned by the store; knows nothing of what was assigned before this start.
class UidHistory {
public:
    // Items from `first` on are made by the edit that leads to `revision`.
    void noteAssigned(int first, qint64 revision);
    // Whether the uid was assigned by an edit later than `revision`.
    bool isAssignedAfter(int uid, qint64 revision) const;

private:
    struct Addition {
        int first;
        qint64 revision;
    };
    // Rising in both: an addition ends what earlier ones say of its numbers and those above.
    std::vector<Addition> m_additions;
};
