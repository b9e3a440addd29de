#include <gtest/gtest.h>

#include <QJsonArray>

#include "Help.h"
#include "MusicSources.h"
#include "Names.h"
#include "PlayerStatus.h"
#include "Positions.h"
#include "ProgressBar.h"
#include "ShellLine.h"
#include "StatusOf.h"
#include "TextTable.h"
#include "TrackOrder.h"
#include "Verbs.h"

TEST(TextTable, columnsAreAsWideAsTheirWidestCellOnTheScreen) {
    TextTable table({">ID", "NAME", ">N"});
    table.addRow({"#1", QString::fromUtf8("音楽"), "7"});
    table.addRow({"#12", "a\nb", ""});
    EXPECT_EQ(table.text().toStdString(), QString::fromUtf8(" ID  NAME      N\n"
                                                            " #1  音楽      7\n"
                                                            "#12  a\\u000ab\n")
                                              .toStdString());
}

TEST(Positions, countFromOneAndMayBeRanges) {
    EXPECT_EQ(Positions::parse({"5", "1-3", "2"}), (QList<int>{0, 1, 2, 4}));
    for (const char* word :
         {"0", "-1", "x", "3-1", "1-", "-", "1.5", "99999999999", "1-2147483647"})
        EXPECT_EQ(statusOf([&] { Positions::parse({word}); }), ClientFailure::Usage) << word;
}

TEST(Names, aNameOrAnIdBehindAHash) {
    const QVector<Named> all = {{0, "queue"}, {3, "Party"}, {5, "#3"},
                                {7, "Twice"}, {9, "Twice"}, {11, "11"}};
    EXPECT_EQ(Names::find(all, "Party", "playlist").id, 3);
    EXPECT_EQ(Names::find(all, "#3", "playlist").id, 3);
    EXPECT_EQ(Names::find(all, "#5", "playlist").label(), "#3 (#5)");
    EXPECT_EQ(Names::find(all, "queue", "playlist").id, 0);
    EXPECT_EQ(Names::find(all, "#0", "playlist").id, 0);
    EXPECT_EQ(Names::find(all, "#44", "playlist").label(), "#44");
    EXPECT_EQ(statusOf([&] { Names::find(all, "party", "playlist"); }), ClientFailure::Refused);
    EXPECT_EQ(statusOf([&] { Names::find(all, "#x", "playlist"); }), ClientFailure::Usage);
    EXPECT_EQ(statusOf([&] { Names::find(all, "#-1", "playlist"); }), ClientFailure::Usage);
    try {
        Names::find(all, "Twice", "playlist");
        FAIL();
    } catch (const ClientFailure& failure) {
        EXPECT_EQ(failure.status, ClientFailure::Refused);
        EXPECT_EQ(failure.message, "more than one playlist is called \"Twice\": #7, #9");
    }
}

TEST(MusicSources, aLocalNameIsAPathInTheMusicFolder) {
    EXPECT_EQ(MusicSources::pathOf("/music/a b/c#1.flac", "/music"), "files:tree/a%20b/c%231.flac");
    EXPECT_EQ(MusicSources::pathOf("/music", "/music"), "files:tree");
    EXPECT_EQ(MusicSources::pathOf("/a", "/"), "files:tree/a");
    EXPECT_EQ(statusOf([] { MusicSources::pathOf("/music2/a.flac", "/music"); }),
              ClientFailure::Refused);
}

TEST(ProgressBar, showsTheShareThatIsDone) {
    EXPECT_EQ(ProgressBar::line("adding", 0, 10), "adding [..............................] 0/10");
    EXPECT_EQ(ProgressBar::line("adding", 5, 10), "adding [###############...............] 5/10");
    EXPECT_EQ(ProgressBar::line("adding", 10, 10), "adding [##############################] 10/10");
    EXPECT_EQ(ProgressBar::line("looking", 7, 0), "looking 7");
}

TEST(Verbs, oneOrTwoWordsNameAVerb) {
    QStringList words{"collection", "add", "a", "b"};
    EXPECT_STREQ(Verbs::take(&words).words, "collection add");
    EXPECT_EQ(words, (QStringList{"a", "b"}));
    for (QStringList unknown : {QStringList{}, {"collection"}, {"collection", "dance"}, {"dance"}})
        EXPECT_EQ(statusOf([&] { Verbs::take(&unknown); }), ClientFailure::Usage);
    for (const Verb& verb : Verbs::all()) {
        EXPECT_TRUE(Help::text().contains(QLatin1String(verb.words))) << verb.words;
        EXPECT_STRNE(verb.example, "") << verb.words;
        QStringList example = QString::fromUtf8(verb.example).split(' ');
        EXPECT_STREQ(Verbs::take(&example).words, verb.words) << "its own example";
    }
}

TEST(PlayerStatus, theBarShowsWhereTheTrackIs) {
    EXPECT_EQ(PlayerStatus::bar(0, 100, 10), "[>---------]");
    EXPECT_EQ(PlayerStatus::bar(50, 100, 11), "[=====>-----]");
    EXPECT_EQ(PlayerStatus::bar(100, 100, 10), "[=========>]");
    EXPECT_EQ(PlayerStatus::bar(500, 100, 10), "[=========>]");
    EXPECT_EQ(PlayerStatus::bar(5, 0, 10), "[>---------]");
}

namespace {

QJsonObject sortedRow(const char* title, const char* artist = "", const char* album = "",
                      int number = 0, int duration = 0, const char* file = nullptr) {
    const QString folder = QString::fromUtf8(album);
    const QString name = QString::fromUtf8(file ? file : title);
    const QJsonObject metaData{{"artist", QString::fromUtf8(artist)},
                               {"album", folder},
                               {"trackNumber", number},
                               {"duration", duration}};
    const QJsonObject resource{{"uri", QStringLiteral("file:///%1/%2").arg(folder, name)}};
    const QJsonObject mediaData{{"metaData", metaData}, {"resources", QJsonArray{resource}}};
    return {{"title", QString::fromUtf8(title)}, {"mediaData", mediaData}};
}

QString titlesBy(const QVector<QJsonObject>& rows, TrackOrder::Field by, bool reversed = false) {
    QStringList titles;
    for (const int i : TrackOrder::sorted(rows, by, reversed))
        titles.append(rows.at(i).value("title").toString());
    return titles.join('|');
}

} // namespace

TEST(TrackOrder, titlesAreSortedAsAPersonSorts) {
    const QVector<QJsonObject> rows = {
        sortedRow("Track 10"), sortedRow("élan"),  sortedRow("track 9"), sortedRow(""),
        sortedRow("Zoo"),      sortedRow("Eland"), sortedRow("Elan")};
    EXPECT_EQ(titlesBy(rows, TrackOrder::Field::Title), "élan|Elan|Eland|track 9|Track 10|Zoo|");
    EXPECT_EQ(titlesBy(rows, TrackOrder::Field::Title, true),
              "Zoo|Track 10|track 9|Eland|élan|Elan|");
}

TEST(TrackOrder, anAlbumKeepsItsOwnOrder) {
    const QVector<QJsonObject> rows = {sortedRow("A", "b", "Two", 2), sortedRow("B", "B", "two", 1),
                                       sortedRow("C", "a", "Two", 12),
                                       sortedRow("D", "a", "One", 3), sortedRow("E")};
    EXPECT_EQ(titlesBy(rows, TrackOrder::Field::Artist), "D|C|B|A|E");
    EXPECT_EQ(titlesBy(rows, TrackOrder::Field::Album), "D|B|A|C|E");
    EXPECT_EQ(titlesBy(rows, TrackOrder::Field::Album, true), "B|A|C|D|E");
}

TEST(TrackOrder, durationsAreSortedByTheirLength) {
    const QVector<QJsonObject> rows = {sortedRow("a", "", "", 0, 300),
                                       sortedRow("b", "", "", 0, 20), sortedRow("c"),
                                       sortedRow("d", "", "", 0, 20)};
    EXPECT_EQ(titlesBy(rows, TrackOrder::Field::Duration), "b|d|a|c");
    EXPECT_EQ(titlesBy(rows, TrackOrder::Field::Duration, true), "a|b|d|c");
}

TEST(TrackOrder, duplicatesAreThoseOfTheSameFileAndTheFirstStays) {
    const QVector<QJsonObject> rows = {
        sortedRow("a", "", "", 0, 0, "1"), sortedRow("b", "", "", 0, 0, "2"),
        sortedRow("c", "", "", 0, 0, "1"), QJsonObject(), QJsonObject()};
    EXPECT_EQ(TrackOrder::duplicates(rows), QList<int>{2});
}

TEST(ShellLine, aLineIsTakenApartAsAShellDoesIt) {
    const struct {
        const char* line;
        QStringList words;
    } rows[] = {
        {"", {""}},
        {"a", {"a"}},
        {"a  b ", {"a", "b", ""}},
        {R"(a b\ c)", {"a", "b c"}},
        {R"(a 'b "c' "d 'e")", {"a", R"(b "c)", "d 'e"}},
        {R"(a "b\" c)", {"a", R"(b" c)"}},
        {R"(a 'b\' c)", {"a", R"(b\)", "c"}},
        {R"(a '' b)", {"a", "", "b"}},
        {R"(a b\)", {"a", R"(b\)"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ShellLine::parse(row.line).words, row.words) << row.line;
    EXPECT_TRUE(ShellLine::parse("a 'b").endsInQuotes);
    EXPECT_FALSE(ShellLine::parse("a 'b'").endsInQuotes);
}
