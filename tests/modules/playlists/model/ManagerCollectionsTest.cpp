#include <limits>
#include <log4cplus/consoleappender.h>
#include <log4cplus/logger.h>

#include <QPointer>

#include "ModelFixture.h"

// The registry of collections.
class ManagerCollectionsTest : public ModelFixture {
protected:
    QString slice(int from, int to) {
        QString names;
        const QList<CollectionBase*> collections = manager().getCollections(from, to);
        for (CollectionBase* cl : collections)
            names.append(cl->getName());
        return names;
    }
    static QString enterLine(const LogCapture& log) { return log.lines().value(0); }
};

TEST_F(ManagerCollectionsTest, creatingStoresRegistersAndAnnounces) {
    SignalLog signalLog;
    signalLog.watch(&manager());
    QObject::connect(&manager(), &PlayListManager::collectionCreated, &manager(), [this](int uid) {
        EXPECT_NE(nullptr, manager().getCollectionByUid(uid));
        expectInStep();
    });
    const LogCapture log("PlayLists");
    CollectionBase* zebra = manager().createCollection("Zebra");
    EXPECT_TRUE(enterLine(log).startsWith("TRACE Enter "));
    EXPECT_TRUE(
        enterLine(log).endsWith("PlayListManager::createCollection(const QString&): name=Zebra"))
        << enterLine(log).toStdString();
    CollectionBase* ant = manager().createCollection("Ant");
    ASSERT_TRUE(zebra && ant);
    EXPECT_EQ(QList<PlayListBase*>(), zebra->getPlayLists());
    EXPECT_EQ(QList<CollectionBase*>({zebra, ant}), manager().getAllCollection());
    EXPECT_EQ(ant, manager().getCollectionByUid(ant->getUid()));
    EXPECT_EQ(nullptr, manager().getCollectionByUid(3));
    EXPECT_EQ(nullptr, manager().getCollectionByUid(-1));
    EXPECT_EQ(QStringList({"collectionCreated 1", "collectionCreated 2"}), signalLog.take());
}

TEST_F(ManagerCollectionsTest, aCollectionThatCannotBeStoredIsNotMade) {
    SignalLog signalLog;
    signalLog.watch(&manager());
    forbid("INSERT ON collections");
    const LogCapture log("PlayLists");
    EXPECT_EQ(nullptr, manager().createCollection("Mine"));
    EXPECT_TRUE(log.contains("ERROR", "Unable to create collection in database"));
    EXPECT_EQ("Unable to create collection Mine in database", log.errors().last());
    allowAll();
    EXPECT_EQ(QList<CollectionBase*>(), manager().getAllCollection());
    EXPECT_EQ(QStringList(), signalLog.take());
    expectInStep();
}

TEST_F(ManagerCollectionsTest, deletingKeepsThePlayLists) {
    PlayListBase& pl = playList("ab");
    CollectionBase& one = collection("one", {&pl});
    CollectionBase& two = collection("two", {&pl});
    SignalLog signalLog;
    signalLog.watch(&manager());
    signalLog.watch(&one, "one");
    signalLog.watch(&two, "two");
    QPointer<CollectionBase> object(&one);
    QObject::connect(&manager(), &PlayListManager::collectionDeleted, &manager(), [&](int uid) {
        EXPECT_EQ(nullptr, manager().getCollectionByUid(uid));
        EXPECT_FALSE(object.isNull());
        expectInStep();
    });
    const LogCapture log("PlayLists");
    EXPECT_TRUE(manager().deleteCollection(&one));
    EXPECT_TRUE(enterLine(log).startsWith("TRACE Enter "));
    EXPECT_TRUE(
        enterLine(log).endsWith("PlayListManager::deleteCollection(CollectionBase*): col->uid=1"))
        << enterLine(log).toStdString();
    EXPECT_TRUE(log.lines().join('\n').contains(" Deleted collection uid=1"));
    EXPECT_EQ(QStringList(), log.errors());
    EXPECT_EQ(QStringList("collectionDeleted 1"), signalLog.take());
    EXPECT_EQ(QList<CollectionBase*>({&two}), manager().getAllCollection());
    EXPECT_EQ(&pl, manager().getPlayListByUid(1));
    EXPECT_EQ("ab", letters(pl));
    settle();
    EXPECT_TRUE(object.isNull());
    expectInStep();
}

TEST_F(ManagerCollectionsTest, deletingByUid) {
    collection("one");
    SignalLog signalLog;
    signalLog.watch(&manager());
    EXPECT_TRUE(manager().deleteCollection(1));
    EXPECT_EQ(QStringList("collectionDeleted 1"), signalLog.take());
    const LogCapture log("PlayLists");
    EXPECT_FALSE(manager().deleteCollection(1));
    EXPECT_FALSE(manager().deleteCollection(0));
    EXPECT_EQ(QStringList({"Can't delete non-existant collection uid=1",
                           "Can't delete non-existant collection uid=0"}),
              log.errors());
    EXPECT_EQ(QStringList(), signalLog.take());
}

TEST_F(ManagerCollectionsTest, aCollectionThatCannotBeDeletedStays) {
    PlayListBase& pl = playList("ab");
    CollectionBase& cl = collection("one", {&pl});
    SignalLog signalLog;
    signalLog.watch(&manager());
    forbid("DELETE ON collections");
    const LogCapture log("PlayLists");
    EXPECT_FALSE(manager().deleteCollection(&cl));
    EXPECT_TRUE(log.contains("ERROR", "Unable to delete collection uid=1 in database"));
    EXPECT_EQ("Unable to remove collection uid=1 from database", log.errors().last());
    allowAll();
    settle();
    EXPECT_EQ(QList<CollectionBase*>({&cl}), manager().getAllCollection());
    EXPECT_EQ(QList<PlayListBase*>({&pl}), cl.getPlayLists());
    EXPECT_EQ(QStringList(), signalLog.take());
    expectInStep();
}

TEST_F(ManagerCollectionsTest, slicesAreLimitedToWhatThereIs) {
    for (const char* name : {"0", "1", "2", "3", "4", "5", "6"})
        collection(name);
    struct Row {
        int from;
        int to;
        const char* names;
    };
    const int lowest = std::numeric_limits<int>::min();
    const int highest = std::numeric_limits<int>::max();
    const QList<Row> rows = {
        {5, 2, "2345"},
        {2, 5, "2345"},
        {-3, 100, "0123456"},
        {100, -3, "0123456"},
        {0, 6, "0123456"},
        {3, 3, "3"},
        {0, 0, "0"},
        {6, 6, "6"},
        {7, 9, "6"},
        {-5, -2, "0"},
        {6, 7, "6"},
        {-1, 1, "01"},
        {lowest, highest, "0123456"},
        {highest, highest, "6"},
        {lowest, lowest, "0"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(QString(row.names), slice(row.from, row.to)) << row.from << " to " << row.to;
}

TEST_F(ManagerCollectionsTest, aSingleCollectionIsEverySlice) {
    collection("x");
    for (int from : {-1, 0, 5})
        EXPECT_EQ("x", slice(from, -from));
}

using ManagerDeathTest = ManagerCollectionsTest;

TEST_F(ManagerDeathTest, aSliceOfNoCollectionsEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    manager();
    EXPECT_DEATH(
        {
            // The last words are a log line.
            log4cplus::Logger root = log4cplus::Logger::getRoot();
            root.setLogLevel(log4cplus::FATAL_LOG_LEVEL);
            root.addAppender(
                log4cplus::SharedAppenderPtr(new log4cplus::ConsoleAppender(true, true)));
            manager().getCollections(0, 0);
        },
        "FATAL - index out of range");
}
