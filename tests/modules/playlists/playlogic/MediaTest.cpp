
#include <QSignalSpy>

#include "PlayLogicFixture.h"

// What the player asks for and reports: the next media, a started item, the way on.
class MediaTest : public PlayLogicFixture {
protected:
    static QString text(const OrvoRoles& roles) { return RecordingPlayer::text(roles); }

    static OrvoRoles rolesWith(const OrvoMetaData& metaData) {
        OrvoMediaData mediaData;
        mediaData.setMetaData(metaData);
        OrvoRoles roles;
        roles.setMediaData(mediaData);
        return roles;
    }
};

TEST_F(MediaTest, theNextTrackIsAnnouncedAndThePositionWaits) {
    PlayListBase* pl = playing("abc");
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList{"next b@1"}, player.takeCommands());
    EXPECT_EQ("b@1", text(probe().announcedRoles()));
    EXPECT_TRUE(probe().nextMediaPrepared());
    EXPECT_EQ(0, pl->getLastSequenceNumber());
    player.startAnnounced();
    EXPECT_EQ(1, pl->getLastSequenceNumber());
    EXPECT_TRUE(probe().announcedRoles().isEmpty());
    EXPECT_FALSE(probe().nextMediaPrepared());
    EXPECT_EQ("b@1", published());
}

TEST_F(MediaTest, repeatOneAnnouncesTheSameItemAgain) {
    for (const bool shuffle : {false, true}) {
        PlayListBase* pl = playing("abc", 1);
        changeMode(shuffle ? OrvoPlayerPlayMode::ShuffleRepeatOne : OrvoPlayerPlayMode::RepeatOne);
        const int cursor = probe().cursor();
        for (int i = 0; i < 3; ++i) {
            logic()->prepareNextMedia();
            EXPECT_EQ(QStringList{"next b@1"}, player.takeCommands());
            EXPECT_EQ(cursor, probe().cursor());
            player.startAnnounced();
            EXPECT_EQ(1, pl->getLastSequenceNumber());
        }
    }
}

TEST_F(MediaTest, atTheEndNothingIsAnnounced) {
    PlayListBase* pl = playing("abc", 2);
    LogCapture log("PlayListsPlayLogic");
    logic()->prepareNextMedia();
    EXPECT_EQ((QStringList{"DEBUG Reached last item of playlist",
                           "DEBUG Reached last item of playlist for prepareNextMedia"}),
              log.lines());
    EXPECT_EQ(QStringList{"no next"}, player.takeCommands());
    EXPECT_TRUE(probe().nextMediaPrepared());
    EXPECT_TRUE(probe().announcedRoles().isEmpty());
    EXPECT_EQ(2, pl->getLastSequenceNumber());
}

TEST_F(MediaTest, repeatAllAnnouncesTheFirstAfterTheLast) {
    playing("abc", 2);
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList{"next a@0"}, player.takeCommands());
}

TEST_F(MediaTest, preparingAgainUnderShuffleAnnouncesTheSameItem) {
    PlayListBase* pl = playingShuffled("abcd", {2, 0, 3, 1}, 0);
    logic()->prepareNextMedia();
    logic()->prepareNextMedia();
    EXPECT_EQ((QStringList{"next a@0", "next a@0"}), player.takeCommands());
    EXPECT_EQ(1, probe().cursor());
    next();
    EXPECT_EQ(QStringList{"play a@0"}, player.takeCommands());
    EXPECT_EQ(0, pl->getLastSequenceNumber());
    EXPECT_EQ(1, probe().cursor());
}

TEST_F(MediaTest, underShuffleATrackThatCannotBeReadAtTheMomentIsNotSkipped) {
    playingShuffled("abc", {0, 1, 2}, 0);
    run("BEGIN EXCLUSIVE");
    logic()->prepareNextMedia();
    next();
    EXPECT_EQ(QStringList{"no next"}, player.takeCommands());
    disconnect();
    player.end();
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
}

TEST_F(MediaTest, underShuffleAPreviousTrackThatCannotBeReadLeavesTheCursor) {
    playingShuffled("abc", {0, 1, 2}, 1);
    run("BEGIN EXCLUSIVE");
    previous();
    EXPECT_EQ(QStringList(), player.takeCommands());
    disconnect();
    next();
    EXPECT_EQ(QStringList{"play c@2"}, player.takeCommands());
}

TEST_F(MediaTest, aNextOrPreviousThatLeadsNowhereLeavesTheAnnouncement) {
    playingShuffled("abc", {2, 0, 1}, 0);
    logic()->prepareNextMedia();
    previous();
    EXPECT_EQ(QStringList{"next a@0"}, player.takeCommands());
    EXPECT_EQ(1, probe().cursor());
    player.end();
    logic()->prepareNextMedia();
    EXPECT_EQ(QStringList{"next b@1"}, player.takeCommands());
}

TEST_F(MediaTest, previousUnderShuffleCountsFromWhatPlays) {
    playingShuffled("abcd", {2, 0, 3, 1}, 1);
    logic()->prepareNextMedia();
    previous();
    EXPECT_EQ((QStringList{"next d@3", "play c@2"}), player.takeCommands());
    EXPECT_EQ(0, probe().cursor());
}

TEST_F(MediaTest, controlsOfATrackOfAList) {
    playing("abc");
    const OrvoPlayLogicControls controls = logic()->data().controls();
    EXPECT_EQ(6, controls.toHash().size());
    EXPECT_TRUE(controls.pause());
    EXPECT_TRUE(controls.next());
    EXPECT_TRUE(controls.previous());
    EXPECT_TRUE(controls.seekTime());
    EXPECT_TRUE(controls.seekBytes());
    EXPECT_EQ(logic()->playModesSupported().toHash(), controls.playMode().toHash());
}

TEST_F(MediaTest, withoutAListThereIsNoNextAndPrevious) {
    const OrvoPlayLogicControls controls = logic()->mediaPlaybackStarted({}, {}).controls();
    EXPECT_TRUE(controls.pause());
    EXPECT_FALSE(controls.next());
    EXPECT_FALSE(controls.previous());
    EXPECT_TRUE(controls.seekTime());
    EXPECT_TRUE(controls.seekBytes());
}

TEST_F(MediaTest, theTrackSaysWhetherItCanBeSought) {
    struct Row {
        int time, bytes; // -1: not told
        bool seekTime, seekBytes;
    };
    const Row rows[] = {{-1, -1, true, true}, {0, -1, false, true}, {-1, 0, true, false},
                        {0, 0, false, false}, {1, 0, true, false},  {0, 1, false, true},
                        {1, 1, true, true}};
    for (const Row& row : rows) {
        OrvoMetaData metaData;
        if (row.time >= 0)
            metaData.setAllowSeekTime(row.time == 1);
        if (row.bytes >= 0)
            metaData.setAllowSeekBytes(row.bytes == 1);
        const LogCapture log("PlayListsPlayLogic");
        // The track that ended has no say.
        OrvoMetaData old;
        old.setAllowSeekTime(!row.seekTime);
        old.setAllowSeekBytes(!row.seekBytes);
        const OrvoPlayLogicControls controls =
            logic()->mediaPlaybackStarted(rolesWith(old), rolesWith(metaData)).controls();
        EXPECT_EQ(row.seekTime, controls.seekTime());
        EXPECT_EQ(row.seekBytes, controls.seekBytes());
        EXPECT_TRUE(
            log.contains("DEBUG", QString("Enabling seekTime control: %1").arg(int(row.seekTime))));
        EXPECT_TRUE(log.contains(
            "DEBUG", QString("Enabling seekBytes control: %1").arg(int(row.seekBytes))));
    }
}

TEST_F(MediaTest, aStartedItemIsLoggedInOrder) {
    playing("abc");
    const LogCapture log("PlayListsPlayLogic");
    logic()->mediaPlaybackStarted(logic()->getTrackAbsolute(0), logic()->getTrackAbsolute(1));
    const QStringList begins = {
        "DEBUG newRoles=", "DEBUG oldRoles=", "DEBUG Enabling seekTime control: 1",
        "DEBUG Enabling seekBytes control: 1", "DEBUG New playlogic data: "};
    ASSERT_EQ(begins.size(), log.lines().size());
    for (int i = 0; i < begins.size(); ++i)
        EXPECT_TRUE(log.lines().at(i).startsWith(begins.at(i))) << qPrintable(log.lines().at(i));
    EXPECT_TRUE(log.lines().at(0).contains("b.flac"));
    EXPECT_TRUE(log.lines().at(1).contains("a.flac"));
}

TEST_F(MediaTest, aStartTakesTheErrorsAwayAndLeavesTheRest) {
    playing("abc");
    OrvoError error;
    error.setCode("CannotPlay");
    OrvoPlayLogicData data = logic()->data();
    data.setError(error);
    data.setStreamerError(error);
    data.setAttribute("mine", 4711);
    data.removeAttribute(OrvoPlayLogicData::Controls());
    logic()->setData(data);
    const OrvoPlayLogicData result = logic()->mediaPlaybackStarted({}, {});
    EXPECT_FALSE(result.containsError());
    EXPECT_FALSE(result.containsStreamerError());
    EXPECT_EQ(4711, result.attribute("mine").toInt());
    EXPECT_EQ("a@0", text(result.trackRoles()));
    EXPECT_TRUE(result.containsControls());
    // It is returned, not published: the caller does that.
    EXPECT_EQ(data, logic()->data());
}

TEST_F(MediaTest, withoutANumberAStartedItemMovesNothing) {
    PlayListBase* pl = playing("abc", 1);
    probe().announcedRoles().setTitle(TrString(QStringLiteral("radio")));
    logic()->mediaPlaybackStarted({}, {});
    EXPECT_EQ(1, pl->getLastSequenceNumber());
    EXPECT_EQ("radio@-", text(probe().announcedRoles()));
}

TEST_F(MediaTest, afterAStopAStartedItemMovesNothing) {
    PlayListBase* pl = playing("abc");
    logic()->prepareNextMedia();
    stop();
    logic()->mediaPlaybackStarted({}, {});
    logic()->tryResumePlayback();
    EXPECT_EQ(0, pl->getLastSequenceNumber());
    EXPECT_EQ("ended", player.commands.last());
}

TEST_F(MediaTest, resumingGoesOnBehindThePreparedItem) {
    PlayListBase* pl = playing("abc");
    logic()->prepareNextMedia();
    player.takeCommands();
    logic()->tryResumePlayback();
    EXPECT_EQ(QStringList{"play c@2"}, player.takeCommands());
    EXPECT_EQ(2, pl->getLastSequenceNumber());
    EXPECT_TRUE(probe().announcedRoles().isEmpty());
}

TEST_F(MediaTest, resumingAtTheEndEndsPlayback) {
    PlayListBase* pl = playing("abc", 2);
    logic()->tryResumePlayback();
    EXPECT_EQ(QStringList{"ended"}, player.takeCommands());
    EXPECT_EQ(2, pl->getLastSequenceNumber());
    // The list stays the current one: previous still works.
    previous();
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
}

TEST_F(MediaTest, resumingDoesNotHoldOnToRepeatOne) {
    playing("abc", 0);
    changeMode(OrvoPlayerPlayMode::RepeatOne);
    logic()->tryResumePlayback();
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
}

TEST_F(MediaTest, thePublishedNumberFollowsThePosition) {
    PlayListBase* pl = playing("abc", 1);
    OrvoValue crowded = OrvoValue::fromI32(1);
    crowded.setAttribute("note", "old");
    OrvoPlayLogicData data = logic()->data();
    OrvoRoles roles = data.trackRoles();
    roles.setValue(crowded);
    data.setTrackRoles(roles);
    logic()->setData(data);

    const QSignalSpy changes(logic(), &PlayLogicBase::dataChanged);
    logic()->updateSequenceNumberInData();
    EXPECT_EQ(0, changes.count());
    EXPECT_EQ(crowded, logic()->data().trackRoles().value());

    pl->setLastSequenceNumber(2);
    logic()->updateSequenceNumberInData();
    EXPECT_EQ(1, changes.count());
    EXPECT_EQ("b@2", published());
    EXPECT_EQ(OrvoValue::fromI32(2), logic()->data().trackRoles().value());
}

TEST_F(MediaTest, withoutAPublishedNumberThereIsALogLine) {
    PlayListBase* pl = playing("abc", 1);
    pl->setLastSequenceNumber(2);
    logic()->setData({});
    LogCapture log("PlayListsPlayLogic");
    logic()->updateSequenceNumberInData();
    EXPECT_EQ(QStringList{"DEBUG No current sequence number in playlogic data"}, log.lines());
    EXPECT_TRUE(logic()->data().isEmpty());
    log.clear();
    logic()->setCurrentPlayList(nullptr);
    logic()->updateSequenceNumberInData();
    EXPECT_EQ(QStringList(), log.lines());
}
