#include <QDir>
#include <QUrl>

#include "ListsFixture.h"

namespace {

class Export : public ListsFixture {
protected:
    // A playlist with one track and one stream.
    int smallList() {
        track("Ann/First/01 One.wav", {"One", "Ann", "First", "Folk", 1}, 3400);
        SoundFiles::writeBytes(musicFolder() + "/Ann/First/cover.png", "x");
        start();
        return importText("#EXTM3U\n#PLAYLIST:Small\nAnn/First/01 One.wav\n#EXTINF:-1,A & B\n"
                          "http://example.org/live?a=1&b=2\n")
            .plid();
    }
};

} // namespace

TEST_F(Export, m3u8HasNamesRelativeToTheMusicFolderUnlessAskedOtherwise) {
    const int plid = smallList();
    const QString before = "#EXTM3U\n#PLAYLIST:Small\n#EXTINF:3,Ann - One\n#EXTART:Ann\n"
                           "#EXTALB:First\n";
    const QString after = "\n#EXTINF:-1,A & B\nhttp://example.org/live?a=1&b=2\n";
    const Answer answer = call("lists:export", {{"plid", plid}});
    EXPECT_EQ(answer.text(), before + "Ann/First/01 One.wav" + after);
    EXPECT_EQ(answer.value.value("name"), "Small");
    EXPECT_EQ(answer.value.value("file"), "Small.m3u8");
    EXPECT_EQ(answer.value.value("mimeType"), "audio/x-mpegurl");
    EXPECT_EQ(answer.value.value("tracks"), 2);
    EXPECT_EQ(exportList(plid, "m3u8", "absolute").text(),
              before + musicFolder() + "/Ann/First/01 One.wav" + after);
    EXPECT_EQ(exportList(plid, "M3U8", "url").text(),
              before + "file://" + musicFolder() + "/Ann/First/01%20One.wav" + after);
}

TEST_F(Export, xspfHasAddresses) {
    const int plid = smallList();
    const auto text = [](const QString& folder) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<playlist xmlns=\"http://xspf.org/ns/0/\" version=\"1\">\n"
               "  <title>Small</title>\n"
               "  <trackList>\n"
               "    <track>\n"
               "      <location>" +
               folder +
               "Ann/First/01%20One.wav</location>\n"
               "      <title>One</title>\n"
               "      <creator>Ann</creator>\n"
               "      <image>" +
               folder +
               "Ann/First/cover.png</image>\n"
               "      <album>First</album>\n"
               "      <duration>3400</duration>\n"
               "    </track>\n"
               "    <track>\n"
               "      <location>http://example.org/live?a=1&amp;b=2</location>\n"
               "      <title>A &amp; B</title>\n"
               "    </track>\n"
               "  </trackList>\n"
               "</playlist>\n";
    };
    EXPECT_EQ(exportList(plid, "xspf").text(), text({}));
    const QString url = "file://" + musicFolder() + "/";
    EXPECT_EQ(exportList(plid, "xspf", "absolute").text(), text(url));
    EXPECT_EQ(exportList(plid, "xspf", "url").text(), text(url));
}

TEST_F(Export, thePlayQueueAndAnEmptyListAreExportedToo) {
    track("a.wav");
    start();
    call("playlists:pl/addItems", {{"plid", 0}, {"items", QStringList{"files:tree/a.wav"}}});
    EXPECT_EQ(exportList(0).text(), "#EXTM3U\n#PLAYLIST:Play queue\n#EXTINF:1,a\na.wav\n");
    const int plid = importText("#EXTM3U\n#PLAYLIST:../A\\B: \"c\"?\n").plid();
    const Answer empty = exportList(plid);
    EXPECT_EQ(empty.text(), "#EXTM3U\n#PLAYLIST:../A\\B: \"c\"?\n");
    EXPECT_EQ(empty.value.value("file"), "_A_B_ _c__.m3u8");
}

TEST_F(Export, textsStayOnTheirLinesAndXmlStaysXml) {
    track(QString::fromUtf8("odd/a\nb.wav"), {"x\ny", "Ann", {}, {}, 0});
    track("odd/#1.wav");
    track("12:30.wav");
    start();
    call("playlists:pl/create", {{"name", "Line\nbreak"}});
    call("playlists:pl/addItems", {{"plid", 1}, {"items", QStringList{"files:tree"}}});
    const int streams =
        importText(
            "<playlist><trackList><track><location>http://a/</location>"
            "<title>&lt;&amp;&#x85;&#x2028;&#xFFFD;]]&gt;</title></track></trackList></playlist>",
            "x.xspf")
            .plid();
    const QString text = exportList(1).text();
    EXPECT_EQ(text.split('\n').filter("#PLAYLIST"), QStringList{"#PLAYLIST:Line break"});
    EXPECT_EQ(text.split('\n').filter(".wav"),
              (QStringList{"odd/#1.wav", "odd/a%0Ab.wav", "./12:30.wav"}));
    for (const char* format : {"m3u8", "xspf"}) {
        EXPECT_EQ(tracks(importText(exportList(1, format).text()).plid()), tracks(1)) << format;
        EXPECT_EQ(importText(exportList(streams, format).text()).added(), 1) << format;
    }
}

TEST_F(Export, whatIsAskedForWronglyIsRefused) {
    start();
    EXPECT_EQ(exportList(7).message(), "There is no playlist with this ID.");
    EXPECT_EQ(call("lists:export", {}).message(), "There is no playlist with this ID.");
    EXPECT_EQ(exportList(0, "pls").message(), "The format must be m3u8 or xspf.");
    EXPECT_EQ(exportList(0, "m3u8", "short").message(),
              "The paths must be relative, absolute or url.");
}

TEST_F(Export, aPlaylistThatChangesMeanwhileIsAConflict) {
    track("a.wav");
    start();
    const int plid = importText(QString("a.wav\n").repeated(450)).plid();
    const CMReply<QVariant> reply;
    CMRoot()->invoke(CMPath("lists:export"), QVariantHash{{"plid", plid}}, reply);
    ASSERT_FALSE(reply.isFinished());
    call("playlists:pl/removeItems", {{"plid", plid}, {"items", QVariantList{0}}});
    ASSERT_TRUE(waitUntil([&reply] { return reply.isFinished(); }));
    EXPECT_EQ(reply.error().name(), "Conflict");
    EXPECT_EQ(reply.error().message().toString(), "The playlist has changed meanwhile.");
    EXPECT_EQ(exportList(plid).value.value("tracks"), 449);
}
