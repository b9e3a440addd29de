#include "CommandFixture.h"

namespace {

// Commands that succeed: a text that only the log ever sees, and the line for people who read logs.
class CommandTextsTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }
};

TEST_F(CommandTextsTest, successesAreTracedAndLogged) {
    FakeModules others;
    const QVariantList item = itemHashes({"d"});
    const QList<CommandRow> rows = {
        {"create",
         OrvoPlayListPlCreatePath,
         {{"name", "New"}},
         "val: 3 msg: Playlist created successfully. (New)",
         {"Playlist id: 3, name: New created successfully"}},
        {"create collection",
         OrvoPlayListClCreatePath,
         {{"name", "Crate"}},
         "val: 2 msg: Collection created successfully. (Crate)",
         {"Collection id: 2, name: Crate created successfully"}},
        {"rename",
         OrvoPlayListPlSetNamePath,
         {{"plid", 3}, {"name", "Newer"}},
         "msg: Playlist renamed successfully. (Newer)",
         {"Playlist id:3 successfully renamed to: Newer"}},
        {"shuffle",
         OrvoPlayListPlSetShufflePath,
         {{"plid", 1}, {"mode", 1}},
         "msg: Playlist shuffle mode changed successfully. (Party)",
         {"Playlist id:1 set shuffle: 1"}},
        {"shuffle the queue",
         OrvoPlayListPlSetShufflePath,
         {{"plid", 0}, {"mode", 1}},
         "msg: Playlist shuffle mode changed successfully. (PlayQueue)",
         {"Playlist id:0 set shuffle: 1"}},
        {"repeat",
         OrvoPlayListPlSetRepeatPath,
         {{"plid", 1}, {"mode", 3}},
         "msg: Playlist repeat mode changed successfully. (Party)",
         {"Playlist id:1 set repeat all: 3"}},
        {"repeat the queue",
         OrvoPlayListPlSetRepeatPath,
         {{"plid", 0}, {"mode", 2}},
         "msg: Playlist repeat mode changed successfully. (PlayQueue)",
         {"Playlist id:0 set repeat all: 2"}},
        {"move",
         OrvoPlayListPlMoveItemspath,
         {{"plid", 1}, {"to", 2}, {"items", QVariantList{0, 1}}},
         "msg: 2 Items removed successfully from playlist. (Party)",
         {"Items in playlist id: 1 moved successfully to position: 2"}},
        {"order",
         OrvoPlayListPlSetOrderPath,
         {{"plid", 1}, {"order", QVariantList{2, 1, 0}}},
         "msg: Order of playlist set successfully. (Party)",
         {"Order of playlist id: 1 set successfully"}},
        {"play",
         OrvoPlayListPlPlayPath,
         {{"plid", 1}},
         "msg: Playback started successfully on playlist. (Party)",
         {}},
        {"add",
         OrvoPlayListPlAddExternalItemsPath,
         {{"plid", 1}, {"items", item}},
         "msg: 1 Items added successfully to playlist. (Party)",
         {"Items added successfully to playlist id: 1"}},
        {"remove",
         OrvoPlayListPlRemoveItemsPath,
         {{"plid", 1}, {"items", QVariantList{0, 3}}},
         "msg: 2 Items removed successfully from playlist. (Party)",
         {"Removed 2 items from playlist id: 1"}},
        {"clear",
         OrvoPlayListPlClearPath,
         {{"plid", 1}},
         "msg: Playlist cleared successfully. (Party)",
         {"Playlist id: 1 cleared successfully"}},
        {"clear an empty one",
         OrvoPlayListPlClearPath,
         {{"plid", 1}},
         "msg: Playlist cleared successfully. (Party)",
         {"Playlist id: 1 cleared successfully"}},
        {"clear the queue",
         OrvoPlayListPlClearPath,
         {{"plid", 0}},
         "msg: Playlist cleared successfully. (PlayQueue)",
         {"Playlist id: 0 cleared successfully"}},
        {"add to collection",
         OrvoPlayListClAddItemPath,
         {{"clid", 2}, {"plid", 1}},
         "msg: Items added successfully to collection. (Crate)",
         {"Playlist id: 1 added to collection id: 2"}},
        {"remove from collection",
         OrvoPlayListClRemoveItemPath,
         {{"clid", 2}, {"plid", 1}},
         "msg: Playlist removed successfully from collection. (Crate)",
         {"Playlist id: 1 removed from collection id: 2"}},
        {"delete collection",
         OrvoPlayListClDeletePath,
         {{"clid", 2}},
         "msg: Collection deleted successfully. (Crate)",
         {"Deleted collection uid=2", "Collection id: 2 deleted successfully"}},
        {"delete",
         OrvoPlayListPlDeletePath,
         {{"plid", 1}},
         "msg: Playlist deleted successfully. (Party)",
         {"Deleted PlayList uid=1", "Playlist id: 1 deleted successfully"}},
    };
    // The other two answer when all is prepared, without such lines.
    EXPECT_EQ(QStringList({"plPrepareItems", "plAddItems"}), handlersWithout(rows));
    for (const CommandRow& row : rows) {
        const LogCapture log("PlayLists");
        expectDone(row.path(), row.args);
        EXPECT_EQ(row.lines, log.texts("INFO")) << row.what;
        EXPECT_EQ(QStringList(), log.errors()) << row.what;
        EXPECT_EQ(QStringList(), log.texts("WARN")) << row.what;
        const QStringList replies =
            log.texts("TRACE").filter(QRegularExpression("^Enter .*Controller::setReply"));
        ASSERT_EQ(1, replies.size()) << row.what;
        EXPECT_TRUE(replies.first().endsWith(QString("res: 1 ") + row.message))
            << qPrintable(replies.first());
        expectInvariants();
    }
}

TEST_F(CommandTextsTest, removingTracesItsCount) {
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlRemoveItemsPath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{2, 0}}});
    EXPECT_TRUE(log.contains("TRACE", "numItemsChanged 2"));
}

TEST_F(CommandTextsTest, movingTracesItsPositions) {
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlMoveItemspath(),
               QVariantHash{{"plid", 1}, {"to", 1}, {"items", QVariantList{2, 0}}});
    EXPECT_TRUE(log.contains("TRACE", "indicies: 2,0, toSeqNum 1"));
}

TEST_F(CommandTextsTest, everyHandlerTracesItsEntry) {
    for (const Command& command : commands()) {
        const LogCapture log("PlayLists");
        send(command.path(), QVariant());
        const QRegularExpression entry(
            QString("^Enter .*Controller::%1\\(.*").arg(command.handler));
        EXPECT_EQ(1, log.texts("TRACE").filter(entry).size()) << command.handler;
    }
}

TEST_F(CommandTextsTest, nothingIsLoggedAboveDebugWhenAllIsWell) {
    FakeModules others;
    offer(others.files, "files:d", "d");
    const LogCapture log("PlayLists", log4cplus::INFO_LOG_LEVEL);
    expectDone(OrvoPlayListPlAddItemsPath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{"files:d"}}, {"mode", 0}});
    EXPECT_EQ(QStringList(), log.lines());
}

} // namespace
