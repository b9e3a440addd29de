#include <QCoreApplication>

#include "CommandFixture.h"

namespace {

// Commands whose checks pass and whose change the store refuses: their own line is the last one.
class CommandFailuresTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    // Everything in the file but the numbers, which a failure must not touch.
    QStringList contents() {
        return query(
            "SELECT 'p' || uid || name || shuffle || repeatAll FROM playlists UNION ALL"
            " SELECT 'e' || playlist || title || sequenceNumber FROM playlists_items JOIN items ON item = uid"
            " UNION ALL SELECT 'c' || uid || name FROM collections UNION ALL"
            " SELECT 'm' || collection || playlist FROM collections_playlists ORDER BY 1");
    }
};

const QList<CommandRow>& failures() {
    static const QVariantList first{0};
    static const QList<CommandRow> rows = {
        {"create",
         OrvoPlayListPlCreatePath,
         {{"name", "x"}},
         "Could not create playlist. Create playlist error.",
         {"Create playlist failed"},
         "INSERT ON playlists"},
        {"create collection",
         OrvoPlayListClCreatePath,
         {{"name", "x"}},
         "Could not create collection. Create collection error.",
         {"Create collection error"},
         "INSERT ON collections"},
        {"delete collection",
         OrvoPlayListClDeletePath,
         {{"clid", 1}},
         "Could not delete collection. Delete collection failed",
         {"Unable to delete collection id: 1"},
         "DELETE ON collections"},
        {"delete",
         OrvoPlayListPlDeletePath,
         {{"plid", 1}},
         "Could not delete playlist. Delete playlist error.",
         {"Delete playlist id: 1 failed"},
         "DELETE ON playlists"},
        {"delete, clean-up",
         OrvoPlayListPlDeletePath,
         {{"plid", 1}},
         "Could not delete playlist. Delete playlist error.",
         {"Delete playlist id: 1 failed"},
         "DELETE ON items"},
        {"add to collection",
         OrvoPlayListClAddItemPath,
         {{"clid", 1}, {"plid", 1}},
         "Could not add items to collection. Add playlist to collection failed.",
         {"Unable to add playList id: 1 to collection id: 1"},
         "INSERT ON collections_playlists"},
        {"remove from collection",
         OrvoPlayListClRemoveItemPath,
         {{"clid", 1}, {"plid", 2}},
         "Could not remove items from collection. Remove playlist from collection failed.",
         {"Unable to remove playList, id: 2 from collection id: 1"},
         "DELETE ON collections_playlists"},
        {"rename",
         OrvoPlayListPlSetNamePath,
         {{"plid", 1}, {"name", "x"}},
         "Could not set playlist name. The change could not be stored.",
         {"The change could not be stored. playlist id: 1"},
         "UPDATE ON playlists"},
        {"shuffle",
         OrvoPlayListPlSetShufflePath,
         {{"plid", 1}, {"mode", 1}},
         "Could not set shuffle mode on playlist. The change could not be stored.",
         {"The change could not be stored. playlist id: 1"},
         "UPDATE ON playlists"},
        {"repeat",
         OrvoPlayListPlSetRepeatPath,
         {{"plid", 1}, {"mode", 2}},
         "Could not set repeat mode on playlist. The change could not be stored.",
         {"The change could not be stored. playlist id: 1"},
         "UPDATE ON playlists"},
        {"clear",
         OrvoPlayListPlClearPath,
         {{"plid", 1}},
         "Could not clear playlist. Clear playlist failed.",
         {"Clear playlist id: 1 failed"},
         "DELETE ON playlists_items"},
        {"remove",
         OrvoPlayListPlRemoveItemsPath,
         {{"plid", 1}, {"items", first}},
         "Could not remove items from playlist. Remove items failed",
         {"Remove items from playlist id: 1 failed"},
         "DELETE ON playlists_items"},
        {"remove, clean-up",
         OrvoPlayListPlRemoveItemsPath,
         {{"plid", 1}, {"items", first}},
         "Could not remove items from playlist. Remove items failed",
         {"Remove items from playlist id: 1 failed"},
         "DELETE ON items"},
        {"remove, renumbering",
         OrvoPlayListPlRemoveItemsPath,
         {{"plid", 1}, {"items", first}},
         "Could not remove items from playlist. Remove items failed",
         {"Remove items from playlist id: 1 failed"},
         "UPDATE ON playlists_items"},
        {"move",
         OrvoPlayListPlMoveItemspath,
         {{"plid", 1}, {"to", 2}, {"items", first}},
         "Could not move items in playlist. Move items failed",
         {"Unable to move items (0,) to seqnum 2 in playlist id: 1"},
         "UPDATE ON playlists_items"},
        {"order",
         OrvoPlayListPlSetOrderPath,
         {{"plid", 1}, {"order", QVariantList{2, 1, 0}}},
         "Could not set order of playlist. Set order failed",
         {"Set order of playlist id: 1 failed"},
         "UPDATE ON playlists_items"},
        {"add",
         OrvoPlayListPlAddExternalItemsPath,
         {{"plid", 1}},
         "Could not add external items to playlist. No items were added.",
         {"No items were added to playlist id: 1"},
         "INSERT ON items"},
        {"add, entry",
         OrvoPlayListPlAddExternalItemsPath,
         {{"plid", 1}},
         "Could not add external items to playlist. No items were added.",
         {"No items were added to playlist id: 1"},
         "INSERT ON playlists_items"},
        {"add paths",
         OrvoPlayListPlAddItemsPath,
         {{"plid", 2}, {"fromPlid", 1}},
         "Could not add items to playlist. No items were added.",
         {"Error adding items to list"},
         "INSERT ON items"},
    };
    return rows;
}

QVariantHash completed(const CommandRow& row, const QVariantList& items) {
    QVariantHash args = row.args;
    if (row.path == OrvoPlayListPlAddExternalItemsPath)
        args.insert("items", items);
    return args;
}

TEST_F(CommandFailuresTest, whatTheStoreRefusesIsAnsweredLoggedAndUndone) {
    // Neither stores anything.
    EXPECT_EQ(QStringList({"plPrepareItems", "plPlay"}), handlersWithout(failures()));
    const QStringList before = contents();
    for (const CommandRow& row : failures()) {
        forbid(row.forbidden);
        {
            const LogCapture log("PlayLists");
            EXPECT_EQ(QString(row.message), refusal(row.path(), completed(row, itemHashes({"d"}))))
                << row.what;
            EXPECT_EQ(row.lines, log.errors().mid(log.errors().size() - 1)) << row.what;
            EXPECT_EQ(QStringList(), log.texts("INFO")) << row.what;
        }
        allowAll();
        EXPECT_EQ(before, contents()) << row.what;
        expectInvariants();
    }
}

TEST_F(CommandFailuresTest, everyCommandWorksAgainAfterItFailed) {
    addItems(1, {"e", "f", "g", "h"});
    for (const CommandRow& row : failures()) {
        const bool needsTheList = row.path == OrvoPlayListPlSetOrderPath;
        const bool deletes =
            row.path == OrvoPlayListPlDeletePath || row.path == OrvoPlayListClDeletePath ||
            row.path == OrvoPlayListPlClearPath || row.path == OrvoPlayListPlAddItemsPath;
        if (deletes || needsTheList)
            continue; // the others change what these are about, and need what those take away
        forbid(row.forbidden);
        refusal(row.path(), completed(row, itemHashes({"d"})));
        allowAll();
        expectDone(row.path(), completed(row, itemHashes({"d"})));
        expectInvariants();
    }
}

TEST_F(CommandFailuresTest, aFileThatAnotherProcessHoldsFailsEveryChange) {
    const QStringList before = contents();
    run("BEGIN EXCLUSIVE;");
    for (const CommandRow& row : failures()) {
        if (row.path == OrvoPlayListPlAddItemsPath)
            continue; // has to read first, see the next test
        EXPECT_EQ(QString(row.message), refusal(row.path(), completed(row, itemHashes({"d"}))))
            << row.what;
    }
    run("ROLLBACK;");
    EXPECT_EQ(before, contents());
    // Memory has not run ahead of the file.
    expectDone(OrvoPlayListPlMoveItemspath(),
               QVariantHash{{"plid", 1}, {"to", 0}, {"items", QVariantList{2}}});
    EXPECT_EQ(QString("c a b"), stored(1));
    addItems(1, {"d"});
    EXPECT_EQ(QString("c a b d"), stored(1));
    expectInvariants();
}

TEST_F(CommandFailuresTest, aSourcePlaylistThatCannotBeReadHasNothingToAdd) {
    run("BEGIN EXCLUSIVE;");
    EXPECT_EQ(QString("Could not add items to playlist. Please select one or more items to add."),
              refusal(OrvoPlayListPlAddItemsPath(), QVariantHash{{"plid", 2}, {"fromPlid", 1}}));
    run("ROLLBACK;");
    EXPECT_EQ(QString("a b c"), stored(1));
    EXPECT_EQ(QString(), stored(2));
}

TEST_F(CommandFailuresTest, aFirstItemThatCannotBeReadIsNotPlayed) {
    FakeModules others;
    run("ALTER TABLE items RENAME TO elsewhere;");
    const LogCapture log("PlayLists");
    EXPECT_EQ(QString("Could not start playback on playlist. Cannot get first item"),
              refusal(OrvoPlayListPlPlayPath(), QVariantHash{{"plid", 1}}));
    EXPECT_TRUE(others.player.requests.isEmpty());
    run("ALTER TABLE elsewhere RENAME TO items;");
    expectDone(OrvoPlayListPlPlayPath(), QVariantHash{{"plid", 1}});
    EXPECT_EQ(1, others.player.requests.size());
}

TEST_F(CommandFailuresTest, aNewItemThatCannotBeReadIsNotStarted) {
    FakeModules others;
    offer(others.files, "files:d", "d");
    // What is added is taken away at once, behind the store's back.
    run("CREATE TRIGGER vanish AFTER INSERT ON playlists_items BEGIN"
        " DELETE FROM playlists_items WHERE item = NEW.item; END;");
    {
        const LogCapture log("PlayLists");
        EXPECT_EQ(QString("Could not add external items to playlist. Cannot get last item."),
                  refusal(OrvoPlayListPlAddExternalItemsPath(),
                          QVariantHash{{"plid", 1}, {"items", itemHashes({"d"})}, {"mode", 0}}));
        EXPECT_EQ(QStringList("Cannot get last item for playlist id: 1"), log.errors());
        EXPECT_EQ(QStringList(), log.texts("INFO"));
    }
    EXPECT_EQ(
        QString("Could not add items to playlist. Cannot get last sequence number. 1 items added."),
        refusal(OrvoPlayListPlAddItemsPath(),
                QVariantHash{{"plid", 1}, {"items", QVariantList{"files:d"}}, {"mode", 0}}));
    EXPECT_EQ(1, others.files.requests.size());
    EXPECT_TRUE(others.player.requests.isEmpty());
}

TEST_F(CommandFailuresTest, aChangeThatWasNotStoredIsNotShown) {
    rows(CMPath("playlists:root"));
    forbid("UPDATE ON playlists");
    events.clear();
    refusal(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", 1}, {"name", "x"}});
    refusal(OrvoPlayListPlSetShufflePath(), QVariantHash{{"plid", 1}, {"mode", "shuffleOn"}});
    refusal(OrvoPlayListPlSetRepeatPath(), QVariantHash{{"plid", 1}, {"mode", "repeatAll"}});
    QCoreApplication::processEvents();
    EXPECT_EQ(QStringList(), events);
    const auto shown = [this] {
        const QList<OrvoRoles> menu = asRoles(rows(CMPath("playlists:pl/context?plid=1")));
        return QStringLiteral("%1 %2 %3")
            .arg(menu.at(1).value().string())
            .arg(menu.at(2).value().bool_())
            .arg(menu.at(3).value().bool_());
    };
    EXPECT_EQ(QString("Party 0 0"), shown());
    // What is as it was needs no storing.
    expectDone(OrvoPlayListPlSetShufflePath(), QVariantHash{{"plid", 1}, {"mode", 0}});
    expectDone(OrvoPlayListPlSetRepeatPath(), QVariantHash{{"plid", 1}, {"mode", 0}});
    allowAll();
    expectDone(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", 1}, {"name", "x"}});
    expectDone(OrvoPlayListPlSetShufflePath(), QVariantHash{{"plid", 1}, {"mode", 1}});
    expectDone(OrvoPlayListPlSetRepeatPath(), QVariantHash{{"plid", 1}, {"mode", 2}});
    EXPECT_EQ(QString("x 1 1"), shown());
}

TEST_F(CommandFailuresTest, membershipIsRefusedTwiceAndRemovedOnce) {
    EXPECT_EQ(QString("Could not add items to collection. Add playlist to collection failed."),
              refusal(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", 1}, {"plid", 2}}));
    expectDone(OrvoPlayListClRemoveItemPath(), QVariantHash{{"clid", 1}, {"plid", 2}});
    EXPECT_EQ(
        QString("Could not remove items from collection. Remove playlist from collection failed."),
        refusal(OrvoPlayListClRemoveItemPath(), QVariantHash{{"clid", 1}, {"plid", 2}}));
    // The queue is a playlist like any other here.
    expectDone(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", 1}, {"plid", 0}});
    EXPECT_EQ(QStringList("1/0"),
              query("SELECT collection || '/' || playlist FROM collections_playlists"));
    expectInvariants();
}

TEST_F(CommandFailuresTest, aPlaylistThatCouldNotBeDeletedIsStillThere) {
    forbid("DELETE ON playlists");
    refusal(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 1}});
    EXPECT_EQ(QStringList({"a", "b", "c"}), titles(1));
    allowAll();
    expectDone(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 1}});
    EXPECT_EQ(QStringList("0"), query("SELECT count(*) FROM items"));
}

} // namespace
