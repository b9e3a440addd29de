#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

struct sqlite3;
struct sqlite3_stmt;

// One prepared statement and the texts bound to it.
//
// Each use: bind every parameter (?1 is index 1), step, read the columns (from 0) while on a row,
// reset. Bindings do not outlive a reset. Prefer run() or a StatementScope, which cannot forget the
// reset. Owner: its creator; the statement is finalised with it. Thread: that of its
// connection. Failure: by return value. One made with a null statement fails every use, so an
// operation whose statement could not be prepared fails like one whose statement could not be run.
class Sqlite3Statement {
public:
    // Null when `sql` cannot be prepared, which is logged. The caller owns the result.
    static Sqlite3Statement* create(sqlite3* db, const QString& sql, const QString& name);

    // Takes over `statement`. `name` stands in log lines.
    Sqlite3Statement(sqlite3_stmt* statement, const QString& name);
    ~Sqlite3Statement();
    Sqlite3Statement(const Sqlite3Statement&) = delete;
    Sqlite3Statement& operator=(const Sqlite3Statement&) = delete;

    bool bindInt(const int& index, const int& value);
    bool bindText(const int& index, const QString& value);

    int columnInt(const int& index) const;
    // NULL reads as an empty text.
    QString columnText(const int& index) const;
    // The same into `text`, which stays, and stays shared, where it is that text already.
    void updateText(int index, QString* text) const;
    // Appends the text's bytes.
    void appendColumnText(int index, QByteArray* utf8) const;

    // True on a row; done and failure are both false, and a failure shows in the reset.
    bool step_row();
    // SQLite's own code.
    int step();
    bool reset();

    // One whole use that reads nothing: binds `values` to ?1, ?2 …, steps once, resets. True when
    // all of it worked.
    template <typename... Values>
    bool run(const Values&... values) {
        int index = 0;
        const bool bound = (bind(++index, values) && ...);
        if (bound)
            step();
        return reset() && bound;
    }

private:
    bool bind(int index, int value) { return bindInt(index, value); }
    bool bind(int index, const QString& value) { return bindText(index, value); }
    char* roomForBytes(int count);

    sqlite3_stmt* m_statement;
    QString m_name;
    // SQLite is given the bytes without a copy, so they are kept here until the reset: one after
    // the other in the last of these, which is full when it must not move any more. It stays for
    // the next use.
    QList<QByteArray> m_boundTexts;
    int m_boundBytes = 0;
};

// Resets a statement at the end of its block, unless reset() has done so, whose result the caller
// wants to see.
class StatementScope {
public:
    explicit StatementScope(Sqlite3Statement& statement) : m_statement(statement) {}
    ~StatementScope() {
        if (!m_isReset)
            m_statement.reset();
    }
    StatementScope(const StatementScope&) = delete;
    StatementScope& operator=(const StatementScope&) = delete;

    Sqlite3Statement* operator->() { return &m_statement; }
    const Sqlite3Statement& row() const { return m_statement; }
    bool reset() {
        m_isReset = true;
        return m_statement.reset();
    }

private:
    Sqlite3Statement& m_statement;
    bool m_isReset = false;
};
