#include "ModelFixture.h"

// One collection.
class CollectionTest : public ModelFixture {
protected:
    // Of which only the test knows.
    std::unique_ptr<Collection> lone(const QString& name) {
        return std::make_unique<Collection>(&database(), database().createCollection(name),
                                            QList<PlayListBase*>());
    }
    static QString enterLine(const LogCapture& log) { return log.lines().value(0); }
};

TEST_F(CollectionTest, aCollectionHasTheFieldsOfItsRecordAndTheGivenMembers) {
    PlayListBase& pl = playList("");
    CollectionRecord record;
    record.uid = 9;
    record.name = QStringLiteral("Évenings");
    record.playlists = {pl.getUid()};
    const Collection cl(&database(), record, {&pl});
    EXPECT_EQ(9, cl.getUid());
    EXPECT_EQ("Évenings", cl.getName());
    EXPECT_EQ(QList<PlayListBase*>({&pl}), cl.getPlayLists());
    EXPECT_TRUE(cl.valid());
    EXPECT_FALSE(Collection(&database(), CollectionRecord(), {}).valid());
}

TEST_F(CollectionTest, addingAMemberStoresAndAnnouncesIt) {
    PlayListBase& a = playList("a");
    PlayListBase& b = playList("b");
    CollectionBase& cl = collection();
    SignalLog signalLog;
    signalLog.watch(&cl);
    const LogCapture log("PlayLists");
    EXPECT_TRUE(cl.addPlayList(&b));
    EXPECT_TRUE(enterLine(log).startsWith("TRACE Enter "));
    EXPECT_TRUE(enterLine(log).endsWith("Collection::addPlayList(PlayListBase*): this=1 pl=2"))
        << enterLine(log).toStdString();
    EXPECT_TRUE(cl.addPlayList(&a));
    EXPECT_EQ(QList<PlayListBase*>({&b, &a}), cl.getPlayLists());
    EXPECT_EQ(QStringList({"playlistAdded", "playlistAdded"}), signalLog.take());
    EXPECT_EQ(QStringList(), log.errors());
    expectInStep();
}

TEST_F(CollectionTest, aMemberCannotBeAddedTwice) {
    PlayListBase& pl = playList("a");
    CollectionBase& cl = collection("group", {&pl});
    SignalLog signalLog;
    signalLog.watch(&cl);
    const LogCapture log("PlayLists");
    EXPECT_FALSE(cl.addPlayList(&pl));
    EXPECT_EQ(QStringList({"Unable to reset sql statement: addToCollection msg: constraint failed",
                           "Unable to add pl=1 to collection=1",
                           "Unable to add pl to collection, this=1 pl=1"}),
              log.errors());
    EXPECT_EQ(QList<PlayListBase*>({&pl}), cl.getPlayLists());
    EXPECT_EQ(QStringList(), signalLog.take());
    expectInStep();
}

TEST_F(CollectionTest, aPlayListThatIsNotStoredCannotBeAdded) {
    PlayListRecord record;
    record.uid = 55;
    PlayList stranger(&database(), record);
    CollectionBase& cl = collection();
    const LogCapture log("PlayLists");
    EXPECT_FALSE(cl.addPlayList(&stranger));
    EXPECT_TRUE(log.contains("ERROR", "Unable to add pl to collection, this=1 pl=55"));
    EXPECT_EQ(QList<PlayListBase*>(), cl.getPlayLists());
    expectInStep();
}

TEST_F(CollectionTest, removingAMemberStoresAndAnnouncesIt) {
    PlayListBase& a = playList("a");
    PlayListBase& b = playList("b");
    CollectionBase& cl = collection("group", {&a, &b});
    SignalLog signalLog;
    signalLog.watch(&cl);
    const LogCapture log("PlayLists");
    EXPECT_TRUE(cl.removePlayList(&a));
    EXPECT_TRUE(enterLine(log).startsWith("TRACE Enter "));
    EXPECT_TRUE(enterLine(log).endsWith("Collection::removePlayList(PlayListBase*): this=1 pl=1"))
        << enterLine(log).toStdString();
    EXPECT_EQ(QList<PlayListBase*>({&b}), cl.getPlayLists());
    EXPECT_EQ(QStringList("playlistRemoved"), signalLog.take());
    EXPECT_EQ(QStringList(), log.errors());
    expectInStep();
    EXPECT_TRUE(cl.addPlayList(&a));
    EXPECT_EQ(QList<PlayListBase*>({&b, &a}), cl.getPlayLists());
}

TEST_F(CollectionTest, removingEveryOccurrence) {
    PlayListBase& a = playList("a");
    PlayListBase& b = playList("b");
    const CollectionRecord record = database().createCollection("group");
    ASSERT_TRUE(database().addToCollection(record, a.getUid()));
    Collection cl(&database(), record, {&a, &b, &a});
    EXPECT_TRUE(cl.removePlayList(&a));
    EXPECT_EQ(QList<PlayListBase*>({&b}), cl.getPlayLists());
}

TEST_F(CollectionTest, whatIsNoMemberCannotBeRemoved) {
    PlayListBase& a = playList("a");
    PlayListBase& b = playList("b");
    CollectionBase& cl = collection("group", {&a});
    SignalLog signalLog;
    signalLog.watch(&cl);
    const LogCapture log("PlayLists");
    EXPECT_FALSE(cl.removePlayList(&b));
    EXPECT_EQ(QStringList("Unable to remove pl=2 From collection=1 in database: no such playlist in"
                          " collection in DB"),
              log.errors());
    EXPECT_EQ(QList<PlayListBase*>({&a}), cl.getPlayLists());
    EXPECT_EQ(QStringList(), signalLog.take());
    expectInStep();
}

TEST_F(CollectionTest, aStoreThatFailsLeavesTheMembers) {
    PlayListBase& a = playList("a");
    PlayListBase& b = playList("b");
    CollectionBase& cl = collection("group", {&a});
    SignalLog signalLog;
    signalLog.watch(&cl);
    run("BEGIN EXCLUSIVE");
    EXPECT_FALSE(cl.addPlayList(&b));
    EXPECT_FALSE(cl.removePlayList(&a));
    EXPECT_FALSE(cl.remove());
    run("ROLLBACK");
    EXPECT_EQ(QList<PlayListBase*>({&a}), cl.getPlayLists());
    EXPECT_EQ(QStringList(), signalLog.take());
    expectInStep();
}

TEST_F(CollectionTest, slotsFindTheMembershipDone) {
    PlayListBase& a = playList("a");
    CollectionBase& cl = collection();
    QStringList seen;
    const auto look = [&] {
        expectInStep();
        seen.append(QString::number(cl.getPlayLists().size()));
    };
    QObject::connect(&cl, &CollectionBase::playlistAdded, &cl, look);
    QObject::connect(&cl, &CollectionBase::playlistRemoved, &cl, look);
    EXPECT_TRUE(cl.addPlayList(&a));
    EXPECT_TRUE(cl.removePlayList(&a));
    EXPECT_EQ(QStringList({"1", "0"}), seen);
}

TEST_F(CollectionTest, removeTakesTheMembershipsAndLeavesThePlayLists) {
    PlayListBase& a = playList("ab");
    const std::unique_ptr<Collection> cl = lone("group");
    ASSERT_TRUE(cl->addPlayList(&a));
    SignalLog signalLog;
    signalLog.watch(cl.get());
    EXPECT_TRUE(cl->remove());
    EXPECT_EQ(0, queryInt("SELECT COUNT(*) FROM collections"));
    EXPECT_EQ(0, queryInt("SELECT COUNT(*) FROM collections_playlists"));
    EXPECT_EQ("ab", letters(a));
    EXPECT_EQ(QStringList(), signalLog.take());
    EXPECT_FALSE(cl->remove());
    expectInvariants();
}

TEST_F(CollectionTest, forgettingTouchesMemoryOnlyAndOnlyMembers) {
    PlayListBase& a = playList("a");
    PlayListBase& b = playList("b");
    CollectionBase& cl = collection("group", {&a});
    SignalLog signalLog;
    signalLog.watch(&cl);
    cl.forgetPlayList(&b);
    EXPECT_EQ(QStringList(), signalLog.take());
    cl.forgetPlayList(&a);
    EXPECT_EQ(QStringList("playlistRemoved"), signalLog.take());
    EXPECT_EQ(QList<PlayListBase*>(), cl.getPlayLists());
    EXPECT_EQ(QList<int>({a.getUid()}), membersInFile(cl));
}

TEST_F(CollectionTest, thePlayQueueCanBeAMember) {
    PlayListBase* queue = manager().getPlayQueue();
    CollectionBase& cl = collection("group", {queue});
    EXPECT_EQ(QList<PlayListBase*>({queue}), cl.getPlayLists());
    EXPECT_TRUE(cl.removePlayList(queue));
    expectInStep();
}
