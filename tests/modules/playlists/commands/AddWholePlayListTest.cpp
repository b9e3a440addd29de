#include "CommandFixture.h"

namespace {

class AddWholePlayListTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    static QVariantHash merge(int fromPlid, int plid) {
        return {{"plid", plid}, {"fromPlid", fromPlid}};
    }
    QStringList playLists() { return query("SELECT name FROM playlists ORDER BY uid"); }

    FakeModules others;
};

TEST_F(AddWholePlayListTest, theItemsMoveAndTheSourceGoes) {
    addItems(2, {"x", "y"});
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlAddItemsPath(), merge(1, 2));
    EXPECT_EQ(QString("x y a b c"), stored(2));
    EXPECT_EQ(QStringList({"PlayQueue", "Quiet"}), playLists());
    EXPECT_EQ(QStringList("5"), query("SELECT count(*) FROM items"));
    EXPECT_TRUE(log.contains("DEBUG", "adding whole playlist (id: 1) to playlist (id: 2)"));
    EXPECT_EQ(QString("Could not clear playlist. There is no playlist with this ID. (1)"),
              refusal(OrvoPlayListPlClearPath(), QVariantHash{{"plid", 1}}));
    expectInvariants();
}

TEST_F(AddWholePlayListTest, theItemsKeepEverythingButTheirPlace) {
    OrvoPlayListItem item = makeItem("t");
    item.setArtist("artist");
    item.setAlbum("album");
    item.setArtworkUrl("art:1");
    item.setGenre("genre");
    item.setDurationSeconds(321);
    expectDone(OrvoPlayListPlAddExternalItemsPath(),
               QVariantHash{{"plid", 2}, {"items", QVariantList{item.toHash()}}});
    const QString columns =
        "SELECT title || artist || album || artworkUrl || genre || durationSeconds || url ||"
        " serviceId || orvoRoles FROM items JOIN playlists_items ON item = uid";
    const QString before = query(columns + " WHERE playlist = 2").value(0);
    ASSERT_TRUE(before.startsWith("tartistalbumart:1genre321file:///music/t.flacfiles{"));
    expectDone(OrvoPlayListPlAddItemsPath(), merge(2, 1));
    EXPECT_EQ(before, query(columns + " WHERE playlist = 1 AND sequenceNumber = 3").value(0));
}

TEST_F(AddWholePlayListTest, aMergedSourceLeavesItsCollections) {
    expectDone(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", 1}, {"plid", 1}});
    expectDone(OrvoPlayListPlAddItemsPath(), merge(1, 2));
    EXPECT_EQ(QStringList("2"), query("SELECT playlist FROM collections_playlists"));
    expectInvariants();
}

TEST_F(AddWholePlayListTest, aPlaylistOntoItselfIsDoubledAndStays) {
    expectDone(OrvoPlayListPlAddItemsPath(), merge(1, 1));
    EXPECT_EQ(QString("a b c a b c"), stored(1));
    EXPECT_EQ(QStringList({"PlayQueue", "Party", "Quiet"}), playLists());
    expectInvariants();
}

TEST_F(AddWholePlayListTest, theQueueGivesItsItemsAndKeepsThem) {
    addItems(0, {"q", "r"});
    expectDone(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", 1}, {"plid", 0}});
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlAddItemsPath(), merge(0, 1));
    EXPECT_EQ(QString("a b c q r"), stored(1));
    EXPECT_EQ(QString("q r"), stored(0));
    EXPECT_EQ(QStringList("Unable to delete PlayList uid=0 from database"),
              log.errors().filter("Unable to delete"));
    EXPECT_EQ(QStringList({"0", "2"}),
              query("SELECT playlist FROM collections_playlists ORDER BY 1"));
    expectInvariants();
}

TEST_F(AddWholePlayListTest, aPlaylistMovesIntoTheQueue) {
    expectDone(OrvoPlayListPlAddItemsPath(), merge(1, 0));
    EXPECT_EQ(QString("a b c"), stored(0));
    EXPECT_EQ(QStringList({"PlayQueue", "Quiet"}), playLists());
}

TEST_F(AddWholePlayListTest, aRequestWithoutItemsAtAllMeansTheSame) {
    expectDone(OrvoPlayListPlAddItemsPath(),
               QVariantHash{{"plid", 2}, {"fromPlid", 1}, {"items", QVariantList()}});
    EXPECT_EQ(QString("a b c"), stored(2));
    EXPECT_EQ(QStringList({"PlayQueue", "Quiet"}), playLists());
}

TEST_F(AddWholePlayListTest, aSourceThatAddedNothingStays) {
    forbid("INSERT ON items");
    refusal(OrvoPlayListPlAddItemsPath(), merge(1, 2));
    allowAll();
    EXPECT_EQ(QString("a b c"), stored(1));
    EXPECT_EQ(QStringList({"PlayQueue", "Party", "Quiet"}), playLists());
    EXPECT_EQ(
        QString(
            "Could not add items to playlist. No items were added. (There is no playlist with this ID. (77))"),
        refusal(OrvoPlayListPlAddItemsPath(), merge(1, 77)));
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(AddWholePlayListTest, aSourceThatCannotBeDeletedIsLoggedAndTheAddStands) {
    forbid("DELETE ON playlists");
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlAddItemsPath(), merge(1, 2));
    EXPECT_EQ(QString("a b c"), stored(2));
    EXPECT_EQ(QString("a b c"), stored(1));
    EXPECT_TRUE(log.contains("ERROR", "Unable to delete PlayList uid=1 from database"));
    allowAll();
    expectDone(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 1}});
    expectInvariants();
}

TEST_F(AddWholePlayListTest, anItemThatIsNotAcceptableKeepsTheWholePlaylistWhereItIs) {
    // Such an entry can only come from a file that another program wrote.
    restartAfter("UPDATE items SET orvoRoles = '{\"type\":1,\"title\":\"b\"}' WHERE title = 'b'");
    EXPECT_EQ(QString("Could not add items to playlist. No items were added."
                      " (Missing title or type==audio or [resource uri and prePlayPath])"),
              refusal(OrvoPlayListPlAddItemsPath(), merge(1, 2)));
    EXPECT_EQ(QString("a b c"), stored(1));
    EXPECT_EQ(QString(), stored(2));
}

TEST_F(AddWholePlayListTest, anItemThatCannotBeAskedForKeepsTheWholePlaylistWhereItIs) {
    // Nor does the store ever give an item this uid.
    restartAfter("PRAGMA foreign_keys=0; UPDATE playlists_items SET item = 0 WHERE item = 2;"
                 " UPDATE items SET uid = 0 WHERE uid = 2");
    const LogCapture log("PlayLists");
    EXPECT_EQ(QString("Could not add items to playlist. No items were added."),
              refusal(OrvoPlayListPlAddItemsPath(), merge(1, 2)));
    EXPECT_TRUE(log.contains("ERROR", "Cannot read all items of playlist with plid: 1"));
    EXPECT_EQ(QString("a b c"), stored(1));
    EXPECT_EQ(QString(), stored(2));
}

TEST_F(AddWholePlayListTest, thousandsOfItemsMoveAtOnce) {
    run("WITH RECURSIVE n(i) AS (SELECT 4 UNION ALL SELECT i + 1 FROM n WHERE i < 3000)"
        " INSERT INTO items SELECT i, 't' || i, '', '', '', '', 0, 'file:///' || i, 'files', orvoRoles"
        " FROM n, (SELECT orvoRoles FROM items WHERE uid = 1);");
    run("INSERT INTO playlists_items SELECT 1, uid, uid - 1 FROM items WHERE uid > 3;");
    restart();
    expectDone(OrvoPlayListPlAddItemsPath(), merge(1, 2));
    EXPECT_EQ(QStringList("3000"),
              query("SELECT count(*) FROM playlists_items WHERE playlist = 2"));
    EXPECT_EQ(QStringList("t3000"),
              query("SELECT title FROM items JOIN playlists_items ON item = uid"
                    " WHERE playlist = 2 AND sequenceNumber = 2999"));
    expectInvariants();
}

class LimitedMergeTest : public AddWholePlayListTest {
protected:
    void SetUp() override {
        setSetting(OrvoPlayListsSettingsDataBaseItemsLimitPath(), 5);
        makeParty();
    }
};

TEST_F(LimitedMergeTest, theSourceGoesEvenWhenOnlyAPartFitted) {
    expectDone(OrvoPlayListPlAddItemsPath(), merge(1, 2));
    EXPECT_EQ(QString("a b"), stored(2));
    EXPECT_EQ(QStringList({"PlayQueue", "Quiet"}), playLists());
    expectInvariants();
}

TEST_F(LimitedMergeTest, theSourceStaysWhenNothingFitted) {
    addItems(2, {"x", "y"});
    EXPECT_EQ(QString("Could not add items to playlist. No items were added."
                      " (Unable to add more items to the playlist. Items reached limit.)"),
              refusal(OrvoPlayListPlAddItemsPath(), merge(1, 2)));
    EXPECT_EQ(QString("a b c"), stored(1));
    EXPECT_EQ(QString("x y"), stored(2));
}

} // namespace
