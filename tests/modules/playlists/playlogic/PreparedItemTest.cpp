#include "PlayLogicFixture.h"

// The item that was announced, while the list is edited under it: when it starts, it is the
// position under the number that it has by then, and an item that is no longer next never becomes
// the position.
class PreparedItemTest : public PlayLogicFixture {
protected:
    // b plays, c is announced.
    PlayListBase* prepared() {
        PlayListBase* pl = playing("abcdef", 1);
        logic()->prepareNextMedia();
        EXPECT_EQ(QStringList{"next c@2"}, player.takeCommands());
        return pl;
    }
    int announcedNumber() {
        const OrvoValue value = probe().announcedRoles().value();
        return value.containsI32_() ? value.i32() : -1;
    }
    static QString at(PlayListBase* pl, int number) { return letters(pl).mid(number, 1); }
};

TEST_F(PreparedItemTest, itsNumberFollowsAMoveAndWhatCameBetweenIsAnnouncedInstead) {
    struct Row {
        int from, to;
        const char* heard; // behind b
        bool announcedAnew;
    };
    const Row rows[] = {{2, 5, "d@2", true},  {2, 0, "d@3", true},  {2, 3, "d@2", true},
                        {0, 2, "c@1", false}, {0, 4, "c@1", false}, {5, 2, "f@2", true},
                        {5, 0, "c@3", false}, {3, 5, "c@2", false}, {1, 0, "a@1", true},
                        {0, 1, "a@1", true},  {3, 2, "d@2", true}};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.from << " to " << row.to);
        PlayListBase* pl = prepared();
        pl->moveItem(row.from, row.to);
        EXPECT_EQ("b", at(pl, pl->getLastSequenceNumber()));
        EXPECT_EQ(row.announcedAnew ? QStringList{QString("next ") + row.heard} : QStringList(),
                  player.takeCommands());
        player.end();
        EXPECT_EQ(QString(row.heard), published());
        EXPECT_EQ(QString(row.heard), QString("%1@%2")
                                          .arg(at(pl, pl->getLastSequenceNumber()))
                                          .arg(pl->getLastSequenceNumber()));
        EXPECT_TRUE(probe().announcedRoles().isEmpty());
    }
}

TEST_F(PreparedItemTest, severalMovesAnnounceOnceWhatIsNextAfterAllOfThem) {
    PlayListBase* pl = prepared();
    pl->moveItems({2, 3, 4}, 5); // a b f c d e
    EXPECT_EQ(QStringList{"next f@2"}, player.takeCommands());
    pl = prepared();
    pl->moveItems({4, 5}, 0); // e f a b c d
    EXPECT_EQ(QStringList(), player.takeCommands());
    player.end();
    EXPECT_EQ("c@4", published());
}

TEST_F(PreparedItemTest, itsNumberFollowsARemoval) {
    const QList<QPair<QList<int>, int>> rows = {{{0}, 1}, {{3}, 2}, {{0, 4}, 1}, {{5}, 2}};
    for (const auto& row : rows) {
        PlayListBase* pl = prepared();
        pl->removeItems(row.first);
        EXPECT_EQ(row.second, announcedNumber());
        player.end();
        EXPECT_EQ("c", at(pl, pl->getLastSequenceNumber()));
    }
}

TEST_F(PreparedItemTest, whatFollowsTheRemovedOneIsAnnouncedInstead) {
    const QList<QPair<QList<int>, QString>> rows = {
        {{2}, "d@2"}, {{0, 2}, "d@1"}, {{2, 3, 4}, "f@2"}};
    for (const auto& row : rows) {
        PlayListBase* pl = prepared();
        pl->removeItems(row.first);
        EXPECT_EQ(QStringList{"next " + row.second}, player.takeCommands());
        player.end();
        EXPECT_EQ(row.second, published());
        EXPECT_EQ(row.second.left(1), at(pl, pl->getLastSequenceNumber()));
    }
}

TEST_F(PreparedItemTest, removedWithAllBehindItNothingIsAnnounced) {
    PlayListBase* pl = prepared();
    pl->removeItems({2, 3, 4, 5});
    EXPECT_EQ(QStringList{"no next"}, player.takeCommands());
    player.end();
    EXPECT_EQ(QStringList{"ended"}, player.takeCommands());
    EXPECT_EQ(1, pl->getLastSequenceNumber());
}

TEST_F(PreparedItemTest, removedAsItStartsItDoesNotBecomeThePosition) {
    PlayListBase* pl = prepared();
    const OrvoRoles started = player.announced;
    pl->removeItems({2});
    EXPECT_EQ(QStringList{"next d@2"}, player.takeCommands());
    // The player had it already.
    logic()->itemStarted(started);
    EXPECT_EQ("b", at(pl, pl->getLastSequenceNumber()));
    player.end();
    EXPECT_EQ("d@2", published());
}

TEST_F(PreparedItemTest, itIsForgottenWhenThePlayingItemIsRemoved) {
    PlayListBase* pl = prepared();
    pl->removeItems({1});
    EXPECT_EQ(QStringList{"play c@1"}, player.takeCommands());
    EXPECT_TRUE(probe().announcedRoles().isEmpty());
    player.start();
    EXPECT_EQ(1, pl->getLastSequenceNumber());
    EXPECT_EQ("c@1", published());
}

TEST_F(PreparedItemTest, itIsForgottenWhenThePlayingItemIsRemovedFromTheEnd) {
    PlayListBase* pl = playing("abc", 2);
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList{"next a@0"}, player.takeCommands());
    pl->removeItems({0, 2});
    EXPECT_EQ(QStringList{"play b@0"}, player.takeCommands());
    EXPECT_TRUE(probe().announcedRoles().isEmpty());
}

TEST_F(PreparedItemTest, itsNumberFollowsItemsInsertedBefore) {
    PlayListBase* pl = prepared();
    pl->addItemsAt({{0, 1}, true}, letterItems("xy"));
    EXPECT_EQ("xyabcdef", letters(pl));
    EXPECT_EQ(QStringList(), player.takeCommands());
    EXPECT_EQ(4, announcedNumber());
    player.end();
    EXPECT_EQ("c@4", published());
}

TEST_F(PreparedItemTest, aWrappedOneIsNoLongerNextWhereSomethingFollowsTheLast) {
    PlayListBase* pl = playing("abc", 1);
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    next();
    player.start();
    logic()->prepareNextMedia();
    EXPECT_EQ((QStringList{"play c@2", "next a@0"}), player.takeCommands());
    add(pl, Position::Append, "y");
    EXPECT_EQ(QStringList{"next y@3"}, player.takeCommands());
    player.end();
    EXPECT_EQ("y@3", published());
}

TEST_F(PreparedItemTest, repeatedItFollowsThePlayingItem) {
    PlayListBase* pl = playing("abcdef", 2);
    changeMode(OrvoPlayerPlayMode::RepeatOne);
    logic()->prepareNextMedia();
    pl->moveItem(2, 4);
    pl->removeItems({0});
    player.end();
    EXPECT_EQ("c", at(pl, pl->getLastSequenceNumber()));
}

TEST_F(PreparedItemTest, aRevokedAnnouncementDoesNotBecomeThePosition) {
    PlayListBase* pl = playing("abc", 2);
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    logic()->prepareNextMedia();
    changeMode(OrvoPlayerPlayMode::Normal);
    EXPECT_EQ((QStringList{"next a@0", "no next"}), player.takeCommands());
    // c ends with nothing behind it: playback does not go on after an a that was never heard.
    player.end();
    EXPECT_EQ(QStringList{"ended"}, player.takeCommands());
    EXPECT_EQ(2, pl->getLastSequenceNumber());
}

TEST_F(PreparedItemTest, aRevokedAnnouncementUnderShuffleDoesNotBecomeThePosition) {
    PlayListBase* pl = playingShuffled("ab", {1, 0}, 1);
    changeMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
    logic()->prepareNextMedia();
    changeMode(OrvoPlayerPlayMode::Shuffle);
    EXPECT_EQ((QStringList{"next b@1", "no next"}), player.takeCommands());
    EXPECT_EQ(1, probe().cursor());
    player.end();
    EXPECT_EQ(QStringList{"ended"}, player.takeCommands());
    EXPECT_EQ(0, pl->getLastSequenceNumber());
}

TEST_F(PreparedItemTest, itIsForgottenWhenTheListIsCleared) {
    PlayListBase* pl = prepared();
    pl->clearItems();
    EXPECT_EQ(QStringList{"asked to stop: 0"}, player.takeCommands());
    EXPECT_FALSE(probe().announcedRoles().value().containsI32_());
    add(pl, Position::AfterCurrent, "x");
    EXPECT_EQ(QStringList(), player.takeCommands());
}

TEST_F(PreparedItemTest, nextOverItAnnouncesNothingOfIt) {
    PlayListBase* pl = prepared();
    next();
    EXPECT_EQ(QStringList{"play c@2"}, player.takeCommands());
    player.start();
    EXPECT_EQ(2, pl->getLastSequenceNumber());
    previous();
    player.start();
    EXPECT_EQ(1, pl->getLastSequenceNumber());
}

TEST_F(PreparedItemTest, anAnnouncementBeforeAnItemHasStartedIsNotTakenForIt) {
    PlayListBase* pl = playing("abcdef", 1);
    next();
    add(pl, Position::AfterCurrent, "x");
    EXPECT_EQ((QStringList{"play c@2", "next x@3"}), player.takeCommands());
    player.start();
    EXPECT_EQ(2, pl->getLastSequenceNumber());
    EXPECT_EQ("c@2", published());
    player.end();
    EXPECT_EQ(3, pl->getLastSequenceNumber());
    EXPECT_EQ("x@3", published());
}

TEST_F(PreparedItemTest, aModeChangedBeforeAnItemHasStartedMovesNothing) {
    PlayListBase* pl = prepared();
    next();
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    EXPECT_EQ((QStringList{"play c@2", "next d@3"}), player.takeCommands());
    player.start();
    EXPECT_EQ(2, pl->getLastSequenceNumber());
}

TEST_F(PreparedItemTest, anItemRenumberedBeforeItHasStartedIsPublishedWithItsNewNumber) {
    PlayListBase* pl = playList("abcdef");
    play(pl, 3);
    pl->removeItems({0, 1});
    player.start();
    EXPECT_EQ("d@1", published());
}

TEST_F(PreparedItemTest, announcedAfterTheEndItStillLetsTheCursorFollowARemoval) {
    PlayListBase* pl = playingShuffled("abcd", {2, 0, 3, 1}, 3); // c a d b, and b plays
    logic()->prepareNextMedia();
    player.end();
    changeMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
    EXPECT_EQ((QStringList{"no next", "ended", "next c@2"}), player.takeCommands());
    pl->removeItems({0}); // c d b
    previous();
    EXPECT_EQ(QStringList{"play d@2"}, player.takeCommands());
}
