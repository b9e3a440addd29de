#include <QFile>
#include <QJsonDocument>

#include "Device.h"
#include "SoundFiles.h"

namespace {

// The music by its tags, and playlist files, from the shell. Three albums of four tracks each.
class OrvoctlMusic : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_folder.isValid());
        ASSERT_TRUE(device.start());
        device.waitForScan();
    }

    QString file(const QString& name) const { return m_folder.filePath(name); }
    QString write(const QString& name, const QByteArray& bytes) const {
        SoundFiles::writeBytes(file(name), bytes);
        return file(name);
    }
    static QByteArray read(const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
    }

    QTemporaryDir m_folder;
    Device device;
};

} // namespace

TEST_F(OrvoctlMusic, aPlaylistFileIsImportedAndWhatIsMissingToldByLine) {
    const QString list = write("Evening.m3u8", "#EXTM3U\nBand 1/Album 1/01 track.wav\n"
                                               "D:\\Music\\Band 2\\Album 2\\04 track.wav\n"
                                               "Band 9/gone\x1b.mp3\nhttp://example.org/live\n");
    // An escape character is in no playlist file.
    Device::ProgramRun run = device.ctl({"import", list});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "orvoctl: This is not a playlist file.\n");
    write("Evening.m3u8", read(list).replace("\x1b", ""));
    run = device.ctl({"import", list});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "not found, line 4: Band 9/gone.mp3\n"
                       "imported 3 of 4 tracks to Evening (#1)\n");
    EXPECT_EQ(device.titles("playlists:pl/items/1"),
              (QStringList{"Track 1.1", "Track 2.4", "http://example.org/live"}));
    run = device.ctl({"--json", "import", list, "--name", "Late"});
    EXPECT_EQ(QJsonDocument::fromJson(run.out.toUtf8()).object(),
              QJsonDocument::fromJson(R"({"plid": 2, "name": "Late", "added": 3,
                  "notFound": [{"line": 4, "text": "Band 9/gone.mp3"}]})")
                  .object());
}

TEST_F(OrvoctlMusic, anImportThatFindsNothingMakesNoPlaylist) {
    Device::ProgramRun run = device.ctl({"import", write("x.m3u", "gone.mp3\n")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "not found, line 1: gone.mp3\n"
                       "orvoctl: none of its tracks is in the device's music folder\n");
    run = device.ctl({"import", file("none.m3u")});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err.section('\n', 0, 0),
              "orvoctl: cannot read " + file("none.m3u") + ": No such file or directory");
    EXPECT_EQ(device.titles("playlists:pl/list"), QStringList{"Create new playlist"});
}

TEST_F(OrvoctlMusic, aPlaylistIsExportedByTheSuffixOfTheFileAndReplacesNoneUnasked) {
    ASSERT_EQ(device.ctl({"import", write("Two.m3u", "Band 3/Album 3/01 track.wav\n")}).status, 0);
    Device::ProgramRun run = device.ctl({"export", "Two", file("two.m3u8")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "exported 1 track of Two (#1) to " + file("two.m3u8") + "\n");
    EXPECT_TRUE(read(file("two.m3u8")).contains("\nBand 3/Album 3/01 track.wav\n"));
    EXPECT_EQ(device.ctl({"export", "Two", file("two.xspf"), "--paths", "url"}).status, 0);
    EXPECT_TRUE(read(file("two.xspf")).contains("/music/Band%203/Album%203/01%20track.wav</loc"));
    run = device.ctl({"export", "Two", file("two.m3u8"), "--paths", "absolute"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "orvoctl: " + file("two.m3u8") + " is there already; --force replaces it\n");
    EXPECT_EQ(
        device.ctl({"export", "Two", file("two.m3u8"), "--paths", "absolute", "--force"}).status,
        0);
    EXPECT_TRUE(read(file("two.m3u8")).contains("\n/"));
    EXPECT_EQ(device.ctl({"export", "Two", file("two.txt")}).err,
              "orvoctl: The format must be m3u8 or xspf.\n");
    EXPECT_EQ(device.ctl({"export", "Two", file("no/two.m3u8")}).status, 2);
}

TEST_F(OrvoctlMusic, artistsAndAlbumsAreListed) {
    EXPECT_EQ(device.ctl({"artists"}).out, "ARTIST\nBand 1\nBand 2\nBand 3\n");
    EXPECT_EQ(device.ctl({"albums", "--artist", "band 2"}).out,
              "ALBUM    ARTIST  YEAR\nAlbum 2  Band 2\n");
    EXPECT_EQ(device.ctl({"albums"}).out.count('\n'), 4);
    EXPECT_EQ(device.ctl({"albums", "--artist", "Nobody"}).out, "ALBUM  ARTIST  YEAR\n");
    const QJsonArray artists =
        QJsonDocument::fromJson(device.ctl({"artists", "--json"}).out.toUtf8()).array();
    EXPECT_EQ(artists.at(0).toObject().value("path"), "files:albums?albumArtist=Band%201");
}

TEST_F(OrvoctlMusic, aSearchShowsWhatIsFoundAndAddsOrPlaysItsTracks) {
    Device::ProgramRun run = device.ctl({"search", "album", "3", "--count", "2"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.toStdString(), "KIND   TITLE      ARTIST  ALBUM    TIME\n"
                                     "album  Album 3    Band 3\n"
                                     "track  Track 1.3  Band 1  Album 1  0:00\n"
                                     "track  Track 2.3  Band 2  Album 2  0:00\n");
    EXPECT_EQ(run.err.toStdString(), "6 tracks in all; --count shows more\n");
    run = device.ctl({"--json", "search", "album 3"});
    const QJsonObject found = QJsonDocument::fromJson(run.out.toUtf8()).object();
    EXPECT_EQ(found.value("albumsCount"), 1);
    EXPECT_EQ(found.value("albums").toArray().at(0).toObject().value("artist"), "Band 3");
    EXPECT_EQ(device.ctl({"search", "nothing of the kind"}).err, "nothing found\n");

    ASSERT_EQ(device.ctl({"create", "Party"}).status, 0);
    run = device.ctl({"search", "album 3", "--add", "Party"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.toStdString(), "added 6 of 6 tracks to Party (#1)\n");
    const QStringList tracks = {"Track 1.3", "Track 2.3", "Track 3.1",
                                "Track 3.2", "Track 3.3", "Track 3.4"};
    EXPECT_EQ(device.titles("playlists:pl/items/1"), tracks);
    EXPECT_EQ(device.ctl({"search", "album 3", "--play"}).status, 0);
    EXPECT_EQ(device.titles("playlists:pq/items"), tracks);
    EXPECT_GE(device.rows("playlists:pq/items").value("lastPlayedIndex").toInt(-1), 0);
    EXPECT_EQ(device.ctl({"search", "1.2", "--play", "--add", "Party"}).status, 2);
    EXPECT_EQ(device.ctl({"search", "nothing of the kind", "--play"}).err.toStdString(),
              "orvoctl: there are no tracks in it\n");
    EXPECT_EQ(device.ctl({"search", QString(201, 'a')}).err.toStdString(),
              "orvoctl: More than 200 characters are too long a search.\n");
}
