#include <QSignalSpy>

#include "PlayLogicFixture.h"

// The list that plays gets another order.
class ReorderedItemsTest : public PlayLogicFixture {
protected:
    // Up to the announcement that follows the start.
    PlayListBase* prepared(const QString& titles, int index,
                           int mode = OrvoPlayerPlayMode::Normal) {
        PlayListBase* pl = playing(titles, index);
        if (mode != OrvoPlayerPlayMode::Normal)
            changeMode(mode);
        logic()->prepareNextMedia();
        player.takeCommands();
        return pl;
    }
};

TEST_F(ReorderedItemsTest, itIsLogged) {
    PlayListBase* pl = playing("abc");
    const LogCapture log("PlayListsPlayLogic");
    pl->setOrder({1, 2, 0});
    EXPECT_EQ("TRACE Enter void PlayListPlayLogic::on_currentPlayList_itemsReordered(const "
              "QList<int>&): order.size()=3",
              log.lines().value(0));
}

TEST_F(ReorderedItemsTest, thePlayingItemIsPublishedWithItsNewNumber) {
    PlayListBase* pl = playing("abcde", 2);
    const QSignalSpy changes(logic(), &PlayLogicBase::dataChanged);
    pl->setOrder({4, 3, 1, 0, 2});
    EXPECT_EQ("c@4", published());
    EXPECT_EQ(4, pl->getLastSequenceNumber());
    EXPECT_EQ(1, changes.count());
    pl->setOrder({3, 2, 1, 0, 4});
    EXPECT_EQ("c@4", published());
    EXPECT_EQ(1, changes.count());
    EXPECT_EQ(QStringList(), player.commands);
}

TEST_F(ReorderedItemsTest, theShuffleOrderFollowsItsTracks) {
    PlayListBase* pl = playingShuffled("abcde", {4, 2, 0, 3, 1}, 1);
    pl->setOrder({1, 4, 3, 0, 2}); // b e d a c
    EXPECT_EQ((QVector<int>{1, 4, 3, 2, 0}), probe().order());
    EXPECT_EQ(1, probe().cursor());
    next();
    EXPECT_EQ(QStringList("play a@3"), player.takeCommands());
}

TEST_F(ReorderedItemsTest, unshuffledTheShuffleOrderIsLeftAlone) {
    PlayListBase* pl = playing("abcd");
    probe().order() = {3, 2, 1, 0};
    pl->setOrder({3, 0, 1, 2});
    EXPECT_EQ((QVector<int>{3, 2, 1, 0}), probe().order());
}

TEST_F(ReorderedItemsTest, whatIsNoLongerNextIsAnnouncedAnew) {
    PlayListBase* pl = prepared("abcd", 1);
    pl->setOrder({1, 0, 3, 2}); // b a d c
    EXPECT_EQ(QStringList("next a@1"), player.takeCommands());
    player.end();
    EXPECT_EQ("a@1", published());
    EXPECT_EQ(1, pl->getLastSequenceNumber());
}

TEST_F(ReorderedItemsTest, whatIsStillNextIsNotAnnouncedAnewAndStartsUnderItsNewNumber) {
    PlayListBase* pl = prepared("abcd", 1);
    pl->setOrder({3, 0, 1, 2}); // d a b c
    EXPECT_EQ(QStringList(), player.takeCommands());
    player.end();
    EXPECT_EQ("c@3", published());
    EXPECT_EQ(3, pl->getLastSequenceNumber());
}

TEST_F(ReorderedItemsTest, theLastItemHasNoNextAndOneThatWasLastGetsOne) {
    PlayListBase* pl = prepared("abcd", 1);
    pl->setOrder({0, 2, 3, 1}); // a c d b
    EXPECT_EQ(QStringList("no next"), player.takeCommands());
    pl->setOrder({3, 0, 1, 2}); // b a c d
    EXPECT_EQ(QStringList("next a@1"), player.takeCommands());
}

TEST_F(ReorderedItemsTest, withRepeatAllTheFirstFollowsTheLast) {
    PlayListBase* pl = prepared("abcd", 3, OrvoPlayerPlayMode::RepeatAll);
    pl->setOrder({1, 0, 2, 3}); // b a c d
    EXPECT_EQ(QStringList("next b@0"), player.takeCommands());
    pl->setOrder({0, 2, 1, 3}); // b c a d
    EXPECT_EQ(QStringList(), player.takeCommands());
}

TEST_F(ReorderedItemsTest, withRepeatOneAndUnderShuffleWhatComesNextStays) {
    PlayListBase* pl = prepared("abcd", 1, OrvoPlayerPlayMode::RepeatOne);
    pl->setOrder({3, 2, 1, 0});
    EXPECT_EQ(QStringList(), player.takeCommands());
    player.end();
    EXPECT_EQ("b@2", published());

    pl = playingShuffled("abcde", {4, 2, 0, 3, 1}, 1);
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList("next a@0"), player.takeCommands());
    pl->setOrder({1, 4, 3, 0, 2}); // b e d a c
    EXPECT_EQ(QStringList(), player.takeCommands());
    player.end();
    EXPECT_EQ("a@3", published());
}

TEST_F(ReorderedItemsTest, nothingIsAnnouncedThatThePlayerDidNotAskFor) {
    PlayListBase* pl = playing("abcd", 1);
    pl->setOrder({1, 0, 3, 2});
    EXPECT_EQ(QStringList(), player.takeCommands());
    next();
    EXPECT_EQ(QStringList("play a@1"), player.takeCommands());
}

TEST_F(ReorderedItemsTest, anItemOnItsWayKeepsItsPlay) {
    PlayListBase* pl = prepared("abcd", 0);
    next();
    EXPECT_EQ(QStringList("play b@1"), player.takeCommands());
    pl->setOrder({3, 2, 1, 0}); // d c b a
    EXPECT_EQ(QStringList(), player.takeCommands());
    player.start();
    EXPECT_EQ("b@2", published());
    EXPECT_EQ(2, pl->getLastSequenceNumber());
}
