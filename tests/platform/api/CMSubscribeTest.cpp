#include "CMSubscribe.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "CMRootWorker.h"
#include "Printing.h"

namespace {
CMChange changeAt(const QSignalSpy& spy, int i) {
    return spy.at(i).at(0).value<CMChange>();
}
} // namespace

TEST(CMSubscribe, theKindsAreFixedTexts) {
    EXPECT_EQ(CMSubscribe::RowsChangeReset(), "reset");
    EXPECT_EQ(CMSubscribe::RowsChangeClose(), "close");
    EXPECT_EQ(CMSubscribe::RowInserted(4), "+4");
}

TEST(CMSubscribe, eachCallIsOneChangeWithItsArguments) {
    CMSubscribe subscribe;
    QSignalSpy spy(&subscribe, &CMSubscribe::changed);
    const CMPath path("playlists:pl/items/7");
    subscribe.changedStartingWith(path, CMSubscribe::RowsChangeReset(), -1);
    subscribe.rowsChanged(path, CMSubscribe::RowsChangeClose(), 2);
    subscribe.rowsChanged(path, QStringList({"+4", "+5"}), 0, 3);
    subscribe.valueChanged(path, OrvoValue::fromI32(2), OrvoValue::fromI32(1));
    ASSERT_EQ(spy.count(), 4);

    EXPECT_EQ(changeAt(spy, 0).kind, CMChange::Kind::StartingWith);
    EXPECT_EQ(changeAt(spy, 0).path, path);
    EXPECT_EQ(changeAt(spy, 0).changes, QStringList({"reset"}));
    EXPECT_EQ(changeAt(spy, 0).count, -1);

    EXPECT_EQ(changeAt(spy, 1).kind, CMChange::Kind::Rows);
    EXPECT_EQ(changeAt(spy, 1).changes, QStringList({"close"}));
    EXPECT_EQ(changeAt(spy, 1).start, -1);
    EXPECT_EQ(changeAt(spy, 1).count, 2);

    EXPECT_EQ(changeAt(spy, 2).kind, CMChange::Kind::Rows);
    EXPECT_EQ(changeAt(spy, 2).changes, QStringList({"+4", "+5"}));
    EXPECT_EQ(changeAt(spy, 2).start, 0);
    EXPECT_EQ(changeAt(spy, 2).count, 3);

    EXPECT_EQ(changeAt(spy, 3).kind, CMChange::Kind::Value);
    EXPECT_EQ(changeAt(spy, 3).path, path);
    EXPECT_EQ(changeAt(spy, 3).newValue.i32(), 2);
    EXPECT_EQ(changeAt(spy, 3).oldValue.i32(), 1);
}

TEST(CMSubscribe, theRootPassesOnTheEventsOfEveryWorkerInOrder) {
    CMRootWorker root;
    CMNodesWorker one({}, "One");
    CMNodesWorker two({}, "Two");
    QSignalSpy spy(root.events(), &CMSubscribe::changed);
    one.subscribe()->rowsChanged(CMPath("one:a"), "reset", -1);
    two.subscribe()->changedStartingWith(CMPath("two:b"), "close", -1);
    one.subscribe()->valueChanged(CMPath("one:c"), OrvoValue::fromBool(true), OrvoValue());
    ASSERT_EQ(spy.count(), 3);
    EXPECT_EQ(changeAt(spy, 0).path, CMPath("one:a"));
    EXPECT_EQ(changeAt(spy, 0).changes, QStringList({"reset"}));
    EXPECT_EQ(changeAt(spy, 1).path, CMPath("two:b"));
    EXPECT_EQ(changeAt(spy, 1).kind, CMChange::Kind::StartingWith);
    EXPECT_EQ(changeAt(spy, 2).kind, CMChange::Kind::Value);
}

TEST(CMSubscribe, aWorkerThatIsGoneLeavesNoTrace) {
    CMRootWorker root;
    { const CMNodesWorker gone({}, "Gone"); }
    EXPECT_EQ(root.worker("gone"), nullptr);
    CMNodesWorker again({}, "Gone");
    QSignalSpy spy(root.events(), &CMSubscribe::changed);
    again.subscribe()->rowsChanged(CMPath("gone:a"), "reset", -1);
    EXPECT_EQ(spy.count(), 1);
}

class CMValueItemTest : public ::testing::Test {
protected:
    void set(const CMPath& path, const QVariant& value) {
        root.setValue(path, value, CMVoidReply());
    }

    CMRootWorker root;
};

TEST_F(CMValueItemTest, itTellsNewAndOldValueAfterTheWrite) {
    CMValueItem item(nullptr, OrvoPowerManagerTargetPath());
    QList<int> newTargets;
    QList<int> oldTargets;
    QList<int> readInside;
    QObject::connect(
        &item, &CMValueItem::changed, [&](const OrvoValue& newValue, const OrvoValue& oldValue) {
            newTargets.append(OrvoPowerManagerTarget(newValue.toHash()).target());
            oldTargets.append(OrvoPowerManagerTarget(oldValue.toHash()).target());
            readInside.append(
                OrvoPowerManagerTarget(root.getValue(OrvoPowerManagerTargetPath()).toHash())
                    .target());
        });
    set(OrvoPowerManagerTargetPath(), QVariantHash{{"target", 1}});
    set(OrvoPowerManagerTargetPath(), QVariantHash{{"target", 2}});
    EXPECT_EQ(newTargets, QList<int>({1, 2}));
    EXPECT_EQ(oldTargets, QList<int>({0, 1}));
    EXPECT_EQ(readInside, newTargets);
}

TEST_F(CMValueItemTest, itIsSilentWhenNothingChangedOrTheWriteWasRefused) {
    set(OrvoPowerManagerTargetPath(), 1);
    CMValueItem item(nullptr, OrvoPowerManagerTargetPath());
    QSignalSpy spy(&item, &CMValueItem::changed);
    set(OrvoPowerManagerTargetPath(), 1);
    set(OrvoPowerManagerTargetPath(), "off");
    EXPECT_EQ(spy.count(), 0);
}

TEST_F(CMValueItemTest, itHearsOfItsOwnPathOnly) {
    CMNodesWorker other({}, "Other");
    CMValueItem item(nullptr, OrvoPowerManagerTargetPath());
    QSignalSpy spy(&item, &CMValueItem::changed);
    set(OrvoPlayListSettingsDataBaseVacuumPath(), true);
    other.subscribe()->rowsChanged(OrvoPowerManagerTargetPath(), "reset", -1);
    EXPECT_EQ(spy.count(), 0);
    set(OrvoPowerManagerTargetPath(), 3);
    EXPECT_EQ(spy.count(), 1);
}

TEST_F(CMValueItemTest, itHearsOfAWriteThatCameWithParameters) {
    CMValueItem item(nullptr, OrvoPowerManagerTargetPath());
    QSignalSpy spy(&item, &CMValueItem::changed);
    set(OrvoPowerManagerTargetPath().addParam("from", "test"), 3);
    EXPECT_EQ(spy.count(), 1);
}

TEST_F(CMValueItemTest, itWatchesValuesOfModules) {
    CMNodesWorker module({}, "Module");
    CMValueItem item(nullptr, CMPath("module:volume"));
    QSignalSpy spy(&item, &CMValueItem::changed);
    module.subscribe()->valueChanged(CMPath("module:volume"), OrvoValue::fromI32(7),
                                     OrvoValue::fromI32(6));
    ASSERT_EQ(spy.count(), 1);
}

TEST_F(CMValueItemTest, itsParentOwnsIt) {
    auto* parent = new QObject;
    QPointer<CMValueItem> item = new CMValueItem(parent, OrvoPowerManagerTargetPath());
    delete parent;
    EXPECT_TRUE(item.isNull());
    set(OrvoPowerManagerTargetPath(), 1);
}

TEST_F(CMValueItemTest, aValueIsWatchedFromItsFirstWatcherToItsLast) {
    const CMPath path("player:position");
    QStringList seen;
    QObject::connect(&root, &CMRootWorker::valueWatched,
                     [&](const CMPath& watchedPath, bool watched) {
                         seen.append(watchedPath.toString() + (watched ? " yes" : " no"));
                         EXPECT_EQ(root.isValueWatched(watchedPath), watched);
                     });
    EXPECT_FALSE(root.isValueWatched(path));
    auto first = std::make_unique<CMValueItem>(nullptr, path);
    auto second = std::make_unique<CMValueItem>(nullptr, path);
    const CMValueItem other(nullptr, CMPath("player:other"));
    EXPECT_EQ(seen, QStringList({"player:position yes", "player:other yes"}));
    first.reset();
    EXPECT_TRUE(root.isValueWatched(path));
    second.reset();
    EXPECT_EQ(seen.last(), "player:position no");
    root.removeValueWatcher(path);
    EXPECT_EQ(seen.size(), 3) << "no client watches, so none leaves";
}

TEST(CMValueItem, itMayOutliveTheRoot) {
    auto root = std::make_unique<CMRootWorker>();
    auto item = std::make_unique<CMValueItem>(nullptr, OrvoPowerManagerTargetPath());
    root.reset();
    item.reset();
}
