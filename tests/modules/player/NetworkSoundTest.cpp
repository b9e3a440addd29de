#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>

#include "SoundFiles.h"
#include "SoundServer.h"
#include "TestEngine.h"

namespace {

constexpr int TimeoutMs = 500;
// What a call on the worker's thread may take at most: no other request is served meanwhile.
constexpr int LongestCallMs = 300;

// An engine whose network may be slow for half a second.
class NetworkSoundTest : public ::testing::Test {
protected:
    explicit NetworkSoundTest(const QString& sink = QStringLiteral("null"))
        : engine(sink, {{"player/networkTimeoutMs", TimeoutMs}, {"player/files", "anywhere"}}) {}

    static QByteArray content(const QString& fileName) {
        QFile file(fileName);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    QByteArray wav(const Pcm& samples) {
        files.wav("served.wav", samples);
        return content(files.fileName("served.wav"));
    }

    SoundFiles files;
    const Pcm pcm = SoundFiles::pcm(44100, 1);
    SoundServer server{wav(pcm)};
    TestEngine engine;
    Listener listener{engine};
};

class NetworkRecordingTest : public NetworkSoundTest {
protected:
    NetworkRecordingTest() : NetworkSoundTest("wav=" + folder.filePath("out.wav")) {}
    Pcm recorded() {
        engine.stop();
        return SoundFiles::readWav(folder.filePath("out.wav")).samples();
    }

    static inline QTemporaryDir folder;
};

TEST_F(NetworkRecordingTest, whatAServerSendsSlowlySoundsToTheSample) {
    engine.play(1, server.url("/slow/300"), 0, false);
    ASSERT_TRUE(listener.waitForLast("finished 1"));
    EXPECT_TRUE(recorded() == pcm);
}

TEST_F(NetworkRecordingTest, aServerThatStopsSendingIsHeardAsFarAsItCameAndFails) {
    engine.play(1, server.url("/half"), 0, false);
    ASSERT_TRUE(listener.waitForLast("failed 1"));
    EXPECT_EQ(listener.told, (QStringList{"started 1", "failed 1"}));
    EXPECT_EQ(listener.failure, "it gives nothing more");
    const Pcm heard = recorded();
    ASSERT_GT(heard.size(), pcm.size() / 4);
    EXPECT_TRUE(std::equal(heard.begin(), heard.end(), pcm.begin()));
}

TEST_F(NetworkSoundTest, aServerThatSaysNothingFailsInTime) {
    quint64 generation = 0;
    for (const QString& path : {QStringLiteral("/silent"), QStringLiteral("/headers")}) {
        QElapsedTimer clock;
        clock.start();
        engine.play(++generation, server.url(path), 0, false);
        ASSERT_TRUE(listener.waitForLast(QStringLiteral("failed %1").arg(generation)));
        EXPECT_EQ(listener.failure, "it does not begin in time");
        EXPECT_GE(clock.elapsed(), TimeoutMs);
    }
    turnEventsFor(50);
    EXPECT_EQ(listener.told, (QStringList{"failed 1", "failed 2"})) << "each once";
}

TEST_F(NetworkSoundTest, anAnnouncedItemThatDoesNotBeginFailsWhenItsTurnComes) {
    engine.play(1, files.wav("a.wav", SoundFiles::pcm(4410, 2)), 0, true);
    engine.setNext(2, server.url("/silent"));
    turnEventsFor(2 * TimeoutMs);
    EXPECT_EQ(listener.told, QStringList{"started 1"});
    engine.setPaused(false);
    ASSERT_TRUE(listener.waitForLast("failed 2"));
    EXPECT_EQ(listener.told, (QStringList{"started 1", "ended 1", "failed 2"}));
}

TEST_F(NetworkSoundTest, aPauseIsNoStall) {
    engine.play(1, server.url("/slow/800"), 0, true);
    ASSERT_TRUE(listener.waitForLast("started 1"));
    turnEventsFor(2 * TimeoutMs);
    EXPECT_EQ(listener.told, QStringList{"started 1"});
    engine.setPaused(false);
    ASSERT_TRUE(listener.waitForLast("finished 1"));
}

TEST_F(NetworkSoundTest, anOutputThatIsFullIsNoStall) {
    TestEngine inRealTime("auto", {{"player/networkTimeoutMs", 200}});
    Listener heard(inRealTime);
    inRealTime.play(1, server.url("/whole"), 0, false);
    ASSERT_TRUE(waitUntil([&] { return heard.isOver(1); }));
    EXPECT_EQ(heard.told, (QStringList{"started 1", "ended 1", "finished 1"}));
}

TEST_F(NetworkSoundTest, whatHangsIsLeftAtOnce) {
    quint64 generation = 0;
    for (const QString& path :
         {QStringLiteral("/silent"), QStringLiteral("/headers"), QStringLiteral("/half")}) {
        engine.play(++generation, server.url(path), 0, false);
        turnEventsFor(100);
        QElapsedTimer clock;
        clock.start();
        engine.duration();
        engine.position();
        EXPECT_LT(clock.restart(), LongestCallMs) << path.toStdString();
        engine.seek(900);
        EXPECT_LT(clock.restart(), LongestCallMs) << path.toStdString();
        engine.stop();
        EXPECT_LT(clock.elapsed(), LongestCallMs) << path.toStdString();
    }
}

TEST_F(NetworkSoundTest, fiveRedirectsAreFollowedAndNoMore) {
    for (int redirects = 1; redirects <= 5; ++redirects) {
        engine.play(quint64(redirects), server.url(QStringLiteral("/again/%1").arg(redirects)), 0,
                    false);
        ASSERT_TRUE(listener.waitForLast(QStringLiteral("finished %1").arg(redirects)))
            << redirects << ": " << listener.failure.toStdString();
    }
    for (const QString& path : {QStringLiteral("/again/6"), QStringLiteral("/again/1000")}) {
        server.requests.clear();
        listener.told.clear();
        engine.play(6, server.url(path), 0, false);
        ASSERT_TRUE(listener.waitForLast("failed 6"));
        EXPECT_EQ(listener.failure, "it is redirected too often");
        turnEventsFor(50);
        EXPECT_EQ(listener.told, QStringList{"failed 6"});
        EXPECT_EQ(server.requests.size(), 6) << server.requests.join(' ').toStdString();
    }
}

TEST_F(NetworkSoundTest, aRedirectLeadsToHttpAndNowhereElse) {
    const QString file = files.wav("local.wav", pcm);
    const QString port = QString::number(server.serverPort());
    engine.play(1, server.url(SoundServer::redirect("//127.0.0.1:" + port + "/whole")), 0, false);
    ASSERT_TRUE(listener.waitForLast("finished 1")) << listener.failure.toStdString();
    quint64 generation = 1;
    for (const QString& target :
         {file, QStringLiteral("ftp://127.0.0.1/a.wav"),
          QStringLiteral("data:audio/x-wav;base64,UklGRg=="), QStringLiteral("http:///a.wav")}) {
        engine.play(++generation, server.url(SoundServer::redirect(target)), 0, false);
        ASSERT_TRUE(listener.waitForLast(QStringLiteral("failed %1").arg(generation)))
            << target.toStdString();
        EXPECT_EQ(listener.failure, "it is redirected to \"" + target + '"');
    }
}

TEST_F(NetworkSoundTest, redirectsDoNotExtendTheTime) {
    QElapsedTimer clock;
    clock.start();
    engine.play(1, server.url(SoundServer::redirect("/silent")), 0, false);
    ASSERT_TRUE(listener.waitForLast("failed 1"));
    EXPECT_EQ(listener.failure, "it does not begin in time");
    EXPECT_LT(clock.elapsed(), 2 * TimeoutMs);
}

} // namespace
