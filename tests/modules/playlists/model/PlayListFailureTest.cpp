#include <functional>
#include <sqlite3.h>

#include "ModelFixture.h"
#include "StatementTrace.h"

// A store that cannot do what it is asked: the result says so, the object says what it said before,
// no signal leaves.

using Position = OrvoPlayListAddPosition;

struct FailureRow {
    const char* name;
    std::function<bool(PlayListBase&)> fails;
    // What makes it fail: a trigger on this, or the file locked by another connection when empty.
    const char* forbidden;
    QStringList errors;
};

class PlayListFailureTest : public ModelFixture,
                            public ::testing::WithParamInterface<FailureRow> {};

TEST_P(PlayListFailureTest, nothingChangesAndNothingIsAnnounced) {
    const FailureRow& row = GetParam();
    PlayListBase& pl = playList("abcdef", 3);
    SignalLog signalLog;
    signalLog.watch(&pl);
    const bool locked = !*row.forbidden;
    if (locked) {
        run("BEGIN EXCLUSIVE");
    } else {
        forbid(row.forbidden);
    }
    {
        const LogCapture log("PlayLists");
        EXPECT_TRUE(row.fails(pl));
        QStringList errors = log.errors();
        // Which statement it was, the store's own tests see to.
        errors.erase(
            std::remove_if(errors.begin(), errors.end(),
                           [](const QString& e) { return e.startsWith("Unable to reset"); }),
            errors.end());
        EXPECT_EQ(row.errors, errors);
    }
    if (locked) {
        run("ROLLBACK");
    } else {
        allowAll();
    }
    EXPECT_EQ(QStringList(), signalLog.take());
    EXPECT_EQ("list", pl.getName());
    EXPECT_FALSE(pl.getShuffle());
    EXPECT_FALSE(pl.getRepeatAll());
    EXPECT_EQ(6, pl.getSize());
    EXPECT_EQ(3, pl.getLastSequenceNumber());
    EXPECT_EQ("abcdef", letters(pl));
    expectInStep();
}

namespace {
bool addFails(PlayListBase& pl) {
    OrvoPlayListItem item;
    item.setTitle("X");
    item.setUrl("file:///X");
    item.setServiceId("files");
    return pl.addItems(Position::Now, {item}) == -1;
}
bool removeFails(PlayListBase& pl) {
    return pl.removeItems({1, 3}) == -1;
}
bool moveFails(PlayListBase& pl) {
    return !pl.moveItem(1, 4);
}
bool moveItemsFails(PlayListBase& pl) {
    return !pl.moveItems({1, 2}, 4);
}
bool moveItemsUpFails(PlayListBase& pl) {
    return !pl.moveItems({3, 4}, 1);
}
bool clearFails(PlayListBase& pl) {
    return !pl.clearItems();
}
bool renameFails(PlayListBase& pl) {
    return !pl.setName("other");
}
bool shuffleFails(PlayListBase& pl) {
    return !pl.setShuffle(true);
}
bool repeatFails(PlayListBase& pl) {
    return !pl.setRepeatAll(true);
}

const QStringList addError = {"Error adding items to list"};
const QStringList removeError = {"Error removing items from list"};
const QStringList moveError = {"Error moving PlayListItem"};
const QStringList updateError = {"Error updating PlayList"};
} // namespace

INSTANTIATE_TEST_SUITE_P(
    failures, PlayListFailureTest,
    ::testing::Values(
        FailureRow{"addWhileLocked", addFails, "", addError},
        FailureRow{"addWithoutShifting", addFails, "UPDATE ON playlists_items",
                   QStringList("Unable to move item block before adding items") + addError},
        FailureRow{"addWithoutItem", addFails, "INSERT ON items",
                   QStringList("Error inserting item into DB") + addError},
        FailureRow{"addWithoutEntry", addFails, "INSERT ON playlists_items",
                   QStringList("Error inserting item into playlist DB") + addError},
        FailureRow{"removeWhileLocked", removeFails, "", removeError},
        FailureRow{"removeWithoutDeleting", removeFails, "DELETE ON playlists_items",
                   QStringList({"Error removing partial items from list",
                                "Unable to remove all item indices"}) +
                       removeError},
        FailureRow{"removeWithoutCleaning", removeFails, "DELETE ON items",
                   QStringList("Unable to clean up unused items") + removeError},
        FailureRow{"removeWithoutNumbering", removeFails, "UPDATE ON playlists_items",
                   QStringList("Unable to restore sequence numbers") + removeError},
        FailureRow{"moveWhileLocked", moveFails, "", moveError},
        FailureRow{"moveWithoutShifting", moveFails, "UPDATE ON playlists_items", moveError},
        FailureRow{"moveItemsWhileLocked", moveItemsFails, "", moveError},
        FailureRow{"moveItemsUpWhileLocked", moveItemsUpFails, "", moveError},
        FailureRow{"renameWhileLocked", renameFails, "", updateError},
        FailureRow{"renameWithoutUpdating", renameFails, "UPDATE ON playlists", updateError},
        FailureRow{"shuffleWhileLocked", shuffleFails, "", updateError},
        FailureRow{"shuffleWithoutUpdating", shuffleFails, "UPDATE ON playlists", updateError},
        FailureRow{"repeatWhileLocked", repeatFails, "", updateError},
        FailureRow{"repeatWithoutUpdating", repeatFails, "UPDATE ON playlists", updateError},
        FailureRow{"clearWithoutDeleting",
                   clearFails,
                   "DELETE ON playlists_items",
                   {"Error removing partial items from list", "Unable to clear playList 1"}}),
    [](const auto& row) { return std::string(row.param.name); });

class StoreFailsTest : public ModelFixture {};

TEST_F(StoreFailsTest, aClearThatCannotReadTheSizeKeepsTheOldOne) {
    PlayListBase& pl = playList("abcdef", 3);
    SignalLog signalLog;
    signalLog.watch(&pl);
    run("BEGIN EXCLUSIVE");
    const LogCapture log("PlayLists");
    EXPECT_FALSE(pl.clearItems());
    EXPECT_TRUE(log.contains("ERROR", "Unable to clear playList 1"));
    EXPECT_TRUE(log.contains("ERROR", "Error fetching the next sequenceNumber"));
    run("ROLLBACK");
    EXPECT_EQ(6, pl.getSize());
    EXPECT_EQ(QStringList(), signalLog.take());
    expectInStep();
}

TEST_F(StoreFailsTest, aClearWhoseCleanUpFailsTakesTheSizeFromTheStore) {
    PlayListBase& pl = playList("abcdef", 3);
    SignalLog signalLog;
    signalLog.watch(&pl);
    forbid("DELETE ON items");
    const LogCapture log("PlayLists");
    EXPECT_FALSE(pl.clearItems());
    EXPECT_TRUE(log.contains("ERROR", "Unable to clean up unused items"));
    allowAll();
    EXPECT_EQ(0, pl.getSize());
    EXPECT_EQ("", letters(pl));
    EXPECT_EQ(QStringList(), signalLog.take());
    // The list works on: the next removal takes the left-over items along.
    EXPECT_EQ(0, add(pl, Position::Append, "xy"));
    EXPECT_EQ(1, pl.removeItems({0}));
    expectInStep();
}

TEST_F(StoreFailsTest, aMissingTableFailsEveryChange) {
    PlayListBase& pl = playList("abcdef", 3);
    SignalLog signalLog;
    signalLog.watch(&pl);
    run("DROP TABLE playlists_items");
    EXPECT_EQ(-1, add(pl, Position::Append, "x"));
    EXPECT_EQ(-1, pl.removeItems({1}));
    EXPECT_FALSE(pl.moveItem(1, 2));
    EXPECT_FALSE(pl.moveItems({1, 2}, 4));
    EXPECT_FALSE(pl.clearItems());
    EXPECT_EQ(0, pl.getItems(0, 5).size());
    EXPECT_EQ(6, pl.getSize());
    EXPECT_EQ(3, pl.getLastSequenceNumber());
    EXPECT_EQ(QStringList(), signalLog.take());
    EXPECT_TRUE(sqlite3_get_autocommit(StoreProbe::connection(database())));
}

// The entries have moved for good by then, so the position that names the played one must follow
// them.
TEST_F(StoreFailsTest, thePlayedPositionFollowsInMemoryWhenItCannotBeWritten) {
    PlayListBase& pl = playList("abcdef", 3);
    SignalLog signalLog;
    signalLog.watch(&pl);
    forbid("UPDATE ON playlists");
    const LogCapture log("PlayLists");
    EXPECT_TRUE(pl.moveItem(5, 0));
    EXPECT_EQ(4, pl.getLastSequenceNumber());
    EXPECT_EQ(2, pl.removeItems({0, 1}));
    EXPECT_EQ(2, pl.getLastSequenceNumber());
    // The second edit has tried to write the position of the first one before its own.
    EXPECT_EQ(3, log.errors().count("Error updating PlayList"));
    EXPECT_EQ("bcde", letters(pl));
    EXPECT_EQ(QStringList({"itemMoved 5 0", "itemsRemoved 0,1 4"}), signalLog.take());
    allowAll();
    EXPECT_TRUE(pl.updateDatabase());
    expectInStep();
}

// Another connection that reads keeps a commit waiting. The change succeeds when it lets go, and is
// announced then.
TEST_F(StoreFailsTest, aCommitThatHasToWaitIsAnnouncedWhenItIsThrough) {
    PlayListBase& pl = playList("abcdef", 3);
    SignalLog signalLog;
    signalLog.watch(&pl);
    struct Row {
        std::function<void()> change;
        const char* heard;
    };
    const QList<Row> rows = {
        {[&] { EXPECT_EQ(4, add(pl, Position::Now, "X")); }, "itemsAdded now 4 1"},
        {[&] { EXPECT_EQ(1, pl.removeItems({4})); }, "itemsRemoved 4 3"},
        {[&] { EXPECT_TRUE(pl.moveItem(0, 1)); }, "itemMoved 0 1"},
    };
    for (const Row& row : rows) {
        sqlite3_stmt* reader = nullptr;
        ASSERT_EQ(SQLITE_OK,
                  sqlite3_prepare_v2(connection(), "SELECT uid FROM items", -1, &reader, nullptr));
        ASSERT_EQ(SQLITE_ROW, sqlite3_step(reader));
        int commits = 0;
        {
            const StatementTrace trace(database(), [&](const QString& sql) {
                if (sql != QLatin1String("COMMIT;"))
                    return;
                EXPECT_EQ(QStringList(), signalLog.take()) << "announced before the commit";
                if (++commits == 3)
                    sqlite3_reset(reader);
            });
            row.change();
        }
        sqlite3_finalize(reader);
        EXPECT_EQ(3, commits);
        EXPECT_EQ(QStringList(row.heard), signalLog.take());
        expectInStep();
    }
}
