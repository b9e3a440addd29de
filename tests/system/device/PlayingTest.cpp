#include <random>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QtEndian>

#include "Device.h"

namespace {

constexpr int HeaderBytes = 44;

// Noise that differs from one seed to the next, as 16-bit stereo at 44.1 kHz.
QByteArray noise(unsigned seed, int frames) {
    std::minstd_rand engine(seed);
    QByteArray pcm(frames * 4, Qt::Uninitialized);
    for (char& byte : pcm)
        byte = char(engine() >> 8);
    return pcm;
}

void writeWav(const QString& file, const QByteArray& pcm) {
    const auto u32 = [](quint32 number) {
        QByteArray bytes(4, 0);
        qToLittleEndian(number, bytes.data());
        return bytes;
    };
    const auto u16 = [](quint16 number) {
        QByteArray bytes(2, 0);
        qToLittleEndian(number, bytes.data());
        return bytes;
    };
    QFile out(file);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly)) << qPrintable(file);
    out.write("RIFF" + u32(36 + pcm.size()) + "WAVEfmt " + u32(16) + u16(1) + u16(2) + u32(44100) +
              u32(44100 * 4) + u16(4) + u16(16) + "data" + u32(pcm.size()) + pcm);
}

// What sounded, out of the recording.
QByteArray recorded(const QString& file) {
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return {};
    return in.readAll().mid(HeaderBytes);
}

// The whole device with a recording in place of the speakers.
class Playing : public ::testing::Test {
protected:
    Playing()
        : recording(m_folder.filePath("sound.wav")), device({"--audio-sink", "wav=" + recording}) {}

    // An album of noise; lengths that no block size divides.
    void writeAlbum(const QString& suffix) {
        const QString folder = device.musicFolder() + "/Noise";
        QDir().mkpath(folder);
        for (int i = 0; i < 3; ++i) {
            tracks.append(noise(unsigned(i + 1), 3 * 44100 + 1237 * (i + 1)));
            const QString wav = QStringLiteral("%1/%2.wav").arg(folder).arg(i + 1);
            writeWav(wav, tracks.last());
            if (suffix != "wav") {
                ASSERT_EQ(QProcess::execute(
                              "sox",
                              {wav, QStringLiteral("%1/%2.%3").arg(folder).arg(i + 1).arg(suffix)}),
                          0);
                QFile::remove(wav);
            }
        }
    }
    void makeParty(const QString& folder) {
        ASSERT_TRUE(device.start());
        device.waitForScan();
        ASSERT_EQ(device.ctl({"create", "Party"}).status, 0);
        ASSERT_EQ(device.ctl({"add", "Party", device.musicFolder() + "/" + folder}).status, 0);
    }
    void playToTheEnd() {
        const Device::ProgramRun played = device.ctl({"play", "Party"});
        ASSERT_EQ(played.status, 0) << qPrintable(played.err);
        // A recording is faster than a look at the state: that something sounded shows in the file.
        ASSERT_TRUE(waitUntil([this] { return QFile(recording).size() > HeaderBytes; }));
        ASSERT_TRUE(device.waitForValue("player:state", "stopped"));
    }

    QTemporaryDir m_folder;
    QString recording;
    QList<QByteArray> tracks;
    Device device;
};

} // namespace

TEST_F(Playing, threeFilesOfAnAlbumSoundEndToEndToTheSample) {
    writeAlbum("wav");
    makeParty("Noise");
    playToTheEnd();
    EXPECT_TRUE(recorded(recording) == tracks[0] + tracks[1] + tracks[2]);
}

TEST_F(Playing, threeFlacFilesToo) {
    writeAlbum("flac");
    makeParty("Noise");
    playToTheEnd();
    EXPECT_TRUE(recorded(recording) == tracks[0] + tracks[1] + tracks[2]);
}

TEST_F(Playing, aShuffledAlbumSoundsEndToEndInTheOrderThatIsTold) {
    writeAlbum("flac");
    makeParty("Noise");
    ASSERT_EQ(device.ctl({"shuffle", "Party", "on"}).status, 0);
    // A client that watches sees each track as it starts.
    QProcess watcher;
    watcher.start(QStringLiteral(ORVOCTL), {"--url", device.url(), "--json", "watch"});
    ASSERT_TRUE(watcher.waitForStarted());
    // It is connected when it shows a change.
    QByteArray seen;
    for (int volume = 90; seen.isEmpty() && volume > 0; --volume) {
        ASSERT_EQ(device.ctl({"volume", QString::number(volume)}).status, 0);
        watcher.waitForReadyRead(300);
        seen += watcher.readAllStandardOutput();
    }
    playToTheEnd();

    const auto orderOf = [](const QByteArray& lines) {
        QList<int> order;
        for (const QByteArray& line : lines.split('\n')) {
            const QJsonObject data =
                QJsonDocument::fromJson(line).object().value("data").toObject();
            const QJsonObject track = data.value("value").toObject().value("trackRoles").toObject();
            if (data.value("path").toString() != "player:data" || track.isEmpty())
                continue;
            const int number = track.value("value").toObject().value("i32").toInt(-1);
            if (order.isEmpty() || order.last() != number)
                order.append(number);
        }
        return order;
    };
    for (int i = 0; i < 50 && orderOf(seen).size() < 3; ++i) {
        watcher.waitForReadyRead(100);
        seen += watcher.readAllStandardOutput();
    }
    watcher.kill();
    watcher.waitForFinished();
    const QList<int> order = orderOf(seen);
    ASSERT_EQ(order.size(), 3);
    EXPECT_EQ(order.first(), 0) << "the track that was started is the first of the order";
    QByteArray expected;
    for (int number : order)
        expected += tracks.value(number);
    EXPECT_TRUE(recorded(recording) == expected);
}

TEST_F(Playing, fiveBrokenFilesArePassedOverAndTheSixthEndsPlayback) {
    const QString folder = device.musicFolder() + "/Broken";
    QDir().mkpath(folder);
    for (int i = 1; i <= 6; ++i) {
        QFile file(QStringLiteral("%1/%2.wav").arg(folder).arg(i));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("this is no sound at all");
    }
    writeWav(folder + "/7.wav", noise(7, 4410));
    makeParty("Broken");
    ASSERT_EQ(device.ctl({"play", "Party"}).status, 0);
    ASSERT_TRUE(device.waitForLog("Reached maximum error count exiting"));
    EXPECT_EQ(device.log().count("Reached maximum error count exiting"), 1);
    ASSERT_TRUE(device.waitForValue("player:state", "stopped"));
    EXPECT_EQ(recorded(recording), QByteArray()) << "the good file behind them is not reached";
    EXPECT_EQ(device.query("SELECT lastPlayedIndex FROM playlists WHERE uid = 1"),
              QStringList{"5"});
}

TEST_F(Playing, threeBrokenFilesDoNotKeepAGoodOneFromPlaying) {
    const QString folder = device.musicFolder() + "/Mixed";
    QDir().mkpath(folder);
    for (int i = 1; i <= 3; ++i) {
        QFile file(QStringLiteral("%1/%2.wav").arg(folder).arg(i));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("this is no sound at all");
    }
    const QByteArray good = noise(4, 44100);
    writeWav(folder + "/4.wav", good);
    makeParty("Mixed");
    ASSERT_EQ(device.ctl({"play", "Party"}).status, 0);
    ASSERT_TRUE(waitUntil([&] { return recorded(recording).size() >= good.size(); }));
    ASSERT_TRUE(device.waitForValue("player:state", "stopped"));
    EXPECT_TRUE(recorded(recording) == good);
}

// In real time: a machine without sound keeps the time silently.
class PlayingInRealTime : public ::testing::Test {
protected:
    PlayingInRealTime() : device({"--audio-sink", "auto"}) {}

    void SetUp() override {
        const QString folder = device.musicFolder() + "/Noise";
        QDir().mkpath(folder);
        for (int i = 1; i <= 3; ++i)
            writeWav(QStringLiteral("%1/%2.wav").arg(folder).arg(i),
                     noise(unsigned(i), 30 * 44100));
        ASSERT_TRUE(device.start());
        device.waitForScan();
        ASSERT_EQ(device.ctl({"create", "Party"}).status, 0);
        ASSERT_EQ(device.ctl({"add", "Party", folder}).status, 0);
    }
    QJsonObject status() {
        return QJsonDocument::fromJson(device.ctl({"--json", "status"}).out.toUtf8()).object();
    }
    void play(int place) {
        ASSERT_EQ(device.ctl({"play", "Party", QString::number(place)}).status, 0);
        ASSERT_TRUE(waitForPlace(place));
        ASSERT_TRUE(device.waitForValue("player:state", "playing"));
    }
    bool waitForPlace(int place) {
        return waitUntil([&] { return status().value("place").toInt() == place; });
    }

    Device device;
};

TEST_F(PlayingInRealTime, playBeginsWithTheTrackOfThisNumber) {
    EXPECT_EQ(status().value("state").toString(), "stopped");
    EXPECT_EQ(device.ctl({"play", "Party", "9"}).status, 1);
    EXPECT_EQ(device.ctl({"play", "Party", "2"}).err, "playing Party (#1) from track 2\n");
    ASSERT_TRUE(waitForPlace(2));
    const QJsonObject now = status();
    EXPECT_EQ(now.value("state").toString(), "playing");
    EXPECT_EQ(now.value("title").toString(), "2");
    EXPECT_EQ(now.value("list").toString(), "Playlist - Party");
    EXPECT_EQ(now.value("tracksCount").toInt(), 3);
    EXPECT_EQ(now.value("duration").toInt(), 30000);
}

TEST_F(PlayingInRealTime, seekMovesAPausedTrackAndResumePlaysOn) {
    play(2);
    EXPECT_EQ(device.ctl({"pause"}).status, 0);
    ASSERT_TRUE(device.waitForValue("player:state", "paused"));
    EXPECT_EQ(device.ctl({"seek", "0:10"}).status, 0);
    EXPECT_NEAR(status().value("position").toInt(), 10000, 500);
    EXPECT_EQ(device.ctl({"seek", "soon"}).status, 2);
    EXPECT_EQ(device.ctl({"resume"}).status, 0);
    EXPECT_TRUE(device.waitForValue("player:state", "playing"));
}

TEST_F(PlayingInRealTime, nextAndPreviousGoThroughTheList) {
    play(2);
    EXPECT_EQ(device.ctl({"next"}).status, 0);
    EXPECT_TRUE(waitForPlace(3));
    EXPECT_EQ(device.ctl({"previous"}).status, 0);
    EXPECT_TRUE(waitForPlace(2));
}

TEST_F(PlayingInRealTime, modeAndVolumeAreSetAndShown) {
    play(2);
    EXPECT_EQ(device.ctl({"mode", "repeatAll"}).status, 0);
    EXPECT_TRUE(device.waitForValue("player:playMode", "repeatAll"));
    EXPECT_EQ(device.ctl({"mode"}).out, "repeatAll\n");
    EXPECT_EQ(device.query("SELECT repeatAll FROM playlists WHERE uid = 1"), QStringList{"1"});
    EXPECT_EQ(device.ctl({"mode", "loud"}).status, 1);
    EXPECT_EQ(device.ctl({"volume", "40"}).status, 0);
    EXPECT_EQ(device.ctl({"volume"}).out, "40\n");
    EXPECT_EQ(device.ctl({"volume", "101"}).status, 1);

    const QString text = device.ctl({"status"}).out;
    EXPECT_TRUE(text.startsWith("playing: 2\n")) << qPrintable(text);
    EXPECT_TRUE(text.contains("  Playlist - Party, track 2 of 3\n  mode: repeatAll   volume: 40\n"))
        << qPrintable(text);
}

TEST_F(PlayingInRealTime, afterStopNoTrackIsShown) {
    play(2);
    EXPECT_EQ(device.ctl({"stop"}).status, 0);
    ASSERT_TRUE(device.waitForValue("player:state", "stopped"));
    EXPECT_EQ(status().value("title").toString(), "");
}

TEST_F(PlayingInRealTime, removingAPausedTrackLeavesTheNextOnePaused) {
    play(1);
    ASSERT_EQ(device.ctl({"pause"}).status, 0);
    ASSERT_EQ(device.ctl({"remove", "Party", "1"}).status, 0);
    ASSERT_TRUE(waitUntil([this] { return status().value("title").toString() == "2"; }));
    EXPECT_TRUE(device.waitForValue("player:state", "paused"));
    // It does not begin a little later.
    turnEventsFor(300);
    EXPECT_EQ(device.stringValue("player:state"), "paused");
    ASSERT_EQ(device.ctl({"resume"}).status, 0);
    EXPECT_TRUE(device.waitForValue("player:state", "playing"));
}

TEST_F(PlayingInRealTime, aListThatDoesNotExistEndsWhatPlays) {
    play(1);
    device.command("player:playContainer",
                   R"({"mediaRoles": {"path": "playlists:pl/items/99",
                       "mediaData": {"metaData": {"playLogicPath": "playlists:playlogic"}}},
                       "index": 0, "type": 1})");
    EXPECT_TRUE(device.waitForValue("player:state", "stopped"));
}
