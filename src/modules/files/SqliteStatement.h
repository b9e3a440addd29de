#pragma once

#include <QString>

struct sqlite3;
struct sqlite3_stmt;

// One prepared statement. Bind from 1, step, read the columns from 0, reset. Finalised with the
// object. Belongs to the thread of its connection; fails by return value, and one that could not be
// prepared fails every use.
class SqliteStatement {
public:
    SqliteStatement(sqlite3* connection, const char* sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    // The text is copied.
    void bind(int index, const QString& text);
    void bind(int index, qint64 number);
    void bindNull(int index);

    // True on a row.
    bool step();
    // True when the last step did not fail.
    bool reset();
    // Steps once, for what gives no rows, and resets.
    bool run();

    bool isNull(int column) const;
    qint64 number(int column) const;
    QString text(int column) const;

private:
    sqlite3_stmt* m_statement = nullptr;
};
