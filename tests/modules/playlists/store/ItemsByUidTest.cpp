#include <algorithm>

#include "StoreFixture.h"

class ItemsByUidTest : public StoreFixture {
protected:
    QList<int> uidsOf(int playlistUid) {
        QList<int> uids;
        for (const QString& text : query(
                 QStringLiteral(
                     "SELECT item FROM playlists_items WHERE playlist = %1 ORDER BY sequenceNumber")
                     .arg(playlistUid)))
            uids.append(text.toInt());
        return uids;
    }

    QList<PlayListRecord> all() {
        return QList<PlayListRecord>{database().getPlayQueue()} + database().getPlayLists();
    }

    // Asks for all at once and one by one; both must agree, the log included, where those asked for
    // together have five lines alike and the number of the others.
    void expectSameAsOneByOne(const QList<int>& uids) {
        const QList<PlayListRecord> playlists = all();
        LogCapture together(QStringLiteral("PlayLists"));
        const QList<OrvoPlayListItem> items = database().getItemsByUids(playlists, uids);
        const QStringList lines = together.lines();
        LogCapture oneByOne(QStringLiteral("PlayLists"));
        ASSERT_EQ(uids.size(), items.size());
        for (int i = 0; i < uids.size(); ++i)
            EXPECT_TRUE(items[i] == database().getItemByUid(uids[i])) << "uid " << uids[i];
        QStringList expected = oneByOne.lines().mid(0, 5);
        if (oneByOne.lines().size() > 5)
            expected.append(QStringLiteral("ERROR and %1 more").arg(oneByOne.lines().size() - 5));
        EXPECT_EQ(expected, lines);
    }
};

TEST_F(ItemsByUidTest, anItemComesWithItsNumber) {
    playListOf("xy");
    const PlayListRecord pl = playListOf("abc");
    const int uid = uidsOf(pl.uid).value(2);
    const OrvoPlayListItem found = database().getItemByUid(uid);
    EXPECT_EQ(uid, found.uid());
    EXPECT_EQ(2, found.sequenceNumber());
    EXPECT_EQ(QStringLiteral("c"), found.title());
    EXPECT_TRUE(found == database().getItems(pl, 2, 2).value(0));
    EXPECT_EQ(QStringList(), StoreProbe::busyTexts(database()));
}

TEST_F(ItemsByUidTest, anUnknownUidIsAnEmptyItemAndAnError) {
    playListOf("a");
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_TRUE(database().getItemByUid(4711).isEmpty());
    EXPECT_EQ(QStringList(QStringLiteral("Error fetching item by UID")), log.errors());
}

TEST_F(ItemsByUidTest, noUidsAreNoItems) {
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_TRUE(database().getItemsByUids(all(), {}).isEmpty());
    EXPECT_EQ(QStringList(), log.errors());
}

TEST_F(ItemsByUidTest, aFewTogetherAreTheSameAsOneByOne) {
    const QList<int> uids = uidsOf(playListOf("abcdef").uid);
    expectSameAsOneByOne({uids[3], 4711, uids[0], uids[3]});
    expectSameAsOneByOne({4711, 4711});
}

TEST_F(ItemsByUidTest, manyTogetherAreTheSameAsOneByOne) {
    ASSERT_EQ(0, database().addItems(database().getPlayQueue(), OrvoPlayListAddPosition::Append,
                                     items(4), nullptr));
    const QList<int> queue = uidsOf(0);
    const QList<int> a = uidsOf(playListOf("abcdef").uid);
    const QList<int> b = uidsOf(playListOf("ghijkl").uid);
    playListOf("");
    const QList<int> c = uidsOf(playListOf("mnopqr").uid);
    QList<int> backwards = b;
    std::reverse(backwards.begin(), backwards.end());
    expectSameAsOneByOne(a);
    expectSameAsOneByOne(backwards);
    expectSameAsOneByOne(queue + c);
    expectSameAsOneByOne(a + a);
    expectSameAsOneByOne(a + b + c + queue + a);
    expectSameAsOneByOne({c[5], a[0], b[1], queue[3], c[0], a[0], b[5]});
    expectInvariants();
}

TEST_F(ItemsByUidTest, unknownOnesAmongManyLeaveTheOthersFound) {
    const QList<int> a = uidsOf(playListOf("abcdef").uid);
    const QList<int> b = uidsOf(playListOf("ghijkl").uid);
    expectSameAsOneByOne(QList<int>{4711} + a + b);
    expectSameAsOneByOne(a + QList<int>{4711, 4712} + b + QList<int>{4711, -1, 0});
    expectSameAsOneByOne({4711, 4712, 4713, 4714, 4715, 4716});
}

TEST_F(ItemsByUidTest, listsThatAreNotGivenAreNotSearched) {
    const PlayListRecord known = playListOf("abcdef");
    const QList<int> hidden = uidsOf(playListOf("ghijkl").uid);
    const QList<OrvoPlayListItem> items =
        database().getItemsByUids({known}, uidsOf(known.uid) + hidden);
    ASSERT_EQ(12, items.size());
    EXPECT_EQ(QStringLiteral("f"), items[5].title());
    EXPECT_TRUE(items[11].isEmpty());
}
