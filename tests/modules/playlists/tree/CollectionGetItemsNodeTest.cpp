#include "playlistUI/collection/CollectionGetItemsNode.h"

#include "OrvoPlayListPaths.h"
#include "TreeFixture.h"

namespace {

QJsonObject memberRow(int clid, int plid, const QString& name) {
    return {{"title", '=' + name},
            {"path", QString("playlists:pl/items/%1").arg(plid)},
            {"type", 1},
            {"containerPlayable", true},
            {"mediaData", Expected::playable()},
            {"context",
             Expected::menu("CollectionGetItemsNode|Playlist - %1|" + name,
                            QString("playlists:pl/context?clid=%1&plid=%2").arg(clid).arg(plid))}};
}

class CollectionGetItemsNodeTest : public TreeFixture {
protected:
    void addMember(int clid, int plid) {
        const Answer answer =
            send(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", clid}, {"plid", plid}});
        ASSERT_FALSE(answer.failed) << answer.message();
    }
    OrvoRowsRoles list(const QString& clid, int from = 0, int to = CMGetRowsRequest::LastRow) {
        return rowsAt("playlists:cl/items?clid=" + clid, from, to);
    }
};

} // namespace

TEST_F(CollectionGetItemsNodeTest, theMembersOfTheNamedCollectionAreListedInItsOrder) {
    const int a = createPlayList("a");
    const int b = createPlayList("b");
    createPlayList("c");
    const int rock = createCollection("Rock");
    const int jazz = createCollection("Jazz %1");
    addMember(rock, b);
    addMember(rock, a);
    addMember(jazz, a);
    const OrvoRowsRoles rockReply = list(QString::number(rock));
    EXPECT_EQ(rowTexts(rockReply), rowTexts({memberRow(rock, b, "b"), memberRow(rock, a, "a")}));
    EXPECT_EQ(rockReply.rowsCount(), 2);
    EXPECT_EQ(RowText(rockReply.roles()),
              RowText(QJsonObject{{"title", "CollectionGetItemsNode|Collection - %1|Rock"},
                                  {"path", QString("playlists:cl/items?clid=%1").arg(rock)},
                                  {"type", 1},
                                  {"rowsCount", 2}}));
    const OrvoRowsRoles jazzReply = list(QString::number(jazz));
    EXPECT_EQ(rowTexts(jazzReply), rowTexts(QList<QJsonObject>{memberRow(jazz, a, "a")}));
    EXPECT_EQ(jazzReply.roles().title().toString(), "Collection - Jazz %1");
}

TEST_F(CollectionGetItemsNodeTest, anEmptyCollectionHasItsTitleAndNoRows) {
    const int rock = createCollection("Rock");
    const OrvoRowsRoles reply = list(QString::number(rock));
    EXPECT_TRUE(reply.rows().isEmpty());
    EXPECT_EQ(reply.rowsCount(), 0);
    EXPECT_EQ(reply.roles().title(),
              TrString("CollectionGetItemsNode", "Collection - %1", {"Rock"}));
}

TEST_F(CollectionGetItemsNodeTest, anUnknownCollectionListsNothing) {
    const int rock = createCollection("Rock");
    addMember(rock, createPlayList("a"));
    for (const QString& path : QStringList(
             {"playlists:cl/items?clid=99", "playlists:cl/items?clid=abc",
              "playlists:cl/items?clid=-1", "playlists:cl/items?clid=", "playlists:cl/items?plid=1",
              "playlists:cl/items"})) {
        const OrvoRowsRoles reply = rowsAt(path);
        EXPECT_TRUE(reply.rows().isEmpty()) << path;
        EXPECT_EQ(reply.rowsCount(), 0) << path;
        EXPECT_EQ(reply.roles().title(),
                  TrString("CollectionGetItemsNode", "Collection - %1", {QString()}))
            << path;
    }
}

TEST_F(CollectionGetItemsNodeTest, theRequestedRangeIsSentWithTheFullCount) {
    const int rock = createCollection("Rock");
    for (const char* name : {"a", "b", "c", "d", "e"})
        addMember(rock, createPlayList(name));
    const QString clid = QString::number(rock);
    const QList<RowText> all = rowTexts(list(clid));
    EXPECT_EQ(rowTexts(list(clid, 1, 2)), all.mid(1, 2));
    EXPECT_EQ(rowTexts(list(clid, 2, 1)), all.mid(1, 2));
    EXPECT_EQ(rowTexts(list(clid, 9, 9)), all.mid(4));
    EXPECT_EQ(list(clid, 1, 2).rowsCount(), 5);
}

TEST_F(CollectionGetItemsNodeTest, aDeletedMemberIsNoLongerListed) {
    const int rock = createCollection("Rock");
    const int a = createPlayList("a");
    const int b = createPlayList("b");
    addMember(rock, a);
    addMember(rock, b);
    send(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", a}});
    EXPECT_EQ(rowTexts(list(QString::number(rock))),
              rowTexts(QList<QJsonObject>{memberRow(rock, b, "b")}));
}

TEST_F(CollectionGetItemsNodeTest, theOwnRolesAreRestrictedToTheRequestedOnes) {
    const int rock = createCollection("Rock");
    const OrvoRowsRoles reply =
        rows(CMPath(QString("playlists:cl/items?clid=%1").arg(rock)), 0, 5, {"title", "type"});
    EXPECT_EQ(RowText(reply.roles()),
              RowText(QJsonObject{{"title", "CollectionGetItemsNode|Collection - %1|Rock"},
                                  {"type", 1},
                                  {"rowsCount", 0}}));
}

TEST_F(CollectionGetItemsNodeTest, theCollectionAndItsMembersAreLogged) {
    const int rock = createCollection("Rock");
    const int a = createPlayList("a");
    addMember(rock, a);
    LogCapture log("PlayLists", log4cplus::DEBUG_LOG_LEVEL);
    list(QString::number(rock));
    EXPECT_EQ(log.lines(), QStringList({QString("DEBUG clid:%1 collection size:1").arg(rock),
                                        QString("DEBUG plid:%1 plname:a").arg(a)}));
}

TEST_F(CollectionGetItemsNodeTest, nothingCanBeSetHere) {
    createCollection("Rock");
    const Answer answer =
        send(CMPath("playlists:cl/items?clid=1&action=createPl"), OrvoValue::fromString("x"));
    EXPECT_TRUE(answer.failed);
    EXPECT_EQ(answer.error.name(), CMError::NotAnswered());
    EXPECT_EQ(rowsAt("playlists:root").rowsCount(), 2);
}
