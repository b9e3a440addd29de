#include "SqliteStatement.h"

#include <sqlite3.h>

SqliteStatement::SqliteStatement(sqlite3* connection, const char* sql) {
    sqlite3_prepare_v3(connection, sql, -1, SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr);
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(m_statement);
}

void SqliteStatement::bind(int index, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    sqlite3_bind_text(m_statement, index, utf8.constData(), utf8.size(), SQLITE_TRANSIENT);
}

void SqliteStatement::bind(int index, qint64 number) {
    sqlite3_bind_int64(m_statement, index, number);
}

void SqliteStatement::bindNull(int index) {
    sqlite3_bind_null(m_statement, index);
}

bool SqliteStatement::step() {
    return m_statement && sqlite3_step(m_statement) == SQLITE_ROW;
}

bool SqliteStatement::reset() {
    return m_statement && sqlite3_reset(m_statement) == SQLITE_OK;
}

bool SqliteStatement::run() {
    step();
    return reset();
}

bool SqliteStatement::isNull(int column) const {
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

qint64 SqliteStatement::number(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

QString SqliteStatement::text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    return QString::fromUtf8(bytes, sqlite3_column_bytes(m_statement, column));
}
