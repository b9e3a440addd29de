#include <QJsonArray>
#include <QJsonObject>

#include "CtlFixture.h"
#include "FakePlayer.h"

using CtlPlaylist = CtlFixture;

TEST_F(CtlPlaylist, playlistsAreListedWithTheQueueFirst) {
    playlist("Party", {"x:a", "x:b"});
    playlist("Quiet");
    const CtlRun run = ctl({"playlists"});
    EXPECT_EQ(run.status, 0) << run.err.data();
    EXPECT_EQ(run.out.toStdString(), "ID  NAME   TRACKS\n"
                                     "#0  queue       0\n"
                                     "#1  Party       2\n"
                                     "#2  Quiet       0\n");
    EXPECT_EQ(
        ctl({"playlists", "--json"}).out.toStdString(),
        R"([{"id":0,"name":"queue","tracks":0},{"id":1,"name":"Party","tracks":2},{"id":2,"name":"Quiet","tracks":0}])"
        "\n");
}

TEST_F(CtlPlaylist, createPrintsTheIdAndARefusalIsStatusOne) {
    CtlRun run = ctl({"create", "Party"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.toStdString(), "#1 Party\n");
    EXPECT_EQ(names(), QStringList{"Party"});
    EXPECT_EQ(ctl({"create", "Other", "--json"}).out.toStdString(), "{\"id\":2}\n");
    run = ctl({"create", ""});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(
        run.err.toStdString(),
        "orvoctl: Could not create playlist. Please provide a non-empty string as field. (name)\n");
}

TEST_F(CtlPlaylist, aPlaylistIsRenamedAndDeletedByNameOrId) {
    const int id = playlist("Party");
    EXPECT_EQ(ctl({"rename", "Party", "Night"}).status, 0);
    EXPECT_EQ(names(), QStringList{"Night"});
    EXPECT_EQ(ctl({"rename", QStringLiteral("#%1").arg(id), "Day"}).status, 0);
    EXPECT_EQ(names(), QStringList{"Day"});
    const CtlRun run = ctl({"delete", "Day"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.toStdString(), "deleted Day (#1)\n");
    EXPECT_EQ(names(), QStringList());
}

TEST_F(CtlPlaylist, anAmbiguousNameIsRefusedWithTheIds) {
    playlist("Twice");
    playlist("Twice");
    const CtlRun run = ctl({"delete", "Twice"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.toStdString(),
              "orvoctl: more than one playlist is called \"Twice\": #1, #2\n");
    EXPECT_EQ(names(), (QStringList{"Twice", "Twice"}));
}

TEST_F(CtlPlaylist, showCountsFromOneAndPages) {
    QStringList tracks;
    for (int i = 0; i < 2500; ++i)
        tracks.append(QStringLiteral("x:tree/t%1").arg(i));
    playlist("Long", tracks);
    const QJsonObject all = ctl({"show", "Long", "--json"}).json().object();
    ASSERT_EQ(all.value("tracks").toArray().size(), 2500);
    EXPECT_EQ(all.value("tracksCount"), 2500);
    const QJsonObject last = all.value("tracks").toArray().last().toObject();
    EXPECT_EQ(last.value("title"), "t2499");
    EXPECT_EQ(last.value("position"), 2500);
    EXPECT_EQ(last.value("sequenceNumber"), 2499);
    EXPECT_EQ(ctl({"show", "Long", "--from", "2499"}).out.toStdString(),
              "Long (#1): 2500 tracks\n"
              " POS  TITLE  ARTIST  ALBUM  TIME\n"
              "2499  t2498  Artist  Album  1:01\n"
              "2500  t2499  Artist  Album  1:01\n");
    EXPECT_EQ(ctl({"show", "Long", "--from", "2501"}).out.toStdString(),
              "Long (#1): 2500 tracks\n");
    EXPECT_EQ(ctl({"show", "#2"}).status, 1);
    EXPECT_EQ(ctl({"show", "Long", "--from", "3", "--to", "2"}).status, 2);
}

TEST_F(CtlPlaylist, tracksAreRemovedAndMovedByTheirPositions) {
    const int id = playlist("Party", {"x:a", "x:b", "x:c", "x:d", "x:e"});
    EXPECT_EQ(ctl({"remove", "Party", "2-3", "5"}).err.toStdString(),
              "removed 3 tracks from Party (#1)\n");
    EXPECT_EQ(tracks(id), (QStringList{"x:a", "x:d"}));
    EXPECT_EQ(ctl({"move", "Party", "1", "--to", "2"}).status, 0);
    EXPECT_EQ(tracks(id), (QStringList{"x:d", "x:a"}));
    EXPECT_EQ(ctl({"move", "Party", "1", "--to", "9"}).status, 1);
    EXPECT_EQ(ctl({"move", "Party", "1"}).status, 2);
    EXPECT_EQ(ctl({"remove", "Party", "0"}).status, 2);
    EXPECT_EQ(ctl({"remove", "Party", "7"}).status, 1);
    EXPECT_EQ(tracks(id), (QStringList{"x:d", "x:a"}));
}

TEST_F(CtlPlaylist, clearMergeAndPlayReachTheirCommands) {
    const int party = playlist("Party", {"x:a"});
    playlist("Quiet", {"x:b", "x:c"});
    EXPECT_EQ(ctl({"merge", "Quiet", "Party"}).status, 0);
    EXPECT_EQ(tracks(party), (QStringList{"x:a", "x:b", "x:c"}));
    EXPECT_EQ(names(), QStringList{"Party"});
    FakePlayer player;
    EXPECT_EQ(ctl({"play", "Party"}).status, 0);
    EXPECT_EQ(player.list(), "playlists:pl/items/1");
    EXPECT_EQ(list(0)->addItems(OrvoPlayListAddPosition::Append, {TrackSource::item("x:q")}), 0);
    EXPECT_EQ(ctl({"play", "queue"}).status, 0);
    EXPECT_EQ(player.list(), "playlists:pq/items");
    EXPECT_EQ(ctl({"clear", "Party"}).status, 0);
    EXPECT_TRUE(tracks(party).isEmpty());
}

TEST_F(CtlPlaylist, shuffleAndRepeatAreSwitchedOnAndOff) {
    playlist("Party");
    const char* const modes = "SELECT shuffle, repeatAll FROM playlists WHERE uid = 1";
    EXPECT_EQ(ctl({"shuffle", "Party", "on"}).status, 0);
    EXPECT_EQ(ctl({"repeat", "Party", "on"}).status, 0);
    EXPECT_EQ(m_store.query(modes), QStringList{"1|1"});
    EXPECT_EQ(ctl({"shuffle", "Party", "off"}).status, 0);
    EXPECT_EQ(ctl({"repeat", "Party", "off"}).status, 0);
    EXPECT_EQ(m_store.query(modes), QStringList{"0|0"});
    EXPECT_EQ(ctl({"shuffle", "Party", "maybe"}).status, 2);
}

TEST_F(CtlPlaylist, controlCharactersInNamesNeverReachTheTerminal) {
    playlist(QString::fromUtf8("a\x1b]0;title\x07\n\xC2\x9B"
                               "31m"),
             {QString::fromUtf8("x:t/\x1b[2J")});
    for (const QStringList& words : {QStringList{"playlists"},
                                     {"show", "#1"},
                                     {"delete", "#1"},
                                     {"rows", "playlists:pl/list"},
                                     {"playlists", "--json"},
                                     {"rows", "playlists:pl/list", "--json"}}) {
        const CtlRun run = ctl(words);
        EXPECT_EQ(run.status, 0) << words.join(' ').toStdString();
        const QString text = QString::fromUtf8(run.out + run.err);
        for (const QChar c : text)
            EXPECT_TRUE(c == '\n' ||
                        (c.unicode() >= 0x20 && (c.unicode() < 0x7f || c.unicode() >= 0xa0)))
                << words.join(' ').toStdString() << " " << c.unicode();
    }
}

TEST_F(CtlPlaylist, namesOfBlanksAloneAreRefused) {
    playlist("Party");
    for (const QStringList& words : {QStringList{"create", "  "},
                                     {"create", "\n"},
                                     {"create", QString(QChar(0x200b))},
                                     {"rename", "Party", "\t "},
                                     {"collection", "create", " "}}) {
        const CtlRun run = ctl(words);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err.split('\n').first().toStdString(),
                  "orvoctl: a name needs something that can be seen");
    }
    EXPECT_EQ(names(), QStringList{"Party"});
    EXPECT_EQ(m_store.query("SELECT name FROM collections"), QStringList());
}

TEST_F(CtlPlaylist, aPlaylistIsNotMergedIntoItself) {
    const int id = playlist("Party", {"x:a", "x:b"});
    const CtlRun run = ctl({"merge", "Party", QStringLiteral("#%1").arg(id)});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err.split('\n').first().toStdString(),
              "orvoctl: Party (#1) cannot be merged into itself");
    EXPECT_EQ(tracks(id).size(), 2);
}

TEST_F(CtlPlaylist, duplicatesAreRemovedButForTheFirst) {
    const int id = playlist("Party", {"x:a", "x:b", "x:a", "x:c", "x:b"});
    EXPECT_EQ(ctl({"dedupe", "Party"}).err.toStdString(), "removed 2 duplicates from Party (#1)\n");
    EXPECT_EQ(tracks(id), (QStringList{"x:a", "x:b", "x:c"}));
    EXPECT_EQ(ctl({"dedupe", "Party"}).err.toStdString(), "removed 0 duplicates from Party (#1)\n");
    EXPECT_EQ(ctl({"dedupe", "Party", "--json"}).out.toStdString(), "{\"removed\":0}\n");
}

TEST_F(CtlPlaylist, tracksAreSorted) {
    const int id = playlist("Party", {"x:b", "x:c", "x:a"});
    EXPECT_EQ(ctl({"sort", "Party", "--by", "title"}).err.toStdString(),
              "sorted Party (#1) by title\n");
    EXPECT_EQ(tracks(id), (QStringList{"x:a", "x:b", "x:c"}));
    EXPECT_EQ(ctl({"sort", "Party", "--by", "title", "--reverse"}).status, 0);
    EXPECT_EQ(tracks(id), (QStringList{"x:c", "x:b", "x:a"}));
}

TEST_F(CtlPlaylist, whatToSortByIsNamed) {
    playlist("Party", {"x:b", "x:a"});
    for (const QStringList& words :
         {QStringList{"sort", "Party"}, {"sort", "Party", "--by", "colour"}}) {
        const CtlRun run = ctl(words);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err.split('\n').first().toStdString(),
                  "orvoctl: --by is one of title, artist, album, duration");
    }
}
