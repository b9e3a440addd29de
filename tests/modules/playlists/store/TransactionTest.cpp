#include <functional>
#include <sqlite3.h>
#include <thread>
#include <vector>

#include <QRegularExpression>

#include "EntryRoles.h"
#include "StatementTrace.h"
#include "StoreFixture.h"

// Which operation runs in which transaction, and what happens when there is none to be had.
class TransactionTest : public StoreFixture {
protected:
    // The first and the last statement of what `edit` runs.
    template <typename Edit>
    QString frame(Edit edit) {
        StatementTrace trace(database());
        edit();
        return trace.texts().value(0) + QLatin1Char(' ') +
               trace.texts().value(trace.texts().size() - 1);
    }

    // Without begin: every statement commits itself.
    template <typename Edit>
    bool standsAlone(Edit edit) {
        StatementTrace trace(database());
        edit();
        return !trace.texts().isEmpty() &&
               trace.texts().filter(QStringLiteral("BEGIN")).isEmpty() &&
               trace.texts().filter(QStringLiteral("COMMIT")).isEmpty();
    }
};

TEST_F(TransactionTest, resultCodesComeBackUnchanged) {
    Database& store = database();
    EXPECT_EQ(SQLITE_OK, store.beginTransaction());
    EXPECT_EQ(SQLITE_ERROR, store.beginTransaction());
    EXPECT_EQ(SQLITE_ERROR, store.beginImmediateTransaction());
    EXPECT_EQ(SQLITE_OK, store.rollbackTransaction());
    EXPECT_EQ(SQLITE_ERROR, store.rollbackTransaction());
    run(QStringLiteral("BEGIN IMMEDIATE"));
    EXPECT_EQ(SQLITE_BUSY, store.beginImmediateTransaction());
    EXPECT_EQ(SQLITE_OK, store.beginTransaction());
    EXPECT_EQ(SQLITE_OK, store.rollbackTransaction());
    run(QStringLiteral("ROLLBACK"));
}

TEST_F(TransactionTest, theStatementsAreTheseFour) {
    Database& store = database();
    StatementTrace trace(store);
    store.beginTransaction();
    store.rollbackTransaction();
    store.beginImmediateTransaction();
    store.commitTransaction();
    EXPECT_EQ(QStringList({QStringLiteral("BEGIN;"), QStringLiteral("ROLLBACK;"),
                           QStringLiteral("BEGIN IMMEDIATE;"), QStringLiteral("COMMIT;")}),
              trace.texts());
}

TEST_F(TransactionTest, successfulOperationsEndInCommit) {
    const PlayListRecord pl = playListOf("abcd");
    const PlayListRecord other = playListOf("abcd");
    EXPECT_EQ(QStringLiteral("BEGIN; COMMIT;"), frame([&] { database().moveItem(pl, 0, 2); }));
    EXPECT_EQ(QStringLiteral("BEGIN IMMEDIATE; COMMIT;"), frame([&] {
                  database().reorderItems(pl, 0, {2, 0, 3, 1}, 1);
              }));
    EXPECT_EQ(QStringLiteral("BEGIN IMMEDIATE; COMMIT;"),
              frame([&] { database().removeItems(pl, {3}); }));
    EXPECT_EQ(QStringLiteral("BEGIN IMMEDIATE; COMMIT;"), frame([&] {
                  database().addItems(other, OrvoPlayListAddPosition::Append, items(2), nullptr);
              }));
    EXPECT_EQ(QStringLiteral("BEGIN; COMMIT;"), frame([&] { database().deletePlayList(pl); }));
}

TEST_F(TransactionTest, failedOperationsEndInRollback) {
    const PlayListRecord pl = playListOf("abcd");
    const PlayListRecord queue = database().getPlayQueue();
    EXPECT_EQ(QStringLiteral("BEGIN IMMEDIATE; ROLLBACK;"),
              frame([&] { database().removeItems(pl, {4}); }));
    EXPECT_EQ(QStringLiteral("BEGIN IMMEDIATE; ROLLBACK;"), frame([&] {
                  database().addItems(pl, OrvoPlayListAddPosition::Append, {}, nullptr);
              }));
    EXPECT_EQ(QStringLiteral("BEGIN; ROLLBACK;"), frame([&] { database().deletePlayList(queue); }));
    forbid("UPDATE ON playlists_items");
    EXPECT_EQ(QStringLiteral("BEGIN; ROLLBACK;"), frame([&] { database().moveItem(pl, 0, 2); }));
    EXPECT_EQ(QStringLiteral("BEGIN IMMEDIATE; ROLLBACK;"), frame([&] {
                  database().reorderItems(pl, 0, {2, 0, 3, 1}, 1);
              }));
    expectInvariants();
}

TEST_F(TransactionTest, allOthersCommitByThemselves) {
    PlayListRecord pl = playListOf("abcd");
    EXPECT_TRUE(standsAlone([&] { database().clearItems(pl); }));
    EXPECT_TRUE(standsAlone([&] { database().createPlayList(QStringLiteral("x")); }));
    EXPECT_TRUE(standsAlone([&] { database().updatePlayList(pl); }));
    EXPECT_TRUE(standsAlone([&] {
        const CollectionRecord cl = database().createCollection(QStringLiteral("c"));
        database().addToCollection(cl, pl.uid);
        database().removeFromCollection(cl, pl.uid);
        database().deleteCollection(cl);
    }));
}

TEST_F(TransactionTest, foreignKeysAreSuspendedForTheCleanUpOnly) {
    const auto isCleanUp = [](const QStringList& texts) {
        return texts.size() == 1 && texts.first().startsWith(QLatin1String("DELETE FROM items "));
    };
    PlayListRecord pl = playListOf("abcd");
    {
        StatementTrace trace(database());
        database().removeItems(pl, {1});
        EXPECT_TRUE(isCleanUp(trace.withoutForeignKeys()));
    }
    {
        StatementTrace trace(database());
        database().clearItems(pl);
        EXPECT_TRUE(isCleanUp(trace.withoutForeignKeys()));
    }
    {
        StatementTrace trace(database());
        database().deletePlayList(pl);
        EXPECT_TRUE(isCleanUp(trace.withoutForeignKeys()));
    }
    {
        pl = playListOf("abcd");
        StatementTrace trace(database());
        database().moveItem(pl, 0, 1);
        database().addItems(pl, OrvoPlayListAddPosition::Append, items(1), nullptr);
        EXPECT_EQ(QStringList(), trace.withoutForeignKeys());
    }
    // Enforced again, cascade and restriction alike.
    sqlite3* connection = StoreProbe::connection(database());
    EXPECT_EQ(SQLITE_CONSTRAINT,
              sqlite3_exec(connection, "DELETE FROM items", nullptr, nullptr, nullptr));
    expectInvariants();
}

TEST_F(TransactionTest, foreignKeysComeBackAfterAFailedCleanUp) {
    const PlayListRecord pl = playListOf("abcd");
    forbid("DELETE ON items");
    EXPECT_EQ(-1, database().removeItems(pl, {1}));
    expectInvariants();
    EXPECT_FALSE(database().deletePlayList(pl));
    expectInvariants();
    EXPECT_FALSE(database().clearItems(pl));
    EXPECT_TRUE(StoreProbe::foreignKeysOn(StoreProbe::connection(database())));
}

// --- many at once: their references are known to hold ---

namespace {
constexpr int Many = 100;
} // namespace

TEST_F(TransactionTest, ofManyAddedAtOnceTheFirstAloneIsChecked) {
    const PlayListRecord pl = playListOf("abc");
    {
        StatementTrace trace(database());
        database().addItems(pl, OrvoPlayListAddPosition::Append, items(Many - 1), nullptr);
        EXPECT_EQ(QStringList(), trace.withoutForeignKeys());
    }
    StatementTrace trace(database());
    database().addItems(record(pl.uid), OrvoPlayListAddPosition::Append, items(Many), nullptr);
    const QStringList unchecked = trace.withoutForeignKeys();
    EXPECT_EQ(2 * (Many - 1), unchecked.size());
    for (const QString& sql : unchecked)
        EXPECT_TRUE(sql.startsWith(QLatin1String("INSERT INTO "))) << sql.toStdString();
    expectInvariants();
}

TEST_F(TransactionTest, manyAddedAtOnceAreWhatTheyAreAddedAFewAtATime) {
    PlayListRecord atOnce = playListOf("abc");
    PlayListRecord few = playListOf("abc");
    atOnce.lastPlayedIndex = few.lastPlayedIndex = 0;
    const QList<OrvoPlayListItem> all = items(3 * Many);
    EXPECT_EQ(1, database().addItems(atOnce, OrvoPlayListAddPosition::AfterCurrent, all, nullptr));
    for (int i = 0; i < all.size(); i += Many / 2) {
        database().addItems(few, OrvoPlayListAddPosition::AfterCurrent, all.mid(i, Many / 2),
                            nullptr);
        few = record(few.uid);
        few.lastPlayedIndex = i + Many / 2;
    }
    EXPECT_EQ(3 * Many + 3, record(atOnce.uid).size);
    const auto rows = [this](int uid) {
        return query(
            QStringLiteral("SELECT quote(sequenceNumber) || quote(title) || quote(artist) ||"
                           " quote(album) || quote(url) || quote(serviceId) || quote(orvoRoles)"
                           " FROM playlists_items JOIN items ON item = uid WHERE playlist = %1"
                           " ORDER BY sequenceNumber")
                .arg(uid));
    };
    EXPECT_EQ(rows(few.uid), rows(atOnce.uid));
    expectInvariants();
}

TEST_F(TransactionTest, manyThatFailHalfwayLeaveNothingAndForeignKeysOn) {
    const PlayListRecord pl = playListOf("abc");
    forbid("INSERT ON playlists_items WHEN new.sequenceNumber = 60");
    EXPECT_EQ(-1, database().addItems(pl, OrvoPlayListAddPosition::Append, items(Many), nullptr));
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    expectInvariants();
}

// Held while rows are read and while a transaction is open, so that SQLite need not take it for
// every column.
TEST_F(TransactionTest, theConnectionsMutexIsFreeBetweenTwoCalls) {
    const auto isFree = [this] {
        sqlite3_mutex* mutex = sqlite3_db_mutex(StoreProbe::connection(database()));
        bool free = false;
        std::thread([mutex, &free] {
            free = sqlite3_mutex_try(mutex) == SQLITE_OK;
            if (free)
                sqlite3_mutex_leave(mutex);
        }).join();
        return free;
    };
    using Position = OrvoPlayListAddPosition;
    const PlayListRecord pl = playListOf("abcdef");
    PlayListRecord gone = pl;
    gone.uid = 4711;
    const std::vector<std::function<void()>> calls = {
        [&] { EXPECT_EQ(6, database().getItems(pl, 0, 5).size()); },
        [&] { EXPECT_EQ(2, database().getEntryRoles(pl, 1, 2).entries.size()); },
        [&] { EXPECT_FALSE(database().getItemByUid(1).isEmpty()); },
        [&] { EXPECT_TRUE(database().getItemByUid(4711).isEmpty()); },
        [&] {
            EXPECT_EQ(7, database().getItemsByUids({pl}, {1, 2, 3, 4, 5, 6, 4711}).size());
        },
        [&] { EXPECT_EQ(6, database().addItems(pl, Position::Append, items(Many), nullptr)); },
        [&] { EXPECT_EQ(-1, database().addItems(gone, Position::Append, items(Many), nullptr)); },
        [&] { EXPECT_TRUE(database().moveItem(record(pl.uid), 0, 3)); },
        [&] {
            EXPECT_EQ(2, database().removeItems(record(pl.uid), {0, 2}));
        },
        [&] { EXPECT_EQ(-1, database().removeItems(record(pl.uid), {5000})); },
        [&] { EXPECT_TRUE(database().clearItems(record(pl.uid))); },
        [&] { EXPECT_TRUE(database().deletePlayList(pl)); },
    };
    ASSERT_TRUE(isFree());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        calls[i]();
        EXPECT_TRUE(isFree()) << "after call " << i;
    }
}

TEST_F(TransactionTest, manyAreNotAddedToAListThatIsGone) {
    const PlayListRecord pl = playListOf("abc");
    run(QStringLiteral("DELETE FROM playlists WHERE uid = %1").arg(pl.uid));
    run(QStringLiteral("DELETE FROM items"));
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_EQ(-1, database().addItems(pl, OrvoPlayListAddPosition::Append, items(Many), nullptr));
    EXPECT_TRUE(log.errors().contains(QStringLiteral("Error inserting item into playlist DB")));
    EXPECT_EQ(0, queryInt(QStringLiteral("SELECT COUNT(*) FROM items")));
    expectInvariants();
}

// --- no transaction to be had ---

TEST_F(TransactionTest, withoutALockNothingIsAddedOrRemoved) {
    const PlayListRecord pl = playListOf("abc");
    run(QStringLiteral("BEGIN IMMEDIATE"));
    {
        LogCapture log(QStringLiteral("PlayLists"));
        StatementTrace trace(database());
        EXPECT_EQ(-1, database().addItems(pl, OrvoPlayListAddPosition::Append, items(2), nullptr));
        EXPECT_EQ(QStringList(QStringLiteral("Error adding items to list")), log.errors());
        EXPECT_EQ(QStringList(QStringLiteral("BEGIN IMMEDIATE;")), trace.texts());
    }
    {
        LogCapture log(QStringLiteral("PlayLists"));
        StatementTrace trace(database());
        EXPECT_EQ(-1, database().removeItems(pl, {0}));
        EXPECT_EQ(QStringList(QStringLiteral("Error removing items from list")), log.errors());
        EXPECT_EQ(QStringList(QStringLiteral("BEGIN IMMEDIATE;")), trace.texts());
    }
    run(QStringLiteral("ROLLBACK"));
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    expectInvariants();
}

TEST_F(TransactionTest, withinAnotherTransactionOperationsFailAndLeaveItOpen) {
    const PlayListRecord pl = playListOf("abc");
    Database& store = database();
    ASSERT_EQ(SQLITE_OK, store.beginTransaction());
    const PlayListRecord inside = store.createPlayList(QStringLiteral("inside"));
    LogCapture log(QStringLiteral("PlayLists"));
    StatementTrace trace(store);
    EXPECT_FALSE(store.moveItem(pl, 0, 2));
    EXPECT_FALSE(store.deletePlayList(pl));
    EXPECT_EQ(-1, store.addItems(pl, OrvoPlayListAddPosition::Append, items(2), nullptr));
    EXPECT_EQ(-1, store.removeItems(pl, {0}));
    EXPECT_EQ(QStringList({QStringLiteral("Error moving PlayListItem"),
                           QStringLiteral("Error deleting PlayList"),
                           QStringLiteral("Error adding items to list"),
                           QStringLiteral("Error removing items from list")}),
              log.errors());
    // A BEGIN that is refused does not even begin as a statement: nothing at all was run.
    EXPECT_EQ(QStringList(),
              trace.texts().filter(QRegularExpression(QStringLiteral("^(?!BEGIN)"))));
    store.commitTransaction();
    EXPECT_EQ(QStringLiteral("inside"), record(inside.uid).name);
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    expectInvariants();
}

// --- commit ---

TEST_F(TransactionTest, commitIsTriedUntilTheReaderLetsGo) {
    const PlayListRecord pl = playListOf("abc");
    sqlite3_stmt* reader = nullptr;
    ASSERT_EQ(SQLITE_OK,
              sqlite3_prepare_v2(connection(), "SELECT uid FROM items", -1, &reader, nullptr));
    ASSERT_EQ(SQLITE_ROW, sqlite3_step(reader));
    int commits = 0;
    LogCapture log(QStringLiteral("PlayLists"));
    StatementTrace trace(database(), [&](const QString& sql) {
        if (sql == QLatin1String("COMMIT;") && ++commits == 5)
            sqlite3_reset(reader);
    });
    EXPECT_TRUE(database().moveItem(pl, 0, 2));
    sqlite3_finalize(reader);
    EXPECT_EQ(5, commits);
    EXPECT_EQ(QStringList(), log.errors());
    EXPECT_EQ(QStringLiteral("b c a"), stored(pl.uid));
    expectInvariants();
}

TEST_F(TransactionTest, aCommitThatFailsForGoodIsLogged) {
    database();
    LogCapture log(QStringLiteral("PlayLists"));
    database().commitTransaction();
    EXPECT_EQ(QStringList(QStringLiteral("ERROR Commit transaction failed")), log.lines());
}

TEST_F(TransactionTest, aCommitIsTriedAgainWhateverStoodInItsWay) {
    const PlayListRecord pl = playListOf("abc");
    int refusals = 1;
    sqlite3_commit_hook(
        StoreProbe::connection(database()),
        [](void* left) { return (*static_cast<int*>(left))-- > 0 ? 1 : 0; }, &refusals);
    LogCapture log(QStringLiteral("PlayLists"));
    StatementTrace trace(database());
    database().moveItem(pl, 0, 2);
    // A refused commit is not a busy one, and SQLite has undone everything by the second.
    EXPECT_EQ(2, trace.texts().count(QStringLiteral("COMMIT;")));
    EXPECT_EQ(QStringList(QStringLiteral("Commit transaction failed")), log.errors());
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    sqlite3_commit_hook(StoreProbe::connection(database()), nullptr, nullptr);
    expectInvariants();
}
