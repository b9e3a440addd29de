#include "Database.h"

#include <sqlite3.h>
#include <stdexcept>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRandomGenerator>

#include "CMEnding.h"
#include "DatabaseTransaction.h"
#include "ModuleLog.h"
#include "Sqlite3Statement.h"

namespace {

// Relative to the working directory, which the host makes the device's writable storage.
const char* const Directory = "data-rw/playlists/";
const char* const File = "data-rw/playlists/playlists.sqlite";

constexpr qint64 SmallestPage = 512;

struct TableRow {
    const char* name;
    const char* sql;
    const char* table; // the one that it makes or fills
};

// The last row is what makes the play queue exist at every start.
constexpr TableRow Tables[] = {
    {"playlists",
     "CREATE TABLE IF NOT EXISTS playlists ("
     "  uid INTEGER PRIMARY KEY,"
     "  name TEXT NOT NULL,"
     "  shuffle INTEGER NOT NULL DEFAULT 0,"
     "  repeatAll INTEGER NOT NULL DEFAULT 0,"
     "  lastPlayedIndex INTEGER NOT NULL DEFAULT 0);",
     "playlists"},
    {"items",
     "CREATE TABLE IF NOT EXISTS items ("
     "  uid INTEGER PRIMARY KEY,"
     "  title TEXT NOT NULL,"
     "  artist TEXT,"
     "  album TEXT,"
     "  artworkUrl TEXT,"
     "  genre TEXT,"
     "  durationSeconds INTEGER,"
     "  url TEXT NOT NULL,"
     "  serviceId TEXT NOT NULL,"
     "  orvoRoles TEXT);CREATE INDEX IF NOT EXISTS itemUrlIndex ON items(url);",
     "items"},
    {"collections",
     "CREATE TABLE IF NOT EXISTS collections ("
     "  uid INTEGER PRIMARY KEY,"
     "  name TEXT NOT NULL);",
     "collections"},
    {"playlists-items",
     "CREATE TABLE IF NOT EXISTS playlists_items ("
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
     "  UNIQUE(playlist,sequenceNumber));",
     "playlists_items"},
    {"collections-playlists",
     "CREATE TABLE IF NOT EXISTS collections_playlists ("
     "  collection INTEGER NOT NULL,"
     "  playlist INTEGER NOT NULL,"
     "  PRIMARY KEY(collection, playlist),"
     "  FOREIGN KEY(collection) REFERENCES collections(uid)"
     "    ON DELETE CASCADE"
     "    ON UPDATE CASCADE,"
     "  FOREIGN KEY(playlist) REFERENCES playlists(uid)"
     "    ON DELETE CASCADE"
     "    ON UPDATE CASCADE);",
     "collections_playlists"},
    {"createplayqueue",
     "INSERT OR IGNORE INTO playlists(uid, name, lastPlayedIndex)"
     "  VALUES(0, 'PlayQueue', -1);",
     "playlists"},
};

// The cascades have emptied the last two by then, except in a file whose rows were written without
// foreign keys.
constexpr const char* Clearing[] = {
    "DELETE FROM playlists",
    "DELETE FROM items",
    "DELETE FROM collections",
    "DELETE FROM playlists_items",
    "DELETE FROM collections_playlists",
};

// In KiB. Room for the entries of a long list and for the index that counting all items goes
// through; SQLite's own 2 MiB would read them again and again. Taken only as it is used, and seen
// by this connection only.
constexpr const char* CacheSize = "PRAGMA cache_size=-16384;";

// For a pass over the whole store that is not repeated soon.
constexpr const char* SmallCacheSize = "PRAGMA cache_size=-64;";

// Drawn for each start, since a device's clock may start anew, too. With room for a million
// revisions between the bases of two starts that happen to be neighbours, and below 2^53, whole in
// every client's numbers.
qint64 randomRevisionBase() {
    constexpr int ChangeBits = 20;
    return qint64(QRandomGenerator::system()->generate()) << ChangeBits;
}

int execute(sqlite3* connection, const char* sql) {
    return sqlite3_exec(connection, sql, nullptr, nullptr, nullptr);
}

struct RowSearch {
    int code = SQLITE_OK;
    bool found = false;
};

RowSearch lookForRow(sqlite3* connection, const char* sql) {
    const auto onRow = [](void* found, int, char**, char**) {
        *static_cast<bool*>(found) = true;
        return 0;
    };
    RowSearch search;
    search.code = sqlite3_exec(connection, sql, onRow, &search.found, nullptr);
    return search;
}

std::string cannotUse() {
    const QString name = QFileInfo(QString::fromLatin1(File)).absoluteFilePath();
    return "cannot use the playlists in " + name.toStdString() + " (left as it is): ";
}

// A store that cannot be opened leaves the device without playlists: say so in the module's log and
// end. The terminal that the device was started from is told the file as well.
[[noreturn]] void endUnusable(const std::string& text) {
    LOG4CPLUS_FATAL(moduleLog(), text);
    cmFatal((cannotUse() + text).c_str());
}

[[noreturn]] void endUnopened(int code) {
    endUnusable(std::string("Unable to open PlayList database file: ") + sqlite3_errstr(code));
}

[[noreturn]] void endWithoutTable(const char* name, const std::string& message) {
    endUnusable(std::string("Unable to create table ") + name + ": " + message);
}

} // namespace

Database::Database(int itemsLimit, bool vacuumNeeded, int maxStartWaitMs)
    : QObject(nullptr),
      m_busyHandler(maxStartWaitMs),
      m_itemsLimit(itemsLimit),
      m_vacuumNeeded(vacuumNeeded),
      m_firstRevision(randomRevisionBase()),
      m_lastRevision(m_firstRevision) {
    openFile();
    vacuum();
    execute(m_connection, "PRAGMA foreign_keys=1;");
    // After the open, and whatever the result: an initialised SQLite refuses this, so its log stays
    // where the process has routed it.
    sqlite3_config(SQLITE_CONFIG_LOG, sqliteErrorLogCallback, nullptr);
    ensureTablesExist();
    prepareStatements();
    execute(m_connection, CacheSize);
    m_busyHandler.startIsOver();
}

Database::~Database() {
    for (std::unique_ptr<Sqlite3Statement>& prepared : m_statements)
        prepared.reset();
    if (m_connection)
        sqlite3_close_v2(m_connection);
}

void Database::openFile() {
    const QDir dir(QString::fromLatin1(Directory));
    if (!dir.exists() && !dir.mkpath(QStringLiteral(".")))
        endUnusable("Unable to create directory for PlayList database file");
    const int code = sqlite3_open(File, &m_connection);
    if (code != SQLITE_OK || !m_connection)
        endUnopened(code);
    m_busyHandler.attachTo(m_connection);
    refuseForeignFile();
}

// Nothing is wrong with the file, so the host is told and ends in order.
void Database::endHeld() {
    sqlite3_close_v2(m_connection);
    m_connection = nullptr;
    if (!cmEndRequested())
        LOG4CPLUS_FATAL(moduleLog(),
                        "Unable to open PlayList database file: " << sqlite3_errstr(SQLITE_BUSY));
    throw std::runtime_error(cannotUse() + "another process holds it");
}

// Looks at the schema without running a statement: what is refused here is left as it is, while
// ensureTablesExist would have put our tables into another program's file by the time that one of
// its statements fails.
void Database::refuseForeignFile() {
    const auto exists = [this](const char* table) {
        const int code = sqlite3_table_column_metadata(m_connection, nullptr, table, nullptr,
                                                       nullptr, nullptr, nullptr, nullptr, nullptr);
        if (code == SQLITE_BUSY)
            endHeld();
        return code == SQLITE_OK;
    };
    for (const TableRow& row : Tables) {
        if (!exists(row.table))
            continue;
        for (const char* sql = row.sql; *sql != '\0';) {
            sqlite3_stmt* prepared = nullptr;
            const int code = sqlite3_prepare_v2(m_connection, sql, -1, &prepared, &sql);
            sqlite3_finalize(prepared);
            if (code != SQLITE_OK)
                endWithoutTable(row.name, sqlite3_errmsg(m_connection));
        }
    }
    // Looked at after the first reading, which has made good what a cut-off transaction left.
    const qint64 size = QFileInfo(QString::fromLatin1(File)).size();
    if (exists(Tables[0].table)) {
        // SQLite would read the rest of the last page as zeros.
        if (size % SmallestPage != 0)
            endUnopened(SQLITE_CORRUPT);
        return;
    }
    if (size == 0)
        return;
    // The first table that a start makes is not there: a file with any other is not ours. Nor is
    // one that is shorter than any page, which SQLite takes for an empty one.
    const RowSearch other = lookForRow(m_connection, "SELECT 1 FROM sqlite_master LIMIT 1");
    if (other.code == SQLITE_BUSY)
        endHeld();
    if (other.found || size < SmallestPage)
        endUnopened(SQLITE_NOTADB);
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
    // There is no limit, since another process that holds the file lets go soon, and no pause
    // but those that SQLite makes by the busy handler. Only then does a transaction outlive its
    // failed commit: after any other failure, a full disk for one, it is undone, and the next try
    // ends the loop because there is nothing to commit.
    int code = SQLITE_OK;
    bool isGivenUp = false;
    do {
        code = execute(m_connection, "COMMIT;");
        isGivenUp = code == SQLITE_BUSY && cmEndRequested();
    } while (code > SQLITE_ERROR && !isGivenUp);
    if (isGivenUp)
        rollbackTransaction();
    m_lastCommitFailed = isGivenUp || code == SQLITE_ERROR;
    if (m_lastCommitFailed)
        LOG4CPLUS_ERROR(moduleLog(), "Commit transaction failed");
}

void Database::ensureTablesExist() {
    CM_ENTER(moduleLog());
    for (const TableRow& table : Tables)
        createTableHelper(table.sql, table.name);
    LOG4CPLUS_TRACE(moduleLog(), "PlayList tables exist");
}

void Database::createTableHelper(const char* sql, const char* name) {
    char* message = nullptr;
    const int code = sqlite3_exec(m_connection, sql, nullptr, nullptr, &message);
    const std::string text = message ? message : "";
    sqlite3_free(message);
    if (code == SQLITE_OK)
        return;
    if (code == SQLITE_BUSY)
        endHeld();
    endWithoutTable(name, text);
}

void Database::clearDatabase() {
    for (const char* sql : Clearing)
        execute(m_connection, sql);
    ensureTablesExist();
}

void Database::releaseReadPages() {
    sqlite3_db_release_memory(m_connection);
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
    return readCount(StatementId::CountPlaylists).value_or(0);
}

int Database::countPlaylistsItems() {
    return readCount(StatementId::CountPlaylistItems).value_or(0);
}

int Database::countCollections() {
    return readCount(StatementId::CountCollections).value_or(0);
}

std::optional<int> Database::readCount(StatementId id) {
    StatementScope counting(statement(id));
    if (!counting->step_row())
        return std::nullopt;
    return counting->columnInt(0);
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

void Database::removeUnusedItems() {
    // Every entry has its own item. Comparing the numbers costs next to nothing, the clean-up a
    // pass over the whole store.
    constexpr const char* MoreItemsThanEntries =
        "SELECT 1 WHERE (SELECT Count(*) FROM items) > (SELECT Count(*) FROM playlists_items)";
    execute(m_connection, SmallCacheSize);
    const RowSearch search = lookForRow(m_connection, MoreItemsThanEntries);
    execute(m_connection, CacheSize);
    const bool cleaned = search.found && cleanUnusedItems();
    m_mayHoldUnusedItems = search.code != SQLITE_OK || search.found != cleaned;
    if (!cleaned)
        return;
    LOG4CPLUS_INFO(moduleLog(), "removed " << sqlite3_changes(m_connection)
                                           << " items of a playlist whose clearing was cut off");
}

void sqliteErrorLogCallback(void* /*arg*/, int errorCode, const char* message) {
    LOG4CPLUS_ERROR(moduleLog(), "SQLite error " << errorCode << ": " << message);
}
