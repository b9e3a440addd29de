#include "PlayerFixture.h"
#include "SoundServer.h"

namespace {

class PlayerTransportTest : public PlayerFixture {
protected:
    void playSilentlyInRealTime() { startPlayer(QStringLiteral("auto")); }
};

using PlayerRecordingTest = PlayerRecordingFixture;

TEST_F(PlayerTransportTest, aListPlaysFromTheGivenIndexToItsEnd) {
    logic.setTracks({sound("a.wav", 50), sound("b.wav", 50), sound("c.wav", 50)});
    const auto reply = play(logic, 1);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_TRUE(reply.isFinished() && !reply.isError());
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t1", "prepare", "started:t1>t2",
                                        "prepare", "resume"}));
    EXPECT_FALSE(logic.data().containsTrackRoles());
}

TEST_F(PlayerRecordingTest, threeFilesOfAListComeOutEndToEndToTheSample) {
    const Pcm a = SoundFiles::pcm(20011, 1);
    const Pcm b = SoundFiles::pcm(30007, 2);
    const Pcm c = SoundFiles::pcm(10009, 3);
    logic.setTracks({files.flac("a.flac", a), files.flac("b.flac", b), files.flac("c.flac", c)});
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_TRUE(recorded() == SoundFiles::joined({a, b, c}));
}

TEST_F(PlayerTransportTest, withNothingPlayingEachRequestSaysSo) {
    for (const CMPath& path : {OrvoPlayerPausePath(), OrvoPlayerResumePath(), OrvoPlayerNextPath(),
                               OrvoPlayerPreviousPath(), OrvoPlayerSetPlayModePath()}) {
        const auto reply = done(path, {{"playMode", "normal"}});
        EXPECT_TRUE(reply.isError()) << path.toString().toStdString();
        EXPECT_EQ(reply.error().message().toString(), "Nothing is playing.");
    }
    EXPECT_EQ(done(OrvoPlayerSeekTimePath(), {{"time", 5}}).error().message().toString(),
              "Nothing is playing.");
    EXPECT_FALSE(done(OrvoPlayerStopPath()).isError()) << "stopped is what was wanted";
}

TEST_F(PlayerTransportTest, wrongArgumentsAreRefusedAndChangeNothing) {
    logic.setTracks({sound("a.wav", 300)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    const QList<QPair<CMPath, QVariantHash>> rows = {
        {OrvoPlayerSeekTimePath(), {}},
        {OrvoPlayerSeekTimePath(), {{"time", -1}}},
        {OrvoPlayerSeekTimePath(), {{"time", "soon"}}},
        {OrvoPlayerSetVolumePath(), {}},
        {OrvoPlayerSetVolumePath(), {{"volume", 101}}},
        {OrvoPlayerSetVolumePath(), {{"volume", 12.5}}},
        {OrvoPlayerSetPlayModePath(), {}},
        {OrvoPlayerSetPlayModePath(), {{"playMode", 6}}},
        {OrvoPlayerSetPlayModePath(), {{"playMode", -1}}},
        {OrvoPlayerSetPlayModePath(), {{"playMode", "sideways"}}},
        {OrvoPlayerPlayContainerPath(), {}},
    };
    for (const auto& row : rows) {
        const auto reply = done(row.first, row.second);
        ASSERT_TRUE(reply.isError()) << row.first.toString().toStdString();
        EXPECT_EQ(reply.error().name(), CMError::InvalidValue());
    }
    EXPECT_EQ(done(OrvoPlayerSetPlayModePath(), {{"playMode", "repeatOne"}}).error().name(),
              CMError::InvalidValue())
        << "this play logic does not offer it";
    EXPECT_EQ(state(), "paused");
    EXPECT_EQ(position(), 0);
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare"}));
}

TEST_F(PlayerTransportTest, aPlayLogicThatIsNoneIsRefusedAndWhatPlaysGoesOn) {
    logic.setTracks({sound("a.wav", 100), sound("b.wav", 100)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    CMNode plain(CMPath(QStringLiteral("source:plain")));
    plain.setNodes(source.nodes());
    for (const char* path : {"player:playContainer", "player:next", "player:stop", "player:state",
                             "source:plain", "source:nobody", "nowhere:at/all"}) {
        const auto reply =
            done(OrvoPlayerPlayContainerPath(),
                 {{"mediaRoles", containerOf(CMPath(QString::fromLatin1(path))).toHash()}});
        EXPECT_EQ(reply.error().name(), CMError::InvalidValue()) << path;
        EXPECT_EQ(reply.error().message().toString(), "There is no play logic for this.") << path;
    }
    EXPECT_EQ(state(), "paused");
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_TRUE(logic.calls.contains("started:t0>t1")) << "what was announced still holds";
    EXPECT_FALSE(logic.calls.contains("stop"));
}

TEST_F(PlayerTransportTest, theTracksOwnPlayLogicServesWhereTheContainerNamesNone) {
    logic.setTracks({sound("a.wav", 30)});
    PlayLogicInterface::playerInstance()->playContainer({}, container(logic), 0, 0, false);
    EXPECT_TRUE(waitForCall(logic, "started:>t0"));
}

TEST_F(PlayerTransportTest, pauseAndResumeStartNothingAnew) {
    logic.setTracks({sound("a.wav", 2000)});
    playSilentlyInRealTime();
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    EXPECT_FALSE(done(OrvoPlayerPausePath()).isError());
    EXPECT_EQ(state(), "paused");
    const qint64 at = position();
    turnEventsFor(150);
    EXPECT_NEAR(double(position()), double(at), 25.0);
    EXPECT_FALSE(done(OrvoPlayerPausePath()).isError()) << "once more does no harm";
    EXPECT_FALSE(done(OrvoPlayerResumePath()).isError());
    EXPECT_EQ(state(), "playing");
    ASSERT_TRUE(waitUntil([&] { return position() > at + 100; }));
    EXPECT_EQ(logic.calls.filter("started").size(), 1);
    EXPECT_EQ(logic.calls.count("prepare"), 1);
}

TEST_F(PlayerTransportTest, aPlayLogicThatForbidsPauseAndSeekIsObeyed) {
    class Strict : public TestPlayLogic {
    public:
        using TestPlayLogic::TestPlayLogic;
        OrvoPlayLogicData mediaPlaybackStarted(const OrvoRoles& a, const OrvoRoles& b) override {
            OrvoPlayLogicData data = TestPlayLogic::mediaPlaybackStarted(a, b);
            OrvoPlayLogicControls controls;
            controls.setPause(false);
            controls.setSeekTime(false);
            data.setControls(controls);
            return data;
        }
    } strict(source.nodes(), CMPath(QStringLiteral("source:strict")));
    strict.setTracks({sound("a.wav", 1000)});
    playSilentlyInRealTime();
    play(strict);
    ASSERT_TRUE(waitForState("playing"));
    EXPECT_EQ(done(OrvoPlayerPausePath()).error().message().toString(), "This cannot be paused.");
    EXPECT_EQ(done(OrvoPlayerSeekTimePath(), {{"time", 1}}).error().message().toString(),
              "This cannot be sought in.");
    EXPECT_EQ(state(), "playing");
}

TEST_F(PlayerRecordingTest, startPositionAndPauseBelongToTheFirstTrackOnly) {
    const Pcm a = SoundFiles::pcm(44100, 1);
    const Pcm b = SoundFiles::pcm(4410, 2);
    logic.setTracks({files.wav("a.wav", a), files.wav("b.wav", b)});
    play(logic, 0, 500, true);
    ASSERT_TRUE(waitForState("paused"));
    EXPECT_EQ(position(), 500);
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForCall(logic, "resume"));
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_TRUE(recorded() == SoundFiles::joined({Pcm(a.begin() + 44100, a.end()), b}));
}

TEST_F(PlayerRecordingTest, seekGoesOnThereAndBeyondTheEndIsTheEnd) {
    const Pcm a = SoundFiles::pcm(44100, 1);
    logic.setTracks({files.wav("a.wav", a)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    EXPECT_FALSE(done(OrvoPlayerSeekTimePath(), {{"time", 750}}).isError());
    EXPECT_EQ(position(), 750);
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForTheEnd());
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    EXPECT_FALSE(done(OrvoPlayerSeekTimePath(), {{"time", 99999}}).isError());
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_TRUE(recorded() == Pcm(a.begin() + 44100 / 4 * 3 * 2, a.end()));
}

TEST_F(PlayerTransportTest, nextAndPreviousGoToThePlayLogicAndPlayOnAfterAPause) {
    logic.setTracks({sound("a.wav", 2000), sound("b.wav", 2000), sound("c.wav", 2000)});
    playSilentlyInRealTime();
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "started:>t0"));
    done(OrvoPlayerPausePath());
    EXPECT_FALSE(done(OrvoPlayerNextPath()).isError());
    ASSERT_TRUE(waitForCall(logic, "started:t0>t1"));
    EXPECT_EQ(state(), "playing");
    EXPECT_FALSE(done(OrvoPlayerPreviousPath()).isError());
    ASSERT_TRUE(waitForCall(logic, "started:t1>t0"));
    done(OrvoPlayerPreviousPath());
    turnEventsFor(50);
    EXPECT_EQ(logic.calls,
              (QStringList{"play", "started:>t0", "prepare", "next", "started:t0>t1", "prepare",
                           "previous", "started:t1>t0", "prepare", "previous"}));
}

TEST_F(PlayerTransportTest, whatNoRequestCausedKeepsAPause) {
    logic.setTracks({sound("a.wav", 2000), sound("b.wav", 2000)});
    playSilentlyInRealTime();
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    turnEventsFor(60);
    done(OrvoPlayerPausePath());
    logic.playTrack(1);
    ASSERT_TRUE(waitForCall(logic, "started:t0>t1"));
    EXPECT_EQ(state(), "paused");
    turnEventsFor(150);
    EXPECT_EQ(position(), 0) << "loaded, at its beginning";
    EXPECT_FALSE(done(OrvoPlayerResumePath()).isError());
    EXPECT_EQ(state(), "playing");
    EXPECT_TRUE(waitUntil([&] { return position() > 50; }));
    logic.playTrack(0);
    ASSERT_TRUE(waitForCall(logic, "started:t1>t0"));
    EXPECT_EQ(state(), "playing") << "nothing was paused any more";
}

TEST_F(PlayerTransportTest, whatPlaysOnARequestThatIsAnsweredLaterDoesNotKeepAPause) {
    class Slow : public TestPlayLogic {
    public:
        using TestPlayLogic::TestPlayLogic;
        void nextInternal(const CMSetDataRequest& request) override { waiting = request.reply(); }
        CMReply<QVariant> waiting;
    } slow(source.nodes(), CMPath(QStringLiteral("source:slow")));
    slow.setTracks({sound("a.wav", 2000), sound("b.wav", 2000), sound("c.wav", 2000)});
    playSilentlyInRealTime();
    play(slow, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    invoke(OrvoPlayerNextPath());
    turnEventsFor(30);
    slow.playTrack(1);
    slow.waiting.setValue({});
    ASSERT_TRUE(waitForCall(slow, "started:t0>t1"));
    EXPECT_EQ(state(), "playing");
    done(OrvoPlayerPausePath());
    slow.playTrack(2);
    ASSERT_TRUE(waitForCall(slow, "started:t1>t2"));
    EXPECT_EQ(state(), "paused") << "the request is over";
}

TEST_F(PlayerTransportTest, aPauseInTheSameTurnAsPlayOrNextHolds) {
    logic.setTracks({sound("a.wav", 2000), sound("b.wav", 2000), sound("c.wav", 2000)});
    playSilentlyInRealTime();
    play(logic);
    const auto paused = invoke(OrvoPlayerPausePath());
    ASSERT_TRUE(waitForCall(logic, "started:>t0"));
    EXPECT_TRUE(paused.isFinished() && !paused.isError());
    EXPECT_EQ(state(), "paused");

    invoke(OrvoPlayerNextPath());
    invoke(OrvoPlayerPausePath());
    ASSERT_TRUE(waitForCall(logic, "started:t0>t1"));
    EXPECT_EQ(state(), "paused");
    turnEventsFor(100);
    EXPECT_EQ(position(), 0);

    invoke(OrvoPlayerNextPath());
    invoke(OrvoPlayerPausePath());
    invoke(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForCall(logic, "started:t1>t2"));
    EXPECT_EQ(state(), "playing") << "the last word counts";
}

TEST_F(PlayerTransportTest, aPauseWhileAnItemOpensHolds) {
    SoundServer server({});
    logic.setTracks({server.url("/silent"), sound("b.wav", 2000)});
    playSilentlyInRealTime();
    play(logic);
    ASSERT_TRUE(waitForState("opening"));
    EXPECT_FALSE(done(OrvoPlayerPausePath()).isError());
    ASSERT_TRUE(waitForCall(logic, "started:>t1"));
    EXPECT_EQ(state(), "paused") << "also for what comes in its place";
}

TEST_F(PlayerTransportTest, theModeGoesToThePlayLogicAndComesBackAsAValue) {
    logic.setTracks({sound("a.wav", 300)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    EXPECT_FALSE(done(OrvoPlayerSetPlayModePath(), {{"playMode", "shuffle"}}).isError());
    EXPECT_EQ(logic.lastMode, OrvoPlayerPlayMode::Shuffle);
    EXPECT_EQ(OrvoValue(CMRoot()->getValue(OrvoPlayerPlayModePath())).string(), "shuffle");
    EXPECT_FALSE(done(OrvoPlayerSetPlayModePath(), {{"playMode", 4}}).isError());
    EXPECT_EQ(OrvoValue(CMRoot()->getValue(OrvoPlayerPlayModePath())).string(), "repeatAll");
}

TEST_F(PlayerTransportTest, stopReachesThePlayLogicWithItsReason) {
    logic.setTracks({sound("a.wav", 300)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    const auto reply = PlayLogicInterface::playerInstance()->stop(7);
    ASSERT_TRUE(waitUntil([&] { return reply.isFinished(); }));
    EXPECT_FALSE(reply.isError());
    EXPECT_EQ(logic.calls.last(), "stop");
    EXPECT_EQ(logic.lastStopReason, 7);
    EXPECT_EQ(state(), "stopped");
    EXPECT_TRUE(CMRoot()->getValue(OrvoPlayerDataPath()).toHash().isEmpty());
    turnEventsFor(20);
    EXPECT_TRUE(done(OrvoPlayerNextPath()).isError()) << "no play logic is in charge after a stop";
}

TEST_F(PlayerTransportTest, aStopInTheSameTurnAsPlayOrNextHolds) {
    logic.setTracks({sound("a.wav", 2000), sound("b.wav", 2000)});
    other.setTracks({sound("c.wav", 2000)});
    const auto settle = [this] {
        turnEventsFor(60);
        return state();
    };
    playSilentlyInRealTime();
    play(logic);
    auto stopped = invoke(OrvoPlayerStopPath());
    EXPECT_EQ(settle(), "stopped");
    EXPECT_TRUE(stopped.isFinished() && !stopped.isError());
    EXPECT_EQ(logic.calls, (QStringList{"play", "stop"})) << "it knows that it does not play";

    play(logic);
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    logic.calls.clear();
    invoke(OrvoPlayerNextPath());
    invoke(OrvoPlayerStopPath());
    EXPECT_EQ(settle(), "stopped");
    EXPECT_EQ(logic.calls, (QStringList{"next", "stop"}));

    play(logic);
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    logic.calls.clear();
    play(other);
    stopped = invoke(OrvoPlayerStopPath());
    EXPECT_EQ(settle(), "stopped");
    EXPECT_TRUE(stopped.isFinished() && !stopped.isError());
    EXPECT_EQ(logic.calls, QStringList{"stop"});
    EXPECT_EQ(other.calls, (QStringList{"play", "stop"}));
    EXPECT_TRUE(done(OrvoPlayerNextPath()).isError()) << "no play logic is in charge";

    invoke(OrvoPlayerStopPath());
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "prepare")) << "what is asked for after the stop plays";
}

TEST_F(PlayerTransportTest, aStopRequestToThePlayLogicItselfStopsThePlayer) {
    logic.setTracks({sound("a.wav", 300)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    done(logic.path(), {{"request", "stop"}});
    EXPECT_TRUE(waitForState("stopped"));
    EXPECT_EQ(logic.calls.count("stop"), 1);
}

TEST_F(PlayerTransportTest, twoPlayLogicsTakeOverFromEachOther) {
    logic.setTracks({sound("a.wav", 2000)});
    other.setTracks({sound("b.wav", 2000)});
    playSilentlyInRealTime();
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "started:>t0"));
    play(other);
    ASSERT_TRUE(waitForCall(other, "started:>t0"));
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "stop"}));
    EXPECT_EQ(logic.lastStopReason, OrvoPlayerStopReason::TakenOver);
    EXPECT_TRUE(logic.data().isEmpty());
    EXPECT_EQ(CMRoot()->getValue(OrvoPlayerDataPath()).toHash(), other.data().toHash());
    play(logic);
    ASSERT_TRUE(waitUntil([&] { return logic.calls.count("started:>t0") == 2; }));
    EXPECT_EQ(other.calls, (QStringList{"play", "started:>t0", "prepare", "stop"}));
    turnEventsFor(20);
    EXPECT_EQ(state(), "playing");
}

TEST_F(PlayerTransportTest, aRefusedPlayRequestLeavesTheOtherPlayLogicAlone) {
    logic.setTracks({sound("a.wav", 100), sound("b.wav", 100)});
    StreamerPlayLogic unable(source.nodes(), CMPath(QStringLiteral("source:unable")));
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    EXPECT_TRUE(
        done(OrvoPlayerPlayContainerPath(), {{"mediaRoles", containerOf(unable.path()).toHash()}})
            .isError());
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_TRUE(logic.calls.contains("started:t0>t1"));
    EXPECT_FALSE(logic.calls.contains("stop"));
}

TEST_F(PlayerTransportTest, aPlayRequestThatLeadsToNothingStopsWhatPlaysAndSaysSo) {
    logic.setTracks({sound("a.wav", 2000), sound("b.wav", 2000)});
    playSilentlyInRealTime();
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    turnEventsFor(60);
    play(logic, 99);
    ASSERT_TRUE(waitForState("stopped"));
    const OrvoPlayLogicData told(CMRoot()->getValue(OrvoPlayerDataPath()));
    EXPECT_EQ(told.error().code(), "NothingToPlay");
    EXPECT_EQ(told.error().message(), "There is nothing to play.");
    EXPECT_FALSE(told.containsTrackRoles());
    EXPECT_FALSE(told.containsControls());
    EXPECT_TRUE(CMRoot()->getValue(OrvoPlayerNextMediaPath()).toHash().isEmpty());
    EXPECT_EQ(done(OrvoPlayerPausePath()).error().message().toString(), "Nothing is playing.");

    logic.calls.clear();
    play(logic, 1, 700);
    ASSERT_TRUE(waitForCall(logic, "started:>t1"));
    EXPECT_FALSE(OrvoPlayLogicData(CMRoot()->getValue(OrvoPlayerDataPath())).containsError());
}

TEST_F(PlayerTransportTest, theStartOfAPlayRequestThatLedToNothingIsForgotten) {
    logic.setTracks({sound("a.wav", 2000)});
    playSilentlyInRealTime();
    play(logic, 99, 700, true);
    ASSERT_TRUE(waitUntil([&] { return logic.data().containsError(); }));
    logic.playTrack(0);
    ASSERT_TRUE(waitForCall(logic, "started:>t0"));
    EXPECT_LT(position(), 700);
}

TEST_F(PlayerTransportTest, aPlayLogicThatTakesARequestAndPlaysNothingStopsTheOther) {
    logic.setTracks({sound("a.wav", 2000)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    play(other, 5);
    ASSERT_TRUE(waitForState("stopped"));
    turnEventsFor(20);
    EXPECT_EQ(logic.calls.last(), "stop");
    EXPECT_EQ(logic.lastStopReason, OrvoPlayerStopReason::TakenOver);
    EXPECT_EQ(OrvoPlayLogicData(CMRoot()->getValue(OrvoPlayerDataPath())).error().code(),
              "NothingToPlay");
}

TEST_F(PlayerTransportTest, aRequestForNothingThatWasReplacedMeanwhileStopsNothing) {
    logic.setTracks({sound("a.wav", 2000), sound("b.wav", 2000)});
    playSilentlyInRealTime();
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    play(logic, 99);
    play(logic, 1);
    ASSERT_TRUE(waitUntil([&] { return logic.calls.last() == "prepare" && logic.current == 1; }));
    turnEventsFor(50);
    EXPECT_EQ(state(), "playing");
    EXPECT_FALSE(logic.data().containsError());
}

TEST_F(PlayerTransportTest, anItemWithoutAnythingIsNothingToPlay) {
    logic.setTracks({sound("a.wav", 2000)});
    logic.tracks.append(OrvoRoles());
    playSilentlyInRealTime();
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    logic.calls.clear();
    play(logic, 1);
    ASSERT_TRUE(waitForState("stopped"));
    turnEventsFor(50);
    EXPECT_EQ(state(), "stopped");
    EXPECT_FALSE(logic.calls.contains("resume after error"));
    EXPECT_EQ(logic.data().error().message(), "There is nothing to play.");
    EXPECT_FALSE(logic.data().containsTrackRoles());
}

TEST_F(PlayerTransportTest, commandsOfAPlayLogicThatIsNotInChargeAreRefused) {
    logic.setTracks({sound("a.wav", 300)});
    other.setTracks({sound("b.wav", 300)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    const QList<CMReply<QVariant>> replies = {
        other.sendSetNextMediaCommand(other.tracks.first(), {}), other.sendNoNextMediaCommand(),
        other.playbackEnded()};
    ASSERT_TRUE(waitUntil([&] { return replies.last().isFinished(); }));
    for (const auto& reply : replies)
        EXPECT_TRUE(reply.isError());
    EXPECT_EQ(state(), "paused");
}

TEST_F(PlayerTransportTest, aPlayLogicThatGoesTakesItsSoundWithIt) {
    auto gone =
        std::make_unique<TestPlayLogic>(source.nodes(), CMPath(QStringLiteral("source:gone")));
    gone->setTracks({sound("a.wav", 2000)});
    play(*gone, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    gone->sendPlayCommand(gone->tracks.first(), {});
    gone.reset();
    ASSERT_TRUE(waitForState("stopped"));
    turnEventsFor(30);
    EXPECT_EQ(state(), "stopped");
    EXPECT_TRUE(done(OrvoPlayerNextPath()).isError());
}

TEST_F(PlayerTransportTest, afterTheEndThePlayLogicStaysInCharge) {
    logic.setTracks({sound("a.wav", 20), sound("b.wav", 20)});
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_FALSE(done(OrvoPlayerPreviousPath()).isError());
    EXPECT_TRUE(waitUntil([&] { return logic.calls.count("started:>t0") == 2; }));
}

} // namespace
