#include "PlayLogicFixture.h"

// Which track a client is told to go on with in a list that was left.
class GoingOnTest : public PlayLogicFixture {
protected:
    static constexpr int FromTheFirst = -1;

    int resumeIndex(PlayListBase* pl) {
        const OrvoRowsRoles reply = rows(itemsPath(pl), 0, 0);
        return reply.containsResumeIndex() ? reply.resumeIndex() : FromTheFirst;
    }
};

TEST_F(GoingOnTest, aListThatNeverPlayedBeginsWithItsFirst) {
    EXPECT_EQ(FromTheFirst, resumeIndex(playList("abc")));
}

TEST_F(GoingOnTest, aListThatWasLeftInsideGoesOnThere) {
    PlayListBase* pl = playing("abcd", 2);
    EXPECT_EQ(2, resumeIndex(pl));
    stop();
    EXPECT_EQ(2, resumeIndex(pl));
}

TEST_F(GoingOnTest, aShuffledListThatEndedInItsMiddleBeginsAnew) {
    PlayListBase* pl = playingShuffled("abcd", {3, 0, 2, 1}, 2);
    next();
    player.start();
    EXPECT_EQ(1, resumeIndex(pl));
    player.end();
    ASSERT_EQ("ended", player.commands.last());
    EXPECT_EQ(FromTheFirst, resumeIndex(pl));
    EXPECT_EQ(1, rows(itemsPath(pl), 0, 0).lastPlayedIndex());
}

TEST_F(GoingOnTest, aListThatPlaysAgainAfterItsEndGoesOnThere) {
    PlayListBase* pl = playingShuffled("abcd", {3, 0, 2, 1}, 3);
    player.end();
    ASSERT_EQ(FromTheFirst, resumeIndex(pl));
    play(pl, 2);
    EXPECT_EQ(2, resumeIndex(pl));
}

TEST_F(GoingOnTest, aTrackAnnouncedAfterAllStartsTheListAgain) {
    PlayListBase* pl = playingShuffled("abcd", {3, 0, 2, 1}, 3);
    player.end();
    ASSERT_EQ(FromTheFirst, resumeIndex(pl));
    changeMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
    next();
    EXPECT_NE(FromTheFirst, resumeIndex(pl));
}

TEST_F(GoingOnTest, givingUpAfterBrokenTracksIsNoEnd) {
    PlayListBase* pl = playing("abcdefgh", 0);
    for (int i = 0; i < 6; ++i)
        player.fail();
    ASSERT_EQ("ended", player.commands.last());
    EXPECT_EQ(5, resumeIndex(pl));
}

TEST_F(GoingOnTest, aPositionWithoutATrackIsNoPlaceToGoOn) {
    PlayListBase* pl = playing("abc", 2);
    stop();
    ASSERT_EQ(1, pl->removeItems({2}));
    EXPECT_EQ(2, rows(itemsPath(pl), 0, 0).lastPlayedIndex());
    EXPECT_EQ(FromTheFirst, resumeIndex(pl));
}
