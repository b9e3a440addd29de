#include "PlayerFixture.h"

namespace {

class PlayerSleepTest : public PlayerFixture {
protected:
    void playSilentlyInRealTime() { startPlayer(QStringLiteral("auto")); }
    static OrvoValue timer() { return OrvoValue(CMRoot()->getValue(OrvoPlayerSleepTimerPath())); }
    static bool isOff() { return timer().containsI64_() && timer().i64() == 0; }
    CMReply<QVariant> set(const QVariant& time) {
        return done(OrvoPlayerSleepTimerPath(), {{"time", time}});
    }
    int started(const char* what) const {
        return int(logic.calls.filter(QString::fromLatin1(what)).size());
    }
};

} // namespace

TEST_F(PlayerSleepTest, playbackPausesWhenItsTimeIsOver) {
    playSilentlyInRealTime();
    logic.setTracks({sound("a.wav", 3000)});
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    EXPECT_FALSE(set(300).isError());
    EXPECT_GT(timer().i64(), 0);
    EXPECT_LE(timer().i64(), 300);
    ASSERT_TRUE(waitForState("paused"));
    EXPECT_TRUE(isOff());
    EXPECT_LT(position(), 2000);
}

TEST_F(PlayerSleepTest, whatIsSwitchedOffPausesNothing) {
    playSilentlyInRealTime();
    logic.setTracks({sound("a.wav", 800)});
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    set(200);
    EXPECT_FALSE(set(0).isError());
    EXPECT_TRUE(isOff());
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(logic.calls.last(), "resume");
}

TEST_F(PlayerSleepTest, aTrackIsHeardToItsEndAndTheNextOneWaitsAtItsBeginning) {
    logic.setTracks({sound("a.wav", 50), sound("b.wav", 50), sound("c.wav", 50)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    EXPECT_FALSE(set("endOfTrack").isError());
    EXPECT_EQ(timer().string(), "endOfTrack");
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitUntil([&] { return started("started:t0>t1") == 1; }));
    ASSERT_TRUE(waitForState("paused"));
    EXPECT_TRUE(isOff());
    EXPECT_EQ(position(), 0);
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(started("started:t1>t2"), 1);
}

TEST_F(PlayerSleepTest, whatWasAnnouncedFollowsAfterAllWhenTheEndOfTheTrackIsNoEnd) {
    playSilentlyInRealTime();
    logic.setTracks({sound("a.wav", 600), sound("b.wav", 300)});
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    set("endOfTrack");
    set(0);
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(started("started:t0>t1"), 1);
    EXPECT_EQ(started("resume"), 1) << "at the end of the list alone";
}

TEST_F(PlayerSleepTest, atTheEndOfTheListPlaybackEnds) {
    logic.setTracks({sound("a.wav", 50)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    set("endOfTrack");
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_TRUE(isOff());
}

TEST_F(PlayerSleepTest, aStopEndsTheWaitForTheEndOfATrackAndNoOther) {
    logic.setTracks({sound("a.wav", 50)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    set("endOfTrack");
    done(OrvoPlayerStopPath());
    EXPECT_TRUE(isOff());
    set(60000);
    done(OrvoPlayerStopPath());
    EXPECT_GT(timer().i64(), 50000);
}

TEST_F(PlayerSleepTest, whatIsNoTimeIsRefusedAndChangesNothing) {
    set(60000);
    for (const QVariant& time :
         {QVariant(-1), QVariant("soon"), QVariant(25 * 3600 * 1000), QVariant()}) {
        const auto reply = set(time);
        ASSERT_TRUE(reply.isError()) << time.toString().toStdString();
        EXPECT_EQ(reply.error().message().toString(),
                  "The time must be a number of milliseconds up to 24 hours, or endOfTrack.");
    }
    EXPECT_GT(timer().i64(), 50000);
    EXPECT_EQ(set("endOfTrack").error().message().toString(), "Nothing is playing.");
    EXPECT_GT(timer().i64(), 50000);
}

TEST_F(PlayerSleepTest, settingAndRunningOutArePublishedAndNothingInBetween) {
    QList<OrvoValue> seen;
    QObject context;
    QObject::connect(CMRoot()->events(), &CMSubscribe::changed, &context,
                     [&](const CMChange& change) {
                         if (change.path == OrvoPlayerSleepTimerPath())
                             seen.append(change.newValue);
                     });
    set(200);
    ASSERT_TRUE(waitUntil([&] { return seen.size() == 2; }));
    EXPECT_GT(seen.first().i64(), 0);
    EXPECT_EQ(seen.last().i64(), 0);
    turnEventsFor(50);
    EXPECT_EQ(seen.size(), 2);
}

TEST_F(PlayerSleepTest, aWrittenValueIsTheCommand) {
    const CMVoidReply reply;
    CMRoot()->setValue(OrvoPlayerSleepTimerPath(), 60000, reply);
    ASSERT_TRUE(waitUntil([&] { return reply.isFinished(); }));
    EXPECT_FALSE(reply.isError());
    EXPECT_GT(timer().i64(), 50000);
}
