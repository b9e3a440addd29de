#pragma once

#include <sqlite3.h>

#include "Database.h"

// A transaction that is rolled back at the end of its block unless it was committed.
// When begun() is false nothing was opened: nothing may be run, and nothing is rolled back, since
// whatever transaction stood in the way is somebody else's.
class Database::Transaction {
public:
    enum class Lock {
        WhenWriting,
        AtOnce, // for bulk writes: waiting for the lock halfway would waste the work done
    };

    Transaction(Database& database, Lock lock)
        : m_database(database),
          m_open((lock == Lock::AtOnce ? database.beginImmediateTransaction()
                                       : database.beginTransaction()) == SQLITE_OK) {}
    ~Transaction() {
        if (m_open)
            m_database.rollbackTransaction();
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    bool begun() const { return m_open; }
    void commit() {
        m_open = false;
        m_database.commitTransaction();
    }

private:
    Database& m_database;
    bool m_open;
};
