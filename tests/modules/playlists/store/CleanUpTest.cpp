#include <sqlite3.h>

#include "Random.h"
#include "StatementTrace.h"
#include "StoreFixture.h"

namespace {
const QString overAll =
    QStringLiteral("DELETE FROM items  WHERE uid NOT IN (    SELECT item FROM playlists_items  )");
} // namespace

// What becomes of the items of entries that go: by either way of cleaning up exactly those go that
// nothing refers to any more.
class CleanUpTest : public StoreFixture {
protected:
    // The same item once more, at the end of the playlist.
    void share(int item, int playlistUid) {
        run(QStringLiteral("INSERT INTO playlists_items SELECT %1, %2, coalesce("
                           "MAX(sequenceNumber), -1) + 1 FROM playlists_items WHERE"
                           " playlist = %1")
                .arg(playlistUid)
                .arg(item));
    }
    QList<int> uidsOf(int playlistUid) {
        QList<int> uids;
        for (const OrvoPlayListItem& entry :
             database().getItems(record(playlistUid), 0, 0x7FFFFFFF))
            uids.append(entry.uid());
        return uids;
    }
    // Runs `edit`, after which the statement over all must find nothing to do and every entry its
    // item. Tells which way the edit has cleaned up.
    template <typename Edit>
    bool cleansOneByOne(Edit edit) {
        StatementTrace trace(database());
        edit();
        const QStringList deletions = trace.texts().filter(QStringLiteral("DELETE FROM items "));
        EXPECT_EQ(1, deletions.size());
        EXPECT_EQ(deletions, trace.withoutForeignKeys());
        EXPECT_TRUE(StoreProbe::foreignKeysOn(StoreProbe::connection(database())));
        run(overAll);
        EXPECT_EQ(0, sqlite3_changes(connection())) << "items were left behind";
        EXPECT_EQ(QStringList(), query(QStringLiteral("PRAGMA foreign_key_check")))
            << "items went that entries refer to";
        return deletions.value(0) != overAll;
    }
};

TEST_F(CleanUpTest, fewAreLookedForOneByOneAndManyAreNot) {
    const PlayListRecord large = playListOf(items(100));
    const PlayListRecord small = playListOf("abc");
    EXPECT_TRUE(cleansOneByOne([&] { EXPECT_EQ(2, database().removeItems(large, {3, 50})); }));
    EXPECT_TRUE(cleansOneByOne([&] { EXPECT_TRUE(database().clearItems(small)); }));
    EXPECT_TRUE(cleansOneByOne([&] { EXPECT_TRUE(database().deletePlayList(record(small.uid))); }));
    QList<int> third;
    for (int i = 0; i < 98; i += 3)
        third.append(i);
    EXPECT_FALSE(cleansOneByOne(
        [&] { EXPECT_EQ(third.size(), database().removeItems(record(large.uid), third)); }));
    EXPECT_FALSE(
        cleansOneByOne([&] { EXPECT_TRUE(database().deletePlayList(record(large.uid))); }));
    expectInvariants();
}

TEST_F(CleanUpTest, anItemThatAnotherEntryRefersToStays) {
    playListOf(items(100));
    const PlayListRecord first = playListOf("abc");
    const PlayListRecord second = playListOf("de");
    const QList<int> uids = uidsOf(first.uid);
    share(uids.at(1), second.uid);
    share(uids.at(2), first.uid);
    EXPECT_TRUE(cleansOneByOne([&] {
        EXPECT_EQ(3, database().removeItems(record(first.uid), {0, 1, 2}));
    }));
    EXPECT_EQ(QStringLiteral("c"), stored(first.uid));
    EXPECT_EQ(QStringLiteral("d e b"), stored(second.uid));
    EXPECT_TRUE(cleansOneByOne([&] { EXPECT_TRUE(database().clearItems(record(second.uid))); }));
    EXPECT_EQ(101, queryInt(QStringLiteral("SELECT COUNT(*) FROM items")));
}

TEST_F(CleanUpTest, whatAFailedClearLeavesGoesWithTheNextRemoval) {
    const PlayListRecord large = playListOf(items(100));
    const PlayListRecord cleared = playListOf("abc");
    forbid("DELETE ON items");
    EXPECT_FALSE(database().clearItems(cleared));
    allowAll();
    EXPECT_FALSE(cleansOneByOne([&] { EXPECT_EQ(1, database().removeItems(large, {3})); }));
    EXPECT_FALSE(cleansOneByOne([&] { EXPECT_TRUE(database().clearItems(cleared)); }));
    EXPECT_TRUE(
        cleansOneByOne([&] { EXPECT_EQ(1, database().removeItems(record(large.uid), {3})); }));
    expectInvariants();
}

// Random stores with items that several entries refer to, written by hand.
TEST_F(CleanUpTest, bothWaysLeaveTheSameRows) {
    Random random(Random::firstSeed());
    const auto below = [&random](int bound) { return random.below(bound); };
    int oneByOne = 0;
    int overAllItems = 0;
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        database().clearDatabase();
        QList<int> lists = {0};
        for (int i = 1 + below(4); i > 0; --i)
            lists.append(playListOf(items(below(12))).uid);
        const QStringList uids = query(QStringLiteral("SELECT uid FROM items"));
        for (int i = uids.isEmpty() ? 0 : below(10); i > 0; --i)
            share(uids.at(below(uids.size())).toInt(), lists.at(below(lists.size())));
        for (int edit = 0; edit < 6 && lists.size() > 1; ++edit) {
            const PlayListRecord pl = record(lists.at(below(lists.size())));
            QList<int> indices;
            for (int i = 0; i < pl.size; ++i) {
                if (below(4) == 0)
                    indices.append(i);
            }
            const bool wasOneByOne = cleansOneByOne([&] {
                switch (below(6)) {
                case 0:
                    EXPECT_TRUE(database().clearItems(pl));
                    break;
                case 1:
                    if (pl.uid != 0) {
                        EXPECT_TRUE(database().deletePlayList(pl));
                        lists.removeOne(pl.uid);
                        break;
                    }
                    [[fallthrough]];
                default:
                    if (indices.isEmpty())
                        EXPECT_TRUE(database().clearItems(pl));
                    else
                        EXPECT_EQ(indices.size(), database().removeItems(pl, indices));
                }
            });
            ++(wasOneByOne ? oneByOne : overAllItems);
            ASSERT_FALSE(HasFailure()) << "edit " << edit;
        }
    }
    EXPECT_GT(oneByOne, 20);
    EXPECT_GT(overAllItems, 20);
}
