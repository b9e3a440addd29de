#pragma once

#include <vector>

#include <QtGlobal>

// Knows since when a number names the item that it names. SQLite gives a new item the number after
// the highest in use, so the number of a deleted item comes again, and a client that kept it
// would mean another item. A value, owned by the store; knows nothing of what was given before this
// start.
class GivenNumbers {
public:
    // Items from `first` on are made by the edit that leads to `revision`.
    void note(int first, qint64 revision);
    // Whether the number was given by an edit later than `revision`.
    bool isGivenSince(int number, qint64 revision) const;

private:
    struct Addition {
        int first;
        qint64 revision;
    };
    // Rising in both: an addition ends what earlier ones say of its numbers and those above.
    std::vector<Addition> m_additions;
};
