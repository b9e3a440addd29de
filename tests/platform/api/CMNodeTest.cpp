#include "CMNode.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPointer>

#include "CMRootWorker.h"
#include "Printing.h"

namespace {
void runDeferredDeletes() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
} // namespace

TEST(CMNodes, aNodeIsFoundByItsPathWithoutParameters) {
    CMNodes nodes;
    CMUINode node(CMPath("playlists:pl/items/1"));
    EXPECT_EQ(node.nodes(), nullptr);
    node.setNodes(&nodes);
    EXPECT_EQ(node.nodes(), &nodes);
    EXPECT_EQ(nodes.count(), 1);
    EXPECT_EQ(nodes.find(CMPath("playlists:pl/items/1")), &node);
    EXPECT_EQ(nodes.find(CMPath("playlists:pl/items/1?a=1&b=2")), &node);
    EXPECT_EQ(nodes.find(CMPath("playlists:pl/items/10")), nullptr);
    EXPECT_EQ(nodes.find(CMPath("playlists:pl/items")), nullptr);
    EXPECT_EQ(nodes.find(CMPath()), nullptr);
}

TEST(CMNodes, aNodeRegisteredWithParametersServesTheBarePath) {
    CMNodes nodes;
    CMUINode node(CMPath("playlists:root?a=1"));
    node.setNodes(&nodes);
    EXPECT_EQ(nodes.find(CMPath("playlists:root")), &node);
}

TEST(CMNodes, anEncodedPathFindsTheSameNode) {
    CMNodes nodes;
    CMUINode node(CMPath("files:a%20b"));
    node.setNodes(&nodes);
    EXPECT_EQ(nodes.find(CMPath("files:a b")), &node);
    EXPECT_EQ(nodes.find(CMPath::fromPrefix("files") + "a b"), &node);
}

TEST(CMNode, deleteLaterUnregistersAtOnceAndDestroysLater) {
    CMNodes nodes;
    QPointer<CMUINode> node = new CMUINode(CMPath("playlists:root"));
    node->setNodes(&nodes);
    node->deleteLater();
    EXPECT_EQ(nodes.count(), 0);
    EXPECT_EQ(nodes.find(CMPath("playlists:root")), nullptr);
    EXPECT_FALSE(node.isNull());
    runDeferredDeletes();
    EXPECT_TRUE(node.isNull());
}

TEST(CMNode, deletingUnregisters) {
    CMNodes nodes;
    auto node = std::make_unique<CMUINode>(CMPath("playlists:root"));
    node->setNodes(&nodes);
    node.reset();
    EXPECT_EQ(nodes.count(), 0);
}

TEST(CMNode, aSuccessorKeepsItsRegistrationWhenItsPredecessorGoes) {
    CMNodes nodes;
    QPointer<CMUINode> old = new CMUINode(CMPath("playlists:pl/items/1"));
    old->setNodes(&nodes);
    CMUINode successor(CMPath("playlists:pl/items/1"));
    successor.setNodes(&nodes);
    EXPECT_EQ(nodes.find(successor.path()), &successor);
    old->deleteLater();
    EXPECT_EQ(nodes.find(successor.path()), &successor);
    runDeferredDeletes();
    EXPECT_TRUE(old.isNull());
    EXPECT_EQ(nodes.find(successor.path()), &successor);
    EXPECT_EQ(nodes.count(), 1);
}

TEST(CMNode, aSuccessorRegisteredBetweenDeleteLaterAndTheEndIsKept) {
    CMNodes nodes;
    auto* old = new CMUINode(CMPath("playlists:pl/items/1"));
    old->setNodes(&nodes);
    old->deleteLater();
    CMUINode successor(CMPath("playlists:pl/items/1"));
    successor.setNodes(&nodes);
    old->deleteLater();
    runDeferredDeletes();
    EXPECT_EQ(nodes.find(successor.path()), &successor);
}

TEST(CMNode, aNodeMayOutliveTheRegistry) {
    auto nodes = std::make_unique<CMNodes>();
    auto* node = new CMUINode(CMPath("playlists:root"));
    CMUINode replaced(CMPath("playlists:root"));
    replaced.setNodes(nodes.get());
    node->setNodes(nodes.get());
    nodes.reset();
    EXPECT_EQ(node->nodes(), nullptr);
    EXPECT_EQ(replaced.nodes(), nullptr);
    delete node;
}

TEST(CMNode, aWorkerMayOwnItsNodes) {
    CMRootWorker root;
    auto worker = std::make_unique<CMNodesWorker>(QHash<QString, QVariant>(), "Files");
    QPointer<CMUINode> node = new CMUINode(CMPath("files:root"), worker.get());
    node->setNodes(worker->nodes());
    worker.reset();
    EXPECT_TRUE(node.isNull());
}

TEST(CMNode, aBareNodeAnswersNothing) {
    CMNode node(CMPath("playlists:root"));
    const CMPath path("playlists:root");
    EXPECT_FALSE(node.setDataRequest(CMSetDataRequest(path, {})));
    EXPECT_FALSE(node.request(CMSetDataRequest(path, {})));
    EXPECT_FALSE(node.getDataRequest(CMGetDataRequest(path, {}, {})));
    EXPECT_FALSE(node.getRowsRequest(CMGetRowsRequest(path, 0, 0, {}, {})));
    EXPECT_FALSE(node.matchRowRequest(CMMatchRowRequest(path, "x", 0, {})));
    ASSERT_NE(node.mutex(), nullptr);
    node.mutex()->lock();
    EXPECT_TRUE(node.mutex()->try_lock()) << "recursive";
    node.mutex()->unlock();
    node.mutex()->unlock();
}

TEST(CMUINode, itsRolesAreRestrictedToTheKeysAndCarryTheParameters) {
    CMUINode node(CMPath("playlists:pl/items/1"));
    node.setTitle(TrString("C", "Playlist - %1", {"Mix"}));
    OrvoMetaData metaData;
    metaData.setPlayLogicPath(CMPath("playlists:playlogic"));
    OrvoMediaData mediaData;
    mediaData.setMetaData(metaData);

    const QStringList keys = {"title", "path", "type", "mediaData", "value", "unknown"};
    const OrvoRoles without = node.getDataRoles(keys, {{"a", "1"}});
    EXPECT_EQ(without.title(), TrString("C", "Playlist - %1", {"Mix"}));
    EXPECT_EQ(without.path(), CMPath("playlists:pl/items/1?a=1"));
    EXPECT_EQ(without.type(), 1);
    EXPECT_EQ(without.toHash().size(), 3);

    node.setMediaData(mediaData);
    EXPECT_EQ(node.getDataRoles(keys, {}).mediaData(), mediaData);
    EXPECT_EQ(node.getDataRoles({"type"}, {}).toHash(), QVariantHash({{"type", 1}}));
    EXPECT_TRUE(node.getDataRoles({}, {}).isEmpty());
}

TEST(CMContainerNode, aSingleRoleIsRead) {
    CMContainerNode node(CMPath("playlists:root"));
    node.setTitle(TrString(QString("Mix")));
    EXPECT_EQ(node.getRoleData("title"), QVariant("Mix"));
    EXPECT_EQ(node.getRoleData("path"), QVariant("playlists:root"));
    EXPECT_FALSE(node.getRoleData("unknown").isValid());
}

TEST(CMListRowsNode, readersAreCounted) {
    CMListRowsNode node(CMPath("playlists:root"));
    EXPECT_EQ(node.rowsReaders(), 0);
    node.rowsPathAdd(node.path());
    node.rowsPathAdd(node.path());
    EXPECT_EQ(node.rowsReaders(), 2);
    node.rowsPathRemove(node.path());
    node.rowsPathRemove(node.path());
    node.rowsPathRemove(node.path());
    EXPECT_EQ(node.rowsReaders(), 0);
}
