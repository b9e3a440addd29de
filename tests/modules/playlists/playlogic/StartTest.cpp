#include "PlayLogicFixture.h"

// Play and stop requests.
class StartTest : public PlayLogicFixture {
protected:
    Answer playAs(int argsType, int rolesType, const CMPath& path, int index,
                  const OrvoRoles& track = {}) {
        OrvoRoles mediaRoles;
        if (!path.isEmpty())
            mediaRoles.setPath(path);
        mediaRoles.setType(rolesType);
        OrvoPlayLogicPlayArgs args;
        args.setMediaRoles(mediaRoles);
        args.setTrackRoles(track);
        args.setIndex(index);
        args.setType(argsType);
        return request(OrvoPlayLogicRequestKind::Play, args);
    }

    void makeEverythingDirty() {
        probe().shuffle() = true;
        probe().repeat() = PlayListPlayLogic::RepeatOne;
        probe().order() = {1, 0};
        probe().cursor() = 1;
        probe().announcedRoles().setValue(OrvoValue::fromI32(1));
        probe().errorCount() = 4;
        probe().nextMediaPrepared() = true;
    }
};

TEST_F(StartTest, aListPlaysFromTheIndexAndKeepsThePosition) {
    PlayListBase* pl = playList("abcde");
    EXPECT_EQ(-1, pl->getLastSequenceNumber());
    const Answer answer = play(pl, 2);
    EXPECT_TRUE(answer.answered);
    EXPECT_FALSE(answer.failed);
    EXPECT_FALSE(answer.value.isValid());
    EXPECT_EQ(QStringList{"play c@2"}, player.commands);
    EXPECT_EQ(pl, probe().current());
    EXPECT_EQ(2, pl->getLastSequenceNumber());
    EXPECT_TRUE(probe().announcedRoles().isEmpty());
    const int uid = pl->getUid();
    restart();
    EXPECT_EQ(2, manager()->getPlayListByUid(uid)->getLastSequenceNumber());
}

TEST_F(StartTest, theWayOfAStartIsLogged) {
    PlayListBase* pl = playList("abcde");
    const LogCapture log("PlayListsPlayLogic");
    play(pl, 2);
    const QString path = itemsPath(pl).toString();
    ASSERT_EQ(5, log.lines().size());
    EXPECT_TRUE(
        log.lines().at(0).startsWith("TRACE Enter virtual void PlayListPlayLogic::playInternal("));
    EXPECT_TRUE(log.lines().at(0).contains("): args="));
    EXPECT_EQ("DEBUG mediaRoles path is " + path + " - playing list", log.lines().at(1));
    EXPECT_TRUE(log.lines().at(2).startsWith("TRACE Enter void PlayListPlayLogic::startPlayback("));
    EXPECT_TRUE(log.lines().at(2).endsWith(" track=2"));
    EXPECT_EQ("DEBUG index=2 size=5", log.lines().at(3));
    EXPECT_TRUE(log.lines().at(4).endsWith("setShuffleEnabled(bool): enabled=0"));
}

TEST_F(StartTest, thePlayModeComesFromTheListsFlags) {
    for (const bool shuffle : {false, true}) {
        for (const bool repeatAll : {false, true}) {
            PlayListBase* pl = playList("abcde");
            pl->setShuffle(shuffle);
            pl->setRepeatAll(repeatAll);
            changeMode(OrvoPlayerPlayMode::RepeatOne);
            play(pl, 3);
            EXPECT_EQ((repeatAll ? 4 : 0) + (shuffle ? 1 : 0), logic()->playMode());
            EXPECT_EQ(shuffle, probe().shuffle());
            EXPECT_EQ(repeatAll ? PlayListPlayLogic::RepeatAll : PlayListPlayLogic::RepeatOff,
                      probe().repeat());
            EXPECT_EQ(shuffle, pl->getShuffle());
            EXPECT_EQ(repeatAll, pl->getRepeatAll());
        }
    }
}

TEST_F(StartTest, aShuffledListBeginsItsOrderWithTheIndex) {
    PlayListBase* pl = playList("abcdefgh");
    pl->setShuffle(true);
    for (int index = 0; index < 8; ++index) {
        play(pl, index);
        EXPECT_EQ(index, probe().order().value(0));
        EXPECT_EQ(0, probe().cursor());
        EXPECT_TRUE(isPermutation(probe().order(), 8));
    }
}

TEST_F(StartTest, aStartForgetsWhatWasBefore) {
    playing("ab");
    makeEverythingDirty();
    play(playList("xyz"), 0);
    expectInitialMembers();
}

TEST_F(StartTest, theListThatIsLeftKeepsItsModes) {
    PlayListBase* left = playing("abcd", 1);
    changeMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
    play(playList("xyz"), 0);
    EXPECT_TRUE(left->getShuffle());
    EXPECT_TRUE(left->getRepeatAll());
    EXPECT_EQ(1, left->getLastSequenceNumber());
}

TEST_F(StartTest, theSameListStartedAgainIsHeardOnce) {
    PlayListBase* pl = playList("abc");
    pl->setShuffle(true);
    play(pl, 0);
    play(pl, 1);
    add(pl, Position::Append, "de");
    EXPECT_TRUE(isPermutation(probe().order(), 5));
}

TEST_F(StartTest, aTrackWithoutAContainerPlaysAlone) {
    PlayListBase* pl = playing("abc", 1);
    OrvoRoles track = logic()->getTrackAbsolute(2);
    makeEverythingDirty();
    LogCapture log("PlayListsPlayLogic");
    EXPECT_FALSE(playAs(1, 0, CMPath(), 5, track).failed);
    EXPECT_TRUE(log.contains("DEBUG", "mediaRoles path is empty - playing trackRoles directly"));
    EXPECT_EQ(QStringList{"play c@2"}, player.takeCommands());
    EXPECT_EQ(nullptr, probe().current());
    // The track carries a number, but no list plays whose position it could be.
    EXPECT_EQ(1, pl->getLastSequenceNumber());
    expectInitialMembers();
    log.clear();
    next();
    previous();
    EXPECT_EQ(QStringList(), player.takeCommands());
    EXPECT_TRUE(log.contains("DEBUG", "Reached last item of playlist for nextInternal"));
    EXPECT_TRUE(log.contains("DEBUG", "Reached first item of playlist for previousInternal"));
}

TEST_F(StartTest, aContainerOfAnotherKindOfRequestPlaysFromTheBeginning) {
    PlayListBase* pl = playList("abc");
    EXPECT_FALSE(playAs(2, OrvoRolesType::Container, itemsPath(pl), 2).failed);
    EXPECT_EQ(QStringList{"play a@0"}, player.takeCommands());
    EXPECT_EQ(pl, probe().current());
}

TEST_F(StartTest, whatIsNoContainerIsAnsweredAndForgetsWhatPlayed) {
    PlayListBase* pl = playing("abc", 1);
    for (const int rolesType : {0, 3, 101}) {
        const Answer answer = playAs(0, rolesType, itemsPath(pl), 2);
        EXPECT_TRUE(answer.answered);
        EXPECT_FALSE(answer.failed);
        EXPECT_EQ(QStringList(), player.commands);
        EXPECT_EQ(nullptr, probe().current());
    }
}

TEST_F(StartTest, aContainerThatIsNoPlayListIsRefused) {
    playList("abc");
    const CMPath items = OrvoPlayListPlGetItemsPath();
    for (const CMPath& path :
         {items, items + "abc", items + "0", items + "3/tracks", items + "99999999999"}) {
        const LogCapture log("PlayListsPlayLogic");
        const Answer answer = play(path, 1);
        EXPECT_TRUE(answer.answered);
        ASSERT_TRUE(answer.failed) << qPrintable(path.toString());
        EXPECT_EQ("PlayList Error", answer.error.name());
        EXPECT_EQ("Play called on invalid playlist container", answer.message());
        EXPECT_EQ(CMError::DefaultTitle().toString(), answer.error.title().toString());
        EXPECT_EQ(
            QStringList{"playInternal called for invalid playlist container " + path.toString()},
            log.errors());
        EXPECT_EQ(nullptr, probe().current());
        EXPECT_EQ(QStringList(), player.commands);
    }
    EXPECT_TRUE(playAs(0, OrvoRolesType::Container, items + "abc", 1).failed);
}

TEST_F(StartTest, aPlayListThatIsNotThereIsSilentlyNothing) {
    playList("abc");
    for (const char* uid : {"4711", "-1"}) {
        const LogCapture log("PlayListsPlayLogic");
        const Answer answer = play(OrvoPlayListPlGetItemsPath() + uid, 0);
        EXPECT_TRUE(answer.answered);
        EXPECT_FALSE(answer.failed);
        EXPECT_FALSE(answer.value.isValid());
        EXPECT_EQ(QStringList(), log.errors());
        EXPECT_EQ(QStringList(), player.commands);
        EXPECT_EQ(nullptr, probe().current());
    }
}

TEST_F(StartTest, aForeignContainerIsSilentlyNothing) {
    for (const CMPath& path : {CMPath("files:music/1"), OrvoPlayListClGetItemsPath() + "1"}) {
        EXPECT_FALSE(play(path, 0).failed);
        EXPECT_EQ(QStringList(), player.commands);
        EXPECT_EQ(nullptr, probe().current());
    }
}

TEST_F(StartTest, thePlayQueuePlays) {
    PlayListBase* queue = queueOf("abc");
    EXPECT_FALSE(play(OrvoPlayListPqGetItemsPath(), 1).failed);
    EXPECT_EQ(QStringList{"play b@1"}, player.commands);
    EXPECT_EQ(queue, probe().current());
    EXPECT_EQ(1, queue->getLastSequenceNumber());
}

TEST_F(StartTest, anIndexThatTheListLacksPlaysEmptyRoles) {
    PlayListBase* pl = playList("abc");
    pl->setShuffle(true);
    pl->setLastSequenceNumber(1);
    for (const int index : {3, -1}) {
        EXPECT_FALSE(play(pl, index).failed);
        EXPECT_EQ(QStringList{"play nothing"}, player.takeCommands());
        // The position stays, and the order begins with it.
        EXPECT_EQ(1, pl->getLastSequenceNumber());
        EXPECT_EQ(1, probe().order().value(0));
    }
}

TEST_F(StartTest, aTrackWithoutANumberIsPlayedAndMovesNothing) {
    PlayListBase* pl = playing("abc", 1);
    OrvoRoles track;
    track.setTitle(TrString(QStringLiteral("radio")));
    track.setValue(OrvoValue::fromString("2"));
    logic()->playTrackRoles(track);
    EXPECT_EQ(QStringList{"play radio@-"}, player.takeCommands());
    EXPECT_EQ(1, pl->getLastSequenceNumber());
}

TEST_F(StartTest, stopForgetsTheListAndLeavesItsPosition) {
    PlayListBase* pl = playing("abc", 2);
    const LogCapture log("PlayListsPlayLogic");
    const Answer answer = stop();
    EXPECT_TRUE(answer.answered);
    EXPECT_FALSE(answer.failed);
    ASSERT_EQ(1, log.lines().size());
    EXPECT_TRUE(log.lines().first().startsWith(
        "TRACE Enter virtual void PlayListPlayLogic::stopInternal("));
    EXPECT_EQ(QStringList{"stop"}, player.takeCommands());
    EXPECT_EQ(nullptr, probe().current());
    EXPECT_EQ(2, pl->getLastSequenceNumber());
    EXPECT_TRUE(logic()->data().isEmpty());
    pl->clearItems();
    EXPECT_EQ(QStringList(), player.takeCommands());
}
