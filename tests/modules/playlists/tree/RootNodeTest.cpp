#include "playlistUI/RootNode.h"

#include "OrvoPlayListPaths.h"
#include "TreeFixture.h"

namespace {

QJsonObject playQueueRow() {
    return {{"title", "=PlayQueue"},
            {"path", "playlists:pq/items"},
            {"type", 1},
            {"containerPlayable", true},
            {"mediaData", Expected::playable()},
            {"context", Expected::menu("=PlayQueue", "playlists:pq/context?plid=0")}};
}

QJsonObject playListInRoot(int uid, const QString& name) {
    return {{"title", '=' + name},
            {"path", QString("playlists:pl/items/%1").arg(uid)},
            {"type", 1},
            {"containerPlayable", true},
            {"mediaData", Expected::playable()},
            {"context", Expected::menu("RootNode|Playlist Context Menu - %1|" + name,
                                       QString("playlists:pl/context?plid=%1").arg(uid))}};
}

QJsonObject collectionRow(int uid, const QString& name) {
    return {{"title", '=' + name},
            {"path", QString("playlists:cl/items?clid=%1").arg(uid)},
            {"type", 1},
            {"containerPlayable", true},
            {"context", Expected::menu("RootNode|Collection Context Menu - %1|" + name,
                                       QString("playlists:cl/context?clid=%1").arg(uid))}};
}

const QJsonObject playListsHeader = Expected::header("PlayLists|Playlists");
const QJsonObject collectionsHeader = Expected::header("PlayLists|Collections");
const QJsonObject createPlayListRow =
    Expected::entry("RootNode|Create New Playlist", "playlists:root?action=createPl");
const QJsonObject createCollectionRow =
    Expected::entry("RootNode|Create New Collection", "playlists:root?action=createCl");

class RootNodeTest : public TreeFixture {
protected:
    OrvoRowsRoles root(int from = 0, int to = CMGetRowsRequest::LastRow) {
        return rowsAt("playlists:root", from, to);
    }
};

} // namespace

TEST_F(RootNodeTest, anEmptyTreeHasTheSectionsThatAreVisible) {
    struct Row {
        bool playQueue;
        bool collections;
        QList<QJsonObject> rows;
    };
    const QList<Row> combinations = {
        {false, false, {playListsHeader, createPlayListRow}},
        {true, false, {playQueueRow(), playListsHeader, createPlayListRow}},
        {false, true, {playListsHeader, createPlayListRow, collectionsHeader, createCollectionRow}},
        {true,
         true,
         {playQueueRow(), playListsHeader, createPlayListRow, collectionsHeader,
          createCollectionRow}},
    };
    for (const Row& row : combinations) {
        show(row.playQueue, row.collections);
        restart();
        const OrvoRowsRoles reply = root();
        EXPECT_EQ(rowTexts(reply), rowTexts(row.rows)) << row.playQueue << row.collections;
        EXPECT_EQ(reply.rowsCount(), row.rows.size());
        EXPECT_EQ(RowText(reply.roles()), RowText(QJsonObject{{"title", "RootNode|Playlists"},
                                                              {"rowsCount", row.rows.size()}}));
    }
}

TEST_F(RootNodeTest, sectionsThatWereNeverSetAreHidden) {
    EXPECT_EQ(rowTexts(root()), rowTexts({playListsHeader, createPlayListRow}));
}

TEST_F(RootNodeTest, everySectionListsWhatThereIs) {
    show(true, true);
    const int second = createPlayList("Second");
    const int first = createPlayList("First %1");
    const int rock = createCollection("Rock");
    const int jazz = createCollection("Jazz");
    const OrvoRowsRoles reply = root();
    EXPECT_EQ(rowTexts(reply),
              rowTexts({playQueueRow(), playListsHeader, createPlayListRow,
                        playListInRoot(second, "Second"), playListInRoot(first, "First %1"),
                        collectionsHeader, createCollectionRow, collectionRow(rock, "Rock"),
                        collectionRow(jazz, "Jazz")}));
    EXPECT_EQ(reply.rowsCount(), 9);
}

TEST_F(RootNodeTest, hiddenCollectionsAreNotListedThoughTheyExist) {
    show(true, false);
    createCollection("Rock");
    const int uid = createPlayList("Mix");
    EXPECT_EQ(rowTexts(root()), rowTexts({playQueueRow(), playListsHeader, createPlayListRow,
                                          playListInRoot(uid, "Mix")}));
}

TEST_F(RootNodeTest, createdListsFollowInTheOrderOfCreationAndByNameAfterARestart) {
    createPlayList("b");
    createPlayList("c");
    createPlayList("a");
    EXPECT_EQ(rowTitles(root()).mid(2), QStringList({"=b", "=c", "=a"}));
    restart();
    EXPECT_EQ(rowTitles(root()).mid(2), QStringList({"=a", "=b", "=c"}));
}

TEST_F(RootNodeTest, everyRequestReadsTheModelAfresh) {
    root();
    const int uid = createPlayList("Old");
    send(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", uid}, {"name", "New"}});
    EXPECT_EQ(rowTexts(root()).last(), RowText(playListInRoot(uid, "New")));
}

TEST_F(RootNodeTest, visibilityIsReadOnceAtStart) {
    show(false, false);
    root();
    show(true, true);
    EXPECT_EQ(rowTexts(root()), rowTexts({playListsHeader, createPlayListRow}));
    restart();
    EXPECT_EQ(root().rowsCount(), 5);
}

TEST_F(RootNodeTest, theRequestedRangeIsSentWithTheFullCount) {
    show(true, true);
    createPlayList("a");
    createPlayList("b");
    const QList<RowText> all = rowTexts(root());
    ASSERT_EQ(all.size(), 7);
    EXPECT_EQ(rowTexts(root(1, 3)), all.mid(1, 3));
    EXPECT_EQ(rowTexts(root(3, 1)), all.mid(1, 3));
    EXPECT_EQ(rowTexts(root(100, 200)), all.mid(6));
    EXPECT_EQ(root(1, 3).rowsCount(), 7);
    EXPECT_EQ(RowText(root(1, 3).roles()),
              RowText(QJsonObject{{"title", "RootNode|Playlists"}, {"rowsCount", 7}}));
}

TEST_F(RootNodeTest, everyRangeIsThatPartOfTheWhole) {
    show(true, true);
    for (const char* name : {"a", "b", "c", "d"})
        createPlayList(name);
    for (const char* name : {"x", "y"})
        createCollection(name);
    const QList<RowText> whole = rowTexts(root());
    const int count = whole.size();
    ASSERT_EQ(1 + 2 + 4 + 2 + 2, count);
    for (int from = 0; from <= count; ++from) {
        for (int to = 0; to <= count; ++to) {
            const int one = std::min(from, count - 1);
            const int other = std::min(to, count - 1);
            const OrvoRowsRoles part = root(from, to);
            EXPECT_EQ(rowTexts(part), whole.mid(std::min(one, other), std::abs(one - other) + 1))
                << from << " to " << to;
            EXPECT_EQ(count, part.rowsCount());
        }
    }
}

TEST_F(RootNodeTest, aRowHasOneValuePerRequestedRoleInTheirOrder) {
    const QVariantList list =
        rows(CMPath("playlists:root"), 0, 0, {"unknown", "type", "title"}).rows();
    ASSERT_EQ(list.size(), 1);
    const QVariantList header = list.first().toList();
    ASSERT_EQ(header.size(), 3);
    EXPECT_FALSE(header.at(0).isValid());
    EXPECT_EQ(header.at(1), QVariant(103));
    EXPECT_EQ(TrString::fromVariant(header.at(2)), TrString("PlayLists", "Playlists"));
}

TEST_F(RootNodeTest, theCreateEntriesKeepTheRequestsParameters) {
    show(false, true);
    const QList<RowText> list = rowTexts(rowsAt("playlists:root?a=%26&action=other"));
    EXPECT_EQ(list.at(1), RowText(Expected::entry("RootNode|Create New Playlist",
                                                  "playlists:root?a=%26&action=createPl")));
    EXPECT_EQ(list.at(3), RowText(Expected::entry("RootNode|Create New Collection",
                                                  "playlists:root?a=%26&action=createCl")));
}

TEST_F(RootNodeTest, enteringANameCreatesAPlaylistAndAnswersItsId) {
    const Answer answer =
        send(CMPath("playlists:root?action=createPl"), OrvoValue::fromString("Mix"));
    ASSERT_TRUE(answer.answered);
    ASSERT_FALSE(answer.failed) << answer.message();
    EXPECT_EQ(rowTexts(root()).last(), RowText(playListInRoot(answer.result().i32(), "Mix")));
}

TEST_F(RootNodeTest, enteringANameCreatesACollectionAndAnswersItsId) {
    show(false, true);
    const Answer answer =
        send(CMPath("playlists:root?action=createCl&x=y"), OrvoValue::fromString("Rock"));
    ASSERT_FALSE(answer.failed) << answer.message();
    EXPECT_EQ(rowTexts(root()).last(), RowText(collectionRow(answer.result().i32(), "Rock")));
    EXPECT_EQ(root().rowsCount(), 5);
}

TEST_F(RootNodeTest, theCommandsRefusalReachesTheRequester) {
    for (const QVariant& value : {QVariant(OrvoValue::fromString("").toVariant()), QVariant(),
                                  QVariant("bare"), QVariant(OrvoValue::fromI32(5).toVariant())}) {
        EXPECT_EQ(send(CMPath("playlists:root?action=createPl"), value).message(),
                  "Could not create playlist. Please provide a non-empty string as field. (name)");
        EXPECT_EQ(
            send(CMPath("playlists:root?action=createCl"), value).message(),
            "Could not create collection. Please provide a non-empty string as field. (name)");
    }
    EXPECT_EQ(root().rowsCount(), 2);
}

TEST_F(RootNodeTest, otherActionsAreNotTaken) {
    for (const char* path :
         {"playlists:root", "playlists:root?action=", "playlists:root?action=createpl",
          "playlists:root?action=delPL", "playlists:root?other=createPl"}) {
        const Answer answer = send(CMPath(QString(path)), OrvoValue::fromString("Mix"));
        EXPECT_TRUE(answer.failed) << path;
        EXPECT_EQ(answer.error.name(), CMError::NotSupported()) << path;
    }
    EXPECT_EQ(root().rowsCount(), 2);
}

TEST_F(RootNodeTest, whatIsListedIsLogged) {
    show(true, true);
    const int rock = createCollection("Rock");
    LogCapture log("PlayLists", log4cplus::DEBUG_LOG_LEVEL);
    root(2, 9);
    EXPECT_EQ(log.lines(),
              QStringList({"DEBUG fromRow: 2 toRow: 9", "DEBUG pqname: PlayQueue", "DEBUG pqid: 0",
                           QString("DEBUG clid: %1").arg(rock), "DEBUG clname: Rock"}));
}

TEST_F(RootNodeTest, whatIsHiddenIsNotLogged) {
    show(false, false);
    createCollection("Rock");
    LogCapture log("PlayLists", log4cplus::DEBUG_LOG_LEVEL);
    root(2, 9);
    EXPECT_EQ(log.lines(), QStringList("DEBUG fromRow: 2 toRow: 9"));
}

namespace {

// The node alone, with a worker of the test in the module's place that only writes down what it is
// asked.
class RootNodeAloneTest : public ModuleFixture {
protected:
    RecordingWorker module{"PlayLists"};
    RootNode node{OrvoPlayListsRootPath(), nullptr};
};

} // namespace

TEST_F(RootNodeAloneTest, aNameBecomesTheCommandsName) {
    const CMReply<QVariant> reply;
    EXPECT_TRUE(
        node.setDataRequest(CMSetDataRequest(CMPath("playlists:root?action=createPl"),
                                             OrvoValue::fromString("Mix").toVariant(), reply)));
    ASSERT_EQ(module.requests.size(), 1);
    EXPECT_EQ(module.requests.at(0).path(), OrvoPlayListPlCreatePath());
    EXPECT_EQ(module.requests.at(0).value().toHash().value("name"), QVariant("Mix"));
    EXPECT_TRUE(reply.isFinished()) << "the command answers the request itself";
    EXPECT_TRUE(
        node.setDataRequest(CMSetDataRequest(CMPath("playlists:root?action=createCl"),
                                             QVariantHash{{"string", "Rock"}, {"extra", 1}}, {})));
    ASSERT_EQ(module.requests.size(), 2);
    EXPECT_EQ(module.requests.at(1).path(), OrvoPlayListClCreatePath());
    EXPECT_EQ(module.requests.at(1).value().toHash().value("name"), QVariant("Rock"));
    EXPECT_EQ(module.requests.at(1).value().toHash().value("extra"), QVariant(1));
}

TEST_F(RootNodeAloneTest, withoutATextTheCommandIsSentWithoutAName) {
    EXPECT_TRUE(node.setDataRequest(
        CMSetDataRequest(CMPath("playlists:root?action=createPl"), QVariantHash{{"i32", 5}}, {})));
    ASSERT_EQ(module.requests.size(), 1);
    EXPECT_FALSE(module.requests.at(0).value().toHash().contains("name"));
}

TEST_F(RootNodeAloneTest, anUnknownActionSendsNothing) {
    const CMReply<QVariant> reply;
    EXPECT_FALSE(node.setDataRequest(CMSetDataRequest(
        CMPath("playlists:root?action=play"), OrvoValue::fromString("Mix").toVariant(), reply)));
    EXPECT_FALSE(node.setDataRequest(CMSetDataRequest(OrvoPlayListsRootPath(), QVariant(), reply)));
    EXPECT_TRUE(module.requests.isEmpty());
    EXPECT_FALSE(reply.isFinished());
}

TEST_F(RootNodeAloneTest, withoutAManagerTheFixedRowsAreSent) {
    setSetting(OrvoPlayListSettingsPlayqueueVisibilityPath(), true);
    setSetting(OrvoPlayListSettingsCollectionsVisibilityPath(), true);
    RootNode visible(OrvoPlayListsRootPath(), nullptr);
    const CMReplyData<OrvoRowsRoles> reply;
    EXPECT_TRUE(visible.getRowsRequest(
        CMGetRowsRequest(visible.path(), 0, 100, OrvoRoles::defaultNames(), reply)));
    EXPECT_EQ(rowTexts(reply.value()), rowTexts({playListsHeader, createPlayListRow,
                                                 collectionsHeader, createCollectionRow}));
}
