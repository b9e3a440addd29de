#include "TagStore.h"

#include <algorithm>
#include <sqlite3.h>

#include <QFile>

#include "FilesLog.h"

namespace {

// Says that a file is ours ("OvFt"), and which tables it has. A file of another version is made
// anew: reading the music again costs minutes, a conversion would have to be kept for ever.
constexpr int TagStoreId = 0x4f764674;
constexpr int TagStoreVersion = 1;
// Rows of one transaction: a crash loses the work of a second or two.
constexpr int RowsPerCommit = 1000;
// Below this many a store is never tidied.
constexpr qint64 MinRowsToForget = 1000;

constexpr const char* MakeTables = R"(
    CREATE TABLE tracks(
        id INTEGER PRIMARY KEY, path TEXT NOT NULL UNIQUE, size INTEGER, modified INTEGER,
        title TEXT, artist TEXT, albumArtist TEXT, album TEXT, genre TEXT, composer TEXT,
        date TEXT, disc INTEGER, number INTEGER, durationMs INTEGER,
        picture TEXT)
)";
// A picture is NULL where it was not sought, empty where there is none.
constexpr const char* FindTrack = R"(
    SELECT id, title, artist, albumArtist, album, genre, composer, date, disc, number, durationMs,
        picture
    FROM tracks WHERE path = ?1 AND size = ?2 AND modified = ?3
)";
constexpr const char* PutTrack = R"(
    INSERT INTO tracks(path, size, modified, title, artist, albumArtist, album, genre, composer,
        date, disc, number, durationMs, picture)
    VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14)
    ON CONFLICT(path) DO UPDATE SET size = ?2, modified = ?3, title = ?4, artist = ?5,
        albumArtist = ?6, album = ?7, genre = ?8, composer = ?9, date = ?10, disc = ?11,
        number = ?12, durationMs = ?13, picture = ?14
    RETURNING id
)";

} // namespace

TagStore::TagStore(const QString& file) : m_file(file) {
    if (m_file.isEmpty())
        return;
    const bool existed = QFile::exists(m_file);
    bool opened = open();
    if (!opened && existed) {
        LOG4CPLUS_WARN(filesLog(), m_file << " is damaged, or no file of tags; it is put aside "
                                             "and all tags are read again");
        close();
        putAside();
        opened = open();
    }
    if (!opened)
        giveUp("opened");
}

TagStore::~TagStore() {
    commit();
    close();
}

bool TagStore::open() {
    if (sqlite3_open_v2(m_file.toUtf8().constData(), &m_connection,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                        nullptr) != SQLITE_OK)
        return false;
    if (!execute("PRAGMA journal_mode = WAL") || !execute("PRAGMA synchronous = NORMAL"))
        return false;
    if (!isSound() && !makeTables())
        return false;
    m_find = std::make_unique<SqliteStatement>(m_connection, FindTrack);
    m_put = std::make_unique<SqliteStatement>(m_connection, PutTrack);
    return m_find->reset() && m_put->reset();
}

bool TagStore::isSound() {
    SqliteStatement check(m_connection, "PRAGMA quick_check(1)");
    SqliteStatement id(m_connection, "PRAGMA application_id");
    SqliteStatement version(m_connection, "PRAGMA user_version");
    return check.step() && check.text(0) == QLatin1String("ok") && id.step() &&
           id.number(0) == TagStoreId && version.step() && version.number(0) == TagStoreVersion;
}

// Only in an empty file: anything else is another program's, or of another version.
bool TagStore::makeTables() {
    {
        SqliteStatement tables(m_connection, "SELECT count(*) FROM sqlite_master");
        if (!tables.step() || tables.number(0) != 0)
            return false;
    }
    const QByteArray marks = QStringLiteral("PRAGMA application_id = %1; PRAGMA user_version = %2")
                                 .arg(TagStoreId)
                                 .arg(TagStoreVersion)
                                 .toLatin1();
    return execute(MakeTables) && execute(marks.constData());
}

void TagStore::close() {
    m_find.reset();
    m_put.reset();
    sqlite3_close_v2(m_connection);
    m_connection = nullptr;
}

void TagStore::putAside() {
    const QString aside = m_file + QStringLiteral(".damaged");
    QFile::remove(aside);
    if (!QFile::rename(m_file, aside))
        QFile::remove(m_file);
    for (const char* suffix : {"-wal", "-shm", "-journal"})
        QFile::remove(m_file + QLatin1String(suffix));
}

void TagStore::giveUp(const char* doing) {
    LOG4CPLUS_WARN(filesLog(), "tags are not kept: " << m_file << " cannot be " << doing << ": "
                                                     << sqlite3_errmsg(m_connection));
    close();
}

bool TagStore::execute(const char* sql) {
    return sqlite3_exec(m_connection, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

void TagStore::saw(qint64 row) {
    const auto place = std::size_t(std::max<qint64>(0, row));
    if (place >= m_seen.size())
        m_seen.resize(2 * place + 1);
    m_seen[place] = true;
}

std::optional<TagStore::Found> TagStore::find(const Key& key) {
    if (!m_connection)
        return {};
    m_find->bind(1, key.path);
    m_find->bind(2, key.size);
    m_find->bind(3, key.modified);
    std::optional<Found> found;
    if (m_find->step()) {
        int column = 0;
        saw(m_find->number(column));
        found.emplace();
        TrackTags& tags = found->tags;
        for (QString* text : {&tags.title, &tags.artist, &tags.albumArtist, &tags.album,
                              &tags.genre, &tags.composer, &tags.date})
            *text = m_find->text(++column);
        tags.disc = int(m_find->number(++column));
        tags.trackNumber = int(m_find->number(++column));
        tags.durationMs = m_find->number(++column);
        found->pictureSought = !m_find->isNull(++column);
        tags.picture = m_find->text(column);
    }
    if (!m_find->reset())
        giveUp("read");
    return found;
}

void TagStore::put(const Key& key, const TrackTags& tags, bool pictureSought) {
    if (!m_connection)
        return;
    if (m_uncommitted == 0 && !execute("BEGIN")) {
        giveUp("written");
        return;
    }
    int index = 0;
    m_put->bind(++index, key.path);
    m_put->bind(++index, key.size);
    m_put->bind(++index, key.modified);
    for (const QString& text : {tags.title, tags.artist, tags.albumArtist, tags.album, tags.genre,
                                tags.composer, tags.date})
        m_put->bind(++index, text);
    m_put->bind(++index, qint64(tags.disc));
    m_put->bind(++index, qint64(tags.trackNumber));
    m_put->bind(++index, tags.durationMs);
    if (pictureSought)
        m_put->bind(++index, tags.picture);
    else
        m_put->bindNull(++index);
    if (m_put->step())
        saw(m_put->number(0));
    if (!m_put->reset()) {
        giveUp("written");
        return;
    }
    if (++m_uncommitted >= RowsPerCommit)
        commit();
}

void TagStore::commit() {
    if (!m_connection || m_uncommitted == 0)
        return;
    m_uncommitted = 0;
    if (!execute("COMMIT"))
        giveUp("written");
}

void TagStore::forgetUnseen() {
    commit();
    if (!m_connection)
        return;
    std::vector<qint64> unseen;
    {
        SqliteStatement rows(m_connection, "SELECT id FROM tracks");
        while (rows.step()) {
            const auto row = std::size_t(rows.number(0));
            if (row >= m_seen.size() || !m_seen[row])
                unseen.push_back(rows.number(0));
        }
    }
    const auto seen = qint64(std::count(m_seen.begin(), m_seen.end(), true));
    if (qint64(unseen.size()) < std::max(seen, MinRowsToForget) || !execute("BEGIN"))
        return;
    SqliteStatement remove(m_connection, "DELETE FROM tracks WHERE id = ?1");
    bool done = true;
    for (const qint64 row : unseen) {
        remove.bind(1, row);
        done = remove.run() && done;
    }
    if (!execute("COMMIT") || !done)
        giveUp("written");
}
