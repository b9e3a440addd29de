#include <QJsonArray>
#include <QJsonDocument>

#include "CMNode.h"
#include "CMRootWorker.h"
#include "OrvoPlayListPaths.h"
#include "playlistUI/playlist/PlayListGetItemsNode.h"
#include "playlistUI/playqueue/PlayQueueGetItemsNode.h"
#include "TreeFixture.h"

namespace {

// The row of an item that ModuleFixture::makeItem made.
QJsonObject trackRow(int plid, int sequenceNumber, const QString& uid, const QString& title) {
    return {{"title", '=' + title},
            {"path", "playlists:item/" + uid},
            {"type", 3},
            {"value", QJsonObject{{"i32", sequenceNumber}}},
            {"id", uid},
            {"mediaData",
             QJsonObject{
                 {"metaData", QJsonObject{{"prePlayPath", "files:prePlay"},
                                          {"playLogicPath", "playlists:playlogic"}}},
                 {"resources",
                  QJsonArray{QJsonObject{{"uri", QString("file:///music/%1.flac").arg(title)}}}}}},
            {"context",
             Expected::menu(
                 "BaseNode|Playlist",
                 QString("playlists:pl/trackContext?action=cmnode&itemid=%1&plid=%2&seqnum=%3")
                     .arg(uid)
                     .arg(plid)
                     .arg(sequenceNumber))}};
}

QStringList numbered(int count) {
    QStringList titles;
    for (int i = 0; i < count; ++i)
        titles.append(QString("t%1").arg(i));
    return titles;
}

class TrackListTest : public TreeFixture {
protected:
    static QString listPath(int plid) {
        return plid == 0 ? QString("playlists:pq/items")
                         : QString("playlists:pl/items/%1").arg(plid);
    }
    OrvoRowsRoles list(int plid, int from = 0, int to = CMGetRowsRequest::LastRow) {
        return rowsAt(listPath(plid), from, to);
    }
    QJsonObject listRoles(int plid, const QString& title, int count) const {
        return {{"title", title},
                {"path", listPath(plid)},
                {"type", 1},
                {"mediaData", Expected::playable()},
                {"rowsCount", count}};
    }
};

} // namespace

TEST_F(TrackListTest, aTrackRowHasTheItemsRolesItsPlaceAndItsMenu) {
    createPlayList("Other");
    const int plid = createPlayList("Mix");
    addItems(plid, {"a", "b", "c"});
    const OrvoRowsRoles reply = list(plid);
    const QList<OrvoRoles> roles = asRoles(reply);
    ASSERT_EQ(roles.size(), 3);
    QList<QJsonObject> expected;
    for (int i = 0; i < 3; ++i)
        expected.append(trackRow(plid, i, roles.at(i).id(), QStringList({"a", "b", "c"}).at(i)));
    EXPECT_EQ(rowTexts(reply), rowTexts(expected));
    EXPECT_EQ((QSet<QString>{roles.at(0).id(), roles.at(1).id(), roles.at(2).id()}).size(), 3);
    EXPECT_FALSE(roles.at(0).id().isEmpty());
    EXPECT_EQ(reply.rowsCount(), 3);
    EXPECT_EQ(RowText(reply.roles()),
              RowText(listRoles(plid, "PlayListGetItemsNode|Playlist - %1|Mix", 3)));
}

TEST_F(TrackListTest, theQueuesRowsNameTheQueue) {
    addItems(0, {"a", "b"});
    const OrvoRowsRoles reply = list(0);
    const QList<OrvoRoles> roles = asRoles(reply);
    ASSERT_EQ(roles.size(), 2);
    EXPECT_EQ(rowTexts(reply), rowTexts({trackRow(0, 0, roles.at(0).id(), "a"),
                                         trackRow(0, 1, roles.at(1).id(), "b")}));
    EXPECT_EQ(RowText(reply.roles()),
              RowText(listRoles(0, "PlayQueueGetItemsNode|PlayQueue tracks", 2)));
}

TEST_F(TrackListTest, anEmptyListHasNoRows) {
    const int plid = createPlayList("Mix");
    for (int uid : {plid, 0}) {
        EXPECT_EQ(list(uid).rows().size(), 0);
        EXPECT_EQ(list(uid).rowsCount(), 0);
    }
}

TEST_F(TrackListTest, theRequestedRangeIsReadAndTheFullCountReported) {
    const int plid = createPlayList("Mix");
    addItems(plid, numbered(25));
    const QList<RowText> all = rowTexts(list(plid));
    ASSERT_EQ(all.size(), 25);
    EXPECT_EQ(rowTexts(list(plid, 10, 19)), all.mid(10, 10));
    EXPECT_EQ(list(plid, 10, 19).rowsCount(), 25);
    EXPECT_EQ(rowTexts(list(plid, 24, 24)), all.mid(24));
    EXPECT_EQ(rowTexts(list(plid, 20, 100)), all.mid(20));
    EXPECT_EQ(rowTexts(list(plid, -5, 1)), all.mid(0, 2));
    EXPECT_TRUE(rowTexts(list(plid, 25, 30)).isEmpty());
    EXPECT_EQ(list(plid, 25, 30).rowsCount(), 25);
}

TEST_F(TrackListTest, theQueueIsReadByRangeToo) {
    addItems(0, numbered(25));
    const QList<RowText> all = rowTexts(list(0));
    ASSERT_EQ(all.size(), 25);
    EXPECT_EQ(rowTexts(list(0, 10, 19)), all.mid(10, 10));
    EXPECT_EQ(list(0, 10, 19).rowsCount(), 25);
}

// Tracks are asked of the store by range as it is given; only lists that are cut afterwards turn it
// round.
TEST_F(TrackListTest, aRangeFromBehindToTheFrontHoldsNothing) {
    const int plid = createPlayList("Mix");
    for (const int uid : {plid, 0}) {
        addItems(uid, numbered(5));
        const OrvoRowsRoles reply = list(uid, 3, 1);
        EXPECT_TRUE(rowTexts(reply).isEmpty());
        EXPECT_EQ(reply.rowsCount(), 5);
    }
}

TEST_F(TrackListTest, onlyTheRequestedRangeIsFetched) {
    const int plid = createPlayList("Mix");
    addItems(plid, numbered(25));
    for (const int uid : {plid, 0}) {
        LogCapture log("PlayLists");
        list(uid, 10, 19);
        const QStringList reads = log.lines().filter("getItems(");
        EXPECT_EQ(reads.filter("from=10 to=19").size(), reads.size()) << reads.join('\n');
        EXPECT_FALSE(reads.isEmpty());
    }
}

TEST_F(TrackListTest, aPageIsAnsweredInConstantTimeOfRows) {
    const int plid = createPlayList("Mix");
    addItems(plid, numbered(25));
    EXPECT_EQ(list(plid, 3, 5).rows().size(), 3)
        << "what is sent is what was asked for, not cut out of it again";
}

TEST_F(TrackListTest, aRowHasOneValuePerRequestedRoleInTheirOrder) {
    const int plid = createPlayList("Mix");
    addItems(plid, {"a"});
    const OrvoRowsRoles reply = rows(CMPath(listPath(plid)), 0, 0, {"value", "unknown", "title"});
    const QVariantList row = reply.rows().at(0).toList();
    ASSERT_EQ(row.size(), 3);
    EXPECT_EQ(OrvoValue(row.at(0)).i32(), 0);
    EXPECT_FALSE(row.at(1).isValid());
    EXPECT_EQ(TrString::fromVariant(row.at(2)).toString(), "a");
    EXPECT_EQ(
        RowText(reply.roles()),
        RowText(QJsonObject{{"title", "PlayListGetItemsNode|Playlist - %1|Mix"}, {"rowsCount", 1}}))
        << "the list's own roles are restricted to the requested ones as well";
}

TEST_F(TrackListTest, rowsFollowEveryEdit) {
    const int plid = createPlayList("Mix");
    addItems(plid, numbered(4));
    send(OrvoPlayListPlMoveItemspath(),
         QVariantHash{{"plid", plid}, {"items", QVariantList{0}}, {"to", 3}});
    send(OrvoPlayListPlRemoveItemsPath(), QVariantHash{{"plid", plid}, {"items", QVariantList{1}}});
    EXPECT_EQ(titles(plid), QStringList({"t1", "t3", "t0"}));
    const QList<OrvoRoles> roles = asRoles(list(plid));
    for (int i = 0; i < roles.size(); ++i) {
        EXPECT_EQ(roles.at(i).value().i32(), i);
        EXPECT_EQ(roles.at(i).context().path().param("seqnum"), QString::number(i));
    }
}

TEST_F(TrackListTest, aRenamedPlaylistListsUnderItsNewName) {
    const int plid = createPlayList("Old");
    send(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", plid}, {"name", "New"}});
    EXPECT_EQ(list(plid).roles().title(),
              TrString("PlayListGetItemsNode", "Playlist - %1", {"New"}));
}

TEST_F(TrackListTest, theListItselfIsAPlayableContainer) {
    const int plid = createPlayList("Mix");
    for (int uid : {plid, 0}) {
        const CMReplyData<OrvoRoles> reply;
        root()->getDataRequest(
            CMGetDataRequest(CMPath(listPath(uid)), {"mediaData", "path"}, reply));
        EXPECT_EQ(RowText(reply.value()), RowText(QJsonObject{{"mediaData", Expected::playable()},
                                                              {"path", listPath(uid)}}));
    }
}

TEST_F(TrackListTest, aRowIsFoundByItsTitle) {
    const int plid = createPlayList("Mix");
    addItems(plid, {"Alpha", "Beta", "alphabet"});
    const CMReply<int> reply;
    root()->matchRowRequest(CMMatchRowRequest(CMPath(listPath(plid)), "alpha", 1, reply));
    EXPECT_EQ(reply.value(), 2);
}

TEST_F(TrackListTest, aPlaylistThatNeverWasHasNoNode) {
    worker();
    const CMReplyData<OrvoRowsRoles> reply;
    root()->getRowsRequest(
        CMGetRowsRequest(CMPath("playlists:pl/items/99"), 0, 5, {"title"}, reply));
    EXPECT_EQ(reply.error().name(), CMError::NoSuchNode());
}

TEST_F(TrackListTest, theQueueIsEmptyAfterARestartAndPlaylistsAreNot) {
    const int plid = createPlayList("Mix");
    addItems(plid, {"a"});
    addItems(0, {"b"});
    restart();
    EXPECT_EQ(list(0).rowsCount(), 0);
    EXPECT_EQ(titles(plid), QStringList({"a"}));
}

using TrackNodeTest = PartsFixture;

TEST_F(TrackNodeTest, aNodeWhosePlaylistIsGoneListsNothing) {
    for (const char* text :
         {"playlists:pl/items/99", "playlists:pl/items/abc", "playlists:pl/items/-1",
          "playlists:pl/items/99999999999", "playlists:"}) {
        SCOPED_TRACE(text);
        const std::unique_ptr<PlayListGetItemsNode> node(
            PlayListGetItemsNode::create(&nodes, CMPath(QString(text)), &manager));
        const OrvoRowsRoles reply = ask(node.get(), text, 0, 9, {"title"});
        EXPECT_TRUE(reply.rows().isEmpty());
        EXPECT_EQ(reply.rowsCount(), 0);
        EXPECT_EQ(RowText(reply.roles()),
                  RowText(QJsonObject{{"title", "PlayListGetItemsNode|Playlist - %1|"},
                                      {"rowsCount", 0}}));
        EXPECT_EQ(reply.roles().title().toString(), "Playlist - ");
    }
}

TEST_F(TrackNodeTest, anItemWithUnreadableRolesIsStillListed) {
    PlayListBase* pl = manager.createPlayList("Mix");
    OrvoPlayListItem item = makeItem("a");
    item.setOrvoRoles("{broken");
    ASSERT_EQ(pl->addItems(OrvoPlayListAddPosition::Append, {item}), 0);
    const std::unique_ptr<PlayListGetItemsNode> node(PlayListGetItemsNode::create(
        &nodes, OrvoPlayListPlGetItemsPath() + QString::number(pl->getUid()), &manager));
    LogCapture log("PlayLists", log4cplus::ERROR_LOG_LEVEL);
    const OrvoRowsRoles reply = ask(node.get(), node->path().toString());
    ASSERT_EQ(reply.rows().size(), 1);
    const OrvoRoles row = asRoles(reply).first();
    EXPECT_FALSE(row.id().isEmpty());
    EXPECT_EQ(row.path(), OrvoPlayListItemPath() + row.id());
    EXPECT_EQ(row.mediaData().metaData().playLogicPath(), OrvoPlayListsPlayLogicPath());
    ASSERT_EQ(log.errors().size(), 1);
    EXPECT_TRUE(log.errors().first().startsWith("Failed to parse data, error: "));
}

TEST_F(TrackNodeTest, aMenuOfTheItemsOwnGivesWayToTheTracksMenu) {
    PlayListBase* pl = manager.createPlayList("Mix");
    OrvoPlayListItem item = makeItem("a");
    QJsonObject roles = QJsonDocument::fromJson(item.orvoRoles().toUtf8()).object();
    ASSERT_EQ(roles.value("title"), "a");
    roles.insert("context", QJsonObject{{"title", "Album"}, {"path", "files:context"}});
    item.setOrvoRoles(QString::fromUtf8(QJsonDocument(roles).toJson()));
    ASSERT_EQ(pl->addItems(OrvoPlayListAddPosition::Append, {item}), 0);
    const std::unique_ptr<PlayListGetItemsNode> node(PlayListGetItemsNode::create(
        &nodes, OrvoPlayListPlGetItemsPath() + QString::number(pl->getUid()), &manager));
    const OrvoRowsRoles reply = ask(node.get(), node->path().toString());
    const QList<OrvoRoles> rows = asRoles(reply);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rowTexts(reply).first(), RowText(trackRow(pl->getUid(), 0, rows.first().id(), "a")));
}

TEST_F(TrackNodeTest, aRequestsParametersDoNotChangeTheListsOwnPath) {
    const std::unique_ptr<PlayQueueGetItemsNode> node(
        PlayQueueGetItemsNode::create(&nodes, OrvoPlayListPqGetItemsPath(), &manager));
    EXPECT_EQ(ask(node.get(), "playlists:pq/items?x=1").roles().path(),
              OrvoPlayListPqGetItemsPath());
}

// The store is read in parts when the texts are long.
TEST_F(TrackListTest, longTextsComeInOrderAndOnce) {
    QStringList titles;
    for (int i = 0; i < 50; ++i)
        titles.append(QString::number(i) + QString(50000, 'x'));
    const int plid = createPlayList("Long");
    addItems(plid, titles);
    for (const auto& range : {qMakePair(0, CMGetRowsRequest::LastRow), qMakePair(3, 47)}) {
        const QList<OrvoRoles> rows = asRoles(list(plid, range.first, range.second));
        const QStringList expected = titles.mid(range.first, range.second - range.first + 1);
        ASSERT_EQ(rows.size(), expected.size());
        for (int i = 0; i < rows.size(); ++i) {
            EXPECT_TRUE(rows.at(i).title().toString() == expected.at(i)) << i;
            EXPECT_EQ(rows.at(i).value().i32(), range.first + i);
        }
    }
}

TEST_F(TrackListTest, rowsWithMoreLettersThanTheLimitAreRefused) {
    constexpr int Letters = 48 * 1024;
    constexpr int Asked = 64; // times the same title
    constexpr int MaxRows = int(TrackListNode::MaxLetters / Asked / Letters);
    QStringList titles;
    for (int i = 0; i < MaxRows + 1; ++i)
        titles.append(QString(Letters, 'x'));
    const int plid = createPlayList("Long");
    addItems(plid, titles);
    QStringList names;
    for (int i = 0; i < Asked; ++i)
        names.append(OrvoRoles::Title());
    const auto ask = [&](int to) {
        const CMReplyData<OrvoRowsRoles> reply;
        CMRoot()->getRowsRequest(CMGetRowsRequest(CMPath(listPath(plid)), 0, to, names, reply));
        return reply;
    };
    EXPECT_FALSE(ask(MaxRows - 1).isError());
    EXPECT_EQ(ask(MaxRows - 1).value().rows().size(), MaxRows);
    const CMReplyData<OrvoRowsRoles> reply = ask(MaxRows);
    ASSERT_TRUE(reply.isError());
    EXPECT_EQ(reply.error().name(), "AnswerTooLarge");
    EXPECT_EQ(reply.error().title().toString(), "Answer too large");
    EXPECT_EQ(reply.error().message().toString(), "Ask for fewer rows.");
}
