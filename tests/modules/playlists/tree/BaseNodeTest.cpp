#include "playlistUI/BaseNode.h"

#include <QJsonArray>

#include "OrvoPlayListPaths.h"
#include "TreeFixture.h"

namespace {

class BaseNodeTest : public PartsFixture {
protected:
    // Ten rows "0" to "9" asked for from `from` to `to`; what is sent, joined.
    QString sent(int from, int to, bool sliceRows = true, int rowsCount = 10, int rowsGiven = 10) {
        QVariantList rows;
        for (int i = 0; i < rowsGiven; ++i)
            rows.append(QVariant(QVariantList{QString::number(i)}));
        reply = CMReplyData<OrvoRowsRoles>();
        OrvoRoles roles;
        roles.setId("given");
        node.sendRowsReply(rows, rowsCount, TrString("C", "Title"), roles,
                           CMGetRowsRequest(node.path(), from, to, {"title"}, reply), sliceRows);
        EXPECT_TRUE(reply.isFinished());
        EXPECT_EQ(reply.value().rowsCount(), rowsCount);
        QString text;
        const QVariantList answered = reply.value().rows();
        for (const QVariant& row : answered)
            text += row.toList().value(0).toString();
        return text;
    }

    BaseNode node{CMPath("playlists:some/node"), &manager};
    CMReplyData<OrvoRowsRoles> reply;
};

} // namespace

TEST_F(BaseNodeTest, createMakesARegisteredNode) {
    const std::unique_ptr<BaseNode> made(BaseNode::create(&nodes, CMPath("playlists:x"), &manager));
    EXPECT_EQ(nodes.find(CMPath("playlists:x")), made.get());
    EXPECT_EQ(made->path(), CMPath("playlists:x"));
}

TEST_F(BaseNodeTest, aBareNodeTakesRequestsAndDoesNothing) {
    const CMReplyData<OrvoRowsRoles> rowsReply;
    EXPECT_TRUE(node.getRowsRequest(CMGetRowsRequest(node.path(), 0, 5, {"title"}, rowsReply)));
    EXPECT_FALSE(rowsReply.isFinished());
    const CMReply<QVariant> setReply;
    EXPECT_TRUE(node.setDataRequest(CMSetDataRequest(node.path(), 1, setReply)));
    EXPECT_FALSE(setReply.isFinished());
}

TEST_F(BaseNodeTest, aTextThatIsNoNumberReadsAsTheDefault) {
    EXPECT_EQ(BaseNode::toInt("12", -1), 12);
    EXPECT_EQ(BaseNode::toInt("-12", -1), -12);
    EXPECT_EQ(BaseNode::toInt("0", -1), 0);
    for (const char* text :
         {"abc", "", "12a", "1.5", "0x10", "2147483648", "99999999999999999999", "1 2"}) {
        EXPECT_EQ(BaseNode::toInt(text, -1), -1) << text;
        EXPECT_EQ(BaseNode::toInt(text, 7), 7) << text;
    }
    EXPECT_EQ(BaseNode::toInt("2147483647", -1), 2147483647);
    EXPECT_EQ(BaseNode::toInt("-2147483648", -1), -2147483647 - 1);
}

TEST_F(BaseNodeTest, numbersAreWrittenInDecimal) {
    EXPECT_EQ(BaseNode::toStr(0), "0");
    EXPECT_EQ(BaseNode::toStr(-7), "-7");
    EXPECT_EQ(BaseNode::toStr(2147483647), "2147483647");
}

TEST_F(BaseNodeTest, theRequestedRangeIsCutOut) {
    struct Row {
        int from;
        int to;
        const char* sent;
    };
    constexpr int last = CMGetRowsRequest::LastRow;
    const Row rows[] = {
        {0, last, "0123456789"},
        {0, 9, "0123456789"},
        {0, 10, "0123456789"},
        {2, 5, "2345"},
        {5, 2, "2345"},
        {3, 3, "3"},
        {0, 0, "0"},
        {9, 9, "9"},
        {7, 100, "789"},
        {10, 12, "9"},
        {500, 400, "9"},
        {-5, 2, "012"},
        {-9, -3, "0"},
        {9, 0, "0123456789"},
        {last, 0, "0123456789"},
        {last, last, "9"},
        {1, 9, "123456789"},
        {0, 8, "012345678"},
        {-2147483647 - 1, last, "0123456789"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(sent(row.from, row.to), row.sent) << row.from << ".." << row.to;
}

TEST_F(BaseNodeTest, rowsThatAreTheRangeAlreadyAreSentWhole) {
    EXPECT_EQ(sent(2, 5, false), "0123456789");
    EXPECT_EQ(sent(2, 5, false, 1000), "0123456789");
}

TEST_F(BaseNodeTest, aCountBelowOneCutsNothing) {
    EXPECT_EQ(sent(2, 5, true, 0), "0123456789");
    EXPECT_EQ(sent(2, 5, true, -1), "0123456789");
    EXPECT_EQ(sent(0, 9, true, 0, 0), "");
}

TEST_F(BaseNodeTest, theCutStopsWhereTheRowsEnd) {
    EXPECT_EQ(sent(2, 8, true, 10, 4), "23");
    EXPECT_EQ(sent(6, 8, true, 10, 4), "");
    EXPECT_EQ(sent(1, 1, true, 3, 10), "1");
    EXPECT_EQ(sent(0, 9, true, 3, 10), "0123456789") << "the whole list is all that was given";
}

TEST_F(BaseNodeTest, theReplyCarriesGivenRolesTitleAndCount) {
    sent(2, 5);
    EXPECT_EQ(RowText(reply.value().roles()),
              RowText(QJsonObject{{"id", "given"}, {"title", "C|Title"}, {"rowsCount", 10}}));
    EXPECT_EQ(node.title(), TrString("C", "Title"));
}

TEST_F(BaseNodeTest, whatIsSentIsLogged) {
    LogCapture log("PlayLists");
    sent(2, 5);
    EXPECT_EQ(log.lines().size(), 3);
    EXPECT_EQ(log.lines().value(0), "TRACE rowsCount: 10");
    EXPECT_TRUE(log.lines().value(1).startsWith("TRACE roles: {")) << log.lines().value(1);
    EXPECT_TRUE(log.lines().value(1).contains("\"title\":\"Title\"")) << log.lines().value(1);
    EXPECT_EQ(log.lines().value(2), "TRACE sent reply with 4 lines");
}

TEST_F(BaseNodeTest, rolesOfAPathAreTheNodesOwnRestrictedToTheKeys) {
    node.setTitle(TrString(QString("Mix")));
    CMPath path = node.path();
    path.addParam("clid", "5");
    EXPECT_EQ(RowText(node.createRolesFromPath(path, {"title", "path", "id"})),
              RowText(QJsonObject{{"title", "=Mix"}, {"path", "playlists:some/node?clid=5"}}));
    EXPECT_TRUE(node.createRolesFromPath(path, {}).isEmpty());
}

TEST_F(BaseNodeTest, aTrackRowLinksToItsMenu) {
    OrvoRoles roles;
    roles.setTitle(TrString(QString("Track")));
    roles.setId("77");
    roles.setValue(OrvoValue::fromI32(4));
    const OrvoRoles linked = BaseNode::addContextMenuToRoles(roles, 9);
    EXPECT_EQ(RowText(linked.context()),
              RowText(Expected::menu("BaseNode|Playlist",
                                     "playlists:pl/trackContext?action=cmnode&itemid=77"
                                     "&plid=9&seqnum=4")));
    OrvoRoles rest = linked;
    rest.removeAttribute(OrvoRoles::Context());
    EXPECT_EQ(rest, roles) << "nothing else changes";
}

TEST_F(BaseNodeTest, aTrackWithoutIdAndPlaceLinksWithWhatThereIs) {
    EXPECT_EQ(BaseNode::addContextMenuToRoles({}, 0).context().path().toString(),
              "playlists:pl/trackContext?action=cmnode&itemid=&plid=0&seqnum=0");
}

TEST_F(BaseNodeTest, anIdThatIsNoNumberStaysWholeInTheLink) {
    for (const char* id : {"a&b=c", "7 7", "-3", "7:8"}) {
        OrvoRoles roles;
        roles.setId(id);
        roles.setValue(OrvoValue::fromI32(4));
        const CMPath menu = BaseNode::addContextMenuToRoles(roles, 9).context().path();
        EXPECT_EQ(menu.param("itemid"), id);
        EXPECT_EQ(menu.param("plid"), "9");
        EXPECT_EQ(menu.param("seqnum"), "4");
    }
}

TEST_F(BaseNodeTest, theCloseEventNamesTheNode) {
    EXPECT_EQ(node.genClosePathEvent().toHash(),
              QVariantHash({{"rowsType", 1}, {"path", "playlists:some/node"}}));
}
