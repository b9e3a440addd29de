#include "StoreFile.h"

#include <sqlite3.h>
#include <stdexcept>

sqlite3* StoreFile::open(const QString& name) {
    sqlite3* connection = nullptr;
    sqlite3_open(name.toUtf8().constData(), &connection);
    return connection;
}

sqlite3* StoreFile::connection() {
    if (!m_connection) {
        m_connection = open(m_name);
        // As the store has it: a deletion must not leave what the store could never leave.
        run(QStringLiteral("PRAGMA foreign_keys=1; PRAGMA synchronous=OFF;"));
    }
    return m_connection;
}

void StoreFile::disconnect() {
    sqlite3_close(m_connection);
    m_connection = nullptr;
}

QStringList StoreFile::query(const QString& sql) {
    const QByteArray text = sql.toUtf8();
    QStringList rows;
    for (const char* rest = text.constData(); *rest;) {
        sqlite3_stmt* statement = nullptr;
        int code = sqlite3_prepare_v2(connection(), rest, -1, &statement, &rest);
        while (statement && (code = sqlite3_step(statement)) == SQLITE_ROW) {
            QStringList columns;
            for (int i = 0; i < sqlite3_column_count(statement); ++i) {
                const auto* value =
                    reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
                columns.append(QString::fromUtf8(value, sqlite3_column_bytes(statement, i)));
            }
            rows.append(columns.join(QLatin1Char('|')));
        }
        sqlite3_finalize(statement);
        if (code != SQLITE_OK && code != SQLITE_DONE)
            throw std::runtime_error(sql.toStdString() + ": " + sqlite3_errmsg(m_connection));
    }
    return rows;
}

int StoreFile::queryInt(const QString& sql) {
    const QStringList rows = query(sql);
    if (rows.size() != 1)
        throw std::runtime_error(sql.toStdString() + ": not one row");
    return rows.constFirst().toInt();
}

void StoreFile::run(const QString& sql) {
    query(sql);
}

void StoreFile::forbid(const QString& change) {
    run(QStringLiteral(
            "CREATE TRIGGER forbidden%1 BEFORE %2 BEGIN SELECT RAISE(ABORT, 'forbidden'); END")
            .arg(m_triggers)
            .arg(change));
    ++m_triggers;
}

void StoreFile::allowAll() {
    while (m_triggers > 0)
        run(QStringLiteral("DROP TRIGGER forbidden%1").arg(--m_triggers));
}

QString StoreFile::stored(int plid) {
    return query(QStringLiteral("SELECT title FROM playlists_items JOIN items ON item = uid"
                                " WHERE playlist = %1 ORDER BY sequenceNumber")
                     .arg(plid))
        .join(QLatin1Char(' '));
}

QStringList StoreFile::brokenRules(bool thorough) {
    struct Rule {
        const char* broken;
        bool thorough;
    };
    static const Rule rules[] = {
        {"SELECT 'not dense: playlist ' || playlist || ', ' || group_concat(sequenceNumber)"
         " FROM playlists_items GROUP BY playlist"
         " HAVING min(sequenceNumber) <> 0 OR max(sequenceNumber) <> count(*) - 1",
         false},
        {"SELECT 'without exactly one entry: ' || title FROM items"
         " LEFT JOIN playlists_items ON item = uid GROUP BY uid HAVING count(item) <> 1",
         false},
        {"SELECT 'no play queue' WHERE NOT EXISTS (SELECT 1 FROM playlists WHERE uid = 0)", false},
        {"SELECT * FROM pragma_integrity_check WHERE integrity_check <> 'ok'", true},
        {"PRAGMA foreign_key_check", true},
    };
    QStringList found;
    for (const Rule& rule : rules) {
        if (thorough || !rule.thorough)
            found += query(QString::fromLatin1(rule.broken));
    }
    return found;
}
