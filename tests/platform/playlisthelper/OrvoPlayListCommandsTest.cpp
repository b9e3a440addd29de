#include "OrvoPlayListCommands.h"

#include <climits>
#include <gtest/gtest.h>

#include "Printing.h"

namespace {
template <typename Record>
Record with(const QString& key, const QVariant& value) {
    return Record(QVariantHash{{key, value}});
}
} // namespace

TEST(OrvoPlayListCommands, anIdThatWasForgottenReadsMinusOne) {
    EXPECT_EQ(OrvoPlayListPlId().plid(), -1);
    EXPECT_EQ(OrvoPlayListPlSetName().plid(), -1);
    EXPECT_EQ(OrvoPlayListPlSetShuffle().plid(), -1);
    EXPECT_EQ(OrvoPlayListPlSetRepeat().plid(), -1);
    EXPECT_EQ(OrvoPlayListPlRemoveItems().plid(), -1);
    EXPECT_EQ(OrvoPlayListPlMoveItems().plid(), -1);
    EXPECT_EQ(OrvoPlayListPlMoveItems().to(), -1);
    EXPECT_EQ(OrvoPlayListPlAddItems().plid(), -1);
    EXPECT_EQ(OrvoPlayListPlAddItems().fromPlid(), -1);
    EXPECT_EQ(OrvoPlayListPlAddExternalItems().plid(), -1);
    EXPECT_EQ(OrvoPlayListClId().clid(), -1);
    EXPECT_EQ(OrvoPlayListClAddRemoveItem().plid(), -1);
    EXPECT_EQ(OrvoPlayListClAddRemoveItem().clid(), -1);
    EXPECT_EQ(with<OrvoPlayListPlId>("plid", QVariant()).plid(), -1);
    EXPECT_EQ(with<OrvoPlayListPlId>("plid", "queue").plid(), -1);
    EXPECT_EQ(with<OrvoPlayListPlId>("plid", false).plid(), -1);
    EXPECT_EQ(with<OrvoPlayListPlId>("plid", 0).plid(), 0);
}

TEST(OrvoPlayListCommands, theAttributeNamesAreFixed) {
    EXPECT_EQ(OrvoPlayListPlId::Plid(), "plid");
    EXPECT_EQ(OrvoPlayListPlCreate::Name(), "name");
    EXPECT_EQ(OrvoPlayListPlSetName::Name(), "name");
    EXPECT_EQ(OrvoPlayListPlSetShuffle::Mode(), "mode");
    EXPECT_EQ(OrvoPlayListPlSetRepeat::Mode(), "mode");
    EXPECT_EQ(OrvoPlayListPlRemoveItems::Items(), "items");
    EXPECT_EQ(OrvoPlayListPlMoveItems::To(), "to");
    EXPECT_EQ(OrvoPlayListPlAddItems::Mode(), "mode");
    EXPECT_EQ(OrvoPlayListPlAddItems::FromPlid(), "fromPlid");
    EXPECT_EQ(OrvoPlayListPlAddItems::Items(), "items");
    EXPECT_EQ(OrvoPlayListPlAddExternalItems::Mode(), "mode");
    EXPECT_EQ(OrvoPlayListClCreate::Name(), "name");
    EXPECT_EQ(OrvoPlayListClId::Clid(), "clid");
    EXPECT_EQ(OrvoPlayListClAddRemoveItem::Plid(), "plid");
    EXPECT_EQ(OrvoPlayListClAddRemoveItem::Clid(), "clid");
}

TEST(OrvoPlayListCommands, aModeIsKeptByNameAndMayBeSentEitherWay) {
    OrvoPlayListPlSetShuffle shuffle;
    shuffle.setPlid(3);
    shuffle.setMode(OrvoPlayListPlShuffleMode::On);
    EXPECT_EQ(shuffle.toHash(), QVariantHash({{"plid", 3}, {"mode", "shuffleOn"}}));
    EXPECT_EQ(shuffle.mode(), OrvoPlayListPlShuffleMode::On);
    EXPECT_EQ(with<OrvoPlayListPlSetShuffle>("mode", 1).mode(), OrvoPlayListPlShuffleMode::On);
    EXPECT_EQ(with<OrvoPlayListPlSetShuffle>("mode", "1").mode(), OrvoPlayListPlShuffleMode::On);
    EXPECT_EQ(with<OrvoPlayListPlSetRepeat>("mode", "repeatAll").mode(),
              OrvoPlayListPlRepeatMode::All);
    EXPECT_EQ(with<OrvoPlayListPlSetRepeat>("mode", 2.0).mode(), OrvoPlayListPlRepeatMode::All);
    EXPECT_EQ(with<OrvoPlayListPlAddItems>("mode", "afterCurrent").mode(),
              OrvoPlayListAddPosition::AfterCurrent);
    EXPECT_EQ(with<OrvoPlayListPlAddExternalItems>("mode", 0).mode(), OrvoPlayListAddPosition::Now);
}

TEST(OrvoPlayListCommands, aModeWithoutANameIsSeenAsItWasSent) {
    for (int mode : {-1, 2, 99, INT_MIN, INT_MAX}) {
        EXPECT_EQ(int(with<OrvoPlayListPlSetShuffle>("mode", mode).mode()), mode);
        OrvoPlayListPlSetShuffle record;
        record.setMode(OrvoPlayListPlShuffleMode::Enum(mode));
        EXPECT_EQ(int(record.mode()), mode);
        EXPECT_EQ(record.attribute("mode"), QVariant(QString::number(mode)));
    }
}

TEST(OrvoPlayListCommands, aMissingOrUnreadableModeIsAboveEveryMode) {
    EXPECT_FALSE(OrvoPlayListPlAddItems().containsMode());
    EXPECT_GT(int(OrvoPlayListPlSetShuffle().mode()), 1);
    EXPECT_GT(int(with<OrvoPlayListPlSetRepeat>("mode", "often").mode()), 3);
    EXPECT_GT(int(with<OrvoPlayListPlAddItems>("mode", true).mode()), 2);
}

TEST(OrvoPlayListCommands, positionsAreListsOfNumbers) {
    OrvoPlayListPlMoveItems move;
    move.setPlid(1);
    move.setItems({8, 6});
    move.setTo(2);
    EXPECT_EQ(move.toHash(),
              QVariantHash({{"plid", 1}, {"items", QVariantList({8, 6})}, {"to", 2}}));
    EXPECT_EQ(move.items(), QList<int>({8, 6}));
    EXPECT_EQ(with<OrvoPlayListPlRemoveItems>("items", QVariantList({"3", "x"})).items(),
              QList<int>({3, -1}));
}

TEST(OrvoPlayListCommands, pathsToAddMayBeTextsOrPaths) {
    OrvoPlayListPlAddItems add;
    add.setFromPlid(4);
    add.setItems({CMPath("files:a%20b").toQVariant(), QVariant::fromValue(CMPath("files:c"))});
    ASSERT_EQ(add.items().size(), 2);
    EXPECT_EQ(CMPath::fromQVariant(add.items().at(0)), CMPath("files:a b"));
    EXPECT_EQ(CMPath::fromQVariant(add.items().at(1)), CMPath("files:c"));
    EXPECT_EQ(add.fromPlid(), 4);
}

TEST(OrvoPlayListItem, anEmptyOneHasNoIdAndNoPlace) {
    const OrvoPlayListItem item;
    EXPECT_TRUE(item.isEmpty());
    EXPECT_EQ(item.uid(), -1);
    EXPECT_EQ(item.sequenceNumber(), -1);
    EXPECT_EQ(item.durationSeconds(), 0);
    EXPECT_EQ(item.title(), QString());
}

TEST(OrvoPlayListItem, everyAttributeSurvivesTheHashForm) {
    OrvoPlayListItem item;
    item.setSequenceNumber(4);
    item.setUid(77);
    item.setTitle("Title");
    item.setArtist("Artist");
    item.setAlbum("Album");
    item.setArtworkUrl("http://art");
    item.setGenre("Genre");
    item.setDurationSeconds(321);
    item.setUrl("file:///x");
    item.setServiceId("files");
    item.setOrvoRoles("{\"type\":3}");
    EXPECT_EQ(item.toHash(), QVariantHash({{"sequenceNumber", 4},
                                           {"uid", 77},
                                           {"title", "Title"},
                                           {"artist", "Artist"},
                                           {"album", "Album"},
                                           {"artworkUrl", "http://art"},
                                           {"genre", "Genre"},
                                           {"durationSeconds", 321},
                                           {"url", "file:///x"},
                                           {"serviceId", "files"},
                                           {"orvoRoles", "{\"type\":3}"}}));
    const OrvoPlayListItem again(OrvoHash(item.toVariant()).toHash());
    EXPECT_EQ(again, item);
    EXPECT_EQ(again.durationSeconds(), 321);
    EXPECT_EQ(again.orvoRoles(), "{\"type\":3}");
}

TEST(OrvoPlayListCommands, externalItemsTravelAsHashes) {
    OrvoPlayListItem item(QVariantHash{{"title", "a"}, {"rating", 5}});
    OrvoPlayListPlAddExternalItems add;
    add.setItems({item, OrvoPlayListItem()});
    const OrvoPlayListPlAddExternalItems again(add.toVariant());
    ASSERT_EQ(again.items().size(), 2);
    EXPECT_EQ(again.items().at(0), item);
    EXPECT_TRUE(again.items().at(1).isEmpty());
}
