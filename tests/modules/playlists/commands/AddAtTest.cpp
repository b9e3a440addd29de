#include <QCoreApplication>

#include "CommandFixture.h"

namespace {

// Additions with places, by both commands: "Party" has a b c.
class AddAtTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    Answer addAt(const QStringList& titles, const QVariant& at, QVariantHash more = {}) {
        more.insert("plid", more.value("plid", 1));
        more.insert("items", itemHashes(titles));
        more.insert("at", at);
        return send(OrvoPlayListPlAddExternalItemsPath(), more);
    }
    Answer addPathsAt(const QVariantList& paths, const QVariant& at, QVariantHash more = {}) {
        more.insert("plid", more.value("plid", 1));
        more.insert("items", paths);
        more.insert("at", at);
        return send(OrvoPlayListPlAddItemsPath(), more);
    }
    QStringList uidsOf(int plid) {
        return query(QString("SELECT item FROM playlists_items WHERE playlist = %1"
                             " ORDER BY sequenceNumber")
                         .arg(plid));
    }

    FakeModules others;
};

const QString external = "Could not add external items to playlist. ";
const QString byPath = "Could not add items to playlist. ";
const QString oneEach = "No items were added. (Please give one position for each item.)";
const QString outside = "No items were added. (Position is not in valid range.)";

} // namespace

TEST_F(AddAtTest, onePositionIsThatOfTheFirstOfThem) {
    EXPECT_FALSE(addAt({"x", "y"}, 1).failed);
    EXPECT_EQ("a x y b c", stored(1));
    EXPECT_FALSE(addAt({"z"}, 5).failed);
    EXPECT_EQ("a x y b c z", stored(1));
    EXPECT_FALSE(addAt({"w"}, "0", {{"mode", "append"}}).failed);
    EXPECT_EQ("w a x y b c z", stored(1));
    expectInvariants();
}

TEST_F(AddAtTest, aListHasTheFinalPositionOfEach) {
    EXPECT_FALSE(addAt({"x", "y", "z"}, QVariantList{0, 2, 5}, {{"mode", 2}}).failed);
    EXPECT_EQ("x a y b c z", stored(1));
    EXPECT_FALSE(addAt({"q"}, QVariantList{0}, {{"plid", 0}}).failed);
    EXPECT_EQ("q", stored(0));
    expectInvariants();
}

TEST_F(AddAtTest, additionsByPathTakePlaces) {
    offer(others.files, "files:x", "x");
    offer(others.files, "files:y", "y");
    EXPECT_FALSE(addPathsAt({"files:x", "files:y"}, 2).failed);
    EXPECT_EQ("a b x y c", stored(1));
    // Each module is asked by itself, the places are those of the paths.
    const QString c = "playlists:item/" + uidsOf(1).at(4);
    const QString a = "playlists:item/" + uidsOf(1).at(0);
    EXPECT_FALSE(
        addPathsAt({"files:y", c, a, "files:x"}, QVariantList{0, 1, 2, 3}, {{"plid", 2}}).failed);
    EXPECT_EQ("y c a x", stored(2));
    expectInvariants();
}

TEST_F(AddAtTest, aWholePlaylistMovesToItsPlaces) {
    addItems(2, {"d", "e"});
    EXPECT_EQ(byPath + oneEach,
              refusal(OrvoPlayListPlAddItemsPath(),
                      QVariantHash{{"plid", 1}, {"fromPlid", 2}, {"at", QVariantList{0}}}));
    expectDone(OrvoPlayListPlAddItemsPath(),
               QVariantHash{{"plid", 1}, {"fromPlid", 2}, {"at", QVariantList{0, 4}}});
    EXPECT_EQ("d a b c e", stored(1));
    EXPECT_EQ(QStringList(), query("SELECT uid FROM playlists WHERE uid = 2"));
    expectInvariants();
}

TEST_F(AddAtTest, malformedPositionsAreRefused) {
    for (const QVariant& at :
         QVariantList{QVariant(), -1, 1.5, true, "x", "", QVariantHash{{"i32", 1}}, 4294967296.0,
                      QVariantList{}, QVariantList{-1, 0}, QVariantList{1, 0}, QVariantList{1, 1},
                      QVariantList{0, "x"}, QVariantList{0, 1.5}, QVariantList{true, 2}}) {
        SCOPED_TRACE(at.toString().toStdString());
        const LogCapture log("PlayLists");
        EXPECT_EQ(external + "Invalid position. (at)", addAt({"x", "y"}, at).message());
        EXPECT_EQ(QStringList("Cannot add items at invalid positions"), log.texts("ERROR"));
        EXPECT_EQ(byPath + "Invalid position. (at)",
                  addPathsAt({"files:x", "files:y"}, at).message());
    }
    EXPECT_TRUE(others.files.requests.isEmpty());
    EXPECT_EQ("a b c", stored(1));
}

TEST_F(AddAtTest, positionsOutsideOfTheListAreRefused) {
    offer(others.files, "files:x", "x");
    for (const QVariant& at : QVariantList{4, 0x7FFFFFFF, QVariantList{0, 5}}) {
        EXPECT_EQ(external + outside, addAt({"x", "y"}, at).message());
        EXPECT_EQ(byPath + outside, addPathsAt({"files:x", "files:x"}, at).message());
    }
    EXPECT_EQ("a b c", stored(1));
}

TEST_F(AddAtTest, aModeBesidePositionsMayOnlyBeAppend) {
    const QString text = "Positions go with the mode append only. (mode)";
    for (const QVariant& mode : QVariantList{0, "now", 1, "afterCurrent", 7, "x"}) {
        EXPECT_EQ(external + text, addAt({"x"}, 0, {{"mode", mode}}).message());
        EXPECT_EQ(byPath + text, addPathsAt({"files:x"}, 0, {{"mode", mode}}).message());
    }
    EXPECT_EQ("a b c", stored(1));
}

TEST_F(AddAtTest, aListOfPositionsIsForAllItemsOrNone) {
    offer(others.files, "files:x", "x");
    EXPECT_EQ(external + oneEach, addAt({"x", "y"}, QVariantList{0}).message());
    EXPECT_EQ(external + oneEach, addAt({"x"}, QVariantList{0, 1}).message());
    EXPECT_EQ(byPath + oneEach, addPathsAt({"files:x"}, QVariantList{0, 1}).message());
    // A path that names nothing, and one of an absent module.
    EXPECT_EQ(byPath + oneEach,
              addPathsAt({"files:x", "files:none"}, QVariantList{0, 1}).message());
    EXPECT_EQ(byPath + oneEach, addPathsAt({"files:x", "attic:x"}, QVariantList{0, 1}).message());
    // An item without roles is left out.
    QVariantHash bare = itemHash("y");
    bare.remove(OrvoPlayListItem::OrvoRoles());
    EXPECT_EQ(external + oneEach, send(OrvoPlayListPlAddExternalItemsPath(),
                                       QVariantHash{{"plid", 1},
                                                    {"items", QVariantList{itemHash("x"), bare}},
                                                    {"at", QVariantList{0, 1}}})
                                      .message());
    EXPECT_EQ("a b c", stored(1));
}

TEST_F(AddAtTest, aFolderDoesNotGoWithAListOfPositions) {
    others.files.keepPrepareRequests = true;
    const auto answers = [this](const QVariantHash& args) {
        const LateAnswer answer = sendLate(OrvoPlayListPlAddItemsPath(), args);
        // The first is a folder of two, the second names nothing: as many items as paths.
        while (!others.files.requests.isEmpty()) {
            const CMSetDataRequest request = others.files.requests.takeFirst();
            QVariantList items;
            for (const QVariant& path : request.value().toList()) {
                if (path.toString() == "files:folder")
                    items += itemHashes({"x", "y"});
            }
            request.reply().setValue(items);
        }
        QCoreApplication::processEvents();
        return answer;
    };
    const QVariantHash args{{"plid", 1}, {"items", QVariantList{"files:folder", "files:none"}}};
    QVariantHash list = args;
    list.insert("at", QVariantList{0, 4});
    EXPECT_EQ(byPath + oneEach, answers(list)->message());
    EXPECT_EQ("a b c", stored(1));
    QVariantHash one = args;
    one.insert("at", 1);
    EXPECT_FALSE(answers(one)->failed);
    EXPECT_EQ("a x y b c", stored(1));
}

TEST_F(AddAtTest, theLimitCutsARunShortAndRefusesAList) {
    setSetting(CMPath("settings:playlists/databaseItemsLimit"), OrvoValue::fromI32(5).toVariant());
    restart();
    EXPECT_EQ(external + "No items were added. (Unable to add more items to the playlist. Items "
                         "reached limit.)",
              addAt({"x", "y", "z"}, QVariantList{0, 1, 2}).message());
    EXPECT_EQ("a b c", stored(1));
    EXPECT_FALSE(addAt({"x", "y", "z"}, 1).failed);
    EXPECT_EQ("a x y b c", stored(1));
    expectInvariants();
}

TEST_F(AddAtTest, positionsAreJudgedByTheListAsItIsWhenTheItemsAreThere) {
    others.files.keepPrepareRequests = true;
    const LateAnswer answer = sendLate(
        OrvoPlayListPlAddItemsPath(), {{"plid", 1}, {"items", QVariantList{"files:x"}}, {"at", 3}});
    expectDone(OrvoPlayListPlRemoveItemsPath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{0}}});
    others.files.requests.takeFirst().reply().setValue(itemHashes({"x"}));
    QCoreApplication::processEvents();
    EXPECT_EQ(byPath + outside, answer->message());
    EXPECT_EQ("b c", stored(1));
}
