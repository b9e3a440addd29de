#include <random>

#include <QSignalSpy>

#include "PlayLogicFixture.h"

// Items removed from the list that plays.
class RemovedItemsTest : public PlayLogicFixture {
protected:
    // Entry by entry and index by index, as slow and as plain as can be.
    static void removeOneByOne(QVector<int>& order, int& cursor, const QList<int>& indices) {
        for (int index : indices) {
            int at = 0;
            while (at < order.size()) {
                if (order[at] == index) {
                    order.remove(at);
                    if (at <= cursor)
                        --cursor;
                } else {
                    if (order[at] > index)
                        --order[at];
                    ++at;
                }
            }
        }
    }
};

TEST_F(RemovedItemsTest, aRemovalIsLogged) {
    PlayListBase* pl = playing("abcde", 3);
    LogCapture log("PlayListsPlayLogic");
    pl->removeItems({1, 0});
    EXPECT_EQ(QStringList{"DEBUG indices.size()=2 lastSeqNum=3"}, log.lines());
}

TEST_F(RemovedItemsTest, removingEverythingIsClearing) {
    for (const bool stopsAtOnce : {false, true}) {
        player.stopsThePlayLogic = stopsAtOnce;
        PlayListBase* pl = playingShuffled("abc", {1, 0, 2}, 0);
        pl->setRepeatAll(true);
        const LogCapture log("PlayListsPlayLogic");
        pl->removeItems({0, 1, 2});
        EXPECT_TRUE(
            log.contains("TRACE", "Enter void PlayListPlayLogic::on_currentPlayList_cleared()"));
        EXPECT_EQ("asked to stop: 0", player.commands.value(0));
        EXPECT_EQ(stopsAtOnce ? 2 : 1, player.takeCommands().size());
        EXPECT_EQ((QVector<int>{1, 0, 2}), probe().order());
        EXPECT_EQ(stopsAtOnce ? nullptr : pl, probe().current());
    }
}

TEST_F(RemovedItemsTest, oneRemovedItemLeavesTheOrder) {
    struct Row {
        int removed;
        QVector<int> order;
        int cursor;
        QStringList commands;
    };
    const Row rows[] = {
        {4, {2, 1, 0, 3}, 1, {}},           // before the cursor
        {1, {3, 1, 0, 2}, 1, {"play c@1"}}, // at the cursor: back to the one before
        {0, {3, 1, 0, 2}, 2, {}},           // behind the cursor
    };
    for (const Row& row : rows) {
        PlayListBase* pl = playingShuffled("abcde", {4, 2, 1, 0, 3}, 2);
        pl->removeItems({row.removed});
        EXPECT_EQ(row.order, probe().order()) << row.removed;
        EXPECT_EQ(row.cursor, probe().cursor());
        EXPECT_EQ(row.commands, player.commands);
    }
}

TEST_F(RemovedItemsTest, whatReplacesThePlayingItemFollowsWhatHasPlayedInTheOrder) {
    struct Row {
        QVector<int> order;
        int cursor;
        QVector<int> orderAfter;
        int cursorAfter;
    };
    // The item at the cursor is removed.
    const Row rows[] = {
        {{1, 2, 0}, 0, {1, 0}, 0},             // the replacement was next
        {{1, 0, 2}, 0, {1, 0}, 0},             // it was last
        {{3, 1, 0, 4, 2}, 1, {2, 1, 0, 3}, 1}, // not all of them heard
        {{2, 4, 1, 0, 3}, 2, {3, 1, 0, 2}, 1}, // it was heard before
    };
    for (const Row& row : rows) {
        PlayListBase* pl =
            playingShuffled(QString("abcde").left(row.order.size()), row.order, row.cursor);
        const int removed = row.order.at(row.cursor);
        const QString replacement = letters(pl).mid(removed + 1, 1);
        pl->removeItems({removed});
        EXPECT_EQ((QStringList{QString("play %1@%2").arg(replacement).arg(removed)}),
                  player.takeCommands());
        EXPECT_EQ(row.orderAfter, probe().order());
        EXPECT_EQ(row.cursorAfter, probe().cursor());
    }
}

TEST_F(RemovedItemsTest, whileAnItemIsAnnouncedThePlayingOneIsReplacedInTheOrder) {
    PlayListBase* pl = playingShuffled("abcd", {1, 3, 0, 2}, 0);
    logic()->prepareNextMedia();
    pl->removeItems({1});
    EXPECT_EQ((QStringList{"next d@3", "play c@1"}), player.takeCommands());
    player.start();
    QStringList heard;
    for (logic()->prepareNextMedia(); !player.announced.isEmpty(); logic()->prepareNextMedia()) {
        player.end();
        heard.append(published());
    }
    EXPECT_EQ((QStringList{"d@2", "a@0"}), heard);
}

TEST_F(RemovedItemsTest, afterTheEndARemovalPlaysNothing) {
    for (const bool shuffled : {false, true}) {
        PlayListBase* pl = shuffled ? playingShuffled("abc", {0, 2, 1}, 2) : playing("abc", 2);
        player.end();
        EXPECT_EQ(QStringList{"ended"}, player.takeCommands());
        pl->removeItems({pl->getLastSequenceNumber()});
        EXPECT_EQ(QStringList(), player.takeCommands());
    }
}

TEST_F(RemovedItemsTest, afterTooManyFailuresARemovalPlaysNothing) {
    PlayListBase* pl = playing("abcdefgh");
    for (int i = 0; i < 6; ++i)
        player.fail();
    EXPECT_EQ("ended", player.takeCommands().last());
    pl->removeItems({pl->getLastSequenceNumber()});
    EXPECT_EQ(QStringList(), player.takeCommands());
}

TEST_F(RemovedItemsTest, beforeAnythingPlaysARemovalPlaysNothing) {
    PlayListBase* pl = playList("abc");
    pl->setLastSequenceNumber(1);
    play(pl, 7);
    EXPECT_EQ(QStringList{"play nothing"}, player.takeCommands());
    pl->removeItems({1});
    EXPECT_EQ(QStringList(), player.takeCommands());
}

TEST_F(RemovedItemsTest, anItemOnItsWayCountsAsPlaying) {
    PlayListBase* pl = playList("abc");
    play(pl, 1);
    pl->removeItems({1});
    EXPECT_EQ((QStringList{"play b@1", "play c@1"}), player.takeCommands());
}

TEST_F(RemovedItemsTest, whatStoppedIsNotReplaced) {
    PlayListBase* pl = playing("abc", 2);
    pl->removeItems({2});
    EXPECT_EQ(QStringList{"asked to stop: 0"}, player.takeCommands());
    pl->setLastSequenceNumber(0);
    pl->removeItems({0});
    EXPECT_EQ(QStringList(), player.takeCommands());
}

TEST_F(RemovedItemsTest, unshuffledTheOrderIsLeftAlone) {
    PlayListBase* pl = playing("abcd");
    probe().order() = {3, 2, 1, 0};
    probe().cursor() = 2;
    pl->removeItems({1});
    EXPECT_EQ((QVector<int>{3, 2, 1, 0}), probe().order());
    EXPECT_EQ(2, probe().cursor());
}

TEST_F(RemovedItemsTest, severalIndicesAreAppliedAsTheyAre) {
    // 1 takes the entry 1 and lowers the higher ones; 2 then takes what was 3.
    PlayListBase* pl = playingShuffled("abcde", {4, 2, 0, 3, 1}, 2);
    pl->removeItems({2, 1});
    EXPECT_EQ((QVector<int>{2, 1, 0}), probe().order());
    EXPECT_EQ(2, probe().cursor());

    // The second of two at the end finds nothing to take any more.
    pl = playingShuffled("abcde", {4, 2, 0, 3, 1}, 2);
    pl->removeItems({3, 4});
    EXPECT_EQ((QVector<int>{3, 2, 0, 1}), probe().order());
    EXPECT_EQ(2, probe().cursor());
}

TEST_F(RemovedItemsTest, anySetOfIndicesActsOnTheOrderOneByOne) {
    std::mt19937 random(20240229);
    const auto below = [&random](int bound) { return int(random() % unsigned(bound)); };
    for (int round = 0; round < 300; ++round) {
        PlayListBase* pl = manager()->getPlayQueue();
        pl->clearItems();
        const int size = 2 + below(12);
        add(pl, Position::Append, QString("abcdefghijklmn").left(size));
        pl->setShuffle(true);
        play(pl, 0);
        QVector<int> order = probe().order();
        ASSERT_EQ(size, order.size());
        // Now and then an order that has lost touch with the list, numbers twice included.
        for (int i = below(4); i > 0 && round % 2; --i)
            order[below(size)] = below(size + 2);
        int cursor = below(size + 1) - 1;
        probe().order() = order;
        probe().cursor() = cursor;
        QList<int> indices;
        for (int i = 0; i < size; ++i) {
            if (below(3) == 0)
                indices.append(i);
        }
        if (indices.isEmpty() || indices.size() == size)
            continue;
        // What plays is none of them, so that nothing else moves the cursor.
        pl->setLastSequenceNumber(size + 1);
        removeOneByOne(order, cursor, indices);
        pl->removeItems(indices);
        ASSERT_EQ(order, probe().order()) << "round " << round;
        ASSERT_EQ(cursor, probe().cursor()) << "round " << round;
    }
}

TEST_F(RemovedItemsTest, whatMovesIntoThePlaceOfThePlayingItemPlays) {
    PlayListBase* pl = playing("abcdef", 3);
    pl->removeItems({3});
    EXPECT_EQ(QStringList{"play e@3"}, player.takeCommands());
    EXPECT_EQ(3, pl->getLastSequenceNumber());
    player.start();
    EXPECT_EQ("e@3", published());
}

TEST_F(RemovedItemsTest, removedItemsBeforeThePlayingOneAreCounted) {
    PlayListBase* pl = playing("abcdef", 3);
    pl->removeItems({0, 3, 2, 4});
    EXPECT_EQ("bf", letters(pl));
    EXPECT_EQ(QStringList{"play f@1"}, player.takeCommands());
    EXPECT_EQ(1, pl->getLastSequenceNumber());
}

TEST_F(RemovedItemsTest, theLastItemRemovedWhilePlayingStops) {
    for (const bool stopsAtOnce : {false, true}) {
        player.stopsThePlayLogic = stopsAtOnce;
        PlayListBase* pl = playing("abc", 2);
        pl->removeItems({2});
        EXPECT_EQ("asked to stop: 0", player.commands.value(0));
        EXPECT_EQ(stopsAtOnce ? 2 : 1, player.takeCommands().size());
        EXPECT_EQ(stopsAtOnce ? nullptr : pl, probe().current());
    }
}

TEST_F(RemovedItemsTest, theLastItemRemovedWhilePlayingGoesOnUnderRepeatAll) {
    PlayListBase* pl = playing("abc", 2);
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    pl->removeItems({1, 2});
    EXPECT_EQ(QStringList{"play a@0"}, player.takeCommands());
    EXPECT_EQ(0, pl->getLastSequenceNumber());
}

TEST_F(RemovedItemsTest, theLastItemRemovedWhilePlayingGoesOnInTheShuffledOrder) {
    PlayListBase* pl = playingShuffled("abcd", {0, 3, 1, 2}, 1);
    changeMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
    pl->removeItems({3});
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
    EXPECT_EQ((QVector<int>{0, 1, 2}), probe().order());
    EXPECT_EQ(1, probe().cursor());
}

TEST_F(RemovedItemsTest, repeatAllThatWasSwitchedOnInTheSameTurnGoesOn) {
    PlayListBase* pl = playing("abc", 2);
    // Published, but not in force yet: that takes a turn of the loop.
    pl->setRepeatAll(true);
    ASSERT_EQ(PlayListPlayLogic::RepeatOff, probe().repeat());
    pl->removeItems({2});
    EXPECT_EQ(QStringList{"play a@0"}, player.takeCommands());
    EXPECT_EQ(PlayListPlayLogic::RepeatOff, probe().repeat());
}

TEST_F(RemovedItemsTest, afterTheEndARemovalAnnouncesNothing) {
    PlayListBase* pl = playing("abc", 2);
    logic()->prepareNextMedia();
    player.end();
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    player.takeCommands();
    pl->removeItems({0});
    EXPECT_EQ(QStringList(), player.takeCommands());
}

TEST_F(RemovedItemsTest, theOwnRepeatModeAloneDoesNotGoOn) {
    PlayListBase* pl = playing("abc", 2);
    probe().repeat() = PlayListPlayLogic::RepeatAll;
    pl->removeItems({2});
    EXPECT_EQ(QStringList{"asked to stop: 0"}, player.takeCommands());
}

TEST_F(RemovedItemsTest, aReplacementPublishesNothingItself) {
    PlayListBase* pl = playing("abcd", 1);
    const QSignalSpy changes(logic(), &PlayLogicBase::dataChanged);
    pl->removeItems({0, 1});
    EXPECT_EQ(QStringList{"play c@0"}, player.takeCommands());
    EXPECT_EQ(0, changes.count());
}

TEST_F(RemovedItemsTest, thePlayingItemIsPublishedWithItsNewNumber) {
    PlayListBase* pl = playing("abcd", 3);
    const QSignalSpy changes(logic(), &PlayLogicBase::dataChanged);
    pl->removeItems({0, 2});
    EXPECT_EQ(QStringList(), player.takeCommands());
    EXPECT_EQ(1, changes.count());
    EXPECT_EQ("d@1", published());
}

TEST_F(RemovedItemsTest, whatIsRemovedBehindThePlayingItemPublishesNothing) {
    PlayListBase* pl = playing("abcd", 1);
    const QSignalSpy changes(logic(), &PlayLogicBase::dataChanged);
    pl->removeItems({2, 3});
    EXPECT_EQ(0, changes.count());
    EXPECT_EQ("b@1", published());
}
