#include "DatabaseUnusedItems.h"

#include "DatabaseTransaction.h"
#include "NumberRuns.h"

namespace {

// Prepared as they are used: a clean-up switches foreign keys off and on, after which the store's
// other statements are prepared anew as well.

// An item that is noted, and found again, costs about what so many cost the statement over all
// items.
constexpr int ItemsPerNoted = 6;

// Whether noting ?1 items costs less than that statement. No more entries are counted than it
// takes.
const QString IsNotingCheaper =
    QStringLiteral("SELECT 1 FROM playlists_items LIMIT 1 OFFSET ?1 * %1").arg(ItemsPerNoted);

// Whether looking for ?1 runs of them in all playlists does, where a look costs about what one item
// costs that statement.
const QString IsLookingCheaper = QStringLiteral(
    "SELECT 1 FROM playlists_items LIMIT 1 OFFSET ?1 * (SELECT Count(*) FROM playlists)");

const QString ItemsOfEntries =
    QStringLiteral("SELECT item FROM playlists_items"
                   " WHERE playlist = ?1 AND sequenceNumber >= ?2 AND sequenceNumber <= ?3");

// ?1 is a list of runs "[[3,7],[9,9]]". Entries are found by their primary key, which begins with
// the playlist: there is no index from an item to its entries.
const QString DeleteUnused =
    QStringLiteral("WITH runs AS MATERIALIZED (SELECT json_extract(value, '$[0]') AS first,"
                   " json_extract(value, '$[1]') AS last FROM json_each(?1))"
                   " DELETE FROM items WHERE uid IN ("
                   "SELECT uid FROM runs CROSS JOIN items ON uid >= first AND uid <= last"
                   " EXCEPT SELECT item FROM runs CROSS JOIN playlists CROSS JOIN playlists_items"
                   " ON playlist = playlists.uid AND item >= first AND item <= last)");

// What the log calls them, like the statement that they stand for.
const QString CleanUpName = QStringLiteral("cleanUnusedItems");

QString runsAsJson(const QVector<NumberRun>& runs) {
    QStringList texts;
    texts.reserve(runs.size());
    for (const NumberRun& run : runs)
        texts.append(QStringLiteral("[%1,%2]").arg(run.from).arg(run.to));
    return QLatin1Char('[') + texts.join(QLatin1Char(',')) + QLatin1Char(']');
}

} // namespace

Database::UnusedItems::UnusedItems(Database& database, int count)
    : m_database(database),
      m_areFew(!database.m_mayHoldUnusedItems && isTrue(IsNotingCheaper, count)) {}

bool Database::UnusedItems::isTrue(const QString& condition, int count) {
    const std::unique_ptr<Sqlite3Statement> query(
        Sqlite3Statement::create(m_database.m_connection, condition, CleanUpName));
    return query && query->bindInt(1, count) && query->step_row();
}

void Database::UnusedItems::note(int playlistUid, int from, int to) {
    if (!m_areFew)
        return;
    if (!m_items)
        m_items.reset(
            Sqlite3Statement::create(m_database.m_connection, ItemsOfEntries, CleanUpName));
    m_areFew = m_items && m_items->bindInt(1, playlistUid) && m_items->bindInt(2, from) &&
               m_items->bindInt(3, to);
    while (m_areFew && m_items->step_row())
        m_uids.append(m_items->columnInt(0));
    m_areFew = m_areFew && m_items->reset();
}

bool Database::UnusedItems::remove() {
    m_items.reset();
    const QVector<NumberRun> runs = runsOf(m_uids);
    if (!m_areFew || !isTrue(IsLookingCheaper, runs.size()))
        return m_database.cleanUnusedItems();
    // As in cleanUnusedItems().
    const ForeignKeysSuspended suspended(m_database.m_connection);
    const std::unique_ptr<Sqlite3Statement> deleting(
        Sqlite3Statement::create(m_database.m_connection, DeleteUnused, CleanUpName));
    return deleting && deleting->run(runsAsJson(runs));
}
