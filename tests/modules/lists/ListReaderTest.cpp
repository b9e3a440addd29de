#include "ListReader.h"

#include <gtest/gtest.h>

#include "ListLimits.h"
#include "ListText.h"
#include "Printing.h"

namespace {

QString refusal(const QString& text, const QString& suffix = "m3u") {
    return ListReader::read(text, suffix).refusal.toString();
}

QString xspf(const QString& tracks) {
    return "<?xml version=\"1.0\"?>\n<playlist version=\"1\" xmlns=\"http://xspf.org/ns/0/\">"
           "<trackList>" +
           tracks + "</trackList></playlist>";
}

} // namespace

TEST(ListReader, whatTheTextBeginsWithCountsMoreThanTheSuffix) {
    EXPECT_EQ(ListReader::read("[PlayList]\nFile1=a\n", "m3u").list.tracks.at(0).location, "a");
    EXPECT_EQ(ListReader::read("\n #EXTM3U\na\n", "pls").list.tracks.at(0).location, "a");
    EXPECT_EQ(
        ListReader::read(xspf("<track><location>a</location></track>"), "m3u").list.tracks.size(),
        1U);
    EXPECT_EQ(ListReader::read("a\n", "M3U").list.tracks.at(0).location, "a");
    EXPECT_EQ(ListReader::read("a\n", "").list.tracks.at(0).location, "a");
    EXPECT_EQ(refusal("a\n", "doc"), "This is not a playlist file.");
}

TEST(ListReader, linesEndInThreeWaysAndAreCounted) {
    const TrackList list = ListReader::read("#EXTM3U\r\na\rb\n\n\r\n c \nd", "m3u").list;
    ASSERT_EQ(list.tracks.size(), 4U);
    EXPECT_EQ(list.tracks.at(0).line, 2);
    EXPECT_EQ(list.tracks.at(1).line, 3);
    EXPECT_EQ(list.tracks.at(2).line, 6);
    EXPECT_EQ(list.tracks.at(2).location, "c");
    EXPECT_EQ(list.tracks.at(3).location, "d");
}

TEST(ListReader, whatStandsBeforeAnEntryIsSaidAboutThatEntryAlone) {
    const TrackList list =
        ListReader::read(
            "#EXTM3U\n#EXTINF:12.5,A - B - C\n#EXTART:A\n#EXTALB:D\n#EXTVLCOPT:x\n1\n2\n"
            "#EXTINF:,x\n3\n#EXTINF:7\n4\n#EXTINF:1e99,\"y, z\n5\n",
            "m3u")
            .list;
    ASSERT_EQ(list.tracks.size(), 5U);
    EXPECT_EQ(list.tracks.at(0).title, "B - C");
    EXPECT_EQ(list.tracks.at(0).artist, "A");
    EXPECT_EQ(list.tracks.at(0).album, "D");
    EXPECT_EQ(list.tracks.at(0).durationMs, 12500);
    EXPECT_EQ(list.tracks.at(1).title, "");
    EXPECT_EQ(list.tracks.at(1).durationMs, 0);
    EXPECT_EQ(list.tracks.at(2).title, "x");
    EXPECT_EQ(list.tracks.at(3).title, "");
    EXPECT_EQ(list.tracks.at(4).title, "\"y, z");
}

TEST(ListReader, limitsAreToldAndWhatIsJustWithinThemIsRead) {
    const QString longest(ListLimits::MaxLineLength, 'x');
    EXPECT_EQ(refusal(longest + "\na\n"), "");
    EXPECT_EQ(refusal("a\n" + longest + "x"), "Line 2 is longer than 32768 characters.");
    EXPECT_EQ(refusal("[playlist]\nFile1=" + longest), "Line 2 is longer than 32768 characters.");
    EXPECT_EQ(refusal(xspf("\n<track><location>" + longest + "</location></track>")),
              "Line 3 is longer than 32768 characters.");
    EXPECT_EQ(refusal(QString("a\n").repeated(ListLimits::MaxEntries)), "");
    EXPECT_EQ(refusal(QString("a\n").repeated(ListLimits::MaxEntries + 1)),
              "The file has more than 100000 entries.");
    const QString comments = QString("#" + QString(1023, 'x')).repeated(1).append('\n');
    const QString lines = QString("#" + QString(1022, 'x') + '\n').repeated(8 * 1024);
    EXPECT_EQ(lines.size(), ListLimits::MaxBytes);
    EXPECT_EQ(refusal(lines), "");
    EXPECT_EQ(refusal(lines + "a"), "The file is larger than 8 MiB.");
    EXPECT_EQ(refusal(QString("#" + QString(1022, QChar(0xe4)) + '\n').repeated(4200)),
              "The file is larger than 8 MiB.");
    EXPECT_EQ(refusal(xspf(QString("<track/>").repeated(ListLimits::MaxEntries + 1))),
              "The file has more than 100000 entries.");
}

TEST(ListReader, brokenXmlIsToldByLine) {
    EXPECT_EQ(refusal("<playlist>\n<trackList>\n<track></trackList></playlist>"),
              "The file is damaged in line 3: Opening and ending tag mismatch.");
    EXPECT_EQ(refusal("<playlist>\n<trackList>\n"),
              "The file is damaged in line 3: Premature end of document.");
    EXPECT_EQ(refusal("<playlist/>\n<playlist/>"),
              "The file is damaged in line 2: Extra content at end of document.");
    EXPECT_EQ(refusal("<playlist><title>&nbsp;</title></playlist>"),
              "The file is damaged in line 1: Entity 'nbsp' not declared.");
    EXPECT_EQ(refusal("<rss version=\"2.0\"><channel/></rss>"), "This is not a playlist file.");
}

TEST(ListReader, entitiesOfAFilesOwnAreNotRead) {
    const QString own = "This is not a playlist file: it has a document type.";
    EXPECT_EQ(refusal("<!DOCTYPE playlist [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;\">]>"
                      "<playlist><title>&b;</title></playlist>"),
              own);
    EXPECT_EQ(refusal("<?xml version=\"1.0\"?><!doctype playlist SYSTEM \"file:///etc/passwd\">"
                      "<playlist/>"),
              own);
}

TEST(ListReader, aTagOfManyAttributesIsRefusedBeforeItIsParsed) {
    const auto tag = [](int attributes) {
        QString text = "<playlist>\n<trackList><track";
        for (int i = 0; i < attributes; ++i)
            text += QStringLiteral(" a%1=\"\"").arg(i);
        return text + "/></trackList></playlist>";
    };
    EXPECT_EQ(refusal(tag(256)), "");
    EXPECT_EQ(refusal(tag(257)), "A tag in line 2 has more than 256 attributes.");
    EXPECT_EQ(refusal(tag(300000)), "Line 2 is longer than 32768 characters.");
}

TEST(ListText, isReadByItsMarkElseAsUtf8ElseAsCp1252) {
    EXPECT_EQ(ListText::decoded("\xEF\xBB\xBFZo\xC3\xAB"), QString::fromUtf8("Zoë"));
    EXPECT_EQ(ListText::decoded("Zo\xC3\xAB"), QString::fromUtf8("Zoë"));
    EXPECT_EQ(ListText::decoded("Zo\xEB \x80"), QString::fromUtf8("Zoë €"));
    EXPECT_EQ(ListText::decoded("cut \xC3"), QString::fromUtf8("cut Ã"));
    EXPECT_EQ(ListText::decoded(QByteArray("\xFF\xFEZ\0o\0", 6)), "Zo");
}
