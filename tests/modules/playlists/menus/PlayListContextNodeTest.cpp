#include "playlistUI/playlist/PlayListContextNode.h"

#include "MenuFixture.h"
#include "OrvoPlayListPaths.h"

namespace {

class PlayListContextNodeTest : public MenuFixture {
protected:
    // The menu of a playlist that is neither shuffled nor repeated, as it is asked for with "clid"
    // or without.
    struct Shown {
        int plid = 0;
        QString name;
        bool collections = false;
        QString clid = {}; // as given, null when it was not
        QString collection = {};
    };
    static QList<QJsonObject> menu(const Shown& shown) {
        const auto path = [&shown](const QString& action, const QString& mode = {}) {
            return "playlists:pl/context?action=" + action +
                   (shown.clid.isNull() ? "" : "&clid=" + shown.clid) +
                   (mode.isNull() ? "" : "&mode=" + mode) + QString("&plid=%1").arg(shown.plid);
        };
        const auto title = [](const QString& text) { return "PlayListContextNode|" + text; };
        QList<QJsonObject> rows = {
            Expected::action(title("Play"), path("play")),
            Expected::edit(title("Rename"), path("rename"), Expected::text(shown.name)),
            Expected::edit(title("Set shuffle mode"), path("shuffle", "1"), Expected::flag(false)),
            Expected::edit(title("Set repeat mode"), path("repeat", "1"), Expected::flag(false)),
            Expected::menu(
                title("Merge with playlist"),
                QString("playlists:pl/addToPlaylist?action=cmnode&fromplid=%1").arg(shown.plid)),
        };
        if (shown.collections)
            rows.append(Expected::menu(
                title("Add to collection"),
                QString("playlists:cl/addToCollection?action=cmnode&plid=%1").arg(shown.plid)));
        if (shown.collections && !shown.collection.isNull())
            rows.append(Expected::action(title("Remove from collection - %1|" + shown.collection),
                                         path("delFromCl")));
        rows.append(Expected::separator());
        rows.append(Expected::action(title("Clear playlist"), path("clearPl")));
        rows.append(Expected::action(title("Delete playlist"), path("delPL")));
        return rows;
    }
    static QString menuTitle(const QString& name) {
        return "PlayListContextNode|Playlist Context Menu - %1|" + name;
    }
    // The switch of a menu: its path's "mode" and its value.
    QString switchState(const QString& title, int plid) {
        for (const OrvoRoles& row :
             asRoles(rowsAt(QString("playlists:pl/context?plid=%1").arg(plid)))) {
            if (row.title().source() == title)
                return row.path().param("mode") + (row.value().bool_() ? " on" : " off");
        }
        return {};
    }
};

class PlayListContextNodeAloneTest : public MenuAloneFixture {};

} // namespace

TEST_F(PlayListContextNodeTest, theMenuDependsOnCollectionsBeingVisibleAndTheOneItWasOpenedFrom) {
    const int mix = createPlayList("Mix");
    createPlayList("Other");
    const QString rock = QString::number(createCollection("Rock"));
    for (const bool queueVisible : {false, true}) {
        for (const bool collections : {false, true}) {
            show(queueVisible, collections);
            restart();
            const QString path = QString("playlists:pl/context?plid=%1").arg(mix);
            expectMenu(path, menuTitle("Mix"), menu({mix, "Mix", collections}));
            const QString fromRock =
                QString("playlists:pl/context?clid=%1&plid=%2").arg(rock).arg(mix);
            expectMenu(fromRock, menuTitle("Mix"), menu({mix, "Mix", collections, rock, "Rock"}));
            for (const char* clid : {"", "abc", "99", "0", "-1"})
                expectMenu(QString("playlists:pl/context?clid=%1&plid=%2").arg(clid).arg(mix),
                           menuTitle("Mix"), menu({mix, "Mix", collections, clid}));
        }
    }
}

TEST_F(PlayListContextNodeTest, whatIsVisibleIsReadWhenTheMenuIsMade) {
    show(false, true);
    const int mix = createPlayList("Mix");
    show(false, false);
    expectMenu("playlists:pl/context?plid=1", menuTitle("Mix"), menu({mix, "Mix", true}));
    restart();
    expectMenu("playlists:pl/context?plid=1", menuTitle("Mix"), menu({mix, "Mix", false}));
    show(false, true);
    expectMenu("playlists:pl/context?plid=1", menuTitle("Mix"), menu({mix, "Mix", false}));
}

TEST_F(PlayListContextNodeTest, anUnknownPlaylistHasNoEntries) {
    show(true, true);
    createPlayList("Mix");
    const QString rock = QString::number(createCollection("Rock"));
    for (const QString& path :
         {QString("playlists:pl/context"), QString("playlists:pl/context?plid="),
          QString("playlists:pl/context?plid=99"), QString("playlists:pl/context?plid=abc"),
          QString("playlists:pl/context?plid=-1"), "playlists:pl/context?clid=" + rock,
          "playlists:pl/context?clid=" + rock + "&plid=99"})
        expectMenu(path, menuTitle(""), {});
}

TEST_F(PlayListContextNodeTest, thePlayQueueIsAPlaylistWithIdZero) {
    expectMenu("playlists:pl/context?plid=0", menuTitle("PlayQueue"), menu({0, "PlayQueue"}));
}

TEST_F(PlayListContextNodeTest, entriesOnItsOwnPathKeepTheRequestsParametersAndLinksDoNot) {
    show(false, true);
    createPlayList("Mix");
    QStringList paths;
    for (const OrvoRoles& row :
         asRoles(rowsAt("playlists:pl/context?action=cmnode&mode=7&plid=1&x=a%26b")))
        paths.append(row.path().toString());
    EXPECT_EQ(paths, QStringList({"playlists:pl/context?action=play&mode=7&plid=1&x=a%26b",
                                  "playlists:pl/context?action=rename&mode=7&plid=1&x=a%26b",
                                  "playlists:pl/context?action=shuffle&mode=1&plid=1&x=a%26b",
                                  "playlists:pl/context?action=repeat&mode=1&plid=1&x=a%26b",
                                  "playlists:pl/addToPlaylist?action=cmnode&fromplid=1",
                                  "playlists:cl/addToCollection?action=cmnode&plid=1", "",
                                  "playlists:pl/context?action=clearPl&mode=7&plid=1&x=a%26b",
                                  "playlists:pl/context?action=delPL&mode=7&plid=1&x=a%26b"}));
}

TEST_F(PlayListContextNodeTest, aSwitchShowsItsStateAndCarriesTheOpposite) {
    createPlayList("Mix");
    EXPECT_EQ(switchState("Set shuffle mode", 1), "1 off");
    send(OrvoPlayListPlSetShufflePath(), QVariantHash{{"plid", 1}, {"mode", 1}});
    EXPECT_EQ(switchState("Set shuffle mode", 1), "0 on");
    EXPECT_EQ(switchState("Set repeat mode", 1), "1 off");
    send(OrvoPlayListPlSetRepeatPath(), QVariantHash{{"plid", 1}, {"mode", 3}});
    EXPECT_EQ(switchState("Set repeat mode", 1), "1 off")
        << "the switch shows repeat-all and nothing else";
    send(OrvoPlayListPlSetRepeatPath(), QVariantHash{{"plid", 1}, {"mode", 2}});
    EXPECT_EQ(switchState("Set repeat mode", 1), "0 on");
}

TEST_F(PlayListContextNodeTest, theMenusOwnRolesAreThoseAskedFor) {
    createPlayList("Mix");
    const OrvoRowsRoles reply = rows(CMPath("playlists:pl/context?plid=1"), 0, 0, {"title", "id"});
    EXPECT_EQ(RowText(reply.roles()),
              RowText(QJsonObject{{"title", menuTitle("Mix")}, {"rowsCount", 8}}));
}

TEST_F(PlayListContextNodeTest, aNameIsNeverTakenForAPlaceholder) {
    show(false, true);
    createPlayList("%1 100% %2");
    createCollection("%1%2");
    expectMenu("playlists:pl/context?clid=1&plid=1", menuTitle("%1 100% %2"),
               menu({1, "%1 100% %2", true, "1", "%1%2"}));
    EXPECT_EQ(rowsAt("playlists:pl/context?plid=1").roles().title().toString(),
              "Playlist Context Menu - %1 100% %2");
}

TEST_F(PlayListContextNodeTest, actionsThatAreNotItsOwnAreNotTaken) {
    createPlayList("Mix");
    expectNotTaken(
        {"playlists:pl/context?plid=1", "playlists:pl/context?action=&plid=1",
         "playlists:pl/context?action=cmnode&plid=1", "playlists:pl/context?action=Play&plid=1",
         "playlists:pl/context?action=delPl&plid=1", "playlists:pl/context?action=playPl&plid=1",
         "playlists:pl/context?action=createPl&plid=1",
         "playlists:pl/context?action=removeTr&plid=1"});
    EXPECT_EQ(titles(1), QStringList());
}

TEST_F(PlayListContextNodeTest, everyActionDoesWhatItSaysAndOnlySomeCloseTheMenu) {
    const QString menuPath = "playlists:pl/context";
    const RowText open = Expected::done(Expected::flag(true));
    const RowText closed = Expected::doneAndClosed(Expected::flag(true), menuPath);
    createPlayList("Mix");
    createCollection("Rock");
    addItems(1, {"a", "b"});
    ASSERT_FALSE(send(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", 1}, {"plid", 1}}).failed);
    RecordingWorker player("Player");

    EXPECT_EQ(answerText(select(menuPath + "?action=play&plid=1")), closed);
    EXPECT_EQ(player.requests.size(), 1);
    EXPECT_EQ(answerText(select(menuPath + "?action=rename&plid=1", {{"string", "New"}})), open);
    EXPECT_EQ(rowTitles(rowsAt("playlists:pl/list")).last(), "=New");
    EXPECT_EQ(answerText(select(menuPath + "?action=shuffle&mode=1&plid=1", {{"bool", false}})),
              open);
    EXPECT_EQ(switchState("Set shuffle mode", 1), "0 on");
    EXPECT_EQ(answerText(select(menuPath + "?action=repeat&mode=1&plid=1", {{"bool", false}})),
              open);
    EXPECT_EQ(switchState("Set repeat mode", 1), "0 on");
    EXPECT_EQ(answerText(select(menuPath + "?action=shuffle&plid=1", {{"bool", false}})), open);
    EXPECT_EQ(switchState("Set shuffle mode", 1), "1 off");
    EXPECT_EQ(answerText(select(menuPath + "?action=repeat&mode=0&plid=1", {{"bool", true}})),
              open);
    EXPECT_EQ(switchState("Set repeat mode", 1), "1 off");
    EXPECT_EQ(answerText(select(menuPath + "?action=delFromCl&clid=1&plid=1")), closed);
    EXPECT_EQ(rowsAt("playlists:cl/items?clid=1").rowsCount(), 0);
    EXPECT_EQ(answerText(select(menuPath + "?action=clearPl&plid=1")), closed);
    EXPECT_EQ(titles(1), QStringList());
    EXPECT_EQ(answerText(select(menuPath + "?action=delPL&plid=1")), closed);
    EXPECT_EQ(rowsAt("playlists:pl/list").rowsCount(), 1);
    restart();
    EXPECT_EQ(rowsAt("playlists:pl/list").rowsCount(), 1);
}

TEST_F(PlayListContextNodeTest, theCommandsRefusalsArriveAsTheyAre) {
    createPlayList("Mix");
    createCollection("Rock");
    struct Refusal {
        const char* params;
        const char* message;
    };
    const Refusal refusals[] = {
        {"action=play&plid=1",
         "Could not start playback on playlist. There are no items in the playlist."},
        {"action=play",
         "Could not start playback on playlist. Cannot find playlist with invalid ID."},
        {"action=play&plid=9",
         "Could not start playback on playlist. There is no playlist with this ID. (9)"},
        {"action=rename&plid=1",
         "Could not set playlist name. Please provide a non-empty string as field. (name)"},
        {"action=rename&plid=0", "Could not set playlist name. Cannot rename PlayQueue."},
        {"action=shuffle&mode=2&plid=1",
         "Could not set shuffle mode on playlist. Invalid shuffle mode. (shuffle-mode)"},
        {"action=shuffle&mode=1",
         "Could not set shuffle mode on playlist. Cannot find playlist with invalid ID."},
        {"action=repeat&mode=4&plid=1",
         "Could not set repeat mode on playlist. Invalid repeat mode. (repeat-mode)"},
        {"action=delFromCl&plid=1",
         "Could not remove items from collection. There is no collection with this ID. (-1)"},
        {"action=delFromCl&plid=1&clid=x",
         "Could not remove items from collection. There is no collection with this ID. (-1)"},
        {"action=delFromCl&plid=1&clid=1",
         "Could not remove items from collection. Remove playlist from collection failed."},
        {"action=clearPl&plid=abc",
         "Could not clear playlist. Cannot find playlist with invalid ID."},
        {"action=delPL&plid=0", "Could not delete playlist. Cannot delete PlayQueue."},
        {"action=delPL", "Could not delete playlist. Cannot find playlist with invalid ID."},
    };
    for (const Refusal& refusal : refusals) {
        const Answer answer = select(QString("playlists:pl/context?") + refusal.params);
        EXPECT_EQ(answer.message(), refusal.message) << refusal.params;
        EXPECT_TRUE(answer.value.isNull()) << refusal.params;
    }
    EXPECT_EQ(rowTitles(rowsAt("playlists:pl/list")).mid(1), QStringList("=Mix"));
}

TEST_F(PlayListContextNodeAloneTest, everyActionSendsItsCommand) {
    struct Row {
        const char* params;
        QVariantHash value;
        const char* sent;
    };
    const Row rows[] = {
        {"action=play&plid=5&clid=2&mode=1", {}, R"(playlists:pl/play {"plid":5})"},
        {"action=rename&plid=5",
         {{"string", "New"}},
         R"(playlists:pl/setName {"name":"New","plid":5})"},
        {"action=delFromCl&plid=5&clid=7", {}, R"(playlists:cl/removeItem {"clid":7,"plid":5})"},
        {"action=clearPl&plid=0", {}, R"(playlists:pl/clear {"plid":0})"},
        {"action=delPL&plid=5", {{"bool", true}}, R"(playlists:pl/delete {"plid":5})"},
        // An id that is missing or unreadable never stands for the play queue.
        {"action=delPL", {}, R"(playlists:pl/delete {"plid":-1})"},
        {"action=clearPl&plid=5x", {}, R"(playlists:pl/clear {"plid":-1})"},
        {"action=unknown&plid=5", {}, "nothing"},
        {"plid=5", {}, "nothing"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(sent(QString("playlists:pl/context?") + row.params, row.value), row.sent)
            << row.params;
}

TEST_F(PlayListContextNodeAloneTest, theModeIsThePathsElseTheSwitchs) {
    struct Row {
        const char* mode; // null: the path has none
        QVariantHash value;
        const char* shuffle;
        const char* repeat;
    };
    const QVariantHash on = {{"bool", true}};
    const QVariantHash off = {{"bool", false}};
    const Row rows[] = {
        {"1", {}, "shuffleOn", "repeatAll"},
        {"0", {}, "shuffleOff", "repeatOff"},
        {"1", off, "shuffleOn", "repeatAll"},
        {"0", on, "shuffleOff", "repeatOff"},
        {nullptr, on, "shuffleOn", "repeatAll"},
        {nullptr, off, "shuffleOff", "repeatOff"},
        {nullptr, {}, "shuffleOff", "repeatOff"},
        {nullptr, {{"string", "x"}}, "shuffleOff", "repeatOff"},
        {"abc", on, "shuffleOff", "repeatOff"},
        {"", on, "shuffleOff", "repeatOff"},
        // Whether another number is a mode is for the command to say.
        {"2", off, "2", "repeatAll"},
        {"3", off, "3", "3"},
        {"4", off, "4", "4"},
        {"-1", on, "-1", "-1"},
    };
    for (const Row& row : rows) {
        const QString params =
            QString("&plid=5") + (row.mode ? QString("&mode=") + row.mode : QString());
        EXPECT_EQ(sent("playlists:pl/context?action=shuffle" + params, row.value),
                  QString(R"(playlists:pl/setShuffle {"mode":"%1","plid":5})").arg(row.shuffle));
        EXPECT_EQ(sent("playlists:pl/context?action=repeat" + params, row.value),
                  QString(R"(playlists:pl/setRepeat {"mode":"%1","plid":5})").arg(row.repeat));
    }
}
