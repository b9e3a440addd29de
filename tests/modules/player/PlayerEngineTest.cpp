#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "SoundFiles.h"
#include "TestEngine.h"

namespace {

class PlayerEngineTest : public ::testing::Test {
protected:
    QString wavSink() const { return QStringLiteral("wav=") + files.fileName("out.wav"); }
    WavFile out() const { return SoundFiles::readWav(files.fileName("out.wav")); }

    SoundFiles files;
};

// Plays all of these, each announced while the one before it plays, into the WAV sink.
void playThrough(const QString& sink, const QStringList& uris) {
    TestEngine engine(sink);
    Listener listener(engine);
    int next = 1;
    const auto announce = [&] {
        if (next < uris.size()) {
            engine.setNext(quint64(next + 1), uris.at(next));
            ++next;
        }
    };
    QObject::connect(&engine, &PlayerEngine::started, &engine, announce);
    engine.play(1, uris.first(), 0, false);
    ASSERT_TRUE(listener.waitForLast(QStringLiteral("finished %1").arg(uris.size())))
        << listener.told.join("; ").toStdString();
    QStringList expected;
    for (int i = 1; i <= uris.size(); ++i)
        expected << QStringLiteral("started %1").arg(i) << QStringLiteral("ended %1").arg(i);
    expected << QStringLiteral("finished %1").arg(uris.size());
    EXPECT_EQ(listener.told, expected);
}

TEST_F(PlayerEngineTest, threeFlacFilesComeOutEndToEndToTheSample) {
    const Pcm a = SoundFiles::pcm(44100, 1);
    const Pcm b = SoundFiles::pcm(30011, 2);
    const Pcm c = SoundFiles::pcm(52737, 3);
    playThrough(wavSink(),
                {files.flac("a.flac", a), files.flac("b.flac", b), files.flac("c.flac", c)});
    const WavFile wav = out();
    EXPECT_EQ(wav.rate, 44100);
    EXPECT_EQ(wav.channels, 2);
    EXPECT_EQ(wav.bits, 16);
    EXPECT_EQ(wav.declaredBytes, qint64(wav.data.size()));
    EXPECT_TRUE(wav.samples() == SoundFiles::joined({a, b, c}));
}

TEST_F(PlayerEngineTest, threeWavFilesComeOutEndToEndToTheSample) {
    const Pcm a = SoundFiles::pcm(12345, 1);
    const Pcm b = SoundFiles::pcm(1, 2);
    const Pcm c = SoundFiles::pcm(6789, 3);
    playThrough(wavSink(), {files.wav("a.wav", a), files.wav("b.wav", b), files.wav("c.wav", c)});
    EXPECT_TRUE(out().samples() == SoundFiles::joined({a, b, c}));
}

TEST_F(PlayerEngineTest, threeOggFilesComeOutAsTheyDecodeOneByOne) {
    const Pcm source = SoundFiles::pcm(44100, 4);
    const QStringList names = {"a.ogg", "b.ogg", "c.ogg"};
    QStringList uris;
    std::vector<char> expected;
    for (int i = 0; i < names.size(); ++i) {
        const int frames = 20000 + 3001 * i;
        uris.append(files.ogg(names.at(i), Pcm(source.begin(), source.begin() + frames * 2)));
        std::vector<char> alone = SoundFiles::decoded(
            files.fileName(names.at(i)),
            "audio/x-raw,format=S32LE,rate=44100,channels=2,layout=interleaved");
        // The plain decoder may round the end up by a frame; the file holds `frames`.
        ASSERT_GE(alone.size(), size_t(frames) * 8);
        ASSERT_LE(alone.size(), size_t(frames + 1) * 8);
        expected.insert(expected.end(), alone.begin(), alone.begin() + frames * 8);
    }
    playThrough(wavSink(), uris);
    const WavFile wav = out();
    EXPECT_EQ(wav.bits, 32) << "nothing of a lossy file's precision is thrown away";
    EXPECT_TRUE(wav.data == expected);
}

TEST_F(PlayerEngineTest, theEndOfAnOggFileIsExactAtEveryLength) {
    const Pcm source = SoundFiles::pcm(9000, 4);
    QStringList uris;
    qint64 frames = 0;
    for (int i = 0; i < 12; ++i) {
        const int length = 4000 + 397 * i;
        uris.append(files.ogg(QStringLiteral("%1.ogg").arg(i),
                              Pcm(source.begin(), source.begin() + length * 2)));
        frames += length;
    }
    playThrough(wavSink(), uris);
    EXPECT_EQ(qint64(out().data.size()), frames * 8);
}

TEST_F(PlayerEngineTest, mixedContainersOfOneRateLoseNothing) {
    const Pcm a = SoundFiles::pcm(11111, 1);
    const Pcm b = SoundFiles::pcm(22222, 2);
    playThrough(wavSink(), {files.flac("a.flac", a), files.wav("b.wav", b)});
    EXPECT_TRUE(out().samples() == SoundFiles::joined({a, b}));
}

TEST_F(PlayerEngineTest, anotherRateIsConvertedToTheFirstOnes) {
    const Pcm a = SoundFiles::pcm(44100, 1);
    playThrough(wavSink(),
                {files.flac("a.flac", a), files.flac("b.flac", SoundFiles::pcm(48000, 2), 48000)});
    const WavFile wav = out();
    EXPECT_EQ(wav.rate, 44100);
    const Pcm all = wav.samples();
    ASSERT_EQ(all.size(), size_t(44100 + 44100) * 2) << "a second stays a second";
    EXPECT_TRUE(std::equal(a.begin(), a.end(), all.begin()));
}

TEST_F(PlayerEngineTest, theSinkKeepsItsFormatWhenSomethingElseIsPlayedLater) {
    TestEngine engine(wavSink());
    Listener listener(engine);
    engine.play(1, files.wav("a.wav", SoundFiles::pcm(4410, 1)), 0, false);
    ASSERT_TRUE(listener.waitForLast("finished 1"));
    engine.play(2, files.wav("b.wav", SoundFiles::pcm(4800, 2), 48000), 0, false);
    ASSERT_TRUE(listener.waitForLast("finished 2"));
    engine.stop();
    EXPECT_EQ(out().rate, 44100);
    EXPECT_EQ(out().samples().size(), size_t(8820) * 2);
}

TEST_F(PlayerEngineTest, anItemAnnouncedAtTheVeryEndStillFollowsWithoutAGap) {
    const Pcm a = SoundFiles::pcm(5000, 1);
    const Pcm b = SoundFiles::pcm(5000, 2);
    const QString uriB = files.wav("b.wav", b);
    {
        TestEngine engine(wavSink());
        Listener listener(engine);
        engine.play(1, files.wav("a.wav", a), 0, false);
        ASSERT_TRUE(listener.waitForLast("finished 1"));
        engine.setNext(2, uriB);
        ASSERT_TRUE(listener.waitForLast("finished 2"));
        EXPECT_EQ(listener.told, (QStringList{"started 1", "ended 1", "finished 1", "started 2",
                                              "ended 2", "finished 2"}));
    }
    EXPECT_TRUE(out().samples() == SoundFiles::joined({a, b}));
}

TEST_F(PlayerEngineTest, aReplacedAnnouncementNeverStarts) {
    const Pcm a = SoundFiles::pcm(3000, 1);
    const Pcm b = SoundFiles::pcm(3000, 2);
    const Pcm c = SoundFiles::pcm(3000, 3);
    const QString uriB = files.wav("b.wav", b);
    const QString uriC = files.wav("c.wav", c);
    {
        TestEngine engine(wavSink());
        Listener listener(engine);
        // As late as it can be: everything of the first one is decoded, its successor is ready.
        listener.atEnd = [&](PlayerEngine::Generation generation) {
            if (generation == 1)
                engine.setNext(3, uriC);
        };
        engine.play(1, files.wav("a.wav", a), 0, false);
        engine.setNext(2, uriB);
        ASSERT_TRUE(listener.waitForLast("finished 3"));
        EXPECT_FALSE(listener.told.contains("started 2"));
    }
    EXPECT_TRUE(out().samples() == SoundFiles::joined({a, c}));
}

TEST_F(PlayerEngineTest, aDroppedAnnouncementNeverStartsAndTheEndIsTold) {
    const Pcm a = SoundFiles::pcm(3000, 1);
    const QString uriB = files.wav("b.wav", SoundFiles::pcm(3000, 2));
    {
        TestEngine engine(wavSink());
        Listener listener(engine);
        listener.atEnd = [&](PlayerEngine::Generation) { engine.clearNext(); };
        engine.play(1, files.wav("a.wav", a), 0, false);
        engine.setNext(2, uriB);
        ASSERT_TRUE(listener.waitForLast("finished 1"));
        turnEventsFor(50);
        EXPECT_EQ(listener.told, (QStringList{"started 1", "ended 1", "finished 1"}));
    }
    EXPECT_TRUE(out().samples() == a);
}

TEST_F(PlayerEngineTest, theEndIsToldEvenWhenTheItemItWaitedForIsDropped) {
    TestEngine engine("null");
    Listener listener(engine);
    engine.play(1, files.wav("a.wav", SoundFiles::pcm(3000, 1)), 0, false);
    ASSERT_TRUE(listener.waitForLast("finished 1"));
    engine.setNext(2, files.wav("b.wav", SoundFiles::pcm(3000, 2)));
    engine.clearNext();
    ASSERT_TRUE(waitUntil([&] { return listener.told.count("finished 1") == 2; }));
    EXPECT_FALSE(listener.told.contains("started 2"));
}

TEST_F(PlayerEngineTest, playDiscardsWhatWasAnnounced) {
    const QString uri = files.wav("a.wav", SoundFiles::pcm(3000, 1));
    TestEngine engine("null");
    Listener listener(engine);
    engine.play(1, uri, 0, false);
    engine.setNext(2, uri);
    engine.play(3, uri, 0, false);
    ASSERT_TRUE(listener.waitForLast("finished 3"));
    EXPECT_EQ(listener.told, (QStringList{"started 3", "ended 3", "finished 3"}));
}

TEST_F(PlayerEngineTest, whatCannotBePlayedFailsWithAReason) {
    const QList<QPair<QString, QString>> rows = {
        {files.uri("missing.flac"), "there is no such file"},
        {QString(), "there is no address to play"},
        {"no address", "there is no address to play"},
        {"fd://0", "its kind of address is not played"},
        {files.uri(""), "there is no such file"},
        {files.text("words.flac", "this is no sound at all, only words"), {}},
        {files.text("empty.wav", ""), {}},
        {files.wav("nothing.wav", {}), {}},
    };
    TestEngine engine("null");
    Listener listener(engine);
    quint64 generation = 0;
    for (const auto& row : rows) {
        engine.play(++generation, row.first, 0, false);
        ASSERT_TRUE(listener.waitForLast(QStringLiteral("failed %1").arg(generation)))
            << row.first.toStdString();
        EXPECT_FALSE(listener.failure.isEmpty());
        if (!row.second.isEmpty()) {
            EXPECT_EQ(listener.failure, row.second);
        }
    }
    turnEventsFor(30);
    EXPECT_EQ(listener.told.size(), rows.size()) << "each once, and none started";
}

TEST_F(PlayerEngineTest, anyFileNameIsPlayed) {
    TestEngine engine("null");
    Listener listener(engine);
    const Pcm a = SoundFiles::pcm(500, 1);
    quint64 generation = 0;
    for (const QString& name : {QStringLiteral("a b.wav"), QStringLiteral("100%.wav"),
                                QStringLiteral("50%20off.wav"), QStringLiteral("#1?&=.wav"),
                                QStringLiteral("Ümläut 音.wav"), QStringLiteral("'\"$(x).wav")}) {
        engine.play(++generation, files.wav(name, a), 0, false);
        EXPECT_TRUE(listener.waitForLast(QStringLiteral("finished %1").arg(generation)))
            << name.toStdString() << ": " << listener.failure.toStdString();
    }
    files.wav("plain name.wav", a);
    engine.play(++generation, "file://" + files.fileName("plain name.wav"), 0, false);
    EXPECT_TRUE(listener.waitForLast(QStringLiteral("finished %1").arg(generation)))
        << "an address that was not encoded";
}

TEST_F(PlayerEngineTest, aBrokenNextItemFailsOnlyWhenItsTurnComes) {
    const Pcm a = SoundFiles::pcm(44100, 1);
    {
        TestEngine engine(wavSink());
        Listener listener(engine);
        engine.play(1, files.wav("a.wav", a), 0, false);
        engine.setNext(2, files.uri("missing.wav"));
        ASSERT_TRUE(listener.waitForLast("failed 2"));
        EXPECT_EQ(listener.told, (QStringList{"started 1", "ended 1", "failed 2"}));
    }
    EXPECT_TRUE(out().samples() == a) << "the one before it is heard to its end";
}

TEST_F(PlayerEngineTest, seekingGoesOnExactlyThere) {
    const Pcm a = SoundFiles::pcm(44100, 1);
    for (const QString& uri : {files.wav("a.wav", a), files.flac("a.flac", a)}) {
        {
            TestEngine engine(wavSink());
            Listener listener(engine);
            engine.play(1, uri, 250, false);
            ASSERT_TRUE(listener.waitForLast("finished 1"));
        }
        const Pcm expected(a.begin() + 44100 / 4 * 2, a.end());
        EXPECT_TRUE(out().samples() == expected) << uri.toStdString();
    }
}

TEST_F(PlayerEngineTest, seekingWhilePausedIsHeardAfterTheResume) {
    const Pcm a = SoundFiles::pcm(44100, 1);
    {
        TestEngine engine(wavSink());
        Listener listener(engine);
        engine.play(1, files.flac("a.flac", a), 0, true);
        ASSERT_TRUE(listener.waitForLast("started 1"));
        EXPECT_EQ(engine.duration(), 1000);
        ASSERT_TRUE(engine.seek(500));
        EXPECT_EQ(engine.position(), 500);
        turnEventsFor(50);
        EXPECT_EQ(engine.position(), 500);
        engine.setPaused(false);
        ASSERT_TRUE(listener.waitForLast("finished 1"));
        EXPECT_EQ(engine.position(), 1000);
    }
    EXPECT_TRUE(out().samples() == Pcm(a.begin() + 44100, a.end()));
}

TEST_F(PlayerEngineTest, seekingBackFromTheEndPlaysTheTailAgain) {
    const Pcm a = SoundFiles::pcm(8820, 1);
    {
        TestEngine engine(wavSink());
        Listener listener(engine);
        engine.play(1, files.wav("a.wav", a), 0, false);
        ASSERT_TRUE(listener.waitForLast("finished 1"));
        ASSERT_TRUE(engine.seek(100));
        ASSERT_TRUE(waitUntil([&] { return listener.told.count("finished 1") == 2; }));
    }
    const Pcm tail(a.begin() + 4410 * 2, a.end());
    EXPECT_TRUE(out().samples() == SoundFiles::joined({a, tail}));
}

TEST_F(PlayerEngineTest, thePositionIsThatOfTheItemNotOfTheSound) {
    TestEngine engine("null");
    Listener listener(engine);
    qint64 atStart = -1;
    QObject::connect(&engine, &PlayerEngine::started, &engine, [&](auto generation) {
        if (generation == 2) {
            engine.setPaused(true);
            atStart = engine.position();
        }
    });
    engine.play(1, files.wav("a.wav", SoundFiles::pcm(44100, 1)), 0, false);
    engine.setNext(2, files.wav("b.wav", SoundFiles::pcm(22050, 2)));
    ASSERT_TRUE(listener.waitForCount(3));
    EXPECT_LE(atStart, 500);
    engine.setPaused(false);
    ASSERT_TRUE(listener.waitForLast("finished 2"));
    EXPECT_EQ(engine.position(), 500);
}

TEST_F(PlayerEngineTest, anEndFromBeforeASeekIsNotTold) {
    TestEngine engine("null");
    Listener listener(engine);
    engine.play(1, files.wav("a.wav", SoundFiles::pcm(4410, 1)), 0, true);
    ASSERT_TRUE(listener.waitForLast("started 1"));
    engine.setPaused(false);
    QThread::msleep(150); // it runs to its end, which the engine has not looked at yet
    EXPECT_EQ(engine.position(), 100);
    ASSERT_TRUE(engine.seek(0));
    ASSERT_TRUE(listener.waitForLast("finished 1"));
    turnEventsFor(50);
    EXPECT_EQ(listener.told, (QStringList{"started 1", "ended 1", "finished 1"}));
}

TEST_F(PlayerEngineTest, aPauseHoldsTheSoundBack) {
    TestEngine engine("null");
    Listener listener(engine);
    engine.play(1, files.wav("a.wav", SoundFiles::pcm(4410, 1)), 0, true);
    ASSERT_TRUE(listener.waitForLast("started 1"));
    turnEventsFor(60);
    EXPECT_EQ(listener.told, QStringList{"started 1"});
    engine.setPaused(false);
    EXPECT_TRUE(listener.waitForLast("finished 1"));
}

TEST_F(PlayerEngineTest, nothingIsToldAfterStop) {
    TestEngine engine("null");
    Listener listener(engine);
    const QString uri = files.wav("a.wav", SoundFiles::pcm(44100, 1));
    engine.play(1, uri, 0, true);
    ASSERT_TRUE(listener.waitForLast("started 1"));
    engine.setNext(2, uri);
    engine.setPaused(false);
    engine.stop();
    turnEventsFor(60);
    EXPECT_EQ(listener.told, QStringList{"started 1"});
    EXPECT_EQ(engine.position(), 0);
    EXPECT_EQ(engine.duration(), 0);
    EXPECT_FALSE(engine.seek(0));
}

TEST_F(PlayerEngineTest, aHundredQuickDecisionsEndInTheLastOne) {
    const Pcm a = SoundFiles::pcm(2000, 1);
    const QString uri = files.flac("a.flac", a);
    TestEngine engine("null");
    Listener listener(engine);
    for (quint64 i = 1; i <= 100; ++i) {
        engine.play(2 * i, uri, 0, false);
        engine.setNext(2 * i + 1, uri);
        if (i % 7 == 0)
            QCoreApplication::processEvents();
        if (i % 11 == 0)
            engine.seek(10);
        if (i % 13 == 0)
            engine.stop();
    }
    ASSERT_TRUE(listener.waitForLast("finished 201"));
    EXPECT_TRUE(listener.told.contains("started 200"));
}

} // namespace
