#include "PlayLogicFixture.h"

// Change-play-mode requests.
class PlayModeTest : public PlayLogicFixture {
protected:
    // An order that no drawing gives: one begins with what plays.
    const QVector<int> laidOut = {3, 2, 1, 0};

    void layOut() {
        probe().order() = laidOut;
        probe().cursor() = 2;
    }
    bool isLaidOut() { return probe().order() == laidOut && probe().cursor() == 2; }
    bool isDrawn(int first) {
        return isPermutation(probe().order(), 4) && probe().order().first() == first &&
               probe().cursor() == 0;
    }

    void expectMode(PlayListBase* pl, int mode) {
        EXPECT_EQ(mode, logic()->playMode());
        EXPECT_EQ(mode % 2 == 1, probe().shuffle());
        EXPECT_EQ(mode / 2, probe().repeat());
        EXPECT_EQ(mode % 2 == 1, pl->getShuffle());
        EXPECT_EQ(mode / 2 == 2, pl->getRepeatAll());
    }
};

TEST_F(PlayModeTest, everyModeFollowsEveryOther) {
    for (int from = 0; from <= 5; ++from) {
        for (int to = 0; to <= 5; ++to) {
            SCOPED_TRACE(testing::Message() << from << " to " << to);
            PlayListBase* pl = playing("abcd", 1);
            EXPECT_FALSE(changeMode(from).failed);
            expectMode(pl, from);
            layOut();
            const Answer answer = changeMode(to);
            EXPECT_TRUE(answer.answered);
            EXPECT_FALSE(answer.failed);
            EXPECT_FALSE(answer.value.isValid());
            expectMode(pl, to);
            const bool draws = from % 2 == 0 && to % 2 == 1;
            EXPECT_EQ(draws, isDrawn(1));
            EXPECT_EQ(!draws, isLaidOut());
            EXPECT_EQ(QStringList(), player.commands);
        }
    }
}

TEST_F(PlayModeTest, fromShuffleToShuffleRepeatOneLeavesTheOrder) {
    playing("abcd", 1);
    changeMode(OrvoPlayerPlayMode::Shuffle);
    layOut();
    changeMode(OrvoPlayerPlayMode::ShuffleRepeatOne);
    EXPECT_TRUE(isLaidOut());
    EXPECT_EQ(PlayListPlayLogic::RepeatOne, probe().repeat());
}

TEST_F(PlayModeTest, bothModesAreLogged) {
    playing("abcd");
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    const LogCapture log("PlayListsPlayLogic");
    changeMode(OrvoPlayerPlayMode::Normal);
    EXPECT_EQ(QStringList{"previous mode: repeatAll new mode: normal"}, log.texts("DEBUG"));
}

TEST_F(PlayModeTest, aModeBeyondTheSixIsPublishedAndChangesNothing) {
    for (const int before : {0, 3, 5}) {
        for (const int mode : {-1, 6, 7, 1000}) {
            PlayListBase* pl = playing("abcd", 1);
            changeMode(before);
            layOut();
            EXPECT_FALSE(changeMode(mode).failed);
            EXPECT_EQ(mode, logic()->playMode());
            EXPECT_EQ(before % 2 == 1, probe().shuffle());
            EXPECT_EQ(before / 2, probe().repeat());
            EXPECT_EQ(before % 2 == 1, pl->getShuffle());
            EXPECT_EQ(before == 5, pl->getRepeatAll());
            EXPECT_TRUE(isLaidOut());
        }
    }
}

TEST_F(PlayModeTest, afterAnUnknownModeAnOddOneDrawsAnOrder) {
    for (const bool shuffled : {false, true}) {
        PlayListBase* pl = playing("abcd", 1);
        changeMode(shuffled ? OrvoPlayerPlayMode::Shuffle : OrvoPlayerPlayMode::Normal);
        changeMode(7);
        layOut();
        changeMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
        expectMode(pl, 5);
        EXPECT_TRUE(isDrawn(1));
    }
}

TEST_F(PlayModeTest, afterAnUnknownModeAnEvenOneSwitchesOffWhatIsOn) {
    for (const bool shuffled : {false, true}) {
        PlayListBase* pl = playing("abcd", 1);
        changeMode(shuffled ? OrvoPlayerPlayMode::Shuffle : OrvoPlayerPlayMode::Normal);
        changeMode(-3);
        layOut();
        changeMode(OrvoPlayerPlayMode::RepeatOne);
        expectMode(pl, 2);
        EXPECT_TRUE(isLaidOut());
    }
}

TEST_F(PlayModeTest, theOwnFlagIsBroughtUpToAModeThatIsPublishedAlready) {
    PlayListBase* pl = playing("abcd", 1);
    logic()->setPlayMode(OrvoPlayerPlayMode::Shuffle);
    layOut();
    changeMode(OrvoPlayerPlayMode::Shuffle);
    expectMode(pl, 1);
    EXPECT_TRUE(isDrawn(1));

    logic()->setPlayMode(OrvoPlayerPlayMode::Normal);
    layOut();
    changeMode(OrvoPlayerPlayMode::Normal);
    expectMode(pl, 0);
    EXPECT_TRUE(isLaidOut());
}

TEST_F(PlayModeTest, withoutAListTheModeIsKept) {
    changeMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
    EXPECT_EQ(OrvoPlayerPlayMode::ShuffleRepeatAll, logic()->playMode());
    EXPECT_TRUE(probe().shuffle());
    EXPECT_EQ(PlayListPlayLogic::RepeatAll, probe().repeat());
    EXPECT_EQ(QVector<int>(), probe().order());
}

TEST_F(PlayModeTest, aChangeAnnouncesThePreparedItemAnew) {
    playing("abcd", 3);
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    EXPECT_EQ(QStringList(), player.takeCommands());
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList{"next a@0"}, player.takeCommands());
    changeMode(OrvoPlayerPlayMode::RepeatOne);
    EXPECT_EQ(QStringList{"next d@3"}, player.takeCommands());
    changeMode(OrvoPlayerPlayMode::Normal);
    EXPECT_EQ(QStringList{"no next"}, player.takeCommands());
    // An unknown mode is one, too.
    changeMode(7);
    EXPECT_EQ(QStringList{"no next"}, player.takeCommands());
}

TEST_F(PlayModeTest, switchingShuffleOnAnnouncesTheSecondOfTheNewOrder) {
    playing("abcd", 1);
    logic()->prepareNextMedia();
    player.commands.clear();
    changeMode(OrvoPlayerPlayMode::Shuffle);
    EXPECT_EQ(1, probe().cursor());
    const int second = probe().order().at(1);
    EXPECT_EQ(QStringList{QString("next %1@%2").arg(QString("abcd").mid(second, 1)).arg(second)},
              player.takeCommands());
}

TEST_F(PlayModeTest, allModesAreSupported) {
    OrvoPlayLogicPlayModesSupported all;
    all.setShuffle(true);
    all.setShuffleRepeatAll(true);
    all.setShuffleRepeatOne(true);
    all.setRepeatOne(true);
    all.setRepeatAll(true);
    EXPECT_EQ(5, all.toHash().size());
    EXPECT_EQ(all.toHash(), logic()->playModesSupported().toHash());
}

TEST_F(PlayModeTest, repeatOneIsForgottenAtTheNextStart) {
    PlayListBase* pl = playing("abcd");
    changeMode(OrvoPlayerPlayMode::ShuffleRepeatOne);
    play(pl, 2);
    expectMode(pl, 1);
}
