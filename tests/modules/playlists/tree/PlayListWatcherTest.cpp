#include "playlistUI/PlayListWatcher.h"

#include <QPointer>

#include "OrvoPlayListPaths.h"
#include "playlistUI/BaseNode.h"
#include "TreeFixture.h"

namespace {

class PlayListWatcherTest : public TreeFixture {
protected:
    Answer edit(CMPath (*command)(), QVariantHash args) {
        args.insert("plid", plid);
        const Answer answer = send(command(), args);
        EXPECT_FALSE(answer.failed) << answer.message();
        return answer;
    }
    QStringList editEvents(CMPath (*command)(), const QVariantHash& args) {
        return eventsOf([&] { edit(command, args); });
    }
    QString listPath() const {
        return plid == 0 ? QString("playlists:pq/items")
                         : QString("playlists:pl/items/%1").arg(plid);
    }
    QString listReset() const { return "StartingWith " + listPath() + " reset -1"; }

    int plid = 0;
};

const QString trackMenuReset = "StartingWith playlists:pl/trackContext reset -1";

} // namespace

TEST_F(PlayListWatcherTest, addedItemsAreAnnouncedAsOneInsertion) {
    createPlayList("other");
    plid = createPlayList("Mix");
    EXPECT_EQ(eventsOf([&] {
                  addItems(plid, {"a", "b", "c", "d"});
              }),
              QStringList("Rows " + listPath() + " +0,+1,+2,+3 0 -1"));
    EXPECT_EQ(eventsOf([&] {
                  addItems(plid, {"e", "f", "g"});
              }),
              QStringList("Rows " + listPath() + " +4,+5,+6 0 -1"));
    EXPECT_EQ(eventsOf([&] { addItems(plid, {"x"}, 1); }),
              QStringList("Rows " + listPath() + " +7 0 -1"))
        << "nothing has been played, so after the current one is the end";
}

TEST_F(PlayListWatcherTest, itemsAddedAtPlacesAreAnnouncedThere) {
    plid = createPlayList("Mix");
    addItems(plid, {"a", "b", "c"});
    EXPECT_EQ(editEvents(OrvoPlayListPlAddExternalItemsPath,
                         {{"items", QVariantList{makeItem("x").toHash(), makeItem("y").toHash()}},
                          {"at", QVariantList{1, 4}}}),
              QStringList("Rows " + listPath() + " +1,+4 0 -1"));
    EXPECT_EQ(titles(plid), QStringList({"a", "x", "b", "c", "y"}));
}

TEST_F(PlayListWatcherTest, additionsToTheQueueGoToTheQueuesPath) {
    plid = 0;
    EXPECT_EQ(eventsOf([&] {
                  addItems(0, {"a", "b"});
              }),
              QStringList("Rows playlists:pq/items +0,+1 0 -1"));
}

TEST_F(PlayListWatcherTest, removedItemsResetTheList) {
    for (int uid : {0, createPlayList("Mix")}) {
        plid = uid;
        addItems(plid, {"a", "b", "c"});
        EXPECT_EQ(editEvents(OrvoPlayListPlRemoveItemsPath, {{"items", QVariantList{2, 0}}}),
                  QStringList(listReset()));
    }
}

TEST_F(PlayListWatcherTest, aMovedItemResetsTheListAndTheTrackMenus) {
    for (int uid : {0, createPlayList("Mix")}) {
        plid = uid;
        addItems(plid, {"a", "b", "c", "d"});
        EXPECT_EQ(editEvents(OrvoPlayListPlMoveItemspath, {{"items", QVariantList{0}}, {"to", 2}}),
                  QStringList({listReset(), trackMenuReset}));
        EXPECT_EQ(
            editEvents(OrvoPlayListPlMoveItemspath, {{"items", QVariantList{0, 1}}, {"to", 3}}),
            QStringList({listReset(), trackMenuReset}))
            << "once, however many move";
        EXPECT_EQ(editEvents(OrvoPlayListPlMoveItemspath, {{"items", QVariantList{1}}, {"to", 1}}),
                  QStringList());
    }
}

TEST_F(PlayListWatcherTest, anotherOrderResetsTheListAndTheTrackMenus) {
    for (int uid : {0, createPlayList("Mix")}) {
        plid = uid;
        addItems(plid, {"a", "b", "c"});
        EXPECT_EQ(editEvents(OrvoPlayListPlSetOrderPath, {{"order", QVariantList{2, 0, 1}}}),
                  QStringList({listReset(), trackMenuReset}));
        EXPECT_EQ(titles(plid), QStringList({"c", "a", "b"}));
    }
}

TEST_F(PlayListWatcherTest, aClearedListIsReset) {
    for (int uid : {0, createPlayList("Mix")}) {
        plid = uid;
        addItems(plid, {"a"});
        EXPECT_EQ(editEvents(OrvoPlayListPlClearPath, {}), QStringList(listReset()));
        EXPECT_EQ(editEvents(OrvoPlayListPlClearPath, {}), QStringList()) << "it was empty already";
    }
}

TEST_F(PlayListWatcherTest, modesResetThePlaylistsMenu) {
    plid = createPlayList("Mix");
    const QStringList menuReset("StartingWith playlists:pl/context reset -1");
    EXPECT_EQ(editEvents(OrvoPlayListPlSetShufflePath, {{"mode", 1}}), menuReset);
    EXPECT_EQ(editEvents(OrvoPlayListPlSetShufflePath, {{"mode", 1}}), QStringList())
        << "no change";
    EXPECT_EQ(editEvents(OrvoPlayListPlSetShufflePath, {{"mode", 0}}), menuReset);
    EXPECT_EQ(editEvents(OrvoPlayListPlSetRepeatPath, {{"mode", 2}}), menuReset);
    EXPECT_EQ(editEvents(OrvoPlayListPlSetRepeatPath, {{"mode", 2}}), QStringList());
    EXPECT_EQ(editEvents(OrvoPlayListPlSetRepeatPath, {{"mode", 0}}), menuReset);
}

TEST_F(PlayListWatcherTest, modesOfTheQueueResetTheQueuesMenu) {
    plid = 0;
    const QStringList menuReset("StartingWith playlists:pq/context reset -1");
    EXPECT_EQ(editEvents(OrvoPlayListPlSetShufflePath, {{"mode", 1}}), menuReset);
    EXPECT_EQ(editEvents(OrvoPlayListPlSetRepeatPath, {{"mode", 2}}), menuReset);
}

TEST_F(PlayListWatcherTest, aNewNameResetsTheRootAndThePlaylistMenuOnly) {
    plid = createPlayList("Mix");
    EXPECT_EQ(editEvents(OrvoPlayListPlSetNamePath, {{"name", "New"}}),
              QStringList({"StartingWith playlists:root reset -1",
                           "StartingWith playlists:pl/context reset -1"}));
}

TEST_F(PlayListWatcherTest, editsThatFailSendNoEvent) {
    plid = createPlayList("Mix");
    addItems(plid, {"a", "b"});
    EXPECT_EQ(eventsOf([&] {
                  for (const QVariantHash& args :
                       QList<QVariantHash>{{{"items", QVariantList{7}}, {"to", 0}},
                                           {{"items", QVariantList{0}}, {"to", 9}},
                                           {{"items", QVariantList{0}}, {"to", -1}}}) {
                      QVariantHash whole = args;
                      whole.insert("plid", plid);
                      EXPECT_TRUE(send(OrvoPlayListPlMoveItemspath(), whole).failed);
                  }
                  EXPECT_TRUE(send(OrvoPlayListPlRemoveItemsPath(),
                                   QVariantHash{{"plid", plid}, {"items", QVariantList{0, 9}}})
                                  .failed);
              }),
              QStringList());
}

TEST_F(PlayListWatcherTest, aPlaylistOfAnEarlierStartIsFollowedFromItsFirstEdit) {
    plid = createPlayList("Mix");
    addItems(plid, {"a", "b"});
    restart();
    EXPECT_EQ(eventsOf([&] { addItems(plid, {"c"}); }),
              QStringList("Rows " + listPath() + " +2 0 -1"));
    restart();
    EXPECT_EQ(editEvents(OrvoPlayListPlRemoveItemsPath, {{"items", QVariantList{0}}}),
              QStringList(listReset()));
    restart();
    EXPECT_EQ(editEvents(OrvoPlayListPlSetShufflePath, {{"mode", 1}}),
              QStringList("StartingWith playlists:pl/context reset -1"));
}

TEST_F(PlayListWatcherTest, onlyTheEditedPlaylistIsTold) {
    const int other = createPlayList("other");
    plid = createPlayList("Mix");
    addItems(plid, {"a"});
    const QStringList seen = eventsOf([&] {
        addItems(plid, {"b"});
        edit(OrvoPlayListPlClearPath, {});
    });
    EXPECT_TRUE(seen.filter(QString("items/%1").arg(other)).isEmpty());
    EXPECT_EQ(seen.size(), 2);
}

TEST_F(PlayListWatcherTest, listsReadAfterAPlaylistWasToldToResetAreCurrent) {
    plid = createPlayList("Mix");
    addItems(plid, {"a", "b"});
    QStringList seen;
    const auto connection = QObject::connect(root()->events(), &CMSubscribe::changed,
                                             [&](const CMChange&) { seen = titles(plid); });
    edit(OrvoPlayListPlRemoveItemsPath, {{"items", QVariantList{0}}});
    EXPECT_EQ(seen, QStringList({"b"}));
    addItems(plid, {"c"});
    EXPECT_EQ(seen, QStringList({"b", "c"}));
    edit(OrvoPlayListPlMoveItemspath, {{"items", QVariantList{0}}, {"to", 1}});
    EXPECT_EQ(seen, QStringList({"c", "b"}));
    edit(OrvoPlayListPlClearPath, {});
    EXPECT_EQ(seen, QStringList());
    QObject::disconnect(connection);
}

namespace {

class WatcherLifeTest : public PartsFixture {
protected:
    PlayListWatcher* watch(PlayListBase* pl) {
        node = BaseNode::create(&nodes, CMPath("playlists:watched"), &manager);
        return new PlayListWatcher(nullptr, &subscribe, pl, node);
    }

    QPointer<BaseNode> node;
};

} // namespace

TEST_F(WatcherLifeTest, itsEndClosesTheListAndSchedulesTheNodesEnd) {
    PlayListBase* pl = manager.createPlayList("Mix");
    PlayListWatcher* watcher = watch(pl);
    events.clear();
    delete watcher;
    EXPECT_EQ(events,
              QStringList(QString("Rows playlists:pl/items/%1 close -1").arg(pl->getUid())));
    EXPECT_EQ(nodes.find(CMPath("playlists:watched")), nullptr);
    EXPECT_FALSE(node.isNull());
    turnEventLoop();
    EXPECT_TRUE(node.isNull());
}

TEST_F(WatcherLifeTest, theQueuesEndIsAnnouncedAtTheFamilysPath) {
    PlayListWatcher* watcher = watch(manager.getPlayQueue());
    events.clear();
    delete watcher;
    EXPECT_EQ(events, QStringList("Rows playlists:pl/items/0 close -1"));
    turnEventLoop();
}

TEST_F(WatcherLifeTest, aNodeThatIsGoneAlreadyIsLeftAlone) {
    PlayListBase* pl = manager.createPlayList("Mix");
    PlayListWatcher* watcher = watch(pl);
    delete node;
    events.clear();
    delete watcher;
    EXPECT_EQ(events,
              QStringList(QString("Rows playlists:pl/items/%1 close -1").arg(pl->getUid())));
    turnEventLoop();
    EXPECT_EQ(nodes.find(CMPath("playlists:watched")), nullptr);
}

TEST_F(WatcherLifeTest, aSuccessorsRegistrationSurvivesTheOldWatcher) {
    PlayListWatcher* watcher = watch(manager.createPlayList("Mix"));
    node->deleteLater();
    const std::unique_ptr<BaseNode> successor(
        BaseNode::create(&nodes, CMPath("playlists:watched"), &manager));
    delete watcher;
    turnEventLoop();
    EXPECT_TRUE(node.isNull());
    EXPECT_EQ(nodes.find(CMPath("playlists:watched")), successor.get());
}

TEST_F(WatcherLifeTest, threeItemsAtFourAreThreeMarkers) {
    PlayListBase* pl = manager.createPlayList("Mix");
    const std::unique_ptr<PlayListWatcher> watcher(watch(pl));
    LogCapture log("PlayLists");
    events.clear();
    Q_EMIT pl->itemsAdded("append", 4, 3);
    EXPECT_EQ(events,
              QStringList(QString("Rows playlists:pl/items/%1 +4,+5,+6 0 -1").arg(pl->getUid())));
    EXPECT_EQ(log.lines(),
              QStringList({"TRACE firstSeqIndex: 4 count: 3", "TRACE itemsChanged: +4, +5, +6"}));
}

TEST_F(WatcherLifeTest, aViewIsRestartedByItsId) {
    const std::unique_ptr<PlayListWatcher> watcher(watch(manager.createPlayList("Mix")));
    events.clear();
    watcher->restartPlayListView(0);
    watcher->restartPlayListView(12);
    EXPECT_EQ(events, QStringList({"StartingWith playlists:pq/items reset -1",
                                   "StartingWith playlists:pl/items/12 reset -1"}));
}
