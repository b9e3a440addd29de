#include "SoundDevice.h"

#include <cstring>
#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "EventLoop.h"
#include "LogCapture.h"
#include "SoundFiles.h"
#include "TestEngine.h"

namespace {

const char* SilenceText = "no sound device, playing silently in real time";

class SoundDeviceTest : public ::testing::Test {
protected:
    SoundDeviceTest() { SoundDevice::install(); }

    // Plays both files one after the other and returns when everything was heard.
    void playBoth(PlayerEngine& engine, const QString& first, const QString& second) {
        bool finished = false;
        const auto a = QObject::connect(&engine, &PlayerEngine::finished, &engine,
                                        [&finished] { finished = true; });
        engine.play(1, first, 0, false);
        engine.setNext(2, second);
        EXPECT_TRUE(waitUntil([&] { return finished; }));
        QObject::disconnect(a);
    }
    // The device is done with the last piece a moment after its time has come.
    static bool waitForPlayed(const Pcm& expected) {
        return waitUntil([&] { return played() == expected; }, 1000);
    }
    static Pcm played() {
        const std::vector<char> bytes = SoundDevice::played();
        Pcm samples(bytes.size() / sizeof(qint16));
        std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(qint16));
        return samples;
    }
    // The longest silence between two chunks of sound.
    static qint64 longestGapNs() {
        qint64 longest = 0;
        const std::vector<SoundDevice::Chunk> chunks = SoundDevice::chunks();
        for (size_t i = 1; i < chunks.size(); ++i)
            longest = std::max(longest, chunks[i].beginNs - chunks[i - 1].endNs);
        return longest;
    }

    SoundFiles files;
};

TEST_F(SoundDeviceTest, twoFilesReachTheDeviceToTheSampleInRealTimeAndWithoutAGap) {
    const LogCapture log("Player");
    const Pcm a = SoundFiles::pcm(44100, 1);
    const Pcm b = SoundFiles::pcm(22050, 2);
    const QString uriA = files.flac("a.flac", a);
    const QString uriB = files.flac("b.flac", b);
    TestEngine engine("auto");
    QElapsedTimer timer;
    timer.start();
    playBoth(engine, uriA, uriB);
    EXPECT_GE(timer.elapsed(), 1450);
    EXPECT_TRUE(waitForPlayed(SoundFiles::joined({a, b})));
    EXPECT_LE(longestGapNs(), 1) << "a nanosecond of rounding";
    EXPECT_TRUE(log.texts("WARN").isEmpty()) << "there is a device";
}

TEST_F(SoundDeviceTest, aBusyWorkerAtTheChangeOfItemsIsNotHeard) {
    const Pcm a = SoundFiles::pcm(44100, 1);
    const QString uri = files.wav("a.wav", a);
    TestEngine engine("auto");
    bool finished = false;
    QObject::connect(&engine, &PlayerEngine::finished, &engine, [&] { finished = true; });
    engine.play(1, uri, 0, false);
    engine.setNext(2, uri);
    ASSERT_TRUE(waitUntil([&] { return engine.position() > 400; }));
    // Everything of the first item is handed over at half time; the worker does not answer for a
    // while.
    QThread::msleep(400);
    ASSERT_TRUE(waitUntil([&] { return finished; }));
    EXPECT_TRUE(waitForPlayed(SoundFiles::joined({a, a})));
    EXPECT_LE(longestGapNs(), 1);
}

TEST_F(SoundDeviceTest, aPauseLosesNothing) {
    const Pcm a = SoundFiles::pcm(44100, 1);
    TestEngine engine("auto");
    bool finished = false;
    QObject::connect(&engine, &PlayerEngine::finished, &engine, [&] { finished = true; });
    engine.play(1, files.wav("a.wav", a), 0, false);
    for (int i = 0; i < 3; ++i) {
        turnEventsFor(120);
        engine.setPaused(true);
        turnEventsFor(60);
        const qint64 at = engine.position();
        turnEventsFor(60);
        EXPECT_EQ(engine.position(), at);
        engine.setPaused(false);
    }
    ASSERT_TRUE(waitUntil([&] { return finished; }));
    EXPECT_TRUE(waitForPlayed(a));
}

TEST_F(SoundDeviceTest, quickPausesAndResumesEndInWhatWasLastAskedFor) {
    const Pcm a = SoundFiles::pcm(44100, 1);
    const QString uri = files.wav("a.wav", a);
    TestEngine engine("auto");
    bool started = false;
    QObject::connect(&engine, &PlayerEngine::started, &engine, [&] { started = true; });
    for (int round = 0; round < 8; ++round) {
        started = false;
        engine.play(quint64(round + 1), uri, 0, false);
        ASSERT_TRUE(waitUntil([&] { return started; }));
        turnEventsFor(round);
        for (int i = 0; i <= round; ++i) {
            engine.setPaused(true);
            if (i % 2)
                QCoreApplication::processEvents();
            if (i % 3 == 2)
                engine.seek(100);
            engine.setPaused(false);
        }
        const qint64 at = engine.position();
        EXPECT_TRUE(waitUntil([&] { return engine.position() > at + 30; }, 3000))
            << "round " << round;
    }
}

TEST_F(SoundDeviceTest, theVolumeIsTheDevicesAndMayChangeAnyTime) {
    const Pcm a = SoundFiles::pcm(8820, 1);
    TestEngine engine("auto");
    engine.setVolume(50);
    bool finished = false;
    QObject::connect(&engine, &PlayerEngine::finished, &engine, [&] { finished = true; });
    engine.play(1, files.wav("a.wav", a), 0, false);
    ASSERT_TRUE(waitUntil([&] { return finished; }));
    ASSERT_TRUE(waitUntil([&] { return played().size() == a.size(); }, 1000));
    const Pcm quiet = played();
    for (size_t i = 0; i < a.size(); ++i)
        ASSERT_NEAR(quiet[i], a[i] / 8.0, 1.01) << "half of the way is an eighth of the amplitude";
    SoundDevice::reset();
    finished = false;
    engine.setVolume(100);
    engine.play(2, files.wav("a.wav", a), 0, false);
    ASSERT_TRUE(waitUntil([&] { return finished; }));
    EXPECT_TRUE(waitForPlayed(a));
}

TEST_F(SoundDeviceTest, aDeviceThatBreaksIsReplacedBySilenceAndPlaybackGoesOn) {
    const LogCapture log("Player");
    const Pcm a = SoundFiles::pcm(66150, 1);
    TestEngine engine("auto");
    QStringList told;
    QObject::connect(&engine, &PlayerEngine::finished, &engine, [&] { told.append("finished"); });
    QObject::connect(&engine, &PlayerEngine::failed, &engine, [&] { told.append("failed"); });
    SoundDevice::breakAfter(10);
    QElapsedTimer timer;
    timer.start();
    engine.play(1, files.wav("a.wav", a), 0, false);
    ASSERT_TRUE(waitUntil([&] { return !told.isEmpty(); }));
    EXPECT_EQ(told, QStringList{"finished"});
    EXPECT_GE(timer.elapsed(), 900) << "what was on its way to the device is lost, no more";
    EXPECT_EQ(log.texts("WARN"), QStringList{SilenceText});
}

TEST_F(SoundDeviceTest, withoutADeviceEachLaterStartIsSilentToo) {
    const LogCapture log("Player");
    const Pcm a = SoundFiles::pcm(8820, 1);
    const QString uri = files.wav("a.wav", a);
    TestEngine engine("auto");
    int finished = 0;
    QObject::connect(&engine, &PlayerEngine::finished, &engine, [&] { ++finished; });
    engine.play(1, uri, 0, false);
    ASSERT_TRUE(waitUntil([&] { return finished == 1; }));
    EXPECT_TRUE(waitForPlayed(a));
    SoundDevice::setPresent(false);
    for (int i = 2; i <= 3; ++i) {
        engine.play(quint64(i), uri, 0, false);
        ASSERT_TRUE(waitUntil([&] { return finished == i; }));
    }
    EXPECT_TRUE(waitForPlayed(a)) << "the device is gone";
    EXPECT_EQ(log.texts("WARN"), QStringList{SilenceText});
}

} // namespace
