#include <cstring>

#include <QFile>

#include "PlayerFixture.h"
#include "SoundDevice.h"
#include "SoundServer.h"

namespace {

// What a listener hears, in real time, of what the play logic decides late.
class PlayerHeardTest : public PlayerFixture {
protected:
    PlayerHeardTest() {
        SoundDevice::install();
        startPlayer(QStringLiteral("auto"));
        logic.setTracks({files.wav("a.wav", a), files.wav("b.wav", b), files.wav("c.wav", c)});
    }

    static Pcm heard() {
        const std::vector<char> bytes = SoundDevice::played();
        Pcm samples(bytes.size() / sizeof(qint16));
        std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(qint16));
        return samples;
    }
    // The device is done with the last piece a moment after its time has come.
    static bool waitForHeard(const Pcm& expected) {
        return waitUntil([&] { return heard() == expected; }, 2000);
    }
    bool waitForRest(int ms) {
        return waitUntil([&] { return position() >= LengthMs - ms; });
    }
    // What came before `end`, which is the last that was heard.
    static Pcm heardBefore(const Pcm& end) {
        const Pcm all = heard();
        if (all.size() < end.size() || !std::equal(end.begin(), end.end(), all.end() - end.size()))
            return {};
        return {all.begin(), all.end() - end.size()};
    }
    static bool begins(const Pcm& whole, const Pcm& begin) {
        return begin.size() <= whole.size() &&
               std::equal(begin.begin(), begin.end(), whole.begin());
    }

    static constexpr int LengthMs = 2000;
    const Pcm a = SoundFiles::pcm(44100 * LengthMs / 1000, 1);
    const Pcm b = SoundFiles::pcm(13001, 2);
    const Pcm c = SoundFiles::pcm(17003, 3);
};

TEST_F(PlayerHeardTest, anAnnouncementThatIsRenewedInTheLastSecondsIsWhatIsHeard) {
    for (const int rest : {1500, 800, 550}) {
        SoundDevice::reset();
        logic.calls.clear();
        play(logic);
        ASSERT_TRUE(waitForState("playing"));
        ASSERT_TRUE(waitForRest(rest));
        ASSERT_FALSE(logic.calls.contains("started:t0>t1")) << rest;
        logic.announce(2);
        ASSERT_TRUE(waitForCall(logic, "resume"));
        EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "started:t0>t2",
                                            "prepare", "resume"}));
        EXPECT_TRUE(waitForHeard(SoundFiles::joined({a, c}))) << rest;
    }
}

TEST_F(PlayerHeardTest, anAnnouncementThatIsRenewedBeyondTheEndIsWhatIsHeard) {
    SoundServer server({});
    logic.tracks[1] = TestPlayLogic::track(1, server.url("/silent"));
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    ASSERT_TRUE(waitForRest(150));
    logic.announce(1);
    ASSERT_TRUE(waitForHeard(a));
    ASSERT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare"}));
    logic.announce(2);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "started:t0>t2",
                                        "prepare", "resume"}));
    EXPECT_TRUE(waitForHeard(SoundFiles::joined({a, c})));
}

TEST_F(PlayerHeardTest, whatIsTakenBackInTheLastSecondIsNotHeard) {
    logic.tracks.removeLast();
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    ASSERT_TRUE(waitForRest(700));
    logic.announce(99);
    logic.tracks.removeLast();
    ASSERT_TRUE(waitForCall(logic, "resume"));
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_TRUE(waitForHeard(a));
}

TEST_F(PlayerHeardTest, whatIsReplacedRightAfterTheHandOverIsNotHeard) {
    play(logic);
    // Half a second of the first track is still to be heard.
    ASSERT_TRUE(waitForCall(logic, "started:t0>t1"));
    logic.playTrack(2);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    ASSERT_TRUE(waitUntil([&] { return heard().size() > 0 && !heardBefore(c).empty(); }, 2000));
    EXPECT_TRUE(begins(a, heardBefore(c)));
}

TEST_F(PlayerHeardTest, aReplacementWhilePausedIsSilentUntilItIsResumed) {
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    ASSERT_TRUE(waitForRest(1500));
    done(OrvoPlayerPausePath());
    logic.playTrack(2);
    ASSERT_TRUE(waitForCall(logic, "started:t0>t2"));
    const Pcm before = heard();
    turnEventsFor(400);
    EXPECT_TRUE(heard() == before);
    EXPECT_EQ(position(), 0);
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForCall(logic, "resume"));
    ASSERT_TRUE(waitUntil([&] { return !heardBefore(c).empty(); }, 2000));
    EXPECT_TRUE(begins(a, heardBefore(c)));
}

TEST_F(PlayerHeardTest, whatWasAnnouncedIsHeardAfterATrackThatBreaksOff) {
    QFile served(files.fileName("a.wav"));
    ASSERT_TRUE(served.open(QIODevice::ReadOnly));
    SoundServer server(served.readAll());
    logic.tracks[0] = TestPlayLogic::track(0, server.url("/half"));
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_EQ(logic.calls.filter("started"),
              (QStringList{"started:>t0", "started:t0>t1", "started:t1>t2"}));
    const Pcm rest = SoundFiles::joined({b, c});
    ASSERT_TRUE(waitUntil([&] { return !heardBefore(rest).empty(); }, 2000));
    EXPECT_TRUE(begins(a, heardBefore(rest)));
    EXPECT_GT(heardBefore(rest).size(), a.size() / 4);
}

} // namespace
