#include "Sqlite3Statement.h"

#include <sqlite3.h>

#include "ModuleLog.h"

Sqlite3Statement* Sqlite3Statement::create(sqlite3* db, const QString& sql, const QString& name) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &statement, nullptr);
    if (code != SQLITE_OK) {
        LOG4CPLUS_FATAL(moduleLog(),
                        "Unable to prepare statement " << name << ": " << sqlite3_errstr(code));
        return nullptr;
    }
    return new Sqlite3Statement(statement, name);
}

Sqlite3Statement::Sqlite3Statement(sqlite3_stmt* statement, const QString& name)
    : m_statement(statement), m_name(name) {}

Sqlite3Statement::~Sqlite3Statement() {
    sqlite3_finalize(m_statement);
}

bool Sqlite3Statement::bindInt(const int& index, const int& value) {
    return sqlite3_bind_int(m_statement, index, value) == SQLITE_OK;
}

bool Sqlite3Statement::bindText(const int& index, const QString& value) {
    m_boundTexts.append(value.toUtf8());
    const QByteArray& utf8 = m_boundTexts.constLast();
    return sqlite3_bind_text(m_statement, index, utf8.constData(), utf8.size(), SQLITE_STATIC) ==
           SQLITE_OK;
}

int Sqlite3Statement::columnInt(const int& index) const {
    return sqlite3_column_int(m_statement, index);
}

QString Sqlite3Statement::columnText(const int& index) const {
    const unsigned char* utf8 = sqlite3_column_text(m_statement, index);
    // The length comes after the text, whose conversion may change it. It is what keeps a NUL
    // inside a text.
    return QString::fromUtf8(reinterpret_cast<const char*>(utf8),
                             sqlite3_column_bytes(m_statement, index));
}

bool Sqlite3Statement::step_row() {
    return step() == SQLITE_ROW;
}

int Sqlite3Statement::step() {
    return sqlite3_step(m_statement);
}

bool Sqlite3Statement::reset() {
    m_boundTexts.clear();
    // SQLite calls the reset of no statement a success.
    const int code = m_statement ? sqlite3_reset(m_statement) : SQLITE_MISUSE;
    if (code == SQLITE_OK)
        return true;
    LOG4CPLUS_ERROR(moduleLog(), "Unable to reset sql statement: " << m_name << " msg: "
                                                                   << sqlite3_errstr(code));
    return false;
}
