#include <gtest/gtest.h>

#include "Arguments.h"
#include "ClockText.h"
#include "EventParser.h"
#include "PathText.h"
#include "SafeText.h"
#include "StatusOf.h"

TEST(SafeText, whatMovesTheCursorOrTurnsTheTextIsShownAsAnEscape) {
    EXPECT_EQ(SafeText::forTerminal(QString::fromUtf8("a\x1b[2Jb\nc\rd\te\x7f")),
              "a\\u001b[2Jb\\u000ac\\u000dd\\u0009e\\u007f");
    EXPECT_EQ(SafeText::forTerminal(QStringLiteral("\u0085x\u202Ey\u2066z\u2028")),
              "\\u0085x\\u202ey\\u2066z\\u2028");
    EXPECT_EQ(SafeText::forTerminal(QString::fromUtf8("Motörhead – 音楽 😀")),
              QString::fromUtf8("Motörhead – 音楽 😀"));
}

TEST(SafeText, jsonStaysJson) {
    EXPECT_EQ(SafeText::json("{\n \"a\": \"\xC2\x9Bx\x7f\"\n}"),
              QByteArray("{\n \"a\": \"\\u009bx\\u007f\"\n}"));
}

TEST(Arguments, optionsAndPositionsMayMix) {
    const Arguments arguments = Arguments::parse(
        {"a", "--from", "3", "--to=4", "--json", "-5", "--", "--now"}, {"from", "to"}, {"json"});
    EXPECT_EQ(arguments.positional(), (QStringList{"a", "-5", "--now"}));
    EXPECT_EQ(arguments.number("from", 0, 0), 3);
    EXPECT_EQ(arguments.number("to", 0, 0), 4);
    EXPECT_EQ(arguments.number("roles", 9, 0), 9);
    EXPECT_TRUE(arguments.has("json"));
}

TEST(Arguments, whatIsNotTakenIsAUsageFailure) {
    for (const QStringList& words : {QStringList{"--what"},
                                     {"-x"},
                                     {"--from"},
                                     {"--json=1"},
                                     {"--"
                                      "from",
                                      "x"}}) {
        EXPECT_EQ(
            statusOf([&] { Arguments::parse(words, {"from"}, {"json"}).number("from", 0, 0); }),
            ClientFailure::Usage)
            << words.join(' ').toStdString();
    }
}

TEST(PathText, componentsAreEncodedAndComeBack) {
    const QString path =
        PathText::append("files:tree", {"a b", "c/d?e", QString::fromUtf8("ü%.flac")});
    EXPECT_EQ(path, "files:tree/a%20b/c%2Fd%3Fe/%C3%BC%25.flac");
    EXPECT_EQ(PathText::components(path),
              (QStringList{"tree", "a b", "c/d?e", QString::fromUtf8("ü%.flac")}));
    EXPECT_EQ(PathText::parameter("playlists:cl/items?action=x&clid=7", "clid"), "7");
    EXPECT_TRUE(PathText::isPath("playlists:item/5"));
    EXPECT_FALSE(PathText::isPath("/music/a:b"));
    EXPECT_FALSE(PathText::isPath("C:music"));
}

TEST(EventParser, eventsComeOutOfPiecesOfAnySize) {
    const QByteArray stream =
        "retry: 2000\nid: 4\n\nid: 5\nevent: rows\ndata: {\"a\":1}\n\n: still here\n\n"
        "id: 6\nevent: resync\ndata: {}\n\nid: 7\nevent: rows\n";
    for (int size = 1; size < stream.size(); ++size) {
        EventParser parser;
        QVector<DeviceEvent> events;
        for (int at = 0; at < stream.size(); at += size)
            events += parser.feed(stream.mid(at, size));
        ASSERT_EQ(events.size(), 2) << size;
        EXPECT_EQ(events.at(0).id, "5");
        EXPECT_EQ(events.at(0).type, "rows");
        EXPECT_EQ(events.at(0).data, "{\"a\":1}");
        EXPECT_EQ(events.at(1).type, "resync");
        EXPECT_EQ(parser.lastId(), "6");
        parser.restart();
        EXPECT_TRUE(parser.feed("data: x\n\n").at(0).id.isEmpty());
    }
}

TEST(ClockText, timesReadAsOnAClock) {
    EXPECT_EQ(ClockText::ofTime(0), "0:00");
    EXPECT_EQ(ClockText::ofTime(65000), "1:05");
    EXPECT_EQ(ClockText::ofTime(65500), "1:06");
    EXPECT_EQ(ClockText::ofTime(3599000), "59:59");
    EXPECT_EQ(ClockText::ofTime(3725000), "1:02:05");
    EXPECT_EQ(ClockText::ofDuration(0), "");
    EXPECT_EQ(ClockText::ofDuration(7000), "0:07");
}

TEST(ClockText, whatPeopleTypeIsATimeOrIsRefused) {
    EXPECT_EQ(ClockText::toMilliseconds("95"), 95000);
    EXPECT_EQ(ClockText::toMilliseconds("1:35"), 95000);
    EXPECT_EQ(ClockText::toMilliseconds("1:02:05"), 3725000);
    for (const char* text : {"", "abc", "1:60", "1:2:3:4", "-5", "1:-5", "99999999", "1.5"})
        EXPECT_FALSE(ClockText::toMilliseconds(text)) << text;
}
