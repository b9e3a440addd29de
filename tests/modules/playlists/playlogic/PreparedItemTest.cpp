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
        const OrvoValue value = probe().currentTrackRoles().value();
        return value.containsI32_() ? value.i32() : -1;
    }
    static QString at(PlayListBase* pl, int number) { return titlesOf(pl).mid(number, 1); }
};

TEST_F(PreparedItemTest, itsNumberFollowsAMove) {
    struct Row {
        int from, to, number;
    };
    const Row rows[] = {{2, 5, 5}, {2, 0, 0}, {2, 3, 3}, {0, 2, 1}, {0, 4, 1}, {5, 2, 3},
                        {5, 0, 3}, {3, 5, 2}, {1, 0, 2}, {0, 1, 2}, {3, 2, 3}};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.from << " to " << row.to);
        PlayListBase* pl = prepared();
        pl->moveItem(row.from, row.to);
        EXPECT_EQ("c", at(pl, row.number));
        EXPECT_EQ(row.number, announcedNumber());
        EXPECT_EQ("b", at(pl, pl->getLastSequenceNumber()));
        EXPECT_EQ(QStringList(), player.takeCommands());
        player.end();
        EXPECT_EQ("c", at(pl, pl->getLastSequenceNumber()));
        EXPECT_EQ(QString("c@%1").arg(row.number), published());
        EXPECT_TRUE(probe().currentTrackRoles().isEmpty());
    }
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

TEST_F(PreparedItemTest, removedItNeverBecomesThePosition) {
    for (const QList<int>& removed : {QList<int>{2}, QList<int>{0, 2}, QList<int>{2, 3, 4}}) {
        PlayListBase* pl = prepared();
        pl->removeItems(removed);
        EXPECT_FALSE(probe().currentTrackRoles().value().containsI32_());
        player.end(); // the player had it already
        EXPECT_EQ("b", at(pl, pl->getLastSequenceNumber()));
        const QString behind = at(pl, pl->getLastSequenceNumber() + 1);
        next();
        EXPECT_EQ(QStringList{QString("play %1@%2").arg(behind).arg(pl->getLastSequenceNumber())},
                  player.takeCommands());
    }
}

TEST_F(PreparedItemTest, itIsForgottenWhenThePlayingItemIsRemoved) {
    PlayListBase* pl = prepared();
    pl->removeItems({1});
    EXPECT_EQ(QStringList{"play c@1"}, player.takeCommands());
    EXPECT_TRUE(probe().currentTrackRoles().isEmpty());
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
    EXPECT_TRUE(probe().currentTrackRoles().isEmpty());
}

TEST_F(PreparedItemTest, itsNumberFollowsItemsInsertedBefore) {
    PlayListBase* pl = prepared();
    add(pl, Position::Now, "xyz");
    EXPECT_EQ("abxyzcdef", titlesOf(pl));
    EXPECT_EQ(5, announcedNumber());
    player.end();
    EXPECT_EQ("c", at(pl, pl->getLastSequenceNumber()));
}

TEST_F(PreparedItemTest, aWrappedOneKeepsItsNumberBeforeInsertedItems) {
    PlayListBase* pl = playing("abc", 1);
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    next();
    player.start();
    logic()->prepareNextMedia();
    EXPECT_EQ((QStringList{"play c@2", "next a@0"}), player.takeCommands());
    add(pl, Position::Now, "x");
    add(pl, Position::Append, "y");
    EXPECT_EQ(0, announcedNumber());
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
    PlayListBase* pl = playingShuffled("ab", {0, 1}, 0);
    logic()->prepareNextMedia();
    // The order has no third entry to announce instead.
    add(pl, Position::AfterCurrent, "x");
    EXPECT_EQ((QStringList{"next b@1", "no next"}), player.takeCommands());
    EXPECT_EQ("axb", titlesOf(pl));
    EXPECT_TRUE(probe().currentTrackRoles().isEmpty());
    player.end();
    EXPECT_EQ(QStringList{"play x@1"}, player.takeCommands());
}

TEST_F(PreparedItemTest, itIsForgottenWhenTheListIsCleared) {
    PlayListBase* pl = prepared();
    pl->clearItems();
    EXPECT_EQ(QStringList{"asked to stop: 0"}, player.takeCommands());
    EXPECT_FALSE(probe().currentTrackRoles().value().containsI32_());
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
    PlayListBase* pl = listOf("abcdef");
    play(pl, 3);
    pl->removeItems({0, 1});
    player.start();
    EXPECT_EQ("d@1", published());
    // What is gone keeps the number it was handed over with.
    logic()->prepareNextMedia();
    pl->removeItems({2});
    player.end();
    EXPECT_EQ("e@2", published());
    EXPECT_EQ(1, pl->getLastSequenceNumber());
}
