#include "CommandFixture.h"

namespace {

const QVariantList none;
const QVariantList first{0};
const QVariantList beyond{9};

// Requests that fail several checks at once, named by their places in the command's order: the
// first of them is what the caller hears of.
class CommandOrderTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    void expectMessages(const QList<CommandRow>& rows) {
        for (const CommandRow& row : rows) {
            EXPECT_EQ(QString(row.message), refusal(row.path(), row.args))
                << qPrintable(row.path().toString()) << " fails " << row.what;
        }
        EXPECT_EQ(QString("a b c"), stored(1));
        expectInvariants();
    }
};

TEST_F(CommandOrderTest, renaming) {
    // 1 id, 2 queue, 3 name, 4 playlist
    expectMessages({
        {"1 3 4",
         OrvoPlayListPlSetNamePath,
         {{"plid", -1}, {"name", ""}},
         "Could not set playlist name. Cannot find playlist with invalid ID."},
        {"1 4",
         OrvoPlayListPlSetNamePath,
         {{"plid", -1}, {"name", "x"}},
         "Could not set playlist name. Cannot find playlist with invalid ID."},
        {"2 3",
         OrvoPlayListPlSetNamePath,
         {{"plid", 0}, {"name", ""}},
         "Could not set playlist name. Cannot rename PlayQueue."},
        {"3 4",
         OrvoPlayListPlSetNamePath,
         {{"plid", 77}, {"name", ""}},
         "Could not set playlist name. Please provide a non-empty string as field. (name)"},
    });
}

TEST_F(CommandOrderTest, settingModes) {
    // 1 id, 2 mode, 3 playlist
    expectMessages({
        {"1 2 3",
         OrvoPlayListPlSetShufflePath,
         {{"plid", -1}, {"mode", 2}},
         "Could not set shuffle mode on playlist. Cannot find playlist with invalid ID."},
        {"1 3",
         OrvoPlayListPlSetShufflePath,
         {{"plid", -1}, {"mode", 1}},
         "Could not set shuffle mode on playlist. Cannot find playlist with invalid ID."},
        {"2 3",
         OrvoPlayListPlSetShufflePath,
         {{"plid", 77}, {"mode", 2}},
         "Could not set shuffle mode on playlist. Invalid shuffle mode. (shuffle-mode)"},
        {"1 2 3",
         OrvoPlayListPlSetRepeatPath,
         {{"plid", -1}, {"mode", 4}},
         "Could not set repeat mode on playlist. Cannot find playlist with invalid ID."},
        {"1 3",
         OrvoPlayListPlSetRepeatPath,
         {{"plid", -1}, {"mode", 1}},
         "Could not set repeat mode on playlist. Cannot find playlist with invalid ID."},
        {"2 3",
         OrvoPlayListPlSetRepeatPath,
         {{"plid", 77}, {"mode", 4}},
         "Could not set repeat mode on playlist. Invalid repeat mode. (repeat-mode)"},
    });
}

TEST_F(CommandOrderTest, deleting) {
    forbid("DELETE ON playlists");
    forbid("DELETE ON collections");
    // 1 id, 2 queue, 3 playlist, 4 store
    expectMessages({
        {"1 3",
         OrvoPlayListPlDeletePath,
         {{"plid", -1}},
         "Could not delete playlist. Cannot find playlist with invalid ID."},
        {"2 4",
         OrvoPlayListPlDeletePath,
         {{"plid", 0}},
         "Could not delete playlist. Cannot delete PlayQueue."},
        {"3 4",
         OrvoPlayListPlDeletePath,
         {{"plid", 77}},
         "Could not delete playlist. There is no playlist with this ID. (77)"},
        {"1 2",
         OrvoPlayListClDeletePath,
         {{"clid", 9}},
         "Could not delete collection. There is no collection with this ID. (9)"},
    });
}

TEST_F(CommandOrderTest, creating) {
    forbid("INSERT ON playlists");
    forbid("INSERT ON collections");
    // 1 name, 2 store
    expectMessages({
        {"1 2",
         OrvoPlayListPlCreatePath,
         {{"name", ""}},
         "Could not create playlist. Please provide a non-empty string as field. (name)"},
        {"1 2",
         OrvoPlayListClCreatePath,
         {{"name", ""}},
         "Could not create collection. Please provide a non-empty string as field. (name)"},
    });
}

TEST_F(CommandOrderTest, collectionMembers) {
    forbid("INSERT ON collections_playlists");
    forbid("DELETE ON collections_playlists");
    // 1 id, 2 collection, 3 playlist, 4 store
    const QList<QPair<Path, QByteArray>> commands = {
        {OrvoPlayListClAddItemPath, "Could not add items to collection."},
        {OrvoPlayListClRemoveItemPath, "Could not remove items from collection."}};
    for (const auto& [path, prefix] : commands) {
        const QByteArray invalid = prefix + " Cannot find playlist with invalid ID.";
        const QByteArray noCollection = prefix + " There is no collection with this ID. (9)";
        const QByteArray noPlayList = prefix + " There is no playlist with this ID. (77)";
        expectMessages({
            {"1 2 3 4", path, {{"plid", -1}, {"clid", 9}}, invalid},
            {"1 3 4", path, {{"plid", -1}, {"clid", 1}}, invalid},
            {"2 3 4", path, {{"plid", 77}, {"clid", 9}}, noCollection},
            {"2 4", path, {{"plid", 2}, {"clid", 9}}, noCollection},
            {"3 4", path, {{"plid", 77}, {"clid", 1}}, noPlayList},
        });
    }
}

TEST_F(CommandOrderTest, clearing) {
    forbid("DELETE ON playlists_items");
    // 1 id, 2 playlist, 3 store
    expectMessages({
        {"1 2 3",
         OrvoPlayListPlClearPath,
         {{"plid", -1}},
         "Could not clear playlist. Cannot find playlist with invalid ID."},
        {"2 3",
         OrvoPlayListPlClearPath,
         {{"plid", 77}},
         "Could not clear playlist. There is no playlist with this ID. (77)"},
    });
}

TEST_F(CommandOrderTest, removing) {
    // 1 id, 2 items, 3 playlist, 4 store
    expectMessages({
        {"1 2 3",
         OrvoPlayListPlRemoveItemsPath,
         {{"plid", -1}, {"items", none}},
         "Could not remove items from playlist. Cannot find playlist with invalid ID."},
        {"1 3 4",
         OrvoPlayListPlRemoveItemsPath,
         {{"plid", -1}, {"items", beyond}},
         "Could not remove items from playlist. Cannot find playlist with invalid ID."},
        {"2 3",
         OrvoPlayListPlRemoveItemsPath,
         {{"plid", 77}, {"items", none}},
         "Could not remove items from playlist. Please select one or more items to remove."},
        {"3 4",
         OrvoPlayListPlRemoveItemsPath,
         {{"plid", 77}, {"items", beyond}},
         "Could not remove items from playlist. There is no playlist with this ID. (77)"},
    });
}

TEST_F(CommandOrderTest, moving) {
    const char* const invalid =
        "Could not move items in playlist. Cannot find playlist with invalid ID.";
    const char* const nothing =
        "Could not move items in playlist. Please select one or more items to move.";
    const char* const negative =
        "Could not move items in playlist. Cannot move items to negative position.";
    const char* const unknown =
        "Could not move items in playlist. There is no playlist with this ID. (77)";
    const char* const range =
        "Could not move items in playlist. Cannot move items, sequence number is not in valid range.";
    // 1 id, 2 items, 3 negative target, 4 playlist, 5 target beyond, 6 store
    expectMessages({
        {"1 2 3 4",
         OrvoPlayListPlMoveItemspath,
         {{"plid", -1}, {"to", -1}, {"items", none}},
         invalid},
        {"1 2 4", OrvoPlayListPlMoveItemspath, {{"plid", -1}, {"to", 0}, {"items", none}}, invalid},
        {"1 3 4",
         OrvoPlayListPlMoveItemspath,
         {{"plid", -1}, {"to", -1}, {"items", first}},
         invalid},
        {"1 4 5",
         OrvoPlayListPlMoveItemspath,
         {{"plid", -1}, {"to", 3}, {"items", first}},
         invalid},
        {"1 4 6",
         OrvoPlayListPlMoveItemspath,
         {{"plid", -1}, {"to", 0}, {"items", beyond}},
         invalid},
        {"2 3", OrvoPlayListPlMoveItemspath, {{"plid", 1}, {"to", -1}, {"items", none}}, nothing},
        {"2 4", OrvoPlayListPlMoveItemspath, {{"plid", 77}, {"to", 0}, {"items", none}}, nothing},
        {"2 5", OrvoPlayListPlMoveItemspath, {{"plid", 1}, {"to", 3}, {"items", none}}, nothing},
        {"3 4",
         OrvoPlayListPlMoveItemspath,
         {{"plid", 77}, {"to", -1}, {"items", first}},
         negative},
        {"3 6",
         OrvoPlayListPlMoveItemspath,
         {{"plid", 1}, {"to", -1}, {"items", beyond}},
         negative},
        {"4 5", OrvoPlayListPlMoveItemspath, {{"plid", 77}, {"to", 3}, {"items", first}}, unknown},
        {"4 6", OrvoPlayListPlMoveItemspath, {{"plid", 77}, {"to", 0}, {"items", beyond}}, unknown},
        {"5 6", OrvoPlayListPlMoveItemspath, {{"plid", 1}, {"to", 3}, {"items", beyond}}, range},
        {"5 on an empty one",
         OrvoPlayListPlMoveItemspath,
         {{"plid", 2}, {"to", 0}, {"items", first}},
         range},
    });
}

TEST_F(CommandOrderTest, playing) {
    // 1 id, 2 playlist, 3 size, 4 first item
    run("ALTER TABLE items RENAME TO elsewhere;");
    EXPECT_EQ(
        QString("Could not start playback on playlist. Cannot find playlist with invalid ID."),
        refusal(OrvoPlayListPlPlayPath(), QVariantHash{{"plid", -1}}));
    EXPECT_EQ(
        QString("Could not start playback on playlist. There is no playlist with this ID. (77)"),
        refusal(OrvoPlayListPlPlayPath(), QVariantHash{{"plid", 77}}));
    EXPECT_EQ(QString("Could not start playback on playlist. There are no items in the playlist."),
              refusal(OrvoPlayListPlPlayPath(), QVariantHash{{"plid", 2}}));
    run("ALTER TABLE elsewhere RENAME TO items;");
}

TEST_F(CommandOrderTest, addingCompleteItems) {
    OrvoRoles untitled;
    untitled.setType(OrvoRolesType::Audio);
    const QVariantList bad{itemWithRoles(untitled).toHash()};
    // 1 id, 2 items, 3 playlist, 4 item
    expectMessages({
        {"1 2 3",
         OrvoPlayListPlAddExternalItemsPath,
         {{"plid", -1}, {"items", none}},
         "Could not add external items to playlist. Cannot find playlist with invalid ID."},
        {"1 3 4",
         OrvoPlayListPlAddExternalItemsPath,
         {{"plid", -1}, {"items", bad}},
         "Could not add external items to playlist. Cannot find playlist with invalid ID."},
        {"2 3",
         OrvoPlayListPlAddExternalItemsPath,
         {{"plid", 77}, {"items", none}},
         "Could not add external items to playlist. Please select one or more items to add."},
        {"3 4",
         OrvoPlayListPlAddExternalItemsPath,
         {{"plid", 77}, {"items", bad}},
         "Could not add external items to playlist. There is no playlist with this ID. (77)"},
    });
}

TEST_F(CommandOrderTest, addingPaths) {
    FakeModules others;
    // 1 id, 2 items, 3 playlist
    expectMessages({
        {"1 2 3",
         OrvoPlayListPlAddItemsPath,
         {{"plid", -1}, {"fromPlid", 2}},
         "Could not add items to playlist. Cannot find playlist with invalid ID."},
        {"2 3",
         OrvoPlayListPlAddItemsPath,
         {{"plid", 77}, {"fromPlid", 2}},
         "Could not add items to playlist. Please select one or more items to add."},
        // Here the items are gathered first: the target may come and go meanwhile.
        {"3 and nothing gathered",
         OrvoPlayListPlAddItemsPath,
         {{"plid", 77}, {"items", QVariantList{"files:x"}}},
         "Could not add items to playlist. No items were added. (There is no playlist with this ID. (77))"},
    });
    EXPECT_EQ(1, others.files.requests.size());
}

} // namespace
