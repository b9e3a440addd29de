#pragma once

#include <array>
#include <memory>
#include <optional>

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QVector>

#include "BusyHandler.h"
#include "CollectionRecord.h"
#include "ItemPlaces.h"
#include "OrvoPlayListEnums.h"
#include "OrvoPlayListItem.h"
#include "PlayListRecord.h"
#include "StatementCatalogue.h"
#include "StoreResult.h"
#include "UidHistory.h"

struct sqlite3;
class RepeatedLogLines;
class ItemTexts;
struct EntryRoles;
class Sqlite3Statement;
class TextBudget;

// The persistent store: every playlist, the play queue (playlist 0, always there), their items and
// the collections, in one SQLite file below the working directory.
//
// Owner: the worker, for the life of the process. Thread: the worker's; nothing here is locked.
// Failure: a store that cannot be opened ends the process; one that another process does not let go
// of is an exception (std::runtime_error) of the constructor. After that nothing throws: an
// operation logs its error and returns false, a StoreResult or a record with uid -1, and the rows
// are as they were before (see clearItems for the exception).
//
// Entries of a playlist are numbered 0 to size-1 without gaps, and the number is the entry's index.
// Operations that take a PlayListRecord trust its `uid`, `size` and `lastPlayedIndex`: the caller
// keeps the record current.
class Database : public QObject {
    Q_OBJECT

public:
    // itemsLimit: greatest number of items in the whole store, 0 for no limit.
    // vacuumNeeded: a VACUUM is owed from an earlier run and is made up for before this returns.
    // maxStartWaitMs: how long this waits for another process that holds the file.
    Database(int itemsLimit, bool vacuumNeeded,
             int maxStartWaitMs = BusyHandler::DefaultMaxStartWaitMs);
    ~Database() override;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // --- file and transactions (Database.cpp) ---

    // The result codes of SQLite, unchanged.
    int beginTransaction();
    int beginImmediateTransaction();
    int rollbackTransaction();
    // Tries until no other process is in the way, or this one is told to end: then the transaction
    // is rolled back. A failure is logged, not returned.
    void commitTransaction();
    // Whether the last commit failed, so that its transaction is undone although the operation that
    // it ended reported success. Who keeps a record in memory reads it again then.
    bool lastCommitFailed() const { return m_lastCommitFailed; }

    void ensureTablesExist();
    // Ends the process when `sql` fails, or throws when another process is in the way.
    void createTableHelper(const char* sql, const char* name);
    // Removes everything; only an empty play queue remains. For maintenance.
    void clearDatabase();

    // A number that no state of any playlist had before, greater than those given out since the
    // start.
    qint64 nextRevision() { return ++m_lastRevision; }

    // Whether the item that has this uid now, if any, had it already when a playlist had that
    // revision. False for a revision of another start.
    bool isItemOf(qint64 revision, int uid) const {
        return revision > m_firstRevision && revision <= m_lastRevision &&
               !m_uidHistory.isAssignedAfter(uid, revision);
    }

    // Gives back the pages that were read, which are kept for the next reading otherwise.
    void releaseReadPages();

    // Owes a VACUUM; announces it when none was owed.
    void setVacuumNeeded();
    // Runs the owed VACUUM, if any. May take seconds.
    void vacuum();

    // The play queue counts as a playlist. 0 for what cannot be read, here and below.
    int countPlaylists();
    // Items of all playlists together.
    int countPlaylistsItems();
    int countCollections();

    // --- items (DatabaseItems.cpp, DatabaseItemsEdits.cpp) ---

    // The entries numbered `from` to `to`, both included, ascending: 0 to 9 gives up to ten.
    QList<OrvoPlayListItem> getItems(const PlayListRecord& pl, int from, int to);
    // The same entries, without items made of them. Logged as getItems.
    EntryRoles getEntryRoles(const PlayListRecord& pl, int from, int to);
    // An empty item when there is none. Searches all entries of the store: use getItemsByUids for
    // more than a few.
    OrvoPlayListItem getItemByUid(int uid);
    // One item per uid, in the order of `uids`, an empty one where getItemByUid would give one.
    // Costs at most one pass over the store, however many uids. `playlists` are all playlists of
    // the store, the play queue included. Items for which `budget` does not suffice are not even
    // read: it is exceeded afterwards, and the result is empty.
    QList<OrvoPlayListItem> getItemsByUids(const QList<PlayListRecord>& playlists,
                                           const QList<int>& uids, TextBudget* budget = nullptr);
    // The number that an entry appended now would get; -1 on failure.
    int getNextSequenceNumber(const PlayListRecord& pl);
    // The number that the first of several added entries will get; -1 on failure or for an unknown
    // position.
    int addItemsNextSequenceNumber(const PlayListRecord& pl,
                                   const OrvoPlayListAddPosition::Enum& position);

    // Adds the items that still fit below the limit, in order, and returns the number of the first
    // one; Failed, or LimitReached when none fits (or none was given). `addedCount`, unless null,
    // receives how many were to be added; it is untouched when not even a transaction was to be
    // had.
    //   entries a b c d, lastPlayedIndex 1, items x y, AfterCurrent  ->  a b x y c d, returns 2
    // With `places`, which fit: the items are appended and brought there, and the last played
    // position follows its entry. LimitReached as well where only some fit and all are wanted.
    int addItems(const PlayListRecord& pl, OrvoPlayListAddPosition::Enum position,
                 const QList<OrvoPlayListItem>& items, int* addedCount,
                 const ItemPlaces& places = {});
    // Inserts at free numbers from `sequenceNumber` on. Within the caller's transaction.
    bool addItemsFromSequenceNumber(const PlayListRecord& pl, const int& sequenceNumber,
                                    const QList<OrvoPlayListItem>& items);
    // Opens a gap of `count` numbers at `from`. Within the caller's transaction.
    //   a b c d, from 1, count 2  ->  a _ _ b c d
    bool offsetItemsFromTransaction(const PlayListRecord& pl, int from, int count);

    // Removes the entries at `indices` (ascending, each once) and closes the gaps; the number
    // removed, or Failed when one of them does not exist, and then nothing is removed.
    //   a b c d e f g, indices 1 2 5  ->  a d e g, returns 3
    int removeItems(const PlayListRecord& pl, const QList<int>& indices);
    // Removes the entries numbered `from` to `to` without closing the gap; the number removed, or
    // Failed.
    int removeItemsHelper(const PlayListRecord& pl, int from, int to,
                          RepeatedLogLines* lines = nullptr);

    // Moves the entry at `from` so that it stands at `to`; both within the list.
    //   a b c d e, from 1, to 3  ->  a c d b e          a b c d e, from 3, to 1  ->  a d b c e
    bool moveItem(const PlayListRecord& pl, int from, int to);
    bool moveItemTransaction(const PlayListRecord& pl, int from, int to);
    // Gives the entries from `first` on another order: order[i] is the number of the entry that
    // comes to stand at first + i. `lastPlayedIndex` is written along with it, whole or not at all.
    //   a b c d e, first 1, order 3 1 2  ->  a d b c e
    bool reorderItems(const PlayListRecord& pl, int first, const QVector<int>& order,
                      int lastPlayedIndex);
    bool reorderItemsTransaction(const PlayListRecord& pl, int first, const QVector<int>& order,
                                 int lastPlayedIndex);

    // Removes all entries. False with the entries gone is possible: when only the clean-up of their
    // items failed.
    bool clearItems(const PlayListRecord& pl);
    // Removes items that no entry refers to. A clear leaves them when the process ends between its
    // two statements; they would stay, and count against the limit, until something else is
    // deleted. Costs next to nothing when there are none.
    void removeUnusedItems();
    // Logs every entry, at trace level; costs nothing when that is off.
    void printItems(const PlayListRecord& pl);

    // --- playlist rows (DatabasePlayLists.cpp) ---

    // All but the play queue, by name.
    QList<PlayListRecord> getPlayLists();
    PlayListRecord getPlayQueue();
    // Any of them, for once in a while: reads all. Uid -1 when it is not there or cannot be read.
    PlayListRecord getPlayListByUid(int uid);
    PlayListRecord createPlayList(const QString& name);
    // Writes name, shuffle, repeatAll and lastPlayedIndex.
    bool updatePlayList(const PlayListRecord& pl);
    // Deletes the playlist, its entries and its memberships. The play queue cannot be deleted.
    bool deletePlayList(const PlayListRecord& pl);
    bool deletePlayListTransaction(const PlayListRecord& pl);

    // --- collection rows (DatabaseCollections.cpp) ---

    // All with their members, by name.
    QList<CollectionRecord> getCollections();
    CollectionRecord createCollection(const QString& name);
    bool deleteCollection(const CollectionRecord& cl);
    // False when the playlist is a member already.
    bool addToCollection(const CollectionRecord& cl, const int& playlistUid);
    bool removeFromCollection(const CollectionRecord& cl, const int& playlistUid);

Q_SIGNALS:
    // Whether a VACUUM is owed, each time that changes.
    void vacuumNeeded(bool needed);

private:
    friend class StoreProbe; // the tests' look at the connection

    class Transaction;
    class UnusedItems;

    void openFile();
    void refuseForeignFile();
    [[noreturn]] void endHeld();
    void prepareStatements();
    Sqlite3Statement& statement(StatementId id);
    // Nothing when it cannot be read.
    std::optional<int> readCount(StatementId id);

    template <typename Visit>
    bool visitItems(int playlistUid, int from, int to, Visit visit);
    // Nothing when there is none, or it cannot be read.
    std::optional<OrvoPlayListItem> readItemByUid(int uid);
    QHash<int, OrvoPlayListItem> searchItems(const QList<int>& uids, TextBudget budget);
    QHash<int, OrvoPlayListItem> collectItems(const QList<PlayListRecord>& playlists,
                                              const QList<int>& uids, TextBudget budget);
    int ownerOfItem(const QList<PlayListRecord>& playlists, const OrvoPlayListItem& item);
    int insertItem(const ItemTexts& item, int durationSeconds);
    bool bringToPositions(const PlayListRecord& pl, const QList<int>& positions);
    int removeItemsTransaction(const PlayListRecord& pl, const QList<int>& indices);
    bool renumberFrom(const PlayListRecord& pl, int first);
    bool cleanUnusedItems();

    BusyHandler m_busyHandler;
    sqlite3* m_connection = nullptr;
    int m_itemsLimit;
    bool m_vacuumNeeded;
    bool m_lastCommitFailed = false;
    // Items that nothing refers to may have stayed behind: the next removals look at all items.
    bool m_mayHoldUnusedItems = false;
    const qint64 m_firstRevision;
    qint64 m_lastRevision;
    UidHistory m_uidHistory;
    std::array<std::unique_ptr<Sqlite3Statement>, StatementCount> m_statements;
};

// SQLite's own error log.
void sqliteErrorLogCallback(void* arg, int errorCode, const char* message);

// "3,7,12" to its numbers. A piece that is none is logged and skipped.
QList<int> commaSeparateNumberToList(const QString& text);
