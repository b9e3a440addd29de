#include <algorithm>

#include "ModelFixture.h"

// A new order for all entries at once.
class PlayListSetOrderTest : public ModelFixture {};

TEST_F(PlayListSetOrderTest, ordersAsTheHeaderShows) {
    PlayListBase& pl = playList("abcd", 1);
    SignalLog signalLog;
    signalLog.watch(&pl);
    const qint64 before = pl.getRevision();
    EXPECT_TRUE(pl.setOrder({3, 0, 1, 2}));
    EXPECT_EQ("dabc", letters(pl));
    EXPECT_EQ(2, pl.getLastSequenceNumber());
    EXPECT_GT(pl.getRevision(), before);
    EXPECT_EQ(QStringList("itemsReordered 3,0,1,2"), signalLog.take());
    expectInStep();
}

// Every order of a list of four, with each played position.
TEST_F(PlayListSetOrderTest, everyOrderKeepsThePlayedEntry) {
    QString entries = "abcd";
    PlayListBase& pl = playList(entries);
    QList<int> order = {0, 1, 2, 3};
    int last = -1;
    do {
        last = last == 5 ? -1 : last + 1;
        pl.setLastSequenceNumber(last);
        const QString played = entries.mid(last, 1);
        QString expected;
        for (int position : order)
            expected.append(entries.at(position));
        ASSERT_TRUE(pl.setOrder(order));
        ASSERT_EQ(expected, letters(pl));
        const bool isThere = last >= 0 && last < 4;
        ASSERT_EQ(isThere ? expected.indexOf(played) : last, pl.getLastSequenceNumber());
        entries = expected;
    } while (std::next_permutation(order.begin(), order.end()));
    expectInStep();
}

TEST_F(PlayListSetOrderTest, whatDoesNotNameEveryPositionOnceIsRefused) {
    PlayListBase& pl = playList("abcd", 1);
    SignalLog signalLog;
    signalLog.watch(&pl);
    const qint64 before = pl.getRevision();
    for (const QList<int>& order : QList<QList<int>>{{},
                                                     {0, 1, 2},
                                                     {0, 1, 2, 3, 4},
                                                     {0, 1, 2, 4},
                                                     {-1, 0, 1, 2},
                                                     {0, 0, 1, 2},
                                                     {3, 2, 1, 3},
                                                     {0, 1, 2, 0x7FFFFFFF}}) {
        const LogCapture log("PlayLists");
        EXPECT_FALSE(pl.isOrder(order));
        EXPECT_FALSE(pl.setOrder(order));
        EXPECT_EQ(QStringList(), log.errors());
    }
    EXPECT_EQ("abcd", letters(pl));
    EXPECT_EQ(before, pl.getRevision());
    EXPECT_EQ(QStringList(), signalLog.take());
}

TEST_F(PlayListSetOrderTest, theOrderThatIsThereTouchesNothing) {
    PlayListBase& pl = playList("abcd", 1);
    PlayListBase& empty = playList("");
    SignalLog signalLog;
    signalLog.watch(&pl);
    signalLog.watch(&empty);
    const qint64 before = pl.getRevision();
    forbid("UPDATE ON playlists_items");
    EXPECT_TRUE(pl.setOrder({0, 1, 2, 3}));
    EXPECT_TRUE(empty.setOrder({}));
    allowAll();
    EXPECT_EQ(before, pl.getRevision());
    EXPECT_EQ(QStringList(), signalLog.take());
}

TEST_F(PlayListSetOrderTest, orderAndPlayedPositionAreStoredTogetherOrNotAtAll) {
    PlayListBase& pl = playList("abcd", 1);
    SignalLog signalLog;
    signalLog.watch(&pl);
    for (const char* table : {"playlists_items", "playlists"}) {
        SCOPED_TRACE(table);
        forbid(QString("UPDATE ON %1").arg(table));
        const LogCapture log("PlayLists");
        EXPECT_FALSE(pl.setOrder({3, 0, 1, 2}));
        EXPECT_EQ("Error moving PlayListItem", log.errors().constLast());
        allowAll();
        EXPECT_EQ("abcd", letters(pl));
        EXPECT_EQ(1, pl.getLastSequenceNumber());
        EXPECT_EQ(QStringList(), signalLog.take());
        expectInStep();
    }
}
