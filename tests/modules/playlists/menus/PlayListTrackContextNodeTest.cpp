#include "playlistUI/playlist/PlayListTrackContextNode.h"

#include "MenuFixture.h"
#include "OrvoPlayListPaths.h"

namespace {

const QString nodePath = "playlists:pl/trackContext";
const QString menuTitle = "PlayListTrackContextNode|Track Context Menu";

class PlayListTrackContextNodeTest : public MenuFixture {
protected:
    static QString title(const QString& text) { return "PlayListTrackContextNode|" + text; }
    static QString encodedItem(const QString& id) { return "playlists%3Aitem%2F" + id; }
    // The playlist's present one, as the entries name it.
    QString revision(const QString& plid) {
        const CMPath path =
            plid == "0" ? OrvoPlayListPqGetItemsPath() : OrvoPlayListPlGetItemsPath() + plid;
        return "&revision=" + QString::number(rows(path, 0, 0).revision());
    }
    QJsonObject toQueue(const QString& plid, const QString& id) {
        return Expected::menu(title("Add to playqueue"),
                              "playlists:pl/selectAddMode?action=cmnode&fromplid=" + plid +
                                  "&itemid=" + encodedItem(id) + "&plid=0" + revision(plid));
    }
    QJsonObject toPlayList(const QString& plid, const QString& id) {
        return Expected::menu(title("Add to playlist"),
                              "playlists:pl/addToPlaylist?action=cmnode&fromplid=" + plid +
                                  "&itemid=" + encodedItem(id) +
                                  "&preparepath=playlists%3AprepareItems" + revision(plid));
    }
    static QString request(const QString& plid, const QString& id, const QString& seqNum) {
        return nodePath + "?action=cmnode&itemid=" + id + "&plid=" + plid + "&seqnum=" + seqNum;
    }
    // Those for which the track stands at `place`, opened when it stood at `seqNum`.
    QJsonObject move(const QString& plid, const QString& id, const QString& seqNum,
                     const QString& place) {
        return Expected::edit(title("Move track"),
                              nodePath + "?action=moveTr&from=" + place + "&itemid=" + id +
                                  "&plid=" + plid + revision(plid) + "&seqnum=" + seqNum,
                              Expected::text(place));
    }
    QJsonObject remove(const QString& plid, const QString& id, const QString& place) {
        return Expected::action(title("Remove track"),
                                nodePath + "?action=removeTr&fromplid=" + plid + "&itemid=" + id +
                                    "&plid=" + plid + revision(plid) + "&seqnum=" + place);
    }
    QString moveTo(const QVariantHash& value, const char* params = "plid=1&from=0") {
        return select(nodePath + "?action=moveTr&" + params, value).message();
    }
};

class PlayListTrackContextNodeAloneTest : public MenuAloneFixture {};

} // namespace

TEST_F(PlayListTrackContextNodeTest, theMenuDependsOnThePlayQueueBeingVisible) {
    createPlayList("Mix");
    addItems(1, {"a", "b", "c"});
    const QString id = itemId(1, 2);
    for (const bool collections : {false, true}) {
        show(false, collections);
        restart();
        expectMenu(request("1", id, "2"), menuTitle,
                   {toPlayList("1", id), move("1", id, "2", "2"), remove("1", id, "2")});
        show(true, collections);
        restart();
        expectMenu(
            request("1", id, "2"), menuTitle,
            {toQueue("1", id), toPlayList("1", id), move("1", id, "2", "2"), remove("1", id, "2")});
    }
}

TEST_F(PlayListTrackContextNodeTest, whatIsVisibleIsReadWhenTheMenuIsMade) {
    show(true, false);
    createPlayList("Mix");
    addItems(1, {"a"});
    const QString id = itemId(1, 0);
    const auto others = [&] {
        return QList<QJsonObject>{toPlayList("1", id), move("1", id, "0", "0"),
                                  remove("1", id, "0")};
    };
    show(false, false);
    expectMenu(request("1", id, "0"), menuTitle, QList{toQueue("1", id)} + others());
    restart();
    expectMenu(request("1", id, "0"), menuTitle, others());
    show(true, false);
    expectMenu(request("1", id, "0"), menuTitle, others());
}

TEST_F(PlayListTrackContextNodeTest, aTrackOfThePlayQueueIsNotOfferedToIt) {
    show(true, true);
    addItems(0, {"a", "b"});
    const QString id = itemId(0, 1);
    expectMenu(request("0", id, "1"), menuTitle,
               {toPlayList("0", id), move("0", id, "1", "1"), remove("0", id, "1")});
}

TEST_F(PlayListTrackContextNodeTest, aMenuWithoutAKnownPlaylistHasNoEntries) {
    show(true, false);
    createPlayList("Mix");
    addItems(1, {"a"});
    const QString id = itemId(1, 0);
    for (const char* plid : {"99", "abc", "-1", ""})
        expectMenu(request(plid, id, "0"), menuTitle, {});
    expectMenu(nodePath + "?itemid=" + id, menuTitle, {});
}

TEST_F(PlayListTrackContextNodeTest, aTrackOfAnotherPlaylistHasNoEntries) {
    show(true, true);
    createPlayList("Mix");
    createPlayList("Other");
    addItems(1, {"a", "b"});
    addItems(2, {"c", "d"});
    addItems(0, {"e"});
    expectMenu(request("1", itemId(2, 1), "1"), menuTitle, {});
    expectMenu(request("2", itemId(0, 0), "0"), menuTitle, {});
    expectMenu(request("0", itemId(1, 1), "0"), menuTitle, {});
}

TEST_F(PlayListTrackContextNodeTest, anUnknownTrackHasNoEntries) {
    show(true, true);
    createPlayList("Mix");
    addItems(1, {"a"});
    expectMenu(nodePath, menuTitle, {});
    expectMenu(nodePath + "?plid=1&seqnum=0", menuTitle, {});
    for (const char* id : {"", "0", "-1", "99", "abc", "playlists%3Aitem%2F1"})
        expectMenu(request("1", id, "0"), menuTitle, {});
}

TEST_F(PlayListTrackContextNodeTest, aMenuOpenedBeforeAMoveNamesThePresentPlace) {
    createPlayList("Mix");
    addItems(1, {"a", "b", "c"});
    const QString id = itemId(1, 0);
    EXPECT_EQ(moveTo({{"string", "2"}}), "");
    EXPECT_EQ(rowTexts(rowsAt(request("1", id, "0"))),
              rowTexts({toPlayList("1", id), move("1", id, "0", "2"), remove("1", id, "2")}));
}

TEST_F(PlayListTrackContextNodeTest, entriesOnItsOwnPathKeepTheRequestsParametersAndLinksDoNot) {
    show(true, false);
    createPlayList("Mix");
    addItems(1, {"a"});
    const QString id = itemId(1, 0);
    QStringList paths;
    for (const OrvoRoles& row : asRoles(rowsAt(request("1", id, "0") + "&x=y")))
        paths.append(row.path().toString());
    ASSERT_EQ(paths.size(), 4);
    EXPECT_EQ(paths.filter("x=y"), paths.mid(2));
    EXPECT_EQ(paths.filter("seqnum=0"), paths.mid(2));
}

TEST_F(PlayListTrackContextNodeTest, whatIsAskedForIsLogged) {
    createPlayList("Mix");
    addItems(1, {"a"});
    const QString id = itemId(1, 0);
    const LogCapture log("PlayLists", log4cplus::DEBUG_LOG_LEVEL);
    rowsAt(request("1", id, "7"));
    EXPECT_EQ(log.lines(), QStringList("DEBUG plid:1 itemid:" + id + " seqnum:7"));
}

TEST_F(PlayListTrackContextNodeTest, actionsThatAreNotItsOwnAreNotTaken) {
    createPlayList("Mix");
    addItems(1, {"a", "b"});
    expectNotTaken({nodePath + "?from=0&plid=1", nodePath + "?action=cmnode&plid=1&seqnum=0",
                    nodePath + "?action=moveTR&from=0&plid=1",
                    nodePath + "?action=removeTR&fromplid=1&seqnum=0",
                    nodePath + "?action=play&plid=1"});
    EXPECT_EQ(titles(1), QStringList({"a", "b"}));
}

TEST_F(PlayListTrackContextNodeTest, movingAndRemovingHappenAndCloseTheMenu) {
    createPlayList("Mix");
    addItems(1, {"a", "b", "c", "d"});
    const RowText closed = Expected::doneAndClosed(Expected::flag(true), nodePath);
    EXPECT_EQ(answerText(select(nodePath + "?action=moveTr&from=0&plid=1", {{"string", "2"}})),
              closed);
    EXPECT_EQ(titles(1), QStringList({"b", "c", "a", "d"}));
    EXPECT_EQ(answerText(select(nodePath + "?action=moveTr&from=3&plid=1", {{"i32", 0}})), closed);
    EXPECT_EQ(titles(1), QStringList({"d", "b", "c", "a"}));
    EXPECT_EQ(answerText(select(nodePath + "?action=removeTr&fromplid=1&seqnum=1")), closed);
    EXPECT_EQ(titles(1), QStringList({"d", "c", "a"}));
    addItems(0, {"q", "r"});
    EXPECT_EQ(answerText(select(nodePath + "?action=removeTr&fromplid=0&plid=1&seqnum=0")), closed);
    EXPECT_EQ(titles(0), QStringList("r"));
}

TEST_F(PlayListTrackContextNodeTest, targetsThatAreNoPlaceAreRefusedAndNothingMoves) {
    createPlayList("Mix");
    addItems(1, {"a", "b"});
    const QString negative =
        "Could not move items in playlist. Cannot move items to negative position.";
    const QString outOfRange =
        "Could not move items in playlist. Cannot move items, sequence number is not in valid range.";
    EXPECT_EQ(moveTo({{"string", "abc"}}), negative);
    EXPECT_EQ(moveTo({{"string", ""}}), negative);
    EXPECT_EQ(moveTo({{"string", "-1"}}), negative);
    EXPECT_EQ(moveTo({{"string", "1.5"}}), negative);
    EXPECT_EQ(moveTo({{"string", "4294967296"}}), negative);
    EXPECT_EQ(moveTo({{"bool", true}}), negative);
    EXPECT_EQ(moveTo({}), negative);
    EXPECT_EQ(moveTo({{"string", "2"}}), outOfRange);
    EXPECT_EQ(moveTo({{"i32", 2}}), outOfRange);
    EXPECT_EQ(moveTo({{"string", "1"}}, "from=0"),
              "Could not move items in playlist. Cannot find playlist with invalid ID.");
    EXPECT_EQ(moveTo({{"string", "1"}}, "plid=1"),
              "Could not move items in playlist. Move items failed");
    EXPECT_EQ(moveTo({{"string", "1"}}, "plid=1&from=x"),
              "Could not move items in playlist. Move items failed");
    EXPECT_EQ(titles(1), QStringList({"a", "b"}));
}

TEST_F(PlayListTrackContextNodeTest, whatCannotBeRemovedIsRefusedAndStays) {
    createPlayList("Mix");
    addItems(1, {"a", "b"});
    addItems(0, {"q"});
    const auto remove = [this](const char* params) {
        return select(nodePath + "?action=removeTr&" + params).message();
    };
    const QString failed = "Could not remove items from playlist. Remove items failed";
    EXPECT_EQ(remove("fromplid=1&seqnum=2"), failed);
    EXPECT_EQ(remove("fromplid=1&seqnum=-1"), failed);
    EXPECT_EQ(remove("fromplid=1&seqnum=x"), failed);
    EXPECT_EQ(remove("fromplid=1"), failed);
    EXPECT_EQ(remove("fromplid=9&seqnum=0"),
              "Could not remove items from playlist. There is no playlist with this ID. (9)");
    EXPECT_EQ(remove("plid=1&seqnum=0"),
              "Could not remove items from playlist. Cannot find playlist with invalid ID.");
    EXPECT_EQ(titles(1), QStringList({"a", "b"}));
    EXPECT_EQ(titles(0), QStringList("q"));
}

TEST_F(PlayListTrackContextNodeAloneTest, theTargetMayBeTextOrNumber) {
    struct Row {
        QVariant value;
        int to;
    };
    const Row rows[] = {
        {QVariantHash{{"string", "3"}}, 3},
        {QVariantHash{{"string", "0"}}, 0},
        {QVariantHash{{"string", "-2"}}, -2},
        {QVariantHash{{"i32", 3}}, 3},
        {QVariantHash{{"i64", 3}}, 3},
        {QVariantHash{{"double", 3.0}}, 3}, // numbers of JSON
        {QVariantHash{{"i32", "3"}}, 3},
        {QVariantHash{{"double", 3.5}}, -1},
        {QVariantHash{{"string", "x3"}}, -1},
        {QVariantHash{{"string", "3 4"}}, -1},
        {QVariantHash{{"string", "0x3"}}, -1},
        {QVariantHash{{"string", "2147483648"}}, -1},
        {QVariantHash{{"bool", true}}, -1},
        {QVariantHash{{"to", 3}}, -1},
        {QVariant(3), -1},
        {QVariant(), -1},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(sent(nodePath + "?action=moveTr&plid=5&from=7&seqnum=1", row.value),
                  QString(R"(playlists:pl/moveItems {"items":[7],"plid":5,"to":%1})").arg(row.to))
            << ::testing::PrintToString(row.value);
    }
}

TEST_F(PlayListTrackContextNodeAloneTest, everyActionReadsItsOwnParameters) {
    const QVariantHash value = {{"string", "3"}};
    EXPECT_EQ(sent(nodePath + "?action=moveTr&plid=0&from=7&fromplid=9&seqnum=8", value),
              R"(playlists:pl/moveItems {"items":[7],"plid":0,"to":3})");
    EXPECT_EQ(sent(nodePath + "?action=moveTr&fromplid=9&seqnum=8", value),
              R"(playlists:pl/moveItems {"items":[-1],"plid":-1,"to":3})");
    EXPECT_EQ(sent(nodePath + "?action=removeTr&plid=0&from=7&fromplid=9&seqnum=8"),
              R"(playlists:pl/removeItems {"items":[8],"plid":9})");
    EXPECT_EQ(sent(nodePath + "?action=removeTr&plid=0&from=7"),
              R"(playlists:pl/removeItems {"items":[-1],"plid":-1})");
    EXPECT_EQ(sent(nodePath + "?plid=0&from=7", value), "nothing");
}
