#pragma once

#include <memory>

#include <QList>

#include "Database.h"
#include "Sqlite3Statement.h"

// The items that a removal of entries leaves, and their end: each goes unless another entry refers
// to it. Costs what is removed, not what is stored: items whose uids follow each other, as those
// that were added together, are looked for in one playlist after the other, unless there are so
// many that the statement over all items costs less. That one runs as well where the items could
// not be noted.
//
// A value of the removing operation, worker's thread.
class Database::UnusedItems {
public:
    // Before `count` entries are removed.
    UnusedItems(Database& database, int count);

    // The items of the entries `from` to `to`, which are about to be removed.
    void note(int playlistUid, int from, int to);
    // Once the entries are gone. One statement: all of it or nothing.
    bool remove();

private:
    // What that query says of `count`; false where it cannot be read.
    bool isTrue(const QString& condition, int count);

    Database& m_database;
    bool m_areFew;
    // Prepared with the first note.
    std::unique_ptr<Sqlite3Statement> m_items;
    QList<int> m_uids;
};
