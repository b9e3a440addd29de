#include <sqlite3.h>

#include "StoreFixture.h"

// What large lists cost, in steps of SQLite's virtual machine, which are the same on every machine.
class CostTest : public StoreFixture {
protected:
    // Every second one of `count`.
    static QList<int> odd(int count) {
        QList<int> indices;
        for (int i = 1; i < count; i += 2)
            indices.append(i);
        return indices;
    }

    template <typename Call>
    qint64 stepsOf(Call call) {
        StoreProbe::takeSteps(database());
        call();
        return StoreProbe::takeSteps(database());
    }

    // Also those of statements that are prepared for one use.
    template <typename Call>
    qint64 allStepsOf(Call call) {
        qint64 steps = 0;
        const auto count = [](void* into) {
            ++*static_cast<qint64*>(into);
            return 0;
        };
        sqlite3* connection = StoreProbe::connection(database());
        sqlite3_progress_handler(connection, 1, count, &steps);
        call();
        sqlite3_progress_handler(connection, 0, nullptr, nullptr);
        return steps;
    }

    qint64 stepsToRemoveHalfOf(int count) {
        const PlayListRecord pl = playListOf(items(count));
        const QList<int> indices = odd(count);
        const qint64 steps =
            stepsOf([&] { EXPECT_EQ(indices.size(), database().removeItems(pl, indices)); });
        expectInvariants();
        EXPECT_TRUE(database().deletePlayList(record(pl.uid)));
        return steps;
    }

    QList<int> uidsOf(int playlistUid) {
        QList<int> uids;
        for (const OrvoPlayListItem& entry :
             database().getItems(record(playlistUid), 0, 0x7FFFFFFF))
            uids.append(entry.uid());
        return uids;
    }
};

TEST_F(CostTest, removingHalfOfTwentyThousandSearchesNothingPerItem) {
    const qint64 steps = stepsToRemoveHalfOf(20000);
    // A search through the remaining 10,000 entries per removed item would be 10^8 steps or more.
    EXPECT_LT(steps, 200 * 20000);
}

TEST_F(CostTest, removingGrowsNoFasterThanTheList) {
    const qint64 small = stepsToRemoveHalfOf(2000);
    const qint64 large = stepsToRemoveHalfOf(8000);
    EXPECT_LT(large, 5 * small) << small << " steps for 2000, " << large << " for 8000";
}

TEST_F(CostTest, aSmallRemovalCostsTheSameHoweverMuchIsStored) {
    const auto steps = [this] {
        const PlayListRecord removed = playListOf(items(20));
        const PlayListRecord cleared = playListOf(items(20));
        const PlayListRecord deleted = playListOf(items(20));
        const qint64 sum = allStepsOf([&] {
            EXPECT_EQ(1, database().removeItems(removed, {10}));
            EXPECT_TRUE(database().clearItems(cleared));
            EXPECT_TRUE(database().deletePlayList(deleted));
        });
        EXPECT_TRUE(database().deletePlayList(record(removed.uid)));
        EXPECT_TRUE(database().deletePlayList(cleared));
        return sum;
    };
    playListOf(items(1000));
    const qint64 few = steps();
    EXPECT_LT(few, 60 * 300);
    playListOf(items(20000));
    EXPECT_LT(steps(), few + few / 5) << few << " steps where a twentieth is stored";
}

TEST_F(CostTest, whatWasAddedTogetherIsLookedForOnceInEachPlaylist) {
    const PlayListRecord deleted = playListOf(items(100));
    for (int i = 0; i < 300; ++i)
        playListOf(items(30));
    EXPECT_LT(allStepsOf([&] { EXPECT_TRUE(database().deletePlayList(deleted)); }),
              300 * 20 + 100 * 100);
    expectInvariants();
}

TEST_F(CostTest, movingHalfOfAListWritesEachEntryTwice) {
    const PlayListRecord pl = playListOf(items(2000));
    QVector<int> order = odd(2000).toVector();
    for (int i = 0; i < 2000; i += 2)
        order.append(i);
    sqlite3* connection = StoreProbe::connection(database());
    const int before = sqlite3_total_changes(connection);
    EXPECT_TRUE(database().reorderItems(pl, 0, order, pl.lastPlayedIndex));
    EXPECT_EQ(2 * 2000, sqlite3_total_changes(connection) - before);
    expectInvariants();
}

TEST_F(CostTest, clearingAndDeletingSearchNothingPerItem) {
    playListOf(items(5000));
    const PlayListRecord cleared = playListOf(items(5000));
    const PlayListRecord deleted = playListOf(items(5000));
    EXPECT_LT(stepsOf([&] { EXPECT_TRUE(database().clearItems(cleared)); }), 100 * 15000);
    EXPECT_LT(stepsOf([&] { EXPECT_TRUE(database().deletePlayList(deleted)); }), 100 * 15000);
    expectInvariants();
}

TEST_F(CostTest, addingTouchesOnlyTheNewEntriesAndTheTail) {
    const PlayListRecord pl = playListOf(items(10000));
    const qint64 atTheEnd = stepsOf(
        [&] { database().addItems(pl, OrvoPlayListAddPosition::Append, items(10), nullptr); });
    // What remains is the count of all items, which SQLite takes in one instruction.
    EXPECT_LT(atTheEnd, 10 * 200);
    expectInvariants();
}

TEST_F(CostTest, movingCostsTheDistance) {
    const PlayListRecord pl = playListOf(items(10000));
    EXPECT_LT(stepsOf([&] { EXPECT_TRUE(database().moveItem(pl, 5000, 5009)); }), 10 * 300);
    expectInvariants();
}

TEST_F(CostTest, readingAPageCostsThePage) {
    const PlayListRecord pl = playListOf(items(10000));
    EXPECT_LT(stepsOf([&] { EXPECT_EQ(20, database().getItems(pl, 9000, 9019).size()); }),
              20 * 100);
}

TEST_F(CostTest, manyItemsByUidCostOnePassOverTheStore) {
    const PlayListRecord first = playListOf(items(3000, QStringLiteral("a")));
    const PlayListRecord second = playListOf(items(3000, QStringLiteral("b")));
    const PlayListRecord third = playListOf(items(3000, QStringLiteral("c")));
    const QList<int> uids = uidsOf(third.uid) + uidsOf(first.uid) + uidsOf(second.uid);
    const QList<PlayListRecord> all =
        QList<PlayListRecord>{database().getPlayQueue()} + database().getPlayLists();

    const qint64 search = stepsOf([&] { database().getItemByUid(uids[0]); });
    qint64 pass = 0;
    for (const PlayListRecord& pl : all)
        pass += stepsOf([&] { database().getItems(pl, 0, 0x7FFFFFFF); });
    const qint64 steps = stepsOf([&] {
        const QList<OrvoPlayListItem> found = database().getItemsByUids(all, uids);
        ASSERT_EQ(9000, found.size());
        EXPECT_EQ(QStringLiteral("c0"), found[0].title());
        EXPECT_EQ(QStringLiteral("b2999"), found[8999].title());
    });
    EXPECT_LT(steps, pass + 3 * search + 1000);
}

TEST_F(CostTest, itemsOfOneListByUidDoNotReadTheOthers) {
    const PlayListRecord large = playListOf(items(20000, QStringLiteral("a")));
    const PlayListRecord small = playListOf(items(100, QStringLiteral("b")));
    const QList<int> uids = uidsOf(small.uid);
    const QList<PlayListRecord> all =
        QList<PlayListRecord>{database().getPlayQueue()} + database().getPlayLists();
    const qint64 search = stepsOf([&] { database().getItemByUid(uids[0]); });
    const qint64 steps =
        stepsOf([&] { EXPECT_EQ(100, database().getItemsByUids(all, uids).size()); });
    EXPECT_LT(steps, search + 100 * 100);
    EXPECT_EQ(20000, large.size);
}

namespace {
int cachedBytes(Database& database) {
    int now = 0;
    int highest = 0;
    sqlite3_db_status(StoreProbe::connection(database), SQLITE_DBSTATUS_CACHE_USED, &now, &highest,
                      0);
    return now;
}
} // namespace

TEST_F(CostTest, countingForUnusedItemsKeepsFewPagesAndLeavesTheCacheItsSize) {
    constexpr int Kept = 128 * 1024; // 64 KiB and what SQLite needs for itself
    playListOf(items(20000));
    reopen();
    database().countPlaylistsItems();
    ASSERT_GT(cachedBytes(database()), 2 * Kept) << "enough to read";
    reopen();
    database().removeUnusedItems();
    EXPECT_LT(cachedBytes(database()), Kept);
    database().countPlaylistsItems();
    EXPECT_GT(cachedBytes(database()), 2 * Kept);
}

TEST_F(CostTest, whatWasReadAtStartIsGivenBack) {
    for (int i = 0; i < 50; ++i)
        playListOf(items(100));
    reopen();
    database().getPlayLists();
    const int read = cachedBytes(database());
    database().releaseReadPages();
    EXPECT_LT(cachedBytes(database()), read / 4);
    EXPECT_EQ(50, database().getPlayLists().size());
}
