#pragma once

#include <functional>

#include <QString>
#include <QStringList>

class Database;
struct sqlite3;

// Records the statements that a connection begins while this lives, with whether foreign keys were
// enforced.
class StatementTrace {
public:
    using Hook = std::function<void(const QString& sql)>;

    // `hook` is called as each statement begins.
    explicit StatementTrace(Database& database, Hook hook = {});
    ~StatementTrace();
    StatementTrace(const StatementTrace&) = delete;
    StatementTrace& operator=(const StatementTrace&) = delete;

    const QStringList& texts() const { return m_texts; }
    // The same with the bound values in place of the parameters.
    const QStringList& boundTexts() const { return m_boundTexts; }
    const QStringList& withoutForeignKeys() const { return m_withoutForeignKeys; }

private:
    static int onStatement(unsigned event, void* self, void* statement, void* text);

    sqlite3* m_connection;
    Hook m_hook;
    QStringList m_texts;
    QStringList m_boundTexts;
    QStringList m_withoutForeignKeys;
};
