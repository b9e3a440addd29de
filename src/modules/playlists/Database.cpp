#include "Database.h"

#include <sqlite3.h>

#include <QDir>
#include <QElapsedTimer>

#include "ModuleLog.h"
#include "Sqlite3Statement.h"

namespace {

// Relative to the working directory, which the host makes the device's writable storage.
const char* const directory = "data-rw/playlists/";
const char* const file = "data-rw/playlists/playlists.sqlite";

struct TableRow {
    const char* name;
    const char* sql;
};

// The last row is what makes the play queue exist at every start.
constexpr TableRow tables[] = {
    {"playlists", "CREATE TABLE IF NOT EXISTS playlists ("
                  "  uid INTEGER PRIMARY KEY,"
                  "  name TEXT NOT NULL,"
                  "  shuffle INTEGER NOT NULL DEFAULT 0,"
                  "  repeatAll INTEGER NOT NULL DEFAULT 0,"
                  "  lastPlayedIndex INTEGER NOT NULL DEFAULT 0);"},
    {"items", "CREATE TABLE IF NOT EXISTS items ("
              "  uid INTEGER PRIMARY KEY,"
              "  title TEXT NOT NULL,"
              "  artist TEXT,"
              "  album TEXT,"
              "  artworkUrl TEXT,"
              "  genre TEXT,"
              "  durationSeconds INTEGER,"
              "  url TEXT NOT NULL,"
              "  serviceId TEXT NOT NULL,"
              "  orvoRoles TEXT);CREATE INDEX IF NOT EXISTS itemUrlIndex ON items(url);"},
    {"collections", "CREATE TABLE IF NOT EXISTS collections ("
                    "  uid INTEGER PRIMARY KEY,"
                    "  name TEXT NOT NULL);"},
    {"playlists-items", "CREATE TABLE IF NOT EXISTS playlists_items ("
                        "  playlist INTEGER NOT NULL,"
                        "  item INTEGER NOT NULL,"
                        "  sequenceNumber INTEGER NOT NULL,"
                        "  PRIMARY KEY(playlist, item, sequenceNumber),"
                        "  FOREIGN KEY(playlist) REFERENCES playlists(uid)"
                        "    ON DELETE CASCADE"
                        "    ON UPDATE CASCADE,"
                        "  FOREIGN KEY(item) REFERENCES items(uid)"
                        "    ON DELETE RESTRICT"
                        "    ON UPDATE CASCADE,"
                        "  UNIQUE(playlist,sequenceNumber));"},
    {"collections-playlists", "CREATE TABLE IF NOT EXISTS collections_playlists ("
                              "  collection INTEGER NOT NULL,"
                              "  playlist INTEGER NOT NULL,"
                              "  PRIMARY KEY(collection, playlist),"
                              "  FOREIGN KEY(collection) REFERENCES collections(uid)"
                              "    ON DELETE CASCADE"
                              "    ON UPDATE CASCADE,"
                              "  FOREIGN KEY(playlist) REFERENCES playlists(uid)"
                              "    ON DELETE CASCADE"
                              "    ON UPDATE CASCADE);"},
    {"createplayqueue", "INSERT OR IGNORE INTO playlists(uid, name, lastPlayedIndex)"
                        "  VALUES(0, 'PlayQueue', -1);"},
};

// The cascades have emptied the last two by then, except in a file whose rows were written without
// foreign keys.
constexpr const char* clearing[] = {
    "DELETE FROM playlists",
    "DELETE FROM items",
    "DELETE FROM collections",
    "DELETE FROM playlists_items",
    "DELETE FROM collections_playlists",
};

// In KiB. Room for the entries of a long list and for the index that counting all items goes
// through; SQLite's own 2 MiB would read them again and again. Taken only as it is used, and seen
// by this connection only.
constexpr const char* cacheSize = "PRAGMA cache_size=-16384;";

int execute(sqlite3* connection, const char* sql) {
    return sqlite3_exec(connection, sql, nullptr, nullptr, nullptr);
}

// A store that cannot be opened leaves the device without playlists: say so in the module's log and
// end.
[[noreturn]] void endUnusable(const std::string& text) {
    LOG4CPLUS_FATAL(moduleLog(), text);
    cmFatal(text.c_str());
}

// Switches the foreign keys of a connection off for a block. Only for deletions of rows that are
// known to be referenced by nothing; everything else relies on the cascades.
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

} // namespace

Database::Database(int itemsLimit, bool vacuumNeeded)
    : QObject(nullptr), m_itemsLimit(itemsLimit), m_vacuumNeeded(vacuumNeeded) {
    openFile();
    vacuum();
    execute(m_connection, "PRAGMA foreign_keys=1;");
    // Deliberate: after the open, and whatever the result. An initialised SQLite refuses this, so
    // its log stays where the process has routed it.
    sqlite3_config(SQLITE_CONFIG_LOG, sqliteErrorLogCallback, nullptr);
    ensureTablesExist();
    prepareStatements();
    execute(m_connection, cacheSize);
}

Database::~Database() {
    for (std::unique_ptr<Sqlite3Statement>& prepared : m_statements)
        prepared.reset();
    if (m_connection)
        sqlite3_close_v2(m_connection);
}

void Database::openFile() {
    const QDir dir(QString::fromLatin1(directory));
    if (!dir.exists() && !dir.mkpath(QStringLiteral(".")))
        endUnusable("Unable to create directory for PlayList database file");
    const int code = sqlite3_open(file, &m_connection);
    if (code != SQLITE_OK || !m_connection)
        endUnusable(std::string("Unable to open PlayList database file: ") + sqlite3_errstr(code));
}

int Database::beginTransaction() {
    return execute(m_connection, "BEGIN;");
}

int Database::beginImmediateTransaction() {
    return execute(m_connection, "BEGIN IMMEDIATE;");
}

int Database::rollbackTransaction() {
    return execute(m_connection, "ROLLBACK;");
}

void Database::commitTransaction() {
    // Deliberate: no pause and no limit, since another process that holds the file lets go soon.
    int code = SQLITE_OK;
    do {
        code = execute(m_connection, "COMMIT;");
    } while (code > SQLITE_ERROR);
    if (code == SQLITE_ERROR)
        LOG4CPLUS_ERROR(moduleLog(), "Commit transaction failed");
}

void Database::ensureTablesExist() {
    CM_ENTER(moduleLog());
    for (const TableRow& table : tables)
        createTableHelper(table.sql, table.name);
    LOG4CPLUS_TRACE(moduleLog(), "PlayList tables exist");
}

void Database::createTableHelper(const char* sql, const char* name) {
    char* message = nullptr;
    if (sqlite3_exec(m_connection, sql, nullptr, nullptr, &message) == SQLITE_OK)
        return;
    const std::string text =
        std::string("Unable to create table ") + name + ": " + (message ? message : "");
    sqlite3_free(message);
    endUnusable(text);
}

void Database::clearDatabase() {
    for (const char* sql : clearing)
        execute(m_connection, sql);
    ensureTablesExist();
}

void Database::setVacuumNeeded() {
    if (m_vacuumNeeded)
        return;
    Q_EMIT vacuumNeeded(true);
    m_vacuumNeeded = true;
}

void Database::vacuum() {
    if (!m_vacuumNeeded)
        return;
    QElapsedTimer timer;
    timer.start();
    execute(m_connection, "VACUUM;");
    LOG4CPLUS_INFO(moduleLog(), "sqlite vacuum duration: " << timer.elapsed() << " ms");
    Q_EMIT vacuumNeeded(false);
    m_vacuumNeeded = false;
}

int Database::countPlaylists() {
    return count(StatementId::CountPlaylists);
}

int Database::countPlaylistsItems() {
    return count(StatementId::CountPlaylistItems);
}

int Database::countCollections() {
    return count(StatementId::CountCollections);
}

int Database::count(StatementId id) {
    StatementScope counting(statement(id));
    return counting->step_row() ? counting->columnInt(0) : 0;
}

void Database::prepareStatements() {
    CM_ENTER(moduleLog());
    for (std::size_t i = 0; i < m_statements.size(); ++i) {
        const StatementRow& row = statementRow(static_cast<StatementId>(i));
        const QString name = QString::fromLatin1(row.name);
        m_statements[i].reset(
            Sqlite3Statement::create(m_connection, QString::fromLatin1(row.sql), name));
        // The process goes on, and what needs this statement fails.
        if (!m_statements[i])
            m_statements[i] = std::make_unique<Sqlite3Statement>(nullptr, name);
    }
    LOG4CPLUS_TRACE(moduleLog(), "PlayList statements prepared");
}

Sqlite3Statement& Database::statement(StatementId id) {
    return *m_statements[static_cast<std::size_t>(id)];
}

bool Database::cleanUnusedItems() {
    // With foreign keys on, SQLite would search all entries once per deleted item, only to find
    // again that no entry refers to it.
    const ForeignKeysSuspended suspended(m_connection);
    return statement(StatementId::CleanUnusedItems).run();
}

void sqliteErrorLogCallback(void* /*arg*/, int errorCode, const char* message) {
    LOG4CPLUS_ERROR(moduleLog(), "SQLite error " << errorCode << ": " << message);
}
