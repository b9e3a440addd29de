#include "DrawnOrder.h"
#include "PlayLogicFixture.h"
#include "TestClock.h"

// Items added to, and the clearing of, the list that plays.
class AddedItemsTest : public PlayLogicFixture {};

TEST_F(AddedItemsTest, anAddIsLoggedWithThePosition) {
    PlayListBase* pl = playing("abc", 1);
    const LogCapture log("PlayListsPlayLogic");
    add(pl, Position::Now, "x");
    add(pl, Position::AfterCurrent, "y");
    add(pl, Position::Append, "z");
    EXPECT_EQ((QStringList{"DEBUG pos=now lastSeq=1", "DEBUG pos=afterCurrent lastSeq=1",
                           "DEBUG pos=append lastSeq=1"}),
              log.lines());
}

TEST_F(AddedItemsTest, unshuffledAndUnpreparedNothingHappens) {
    PlayListBase* pl = playing("abc", 1);
    probe().order() = {9, 8};
    for (const auto position : {Position::Now, Position::AfterCurrent, Position::Append})
        add(pl, position, "xy");
    EXPECT_EQ(QStringList(), player.commands);
    EXPECT_EQ((QVector<int>{9, 8}), probe().order());
    EXPECT_EQ(1, pl->getLastSequenceNumber());
    EXPECT_EQ("b@1", published());
}

TEST_F(AddedItemsTest, insertedItemsPlayNextInTheirOwnOrder) {
    for (const auto position : {Position::Now, Position::AfterCurrent}) {
        // e plays, then a; d and c have played.
        PlayListBase* pl = playingShuffled("abcde", {3, 2, 1, 0, 4}, 2);
        add(pl, position, "xyz");
        EXPECT_EQ("abxyzcde", letters(pl));
        EXPECT_EQ((QVector<int>{6, 5, 1, 2, 3, 4, 0, 7}), probe().order());
        EXPECT_EQ(2, probe().cursor());
        for (int i = 0; i < 4; ++i)
            next();
        EXPECT_EQ((QStringList{"play x@2", "play y@3", "play z@4", "play a@0"}),
                  player.takeCommands());
    }
}

TEST_F(AddedItemsTest, withoutACursorInsertedItemsComeFirst) {
    PlayListBase* pl = playingShuffled("abc", {2, 0, 1}, 0);
    probe().cursor() = -1;
    add(pl, Position::AfterCurrent, "x");
    EXPECT_EQ("abcx", letters(pl));
    EXPECT_EQ((QVector<int>{3, 2, 0, 1}), probe().order());
}

TEST_F(AddedItemsTest, aCursorPastTheOrderIsNotWrittenBehind) {
    PlayListBase* pl = playingShuffled("abc", {0, 1, 2}, 0);
    probe().order() = {0};
    probe().cursor() = 6;
    add(pl, Position::AfterCurrent, "xy");
    EXPECT_EQ((QVector<int>{0, 1, 2}), probe().order());
}

TEST_F(AddedItemsTest, appendedItemsAreMixedIntoWhatHasNotPlayed) {
    PlayListBase* pl = playingShuffled("abcdef", {3, 5, 1, 0, 4, 2}, 2);
    add(pl, Position::Append, "uvwxyz");
    EXPECT_EQ((QVector<int>{3, 5, 1}), probe().order().mid(0, 3));
    EXPECT_TRUE(isPermutation(probe().order(), 12));
    EXPECT_EQ(2, probe().cursor());
}

TEST_F(AddedItemsTest, appendedItemsAreDrawnTogetherWithTheRestOfTheTail) {
    PlayListBase* pl = playingShuffled("abcdef", {3, 5, 1, 0, 4, 2}, 2);
    const TestClock clock(123456);
    add(pl, Position::Append, "wxyz");
    EXPECT_EQ(DrawnOrder::shuffled({3, 5, 1, 0, 4, 2, 6, 7, 8, 9}, 3, 123456), probe().order());
}

TEST_F(AddedItemsTest, appendingBehindTheLastOfTheOrderMixesTheNewOnly) {
    PlayListBase* pl = playingShuffled("abc", {2, 0, 1}, 2);
    add(pl, Position::Append, "xyz");
    EXPECT_EQ((QVector<int>{2, 0, 1}), probe().order().mid(0, 3));
    EXPECT_TRUE(isPermutation(probe().order(), 6));
}

TEST_F(AddedItemsTest, anUnknownPositionOnlyLogs) {
    // Only an empty list takes items at a position that is none.
    PlayListBase* pl = playList("");
    pl->setShuffle(true);
    play(pl, 0);
    player.commands.clear();
    const LogCapture log("PlayListsPlayLogic");
    EXPECT_EQ(0, pl->addItems(Position::Enum(7), letterItems("abc")));
    EXPECT_EQ((QStringList{"DEBUG pos=7 lastSeq=-1", "DEBUG Unknown position specifier: 7"}),
              log.lines());
    EXPECT_EQ(QVector<int>(), probe().order());
}

TEST_F(AddedItemsTest, anUnknownPositionIsNotLookedAtUnshuffled) {
    PlayListBase* pl = playList("");
    play(pl, 0);
    const LogCapture log("PlayListsPlayLogic");
    pl->addItems(Position::Enum(7), letterItems("abc"));
    EXPECT_EQ(QStringList{"DEBUG pos=7 lastSeq=-1"}, log.lines());
}

TEST_F(AddedItemsTest, addedNextWhileTheNextIsPreparedIsAnnounced) {
    PlayListBase* pl = playing("abc");
    logic()->prepareNextMedia();
    add(pl, Position::AfterCurrent, "xy");
    EXPECT_EQ((QStringList{"next b@1", "next x@1"}), player.takeCommands());
    player.end();
    EXPECT_EQ(1, pl->getLastSequenceNumber());
    EXPECT_EQ("x@1", published());
}

TEST_F(AddedItemsTest, addedAtTheEndLeavesTheAnnouncement) {
    PlayListBase* pl = playing("abc");
    logic()->prepareNextMedia();
    player.takeCommands();
    add(pl, Position::Append, "xy");
    EXPECT_EQ(QStringList(), player.takeCommands());
}

TEST_F(AddedItemsTest, addedNowWhileTheNextIsPreparedIsAnnounced) {
    PlayListBase* pl = playing("abc");
    logic()->prepareNextMedia();
    player.takeCommands();
    add(pl, Position::Now, "xy");
    EXPECT_EQ(QStringList{"next x@1"}, player.takeCommands());
}

TEST_F(AddedItemsTest, addedNextWithNothingPreparedIsNotAnnounced) {
    PlayListBase* pl = playing("abc", 2);
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList{"no next"}, player.takeCommands());
    add(pl, Position::AfterCurrent, "x");
    EXPECT_EQ(QStringList(), player.takeCommands());
    player.end();
    EXPECT_EQ(QStringList{"play x@3"}, player.takeCommands());
}

TEST_F(AddedItemsTest, underShuffleAddedNextIsHeardBetweenThePlayingAndTheAnnounced) {
    PlayListBase* pl = playingShuffled("abcd", {0, 2, 1, 3}, 0);
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList{"next c@2"}, player.takeCommands());
    EXPECT_EQ(1, probe().cursor());
    add(pl, Position::AfterCurrent, "x");
    EXPECT_EQ("axbcd", letters(pl));
    // The player hears of what stands at the announced number by now, then, from the patched order,
    // of the new item.
    EXPECT_EQ((QStringList{"next b@2", "next x@1"}), player.takeCommands());
    EXPECT_EQ((QVector<int>{0, 1, 3, 2, 4}), probe().order());
    EXPECT_EQ(1, probe().cursor());
    QStringList heard;
    while (!player.announced.isEmpty()) {
        player.end();
        heard.append(published());
        logic()->prepareNextMedia();
    }
    EXPECT_EQ((QStringList{"x@1", "c@3", "b@2", "d@4"}), heard);
}

TEST_F(AddedItemsTest, underShuffleWhatTheStepAnnouncedIsNotAnnouncedTwice) {
    PlayListBase* pl = playingShuffled("abc", {0, 1, 2}, 0);
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList{"next b@1"}, player.takeCommands());
    add(pl, Position::AfterCurrent, "xy");
    EXPECT_EQ("axybc", letters(pl));
    EXPECT_EQ(QStringList{"next x@1"}, player.takeCommands());
    EXPECT_EQ((QVector<int>{0, 1, 2, 3, 4}), probe().order());
    EXPECT_EQ(1, probe().cursor());
}

TEST_F(AddedItemsTest, underShuffleAnAppendMixesTheAnnouncedOneToo) {
    PlayListBase* pl = playingShuffled("abcd", {3, 0, 1, 2}, 0);
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList{"next a@0"}, player.takeCommands());
    const TestClock clock(123456);
    add(pl, Position::Append, "xyz");
    const QVector<int> order = DrawnOrder::shuffled({3, 0, 1, 2, 4, 5, 6}, 1, 123456);
    EXPECT_EQ(order, probe().order());
    EXPECT_EQ(1, probe().cursor());
    EXPECT_EQ(QString("abcdxyz").mid(order.at(1), 1),
              RecordingPlayer::text(player.announced).left(1));
    player.end();
    EXPECT_EQ(order.at(1), pl->getLastSequenceNumber());
}

TEST_F(AddedItemsTest, clearingStopsThePlayerAndTheListStaysCurrent) {
    PlayListBase* pl = playing("abc", 1);
    const LogCapture log("PlayListsPlayLogic");
    pl->clearItems();
    EXPECT_EQ(QStringList{"TRACE Enter void PlayListPlayLogic::on_currentPlayList_cleared()"},
              log.lines());
    EXPECT_EQ(QStringList{"asked to stop: 0"}, player.takeCommands());
    EXPECT_EQ(pl, probe().current());
}

TEST_F(AddedItemsTest, viewsHearOfTheFirstEditBeforeThePlayerDoes) {
    const int uid = playList("abc")->getUid();
    restart(); // nothing has happened to the list yet
    PlayListBase* pl = manager()->getPlayListByUid(uid);
    EXPECT_FALSE(play(pl, 0).failed);
    player.start();
    player.commands.clear();
    QList<QStringList> commandsByThen;
    const auto connection =
        QObject::connect(root()->events(), &CMSubscribe::changed, [&](const CMChange& change) {
            if (change.path == itemsPath(pl))
                commandsByThen.append(player.commands);
        });
    pl->clearItems();
    QObject::disconnect(connection);
    EXPECT_EQ(QList<QStringList>{QStringList()}, commandsByThen);
    EXPECT_EQ(QStringList{"asked to stop: 0"}, player.commands);
}

TEST_F(AddedItemsTest, clearingSurvivesAStopThatComesBack) {
    player.stopsThePlayLogic = true;
    PlayListBase* pl = playing("abc", 1);
    pl->clearItems();
    EXPECT_EQ((QStringList{"asked to stop: 0", "stop"}), player.takeCommands());
    EXPECT_EQ(nullptr, probe().current());
}
