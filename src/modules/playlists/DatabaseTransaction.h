#pragma once

#include <sqlite3.h>

#include "Database.h"

// One lock for a whole transaction. Every call of SQLite locks the connection's mutex, which costs
// next to nothing while this thread holds it already.
class ConnectionLock {
public:
    explicit ConnectionLock(sqlite3* connection) : m_mutex(sqlite3_db_mutex(connection)) {
        sqlite3_mutex_enter(m_mutex);
    }
    ~ConnectionLock() { sqlite3_mutex_leave(m_mutex); }
    ConnectionLock(const ConnectionLock&) = delete;
    ConnectionLock& operator=(const ConnectionLock&) = delete;

private:
    sqlite3_mutex* m_mutex;
};

// Switches the foreign keys of a connection off for a block. Only where every reference is known to
// hold: deleting rows that nothing refers to, adding entries of items just made. Everything else
// relies on the checks and the cascades. The connection's statements are prepared anew.
class ForeignKeysSuspended {
public:
    explicit ForeignKeysSuspended(sqlite3* connection) : m_connection(connection) {
        sqlite3_db_config(m_connection, SQLITE_DBCONFIG_ENABLE_FKEY, -1, &m_before);
        sqlite3_db_config(m_connection, SQLITE_DBCONFIG_ENABLE_FKEY, 0, nullptr);
    }
    ~ForeignKeysSuspended() {
        sqlite3_db_config(m_connection, SQLITE_DBCONFIG_ENABLE_FKEY, m_before, nullptr);
    }
    ForeignKeysSuspended(const ForeignKeysSuspended&) = delete;
    ForeignKeysSuspended& operator=(const ForeignKeysSuspended&) = delete;

private:
    sqlite3* m_connection;
    int m_before = 1;
};

// A transaction that is rolled back at the end of its block unless it was committed.
// When begun() is false nothing was opened: nothing may be run, and nothing is rolled back, since
// the transaction that stood in the way belongs to another caller.
class Database::Transaction {
public:
    enum class Lock {
        WhenWriting,
        AtOnce, // for bulk writes: waiting for the lock halfway would waste the work done
    };

    Transaction(Database& database, Lock lock)
        : m_database(database),
          m_lock(database.m_connection),
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
    ConnectionLock m_lock;
    bool m_open;
};
