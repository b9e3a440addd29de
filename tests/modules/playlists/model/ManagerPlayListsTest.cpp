#include <QPointer>
#include <QSignalSpy>

#include "ModelFixture.h"

// The registry of playlists.
class ManagerPlayListsTest : public ModelFixture {
protected:
    static QString enterLine(const LogCapture& log) { return log.lines().value(0); }
};

TEST_F(ManagerPlayListsTest, aFreshStoreHasThePlayQueueAndNothingElse) {
    PlayListBase* queue = manager().getPlayQueue();
    ASSERT_NE(nullptr, queue);
    EXPECT_EQ(0, queue->getUid());
    EXPECT_EQ("PlayQueue", queue->getName());
    EXPECT_EQ(0, queue->getSize());
    EXPECT_EQ(-1, queue->getLastSequenceNumber());
    EXPECT_EQ(queue, manager().getPlayListByUid(0));
    EXPECT_EQ(QList<PlayListBase*>(), manager().getAllPlayList());
    EXPECT_EQ(QList<CollectionBase*>(), manager().getAllCollection());
    EXPECT_EQ(nullptr, manager().parent());
}

TEST_F(ManagerPlayListsTest, playListsAreFoundByUid) {
    PlayListBase& a = playList("a");
    PlayListBase& b = playList("b");
    EXPECT_EQ(&a, manager().getPlayListByUid(a.getUid()));
    EXPECT_EQ(&b, manager().getPlayListByUid(b.getUid()));
    EXPECT_EQ(nullptr, manager().getPlayListByUid(3));
    EXPECT_EQ(nullptr, manager().getPlayListByUid(-1));
    EXPECT_FALSE(manager().getAllPlayList().contains(manager().getPlayQueue()));
}

TEST_F(ManagerPlayListsTest, creatingStoresRegistersAndAnnounces) {
    SignalLog signalLog;
    signalLog.watch(&manager());
    QObject::connect(&manager(), &PlayListManager::playlistCreated, &manager(), [this](int uid) {
        ASSERT_NE(nullptr, manager().getPlayListByUid(uid));
        EXPECT_EQ(manager().getPlayListByUid(uid), manager().getAllPlayList().last());
        expectInStep();
    });
    const LogCapture log("PlayLists");
    PlayListBase* pl = manager().createPlayList("Zebra");
    EXPECT_TRUE(enterLine(log).startsWith("TRACE Enter "));
    EXPECT_TRUE(
        enterLine(log).endsWith("PlayListManager::createPlayList(const QString&): name=Zebra"))
        << enterLine(log).toStdString();
    ASSERT_NE(nullptr, pl);
    EXPECT_EQ("Zebra", pl->getName());
    EXPECT_EQ(-1, pl->getLastSequenceNumber());
    EXPECT_EQ(0, pl->getSize());
    PlayListBase* second = manager().createPlayList("Ant");
    // In the order of creation, until the next start sorts them.
    EXPECT_EQ(QList<PlayListBase*>({pl, second}), manager().getAllPlayList());
    EXPECT_EQ(QStringList({"playlistCreated 1", "playlistCreated 2"}), signalLog.take());
}

TEST_F(ManagerPlayListsTest, namesNeedNotBeUnique) {
    PlayListBase* a = manager().createPlayList("same");
    PlayListBase* b = manager().createPlayList("same");
    ASSERT_TRUE(a && b);
    EXPECT_NE(a->getUid(), b->getUid());
    expectInStep();
}

TEST_F(ManagerPlayListsTest, aPlayListThatCannotBeStoredIsNotMade) {
    SignalLog signalLog;
    signalLog.watch(&manager());
    forbid("INSERT ON playlists");
    const LogCapture log("PlayLists");
    EXPECT_EQ(nullptr, manager().createPlayList("Morning"));
    EXPECT_TRUE(log.contains("ERROR", "Unable to create playlist in database"));
    EXPECT_EQ("Unable to create PlayList Morning in database", log.errors().last());
    allowAll();
    EXPECT_EQ(QList<PlayListBase*>(), manager().getAllPlayList());
    EXPECT_EQ(nullptr, manager().getPlayListByUid(-1));
    EXPECT_EQ(QStringList(), signalLog.take());
    expectInStep();
}

TEST_F(ManagerPlayListsTest, deletingTakesItFromStoreAndListThenAnnounces) {
    PlayListBase& a = playList("ab");
    PlayListBase& b = playList("cd");
    SignalLog signalLog;
    signalLog.watch(&manager());
    QPointer<PlayListBase> object(&a);
    const int uid = a.getUid();
    QObject::connect(&manager(), &PlayListManager::playlistDeleted, &manager(), [&](int deleted) {
        EXPECT_EQ(uid, deleted);
        EXPECT_EQ(nullptr, manager().getPlayListByUid(uid));
        EXPECT_EQ(QList<PlayListBase*>({&b}), manager().getAllPlayList());
        // A listener may still look at it.
        ASSERT_FALSE(object.isNull());
        EXPECT_EQ("list", object->getName());
        expectInStep();
    });
    const LogCapture log("PlayLists");
    EXPECT_TRUE(manager().deletePlayList(&a));
    EXPECT_TRUE(enterLine(log).startsWith("TRACE Enter "));
    EXPECT_TRUE(
        enterLine(log).endsWith("PlayListManager::deletePlayList(PlayListBase*): pl->uid=1"))
        << enterLine(log).toStdString();
    EXPECT_TRUE(log.lines().join('\n').contains(" Deleted PlayList uid=1"));
    EXPECT_EQ(QStringList(), log.errors());
    EXPECT_EQ(QStringList("playlistDeleted 1"), signalLog.take());
    settle();
    EXPECT_TRUE(object.isNull());
    expectInStep();
}

TEST_F(ManagerPlayListsTest, deletingByUid) {
    PlayListBase& a = playList("ab");
    SignalLog signalLog;
    signalLog.watch(&manager());
    EXPECT_TRUE(manager().deletePlayList(a.getUid()));
    EXPECT_EQ(QStringList("playlistDeleted 1"), signalLog.take());
    const LogCapture log("PlayLists");
    EXPECT_FALSE(manager().deletePlayList(1));
    EXPECT_FALSE(manager().deletePlayList(-1));
    EXPECT_EQ(QStringList({"Can't delete non-existant PlayList uid=1",
                           "Can't delete non-existant PlayList uid=-1"}),
              log.errors());
    EXPECT_EQ(QStringList(), signalLog.take());
}

TEST_F(ManagerPlayListsTest, deletingLeavesTwoCollectionsWithoutIt) {
    PlayListBase& a = playList("a");
    PlayListBase& b = playList("b");
    CollectionBase& one = collection("one", {&a, &b});
    CollectionBase& two = collection("two", {&a});
    CollectionBase& three = collection("three", {&b});
    SignalLog signalLog;
    signalLog.watch(&manager());
    signalLog.watch(&one, "one");
    signalLog.watch(&two, "two");
    signalLog.watch(&three, "three");
    EXPECT_TRUE(manager().deletePlayList(&a));
    EXPECT_EQ(QStringList({"one playlistRemoved", "two playlistRemoved", "playlistDeleted 1"}),
              signalLog.take());
    EXPECT_EQ(QList<PlayListBase*>({&b}), one.getPlayLists());
    EXPECT_EQ(QList<PlayListBase*>(), two.getPlayLists());
    EXPECT_EQ(QList<PlayListBase*>({&b}), three.getPlayLists());
    expectInStep();
}

// The store may refuse to take the membership alone and yet delete the playlist: then the cascade
// takes it.
TEST_F(ManagerPlayListsTest, aMembershipThatCouldNotBeRemovedDoesNotOutliveThePlayList) {
    PlayListBase& a = playList("a");
    PlayListBase& b = playList("b");
    CollectionBase& one = collection("one", {&a, &b});
    CollectionBase& two = collection("two", {&a});
    // Its row is gone already, so that removing it fails.
    run("DELETE FROM collections_playlists WHERE collection = 1 AND playlist = 1");
    SignalLog signalLog;
    signalLog.watch(&manager());
    signalLog.watch(&one, "one");
    signalLog.watch(&two, "two");
    const LogCapture log("PlayLists");
    EXPECT_TRUE(manager().deletePlayList(&a));
    EXPECT_EQ(
        QStringList({"Unable to remove pl=1 From collection=1 in database: no such playlist in"
                     " collection in DB",
                     "Unable to remove playlist (1) from collection (1)"}),
        log.errors());
    ASSERT_EQ(QList<PlayListBase*>({&b}), one.getPlayLists());
    EXPECT_EQ(QList<PlayListBase*>(), two.getPlayLists());
    EXPECT_EQ(QStringList({"two playlistRemoved", "one playlistRemoved", "playlistDeleted 1"}),
              signalLog.take());
    settle();
    expectInStep();
}

TEST_F(ManagerPlayListsTest, aPlayListThatCannotBeDeletedStays) {
    PlayListBase& a = playList("abc", 1);
    CollectionBase& cl = collection("group", {&a});
    SignalLog signalLog;
    signalLog.watch(&manager());
    signalLog.watch(&cl, "group");
    forbid("DELETE ON playlists");
    const LogCapture log("PlayLists");
    EXPECT_FALSE(manager().deletePlayList(&a));
    EXPECT_TRUE(log.contains("ERROR", "Error deleting PlayList: delete commad failed"));
    EXPECT_EQ("Unable to delete PlayList uid=1 from database", log.errors().last());
    allowAll();
    settle();
    EXPECT_EQ(&a, manager().getPlayListByUid(1));
    EXPECT_EQ(QList<PlayListBase*>({&a}), manager().getAllPlayList());
    EXPECT_EQ("abc", letters(a));
    // It left its collections before.
    EXPECT_EQ(QStringList("group playlistRemoved"), signalLog.take());
    EXPECT_EQ(QList<PlayListBase*>(), cl.getPlayLists());
    expectInStep();
}

TEST_F(ManagerPlayListsTest, aLockedStoreKeepsPlayListAndMembership) {
    PlayListBase& a = playList("abc", 1);
    CollectionBase& cl = collection("group", {&a});
    SignalLog signalLog;
    signalLog.watch(&manager());
    signalLog.watch(&cl, "group");
    run("BEGIN EXCLUSIVE");
    const LogCapture log("PlayLists");
    EXPECT_FALSE(manager().deletePlayList(&a));
    EXPECT_TRUE(log.contains("ERROR", "Unable to remove pl=1 from collection=1 in database"));
    EXPECT_TRUE(log.contains("ERROR", "Unable to remove playlist (1) from collection (1)"));
    EXPECT_TRUE(log.contains("ERROR", "Unable to delete PlayList uid=1 from database"));
    run("ROLLBACK");
    EXPECT_EQ(QStringList(), signalLog.take());
    EXPECT_EQ(QList<PlayListBase*>({&a}), cl.getPlayLists());
    expectInStep();
}

TEST_F(ManagerPlayListsTest, thePlayQueueIsRefusedBeforeAnyCollectionIsTouched) {
    PlayListBase* queue = manager().getPlayQueue();
    add(*queue, OrvoPlayListAddPosition::Append, "ab");
    CollectionBase& cl = collection("group", {queue});
    SignalLog signalLog;
    signalLog.watch(&manager());
    signalLog.watch(&cl, "group");
    signalLog.watch(queue, "queue");
    const QStringList errors = {"Error deleting PlayList: no such list in DB",
                                "Error deleting PlayList",
                                "Unable to delete PlayList uid=0 from database"};
    const LogCapture log("PlayLists");
    EXPECT_FALSE(manager().deletePlayList(queue));
    EXPECT_FALSE(manager().deletePlayList(0));
    EXPECT_EQ(errors + errors, log.errors());
    settle();
    EXPECT_EQ(queue, manager().getPlayListByUid(0));
    EXPECT_EQ(QList<PlayListBase*>({queue}), cl.getPlayLists());
    EXPECT_EQ("ab", letters(*queue));
    EXPECT_EQ(QStringList(), signalLog.take());
    expectInStep();
}

TEST_F(ManagerPlayListsTest, aUidThatIsUsedAgainNamesTheNewPlayList) {
    manager().deletePlayList(&playList("abc"));
    PlayListBase& next = playList("xy");
    ASSERT_EQ(1, next.getUid());
    settle();
    EXPECT_EQ(&next, manager().getPlayListByUid(1));
    EXPECT_EQ("xy", letters(next));
    expectInStep();
}

TEST_F(ManagerPlayListsTest, aListenerMayChangeTheCollectionsWhileAPlayListIsDeleted) {
    PlayListBase& a = playList("a");
    CollectionBase& one = collection("one", {&a});
    CollectionBase& two = collection("two", {&a});
    CollectionBase& three = collection("three", {&a});
    QObject::connect(&one, &CollectionBase::playlistRemoved, &manager(), [&] {
        EXPECT_TRUE(manager().deleteCollection(&two));
        for (int i = 0; i < 20; ++i)
            EXPECT_TRUE(manager().createCollection("new")->addPlayList(&a));
    });
    EXPECT_TRUE(manager().deletePlayList(&a));
    settle();
    EXPECT_EQ(QList<PlayListBase*>(), one.getPlayLists());
    EXPECT_EQ(QList<PlayListBase*>(), three.getPlayLists());
    EXPECT_EQ(22, manager().getAllCollection().size());
    expectInStep();
}

TEST_F(ManagerPlayListsTest, countsAreThoseOfTheStore) {
    EXPECT_EQ(1, manager().getPlayListsCount());
    EXPECT_EQ(0, manager().getPlaylistsItemsCount());
    EXPECT_EQ(0, manager().getCollectionsCount());
    playList("abc");
    playList("de");
    collection("one");
    collection("two");
    collection("three");
    EXPECT_EQ(3, manager().getPlayListsCount());
    EXPECT_EQ(5, manager().getPlaylistsItemsCount());
    EXPECT_EQ(3, manager().getCollectionsCount());
}

TEST_F(ManagerPlayListsTest, itemsAreFoundByUidInAnyPlayList) {
    playList("ab");
    PlayListBase& pl = playList("cd");
    const OrvoPlayListItem entry = pl.getItems(1, 1).value(0);
    const OrvoPlayListItem found = manager().getPlayListItemByUid(entry.uid());
    EXPECT_EQ("d", found.title());
    EXPECT_EQ(1, found.sequenceNumber());
    EXPECT_TRUE(manager().getPlayListItemByUid(99).isEmpty());
}

TEST_F(ManagerPlayListsTest, manyItemsAreFoundInTheOrderOfTheirUids) {
    PlayListBase& pl = playList("abcdef");
    add(*manager().getPlayQueue(), OrvoPlayListAddPosition::Append, "xy");
    QList<int> uids;
    const QList<OrvoPlayListItem> entries = pl.getItems(0, 5);
    for (const OrvoPlayListItem& entry : entries)
        uids.prepend(entry.uid());
    uids.insert(1, 99);
    uids.append(manager().getPlayQueue()->getItems(1, 1).value(0).uid());
    QString found;
    const QList<OrvoPlayListItem> items = manager().getPlayListItemsByUids(uids);
    for (const OrvoPlayListItem& item : items)
        found.append(item.isEmpty() ? QStringLiteral("-") : item.title());
    EXPECT_EQ("f-edcbay", found);
    EXPECT_EQ(0, manager().getPlayListItemsByUids({}).size());
}
