#include "PlayerFixture.h"

namespace {

// What is announced, when, and what becomes of it.
class PlayerAnnouncementTest : public PlayerFixture {
protected:
    void playSilentlyInRealTime() { startPlayer(QStringLiteral("auto")); }
};

// Announces nothing.
class SilentLogic : public TestPlayLogic {
public:
    using TestPlayLogic::TestPlayLogic;
    void prepareNextMedia() override { calls.append("prepare"); }
};

TEST_F(PlayerAnnouncementTest, commandsAreCarriedOutInTheOrderGivenAndNeverAtOnce) {
    logic.setTracks({sound("a.wav", 30), sound("b.wav", 30), sound("c.wav", 30)});
    logic.sendPlayCommand(logic.tracks.at(0), {});
    logic.sendPlayCommand(logic.tracks.at(1), {});
    logic.sendSetNextMediaCommand(logic.tracks.at(0), {});
    logic.sendPlayCommand(logic.tracks.at(2), {});
    EXPECT_EQ(state(), "stopped");
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_EQ(logic.calls, (QStringList{"started:>t2", "prepare", "resume"}));
}

TEST_F(PlayerAnnouncementTest, anAnnouncementAfterThePlayCommandBelongsToThatItem) {
    logic.setTracks({sound("a.wav", 30), sound("b.wav", 30), sound("c.wav", 30)});
    logic.sendPlayCommand(logic.tracks.at(1), {});
    logic.announce(2);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_EQ(logic.calls.mid(0, 3), (QStringList{"started:>t1", "prepare", "started:t1>t2"}));
}

TEST_F(PlayerAnnouncementTest, anAnnouncementReplacedInTheLastMomentNeverStarts) {
    class Hesitant : public TestPlayLogic {
    public:
        using TestPlayLogic::TestPlayLogic;
        void prepareNextMedia() override {
            calls.append("prepare");
            if (current > 0) {
                announce(99);
                return;
            }
            // Changes its mind in every step of the event loop, until past the end of the track.
            for (int i = 0; i < 200; ++i) {
                QMetaObject::invokeMethod(
                    this,
                    [this, i] {
                        if (current == 0)
                            announce(1 + i % 2);
                    },
                    Qt::QueuedConnection);
            }
            announce(1);
        }
        OrvoPlayLogicData mediaPlaybackStarted(const OrvoRoles& oldRoles,
                                               const OrvoRoles& newRoles) override {
            if (current == 0)
                startedAsAnnounced = newRoles.value().i32() == announced;
            return TestPlayLogic::mediaPlaybackStarted(oldRoles, newRoles);
        }
        bool startedAsAnnounced = false;
    } hesitant(source.nodes(), CMPath(QStringLiteral("source:hesitant")));
    hesitant.setTracks({sound("a.wav", 20), sound("b.wav", 20), sound("c.wav", 20)});
    play(hesitant);
    ASSERT_TRUE(waitUntil([&] { return hesitant.calls.contains("resume"); }));
    EXPECT_TRUE(hesitant.startedAsAnnounced) << "what was announced last";
    EXPECT_EQ(hesitant.calls.filter("started:t0>").size(), 1);
    EXPECT_TRUE(hesitant.calls.filter("RE-ENTERED").isEmpty());
}

TEST_F(PlayerAnnouncementTest, whatWasAnnouncedIsVoidTheMomentAPlayCommandIsSent) {
    logic.setTracks({sound("a.wav", 300), sound("b.wav", 20), sound("c.wav", 20)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    turnEventsFor(30);
    EXPECT_EQ(CMRoot()->getValue(OrvoPlayerNextMediaPath()).toHash(), logic.tracks.at(1).toHash());
    logic.playTrack(2);
    EXPECT_TRUE(CMRoot()->getValue(OrvoPlayerNextMediaPath()).toHash().isEmpty());
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_FALSE(logic.calls.contains("started:t0>t1"));
    EXPECT_TRUE(logic.calls.contains("started:t0>t2"));
}

TEST_F(PlayerAnnouncementTest, aNewAnnouncementAfterPrepareReplacesTheOldOne) {
    logic.setTracks({sound("a.wav", 300), sound("b.wav", 20), sound("c.wav", 20)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    turnEventsFor(30);
    logic.announce(2);
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "started:t0>t2",
                                        "prepare", "resume"}));
}

TEST_F(PlayerAnnouncementTest, anAnnouncementTakenBackLeadsToTheEnd) {
    logic.setTracks({sound("a.wav", 300), sound("b.wav", 20)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    turnEventsFor(30);
    logic.announce(99);
    logic.tracks.removeLast();
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForCall(logic, "resume"));
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "resume"}));
}

TEST_F(PlayerAnnouncementTest, aTrackThatEndsWithNothingAnnouncedAsksForAWayOn) {
    SilentLogic silent(source.nodes(), CMPath(QStringLiteral("source:silent")));
    silent.setTracks({sound("a.wav", 30), sound("b.wav", 30)});
    play(silent);
    ASSERT_TRUE(waitUntil([&] { return silent.calls.count("resume") == 2; }));
    EXPECT_EQ(silent.calls, (QStringList{"play", "started:>t0", "prepare", "resume",
                                         "started:t0>t1", "prepare", "resume"}));
}

TEST_F(PlayerAnnouncementTest, aLongTrackIsPreparedTenSecondsBeforeItsEndOrAfterASeekToThere) {
    logic.setTracks({sound("a.wav", 12000), sound("b.wav", 20)});
    playSilentlyInRealTime();
    play(logic, 0, 1500);
    ASSERT_TRUE(waitForCall(logic, "started:>t0"));
    turnEventsFor(250);
    EXPECT_FALSE(logic.calls.contains("prepare"));
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    EXPECT_GE(position(), 1950);
    EXPECT_LE(position(), 3000);

    play(logic, 0);
    ASSERT_TRUE(waitUntil([&] { return logic.calls.filter("started").size() == 2; }));
    turnEventsFor(50);
    EXPECT_EQ(logic.calls.count("prepare"), 1);
    done(OrvoPlayerSeekTimePath(), {{"time", 11000}});
    EXPECT_EQ(logic.calls.count("prepare"), 2);
    done(OrvoPlayerSeekTimePath(), {{"time", 0}});
    done(OrvoPlayerSeekTimePath(), {{"time", 10500}});
    turnEventsFor(20);
    EXPECT_EQ(logic.calls.count("prepare"), 2) << "once per started item";
}

TEST_F(PlayerAnnouncementTest, aPausedLongTrackIsNotPrepared) {
    logic.setTracks({sound("a.wav", 10200), sound("b.wav", 20)});
    playSilentlyInRealTime();
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    turnEventsFor(400);
    EXPECT_FALSE(logic.calls.contains("prepare"));
    done(OrvoPlayerResumePath());
    EXPECT_TRUE(waitForCall(logic, "prepare"));
}

TEST_F(PlayerAnnouncementTest, nextRightAtTheChangeOfTracksSkipsNothing) {
    // "next" arrives at every possible moment around a change; the order never jumps.
    QStringList uris;
    for (int i = 0; i < 60; ++i)
        uris.append(sound(QStringLiteral("%1.wav").arg(i), 7, unsigned(i)));
    logic.setTracks(uris);
    play(logic);
    for (int i = 0; i < 25; ++i) {
        turnEventsFor(i % 5);
        if (state() != "stopped")
            invoke(OrvoPlayerNextPath());
    }
    ASSERT_TRUE(waitForCall(logic, "resume"));
    int last = -1;
    for (const QString& call : logic.calls.filter("started:")) {
        const int number = call.mid(call.indexOf(">t") + 2).toInt();
        EXPECT_GT(number, last) << call.toStdString();
        last = number;
    }
    EXPECT_EQ(last, 59);
}

TEST_F(PlayerAnnouncementTest, aLongTrackThatRushesByIsStillPreparedBeforeItsEnd) {
    logic.setTracks({sound("a.wav", 40000), sound("b.wav", 20)});
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "started:t0>t1",
                                        "prepare", "resume"}));
}

TEST_F(PlayerAnnouncementTest, aPlayCommandSentAtTheVeryEndOfATrackIsNotOvertaken) {
    SilentLogic silent(source.nodes(), CMPath(QStringLiteral("source:silent")));
    const QString uri = sound("a.wav", 2);
    const int count = 150;
    QStringList uris;
    for (int i = 0; i < count; ++i)
        uris.append(uri);
    silent.setTracks(uris);
    play(silent);
    // In every step of the event loop that it falls into, the track that was sent comes next.
    const QString last = QStringLiteral("started:t%1>t%2").arg(count - 2).arg(count - 1);
    for (int step = 0; step < 200000 && !silent.calls.contains(last); ++step) {
        QCoreApplication::processEvents();
        const QStringList started = silent.calls.filter("started:");
        const bool underWay = started.isEmpty() ||
                              !started.last().endsWith(QStringLiteral("t%1").arg(silent.current));
        if (!underWay && step % 3 == 0 && silent.current + 1 < count)
            silent.playTrack(silent.current + 1);
    }
    EXPECT_EQ(silent.calls.filter("started:").size(), count) << "none was skipped";
}

} // namespace
