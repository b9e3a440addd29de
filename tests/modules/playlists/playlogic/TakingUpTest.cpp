#include "PlayLogicFixture.h"

// Commands of the module that start playback, through the player and back.
class TakingUpTest : public PlayLogicFixture {};

TEST_F(TakingUpTest, thePlayCommandPlaysTheListFromItsFirstItem) {
    PlayListBase* pl = playList("abc");
    pl->setLastSequenceNumber(2);
    OrvoPlayListPlId args;
    args.setPlid(pl->getUid());
    EXPECT_FALSE(send(OrvoPlayListPlPlayPath(), args).failed);
    EXPECT_EQ((QStringList{"asked to play: " + itemsPath(pl).toString() + " 0", "play a@0"}),
              player.commands);
    EXPECT_EQ(0, pl->getLastSequenceNumber());
}

TEST_F(TakingUpTest, itemsAddedNowPlayFromTheFirstOfThem) {
    PlayListBase* pl = playing("abc", 0);
    addItems(pl->getUid(), {"x", "y"}, Position::Now);
    EXPECT_EQ("axybc", letters(pl));
    EXPECT_EQ((QStringList{"asked to play: " + itemsPath(pl).toString() + " 1", "play x@1"}),
              player.commands);
    player.start();
    EXPECT_EQ("x@1", published());
}

TEST_F(TakingUpTest, itemsAddedNowToAShuffledListBeginTheNewOrder) {
    PlayListBase* pl = playingShuffled("abc", {0, 2, 1}, 0);
    logic()->prepareNextMedia();
    player.takeCommands();
    addItems(pl->getUid(), {"x", "y"}, Position::Now);
    EXPECT_EQ(
        (QStringList{"next x@1", "asked to play: " + itemsPath(pl).toString() + " 1", "play x@1"}),
        player.takeCommands());
    EXPECT_EQ(1, probe().order().value(0));
    EXPECT_TRUE(isPermutation(probe().order(), 5));
    EXPECT_TRUE(probe().announcedRoles().isEmpty());
}

TEST_F(TakingUpTest, itemsAddedNowToTheQueuePlay) {
    addItems(0, {"x", "y"}, Position::Now);
    EXPECT_EQ((QStringList{"asked to play: playlists:pq/items 0", "play x@0"}), player.commands);
    EXPECT_EQ(manager()->getPlayQueue(), probe().current());
}

TEST_F(TakingUpTest, aListPlaysThroughWithoutAGapAndEnds) {
    PlayListBase* pl = playing("abc");
    QStringList heard = {published()};
    for (int i = 0; i < 2; ++i) {
        logic()->prepareNextMedia();
        player.end();
        heard.append(published());
        EXPECT_EQ(published().section('@', 1), QString::number(pl->getLastSequenceNumber()));
    }
    logic()->prepareNextMedia();
    player.end();
    EXPECT_EQ((QStringList{"a@0", "b@1", "c@2"}), heard);
    EXPECT_EQ((QStringList{"next b@1", "next c@2", "no next", "ended"}), player.commands);
    EXPECT_EQ(2, pl->getLastSequenceNumber());
}

TEST_F(TakingUpTest, aShuffledListPlaysInItsOrder) {
    playingShuffled("abcd", {1, 3, 0, 2}, 0);
    for (int i = 0; i < 4; ++i) {
        logic()->prepareNextMedia();
        player.end();
    }
    EXPECT_EQ((QStringList{"next d@3", "next a@0", "next c@2", "no next", "ended"}),
              player.commands);
}

TEST_F(TakingUpTest, aTrackThatEndsUnannouncedIsFollowedByTheNext) {
    playing("ab");
    player.end();
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
    player.start();
    player.end();
    EXPECT_EQ(QStringList{"ended"}, player.takeCommands());
}

TEST_F(TakingUpTest, aFailedTrackIsFollowedByTheNextAndItsErrorGoes) {
    playing("abc");
    player.fail();
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
    EXPECT_TRUE(logic()->data().containsStreamerError());
    player.start();
    EXPECT_FALSE(logic()->data().containsStreamerError());
}
