#include "MenuFixture.h"
#include "OrvoPlayListPaths.h"
#include "playlistUI/playlist/PlayListAddModeNode.h"
#include "playlistUI/playlist/PlayListAddToPlaylistNode.h"

namespace {

const QString targetPath = "playlists:pl/addToPlaylist";
const QString modePath = "playlists:pl/selectAddMode";
const QString targetTitle = "PlayListAddToPlaylistNode|Playlists";
const QString modeTitle = "PlayListAddModeNode|Playlists";

class AddToNodesTest : public MenuFixture {
protected:
    static QJsonObject create(const QString& further) {
        return Expected::edit("PlayListAddToPlaylistNode|Create new playlist",
                              targetPath + "?action=createPl" + further, Expected::text(""));
    }
    static QJsonObject target(const QString& name, const QString& params) {
        QJsonObject row = Expected::menu('=' + name, modePath + '?' + params);
        row.insert("containerPlayable", true);
        return row;
    }
    // Parameters as the track menu gives them, for an item of this module.
    QString ownItem(int plid, int place) {
        return "&itemid=playlists%3Aitem%2F" + itemId(plid, place);
    }
    QString add(const QString& params) {
        const Answer answer = select(modePath + '?' + params);
        if (!answer.failed) {
            EXPECT_EQ(answerText(answer), Expected::doneAndClosed(Expected::flag(true), modePath));
        }
        return answer.message();
    }
    QStringList playLists() { return rowTitles(rowsAt("playlists:pl/list")).mid(1); }
};

class AddToNodesAloneTest : public MenuAloneFixture {};

} // namespace

TEST_F(AddToNodesTest, thePlaylistsFollowTheEntryThatMakesOne) {
    for (const bool queueVisible : {false, true}) {
        show(queueVisible, !queueVisible);
        restart();
        expectMenu(targetPath, targetTitle, {create(""), Expected::separator()});
    }
    createPlayList("Mix");
    createPlayList("%1 100%");
    // The source, 1, is offered as well.
    const QString rest = "&fromplid=1&itemid=playlists%3Aitem%2F5";
    const QString prepare = "&preparepath=playlists%3AprepareItems";
    expectMenu(targetPath + "?action=cmnode" + rest + prepare, targetTitle,
               {create(rest + prepare), Expected::separator(),
                target("Mix", "action=cmnode" + rest + "&plid=1" + prepare),
                target("%1 100%", "action=cmnode" + rest + "&plid=2" + prepare)});
}

TEST_F(AddToNodesTest, aPlaylistThatTheRequestNamesIsReplacedByTheChosenOne) {
    createPlayList("Mix");
    expectMenu(targetPath + "?plid=77&x=y", targetTitle,
               {create("&plid=77&x=y"), Expected::separator(), target("Mix", "plid=1&x=y")});
}

TEST_F(AddToNodesTest, whatIsListedIsLogged) {
    createPlayList("Mix");
    const LogCapture log("PlayLists", log4cplus::DEBUG_LOG_LEVEL);
    rowsAt(targetPath);
    EXPECT_EQ(log.lines(), QStringList("DEBUG plid:1 plname:Mix"));
}

TEST_F(AddToNodesTest, aCreatedPlaylistIsListedAndTheMenuStays) {
    const QString params = "&fromplid=3&itemid=x";
    EXPECT_EQ(answerText(select(targetPath + "?action=createPl" + params, {{"string", "Mix"}})),
              Expected::done(QJsonObject{{"i32", 1}}));
    expectMenu(targetPath + "?action=cmnode" + params, targetTitle,
               {create(params), Expected::separator(),
                target("Mix", "action=cmnode" + params + "&plid=1")});
    EXPECT_EQ(select(targetPath + "?action=createPl").message(),
              "Could not create playlist. Please provide a non-empty string as field. (name)");
    expectNotTaken({targetPath, targetPath + "?action=cmnode", targetPath + "?action=createpl",
                    targetPath + "?action=createCl"});
    EXPECT_EQ(playLists(), QStringList("=Mix"));
}

TEST_F(AddToNodesTest, theThreePlacesToAddAt) {
    const auto row = [](const char* title, const QString& params) {
        return Expected::action(QString("PlayListAddModeNode|") + title, modePath + '?' + params);
    };
    expectMenu(modePath, modeTitle,
               {row("Now", "mode=0"), row("After current", "mode=1"), row("Append", "mode=2")});
    const QString rest = "action=cmnode&fromplid=1&itemid=playlists%3Aitem%2F5&mode=";
    expectMenu(modePath + '?' + rest + "9&plid=2&x=y", modeTitle,
               {row("Now", rest + "0&plid=2&x=y"), row("After current", rest + "1&plid=2&x=y"),
                row("Append", rest + "2&plid=2&x=y")});
}

TEST_F(AddToNodesTest, aTrackIsCopiedToItsPlace) {
    RecordingWorker player("Player");
    createPlayList("Mix");
    createPlayList("Other");
    addItems(1, {"a", "b"});
    addItems(2, {"x", "y"});
    EXPECT_EQ(add("action=cmnode&fromplid=2&mode=2&plid=1" + ownItem(2, 1)), "");
    EXPECT_EQ(titles(1), QStringList({"a", "b", "y"}));
    EXPECT_EQ(player.requests.size(), 0);
    EXPECT_EQ(add("action=cmnode&fromplid=2&mode=0&plid=1" + ownItem(2, 0)), "");
    EXPECT_EQ(player.requests.size(), 1) << "now: it plays";
    EXPECT_EQ(titles(1).count("x"), 1);
    EXPECT_EQ(titles(2), QStringList({"x", "y"})) << "the source keeps its tracks";
    EXPECT_EQ(add("mode=2&plid=0" + ownItem(1, 0)), "");
    EXPECT_EQ(titles(0), QStringList("a"));
    EXPECT_EQ(add("plid=0" + ownItem(1, 1)), "") << "without a mode: at the end";
    EXPECT_EQ(titles(0).size(), 2);
}

TEST_F(AddToNodesTest, aTrackIsTakenFromTheModuleThatItsPathNames) {
    RecordingWorker files("Files");
    createPlayList("Mix");
    const QString path = "files:My%20Music/100%25%2Fa.flac?seqnum=7&x=%26";
    files.items.insert(path, makeItem("a"));
    CMPath chosen("playlists:pl/selectAddMode?action=cmnode&mode=2&plid=1");
    chosen.addParam("itemid", path);
    EXPECT_EQ(add(chosen.toString().section('?', 1)), "");
    ASSERT_EQ(files.requests.size(), 1);
    EXPECT_EQ(files.requests.first().value().toStringList(), QStringList(path));
    EXPECT_EQ(titles(1), QStringList("a"));
}

TEST_F(AddToNodesTest, aPlaylistWithoutATrackIsMergedAndGone) {
    createPlayList("Mix");
    createPlayList("Other");
    addItems(1, {"a"});
    addItems(2, {"x", "y"});
    EXPECT_EQ(add("action=cmnode&fromplid=2&mode=2&plid=1"), "");
    EXPECT_EQ(titles(1), QStringList({"a", "x", "y"}));
    EXPECT_EQ(playLists(), QStringList("=Mix"));
    addItems(0, {"q"});
    EXPECT_EQ(add("action=cmnode&fromplid=0&mode=2&plid=1"), "");
    EXPECT_EQ(titles(1), QStringList({"a", "x", "y", "q"}));
    EXPECT_EQ(titles(0), QStringList("q")) << "the play queue is never deleted";
    EXPECT_EQ(add("action=cmnode&fromplid=1&mode=2&plid=1"), "");
    EXPECT_EQ(titles(1).size(), 8) << "merged with itself it doubles";
    EXPECT_EQ(playLists(), QStringList("=Mix"));
}

TEST_F(AddToNodesTest, theCommandsRefusalsArriveAsTheyAre) {
    createPlayList("Mix");
    createPlayList("Other");
    addItems(2, {"x"});
    const QString invalid =
        "Could not add items to playlist. Cannot find playlist with invalid ID.";
    const QString nothing =
        "Could not add items to playlist. Please select one or more items to add.";
    const QString none =
        "Could not add items to playlist. No items were added. (No playitem found.)";
    EXPECT_EQ(select(modePath).message(), invalid);
    EXPECT_EQ(add("fromplid=2&mode=2"), invalid);
    EXPECT_EQ(add("fromplid=2&mode=2&plid=x"), invalid);
    EXPECT_EQ(add("mode=2&plid=1"), nothing);
    EXPECT_EQ(add("fromplid=x&mode=2&plid=1"), nothing);
    EXPECT_EQ(add("fromplid=9&mode=2&plid=1"), nothing);
    EXPECT_EQ(add("fromplid=2&itemid=attic%3Ax&mode=2&plid=1"), none);
    EXPECT_EQ(add("fromplid=2&itemid=playlists%3Aitem%2Fabc&mode=2&plid=1"), none);
    EXPECT_EQ(add("fromplid=2&itemid=&mode=2&plid=1"), none)
        << "an item without a name is no merge";
    EXPECT_EQ(
        add("fromplid=2&mode=2&plid=9"),
        "Could not add items to playlist. No items were added. (There is no playlist with this ID. (9))");
    EXPECT_EQ(titles(1), QStringList());
    EXPECT_EQ(titles(2), QStringList("x"));
    EXPECT_EQ(playLists(), QStringList({"=Mix", "=Other"}));
}

TEST_F(AddToNodesAloneTest, theCommandGetsWhatThePathHasWhateverTheAction) {
    struct Row {
        const char* params;
        const char* args;
    };
    const Row rows[] = {
        {"fromplid=1&itemid=playlists%3Aitem%2F5&mode=1&plid=2",
         R"({"fromPlid":1,"items":["playlists:item/5"],"mode":"afterCurrent","plid":2})"},
        {"fromplid=1&mode=0&plid=2&preparepath=x", R"({"fromPlid":1,"mode":"now","plid":2})"},
        {"itemid=files%3Aa%2520b%3Fx%3D%2526&mode=2&plid=0",
         R"({"items":["files:a%20b?x=%26"],"mode":"append","plid":0})"},
        {"itemid=&plid=2", R"({"items":[""],"plid":2})"},
        {"mode=7&plid=2", R"({"mode":"7","plid":2})"},
        {"mode=abc", R"({"mode":"now"})"},
        {"plid=x&fromplid=", R"({"fromPlid":-1,"plid":-1})"},
        {"preparepath=x", R"({})"},
    };
    for (const Row& row : rows) {
        for (const char* action :
             {"", "&action=", "&action=cmnode", "&action=createPl", "&action=unknown"})
            EXPECT_EQ(
                sent(modePath + '?' + row.params + action, QVariantHash{{"string", "ignored"}}),
                QString("playlists:pl/addItems ") + row.args);
    }
}

TEST_F(AddToNodesAloneTest, aNameBecomesTheNewPlaylists) {
    EXPECT_EQ(
        sent(targetPath + "?action=createPl&plid=5&itemid=x", QVariantHash{{"string", "Mix"}}),
        R"(playlists:pl/create {"name":"Mix"})");
    EXPECT_EQ(sent(targetPath + "?action=cmnode&plid=5", QVariantHash{{"string", "Mix"}}),
              "nothing");
    EXPECT_EQ(sent(targetPath, QVariantHash{{"string", "Mix"}}), "nothing");
}
