#include <QSignalSpy>

#include "StatementTrace.h"
#include "StoreFixture.h"

// Moving, removing and clearing.
class ItemsEditTest : public StoreFixture {
protected:
    QString afterMove(const char* entries, int from, int to) {
        const PlayListRecord pl = playListOf(entries);
        EXPECT_TRUE(database().moveItem(pl, from, to));
        expectInvariants();
        return stored(pl.uid);
    }

    QString afterRemoval(const char* entries, const QList<int>& indices) {
        const PlayListRecord pl = playListOf(entries);
        EXPECT_EQ(indices.size(), database().removeItems(pl, indices));
        expectInvariants();
        return stored(pl.uid);
    }
};

TEST_F(ItemsEditTest, movingForwardPullsTheEntriesBetweenBack) {
    EXPECT_EQ(QStringLiteral("0 1 3 4 5 2 6 7 8 9"), afterMove("0123456789", 2, 5));
    EXPECT_EQ(QStringLiteral("a c d b e"), afterMove("abcde", 1, 3));
}

TEST_F(ItemsEditTest, movingBackwardPushesTheEntriesBetweenOn) {
    EXPECT_EQ(QStringLiteral("0 1 5 2 3 4 6 7 8 9"), afterMove("0123456789", 5, 2));
    EXPECT_EQ(QStringLiteral("a d b c e"), afterMove("abcde", 3, 1));
}

TEST_F(ItemsEditTest, movingTheLastTrackToTheFrontKeepsNumbersDense) {
    EXPECT_EQ(QStringLiteral("e a b c d"), afterMove("abcde", 4, 0));
}

TEST_F(ItemsEditTest, movingTheFirstTrackToTheEndKeepsNumbersDense) {
    EXPECT_EQ(QStringLiteral("b c d e a"), afterMove("abcde", 0, 4));
}

TEST_F(ItemsEditTest, movingToItsOwnPlaceOrItsNeighbours) {
    EXPECT_EQ(QStringLiteral("a b c"), afterMove("abc", 1, 1));
    EXPECT_EQ(QStringLiteral("a"), afterMove("a", 0, 0));
    EXPECT_EQ(QStringLiteral("b a c"), afterMove("abc", 0, 1));
    EXPECT_EQ(QStringLiteral("b a c"), afterMove("abc", 1, 0));
}

TEST_F(ItemsEditTest, movingKeepsTheItemsAndTheOtherLists) {
    const PlayListRecord other = playListOf("xyz");
    const PlayListRecord pl = playListOf("abc");
    const int uid = database().getItems(pl, 0, 0).value(0).uid();
    ASSERT_TRUE(database().moveItem(pl, 0, 2));
    EXPECT_EQ(uid, database().getItems(pl, 2, 2).value(0).uid());
    EXPECT_EQ(QStringLiteral("x y z"), stored(other.uid));
    expectInvariants();
}

TEST_F(ItemsEditTest, openingAGapShiftsTheTail) {
    const PlayListRecord pl = playListOf("abcd");
    const QString numbers =
        QStringLiteral(
            "SELECT sequenceNumber || title FROM playlists_items JOIN items ON item = uid"
            " WHERE playlist = %1 ORDER BY sequenceNumber")
            .arg(pl.uid);
    ASSERT_TRUE(database().offsetItemsFromTransaction(pl, 1, 2));
    EXPECT_EQ(QStringLiteral("0a 3b 4c 5d"), query(numbers).join(QLatin1Char(' ')));
}

TEST_F(ItemsEditTest, shiftsGoByWayOfNumbersBeyondTheList) {
    const auto shift = [](int playlist, int from, int to, int offset) {
        return QStringLiteral(
                   "UPDATE playlists_items  SET sequenceNumber = sequenceNumber + %4"
                   "  WHERE playlist = %1 AND sequenceNumber >= %2 AND sequenceNumber <= %3;")
            .arg(playlist)
            .arg(from)
            .arg(to)
            .arg(offset);
    };
    const auto shiftsOf = [this](auto edit) {
        const StatementTrace trace(database());
        edit();
        return trace.boundTexts().filter(QStringLiteral("UPDATE"));
    };
    PlayListRecord pl = playListOf("0123456789");
    const int uid = pl.uid;
    EXPECT_EQ(QStringList({shift(uid, 2, 5, 10), shift(uid, 12, 12, -7), shift(uid, 12, 15, -11)}),
              shiftsOf([&] { database().moveItem(pl, 2, 5); }));
    EXPECT_EQ(QStringList({shift(uid, 2, 5, 10), shift(uid, 15, 15, -13), shift(uid, 12, 15, -9)}),
              shiftsOf([&] { database().moveItem(pl, 5, 2); }));
    EXPECT_EQ(QStringLiteral("0 1 2 3 4 5 6 7 8 9"), stored(uid));
    pl.lastPlayedIndex = 3;
    EXPECT_EQ(QStringList({shift(uid, 4, 10, 14), shift(uid, 10, 0x7FFFFFFF, -11)}), shiftsOf([&] {
                  database().addItems(pl, OrvoPlayListAddPosition::Now, items(3), nullptr);
              }));
    expectInvariants();
}

TEST_F(ItemsEditTest, removingTwoRunsClosesTheGaps) {
    EXPECT_EQ(QStringLiteral("a d e g"), afterRemoval("abcdefg", {1, 2, 5}));
}

TEST_F(ItemsEditTest, removingAtTheEnds) {
    EXPECT_EQ(QStringLiteral("b c"), afterRemoval("abc", {0}));
    EXPECT_EQ(QStringLiteral("a b"), afterRemoval("abc", {2}));
    EXPECT_EQ(QStringLiteral("b"), afterRemoval("abc", {0, 2}));
    EXPECT_EQ(QString(), afterRemoval("abc", {0, 1, 2}));
}

TEST_F(ItemsEditTest, removedItemsAreGoneAndOthersKeepTheirUids) {
    const PlayListRecord other = playListOf("xyz");
    const PlayListRecord pl = playListOf("abcd");
    const int last = database().getItems(pl, 3, 3).value(0).uid();
    EXPECT_EQ(2, database().removeItems(pl, {0, 2}));
    EXPECT_EQ(last, database().getItems(pl, 1, 1).value(0).uid());
    EXPECT_EQ(5, database().countPlaylistsItems());
    EXPECT_EQ(QStringLiteral("x y z"), stored(other.uid));
    EXPECT_EQ(2, record(pl.uid).size);
    expectInvariants();
}

TEST_F(ItemsEditTest, anIndexThatDoesNotExistRemovesNothing) {
    const PlayListRecord pl = playListOf("abc");
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    for (const QList<int>& indices :
         {QList<int>{1, 3}, QList<int>{-1}, QList<int>{-1, 0}, QList<int>{0x7FFFFFFF},
          QList<int>{int(0x80000000), 0x7FFFFFFF}, QList<int>{1, 1}}) {
        LogCapture log(QStringLiteral("PlayLists"));
        EXPECT_EQ(-1, database().removeItems(pl, indices));
        EXPECT_EQ(QStringList({QStringLiteral("Unable to remove all item indices"),
                               QStringLiteral("Error removing items from list")}),
                  log.errors());
        EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
        expectInvariants();
    }
    EXPECT_EQ(0, spy.size());
}

TEST_F(ItemsEditTest, indicesOutOfOrderAreRenumberedFromTheFirstOneGiven) {
    // Odd but kept: callers list the indices in ascending order.
    const PlayListRecord pl = playListOf("abcdefg");
    EXPECT_EQ(2, database().removeItems(pl, {5, 1}));
    EXPECT_EQ(QStringList({QStringLiteral("0a"), QStringLiteral("2c"), QStringLiteral("3d"),
                           QStringLiteral("4e"), QStringLiteral("5g")}),
              query(QStringLiteral("SELECT sequenceNumber || title FROM playlists_items"
                                   " JOIN items ON item = uid ORDER BY sequenceNumber")));
}

TEST_F(ItemsEditTest, removingOwesAVacuumOnceCommitted) {
    const PlayListRecord pl = playListOf("abc");
    bool committed = false;
    QObject::connect(&database(), &Database::vacuumNeeded, [this, &committed] {
        committed = queryInt(QStringLiteral("SELECT COUNT(*) FROM items")) == 2;
    });
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    EXPECT_EQ(1, database().removeItems(pl, {0}));
    ASSERT_EQ(1, spy.size());
    EXPECT_TRUE(spy[0][0].toBool());
    EXPECT_TRUE(committed);
}

TEST_F(ItemsEditTest, removingNothingIsNothing) {
    const PlayListRecord pl = playListOf("abc");
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    // Not even a transaction: it works while another connection holds the lock.
    run(QStringLiteral("BEGIN EXCLUSIVE"));
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_EQ(0, database().removeItems(pl, {}));
    EXPECT_EQ(QStringList(), log.errors());
    EXPECT_EQ(0, spy.size());
    run(QStringLiteral("ROLLBACK"));
}

TEST_F(ItemsEditTest, removingARunLeavesItsGap) {
    const PlayListRecord pl = playListOf("abcd");
    EXPECT_EQ(2, database().removeItemsHelper(pl, 1, 2));
    EXPECT_EQ(0, database().removeItemsHelper(pl, 7, 9));
    EXPECT_EQ(
        QStringLiteral("0,3"),
        query(QStringLiteral("SELECT GROUP_CONCAT(sequenceNumber) FROM playlists_items")).value(0));
}

TEST_F(ItemsEditTest, clearingRemovesTheItemsOfThisListOnly) {
    const PlayListRecord other = playListOf("xyz");
    const PlayListRecord pl = playListOf("abc");
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    EXPECT_TRUE(database().clearItems(pl));
    EXPECT_EQ(QString(), stored(pl.uid));
    EXPECT_EQ(QStringLiteral("x y z"), stored(other.uid));
    EXPECT_EQ(3, database().countPlaylistsItems());
    EXPECT_EQ(0, record(pl.uid).size);
    EXPECT_EQ(1, spy.size());
    expectInvariants();
}

TEST_F(ItemsEditTest, clearingAnEmptyListSucceeds) {
    EXPECT_TRUE(database().clearItems(playListOf("")));
    expectInvariants();
}

TEST_F(ItemsEditTest, editsSurviveARestart) {
    const PlayListRecord pl = playListOf("abcdef");
    ASSERT_TRUE(database().moveItem(pl, 0, 5));
    ASSERT_EQ(2, database().removeItems(pl, {1, 2}));
    reopen();
    EXPECT_EQ(QStringLiteral("b e f a"), stored(pl.uid));
    EXPECT_EQ(4, record(pl.uid).size);
    expectInvariants();
}
