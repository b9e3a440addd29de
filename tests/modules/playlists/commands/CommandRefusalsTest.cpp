#include <QJsonDocument>
#include <QJsonObject>

#include "CommandFixture.h"

namespace {

// A check of a command, and requests that fail it and may fail those behind it as well. "%1" in the
// lines stands for the request's playlist.
struct Refusal {
    Path path;
    const char* message;
    QStringList lines;
    QList<QVariantHash> requests;
};

const QVariantList none;
const QVariantList first{0};
const QVariantList beyond{9};

QStringList invalidIdAnd(const QString& line) {
    return {"Cannot find playlist with invalid ID : -1", line};
}
QStringList unknown77And(const QString& line) {
    return {"There is no playlist with ID : 77", line};
}
const QStringList unknown77 = unknown77And("Playlist id: 77 doesn't exist");

// Commands that are refused by a check: the first that fails is what the caller hears of, before
// anything is stored.
class CommandRefusalsTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    void forbidAllChanges() {
        for (const char* table :
             {"playlists", "items", "playlists_items", "collections", "collections_playlists"}) {
            for (const char* change : {"INSERT", "UPDATE", "DELETE"})
                forbid(QStringLiteral("%1 ON %2").arg(change, table));
        }
    }
    static QString text(const Refusal& refusal, const QVariantHash& args) {
        return refusal.path().toString() + ' ' +
               QJsonDocument(QJsonObject::fromVariantHash(args)).toJson(QJsonDocument::Compact);
    }

    // The checks of a command stand in its order.
    static QList<Refusal> refusals() {
        const QVariantList item = itemHashes({"d"});
        OrvoRoles untitled;
        untitled.setType(OrvoRolesType::Audio);
        const QVariantList badItem{itemWithRoles(untitled).toHash()};
        return {
            {OrvoPlayListPlCreatePath,
             "Could not create playlist. Please provide a non-empty string as field. (name)",
             {"Cannot create playlist with empty name"},
             {{{"name", ""}}, {}}},

            {OrvoPlayListPlSetNamePath,
             "Could not set playlist name. Cannot find playlist with invalid ID.",
             invalidIdAnd("Cannot rename playlist id: -1"),
             {{{"plid", -1}, {"name", "x"}}, {{"plid", -1}, {"name", ""}}}},
            {OrvoPlayListPlSetNamePath,
             "Could not set playlist name. Cannot rename PlayQueue.",
             {"Cannot rename playqueue"},
             {{{"plid", 0}, {"name", "x"}}, {{"plid", 0}, {"name", ""}}}},
            {OrvoPlayListPlSetNamePath,
             "Could not set playlist name. Please provide a non-empty string as field. (name)",
             {"Cannot rename playlist id:%1 to empty string"},
             {{{"plid", 1}, {"name", ""}}, {{"plid", 77}, {"name", ""}}}},
            {OrvoPlayListPlSetNamePath,
             "Could not set playlist name. There is no playlist with this ID. (77)",
             unknown77,
             {{{"plid", 77}, {"name", "x"}}}},

            {OrvoPlayListPlSetShufflePath,
             "Could not set shuffle mode on playlist. Cannot find playlist with invalid ID.",
             invalidIdAnd("Cannot set shuffle for invalid playlist id: -1"),
             {{{"plid", -1}, {"mode", 1}}, {{"plid", -1}, {"mode", 2}}}},
            {OrvoPlayListPlSetShufflePath,
             "Could not set shuffle mode on playlist. Invalid shuffle mode. (shuffle-mode)",
             {"Cannot set shuffle mode: 2"},
             {{{"plid", 1}, {"mode", 2}}, {{"plid", 77}, {"mode", 2}}}},
            {OrvoPlayListPlSetShufflePath,
             "Could not set shuffle mode on playlist. There is no playlist with this ID. (77)",
             unknown77,
             {{{"plid", 77}, {"mode", 1}}}},

            {OrvoPlayListPlSetRepeatPath,
             "Could not set repeat mode on playlist. Cannot find playlist with invalid ID.",
             invalidIdAnd("Cannot set repeat for invalid playlist id: -1"),
             {{{"plid", -1}, {"mode", 1}}, {{"plid", -1}, {"mode", 4}}}},
            {OrvoPlayListPlSetRepeatPath,
             "Could not set repeat mode on playlist. Invalid repeat mode. (repeat-mode)",
             {"Cannot set repeat mode: 4"},
             {{{"plid", 1}, {"mode", 4}}, {{"plid", 77}, {"mode", 4}}}},
            {OrvoPlayListPlSetRepeatPath,
             "Could not set repeat mode on playlist. There is no playlist with this ID. (77)",
             unknown77,
             {{{"plid", 77}, {"mode", 1}}}},

            {OrvoPlayListPlSetOrderPath,
             "Could not set order of playlist. Cannot find playlist with invalid ID.",
             invalidIdAnd("Cannot set order of invalid playlist id: -1"),
             {{{"plid", -1}, {"order", QVariantList{0, 1, 2}}}}},
            {OrvoPlayListPlSetOrderPath,
             "Could not set order of playlist. There is no playlist with this ID. (77)",
             unknown77,
             {{{"plid", 77}, {"order", none}}}},
            {OrvoPlayListPlSetOrderPath,
             "Could not set order of playlist. Please name every position once. (order)",
             {"Order of playlist id: %1 must name every position once"},
             {{{"plid", 2}},
              {{"plid", 2}, {"order", "012"}},
              {{"plid", 1}, {"order", QVariantList{1, 0}}},
              {{"plid", 1}, {"order", QVariantList{1, 0, 1}}},
              {{"plid", 1}, {"order", QVariantList{1, "x", 2.5}}}}},

            {OrvoPlayListPlDeletePath,
             "Could not delete playlist. Cannot find playlist with invalid ID.",
             invalidIdAnd("Cannot delete invalid playlist id: -1"),
             {{{"plid", -1}}}},
            {OrvoPlayListPlDeletePath,
             "Could not delete playlist. Cannot delete PlayQueue.",
             {"Cannot delete playqueue"},
             {{{"plid", 0}}}},
            {OrvoPlayListPlDeletePath,
             "Could not delete playlist. There is no playlist with this ID. (77)",
             unknown77,
             {{{"plid", 77}}}},

            {OrvoPlayListPlClearPath,
             "Could not clear playlist. Cannot find playlist with invalid ID.",
             invalidIdAnd("Cannot clear items from invalid playlist id: -1"),
             {{{"plid", -1}}}},
            {OrvoPlayListPlClearPath,
             "Could not clear playlist. There is no playlist with this ID. (77)",
             unknown77,
             {{{"plid", 77}}}},

            {OrvoPlayListPlRemoveItemsPath,
             "Could not remove items from playlist. Cannot find playlist with invalid ID.",
             invalidIdAnd("Cannot delete items from invalid playlist id: -1"),
             {{{"plid", -1}, {"items", first}},
              {{"plid", -1}, {"items", none}},
              {{"plid", -1}, {"items", beyond}}}},
            {OrvoPlayListPlRemoveItemsPath,
             "Could not remove items from playlist. Please select one or more items to remove.",
             {"Cannot delete zero items from playlist id: %1"},
             {{{"plid", 1}, {"items", none}}, {{"plid", 77}, {"items", none}}}},
            {OrvoPlayListPlRemoveItemsPath,
             "Could not remove items from playlist. There is no playlist with this ID. (77)",
             unknown77,
             {{{"plid", 77}, {"items", first}}, {{"plid", 77}, {"items", beyond}}}},

            {OrvoPlayListPlMoveItemspath,
             "Could not move items in playlist. Cannot find playlist with invalid ID.",
             invalidIdAnd("Cannot move items in invalid playlist id: -1"),
             {{{"plid", -1}, {"to", 0}, {"items", first}},
              {{"plid", -1}, {"to", -1}, {"items", none}},
              {{"plid", -1}, {"to", 0}, {"items", none}},
              {{"plid", -1}, {"to", -1}, {"items", first}},
              {{"plid", -1}, {"to", 3}, {"items", first}},
              {{"plid", -1}, {"to", 0}, {"items", beyond}}}},
            {OrvoPlayListPlMoveItemspath,
             "Could not move items in playlist. Please select one or more items to move.",
             {"Please select one or more items to move in playlist id: %1"},
             {{{"plid", 1}, {"to", 0}, {"items", none}},
              {{"plid", 1}, {"to", -1}, {"items", none}},
              {{"plid", 77}, {"to", 0}, {"items", none}},
              {{"plid", 1}, {"to", 3}, {"items", none}}}},
            {OrvoPlayListPlMoveItemspath,
             "Could not move items in playlist. Cannot move items to negative position.",
             {"Cannot move items to negative position in playlist id: %1"},
             {{{"plid", 1}, {"to", -1}, {"items", first}},
              {{"plid", 77}, {"to", -1}, {"items", first}},
              {{"plid", 1}, {"to", -1}, {"items", beyond}}}},
            {OrvoPlayListPlMoveItemspath,
             "Could not move items in playlist. There is no playlist with this ID. (77)",
             unknown77,
             {{{"plid", 77}, {"to", 0}, {"items", first}},
              {{"plid", 77}, {"to", 3}, {"items", first}},
              {{"plid", 77}, {"to", 0}, {"items", beyond}}}},
            {OrvoPlayListPlMoveItemspath,
             "Could not move items in playlist. Cannot move items, sequence number is not in valid range.",
             {"Cannot move items, sequence number is not in valid range"},
             {{{"plid", 1}, {"to", 3}, {"items", first}},
              {{"plid", 1}, {"to", 3}, {"items", beyond}},
              {{"plid", 2}, {"to", 0}, {"items", first}}}},
            {OrvoPlayListPlMoveItemspath,
             "Could not move items in playlist. Move items failed",
             {"Unable to move items (1,3,) to seqnum 0 in playlist id: 1"},
             {{{"plid", 1}, {"to", 0}, {"items", QVariantList{1, 3}}}}},

            {OrvoPlayListPlPlayPath,
             "Could not start playback on playlist. Cannot find playlist with invalid ID.",
             invalidIdAnd("Cannot play invalid playlist id: -1"),
             {{{"plid", -1}}}},
            {OrvoPlayListPlPlayPath,
             "Could not start playback on playlist. There is no playlist with this ID. (77)",
             unknown77,
             {{{"plid", 77}}}},
            {OrvoPlayListPlPlayPath,
             "Could not start playback on playlist. There are no items in the playlist.",
             {},
             {{{"plid", 2}}, {{"plid", 0}}}},

            {OrvoPlayListPlAddExternalItemsPath,
             "Could not add external items to playlist. Cannot find playlist with invalid ID.",
             invalidIdAnd("Cannot add items to invalid playlist id: -1"),
             {{{"plid", -1}, {"items", item}},
              {{"plid", -1}, {"items", none}},
              {{"plid", -1}, {"items", badItem}}}},
            {OrvoPlayListPlAddExternalItemsPath,
             "Could not add external items to playlist. Please select one or more items to add.",
             {"Cannot add zero items to playlist id: %1"},
             {{{"plid", 1}, {"items", none}}, {{"plid", 77}, {"items", none}}}},
            {OrvoPlayListPlAddExternalItemsPath,
             "Could not add external items to playlist. There is no playlist with this ID. (77)",
             unknown77,
             {{{"plid", 77}, {"items", item}}, {{"plid", 77}, {"items", badItem}}}},
            {OrvoPlayListPlAddExternalItemsPath,
             "Could not add external items to playlist. No items were added.",
             {"Error adding items to list", "No items were added to playlist id: 1"},
             {{{"plid", 1}, {"items", item}, {"mode", 3}}}},

            {OrvoPlayListPlAddItemsPath,
             "Could not add items to playlist. Cannot find playlist with invalid ID.",
             {"Cannot find playlist with invalid ID : -1"},
             {{{"plid", -1}, {"items", QVariantList{"files:a"}}}, {{"plid", -1}, {"fromPlid", 2}}}},
            {OrvoPlayListPlAddItemsPath,
             "Could not add items to playlist. Please select one or more items to add.",
             {"There isn't any items to add to playlist id: %1"},
             {{{"plid", 1}, {"fromPlid", 2}}, {{"plid", 77}, {"fromPlid", 2}}}},
            {OrvoPlayListPlAddItemsPath,
             "Could not add items to playlist. Please select one or more items to add.",
             unknown77And("There isn't any items to add to playlist id: 1"),
             {{{"plid", 1}, {"fromPlid", 77}}}},
            {OrvoPlayListPlAddItemsPath,
             "Could not add items to playlist. Please select one or more items to add.",
             {"There is no playlist with ID : -1",
              "There isn't any items to add to playlist id: 1"},
             {{{"plid", 1}}}},
            {OrvoPlayListPlAddItemsPath,
             "Could not add items to playlist. No items were added. (There is no playlist with this ID. (77))",
             {"Cannot find playlist with plid: 77"},
             {{{"plid", 77}, {"fromPlid", 1}}}},

            {OrvoPlayListClCreatePath,
             "Could not create collection. Please provide a non-empty string as field. (name)",
             {"Cannot create collection with empty name"},
             {{{"name", ""}}}},
            {OrvoPlayListClDeletePath,
             "Could not delete collection. There is no collection with this ID. (7)",
             {"Unable to find collection id: 7"},
             {{{"clid", 7}}}},
            {OrvoPlayListClDeletePath,
             "Could not delete collection. There is no collection with this ID. (-1)",
             {"Unable to find collection id: -1"},
             {{{"clid", -1}}}},

            {OrvoPlayListClAddItemPath,
             "Could not add items to collection. Cannot find playlist with invalid ID.",
             {"Cannot find playlist with invalid ID : -1"},
             {{{"clid", 1}, {"plid", -1}}, {{"clid", 9}, {"plid", -1}}}},
            {OrvoPlayListClAddItemPath,
             "Could not add items to collection. There is no collection with this ID. (9)",
             {"Collection id: 9doesn't exist"},
             {{{"clid", 9}, {"plid", 1}}, {{"clid", 9}, {"plid", 2}}, {{"clid", 9}, {"plid", 77}}}},
            {OrvoPlayListClAddItemPath,
             "Could not add items to collection. There is no playlist with this ID. (77)",
             unknown77And("Unable to add playList to collection, playlist id: 77 doesn't exist"),
             {{{"clid", 1}, {"plid", 77}}}},

            {OrvoPlayListClRemoveItemPath,
             "Could not remove items from collection. Cannot find playlist with invalid ID.",
             {"Cannot find playlist with invalid ID : -1"},
             {{{"clid", 1}, {"plid", -1}}, {{"clid", 9}, {"plid", -1}}}},
            {OrvoPlayListClRemoveItemPath,
             "Could not remove items from collection. There is no collection with this ID. (9)",
             {"Collection id: 9doesn't exist"},
             {{{"clid", 9}, {"plid", 1}}, {{"clid", 9}, {"plid", 2}}, {{"clid", 9}, {"plid", 77}}}},
            {OrvoPlayListClRemoveItemPath,
             "Could not remove items from collection. There is no playlist with this ID. (77)",
             unknown77And(
                 "Unable to remove playList from collection, playlist id: 77 doesn't exist"),
             {{{"clid", 1}, {"plid", 77}}}},
        };
    }
};

TEST_F(CommandRefusalsTest, refusalsAreAnsweredAndLogged) {
    EXPECT_EQ(QStringList("plPrepareItems"), handlersWithout(refusals())) << "answers always";
    forbidAllChanges();
    for (const Refusal& row : refusals()) {
        for (const QVariantHash& args : row.requests) {
            SCOPED_TRACE(qPrintable(text(row, args)));
            const LogCapture log("PlayLists");
            EXPECT_EQ(QString(row.message), refusal(row.path(), args));
            QStringList lines = row.lines;
            EXPECT_EQ(lines.replaceInStrings("%1", args.value("plid").toString()), log.errors());
            EXPECT_EQ(QStringList(), log.texts("INFO"));
        }
    }
    allowAll();
    EXPECT_EQ(QString("a b c"), stored(1));
    EXPECT_EQ(QStringList({"PlayQueue", "Party", "Quiet"}),
              query("SELECT name FROM playlists ORDER BY uid"));
    EXPECT_EQ(QStringList("Box"), query("SELECT name FROM collections"));
    EXPECT_EQ(QStringList("1/2"),
              query("SELECT collection || '/' || playlist FROM collections_playlists"));
    expectInvariants();
}

TEST_F(CommandRefusalsTest, playingIsRefusedBeforeAnItemIsRead) {
    run("ALTER TABLE items RENAME TO elsewhere;");
    for (const Refusal& row : refusals()) {
        if (row.path != OrvoPlayListPlPlayPath)
            continue;
        for (const QVariantHash& args : row.requests)
            EXPECT_EQ(QString(row.message), refusal(row.path(), args));
    }
    run("ALTER TABLE elsewhere RENAME TO items;");
}

// The items are gathered first: the target may come and go meanwhile.
TEST_F(CommandRefusalsTest, addingByPathAsksTheSourceBeforeItMissesThePlaylist) {
    FakeModules others;
    EXPECT_EQ(
        QString(
            "Could not add items to playlist. No items were added. (There is no playlist with this ID. (77))"),
        refusal(OrvoPlayListPlAddItemsPath(),
                QVariantHash{{"plid", 77}, {"items", QVariantList{"files:x"}}}));
    EXPECT_EQ(1, others.files.requests.size());
}

} // namespace
