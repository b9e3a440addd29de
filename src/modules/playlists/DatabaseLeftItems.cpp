#include "DatabaseLeftItems.h"

#include "DatabaseTransaction.h"
#include "Sqlite3Statement.h"

namespace {

// Prepared as they are used: a clean-up switches foreign keys off and on, after which the store's
// other statements are prepared anew as well.

// How many playlists there are, and how many entries they have: as many as there are items.
const QString countAll =
    QStringLiteral("SELECT Count(*), total((SELECT MAX(sequenceNumber) + 1 FROM playlists_items"
                   " WHERE playlist = playlists.uid)) FROM playlists");

const QString itemsOfEntries =
    QStringLiteral("SELECT item FROM playlists_items"
                   " WHERE playlist = ?1 AND sequenceNumber >= ?2 AND sequenceNumber <= ?3");

// ?1 is a list "[3,7]". Entries are found by their primary key, which begins with the playlist:
// there is no index from an item to its entries.
const QString deleteUnused = QStringLiteral(
    "DELETE FROM items WHERE uid IN (SELECT value FROM json_each(?1)) AND NOT EXISTS ("
    "SELECT 1 FROM playlists CROSS JOIN playlists_items"
    " ON playlists_items.playlist = playlists.uid AND playlists_items.item = items.uid)");

// What the log calls them, like the statement that they stand for.
const QString statementName = QStringLiteral("cleanUnusedItems");

} // namespace

Database::LeftItems::LeftItems(Database& database, int count)
    : m_database(database), m_oneByOne(!database.m_mayHoldStrays && isCheaperOneByOne(count)) {}

bool Database::LeftItems::isCheaperOneByOne(int count) {
    const std::unique_ptr<Sqlite3Statement> counting(
        Sqlite3Statement::create(m_database.m_connection, countAll, statementName));
    if (!counting || !counting->step_row())
        return false;
    const qint64 playlists = counting->columnInt(0);
    const qint64 stored = counting->columnInt(1);
    // A look into a playlist costs about what an item costs the statement over all. To note an item
    // and to find it again costs a few of these looks, whatever the playlists.
    constexpr int LooksBesides = 6;
    return count * (playlists + LooksBesides) <= stored;
}

void Database::LeftItems::note(int playlistUid, int from, int to) {
    if (!m_oneByOne)
        return;
    if (!m_items)
        m_items.reset(
            Sqlite3Statement::create(m_database.m_connection, itemsOfEntries, statementName));
    m_oneByOne = m_items && m_items->bindInt(1, playlistUid) && m_items->bindInt(2, from) &&
                 m_items->bindInt(3, to);
    while (m_oneByOne && m_items->step_row())
        m_uids.append(QString::number(m_items->columnInt(0)));
    m_oneByOne = m_oneByOne && m_items->reset();
}

bool Database::LeftItems::remove() {
    m_items.reset();
    if (!m_oneByOne)
        return m_database.cleanUnusedItems();
    // As in cleanUnusedItems().
    const ForeignKeysSuspended suspended(m_database.m_connection);
    const std::unique_ptr<Sqlite3Statement> deleting(
        Sqlite3Statement::create(m_database.m_connection, deleteUnused, statementName));
    return deleting && deleting->run(QString(QLatin1Char('[') + m_uids.join(QLatin1Char(',')) +
                                             QLatin1Char(']')));
}
