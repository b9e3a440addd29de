#include <algorithm>
#include <memory>

#include "DatabaseItemRows.h"
#include "DatabaseUnusedItems.h"
#include "ModuleLog.h"
#include "Sqlite3Statement.h"

namespace {

// Changes nothing. Only the first statement of a transaction waits for another process that writes,
// and a deletion reads before it deletes. Prepared as it is used, like what a deletion reads by.
const QString LockForWriting = QStringLiteral("UPDATE playlists SET uid = uid WHERE uid = ?1");
// What the log calls it, like the statement that it precedes.
const QString LockName = QStringLiteral("deletePlayList");

// The row of either playlist statement.
PlayListRecord playListFromRow(const Sqlite3Statement& row) {
    PlayListRecord pl;
    pl.uid = row.columnInt(0);
    pl.name = row.columnText(1);
    pl.shuffle = row.columnInt(2) == 1;
    pl.repeatAll = row.columnInt(3) == 1;
    pl.lastPlayedIndex = row.columnInt(4);
    // The column is the highest number in use, -1 for none.
    pl.size = row.columnInt(5) + 1;
    return pl;
}

} // namespace

QList<PlayListRecord> Database::getPlayLists() {
    CM_ENTER(moduleLog());
    QList<PlayListRecord> playlists;
    StatementScope query(statement(StatementId::GetPlayLists));
    while (query->step_row())
        playlists.append(playListFromRow(query.row()));
    return playlists;
}

PlayListRecord Database::getPlayQueue() {
    StatementScope query(statement(StatementId::GetPlayQueue));
    return query->step_row() ? playListFromRow(query.row()) : PlayListRecord();
}

PlayListRecord Database::getPlayListByUid(int uid) {
    if (uid == PlayListRecord::PlayQueueUid)
        return getPlayQueue();
    const QList<PlayListRecord> all = getPlayLists();
    const auto found = std::find_if(all.cbegin(), all.cend(),
                                    [uid](const PlayListRecord& pl) { return pl.uid == uid; });
    return found == all.cend() ? PlayListRecord() : *found;
}

PlayListRecord Database::createPlayList(const QString& name) {
    CM_ENTER_ARGS(moduleLog(), "name=" << loggedText(name));
    PlayListRecord pl;
    if (!statement(StatementId::CreatePlayList).run(name)) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to create playlist in database");
        return pl;
    }
    pl.uid = int(sqlite3_last_insert_rowid(m_connection));
    pl.name = name;
    pl.lastPlayedIndex = -1;
    LOG4CPLUS_TRACE(moduleLog(),
                    "Created playlist uid=" << pl.uid << " name=" << loggedText(pl.name));
    return pl;
}

bool Database::updatePlayList(const PlayListRecord& pl) {
    CM_ENTER_ARGS(moduleLog(), "pl=" << pl.uid);
    if (!statement(StatementId::UpdatePlayList)
             .run(pl.name, pl.shuffle ? 1 : 0, pl.repeatAll ? 1 : 0, pl.lastPlayedIndex, pl.uid)) {
        LOG4CPLUS_ERROR(moduleLog(), "Error updating PlayList");
        return false;
    }
    if (sqlite3_changes(m_connection) == 0) {
        LOG4CPLUS_ERROR(moduleLog(), "Error updating PlayList: no such uid in DB");
        return false;
    }
    return true;
}

bool Database::deletePlayList(const PlayListRecord& pl) {
    CM_ENTER_ARGS(moduleLog(), "pl uid=" << pl.uid);
    Transaction transaction(*this, Transaction::Lock::WhenWriting);
    if (!transaction.begun() || !deletePlayListTransaction(pl)) {
        LOG4CPLUS_ERROR(moduleLog(), "Error deleting PlayList");
        return false;
    }
    transaction.commit();
    setVacuumNeeded();
    return true;
}

bool Database::deletePlayListTransaction(const PlayListRecord& pl) {
    const std::unique_ptr<Sqlite3Statement> locking(
        Sqlite3Statement::create(m_connection, LockForWriting, LockName));
    const bool locked = locking && locking->run(pl.uid);
    UnusedItems unused(*this, pl.size);
    unused.note(pl.uid, 0, LastPossibleNumber);
    // A read that failed may have ended the transaction.
    if (!locked || sqlite3_get_autocommit(m_connection) ||
        !statement(StatementId::DeletePlayList).run(pl.uid)) {
        LOG4CPLUS_ERROR(moduleLog(), "Error deleting PlayList: delete commad failed");
        return false;
    }
    if (sqlite3_changes(m_connection) == 0) {
        LOG4CPLUS_ERROR(moduleLog(), "Error deleting PlayList: no such list in DB");
        return false;
    }
    // The entries went with the playlist; their items did not.
    if (!unused.remove()) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to clean up unused items");
        return false;
    }
    return true;
}
