#include <QCoreApplication>
#include <QSignalSpy>

#include "PlayLogicFixture.h"

// Shuffle and repeat switched by commands on the list that plays.
class PlayModeCommandsTest : public PlayLogicFixture {
protected:
    // No turn of the event loop: a command is answered at once.
    void sendShuffle(PlayListBase* pl, bool on) {
        OrvoPlayListPlSetShuffle args;
        args.setPlid(pl->getUid());
        args.setMode(on ? OrvoPlayListPlShuffleMode::On : OrvoPlayListPlShuffleMode::Off);
        EXPECT_FALSE(send(OrvoPlayListPlSetShufflePath(), args).failed);
    }
    void sendRepeat(PlayListBase* pl, bool on) {
        OrvoPlayListPlSetRepeat args;
        args.setPlid(pl->getUid());
        args.setMode(on ? OrvoPlayListPlRepeatMode::All : OrvoPlayListPlRepeatMode::Off);
        EXPECT_FALSE(send(OrvoPlayListPlSetRepeatPath(), args).failed);
    }
    static void turn() { QCoreApplication::processEvents(); }
};

TEST_F(PlayModeCommandsTest, theShuffleCommandShufflesWhatPlays) {
    PlayListBase* pl = playing("abcd", 2);
    sendShuffle(pl, true);
    EXPECT_EQ(OrvoPlayerPlayMode::Shuffle, logic()->playMode());
    EXPECT_FALSE(probe().shuffle());
    EXPECT_EQ(QVector<int>(), probe().order());
    turn();
    EXPECT_EQ(OrvoPlayerPlayMode::Shuffle, logic()->playMode());
    EXPECT_TRUE(probe().shuffle());
    EXPECT_TRUE(isPermutation(probe().order(), 4));
    EXPECT_EQ(2, probe().order().value(0));
    EXPECT_EQ(0, probe().cursor());

    const QVector<int> order = probe().order();
    sendShuffle(pl, false);
    turn();
    EXPECT_EQ(OrvoPlayerPlayMode::Normal, logic()->playMode());
    EXPECT_FALSE(probe().shuffle());
    EXPECT_EQ(order, probe().order());
    next();
    EXPECT_EQ(QStringList{"play d@3"}, player.takeCommands());
}

TEST_F(PlayModeCommandsTest, theRepeatCommandRepeatsWhatPlays) {
    PlayListBase* pl = playing("abcd", 3);
    sendRepeat(pl, true);
    EXPECT_EQ(OrvoPlayerPlayMode::RepeatAll, logic()->playMode());
    EXPECT_EQ(PlayListPlayLogic::RepeatOff, probe().repeat());
    turn();
    EXPECT_EQ(PlayListPlayLogic::RepeatAll, probe().repeat());
    EXPECT_TRUE(pl->getRepeatAll());
    next();
    EXPECT_EQ(QStringList{"play a@0"}, player.takeCommands());
    sendRepeat(pl, false);
    turn();
    EXPECT_EQ(OrvoPlayerPlayMode::Normal, logic()->playMode());
    EXPECT_EQ(PlayListPlayLogic::RepeatOff, probe().repeat());
}

TEST_F(PlayModeCommandsTest, theModeThatFollowsAnnouncesThePreparedItemAnew) {
    PlayListBase* pl = playing("abcd", 3);
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList{"no next"}, player.takeCommands());
    sendRepeat(pl, true);
    EXPECT_EQ(QStringList(), player.takeCommands());
    turn();
    EXPECT_EQ(QStringList{"next a@0"}, player.takeCommands());
}

TEST_F(PlayModeCommandsTest, repeatAndThenShuffleInOneTurnBothTakeEffect) {
    PlayListBase* pl = playing("abcd", 1);
    sendRepeat(pl, true);
    sendShuffle(pl, true);
    turn();
    EXPECT_EQ(OrvoPlayerPlayMode::ShuffleRepeatAll, logic()->playMode());
    EXPECT_TRUE(probe().shuffle());
    EXPECT_EQ(PlayListPlayLogic::RepeatAll, probe().repeat());
    EXPECT_EQ(1, probe().order().value(0));
}

TEST_F(PlayModeCommandsTest, commandsOnAnotherListPublishNothing) {
    playing("abcd");
    PlayListBase* other = playList("xyz");
    const QSignalSpy modes(logic(), &PlayLogicBase::playModeChanged);
    sendShuffle(other, true);
    sendRepeat(other, true);
    turn();
    EXPECT_EQ(0, modes.count());
    EXPECT_FALSE(probe().shuffle());
}

TEST_F(PlayModeCommandsTest, theLastOfSeveralSwitchesInOneTurnHolds) {
    struct Switch {
        char what; // 's'huffle, 'r'epeat all
        bool on;
    };
    struct Row {
        QList<Switch> switches;
        int mode;
    };
    const Row rows[] = {{{{'s', true}, {'s', false}}, OrvoPlayerPlayMode::Normal},
                        {{{'r', true}, {'r', false}}, OrvoPlayerPlayMode::Normal},
                        {{{'s', true}, {'r', true}}, OrvoPlayerPlayMode::ShuffleRepeatAll},
                        {{{'r', true}, {'s', true}}, OrvoPlayerPlayMode::ShuffleRepeatAll},
                        {{{'s', true}, {'s', false}, {'s', true}}, OrvoPlayerPlayMode::Shuffle},
                        {{{'s', true}, {'r', true}, {'s', false}}, OrvoPlayerPlayMode::RepeatAll},
                        {{{'r', true}, {'s', true}, {'r', false}}, OrvoPlayerPlayMode::Shuffle}};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.mode << ", " << row.switches.size() << " switches");
        PlayListBase* pl = playing("abcd", 1);
        for (const Switch& one : row.switches)
            one.what == 's' ? sendShuffle(pl, one.on) : sendRepeat(pl, one.on);
        turn();
        EXPECT_EQ(row.mode, logic()->playMode());
        const bool shuffled = row.mode % 2 == 1;
        EXPECT_EQ(shuffled, probe().shuffle());
        EXPECT_EQ(shuffled, pl->getShuffle());
        EXPECT_EQ(row.mode / 2, probe().repeat());
        EXPECT_EQ(row.mode / 2 == 2, pl->getRepeatAll());
    }
}

TEST_F(PlayModeCommandsTest, aShuffleThatIsPublishedAlreadyPublishesNothing) {
    PlayListBase* pl = playing("abcd");
    logic()->setPlayMode(OrvoPlayerPlayMode::Shuffle);
    const QSignalSpy modes(logic(), &PlayLogicBase::playModeChanged);
    pl->setShuffle(true);
    EXPECT_EQ(0, modes.count());
}

TEST_F(PlayModeCommandsTest, shuffleChangesOneHalfOfThePublishedMode) {
    PlayListBase* pl = playing("abcd");
    for (const bool on : {true, false}) {
        for (int mode = 0; mode <= 5; ++mode) {
            pl->setShuffle(!on);
            probe().shuffle() = !on;
            logic()->setPlayMode(OrvoPlayerPlayMode::Enum(mode));
            const QVector<int> order = probe().order();
            pl->setShuffle(on);
            EXPECT_EQ(mode / 2 * 2 + (on ? 1 : 0), logic()->playMode()) << mode;
            // The flag and the order wait for the request.
            EXPECT_EQ(!on, probe().shuffle());
            EXPECT_EQ(order, probe().order());
        }
        for (const int mode : {-1, 6, 77}) {
            pl->setShuffle(!on);
            probe().shuffle() = !on;
            logic()->setPlayMode(OrvoPlayerPlayMode::Enum(mode));
            pl->setShuffle(on);
            EXPECT_EQ(mode, logic()->playMode());
        }
    }
}

TEST_F(PlayModeCommandsTest, repeatAllPublishesByTheOwnShuffleFlag) {
    constexpr int unchanged = -7;
    struct Row {
        PlayListPlayLogic::RepeatMode before;
        bool shuffle;
        bool repeatAll;
        int mode;
    };
    const Row rows[] = {
        {PlayListPlayLogic::RepeatAll, false, false, 0},
        {PlayListPlayLogic::RepeatAll, true, false, 1},
        {PlayListPlayLogic::RepeatOff, false, true, 4},
        {PlayListPlayLogic::RepeatOff, true, true, 5},
        {PlayListPlayLogic::RepeatOne, false, true, 4},
        {PlayListPlayLogic::RepeatOne, true, true, 5},
        {PlayListPlayLogic::RepeatOff, true, false, unchanged},
        {PlayListPlayLogic::RepeatOne, true, false, unchanged},
        {PlayListPlayLogic::RepeatAll, true, true, unchanged},
    };
    PlayListBase* pl = playing("abcd");
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << row.before << ' ' << row.shuffle << ' ' << row.repeatAll);
        pl->setRepeatAll(!row.repeatAll);
        probe().repeat() = row.before;
        probe().shuffle() = row.shuffle;
        logic()->setPlayMode(OrvoPlayerPlayMode::Enum(unchanged));
        pl->setRepeatAll(row.repeatAll);
        EXPECT_EQ(row.mode, logic()->playMode());
        EXPECT_EQ(row.before, probe().repeat());
    }
}
