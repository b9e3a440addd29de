#include <QTcpServer>

#include "PlayerFixture.h"
#include "SoundServer.h"

namespace {

// What cannot be played, or only to its middle.
using PlayerFailureTest = PlayerFixture;

TEST_F(PlayerFailureTest, aFileThatCannotBePlayedIsToldAndPassedOver) {
    const LogCapture log("Player");
    logic.setTracks({files.uri("missing.wav"), sound("b.wav", 30)});
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "started:>t1"));
    EXPECT_EQ(logic.calls.mid(0, 3), (QStringList{"play", "resume after error", "started:>t1"}));
    EXPECT_EQ(log.errors(), QStringList{"cannot play \"t0\" (" + files.uri("missing.wav") +
                                        "): there is no such file"});
    EXPECT_FALSE(logic.data().containsStreamerError());
}

TEST_F(PlayerFailureTest, whyItCannotBePlayedStandsInTheLogAlone) {
    SoundFiles elsewhere;
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const QString refusing = QStringLiteral("http://127.0.0.1:%1/a.wav").arg(closed.serverPort());
    closed.close();
    SoundServer server({});
    const QList<QPair<QString, QString>> rows = {
        {files.uri("missing.wav"), "there is no such file"},
        {files.text("words.wav", "no sound"), {}},
        {elsewhere.wav("a.wav", SoundFiles::pcm(100, 1)), "it is outside of the music folder"},
        {"file:///etc/passwd", "it is outside of the music folder"},
        {"fd://0", "its kind of address is not played"},
        {refusing, {}},
        {server.url("/whole"), {}},
        {server.url("/again/6"), "it is redirected too often"},
        {server.url(SoundServer::redirect("file:///etc/passwd")),
         "it is redirected to \"file:///etc/passwd\""},
    };
    for (const auto& row : rows) {
        const LogCapture log("Player");
        logic.setTracks({row.first});
        logic.calls.clear();
        play(logic);
        ASSERT_TRUE(waitForCall(logic, "resume after error")) << row.first.toStdString();
        const OrvoError told =
            OrvoPlayLogicData(CMRoot()->getValue(OrvoPlayerDataPath())).streamerError();
        EXPECT_EQ(told.code(), "CannotPlay");
        EXPECT_EQ(told.message(), "t0 cannot be played.") << row.first.toStdString();
        ASSERT_EQ(log.errors().size(), 1);
        const QString begin = "cannot play \"t0\" (" + row.first + "): ";
        EXPECT_TRUE(log.errors().constFirst().startsWith(begin));
        EXPECT_GT(log.errors().constFirst().size(), begin.size());
        if (!row.second.isEmpty()) {
            EXPECT_EQ(log.errors().constFirst(), begin + row.second);
        }
        ASSERT_TRUE(waitForTheEnd());
    }
}

TEST_F(PlayerFailureTest, sixBrokenFilesInARowEndPlaybackWithTheErrorInTheData) {
    QStringList uris;
    for (int i = 0; i < 8; ++i)
        uris.append(files.text(QStringLiteral("%1.flac").arg(i), "no sound"));
    logic.setTracks(uris);
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "gave up"));
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(logic.calls.count("resume after error"), 6);
    EXPECT_EQ(logic.calls.filter("started").size(), 0);
    const OrvoPlayLogicData data(CMRoot()->getValue(OrvoPlayerDataPath()));
    EXPECT_EQ(data.streamerError().code(), "CannotPlay");
    EXPECT_EQ(data.streamerError().message(), "t5 cannot be played.");
}

// What SoundServer sends of a file when it breaks off in its middle.
class PlayerBreakTest : public PlayerRecordingFixture {
protected:
    static QByteArray content(const QString& fileName) {
        QFile file(fileName);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    // The second track is announced late: when the first one breaks off it still has time to open.
    bool playUntilTheBreak() {
        play(logic);
        if (!waitForCall(logic, "prepare"))
            return false;
        turnEventsFor(150);
        logic.announce(1);
        return waitUntil([&] { return logic.data().containsStreamerError(); });
    }
    const Pcm broken = SoundFiles::pcm(44100, 9);
    SoundServer server{(files.wav("served.wav", broken), content(files.fileName("served.wav")))};
};

TEST_F(PlayerBreakTest, aBrokenAnnouncedFileIsPassedOverAfterTheOneBeforeItWasHeard) {
    const Pcm a = SoundFiles::pcm(20000, 1);
    const Pcm c = SoundFiles::pcm(20000, 2);
    logic.setTracks({files.wav("a.wav", a), files.uri("missing.wav"), files.wav("c.wav", c)});
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "resume after error",
                                        "started:t0>t2", "prepare", "resume"}));
    EXPECT_TRUE(recorded() == SoundFiles::joined({a, c}));
}

TEST_F(PlayerBreakTest, whatWasAnnouncedIsHeardAfterATrackThatBreaksOff) {
    const LogCapture log("Player");
    const Pcm b = SoundFiles::pcm(20000, 1);
    const Pcm c = SoundFiles::pcm(20000, 2);
    logic.setTracks({server.url("/half"), files.wav("b.wav", b), files.wav("c.wav", c)});
    QStringList errors;
    QObject::connect(
        CMRoot()->events(), &CMSubscribe::changed, &server, [&](const CMChange& change) {
            if (change.path == OrvoPlayerDataPath())
                errors.append(
                    OrvoPlayLogicData(change.newValue.toHash()).streamerError().message());
        });
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "started:t0>t1",
                                        "prepare", "started:t1>t2", "prepare", "resume"}));
    EXPECT_EQ(errors.count("t0 cannot be played."), 1) << errors.join('|').toStdString();
    EXPECT_EQ(errors.last(), QString());
    EXPECT_EQ(log.errors().size(), 1);
    const Pcm heard = recorded();
    const Pcm rest = SoundFiles::joined({b, c});
    ASSERT_GT(heard.size(), rest.size() + broken.size() / 4);
    EXPECT_TRUE(std::equal(heard.begin(), heard.end() - int(rest.size()), broken.begin()));
    EXPECT_TRUE(std::equal(rest.begin(), rest.end(), heard.end() - int(rest.size())));
}

TEST_F(PlayerBreakTest, anAnnouncedTrackThatIsStillOpeningIsWaitedFor) {
    logic.setTracks(
        {server.url("/half"), server.url("/silent"), server.url("/late/150"), sound("d.wav", 30)});
    ASSERT_TRUE(playUntilTheBreak());
    logic.announce(2);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "started:t0>t2",
                                        "prepare", "started:t2>t3", "prepare", "resume"}));
}

TEST_F(PlayerBreakTest, anAnnouncedTrackThatIsBrokenTooIsPassedOver) {
    logic.setTracks({server.url("/half"), files.uri("missing.wav"), sound("c.wav", 30)});
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "resume after error",
                                        "started:t0>t2", "prepare", "resume"}));
}

TEST_F(PlayerBreakTest, aBrokenTrackThatWasAnnouncedAgainIsNotRepeated) {
    class RepeatOne : public TestPlayLogic {
    public:
        using TestPlayLogic::TestPlayLogic;
        void prepareNextMedia() override {
            calls.append("prepare");
            announce(current);
        }
    } same(source.nodes(), CMPath(QStringLiteral("source:same")));
    same.setTracks({server.url("/half")});
    play(same);
    ASSERT_TRUE(waitUntil([&] { return same.calls.contains("resume after error"); }));
    EXPECT_EQ(same.calls, (QStringList{"play", "started:>t0", "prepare", "resume after error"}));
}

TEST_F(PlayerBreakTest, withNothingAnnouncedABrokenTrackAsksForAWayOn) {
    logic.setTracks({server.url("/half")});
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "resume after error"));
    ASSERT_TRUE(waitForTheEnd());
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "resume after error"}));
}

TEST_F(PlayerBreakTest, aTrackThatNeverBeganMakesWayForWhatWasAnnounced) {
    logic.setTracks({server.url("/silent"), sound("b.wav", 30), sound("c.wav", 30)});
    logic.sendPlayCommand(logic.tracks.at(0), {});
    logic.announce(1);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_EQ(logic.calls,
              (QStringList{"started:>t1", "prepare", "started:t1>t2", "prepare", "resume"}));
}

TEST_F(PlayerBreakTest, anAnnouncementThatIsRenewedAfterTheBreakIsWhatIsHeard) {
    logic.setTracks({server.url("/half"), server.url("/silent"), sound("c.wav", 30)});
    ASSERT_TRUE(playUntilTheBreak());
    logic.announce(2);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    EXPECT_EQ(logic.calls, (QStringList{"play", "started:>t0", "prepare", "started:t0>t2",
                                        "prepare", "resume"}));
}

TEST_F(PlayerBreakTest, anAnnouncementThatIsTakenBackAfterTheBreakLeavesAWayOnToFind) {
    logic.setTracks({server.url("/half"), server.url("/silent"), sound("c.wav", 30)});
    ASSERT_TRUE(playUntilTheBreak());
    logic.announce(99);
    logic.current = 1;
    ASSERT_TRUE(waitForCall(logic, "started:t0>t2"));
    EXPECT_EQ(logic.calls.count("resume after error"), 1);
}

TEST_F(PlayerFailureTest, aPauseOutlivesAFileThatCannotBePlayed) {
    logic.setTracks({files.uri("missing.wav"), sound("b.wav", 300)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForCall(logic, "started:>t1"));
    EXPECT_EQ(state(), "paused");
}

} // namespace
