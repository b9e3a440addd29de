#include <cstring>
#include <sqlite3.h>
#include <thread>

#include <QDir>
#include <QSignalSpy>
#include <QThread>

#include "StatementTrace.h"
#include "StoreFixture.h"

namespace {

// Interrupts the store's connection once it has given so many rows, like a damaged page behind
// them.
class InterruptAtRow {
public:
    // Rows of the statements whose text has `part` are counted.
    InterruptAtRow(Database& database, int row, const char* part = "")
        : m_connection(StoreProbe::connection(database)), m_rowsLeft(row), m_part(part) {
        sqlite3_trace_v2(m_connection, SQLITE_TRACE_ROW, &InterruptAtRow::onRow, this);
    }
    ~InterruptAtRow() { sqlite3_trace_v2(m_connection, 0, nullptr, nullptr); }
    InterruptAtRow(const InterruptAtRow&) = delete;
    InterruptAtRow& operator=(const InterruptAtRow&) = delete;

private:
    static int onRow(unsigned /*event*/, void* self, void* statement, void* /*unused*/) {
        auto* fault = static_cast<InterruptAtRow*>(self);
        const char* text = sqlite3_sql(static_cast<sqlite3_stmt*>(statement));
        if (std::strstr(text, fault->m_part) && --fault->m_rowsLeft == 0)
            sqlite3_interrupt(fault->m_connection);
        return 0;
    }

    sqlite3* m_connection;
    int m_rowsLeft;
    const char* m_part;
};

} // namespace

// What every operation returns and logs at error level when SQLite fails it.
class FailureTest : public StoreFixture {
protected:
    // From now on another connection holds the file, and not even reading is possible. It will not
    // let go however long a statement waits, so none does.
    void lock() {
        sqlite3_busy_timeout(StoreProbe::connection(database()), 0);
        run(QStringLiteral("BEGIN EXCLUSIVE"));
    }
    void unlock() { run(QStringLiteral("ROLLBACK")); }

    template <typename Edit>
    QStringList errorsOf(Edit edit) {
        LogCapture log(QStringLiteral("PlayLists"));
        edit();
        return log.errors();
    }

    static QString reset(const char* statement, const char* message) {
        return QStringLiteral("Unable to reset sql statement: %1 msg: %2")
            .arg(QLatin1String(statement), QLatin1String(message));
    }
    // What an addition logs that is to fail.
    QStringList errorsOfAdding(const PlayListRecord& pl, int count,
                               OrvoPlayListAddPosition::Enum mode = OrvoPlayListAddPosition::Now) {
        return errorsOf(
            [&] { EXPECT_EQ(-1, database().addItems(pl, mode, items(count), nullptr)); });
    }
};

TEST_F(FailureTest, deletingWaitsForAShortWriteOfAnotherProcess) {
    const PlayListRecord pl = playListOf("abc");
    run(QStringLiteral("BEGIN IMMEDIATE"));
    std::thread other([this] {
        QThread::msleep(100);
        unlock();
    });
    EXPECT_TRUE(database().deletePlayList(pl));
    other.join();
}

TEST_F(FailureTest, readingFromALockedFileFails) {
    const PlayListRecord pl = playListOf("abc");
    const CollectionRecord cl = database().createCollection(QStringLiteral("c"));
    lock();
    Database& store = database();
    EXPECT_EQ(QStringList({reset("getItems", "database is locked"),
                           QStringLiteral("Error fetching PlayList items from DB")}),
              errorsOf([&] { EXPECT_TRUE(store.getItems(pl, 0, 9).isEmpty()); }));
    EXPECT_EQ(QStringList({reset("getItemByUid", "database is locked"),
                           QStringLiteral("Error fetching item by UID")}),
              errorsOf([&] { EXPECT_TRUE(store.getItemByUid(1).isEmpty()); }));
    EXPECT_EQ(QStringList({QStringLiteral("Error fetching the next sequenceNumber"),
                           reset("getNextSequenceNumber", "database is locked")}),
              errorsOf([&] { EXPECT_EQ(-1, store.getNextSequenceNumber(pl)); }));
    EXPECT_EQ(QStringList(reset("getPlayLists", "database is locked")),
              errorsOf([&] { EXPECT_TRUE(store.getPlayLists().isEmpty()); }));
    EXPECT_EQ(QStringList(reset("getPlayQueue", "database is locked")),
              errorsOf([&] { EXPECT_EQ(-1, store.getPlayQueue().uid); }));
    EXPECT_EQ(QStringList({reset("getCollections", "database is locked"),
                           QStringLiteral("Unable to fetch collections")}),
              errorsOf([&] { EXPECT_TRUE(store.getCollections().isEmpty()); }));
    EXPECT_EQ(QStringList(reset("countPlaylists", "database is locked")),
              errorsOf([&] { EXPECT_EQ(0, store.countPlaylists()); }));
    EXPECT_EQ(QStringList(reset("countPlaylistItems", "database is locked")),
              errorsOf([&] { EXPECT_EQ(0, store.countPlaylistsItems()); }));
    EXPECT_EQ(QStringList(reset("countCollections", "database is locked")),
              errorsOf([&] { EXPECT_EQ(0, store.countCollections()); }));
    unlock();
    EXPECT_EQ(3, store.getItems(pl, 0, 9).size());
    EXPECT_EQ(1, store.getCollections().size());
    expectInvariants();
}

TEST_F(FailureTest, aNextNumberIsGivenThoughItsResetFails) {
    // A reading statement that gave its row cannot fail in the reset; one that commits there can.
    const PlayListRecord pl = playListOf("abc");
    StoreProbe::replaceStatement(
        database(), StatementId::GetNextSequenceNumber,
        "INSERT INTO collections_playlists(collection, playlist) VALUES(4711, ?1) RETURNING 42");
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(StoreProbe::connection(database()),
                                      "PRAGMA defer_foreign_keys=1;", nullptr, nullptr, nullptr));
    EXPECT_EQ(QStringList({reset("getNextSequenceNumber", "constraint failed"),
                           QStringLiteral("Error resetting next sequence number stmt")}),
              errorsOf([&] { EXPECT_EQ(42, database().getNextSequenceNumber(pl)); }));
    expectInvariants();
}

TEST_F(FailureTest, anItemWhoseReadingEndsInAFailureIsNotGiven) {
    playListOf("abc");
    StoreProbe::replaceStatement(
        database(), StatementId::GetItemByUid,
        "INSERT INTO collections_playlists(collection, playlist) VALUES(4711, ?1)"
        " RETURNING 0, 1, 'a', '', '', '', '', 0, '', '', '{}'");
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(StoreProbe::connection(database()),
                                      "PRAGMA defer_foreign_keys=1;", nullptr, nullptr, nullptr));
    EXPECT_EQ(QStringList({reset("getItemByUid", "constraint failed"),
                           QStringLiteral("Error fetching item by UID")}),
              errorsOf([&] { EXPECT_TRUE(database().getItemByUid(1).isEmpty()); }));
    expectInvariants();
}

TEST_F(FailureTest, aValueThatCannotBeBoundFailsTheReading) {
    const PlayListRecord pl = playListOf("abc");
    for (const char* sql : {"SELECT 1", "SELECT ?1", "SELECT ?2"}) {
        StoreProbe::replaceStatement(database(), StatementId::GetItems, sql);
        EXPECT_EQ(QStringList(QStringLiteral("Error fetching PlayList items from DB")),
                  errorsOf([&] { EXPECT_TRUE(database().getItems(pl, 0, 9).isEmpty()); }))
            << sql;
    }
    StoreProbe::replaceStatement(database(), StatementId::GetItemByUid, "SELECT 1");
    EXPECT_EQ(QStringList(QStringLiteral("Error fetching item by UID")),
              errorsOf([&] { EXPECT_TRUE(database().getItemByUid(1).isEmpty()); }));
    StoreProbe::replaceStatement(database(), StatementId::GetNextSequenceNumber, "SELECT 1");
    EXPECT_EQ(QStringList(QStringLiteral("Error fetching the next sequenceNumber")),
              errorsOf([&] { EXPECT_EQ(-1, database().getNextSequenceNumber(pl)); }));
    reopen();
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
}

TEST_F(FailureTest, aValueThatCannotBeBoundFailsTheWriting) {
    const PlayListRecord pl = playListOf("abc");
    for (const char* sql : {"SELECT 1", "SELECT ?1", "SELECT ?2", "SELECT ?3", "SELECT ?4",
                            "SELECT ?5", "SELECT ?6", "SELECT ?7", "SELECT ?8"}) {
        StoreProbe::replaceStatement(database(), StatementId::InsertItem, sql);
        EXPECT_EQ(QStringList({QStringLiteral("Error inserting item into DB"),
                               QStringLiteral("Error adding items to list")}),
                  errorsOf([&] {
                      EXPECT_EQ(-1, database().addItems(pl, OrvoPlayListAddPosition::Append,
                                                        items(3), nullptr));
                  }))
            << sql;
    }
    reopen();
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    expectInvariants();
}

TEST_F(FailureTest, writingToALockedFileFails) {
    PlayListRecord pl = playListOf("abc");
    const CollectionRecord cl = database().createCollection(QStringLiteral("c"));
    lock();
    Database& store = database();
    EXPECT_EQ(QStringList({reset("createPlayList", "database is locked"),
                           QStringLiteral("Unable to create playlist in database")}),
              errorsOf([&] { EXPECT_EQ(-1, store.createPlayList(QStringLiteral("x")).uid); }));
    EXPECT_EQ(QStringList({reset("updatePlayList", "database is locked"),
                           QStringLiteral("Error updating PlayList")}),
              errorsOf([&] { EXPECT_FALSE(store.updatePlayList(pl)); }));
    EXPECT_EQ(QStringList({reset("deletePlayList", "database is locked"),
                           QStringLiteral("Error deleting PlayList: delete commad failed"),
                           QStringLiteral("Error deleting PlayList")}),
              errorsOf([&] { EXPECT_FALSE(store.deletePlayList(pl)); }));
    EXPECT_EQ(QStringList({reset("moveItem1", "database is locked"),
                           QStringLiteral("Error moving PlayListItem")}),
              errorsOf([&] { EXPECT_FALSE(store.moveItem(pl, 0, 1)); }));
    EXPECT_EQ(QStringList({reset("deletePlayListItem", "database is locked"),
                           QStringLiteral("Error removing partial items from list"),
                           QStringLiteral("Unable to clear playList %1").arg(pl.uid)}),
              errorsOf([&] { EXPECT_FALSE(store.clearItems(pl)); }));
    EXPECT_EQ(QStringList({reset("createCollection", "database is locked"),
                           QStringLiteral("Unable to create collection in database")}),
              errorsOf([&] { EXPECT_EQ(-1, store.createCollection(QStringLiteral("x")).uid); }));
    EXPECT_EQ(
        QStringList({reset("deleteCollection", "database is locked"),
                     QStringLiteral("Unable to delete collection uid=%1 in database").arg(cl.uid)}),
        errorsOf([&] { EXPECT_FALSE(store.deleteCollection(cl)); }));
    EXPECT_EQ(QStringList(
                  {reset("addToCollection", "database is locked"),
                   QStringLiteral("Unable to add pl=%1 to collection=%2").arg(pl.uid).arg(cl.uid)}),
              errorsOf([&] { EXPECT_FALSE(store.addToCollection(cl, pl.uid)); }));
    EXPECT_EQ(QStringList({reset("removeFromCollection", "database is locked"),
                           QStringLiteral("Unable to remove pl=%1 from collection=%2 in database")
                               .arg(pl.uid)
                               .arg(cl.uid)}),
              errorsOf([&] { EXPECT_FALSE(store.removeFromCollection(cl, pl.uid)); }));
    unlock();
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    EXPECT_EQ(1, store.getCollections().size());
    expectInvariants();
}

TEST_F(FailureTest, anItemThatCannotBeInsertedFailsTheAddition) {
    const PlayListRecord pl = playListOf("abc");
    forbid("INSERT ON items WHEN NEW.title = 't1'");
    EXPECT_EQ(QStringList({reset("insertItem", "constraint failed"),
                           QStringLiteral("Error inserting item into DB"),
                           QStringLiteral("Error adding items to list")}),
              errorsOfAdding(pl, 3, OrvoPlayListAddPosition::Append));
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    expectInvariants();
}

TEST_F(FailureTest, anEntryThatCannotBeInsertedFailsTheAddition) {
    PlayListRecord pl = playListOf("abc");
    pl.lastPlayedIndex = 0;
    forbid("INSERT ON playlists_items WHEN NEW.sequenceNumber = 2");
    EXPECT_EQ(QStringList({reset("insertPlayListItem", "constraint failed"),
                           QStringLiteral("Error inserting item into playlist DB"),
                           QStringLiteral("Error adding items to list")}),
              errorsOfAdding(pl, 3));
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    expectInvariants();
}

TEST_F(FailureTest, aDiskThatFillsUpOnTheWayFailsTheAddition) {
    PlayListRecord pl = playListOf("abc");
    pl.lastPlayedIndex = 0;
    const int pages = queryInt(QStringLiteral("PRAGMA page_count"));
    ASSERT_EQ(SQLITE_OK,
              sqlite3_exec(StoreProbe::connection(database()),
                           qPrintable(QStringLiteral("PRAGMA max_page_count=%1").arg(pages + 5)),
                           nullptr, nullptr, nullptr));
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_EQ(-1, database().addItems(pl, OrvoPlayListAddPosition::Now, items(2000), nullptr));
    EXPECT_EQ(3, log.errors().size());
    EXPECT_EQ(reset("insertItem", "database or disk is full"), log.errors().value(0));
    EXPECT_EQ(QStringLiteral("Error adding items to list"), log.errors().value(2));
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    expectInvariants();
    EXPECT_EQ(1, database().addItems(pl, OrvoPlayListAddPosition::Now, items(2), nullptr));
    EXPECT_EQ(QStringLiteral("a t0 t1 b c"), stored(pl.uid));
    expectInvariants();
}

TEST_F(FailureTest, addingToAPlaylistThatIsGoneFails) {
    PlayListRecord pl;
    pl.uid = 4711;
    EXPECT_EQ(QStringList({reset("insertPlayListItem", "constraint failed"),
                           QStringLiteral("Error inserting item into playlist DB"),
                           QStringLiteral("Error adding items to list")}),
              errorsOfAdding(pl, 1, OrvoPlayListAddPosition::Append));
    EXPECT_EQ(0, database().countPlaylistsItems());
    expectInvariants();
}

TEST_F(FailureTest, aGapThatCannotBeOpenedFailsTheAddition) {
    PlayListRecord pl = playListOf("abc");
    pl.lastPlayedIndex = 0;
    forbid("UPDATE ON playlists_items");
    EXPECT_EQ(QStringList({reset("moveItem1", "constraint failed"),
                           QStringLiteral("Unable to move item block before adding items"),
                           QStringLiteral("Error adding items to list")}),
              errorsOfAdding(pl, 3));
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    expectInvariants();
}

TEST_F(FailureTest, aGapThatCannotBeClosedAgainIsUndone) {
    // The second of the two shifts fails: the first is undone.
    PlayListRecord pl = playListOf("abc");
    pl.lastPlayedIndex = 0;
    forbid("UPDATE ON playlists_items WHEN NEW.sequenceNumber < OLD.sequenceNumber");
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_EQ(-1, database().addItems(pl, OrvoPlayListAddPosition::Now, items(3), nullptr));
    EXPECT_TRUE(
        log.errors().contains(QStringLiteral("Unable to move item block before adding items")));
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    expectInvariants();
}

TEST_F(FailureTest, aMoveThatFailsAtAnyOfItsStepsIsUndone) {
    const PlayListRecord pl = playListOf("abcd");
    // Lifting the range, placing the moved entry, bringing back the others: each trigger lets the
    // steps before it pass.
    for (const char* step :
         {"OLD.sequenceNumber = 0", "NEW.sequenceNumber = 3 AND OLD.sequenceNumber > 3",
          "NEW.sequenceNumber = 1 AND OLD.sequenceNumber > 3"}) {
        forbid(QStringLiteral("UPDATE ON playlists_items WHEN %1").arg(QLatin1String(step)));
        EXPECT_EQ(QStringList({reset("moveItem1", "constraint failed"),
                               QStringLiteral("Error moving PlayListItem")}),
                  errorsOf([&] { EXPECT_FALSE(database().moveItem(pl, 0, 3)); }));
        EXPECT_EQ(QStringLiteral("a b c d"), stored(pl.uid));
        expectInvariants();
        allowAll();
    }
    EXPECT_TRUE(database().moveItem(pl, 0, 3));
}

TEST_F(FailureTest, anEntryThatCannotBeRemovedFailsTheRemoval) {
    const PlayListRecord pl = playListOf("abcdef");
    forbid("DELETE ON playlists_items WHEN OLD.sequenceNumber = 2");
    StatementTrace trace(database());
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    EXPECT_EQ(QStringList({reset("deletePlayListItem", "constraint failed"),
                           QStringLiteral("Error removing partial items from list"),
                           QStringLiteral("Unable to remove all item indices"),
                           QStringLiteral("Error removing items from list")}),
              errorsOf([&] {
                  EXPECT_EQ(-1, database().removeItems(pl, {0, 2, 4}));
              }));
    EXPECT_EQ(2, trace.texts().filter(QStringLiteral("DELETE FROM playlists_items")).size());
    EXPECT_EQ(0, spy.size());
    EXPECT_EQ(QStringLiteral("a b c d e f"), stored(pl.uid));
    expectInvariants();
    EXPECT_EQ(QStringList({reset("deletePlayListItem", "constraint failed"),
                           QStringLiteral("Error removing partial items from list"),
                           QStringLiteral("Unable to clear playList %1").arg(pl.uid)}),
              errorsOf([&] { EXPECT_FALSE(database().clearItems(pl)); }));
    EXPECT_EQ(QStringLiteral("a b c d e f"), stored(pl.uid));
    EXPECT_EQ(0, spy.size());
    expectInvariants();
}

TEST_F(FailureTest, aRemovalThatLosesItsTransactionGoesNoFurther) {
    const PlayListRecord pl = playListOf("abcdef");
    run(QStringLiteral(
        "CREATE TRIGGER undo BEFORE DELETE ON playlists_items WHEN OLD.sequenceNumber = 2"
        " BEGIN SELECT RAISE(ROLLBACK, 'all undone'); END"));
    EXPECT_EQ(-1, database().removeItems(pl, {0, 2, 4}));
    EXPECT_EQ(QStringLiteral("a b c d e f"), stored(pl.uid));
    expectInvariants();
}

TEST_F(FailureTest, itemsThatCannotBeCleanedUpFailTheRemoval) {
    const PlayListRecord pl = playListOf("abcdef");
    forbid("DELETE ON items");
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    EXPECT_EQ(QStringList({reset("cleanUnusedItems", "constraint failed"),
                           QStringLiteral("Unable to clean up unused items"),
                           QStringLiteral("Error removing items from list")}),
              errorsOf([&] { EXPECT_EQ(-1, database().removeItems(pl, {1})); }));
    EXPECT_EQ(QStringList({reset("cleanUnusedItems", "constraint failed"),
                           QStringLiteral("Unable to clean up unused items"),
                           QStringLiteral("Error deleting PlayList")}),
              errorsOf([&] { EXPECT_FALSE(database().deletePlayList(pl)); }));
    EXPECT_EQ(QStringLiteral("a b c d e f"), stored(pl.uid));
    EXPECT_EQ(0, spy.size());
    expectInvariants();
    // Clearing has no transaction: the entries are gone all the same, and a vacuum is owed.
    EXPECT_EQ(QStringList({reset("cleanUnusedItems", "constraint failed"),
                           QStringLiteral("Unable to clean up unused items")}),
              errorsOf([&] { EXPECT_FALSE(database().clearItems(pl)); }));
    EXPECT_EQ(QString(), stored(pl.uid));
    EXPECT_EQ(6, database().countPlaylistsItems());
    EXPECT_EQ(1, spy.size());
}

TEST_F(FailureTest, numbersThatCannotBeRestoredFailTheEdit) {
    const PlayListRecord pl = playListOf("abcdef");
    forbid("UPDATE ON playlists_items WHEN NEW.sequenceNumber = 3");
    EXPECT_EQ(QStringList({reset("setSequenceNumber", "constraint failed"),
                           QStringLiteral("Unable to restore sequence numbers"),
                           QStringLiteral("Error removing items from list")}),
              errorsOf([&] { EXPECT_EQ(-1, database().removeItems(pl, {1})); }));
    EXPECT_EQ(QStringLiteral("a b c d e f"), stored(pl.uid));
    expectInvariants();
}

TEST_F(FailureTest, readingThatFailsOnTheWayGivesWhatWasRead) {
    const PlayListRecord pl = playListOf(items(10));
    const InterruptAtRow fault(database(), 5);
    EXPECT_EQ(QStringList({reset("getItems", "interrupted"),
                           QStringLiteral("Error fetching PlayList items from DB")}),
              errorsOf([&] { EXPECT_EQ(5, database().getItems(pl, 0, 9).size()); }));
    expectInvariants();
}

// Then all items are looked at.
TEST_F(FailureTest, itemsThatCannotBeNotedGoAllTheSame) {
    for (int row : {1, 2}) {
        const PlayListRecord pl = playListOf("abcdef");
        playListOf(items(100));
        const InterruptAtRow fault(database(), row, "SELECT item FROM playlists_items");
        EXPECT_EQ(QStringList(reset("cleanUnusedItems", "interrupted")), errorsOf([&] {
                      EXPECT_EQ(2, database().removeItems(pl, {1, 2}));
                  }));
        EXPECT_EQ(QStringLiteral("a d e f"), stored(pl.uid));
        expectInvariants();
    }
}

TEST_F(FailureTest, numbersThatCannotBeReadFailTheEdit) {
    // Half of them read must not be taken for all of them.
    const PlayListRecord pl = playListOf("abcdef");
    const InterruptAtRow fault(database(), 2, "orvoRoles");
    EXPECT_EQ(QStringList({reset("getItems", "interrupted"),
                           QStringLiteral("Error fetching PlayList items from DB"),
                           QStringLiteral("Unable to restore sequence numbers"),
                           QStringLiteral("Error removing items from list")}),
              errorsOf([&] { EXPECT_EQ(-1, database().removeItems(pl, {1})); }));
    EXPECT_EQ(QStringLiteral("a b c d e f"), stored(pl.uid));
    expectInvariants();
}

TEST_F(FailureTest, aFileOfAnotherShapeFailsOperationsButNotTheProcess) {
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("data-rw/playlists")));
    run(QStringLiteral("CREATE TABLE collections (uid INTEGER PRIMARY KEY);"
                       "CREATE TABLE playlists (uid INTEGER PRIMARY KEY, name, shuffle,"
                       " repeatAll, lastPlayedIndex)"));
    LogCapture log(QStringLiteral("PlayLists"));
    Database& store = database();
    EXPECT_EQ(
        QStringList(
            {QStringLiteral("Unable to prepare statement getCollections: SQL logic error"),
             QStringLiteral("Unable to prepare statement createCollection: SQL logic error")}),
        log.texts(QStringLiteral("FATAL")));
    EXPECT_EQ(QStringList({reset("createCollection", "bad parameter or other API misuse"),
                           QStringLiteral("Unable to create collection in database")}),
              errorsOf([&] { EXPECT_EQ(-1, store.createCollection(QStringLiteral("c")).uid); }));
    EXPECT_EQ(QStringList({reset("getCollections", "bad parameter or other API misuse"),
                           QStringLiteral("Unable to fetch collections")}),
              errorsOf([&] { EXPECT_TRUE(store.getCollections().isEmpty()); }));
    EXPECT_EQ(QStringLiteral("a b c"), stored(playListOf("abc").uid));
    expectInvariants();
}
