#include <QJsonDocument>

#include "Device.h"
#include "SoundFiles.h"

namespace {

class OrvoctlSession : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(device.start());
        device.waitForScan();
    }
    void run(const QStringList& arguments) {
        const Device::ProgramRun result = device.ctl(arguments);
        EXPECT_EQ(result.status, 0)
            << qPrintable(arguments.join(' ')) << ": " << qPrintable(result.err);
    }

    Device device;
};

} // namespace

TEST_F(OrvoctlSession, whatWasAnsweredIsThereAfterAKillAndTheQueueIsEmpty) {
    run({"create", "Party"});
    run({"create", "Sunday"});
    run({"add", "Party", device.musicFolder() + "/Band 1"});
    run({"add", "Sunday", device.musicFolder() + "/Band 2",
         device.musicFolder() + "/Band 3/Album 3/04 track.wav"});
    run({"move", "Party", "1", "--to", "3"});
    run({"remove", "Sunday", "2", "4"});
    run({"rename", "Sunday", "Sunday morning"});
    run({"create", "Extra"});
    run({"add", "Extra", "files:tree/Band%203/Album%203/01%20track.wav"});
    run({"merge", "Extra", "Party"});
    run({"shuffle", "Party", "on"});
    run({"collection", "create", "Weekend"});
    run({"collection", "add", "Weekend", "Party"});
    run({"add", "queue", device.musicFolder() + "/Band 1"});
    EXPECT_EQ(device.titles("playlists:pq/items").size(), 4);

    device.kill();
    device.expectInvariants();
    ASSERT_TRUE(device.start());

    EXPECT_EQ(device.titles("playlists:pl/list"),
              (QStringList{"Create new playlist", "Party", "Sunday morning"}));
    EXPECT_EQ(device.titles("playlists:pl/items/1"),
              (QStringList{"Track 1.2", "Track 1.3", "Track 1.1", "Track 1.4", "Track 3.1"}));
    EXPECT_EQ(device.titles("playlists:pl/items/2"),
              (QStringList{"Track 2.1", "Track 2.3", "Track 3.4"}));
    EXPECT_EQ(device.titles("playlists:cl/items%3Fclid%3D1"), QStringList{"Party"});
    EXPECT_EQ(device.titles("playlists:pq/items"), QStringList());
    EXPECT_EQ(device.query("SELECT shuffle FROM playlists WHERE uid = 1"), QStringList{"1"});
}

TEST_F(OrvoctlSession, aListIsSortedAndLosesItsDuplicates) {
    const QString album = device.musicFolder() + "/Band 3/Album 3/";
    const QByteArray rows = "playlists:pl/items/1";
    run({"create", "Party"});
    for (const char* track : {"03 track.wav", "01 track.wav", "03 track.wav", "02 track.wav"})
        run({"add", "Party", album + track});
    const QStringList added = device.titles(rows);
    ASSERT_EQ(added.size(), 4);
    ASSERT_EQ(added.at(0), added.at(2));
    const QString first = added.at(1);
    const QString second = added.at(3);
    const QString third = added.at(0);

    run({"sort", "Party", "--by", "title"});
    EXPECT_EQ(device.titles(rows), QStringList({first, second, third, third}));
    run({"sort", "Party", "--by", "title", "--reverse"});
    EXPECT_EQ(device.titles(rows), QStringList({third, third, second, first}));

    const Device::ProgramRun removed = device.ctl({"dedupe", "Party", "--json"});
    EXPECT_EQ(removed.status, 0) << qPrintable(removed.err);
    EXPECT_EQ(removed.out, "{\"removed\":1}\n");
    EXPECT_EQ(device.titles(rows), QStringList({third, second, first}));

    device.kill();
    ASSERT_TRUE(device.start());
    EXPECT_EQ(device.titles(rows), QStringList({third, second, first}));
}

TEST_F(OrvoctlSession, aRefusalIsStatusOneAndAWrongCallStatusTwo) {
    const Device::ProgramRun refused = device.ctl({"set", "playlists:pl/create", R"({"name":""})"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(
        refused.err,
        "orvoctl: Could not create playlist. Please provide a non-empty string as field. (name)\n");
    EXPECT_EQ(device.ctl({"no-such-verb"}).status, 2);
}

// In real time: a machine without sound keeps the time silently.
TEST(OrvoctlPlaying, aListGoesOnWhereItWasStoppedAndWhatComesIsListed) {
    Device device({"--audio-sink", "auto"});
    for (int i = 1; i <= 4; ++i)
        SoundFiles::writeWav(QStringLiteral("%1/Long/%2.wav").arg(device.musicFolder()).arg(i),
                             {QStringLiteral("Long %1").arg(i), "Band", "Album", "", i}, 60000);
    ASSERT_TRUE(device.start());
    device.waitForScan();
    ASSERT_EQ(device.ctl({"create", "Party"}).status, 0);
    ASSERT_EQ(device.ctl({"add", "Party", device.musicFolder() + "/Long"}).status, 0);
    const auto plays = [&device](const QStringList& words, const QString& said) {
        EXPECT_EQ(device.ctl(QStringList{"play", "Party"} + words).err, said);
        EXPECT_TRUE(device.waitForValue("player:state", "playing"));
    };
    const auto status = [&device](const char* what) {
        const Device::ProgramRun result = device.ctl({"--json", "status"});
        return QJsonDocument::fromJson(result.out.toUtf8()).object().value(what);
    };
    EXPECT_EQ(device.ctl({"next-up"}).out, "nothing comes next\n");
    plays({}, "playing Party (#1) from track 1\n");
    EXPECT_EQ(device.ctl({"next"}).status, 0);
    EXPECT_TRUE(device.waitForValue("player:state", "playing"));
    EXPECT_EQ(device.ctl({"next-up"}).out, "Party (#1): 2 tracks to come\n"
                                           "POS  TITLE   ARTIST  ALBUM  TIME\n"
                                           "  3  Long 3  Band    Album  1:00\n"
                                           "  4  Long 4  Band    Album  1:00\n");

    // Both a stop and an end of the device keep the place.
    EXPECT_EQ(device.ctl({"seek", "0:30"}).status, 0);
    EXPECT_EQ(device.ctl({"stop"}).status, 0);
    plays({}, "playing Party (#1) from track 2; --from 1 to begin\n");
    EXPECT_EQ(status("place").toInt(), 2);
    EXPECT_GE(status("position").toInt(), 30000);
    EXPECT_EQ(device.ctl({"seek", "0:40"}).status, 0);
    EXPECT_EQ(device.end(), 0);
    ASSERT_TRUE(device.start());
    plays({}, "playing Party (#1) from track 2; --from 1 to begin\n");
    EXPECT_GE(status("position").toInt(), 40000);
    plays({"--from", "1"}, "playing Party (#1) from track 1\n");
    EXPECT_EQ(status("place").toInt(), 1);
    EXPECT_LT(status("position").toInt(), 30000);

    // Stopped in its last track the list goes on there; played to its end it begins anew.
    plays({"--from", "4"}, "playing Party (#1) from track 4\n");
    EXPECT_EQ(device.ctl({"next-up"}).out, "nothing comes next\n");
    EXPECT_EQ(device.ctl({"seek", "0:30"}).status, 0);
    EXPECT_EQ(device.ctl({"stop"}).status, 0);
    plays({}, "playing Party (#1) from track 4; --from 1 to begin\n");
    EXPECT_EQ(device.ctl({"seek", "0:59"}).status, 0);
    EXPECT_TRUE(device.waitForValue("player:state", "stopped"));
    plays({}, "playing Party (#1) from track 1\n");
}
