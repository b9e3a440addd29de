#include "PlayLogicFixture.h"

// Items added at places of the list that plays.
class InsertedItemsTest : public PlayLogicFixture {
protected:
    static int insert(PlayListBase* pl, const QList<int>& positions, const QString& titles) {
        return pl->addItemsAt({positions, true}, letterItems(titles));
    }
};

TEST_F(InsertedItemsTest, thePlayingItemIsPublishedWithItsNewNumber) {
    PlayListBase* pl = playing("abcd", 2);
    EXPECT_EQ(0, insert(pl, {0, 4}, "xy")); // x a b c y d
    EXPECT_EQ("c@3", published());
    EXPECT_EQ(QStringList(), player.takeCommands());
    next();
    EXPECT_EQ(QStringList("play y@4"), player.takeCommands());
}

TEST_F(InsertedItemsTest, underShuffleNumbersFollowAndTheNewOnesAreStillToCome) {
    PlayListBase* pl = playingShuffled("abcde", {4, 2, 0, 3, 1}, 2);
    EXPECT_EQ(1, insert(pl, {1, 3, 7}, "xyz")); // a x b y c d e z
    const QVector<int> order = probe().order();
    EXPECT_TRUE(isPermutation(order, 8));
    EXPECT_EQ((QVector<int>{6, 4, 0}), order.mid(0, 3)) << "what has played, and what plays";
    EXPECT_EQ(2, probe().cursor());
}

TEST_F(InsertedItemsTest, underShuffleTheAnnouncedOneIsMixedWithAllThatIsToCome) {
    PlayListBase* pl = playingShuffled("abcde", {4, 2, 0, 3, 1}, 1);
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList("next a@0"), player.takeCommands());
    insert(pl, {0}, "x");
    EXPECT_EQ((QVector<int>{5, 3}), probe().order().mid(0, 2));
    EXPECT_EQ(2, probe().cursor());
    const QString next = letters(pl).mid(probe().order().at(2), 1);
    EXPECT_EQ(next, player.announced.title().toString());
    player.end();
    EXPECT_EQ(QString("%1@%2").arg(next).arg(probe().order().at(2)), published());
}

TEST_F(InsertedItemsTest, whatComesBeforeTheAnnouncedItemIsAnnouncedInstead) {
    PlayListBase* pl = playing("abc", 0);
    logic()->prepareNextMedia();
    player.takeCommands();
    insert(pl, {3}, "y");
    EXPECT_EQ(QStringList(), player.takeCommands()) << "behind it";
    insert(pl, {1}, "x");
    EXPECT_EQ(QStringList("next x@1"), player.takeCommands());
    insert(pl, {0}, "w");
    EXPECT_EQ(QStringList(), player.takeCommands()) << "both follow";
    player.end();
    EXPECT_EQ("x@2", published());
    EXPECT_EQ(2, pl->getLastSequenceNumber());
}

TEST_F(InsertedItemsTest, theLastItemGetsANext) {
    PlayListBase* pl = playing("ab", 1);
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList("no next"), player.takeCommands());
    insert(pl, {2}, "x");
    EXPECT_EQ(QStringList("next x@2"), player.takeCommands());
}
