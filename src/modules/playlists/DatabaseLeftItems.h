#pragma once

#include <memory>

#include <QStringList>

#include "Database.h"
#include "Sqlite3Statement.h"

// The items that a removal of entries leaves, and their end: each goes unless another entry refers
// to it. Costs what is removed, not what is stored: the items are looked for in one playlist after
// the other, unless there are so many that the statement over all items costs less. That one runs
// as well where the items could not be noted.
//
// A value of the removing operation, worker's thread.
class Database::LeftItems {
public:
    // Before `count` entries are removed.
    LeftItems(Database& database, int count);

    // The items of the entries `from` to `to`, which are about to be removed.
    void note(int playlistUid, int from, int to);
    // Once the entries are gone. One statement: all of it or nothing.
    bool remove();

private:
    bool isCheaperOneByOne(int count);

    Database& m_database;
    bool m_oneByOne;
    // Prepared with the first note.
    std::unique_ptr<Sqlite3Statement> m_items;
    QStringList m_uids;
};
