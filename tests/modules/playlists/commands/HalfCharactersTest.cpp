#include <QJsonDocument>
#include <QJsonObject>

#include "CommandFixture.h"

namespace {

// Texts with half of a surrogate pair, which is no character, in items of other modules.
class HalfCharactersTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    static QString withHalf(const QString& start, ushort half) {
        return start + QChar(half) + QStringLiteral("z");
    }
    static QString replaced(const QString& start) { return start + QChar(0xfffd) + "z"; }

    static OrvoPlayListItem item() {
        OrvoPlayListItem item = makeItem("Sunday");
        item.setTitle(withHalf("a", 0xd83c));
        item.setArtist(withHalf("b", 0xdf55));
        item.setUrl(withHalf("file:///c", 0xd83c));
        item.setOrvoRoles(item.orvoRoles().replace("Sunday", withHalf("d", 0xd83c)));
        return item;
    }

    void expectReplaced() {
        const OrvoPlayListItem stored(
            send(OrvoPlayListPlPrepareItemsPath(), QStringList{"playlists:item/4"})
                .value.toList()
                .value(0)
                .toHash());
        EXPECT_EQ(replaced("a"), stored.title());
        EXPECT_EQ(replaced("b"), stored.artist());
        EXPECT_EQ(replaced("file:///c"), stored.url());
        EXPECT_TRUE(stored.orvoRoles().contains('"' + replaced("d") + '"'))
            << stored.orvoRoles().toStdString();
        EXPECT_EQ(QStringList(replaced("d")), titles(2));
        EXPECT_EQ(QStringList(replaced("a")), query("SELECT title FROM items WHERE uid = 4"));
    }

    FakeModules others;
};

TEST_F(HalfCharactersTest, arePreparedAndReplacedOnce) {
    others.files.items.insert("files:half", item());
    expectDone(OrvoPlayListPlAddItemsPath(),
               QVariantHash{{"plid", 2}, {"items", QStringList{"files:half"}}});
    expectReplaced();
    restart();
    expectReplaced();
}

TEST_F(HalfCharactersTest, areHandedOverAndReplacedOnce) {
    expectDone(OrvoPlayListPlAddExternalItemsPath(),
               QVariantHash{{"plid", 2}, {"items", QVariantList{item().toHash()}}});
    expectReplaced();
    restart();
    expectReplaced();
}

TEST_F(HalfCharactersTest, areReplacedWhereTheRolesEscapeThem) {
    OrvoPlayListItem escaped = makeItem("Sunday");
    escaped.setOrvoRoles(escaped.orvoRoles().replace("Sunday", R"(e\ud83cz)"));
    expectDone(OrvoPlayListPlAddExternalItemsPath(),
               QVariantHash{{"plid", 2}, {"items", QVariantList{escaped.toHash()}}});
    EXPECT_EQ(QStringList(replaced("e")), titles(2));
    restart();
    EXPECT_EQ(QStringList(replaced("e")), titles(2));
}

TEST_F(HalfCharactersTest, wholePairsStay) {
    const QString note = QString::fromUtf8("🍕");
    addItems(2, {note});
    EXPECT_EQ(QStringList(note), titles(2));
    EXPECT_EQ(note, stored(2));
}

} // namespace
