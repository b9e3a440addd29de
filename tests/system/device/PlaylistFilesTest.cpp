#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTextCodec>

#include "Device.h"
#include "SoundFiles.h"

namespace {

// Playlist files in the forms that programs write, brought in from the shell. Beside the device's
// three albums of four tracks there is one with letters that are not ASCII, and a folder in a
// circle.
class PlaylistFiles : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_folder.isValid());
        SoundTags tags;
        tags.title = QString::fromUtf8("Über");
        tags.artist = QString::fromUtf8("Zoë");
        SoundFiles::writeWav(device.musicFolder() + QString::fromUtf8("/Zoë/Café/01 Über.wav"),
                             tags, 200);
        ASSERT_TRUE(QFile::link(device.musicFolder(), device.musicFolder() + "/Band 1/circle"));
        SoundFiles::writeWav(file("secret.wav"), tags, 200);
        ASSERT_TRUE(device.start());
        device.waitForScan();
    }

    QString file(const QString& name) const { return m_folder.filePath(name); }

    struct Imported {
        int status = -1;
        QString told; // with "N" for the playlist's number
        QStringList titles;
    };
    Imported import(const QString& name) {
        static const QRegularExpression number(QStringLiteral("\\(#([0-9]+)\\)"));
        const Device::ProgramRun run = device.ctl({"import", name});
        Imported result{run.status, run.err, {}};
        const QRegularExpressionMatch match = number.match(run.err);
        if (match.hasMatch())
            result.titles = device.titles("playlists:pl/items/" + match.captured(1).toLatin1());
        result.told.replace(number, "(#N)");
        return result;
    }
    Imported importBytes(const QString& name, const QByteArray& bytes) {
        SoundFiles::writeBytes(file(name), bytes);
        return import(file(name));
    }

    QTemporaryDir m_folder;
    Device device;
};

QByteArray cp1252(const char* utf8) {
    return QTextCodec::codecForName("windows-1252")->fromUnicode(QString::fromUtf8(utf8));
}

struct Kind {
    const char* file;
    QByteArray bytes;
    QStringList titles;
    const char* told;
};

} // namespace

TEST_F(PlaylistFiles, eachIsTakenAsTheProgramMeantItThatWroteIt) {
    const QString ueber = QString::fromUtf8("Über");
    const Kind kinds[] = {
        {"cp1252.m3u",
         cp1252("x:\\Music\\Band 1\\Album 1\\01 track.wav\r\nZoë\\Café\\01 Über.wav\r\n"
                "Band 9\\gone.mp3\r\n"),
         {"Track 1.1", ueber},
         "not found, line 3: Band 9\\gone.mp3\nimported 2 of 3 tracks to cp1252 (#N)\n"},
        {"marked.m3u8",
         "\xEF\xBB\xBF#EXTM3U\r\nZoë/Café/01 Über.wav\r\nBand 2/Album 2/02 track.wav\r\n",
         {ueber, "Track 2.2"},
         "imported 2 of 2 tracks to marked (#N)\n"},
        {"extended.m3u",
         "#EXTM3U\n#EXTINF:-1,Band 1 - Track 1.2, the other one\nBand 1/Album 1/02 track.wav\n"
         "#EXTINF:  0 ,Band 3 - Track 3.4\nelsewhere/a.wav\n"
         "#EXTINF:-1 logo=\"a,b\",Band 2 - Track 2.1\nelsewhere/b.wav\n"
         "#EXTINF:600,Band 2 - Track 2.2\nelsewhere/c.wav\n",
         {"Track 1.2", "Track 3.4", "Track 2.1"},
         "not found, line 9: elsewhere/c.wav\nimported 3 of 4 tracks to extended (#N)\n"},
        {"addresses.m3u8",
         "file:///mnt/Band%201/Album%201/03%20track.wav\n"
         "file://nas/mnt/Zo%C3%AB/Caf%C3%A9/01%20%C3%9Cber.wav\n"
         "FILE:///D:/Music/Band%203/Album%203/01%20track.wav\n",
         {"Track 1.3", ueber, "Track 3.1"},
         "imported 3 of 3 tracks to addresses (#N)\n"},
        {"absolute.m3u",
         QString(device.musicFolder() + "/Band 1/Album 1/01 track.wav\n").toUtf8() +
             "/home/eve/Music/Band 2/Album 2/01 track.wav\n",
         {"Track 1.1", "Track 2.1"},
         "imported 2 of 2 tracks to absolute (#N)\n"},
        {"two.pls",
         "[playlist]\nNumberOfEntries=2\nFile1=Band 1/Album 1/01 track.wav\nTitle1=One\nLength1=-1\n"
         "File2=Band 2\\Album 2\\01 track.wav\nTitle2=Two\nLength2=0\nVersion=2\n",
         {"Track 1.1", "Track 2.1"},
         "imported 2 of 2 tracks to two (#N)\n"},
        {"unordered.pls",
         "[playlist]\nfile12=Band 3/Album 3/04 track.wav\nFile3=gone.wav\n"
         "File2=Band 1/Album 1/04 track.wav\nNumberOfEntries=9\n",
         {"Track 1.4", "Track 3.4"},
         "not found, line 3: gone.wav\nimported 2 of 3 tracks to unordered (#N)\n"},
        {"names.xspf",
         "<?xml version=\"1.0\"?>\n<x:playlist xmlns:x=\"http://xspf.org/ns/0/\" version=\"1\">\n"
         "<x:title><![CDATA[A & B <live>]]></x:title><x:trackList>\n"
         "<x:track><x:location><![CDATA[file:///m/Band%201/Album%201/01%20track.wav]]></x:location>"
         "</x:track>\n<x:track><x:title>Track 2.3</x:title><x:creator>Band 2</x:creator></x:track>\n"
         "</x:trackList></x:playlist>\n",
         {"Track 1.1", "Track 2.3"},
         "imported 2 of 2 tracks to A & B <live> (#N)\n"},
        {"based.xspf",
         "<playlist xmlns=\"http://xspf.org/ns/0/\" version=\"1\" xml:base=\"file:///m/Band%201/\">\n"
         "<trackList xml:base=\"Album%201/\">\n"
         "<track><location>02%20track.wav</location></track>\n"
         "<track xml:base=\"http://example.org/a/\"><location>live.mp3</location></track>\n"
         "<track><location xml:base=\"../../Band%202/Album%202/\">03%20track.wav</location></track>\n"
         "<track><location>gone.wav</location></track>\n"
         "</trackList></playlist>\n",
         {"Track 1.2", "http://example.org/a/live.mp3", "Track 2.3"},
         "not found, line 6: file:///m/Band%201/Album%201/gone.wav\n"
         "imported 3 of 4 tracks to based (#N)\n"},
        {"network.m3u",
         "#EXTM3U\n#EXTINF:-1,The one, live\nhttp://radio.example:8000/live?x=1&y=2\n"
         "HTTPS://example.org/a%20b.mp3\nhttp://\n",
         {"The one, live", "HTTPS://example.org/a%20b.mp3"},
         "not found, line 5: http://\nimported 2 of 3 tracks to network (#N)\n"},
        {"outside.m3u",
         QString("../../etc/passwd\n/etc/passwd\nfile:///etc/passwd\nBand 1/../../../etc/passwd\n" +
                 file("secret.wav") + "\nBand 1/Album 1/01 track.wav\n")
             .toUtf8(),
         {"Track 1.1"},
         nullptr},
        {"circle.m3u",
         "Band 1/circle/Band 1/circle/Band 2/Album 2/01 track.wav\n"
         "Band 1/circle/Band 1/circle/gone.wav\n",
         {"Track 2.1"},
         "not found, line 2: Band 1/circle/Band 1/circle/gone.wav\n"
         "imported 1 of 2 tracks to circle (#N)\n"},
    };
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.file);
        const Imported imported = importBytes(kind.file, kind.bytes);
        EXPECT_EQ(imported.status, 0);
        EXPECT_EQ(imported.titles, kind.titles);
        const QString outside = "not found, line 1: ../../etc/passwd\n"
                                "not found, line 2: /etc/passwd\n"
                                "not found, line 3: file:///etc/passwd\n"
                                "not found, line 4: Band 1/../../../etc/passwd\n"
                                "not found, line 5: " +
                                file("secret.wav") + "\nimported 1 of 6 tracks to outside (#N)\n";
        EXPECT_EQ(imported.told, kind.told ? QString(kind.told) : outside);
    }
}

TEST_F(PlaylistFiles, namesStartFromTheFolderOfTheFile) {
    const QString list = device.musicFolder() + "/Band 1/Lists/mine.m3u";
    SoundFiles::writeBytes(list, "../Album 1/02 track.wav\n../../Band 2/Album 2/01 track.wav\n");
    const Imported imported = import(list);
    EXPECT_EQ(imported.titles, (QStringList{"Track 1.2", "Track 2.1"}));
    EXPECT_EQ(imported.told, "imported 2 of 2 tracks to mine (#N)\n");
}

TEST_F(PlaylistFiles, whatIsNoneOrTooMuchIsRefusedAndMakesNothing) {
    const struct {
        const char* file;
        QByteArray bytes;
        const char* told;
    } kinds[] = {
        {"segments.m3u8",
         "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:10\n#EXTINF:10,\n1.ts\n#EXT-X-ENDLIST\n",
         "orvoctl: These are the segments of a stream, not tracks. Please use the address of the "
         "stream itself.\n"},
        {"line.m3u", QByteArray(1024 * 1024, 'x'),
         "orvoctl: Line 1 is longer than 32768 characters.\n"},
        {"picture.m3u", QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16),
         "orvoctl: This is not a playlist file.\n"},
    };
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.file);
        const Imported imported = importBytes(kind.file, kind.bytes);
        EXPECT_EQ(imported.status, 1);
        EXPECT_EQ(imported.told, kind.told);
    }
    const QByteArray most(6000000, 'x');
    EXPECT_EQ(importBytes("most.m3u", most).told,
              "orvoctl: Line 1 is longer than 32768 characters.\n");
    EXPECT_EQ(importBytes("large.m3u", most + 'x').told,
              "orvoctl: " + file("large.m3u") + " is larger than 6 MB\n");
    EXPECT_EQ(importBytes("8MiB.m3u", QByteArray(8 * 1024 * 1024, 'x')).told,
              "orvoctl: " + file("8MiB.m3u") + " is larger than 6 MB\n");
    EXPECT_EQ(import("/dev/zero").told, "orvoctl: /dev/zero is larger than 6 MB\n");
    const QString name = file("itself.m3u");
    ASSERT_EQ(symlink("itself.m3u", qPrintable(name)), 0);
    const Imported imported = import(name);
    EXPECT_EQ(imported.status, 2);
    EXPECT_EQ(imported.told.section('\n', 0, 0),
              "orvoctl: cannot read " + name + ": Too many levels of symbolic links");
    EXPECT_EQ(device.titles("playlists:pl/list"), QStringList{"Create new playlist"});
}
