#include "playlistUI/PlayListUI.h"

#include <QPointer>

#include "CMNode.h"
#include "OrvoPlayListPaths.h"
#include "playlistUI/PlayListWatcher.h"
#include "PlayListWorker.h"
#include "TreeFixture.h"

namespace {

class PlayListUITest : public TreeFixture {
protected:
    // The node that answers at a path, null when there is none.
    CMNode* nodeAt(const QString& path) { return worker()->nodes()->find(CMPath(path)); }
    int nodeCount() { return worker()->nodes()->count(); }
    Answer remove(int plid) {
        return send(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", plid}});
    }
    Answer member(CMPath (*command)(), int clid, int plid) {
        return send(command(), QVariantHash{{"clid", clid}, {"plid", plid}});
    }
};

const QStringList afterCreation = {"StartingWith playlists:root reset -1",
                                   "StartingWith playlists:pl/addToPlaylist reset -1",
                                   "StartingWith playlists:pl/list reset -1"};
const QStringList afterDeletion = {"StartingWith playlists:root reset -1",
                                   "StartingWith playlists:pl/addToPlaylist reset -1"};
const QStringList afterCollection = {"StartingWith playlists:root reset -1",
                                     "StartingWith playlists:cl/addToCollection reset -1"};
const QString collectionChanged = "StartingWith playlists:cl/items reset -1";

QString closed(int uid) {
    return QString("Rows playlists:pl/items/%1 close -1").arg(uid);
}

} // namespace

TEST_F(PlayListUITest, theFixedNodesAnswerAtTheirPaths) {
    const QHash<QString, const char*> nodes = {
        {"playlists:root", "RootNode"},
        {"playlists:pq/context", "PlayQueueContextNode"},
        {"playlists:pl/list", "PlayListGetListNode"},
        {"playlists:pl/addToPlaylist", "PlayListAddToPlaylistNode"},
        {"playlists:pl/selectAddMode", "PlayListAddModeNode"},
        {"playlists:pl/context", "PlayListContextNode"},
        {"playlists:pl/trackContext", "PlayListTrackContextNode"},
        {"playlists:cl/items", "CollectionGetItemsNode"},
        {"playlists:cl/addToCollection", "CollectionAddToClNode"},
        {"playlists:cl/context", "CollectionContextNode"},
        {"playlists:pq/items", "PlayQueueGetItemsNode"},
    };
    for (auto it = nodes.begin(); it != nodes.end(); ++it) {
        ASSERT_NE(nodeAt(it.key()), nullptr) << it.key();
        EXPECT_STREQ(nodeAt(it.key())->metaObject()->className(), it.value());
        EXPECT_EQ(nodeAt(it.key())->path().toString(), it.key());
    }
    EXPECT_EQ(nodeAt("playlists:pl/items"), nullptr);
    EXPECT_EQ(nodeAt("playlists:pl/items/0"), nullptr);
    EXPECT_GE(nodeCount(), nodes.size());
}

TEST_F(PlayListUITest, everyStoredPlaylistHasItsNodeAfterARestart) {
    const int a = createPlayList("a");
    const int b = createPlayList("b");
    const int count = nodeCount();
    restart();
    EXPECT_STREQ(nodeAt(QString("playlists:pl/items/%1").arg(a))->metaObject()->className(),
                 "PlayListGetItemsNode");
    EXPECT_NE(nodeAt(QString("playlists:pl/items/%1").arg(b)), nullptr);
    EXPECT_EQ(nodeCount(), count);
}

TEST_F(PlayListUITest, buildingTheTreeSendsNoEvent) {
    createPlayList("a");
    createCollection("Rock");
    events.clear();
    restart();
    EXPECT_EQ(events.filter(" reset "), QStringList());
}

TEST_F(PlayListUITest, creatingAPlaylistResetsTheViewsThatListPlaylists) {
    EXPECT_EQ(eventsOf([&] { createPlayList("a"); }), afterCreation);
}

TEST_F(PlayListUITest, deletingAPlaylistResetsTheRootAndTheAddMenuAndClosesItsList) {
    const int a = createPlayList("a");
    EXPECT_EQ(eventsOf([&] { EXPECT_FALSE(remove(a).failed); }), afterDeletion);
    EXPECT_EQ(eventsOf(turnEventLoop), QStringList(closed(a)));
    EXPECT_EQ(eventsOf(turnEventLoop), QStringList());
}

TEST_F(PlayListUITest, commandsThatFailSendNoEvent) {
    EXPECT_EQ(eventsOf([&] {
                  EXPECT_TRUE(remove(99).failed);
                  EXPECT_TRUE(remove(0).failed);
                  EXPECT_TRUE(send(OrvoPlayListPlCreatePath(), QVariantHash()).failed);
                  EXPECT_TRUE(send(OrvoPlayListClDeletePath(), QVariantHash{{"clid", 99}}).failed);
                  turnEventLoop();
              }),
              QStringList());
}

TEST_F(PlayListUITest, creatingAndDeletingACollectionResetsTheRootAndTheCollectionMenu) {
    int rock = 0;
    EXPECT_EQ(eventsOf([&] { rock = createCollection("Rock"); }), afterCollection);
    EXPECT_EQ(eventsOf([&] {
                  send(OrvoPlayListClDeletePath(), QVariantHash{{"clid", rock}});
              }),
              afterCollection);
    EXPECT_EQ(eventsOf(turnEventLoop), QStringList());
}

TEST_F(PlayListUITest, aChangedCollectionResetsTheCollectionView) {
    const int a = createPlayList("a");
    const int rock = createCollection("Rock");
    EXPECT_EQ(eventsOf([&] { member(OrvoPlayListClAddItemPath, rock, a); }),
              QStringList(collectionChanged));
    EXPECT_EQ(eventsOf([&] { EXPECT_TRUE(member(OrvoPlayListClAddItemPath, rock, a).failed); }),
              QStringList());
    EXPECT_EQ(eventsOf([&] { member(OrvoPlayListClRemoveItemPath, rock, a); }),
              QStringList(collectionChanged));
    EXPECT_EQ(eventsOf([&] { EXPECT_TRUE(member(OrvoPlayListClRemoveItemPath, rock, a).failed); }),
              QStringList());
}

TEST_F(PlayListUITest, storedCollectionsAreWatchedAfterARestart) {
    const int a = createPlayList("a");
    const int rock = createCollection("Rock");
    restart();
    EXPECT_EQ(eventsOf([&] { member(OrvoPlayListClAddItemPath, rock, a); }),
              QStringList(collectionChanged));
    EXPECT_EQ(eventsOf([&] { member(OrvoPlayListClRemoveItemPath, rock, a); }),
              QStringList(collectionChanged));
}

TEST_F(PlayListUITest, deletingAMemberResetsItsCollectionsFirst) {
    const int a = createPlayList("a");
    for (const char* name : {"Rock", "Jazz"})
        member(OrvoPlayListClAddItemPath, createCollection(name), a);
    createCollection("Empty");
    EXPECT_EQ(eventsOf([&] { remove(a); }),
              QStringList({collectionChanged, collectionChanged}) + afterDeletion);
}

TEST_F(PlayListUITest, creatingAndDeletingLeavesTheNodesAsTheyWere) {
    const int before = nodeCount();
    for (int round = 0; round < 3; ++round) {
        const int a = createPlayList("a");
        const int b = createPlayList("b");
        EXPECT_EQ(nodeCount(), before + 2);
        remove(a);
        remove(b);
        EXPECT_EQ(nodeCount(), before) << "at once, not with the next turn";
        turnEventLoop();
        EXPECT_EQ(nodeCount(), before);
    }
}

TEST_F(PlayListUITest, aDeletedListAnswersNoMore) {
    const int a = createPlayList("a");
    remove(a);
    const CMReplyData<OrvoRowsRoles> reply;
    root()->getRowsRequest(
        CMGetRowsRequest(CMPath(QString("playlists:pl/items/%1").arg(a)), 0, 5, {"title"}, reply));
    EXPECT_EQ(reply.error().name(), CMError::NoSuchNode());
}

TEST_F(PlayListUITest, anIdThatIsUsedAgainBeforeTheNextTurnGetsANodeThatLasts) {
    const int old = createPlayList("old");
    const QString path = QString("playlists:pl/items/%1").arg(old);
    const QPointer<CMNode> oldNode = nodeAt(path);
    const int before = nodeCount();
    remove(old);
    const int successor = createPlayList("successor");
    ASSERT_EQ(successor, old) << "the store gives the highest id again";
    const QPointer<CMNode> newNode = nodeAt(path);
    ASSERT_FALSE(newNode.isNull());
    EXPECT_NE(newNode, oldNode);
    EXPECT_EQ(nodeCount(), before);

    EXPECT_EQ(eventsOf(turnEventLoop), QStringList(closed(old)));
    EXPECT_TRUE(oldNode.isNull());
    EXPECT_EQ(nodeAt(path), newNode);
    EXPECT_EQ(nodeCount(), before);
    EXPECT_EQ(rowsAt(path).roles().title().toString(), "Playlist - successor");

    EXPECT_EQ(eventsOf([&] {
                  addItems(successor, {"a", "b"});
              }),
              QStringList("Rows " + path + " +0,+1 0 -1"))
        << "the old watcher says nothing, the new one once";
    EXPECT_EQ(titles(successor), QStringList({"a", "b"}));
}

TEST_F(PlayListUITest, anIdThatIsUsedAgainLaterIsWatchedAgain) {
    const int old = createPlayList("old");
    remove(old);
    turnEventLoop();
    const int successor = createPlayList("successor");
    ASSERT_EQ(successor, old);
    EXPECT_EQ(eventsOf([&] { addItems(successor, {"a"}); }),
              QStringList(QString("Rows playlists:pl/items/%1 +0 0 -1").arg(successor)));
    EXPECT_EQ(eventsOf([&] { remove(successor); }), afterDeletion);
    EXPECT_EQ(eventsOf(turnEventLoop), QStringList(closed(successor)));
}

TEST_F(PlayListUITest, aPlaylistThatGoesAwayTwiceInOneTurnClosesTwice) {
    const int first = createPlayList("first");
    remove(first);
    const int second = createPlayList("second");
    remove(second);
    ASSERT_EQ(first, second);
    EXPECT_EQ(eventsOf(turnEventLoop), QStringList({closed(first), closed(second)}));
    EXPECT_EQ(nodeAt(QString("playlists:pl/items/%1").arg(first)), nullptr);
}

namespace {

class PlayListUIPartsTest : public PartsFixture {
protected:
    QStringList takeEvents() {
        const QStringList taken = events;
        events.clear();
        return taken;
    }
};

} // namespace

TEST_F(PlayListUIPartsTest, aDeletionWithoutAWatcherIsStillTold) {
    const PlayListUI ui(nullptr, &nodes, &subscribe, &manager);
    const int count = nodes.count();
    Q_EMIT manager.playlistDeleted(99);
    EXPECT_EQ(takeEvents(), afterDeletion);
    turnEventLoop();
    EXPECT_EQ(takeEvents(), QStringList());
    EXPECT_EQ(nodes.count(), count);
}

TEST_F(PlayListUIPartsTest, aCreationOfSomethingUnknownIsStillTold) {
    const PlayListUI ui(nullptr, &nodes, &subscribe, &manager);
    const int count = nodes.count();
    Q_EMIT manager.playlistCreated(99);
    EXPECT_EQ(takeEvents(), afterCreation);
    EXPECT_EQ(nodes.count(), count);
    Q_EMIT manager.collectionCreated(99);
    EXPECT_EQ(takeEvents(), afterCollection);
    Q_EMIT manager.collectionDeleted(99);
    EXPECT_EQ(takeEvents(), afterCollection);
}

TEST_F(PlayListUIPartsTest, itsEndTakesEveryNodeAlong) {
    manager.createPlayList("a");
    auto ui = std::make_unique<PlayListUI>(nullptr, &nodes, &subscribe, &manager);
    EXPECT_EQ(nodes.count(), 12);
    ui.reset();
    EXPECT_EQ(nodes.count(), 0);
    turnEventLoop();
    events.clear();
    manager.createPlayList("b");
    EXPECT_EQ(takeEvents(), QStringList());
}

TEST_F(PlayListUIPartsTest, itsEndClosesEveryListInTheirOrder) {
    const int b = manager.createPlayList("b")->getUid();
    auto ui = std::make_unique<PlayListUI>(nullptr, &nodes, &subscribe, &manager);
    const int a = manager.createPlayList("a")->getUid();
    const int c = manager.createPlayList("c")->getUid();
    manager.getPlayListByUid(c)->setName("first to change");
    events.clear();
    ui.reset();
    EXPECT_EQ(takeEvents(), QStringList({closed(0), closed(b), closed(a), closed(c)}));
    manager.getPlayListByUid(a)->setName("no view is left");
    manager.getPlayListByUid(c)->setName("no view is left");
    EXPECT_EQ(takeEvents(), QStringList());
}

TEST_F(PlayListUIPartsTest, everyListHasItsWatcher) {
    manager.createPlayList("a");
    const PlayListUI ui(nullptr, &nodes, &subscribe, &manager);
    manager.createPlayList("b");
    EXPECT_EQ(ui.findChildren<PlayListWatcher*>().size(), 3) << "with the play queue's";
}

TEST_F(PlayListUIPartsTest, aDeletedListIsHeardUntilItsWatcherGoes) {
    PlayListBase* pl = manager.createPlayList("a");
    const int uid = pl->getUid();
    const PlayListUI ui(nullptr, &nodes, &subscribe, &manager);
    manager.deletePlayList(pl);
    events.clear();
    Q_EMIT pl->itemsCleared();
    EXPECT_EQ(takeEvents(),
              QStringList(QString("StartingWith playlists:pl/items/%1 reset -1").arg(uid)));
    turnEventLoop();
    EXPECT_EQ(takeEvents(), QStringList(closed(uid)));
}
