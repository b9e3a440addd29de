#include <functional>

#include "PlayLogicFixture.h"

// Next, previous and current, and the current playlist.
class NavigationTest : public PlayLogicFixture {
protected:
    static QString text(const OrvoRoles& roles) { return RecordingPlayer::text(roles); }

    void setStreamerError(bool withCode = true) {
        OrvoError error;
        error.setMessage(QStringLiteral("broken"));
        if (withCode)
            error.setCode(QStringLiteral("CannotPlay"));
        OrvoPlayLogicData data = logic()->data();
        data.setStreamerError(error);
        logic()->setData(data);
    }

    const QString noNextLeft = QStringLiteral(
        "Playlist should start from beginning again, but does not contain any tracks");
    const QString noPreviousLeft = QStringLiteral(
        "Playlist should wrap around and continue with last track, but does not contain any tracks");
};

TEST_F(NavigationTest, startsWithoutAPlayListAndWithEmptyMembers) {
    EXPECT_EQ(nullptr, probe().current());
    expectInitialMembers();
}

TEST_F(NavigationTest, withoutAPlayListThereIsNoTrack) {
    playList("abc");
    for (const bool shuffle : {false, true}) {
        probe().shuffle() = shuffle;
        logic()->setRepeatMode(PlayListPlayLogic::RepeatAll);
        const LogCapture log("PlayListsPlayLogic");
        EXPECT_TRUE(logic()->getTrackRelative(0).isEmpty());
        EXPECT_TRUE(logic()->getTrackAbsolute(0).isEmpty());
        EXPECT_TRUE(logic()->getCurrentTrack().isEmpty());
        EXPECT_TRUE(logic()->getNextTrack().isEmpty());
        EXPECT_TRUE(logic()->getPreviousTrack().isEmpty());
        // Nothing wraps where there is nothing to wrap around.
        EXPECT_EQ(QStringList(), log.texts("WARN"));
        EXPECT_EQ(QStringList(), log.errors());
    }
}

TEST_F(NavigationTest, tracksAreCountedFromThePosition) {
    playing("abcde", 2);
    EXPECT_EQ("c@2", text(logic()->getCurrentTrack()));
    EXPECT_EQ("c@2", text(logic()->getTrackRelative(0)));
    EXPECT_EQ("e@4", text(logic()->getTrackRelative(2)));
    EXPECT_EQ("a@0", text(logic()->getTrackRelative(-2)));
    EXPECT_EQ("b@1", text(logic()->getTrackAbsolute(1)));
}

TEST_F(NavigationTest, aTrackPastAnEndIsNoneAndADebugLine) {
    playing("abc", 1);
    LogCapture log("PlayListsPlayLogic");
    EXPECT_TRUE(logic()->getTrackRelative(2).isEmpty());
    EXPECT_TRUE(logic()->getTrackRelative(-2).isEmpty());
    EXPECT_EQ(
        (QStringList{"DEBUG Reached last item of playlist", "DEBUG Reached last item of playlist"}),
        log.lines());
    log.clear();
    EXPECT_TRUE(logic()->getTrackAbsolute(3).isEmpty());
    EXPECT_TRUE(logic()->getTrackAbsolute(-1).isEmpty());
    EXPECT_EQ(2, log.texts("DEBUG").size());
    EXPECT_EQ(2, log.lines().size());
}

TEST_F(NavigationTest, aTrackNamesItsPlayLogicAndItsItem) {
    PlayListBase* pl = playing("abc");
    const OrvoPlayListItem item = pl->getItems(1, 1).first();
    const OrvoRoles roles = logic()->getTrackRelative(1);
    EXPECT_EQ(QString::number(item.uid()), roles.id());
    EXPECT_EQ(OrvoPlayListsPlayLogicPath(), roles.mediaData().metaData().playLogicPath());
    EXPECT_EQ(OrvoPlayListItemPath() + QString::number(item.uid()), roles.path());
}

TEST_F(NavigationTest, nextPlaysTheNextTrackAndMovesThePosition) {
    PlayListBase* pl = playing("abc");
    const Answer answer = next();
    EXPECT_TRUE(answer.answered);
    EXPECT_FALSE(answer.failed);
    EXPECT_FALSE(answer.value.isValid());
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
    EXPECT_EQ(1, pl->getLastSequenceNumber());
    EXPECT_EQ("b@1", text(probe().announcedRoles()));
    EXPECT_FALSE(probe().nextMediaPrepared());
    player.start();
    EXPECT_EQ(1, pl->getLastSequenceNumber());
    EXPECT_TRUE(probe().announcedRoles().isEmpty());
    EXPECT_EQ("b@1", published());
}

TEST_F(NavigationTest, previousPlaysTheTrackBeforeAndMovesThePosition) {
    PlayListBase* pl = playing("abc", 2);
    const Answer answer = previous();
    EXPECT_TRUE(answer.answered);
    EXPECT_FALSE(answer.failed);
    EXPECT_FALSE(answer.value.isValid());
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
    EXPECT_EQ(1, pl->getLastSequenceNumber());
    EXPECT_EQ("b@1", text(probe().announcedRoles()));
}

TEST_F(NavigationTest, nextOnTheLastTrackAndPreviousOnTheFirstOnlyLog) {
    struct Row {
        int playing;
        std::function<Answer()> step;
        const char* line;
    };
    const Row rows[] = {
        {2, [this] { return next(); }, "DEBUG Reached last item of playlist for nextInternal"},
        {0, [this] { return previous(); },
         "DEBUG Reached first item of playlist for previousInternal"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        PlayListBase* pl = playing("abc", row.playing);
        const LogCapture log("PlayListsPlayLogic");
        const Answer answer = row.step();
        EXPECT_TRUE(answer.answered);
        EXPECT_FALSE(answer.failed);
        EXPECT_EQ((QStringList{"DEBUG Reached last item of playlist", row.line}), log.lines());
        EXPECT_EQ(QStringList(), player.commands);
        EXPECT_EQ(row.playing, pl->getLastSequenceNumber());
    }
}

TEST_F(NavigationTest, onlyRepeatAllWrapsAround) {
    playing("abc", 2);
    changeMode(OrvoPlayerPlayMode::RepeatOne);
    next();
    EXPECT_EQ(QStringList(), player.takeCommands());
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    next();
    EXPECT_EQ(QStringList{"play a@0"}, player.takeCommands());
    previous();
    EXPECT_EQ(QStringList{"play c@2"}, player.takeCommands());
}

TEST_F(NavigationTest, repeatOneDoesNotHoldNextAndPrevious) {
    playing("abc", 1);
    changeMode(OrvoPlayerPlayMode::RepeatOne);
    next();
    EXPECT_EQ(QStringList{"play c@2"}, player.takeCommands());
    previous();
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
}

TEST_F(NavigationTest, repeatAllOnAnEmptyListWarns) {
    for (const bool shuffle : {false, true}) {
        PlayListBase* pl = playList("");
        pl->setRepeatAll(true);
        pl->setShuffle(shuffle);
        play(pl, 0);
        player.commands.clear();
        LogCapture log("PlayListsPlayLogic");
        EXPECT_FALSE(next().failed);
        EXPECT_EQ(QStringList{noNextLeft}, log.texts("WARN"));
        EXPECT_TRUE(log.contains("DEBUG", "Reached last item of playlist for nextInternal"));
        log.clear();
        EXPECT_FALSE(previous().failed);
        EXPECT_EQ(QStringList{noPreviousLeft}, log.texts("WARN"));
        EXPECT_TRUE(log.contains("DEBUG", "Reached first item of playlist for previousInternal"));
        EXPECT_EQ(QStringList(), player.commands);
    }
}

TEST_F(NavigationTest, shuffledNextAndPreviousFollowTheOrder) {
    PlayListBase* pl = playingShuffled("abcd", {2, 0, 3, 1}, 0);
    next();
    next();
    EXPECT_EQ((QStringList{"play a@0", "play d@3"}), player.takeCommands());
    EXPECT_EQ(2, probe().cursor());
    EXPECT_EQ(3, pl->getLastSequenceNumber());
    previous();
    EXPECT_EQ(QStringList{"play a@0"}, player.takeCommands());
    EXPECT_EQ(1, probe().cursor());
}

TEST_F(NavigationTest, theShuffledWalkEndsAtItsEndsWithoutRepeat) {
    playingShuffled("abc", {2, 0, 1}, 2);
    next();
    EXPECT_EQ(QStringList(), player.takeCommands());
    EXPECT_EQ(2, probe().cursor());
    probe().cursor() = 0;
    previous();
    EXPECT_EQ(QStringList(), player.takeCommands());
    EXPECT_EQ(0, probe().cursor());
}

TEST_F(NavigationTest, withAnEmptyOrderRepeatAllWrapsToTheEndsOfTheList) {
    playingShuffled("abc", {1, 0, 2}, 0);
    probe().repeat() = PlayListPlayLogic::RepeatAll;
    probe().order().clear();
    previous();
    EXPECT_EQ(QStringList{"play c@2"}, player.takeCommands());
    next();
    EXPECT_EQ(QStringList{"play a@0"}, player.takeCommands());
}

TEST_F(NavigationTest, aNumberInTheOrderThatTheListLacksWraps) {
    playingShuffled("abc", {1, 7, 8, 0}, 0);
    next();
    EXPECT_EQ(QStringList(), player.takeCommands());
    probe().repeat() = PlayListPlayLogic::RepeatAll;
    // To the first of the order forwards, to the highest number backwards.
    next();
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
    previous();
    EXPECT_EQ(QStringList{"play c@2"}, player.takeCommands());
}

TEST_F(NavigationTest, previousWrapsToTheHighestNumberAlsoWhenShuffled) {
    playingShuffled("abcd", {1, 3, 0, 9}, 0);
    probe().repeat() = PlayListPlayLogic::RepeatAll;
    // The last of the order is no item of the list any more.
    previous();
    EXPECT_EQ(QStringList{"play d@3"}, player.takeCommands());
}

TEST_F(NavigationTest, fiveFailuresInARowAreSkippedTheSixthEnds) {
    playing("abcdefgh");
    setStreamerError();
    const LogCapture log("PlayListsPlayLogic");
    for (const char* track : {"b@1", "c@2", "d@3", "e@4", "f@5"}) {
        EXPECT_FALSE(next().failed);
        EXPECT_EQ(QStringList{QString("play %1").arg(track)}, player.takeCommands());
    }
    EXPECT_EQ(QStringList(), log.errors());
    EXPECT_FALSE(next().failed);
    EXPECT_EQ(QStringList(), player.takeCommands());
    EXPECT_EQ(QStringList{"Reached maximum error count exiting"}, log.errors());
    EXPECT_EQ(6, probe().errorCount());
}

TEST_F(NavigationTest, theErrorLimitHoldsUnderRepeatAllAndShuffle) {
    playingShuffled("abc", {0, 1, 2}, 0);
    probe().repeat() = PlayListPlayLogic::RepeatAll;
    setStreamerError();
    probe().errorCount() = 5;
    EXPECT_TRUE(logic()->getNextTrack().isEmpty());
    EXPECT_EQ(0, probe().cursor());
}

TEST_F(NavigationTest, aNextWithoutAnErrorForgetsTheFailures) {
    playing("abcdefgh");
    setStreamerError();
    next();
    next();
    EXPECT_EQ(2, probe().errorCount());
    player.start(); // the error is gone from the data with it
    EXPECT_EQ(2, probe().errorCount());
    next();
    EXPECT_EQ(0, probe().errorCount());
}

TEST_F(NavigationTest, anErrorWithoutACodeCountsNothing) {
    playing("abc");
    probe().errorCount() = 3;
    setStreamerError(false);
    next();
    EXPECT_EQ(0, probe().errorCount());
}

TEST_F(NavigationTest, previousCountsNoFailures) {
    playing("abc", 2);
    setStreamerError();
    probe().errorCount() = 5;
    previous();
    EXPECT_EQ(QStringList{"play b@1"}, player.takeCommands());
    EXPECT_EQ(5, probe().errorCount());
}

TEST_F(NavigationTest, sixBrokenTracksInARowEndPlayback) {
    PlayListBase* pl = playList("abcdefgh");
    play(pl, 0);
    player.commands.clear();
    const LogCapture log("PlayListsPlayLogic");
    for (int i = 0; i < 6; ++i)
        player.fail();
    EXPECT_EQ((QStringList{"play b@1", "play c@2", "play d@3", "play e@4", "play f@5", "ended"}),
              player.commands);
    EXPECT_EQ(QStringList{"Reached maximum error count exiting"}, log.errors());
}

TEST_F(NavigationTest, theRepeatModeIsKeptByTheListOnlyWhenItRepeatsAll) {
    PlayListBase* pl = playing("abc");
    logic()->setRepeatMode(PlayListPlayLogic::RepeatAll);
    EXPECT_TRUE(pl->getRepeatAll());
    logic()->setRepeatMode(PlayListPlayLogic::RepeatOne);
    EXPECT_FALSE(pl->getRepeatAll());
    EXPECT_EQ(PlayListPlayLogic::RepeatOne, probe().repeat());
    // The list's own signal found nothing to publish.
    EXPECT_EQ(OrvoPlayerPlayMode::Normal, logic()->playMode());
}

TEST_F(NavigationTest, theListThatWasLeftIsNotFollowed) {
    PlayListBase* left = playing("abc");
    PlayListBase* now = playList("xyz");
    logic()->setCurrentPlayList(now);
    logic()->setCurrentPlayList(now); // not heard twice
    left->clearItems();
    left->setShuffle(true);
    EXPECT_EQ(QStringList(), player.takeCommands());
    EXPECT_EQ(OrvoPlayerPlayMode::Normal, logic()->playMode());
    now->clearItems();
    EXPECT_EQ(QStringList{"asked to stop: 0"}, player.takeCommands());
    logic()->setCurrentPlayList(nullptr);
    logic()->setCurrentPlayList(nullptr);
    add(now, Position::Append, "z");
    now->clearItems();
    EXPECT_EQ(QStringList(), player.takeCommands());
}

TEST_F(NavigationTest, deletingThePlayingListStops) {
    for (const bool stopsAtOnce : {false, true}) {
        player.stopsThePlayLogic = stopsAtOnce;
        PlayListBase* other = playList("xyz");
        PlayListBase* pl = playing("abc");
        EXPECT_TRUE(manager()->deletePlayList(other));
        EXPECT_EQ(QStringList(), player.takeCommands());
        EXPECT_EQ(pl, probe().current());
        EXPECT_TRUE(manager()->deletePlayList(pl));
        EXPECT_EQ(nullptr, probe().current());
        EXPECT_EQ("asked to stop: 0", player.commands.value(0));
        EXPECT_EQ(stopsAtOnce ? 2 : 1, player.takeCommands().size());
        next();
        EXPECT_EQ(QStringList(), player.takeCommands());
    }
}

TEST_F(NavigationTest, withoutAPlayListADeletionStopsNothing) {
    EXPECT_TRUE(manager()->deletePlayList(playList("abc")));
    EXPECT_EQ(QStringList(), player.commands);
}

TEST_F(NavigationTest, aRequestThatCannotBeAnsweredIsFatal) {
    playing("abc");
    for (const auto kind :
         {OrvoPlayLogicRequestKind::Play, OrvoPlayLogicRequestKind::Next,
          OrvoPlayLogicRequestKind::Previous, OrvoPlayLogicRequestKind::ChangePlayMode}) {
        OrvoPlayLogicRequest args;
        args.setKind(kind);
        const CMSetDataRequest unanswerable(OrvoPlayListsPlayLogicPath(), args.toVariant());
        EXPECT_DEATH(logic()->setDataRequest(unanswerable), "") << int(kind);
    }
}
