#include <QSignalSpy>

#include "ModelFixture.h"
#include "StatementTrace.h"

// What a start makes of what the last run left.
class RestartTest : public ModelFixture {
protected:
    QStringList names() {
        QStringList result;
        const QList<PlayListBase*> playlists = manager().getAllPlayList();
        for (PlayListBase* pl : playlists)
            result.append(pl->getName());
        return result;
    }
};

TEST_F(RestartTest, userPlayListsKeepEverything) {
    PlayListBase& pl = playList("abc", 1, "Morning");
    pl.setShuffle(true);
    pl.setRepeatAll(true);
    playList("", -1, "Empty");
    restart();
    EXPECT_EQ(QStringList({"Empty", "Morning"}), names());
    PlayListBase* morning = manager().getPlayListByUid(1);
    ASSERT_NE(nullptr, morning);
    EXPECT_EQ("abc", letters(*morning));
    EXPECT_EQ(3, morning->getSize());
    EXPECT_EQ(1, morning->getLastSequenceNumber());
    EXPECT_TRUE(morning->getShuffle());
    EXPECT_TRUE(morning->getRepeatAll());
    EXPECT_EQ(-1, manager().getPlayListByUid(2)->getLastSequenceNumber());
    expectInStep();
}

TEST_F(RestartTest, thePlayQueueStartsEmpty) {
    PlayListBase& pl = playList("xyz");
    PlayListBase* queue = manager().getPlayQueue();
    add(*queue, OrvoPlayListAddPosition::Append, "abc");
    queue->setLastSequenceNumber(2);
    queue->setShuffle(true);
    ASSERT_EQ(6, manager().getPlaylistsItemsCount());
    const int uid = pl.getUid();
    restart();
    queue = manager().getPlayQueue();
    EXPECT_EQ(0, queue->getSize());
    EXPECT_EQ("", letters(*queue));
    EXPECT_TRUE(queue->getShuffle());
    EXPECT_EQ(2, queue->getLastSequenceNumber());
    EXPECT_EQ("xyz", letters(*manager().getPlayListByUid(uid)));
    EXPECT_EQ(3, manager().getPlaylistsItemsCount());
    // The position that is left over does not make a gap.
    EXPECT_EQ(0, add(*queue, OrvoPlayListAddPosition::Now, "p"));
    EXPECT_EQ(1, add(*queue, OrvoPlayListAddPosition::Now, "q"));
    expectInStep();
}

TEST_F(RestartTest, itemsOfAClearThatWasCutOffAreRemoved) {
    PlayListBase& kept = playList("xyz");
    PlayListBase& cleared = playList("abc");
    const int clearedUid = cleared.getUid();
    const int keptUid = kept.getUid();
    dropManager();
    run(QStringLiteral("DELETE FROM playlists_items WHERE playlist = %1").arg(clearedUid));
    disconnect();
    const LogCapture log("PlayLists");
    restart();
    database().removeUnusedItems();
    EXPECT_EQ(3, manager().getPlaylistsItemsCount());
    EXPECT_EQ("xyz", letters(*manager().getPlayListByUid(keptUid)));
    EXPECT_EQ("", letters(*manager().getPlayListByUid(clearedUid)));
    EXPECT_EQ(1,
              log.lines().count("INFO removed 3 items of a playlist whose clearing was cut off"));
    expectInStep();
}

TEST_F(RestartTest, aStoreWithoutUnusedItemsIsNotTouched) {
    playList("xyz");
    dropManager();
    const StatementTrace trace(database());
    const LogCapture log("PlayLists");
    manager();
    database().removeUnusedItems();
    EXPECT_EQ(QStringList(), trace.texts().filter("DELETE"));
    EXPECT_EQ(QStringList(), log.lines().filter("removed"));
}

TEST_F(RestartTest, emptyingTheQueueOwesAVacuumOnlyWhenThereWasSomething) {
    manager();
    dropManager();
    QSignalSpy owed(&database(), &Database::vacuumNeeded);
    add(*manager().getPlayQueue(), OrvoPlayListAddPosition::Append, "a");
    EXPECT_EQ(0, owed.count());
    dropManager();
    manager();
    EXPECT_EQ(1, owed.count());
}

TEST_F(RestartTest, listsAreSortedByNameAndNewOnesComeBehind) {
    for (const char* name : {"pear", "Apple", "fig", "apple"})
        playList("", -1, name);
    for (const char* name : {"z", "m", "a"})
        collection(name);
    restart();
    EXPECT_EQ(QStringList({"Apple", "apple", "fig", "pear"}), names());
    QString collections;
    const QList<CollectionBase*> all = manager().getAllCollection();
    for (CollectionBase* cl : all)
        collections.append(cl->getName());
    EXPECT_EQ("amz", collections);
    playList("", -1, "banana");
    EXPECT_EQ("banana", names().last());
}

TEST_F(RestartTest, collectionsKeepTheirMembers) {
    PlayListBase& a = playList("a", -1, "a");
    PlayListBase& b = playList("b", -1, "b");
    collection("both", {&b, &a});
    collection("none");
    collection("queue", {manager().getPlayQueue()});
    const LogCapture log("PlayLists");
    restart();
    EXPECT_EQ(QStringList(), log.errors());
    EXPECT_EQ(2, manager().getCollectionByUid(1)->getPlayLists().size());
    EXPECT_EQ(0, manager().getCollectionByUid(2)->getPlayLists().size());
    EXPECT_EQ(QList<PlayListBase*>({manager().getPlayQueue()}),
              manager().getCollectionByUid(3)->getPlayLists());
    expectInStep();
}

TEST_F(RestartTest, aMemberThatNoLongerExistsIsLeftOut) {
    PlayListBase& a = playList("a");
    collection("group", {&a});
    dropManager();
    run("PRAGMA foreign_keys=0;"
        "INSERT INTO collections_playlists(collection, playlist) VALUES(1, 70), (1, 71);"
        "PRAGMA foreign_keys=1");
    const LogCapture log("PlayLists");
    CollectionBase* cl = manager().getCollectionByUid(1);
    EXPECT_EQ(QStringList({"Unknown playlist in collection", "Unknown playlist in collection"}),
              log.errors());
    ASSERT_NE(nullptr, cl);
    ASSERT_EQ(QList<PlayListBase*>({manager().getPlayListByUid(1)}), cl->getPlayLists());
    run("DELETE FROM collections_playlists WHERE playlist >= 70");
    expectInStep();
}

TEST_F(RestartTest, startingLogsWhatItDoes) {
    database();
    const LogCapture log("PlayLists");
    manager();
    for (const char* step : {"initPlayLists", "initCollections"}) {
        EXPECT_EQ(
            1,
            log.texts("TRACE").filter(QString("Enter void PlayListManager::%1()").arg(step)).size())
            << step;
    }
}

TEST_F(RestartTest, startingAnnouncesNothingAndAQueueThatCannotBeEmptiedKeepsItsSize) {
    add(*manager().getPlayQueue(), OrvoPlayListAddPosition::Append, "abc");
    dropManager();
    forbid("DELETE ON playlists_items");
    EXPECT_EQ(3, manager().getPlayQueue()->getSize());
    allowAll();
    expectInStep();
}
