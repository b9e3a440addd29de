#include "AudioOutput.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTemporaryDir>

#include "DeviceOutput.h"
#include "EventLoop.h"
#include "LogCapture.h"
#include "SoundFiles.h"
#include "TestEngine.h"

namespace {

const char* SilenceText = "no sound device, playing silently in real time";

void initialize() {
    gst_init(nullptr, nullptr);
}

// Writes so much sound as the output takes, for as long as `seconds` of it.
qint64 feed(AudioOutput& output, const AudioFormat& format, double seconds) {
    const std::vector<char> chunk(size_t(format.frameBytes() * format.rate / 50));
    qint64 frames = 0;
    QElapsedTimer timer;
    timer.start();
    while (frames < qint64(seconds * format.rate) && timer.elapsed() < 10000) {
        if (output.hasRoom()) {
            output.write(chunk.data(), qint64(chunk.size()));
            frames += format.rate / 50;
        } else {
            QThread::msleep(5);
        }
    }
    return frames;
}

TEST(AudioSinks, whatIsNoSinkIsRefusedWithAReason) {
    QString error;
    EXPECT_FALSE(AudioOutput::make(
        "loud", [] {}, &error));
    EXPECT_EQ(error, "there is no audio sink \"loud\", only auto, null and wav=FILE");
    EXPECT_FALSE(AudioOutput::make(
        "wav=/nowhere/at/all.wav", [] {}, &error));
    EXPECT_TRUE(error.startsWith("cannot write /nowhere/at/all.wav: ")) << error.toStdString();
    EXPECT_FALSE(AudioOutput::make(
        "wav=", [] {}, &error));
}

TEST(AudioSinks, aSinkThatCannotBeHadIsLoggedAndReplacedByTheDevice) {
    const LogCapture log("Player");
    TestEngine engine("loud");
    EXPECT_EQ(
        log.errors(),
        QStringList{"there is no audio sink \"loud\", only auto, null and wav=FILE; using auto"});
}

TEST(DeviceSink, withoutADeviceSilenceKeepsRealTimeAndSaysSoOnce) {
    initialize();
    const LogCapture log("Player");
    DeviceOutput output("no-such-sink", [] {});
    const AudioFormat format;
    QElapsedTimer timer;
    for (int round = 0; round < 2; ++round) {
        output.start(format);
        timer.start();
        const qint64 frames = feed(output, format, 0.5);
        ASSERT_TRUE(waitUntil([&] { return output.heardFrames() >= frames; }));
        EXPECT_GE(timer.elapsed(), 450);
        EXPECT_LE(timer.elapsed(), 1500);
        output.stop();
    }
    EXPECT_TRUE(output.isSilent());
    EXPECT_EQ(log.texts("WARN"), QStringList{SilenceText});
}

TEST(DeviceSink, takesHalfASecondAhead) {
    initialize();
    DeviceOutput output("no-such-sink", [] {});
    const AudioFormat format;
    output.setPaused(true);
    output.start(format);
    QElapsedTimer timer;
    timer.start();
    qint64 frames = 0;
    const std::vector<char> chunk(size_t(format.frameBytes() * 441));
    while (output.hasRoom() && timer.elapsed() < 5000) {
        output.write(chunk.data(), qint64(chunk.size()));
        frames += 441;
    }
    EXPECT_EQ(frames, 22050);
    EXPECT_EQ(output.heardFrames(), 0);
}

TEST(DeviceSink, aPauseStopsTheTime) {
    initialize();
    DeviceOutput output("no-such-sink", [] {});
    const AudioFormat format;
    output.start(format);
    feed(output, format, 0.4);
    ASSERT_TRUE(waitUntil([&] { return output.heardFrames() > 0; }));
    output.setPaused(true);
    turnEventsFor(50);
    const qint64 heard = output.heardFrames();
    turnEventsFor(300);
    EXPECT_EQ(output.heardFrames(), heard);
    output.setPaused(false);
    EXPECT_TRUE(waitUntil([&] { return output.heardFrames() >= qint64(0.4 * 44100); }));
}

TEST(DeviceSink, soundAfterADryMomentIsHeardInFull) {
    initialize();
    DeviceOutput output("no-such-sink", [] {});
    const AudioFormat format;
    output.start(format);
    const qint64 first = feed(output, format, 0.2);
    ASSERT_TRUE(waitUntil([&] { return output.heardFrames() >= first; }));
    turnEventsFor(400);
    EXPECT_EQ(output.heardFrames(), first) << "time runs on, but nothing more was heard";
    QElapsedTimer timer;
    timer.start();
    const qint64 second = feed(output, format, 0.2);
    ASSERT_TRUE(waitUntil([&] { return output.heardFrames() >= first + second; }));
    EXPECT_GE(timer.elapsed(), 190);
    EXPECT_LE(timer.elapsed(), 1000);
}

TEST(DeviceSink, itemsPlayInRealTimeThroughTheEngine) {
    SoundFiles files;
    const LogCapture log("Player");
    TestEngine engine("auto");
    bool finished = false;
    QObject::connect(&engine, &PlayerEngine::finished, &engine, [&] { finished = true; });
    const QString uri = files.wav("a.wav", SoundFiles::pcm(44100, 1));
    bool announced = false;
    QObject::connect(&engine, &PlayerEngine::started, &engine, [&] {
        if (!announced)
            engine.setNext(2, uri);
        announced = true;
    });
    QElapsedTimer timer;
    timer.start();
    engine.play(1, uri, 0, false);
    ASSERT_TRUE(waitUntil([&] { return finished; }));
    EXPECT_GE(timer.elapsed(), 1950) << "two items of one second each";
    EXPECT_LE(timer.elapsed(), 3500);
}

TEST(WavSink, aLongRecordingHasAUsableHeaderBeforeItEnds) {
    QTemporaryDir folder;
    const QString fileName = folder.filePath("out.wav");
    QString error;
    const auto output = AudioOutput::make(
        "wav=" + fileName, [] {}, &error);
    ASSERT_TRUE(output) << error.toStdString();
    const AudioFormat format;
    output->start(format);
    feed(*output, format, 2.5);
    const WavFile wav = SoundFiles::readWav(fileName);
    EXPECT_GE(wav.declaredBytes, 2 * 44100 * 4);
    EXPECT_EQ(wav.rate, 44100);
}

TEST(WavSink, severalPlaybacksFollowOneAnother) {
    QTemporaryDir folder;
    const QString fileName = folder.filePath("out.wav");
    QString error;
    auto output = AudioOutput::make(
        "wav=" + fileName, [] {}, &error);
    EXPECT_FALSE(output->requiredFormat());
    AudioFormat format;
    format.sample = AudioFormat::Sample::S32;
    format.rate = 96000;
    format.channels = 1;
    output->start(format);
    const std::vector<char> sound(8, 'x');
    output->write(sound.data(), 8);
    EXPECT_EQ(output->heardFrames(), 2);
    output->stop();
    EXPECT_EQ(output->requiredFormat(), format);
    output->start(format);
    EXPECT_EQ(output->heardFrames(), 0);
    output->write(sound.data(), 4);
    output.reset();
    const WavFile wav = SoundFiles::readWav(fileName);
    EXPECT_EQ(wav.declaredBytes, 12);
    EXPECT_EQ(wav.data.size(), 12U);
    EXPECT_EQ(wav.bits, 32);
    EXPECT_EQ(wav.rate, 96000);
    EXPECT_EQ(wav.channels, 1);
}

} // namespace
