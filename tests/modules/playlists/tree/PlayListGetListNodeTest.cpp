#include "playlistUI/playlist/PlayListGetListNode.h"

#include <QPointer>

#include "OrvoPlayListPaths.h"
#include "playlistUI/playlist/PlayListGetItemsNode.h"
#include "TreeFixture.h"

namespace {

const QJsonObject createRow =
    Expected::entry("PlayListGetListNode|Create new playlist", "playlists:root?action=createPl");

// Unlike the root's row it does not say that the container is playable.
QJsonObject playListRow(int uid, const QString& name) {
    return {{"title", '=' + name},
            {"path", QString("playlists:pl/items/%1").arg(uid)},
            {"type", 1},
            {"mediaData", Expected::playable()},
            {"context", Expected::menu("PlayListGetListNode|Playlist Context Menu - %1|" + name,
                                       QString("playlists:pl/context?plid=%1").arg(uid))}};
}

class PlayListGetListNodeTest : public TreeFixture {
protected:
    OrvoRowsRoles list(int from = 0, int to = CMGetRowsRequest::LastRow) {
        return rowsAt("playlists:pl/list", from, to);
    }
};

} // namespace

TEST_F(PlayListGetListNodeTest, withoutPlaylistsThereIsTheCreateEntry) {
    const OrvoRowsRoles reply = list();
    EXPECT_EQ(rowTexts(reply), rowTexts(QList<QJsonObject>{createRow}));
    EXPECT_EQ(reply.rowsCount(), 1);
    EXPECT_EQ(RowText(reply.roles()),
              RowText(QJsonObject{{"title", "PlayListGetListNode|Playlists"}, {"rowsCount", 1}}));
}

TEST_F(PlayListGetListNodeTest, everyPlaylistFollowsInTheManagersOrder) {
    show(true, true);
    createCollection("Rock");
    const int second = createPlayList("b");
    const int first = createPlayList("a");
    EXPECT_EQ(rowTexts(list()),
              rowTexts({createRow, playListRow(second, "b"), playListRow(first, "a")}));
}

TEST_F(PlayListGetListNodeTest, rowsDoNotCarryThePlayableFlag) {
    createPlayList("a");
    const QVariantList row =
        rows(CMPath("playlists:pl/list"), 1, 1, {"containerPlayable", "id"}).rows().at(0).toList();
    EXPECT_FALSE(row.at(0).isValid());
    EXPECT_FALSE(row.at(1).isValid());
}

TEST_F(PlayListGetListNodeTest, theCreateEntryKeepsTheRequestsParameters) {
    EXPECT_EQ(rowTexts(rowsAt("playlists:pl/list?from=menu")).first(),
              RowText(Expected::entry("PlayListGetListNode|Create new playlist",
                                      "playlists:root?action=createPl&from=menu")));
}

TEST_F(PlayListGetListNodeTest, theCreateEntrysPathCreates) {
    const CMPath path = asRoles(list()).first().path();
    const Answer answer = send(path, OrvoValue::fromString("Mix"));
    ASSERT_FALSE(answer.failed) << answer.message();
    EXPECT_EQ(rowTexts(list()).last(), RowText(playListRow(answer.result().i32(), "Mix")));
}

TEST_F(PlayListGetListNodeTest, theRequestedRangeIsSentWithTheFullCount) {
    for (const char* name : {"a", "b", "c", "d"})
        createPlayList(name);
    const QList<RowText> all = rowTexts(list());
    EXPECT_EQ(rowTexts(list(2, 3)), all.mid(2, 2));
    EXPECT_EQ(rowTexts(list(3, 2)), all.mid(2, 2));
    EXPECT_EQ(list(2, 3).rowsCount(), 5);
}

TEST_F(PlayListGetListNodeTest, whatIsListedIsLogged) {
    const int uid = createPlayList("Mix");
    LogCapture log("PlayLists", log4cplus::DEBUG_LOG_LEVEL);
    list();
    EXPECT_EQ(log.lines(), QStringList(QString("DEBUG plid:%1 plname:Mix").arg(uid)));
}

namespace {

class ItemsNodeMapTest : public PartsFixture {
protected:
    static CMPath itemsPath(int uid) { return CMPath(QString("playlists:pl/items/%1").arg(uid)); }

    std::unique_ptr<PlayListGetListNode> list{
        PlayListGetListNode::create(&nodes, OrvoPlayListPlGetlistPath(), &manager)};
};

} // namespace

TEST_F(ItemsNodeMapTest, aNodeIsMadeOncePerPlaylist) {
    EXPECT_EQ(list->playlistNode(5), nullptr);
    list->createPlaylistNode(5);
    PlayListGetItemsNode* node = list->playlistNode(5);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->path(), itemsPath(5));
    EXPECT_EQ(nodes.find(itemsPath(5)), node);
    list->createPlaylistNode(5);
    EXPECT_EQ(list->playlistNode(5), node) << "an existing one is left as it is";
    EXPECT_EQ(nodes.count(), 2);
}

TEST_F(ItemsNodeMapTest, onlyThePathAsItIsWrittenIsAPlaylists) {
    list->createPlaylistNode(5);
    for (const char* path :
         {"playlists:pl/items/05", "playlists:pl/items/+5", "playlists:pl/items/ 5",
          "playlists:pl/items/5/5", "playlists:pl/items/-1", "playlists:pl/items"})
        EXPECT_EQ(nodes.find(CMPath(path)), nullptr) << path;
}

TEST_F(ItemsNodeMapTest, aDeletedNodeLeavesTheMapAndTheRegistryAtOnce) {
    list->createPlaylistNode(5);
    list->createPlaylistNode(50);
    const QPointer<PlayListGetItemsNode> node = list->playlistNode(5);
    list->deletePlaylistNode(5);
    EXPECT_EQ(list->playlistNode(5), nullptr);
    EXPECT_EQ(nodes.find(itemsPath(5)), nullptr);
    EXPECT_NE(nodes.find(itemsPath(50)), nullptr);
    EXPECT_FALSE(node.isNull()) << "destroyed with the next turn";
    turnEventLoop();
    EXPECT_TRUE(node.isNull());
    list->deletePlaylistNode(5);
    turnEventLoop();
    EXPECT_NE(list->playlistNode(50), nullptr);
    EXPECT_EQ(nodes.count(), 2);
}

TEST_F(ItemsNodeMapTest, aNodeMadeAnewForTheSameIdOutlivesTheOldOne) {
    list->createPlaylistNode(5);
    list->deletePlaylistNode(5);
    list->createPlaylistNode(5);
    PlayListGetItemsNode* successor = list->playlistNode(5);
    turnEventLoop();
    EXPECT_EQ(list->playlistNode(5), successor);
    EXPECT_EQ(nodes.find(itemsPath(5)), successor);
}

TEST_F(ItemsNodeMapTest, everyPlaylistGetsANode) {
    const int first = manager.createPlayList("a")->getUid();
    const int second = manager.createPlayList("b")->getUid();
    list->createPlaylistNodes();
    EXPECT_NE(nodes.find(itemsPath(first)), nullptr);
    EXPECT_NE(nodes.find(itemsPath(second)), nullptr);
    EXPECT_EQ(nodes.find(itemsPath(0)), nullptr) << "the queue's node is not of this family";
    EXPECT_EQ(nodes.count(), 3);
}

TEST_F(ItemsNodeMapTest, theMapIsLoggedAfterEachChange) {
    LogCapture log("PlayLists", log4cplus::DEBUG_LOG_LEVEL);
    list->createPlaylistNode(5);
    EXPECT_EQ(log.lines(),
              QStringList({"DEBUG m_itemsNodeMap keys.count():1", "DEBUG m_itemsNodeMap key:5"}));
    log.clear();
    list->createPlaylistNode(5);
    EXPECT_EQ(log.lines(),
              QStringList({"DEBUG m_itemsNodeMap keys.count():1", "DEBUG m_itemsNodeMap key:5"}));
    log.clear();
    list->deletePlaylistNode(5);
    EXPECT_EQ(log.lines(), QStringList({"DEBUG m_itemsNodeMap keys.count():0"}));
    log.clear();
    list->deletePlaylistNode(5);
    EXPECT_TRUE(log.lines().contains("DEBUG m_itemsNodeMap keys.count():0"));
}

TEST_F(ItemsNodeMapTest, theNodesGoWithTheirOwner) {
    list->createPlaylistNode(5);
    list.reset();
    EXPECT_EQ(nodes.count(), 0);
}
