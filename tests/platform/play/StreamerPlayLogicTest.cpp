#include <gtest/gtest.h>

#include <QSignalSpy>

#include "CMRootWorker.h"
#include "EventLoop.h"
#include "LogCapture.h"
#include "TestPlayLogic.h"

namespace {

using Kind = PlayLogicCommand::Kind;

class CommandLog : public PlayerCommands {
public:
    CommandLog() { PlayLogicInterface::playerInstance()->setPlayer(this); }
    ~CommandLog() override { PlayLogicInterface::playerInstance()->setPlayer(nullptr); }
    void submit(const PlayLogicCommand& command) override { commands.append(command); }

    QList<Kind> kinds() const {
        QList<Kind> result;
        for (const PlayLogicCommand& command : commands)
            result.append(command.kind);
        return result;
    }
    QList<PlayLogicCommand> commands;
};

class StreamerPlayLogicTest : public ::testing::Test {
protected:
    CMReply<QVariant> request(OrvoPlayLogicRequestKind::Enum kind, OrvoPlayLogicRequest args = {}) {
        args.setKind(kind);
        return request(args);
    }
    CMReply<QVariant> request(const OrvoPlayLogicRequest& args) {
        const CMReply<QVariant> reply;
        CMRoot()->invoke(logic.path(), args.toVariant(), reply);
        return reply;
    }
    static CMReply<QVariant> mode(TestPlayLogic& logic, OrvoPlayerPlayMode::Enum mode) {
        OrvoPlayLogicChangePlayModeArgs args;
        args.setKind(OrvoPlayLogicRequestKind::ChangePlayMode);
        args.setPlayMode(mode);
        const CMReply<QVariant> reply;
        CMRoot()->invoke(logic.path(), args.toVariant(), reply);
        return reply;
    }

    CMRootWorker root;
    CommandLog player;
    CMNodesWorker worker{{}, QStringLiteral("Source")};
    TestPlayLogic logic{worker.nodes(), CMPath(QStringLiteral("source:playlogic"))};
};

TEST_F(StreamerPlayLogicTest, everyKindOfRequestReachesItsOverride) {
    const QList<QPair<OrvoPlayLogicRequestKind::Enum, QString>> rows = {
        {OrvoPlayLogicRequestKind::Play, "play"},
        {OrvoPlayLogicRequestKind::Stop, "stop"},
        {OrvoPlayLogicRequestKind::Next, "next"},
        {OrvoPlayLogicRequestKind::Previous, "previous"},
        {OrvoPlayLogicRequestKind::ChangePlayMode, "mode:normal"},
    };
    for (const auto& row : rows) {
        logic.calls.clear();
        OrvoPlayLogicChangePlayModeArgs args;
        args.setPlayMode(OrvoPlayerPlayMode::Normal);
        const CMReply<QVariant> reply = request(row.first, args);
        EXPECT_EQ(logic.calls, QStringList{row.second});
        EXPECT_TRUE(reply.isFinished() && !reply.isError()) << row.second.toStdString();
    }
}

TEST_F(StreamerPlayLogicTest, aPlayRequestBringsItsArguments) {
    OrvoPlayLogicPlayArgs args;
    OrvoRoles media;
    media.setPath(CMPath(QStringLiteral("source:list/5")));
    args.setMediaRoles(media);
    args.setIndex(7);
    args.setType(OrvoPlayLogicPlayArgs::ContainerType);
    request(OrvoPlayLogicRequestKind::Play, args);
    EXPECT_EQ(logic.lastArgs.mediaRoles(), media);
    EXPECT_EQ(logic.lastArgs.index(), 7);
    EXPECT_EQ(logic.lastArgs.type(), 1);
}

TEST_F(StreamerPlayLogicTest, anUnknownKindIsRefused) {
    for (const QVariant& value :
         {QVariant(), QVariant(5), QVariant(QVariantHash{{"request", "dance"}}),
          QVariant(QVariantHash{{"request", -1}})}) {
        const CMReply<QVariant> reply;
        CMRoot()->invoke(logic.path(), value, reply);
        EXPECT_TRUE(reply.isError());
        EXPECT_EQ(reply.error().name(), CMError::NotSupported());
    }
    EXPECT_TRUE(logic.calls.isEmpty());
    EXPECT_TRUE(player.commands.isEmpty());
}

TEST_F(StreamerPlayLogicTest, aRequestThatIsNotAnsweredGetsAnError) {
    logic.answers = false;
    CMReply<QVariant> travelling;
    QString error;
    travelling.onError([&](const CMError& e) { error = e.name(); });
    OrvoPlayLogicRequest args;
    args.setKind(OrvoPlayLogicRequestKind::Next);
    CMRoot()->invoke(logic.path(), args.toVariant(), travelling);
    travelling = {};
    EXPECT_EQ(error, CMError::NotAnswered());
}

TEST_F(StreamerPlayLogicTest, whatIsNotOverriddenIsRefusedExceptStop) {
    StreamerPlayLogic bare(worker.nodes(), CMPath(QStringLiteral("source:bare")));
    for (int kind = OrvoPlayLogicRequestKind::Play;
         kind <= OrvoPlayLogicRequestKind::ChangePlayMode; ++kind) {
        OrvoPlayLogicRequest args;
        args.setKind(OrvoPlayLogicRequestKind::Enum(kind));
        const CMReply<QVariant> reply;
        CMRoot()->invoke(bare.path(), args.toVariant(), reply);
        EXPECT_EQ(reply.isError(), kind != OrvoPlayLogicRequestKind::Stop) << kind;
    }
}

TEST_F(StreamerPlayLogicTest, stopStopsThePlayerEmptiesTheDataAndAnswers) {
    logic.itemStarted(TestPlayLogic::track(3, "file:///a"));
    OrvoPlayLogicStopArgs args;
    args.setReason(OrvoPlayerStopReason::TakenOver);
    const CMReply<QVariant> reply = request(OrvoPlayLogicRequestKind::Stop, args);
    EXPECT_TRUE(reply.isFinished() && !reply.isError());
    EXPECT_EQ(logic.lastStopReason, 1);
    EXPECT_EQ(player.kinds(), QList<Kind>{Kind::Stop});
    EXPECT_TRUE(logic.data().isEmpty());
    logic.itemStarted(TestPlayLogic::track(4, "file:///b"));
    EXPECT_EQ(logic.calls.last(), "started:>t4") << "what was stopped is no old item";
}

TEST_F(StreamerPlayLogicTest, commandsGoToThePlayerInOrderWithWhatTheyCarry) {
    const OrvoRoles a = TestPlayLogic::track(0, "file:///a");
    logic.sendSetNextMediaCommand(a, {{"k", 1}});
    logic.sendNoNextMediaCommand();
    logic.sendPlayCommand(a, {{"k", 2}});
    logic.playbackEnded();
    EXPECT_EQ(player.kinds(), (QList<Kind>{Kind::SetNextMedia, Kind::NoNextMedia, Kind::Play,
                                           Kind::PlaybackEnded}));
    EXPECT_EQ(player.commands.at(0).roles, a);
    EXPECT_EQ(player.commands.at(0).params.value("k"), 1);
    EXPECT_EQ(player.commands.at(2).roles, a);
    EXPECT_EQ(player.commands.at(2).params, (QHash<QString, QVariant>{{"k", 2}}));
    for (const PlayLogicCommand& command : player.commands)
        EXPECT_EQ(command.from, &logic);
}

TEST_F(StreamerPlayLogicTest, theFirstPlayCommandAfterAPlayRequestTakesItsStartPosition) {
    logic.setTracks({"file:///a", "file:///b"});
    OrvoPlayLogicPlayArgs args;
    args.setIndex(1);
    args.setStartPosition(1500);
    args.setPaused(true);
    OrvoRoles media;
    media.setTitle(QStringLiteral("Party"));
    args.setMediaRoles(media);
    request(OrvoPlayLogicRequestKind::Play, args);
    logic.playTrack(0);
    ASSERT_EQ(player.commands.size(), 2);
    EXPECT_EQ(player.commands.at(0).params,
              (QHash<QString, QVariant>{{"startPosition", 1500}, {"paused", true}}));
    EXPECT_TRUE(player.commands.at(1).params.isEmpty());
    EXPECT_EQ(logic.data().mediaRoles().title().toString(), "Party");
}

TEST_F(StreamerPlayLogicTest, aPlayCommandIsRequestedWhileARequestForSoundIsNotAnswered) {
    logic.setTracks({"file:///a", "file:///b", "file:///c"});
    const auto requested = [this] {
        QList<bool> result;
        for (const PlayLogicCommand& command : std::exchange(player.commands, {}))
            result.append(command.requested);
        return result;
    };
    for (const auto kind : {OrvoPlayLogicRequestKind::Play, OrvoPlayLogicRequestKind::Next,
                            OrvoPlayLogicRequestKind::Previous}) {
        request(kind);
        logic.playTrack(1);
        EXPECT_EQ(requested(), (QList<bool>{true, false})) << kind;
    }
    logic.current = 2;
    request(OrvoPlayLogicRequestKind::Next);
    EXPECT_TRUE(player.commands.isEmpty()) << "there is no next one";
    logic.playTrack(0);
    logic.announce(1);
    EXPECT_EQ(requested(), (QList<bool>{false, false}));

    class Slow : public TestPlayLogic {
    public:
        using TestPlayLogic::TestPlayLogic;
        void nextInternal(const CMSetDataRequest& request) override {
            waiting.append(request.reply());
        }
        QList<CMReply<QVariant>> waiting;
    } slow(worker.nodes(), CMPath(QStringLiteral("source:slow")));
    slow.setTracks({"file:///a"});
    OrvoPlayLogicRequest next;
    next.setKind(OrvoPlayLogicRequestKind::Next);
    for (int i = 0; i < 2; ++i)
        CMRoot()->invoke(slow.path(), next.toVariant(), {});
    slow.waiting.at(0).setValue({});
    slow.playTrack(0);
    slow.waiting.at(1).setError(CMError(QStringLiteral("no")));
    slow.playTrack(0);
    CMRoot()->invoke(slow.path(), next.toVariant(), {});
    slow.waiting.clear();
    slow.playTrack(0);
    EXPECT_EQ(requested(), (QList<bool>{true, false, false}))
        << "as long as the last one is open; one that is not answered any more is over, too";
}

TEST_F(StreamerPlayLogicTest, aRequestThatIsAnsweredAfterItsPlayLogicWentDoesNoHarm) {
    CMReply<QVariant> waiting;
    {
        TestPlayLogic brief(worker.nodes(), CMPath(QStringLiteral("source:brief")));
        brief.answers = false;
        OrvoPlayLogicRequest next;
        next.setKind(OrvoPlayLogicRequestKind::Next);
        CMRoot()->invoke(brief.path(), next.toVariant(), waiting);
    }
    waiting.setValue({});
}

TEST_F(StreamerPlayLogicTest, aRequestThatLedToNothingLeavesItsErrorAlone) {
    logic.itemStarted(TestPlayLogic::track(0, "file:///a"));
    OrvoError error;
    error.setCode(QStringLiteral("NothingToPlay"));
    logic.nothingPlayed(error);
    OrvoPlayLogicData expected;
    expected.setError(error);
    EXPECT_EQ(logic.data(), expected);
    logic.itemStarted(TestPlayLogic::track(1, "file:///b"));
    EXPECT_EQ(logic.calls.last(), "started:>t1");
    EXPECT_FALSE(logic.data().containsError());
}

TEST_F(StreamerPlayLogicTest, aStartedItemIsPublishedOnceWithOldAndNewRoles) {
    const QSignalSpy spy(&logic, &PlayLogicBase::dataChanged);
    const OrvoRoles a = TestPlayLogic::track(0, "file:///a");
    const OrvoRoles b = TestPlayLogic::track(1, "file:///b");
    logic.itemStarted(a);
    logic.itemStarted(b);
    EXPECT_EQ(logic.calls, (QStringList{"started:>t0", "started:t0>t1"}));
    EXPECT_EQ(logic.data().trackRoles(), b);
    EXPECT_EQ(spy.count(), 2);
}

TEST_F(StreamerPlayLogicTest, aFailureIsInTheDataBeforeAWayOnIsSought) {
    logic.setTracks({"file:///a", "file:///b", "file:///c"});
    logic.itemStarted(TestPlayLogic::track(0, "file:///a"));
    OrvoError error;
    error.setCode(QStringLiteral("CannotPlay"));
    logic.itemFailed(TestPlayLogic::track(1, "file:///b"), error);
    EXPECT_EQ(logic.calls.last(), "resume after error");
    EXPECT_EQ(logic.data().streamerError().code(), "CannotPlay");
    EXPECT_EQ(logic.data().trackRoles().value().i32(), 1);
    logic.itemStarted(TestPlayLogic::track(2, "file:///c"));
    EXPECT_FALSE(logic.data().containsStreamerError());
}

TEST_F(StreamerPlayLogicTest, theEndKeepsTheErrorAndForgetsTheTrack) {
    OrvoPlayLogicControls controls;
    controls.setPause(true);
    OrvoPlayLogicData data;
    data.setControls(controls);
    data.setTrackRoles(TestPlayLogic::track(0, "file:///a"));
    data.setStreamerError(OrvoError(QVariantHash{{"code", "X"}}));
    logic.setData(data);
    logic.playbackEnded();
    EXPECT_EQ(logic.data().streamerError().code(), "X");
    EXPECT_FALSE(logic.data().containsTrackRoles());
    EXPECT_FALSE(logic.data().containsControls());
}

TEST_F(StreamerPlayLogicTest, settingTheSameDataIsNoChange) {
    OrvoPlayLogicData data;
    data.setTrackRoles(TestPlayLogic::track(0, "file:///a"));
    const QSignalSpy spy(&logic, &PlayLogicBase::dataChanged);
    logic.setData(data);
    logic.setData(data);
    EXPECT_EQ(spy.count(), 1);
}

TEST_F(StreamerPlayLogicTest, aModePublishedByTheWayBecomesAQueuedRequest) {
    const QSignalSpy spy(&logic, &PlayLogicBase::playModeChanged);
    logic.setPlayMode(OrvoPlayerPlayMode::Shuffle);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_TRUE(logic.calls.isEmpty()) << "not before the event loop";
    turnEventLoop();
    EXPECT_EQ(logic.calls, QStringList{"mode:shuffle"});
    turnEventLoop();
    EXPECT_EQ(logic.calls.size(), 1) << "the request does not breed another one";
    EXPECT_EQ(spy.count(), 1);
}

TEST_F(StreamerPlayLogicTest, aModeSetWithinAPlayOrModeRequestStaysThere) {
    mode(logic, OrvoPlayerPlayMode::RepeatAll);
    turnEventLoop();
    EXPECT_EQ(logic.calls, QStringList{"mode:repeatAll"});

    class ModalLogic : public TestPlayLogic {
    public:
        using TestPlayLogic::TestPlayLogic;
        void playInternal(const CMSetDataRequest& request,
                          const OrvoPlayLogicPlayArgs& args) override {
            setPlayMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
            TestPlayLogic::playInternal(request, args);
        }
    } modal(worker.nodes(), CMPath(QStringLiteral("source:modal")));
    OrvoPlayLogicRequest args;
    args.setKind(OrvoPlayLogicRequestKind::Play);
    CMRoot()->invoke(modal.path(), args.toVariant(), {});
    turnEventLoop();
    EXPECT_EQ(modal.calls, QStringList{"play"});
    EXPECT_EQ(modal.playMode(), OrvoPlayerPlayMode::ShuffleRepeatAll);
}

TEST_F(StreamerPlayLogicTest, aQueuedModeIsDroppedWhenSomethingNewerDecided) {
    logic.setPlayMode(OrvoPlayerPlayMode::Shuffle);
    mode(logic, OrvoPlayerPlayMode::RepeatAll);
    turnEventLoop();
    EXPECT_EQ(logic.calls, QStringList{"mode:repeatAll"});

    logic.calls.clear();
    logic.setPlayMode(OrvoPlayerPlayMode::Shuffle);
    request(OrvoPlayLogicRequestKind::Play);
    turnEventLoop();
    EXPECT_EQ(logic.calls, QStringList{"play"}) << "the new list has a mode of its own";

    logic.calls.clear();
    logic.setPlayMode(OrvoPlayerPlayMode::Normal);
    logic.setPlayMode(OrvoPlayerPlayMode::RepeatAll);
    turnEventLoop();
    EXPECT_EQ(logic.calls, QStringList{"mode:repeatAll"}) << "of two, the last one";
}

TEST_F(StreamerPlayLogicTest, theModeThatHoldsAlreadySendsNoEvent) {
    const QSignalSpy spy(&logic, &PlayLogicBase::playModeChanged);
    logic.setPlayMode(OrvoPlayerPlayMode::Normal);
    turnEventLoop();
    EXPECT_EQ(spy.count(), 0);
    EXPECT_TRUE(logic.calls.isEmpty());
}

TEST_F(StreamerPlayLogicTest, aDestroyedPlayLogicLeavesNothingBehind) {
    {
        TestPlayLogic gone(worker.nodes(), CMPath(QStringLiteral("source:gone")));
        gone.setPlayMode(OrvoPlayerPlayMode::Shuffle);
    }
    turnEventLoop();
    EXPECT_EQ(worker.nodes()->find(CMPath(QStringLiteral("source:gone"))), nullptr);
}

} // namespace
