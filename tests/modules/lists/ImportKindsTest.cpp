#include <QTextCodec>

#include "ListsFixture.h"

namespace {

// Playlist files as other programs write them, for one small music folder.
class ImportKinds : public ListsFixture {
protected:
    void SetUp() override {
        track("Ann/First/01 One.wav", {"One", "Ann", "First", "Folk", 1}, 3000);
        track("Ann/First/02 Two, or so.wav", {"Two, or so", "Ann", "First", "Folk", 2}, 4000);
        track(QString::fromUtf8("Zoë/Café/01 Über.wav"),
              {QString::fromUtf8("Über"), QString::fromUtf8("Zoë"), QString::fromUtf8("Café"),
               "Pop", 1},
              5000);
        track("Ben/Live/01 One.wav", {"One", "Ben", "Live", "Rock", 1}, 9000);
        start();
    }

    const QString one = "Ann/First/01 One.wav";
    const QString two = "Ann/First/02 Two, or so.wav";
    const QString ueber = QString::fromUtf8("Zoë/Café/01 Über.wav");
    const QString live = "Ben/Live/01 One.wav";

    void expectList(const Answer& answer, const QStringList& found,
                    const QStringList& notFound = {}) {
        EXPECT_EQ(answer.error.name(), QString());
        EXPECT_EQ(answer.added(), found.size());
        EXPECT_EQ(tracks(answer.plid()), found);
        EXPECT_EQ(answer.notFound(), notFound);
    }
};

TEST_F(ImportKinds, aPlainListWithBackslashesInCp1252) {
    const QByteArray bytes = QTextCodec::codecForName("windows-1252")
                                 ->fromUnicode(QString::fromUtf8("Zoë\\Café\\01 Über.wav\r\n"
                                                                 "Ann\\First\\01 One.wav\r\n"
                                                                 "Ann\\First\\99 Gone.wav\r\n"));
    expectList(importBytes(bytes, "Old player.m3u"), {ueber, one}, {"3: Ann\\First\\99 Gone.wav"});
    EXPECT_EQ(playlistNames(), QStringList{"Old player"});
}

TEST_F(ImportKinds, anM3u8FileWithAByteOrderMark) {
    const QByteArray text = "\xEF\xBB\xBF#EXTM3U\r\n#EXTINF:5,Zo\xC3\xAB - \xC3\x9C"
                            "ber\r\n"
                            "Zo\xC3\xAB/Caf\xC3\xA9/01 \xC3\x9C"
                            "ber.wav\r\n";
    expectList(importBytes(text, "marked.m3u8"), {ueber});
}

TEST_F(ImportKinds, anExtendedListWithUnknownLengthsAndCommasInTitles) {
    expectList(
        importText("#EXTM3U\n#EXTINF:-1,Ann - Two, or so\nelsewhere/a.wav\n"
                   "#EXTINF: 3 ,Ann - One\nelsewhere/b.wav\n"
                   "#EXTINF:-1 logo=\"x,y\" group=\"z\",Zo\u00EB - \u00DCber\nelsewhere/c.wav\n"
                   "#EXTINF:60,Ann - One\nelsewhere/d.wav\n"),
        {two, one, ueber}, {"9: elsewhere/d.wav"});
}

TEST_F(ImportKinds, namesThatAreRelativeToTheListsOwnFolder) {
    expectList(importBytes("01 One.wav\n../../Ben/Live/01 One.wav\n./02 Two, or so.wav\n",
                           "list.m3u", musicFolder() + "/Ann/First"),
               {one, live, two});
    expectList(importBytes("../Live/01 One.wav\n", "list.m3u", "Ben/Other"), {live});
}

TEST_F(ImportKinds, absoluteNamesOfAnotherMachine) {
    expectList(importText("/home/eve/Music/Ann/First/01 One.wav\n"
                          "/home/eve/Music/Ben/Live/01 One.wav\n"
                          "/home/eve/Music/Someone/Else/01 One.wav\n"
                          "/home/eve/Music/ANN/first/02 two, OR so.WAV\n"),
               {one, live, two}, {"3: /home/eve/Music/Someone/Else/01 One.wav"});
}

TEST_F(ImportKinds, namesOnAWindowsDriveOrShare) {
    expectList(importText("D:\\Music\\Ann\\First\\01 One.wav\nd:/Music/Ben/Live/01 One.wav\n"
                          "\\\\nas\\music\\Ann\\First\\02 Two, or so.wav\nC:gone.wav\n"),
               {one, live, two}, {"4: C:gone.wav"});
}

TEST_F(ImportKinds, fileAddressesWithPercentCodes) {
    expectList(importText("file:///mnt/Zo%C3%AB/Caf%C3%A9/01%20%C3%9Cber.wav\n"
                          "file://nas/mnt/Ann/First/01%20One.wav\n"
                          "FILE:///D:/Music/Ben/Live/01%20One.wav\n"
                          "Ann/First/02%20Two,%20or%20so.wav\n"
                          "file:///mnt/Zo%EB/Caf%E9/01%20%DCber.wav\n"
                          "file:///mnt/100%.wav\n"),
               {ueber, one, live, two, ueber}, {"6: file:///mnt/100%.wav"});
}

TEST_F(ImportKinds, aPlsFileWithGapsInAnyOrderAndAWrongCount) {
    expectList(importText("[playlist]\nNumberOfEntries=17\nFile7=Ben\\Live\\01 One.wav\n"
                          "Title7=Ben - One\nLength7=9\n\nfile2 = Ann/First/01 One.wav\n"
                          "File3=gone.wav\nTitle3=Nobody - Nothing\nLength3=-1\nTitle9=Alone\n"
                          "File4=gone too.wav\nTitle4=Ann - Two, or so\nVersion=2\n",
                          "radio.pls"),
               {one, two, live}, {"8: gone.wav"});
}

TEST_F(ImportKinds, anXspfFileWithNamesAddressesAndTitlesAlone) {
    const Answer answer = importText(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<playlist version=\"1\" xmlns=\"http://xspf.org/ns/0/\">\n"
        "<title>An &amp; other</title><creator>eve</creator>\n<trackList>\n"
        "<track><location>file:///mnt/Ann/First/01%20One.wav</location></track>\n"
        "<track><title>One</title><creator>Ben</creator><duration>8500</duration></track>\n"
        "<track><location>Ann/First/02%20Two,%20or%20so.wav</location>"
        "<extension application=\"x\"><y/></extension></track>\n"
        "<track>\n<location>file:///gone.wav</location></track>\n"
        "<track><title>Unheard</title><creator>Eve</creator></track>\n"
        "</trackList></playlist>\n",
        "x.xspf");
    expectList(answer, {one, live, two}, {"9: file:///gone.wav", "10: Eve - Unheard"});
    EXPECT_EQ(playlistNames(), QStringList{"An & other"});
}

TEST_F(ImportKinds, streamsBecomeTracksAsTheyAre) {
    const Answer answer =
        importText("#EXTM3U\n#EXTINF:-1,Radio, the one\n"
                   "http://radio.example:8000/live?x=1&y=2\n"
                   "HTTPS://example.org/a%20b.mp3\nhttp://\nrtsp://example.org/x\n");
    EXPECT_EQ(answer.notFound(), (QStringList{"5: http://", "6: rtsp://example.org/x"}));
    const QList<OrvoRoles> added = rows(answer.plid());
    ASSERT_EQ(added.size(), 2);
    EXPECT_EQ(added.at(0).title().toString(), "Radio, the one");
    EXPECT_EQ(added.at(0).mediaData().resources().value(0).uri(),
              "http://radio.example:8000/live?x=1&y=2");
    EXPECT_EQ(added.at(1).title().toString(), "HTTPS://example.org/a%20b.mp3");
}

TEST_F(ImportKinds, aListOfAStreamsSegmentsIsRefused) {
    const Answer answer =
        importText("#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:10,\nhttp://example.org/1.ts\n");
    EXPECT_EQ(answer.error.name(), "InvalidValue");
    EXPECT_EQ(answer.message(), "These are the segments of a stream, not tracks. Please use the "
                                "address of the stream itself.");
    EXPECT_EQ(playlistNames(), QStringList());
}

TEST_F(ImportKinds, aListWithoutEntriesMakesAnEmptyPlaylistAndAnEmptyFileNone) {
    const Answer answer = importText("#EXTM3U\n#PLAYLIST:Nothing yet\n");
    EXPECT_EQ(answer.added(), 0);
    EXPECT_EQ(answer.notFound(), QStringList());
    EXPECT_EQ(tracks(answer.plid()), QStringList());
    EXPECT_EQ(importText("\xEF\xBB\xBF \r\n\n").message(), "The file is empty.");
    EXPECT_EQ(importBytes("\xEF\xBB\xBF\r\n", "a.m3u").message(), "The file is empty.");
    EXPECT_EQ(playlistNames(), QStringList{"Nothing yet"});
}

TEST_F(ImportKinds, whatIsNoPlaylistIsRefused) {
    EXPECT_EQ(importBytes(QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16), "a.m3u").message(),
              "This is not a playlist file.");
    EXPECT_EQ(importText("<html><body>404</body></html>", "a.m3u").message(),
              "This is not a playlist file.");
    EXPECT_EQ(importText("shopping: milk\n", "list.txt").message(), "This is not a playlist file.");
    // Words are names that no track has.
    const Answer words = importText("milk\nbread\n", "list.m3u");
    EXPECT_EQ(words.added(), 0);
    EXPECT_EQ(words.plid(), -1);
    EXPECT_EQ(words.notFound(), (QStringList{"1: milk", "2: bread"}));
    EXPECT_EQ(playlistNames(), QStringList());
}

} // namespace
