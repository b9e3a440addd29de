#include <QJsonDocument>

#include "ModelFixture.h"

// The roles of one item as user interfaces and the player get them.
class PlayListRolesTest : public ModelFixture {
protected:
    static OrvoPlayListItem stored(const QString& roles) {
        OrvoPlayListItem item;
        item.setUid(42);
        item.setSequenceNumber(7);
        item.setOrvoRoles(roles);
        return item;
    }
};

TEST_F(PlayListRolesTest, storedRolesArePassedOnWithIdPlacePathAndPlayLogic) {
    const OrvoRoles roles = playList("").itemToOrvoRoles(
        stored(R"({"title":"Song","type":3,"id":"old","path":"files:a","value":{"string":"old"},)"
               R"("mediaData":{"metaData":{"artist":"Someone","prePlayPath":"files:pre"},)"
               R"("resources":[{"uri":"file:///a"}]},"unknown":5})"));
    EXPECT_EQ("Song", roles.title().toString());
    EXPECT_EQ(3, roles.type());
    EXPECT_EQ("42", roles.id());
    EXPECT_EQ("playlists:item/42", roles.path().toString());
    EXPECT_EQ(QVariantHash({{"i32", 7}}), roles.value().toHash());
    const OrvoMediaData media = roles.mediaData();
    EXPECT_EQ("playlists:playlogic", media.metaData().playLogicPath().toString());
    EXPECT_EQ("Someone", media.metaData().artist());
    EXPECT_EQ("files:pre", media.metaData().prePlayPath().toString());
    ASSERT_EQ(1, media.resources().size());
    EXPECT_EQ("file:///a", media.resources().at(0).uri());
    EXPECT_EQ(5, roles.attribute("unknown").toInt());
}

TEST_F(PlayListRolesTest, rolesWithoutMediaDataStillNameThePlayLogic) {
    const OrvoRoles roles = playList("").itemToOrvoRoles(stored(R"({"title":"Song"})"));
    EXPECT_EQ("playlists:playlogic", roles.mediaData().metaData().playLogicPath().toString());
}

TEST_F(PlayListRolesTest, textThatCannotBeReadIsLoggedAndLeavesTheItemItsIdentity) {
    PlayListBase& pl = playList("");
    for (const char* text : {"", "{\"title\":", "{\"title\":\"Song\"} x", "{title:1}", "Song"}) {
        SCOPED_TRACE(text);
        // The reason is the parser's own word for it.
        QJsonParseError reason;
        QJsonDocument::fromJson(text, &reason);
        const LogCapture log("PlayLists");
        const OrvoRoles roles = pl.itemToOrvoRoles(stored(text));
        EXPECT_EQ(QStringList("Failed to parse data, error: " + reason.errorString()),
                  log.errors());
        EXPECT_EQ("", roles.title().toString());
        EXPECT_EQ("42", roles.id());
        EXPECT_EQ(7, roles.value().i32());
        EXPECT_EQ("playlists:item/42", roles.path().toString());
        EXPECT_EQ("playlists:playlogic", roles.mediaData().metaData().playLogicPath().toString());
    }
    const LogCapture log("PlayLists");
    pl.itemToOrvoRoles(stored("Song"));
    EXPECT_EQ(QStringList("Failed to parse data, error: illegal value"), log.errors());
    pl.itemToOrvoRoles(stored("{}"));
    EXPECT_EQ(1, log.errors().size());
}

TEST_F(PlayListRolesTest, entriesOfTheStoreSayWhereTheyStand) {
    PlayListBase& pl = playList("abc");
    EXPECT_TRUE(pl.moveItem(2, 0));
    const QList<OrvoPlayListItem> entries = pl.getItems(0, 2);
    ASSERT_EQ(3, entries.size());
    QStringList found;
    for (const OrvoPlayListItem& entry : entries) {
        const OrvoRoles roles = pl.itemToOrvoRoles(entry);
        EXPECT_EQ(QString::number(entry.uid()), roles.id());
        found.append(roles.title().toString() + QString::number(roles.value().i32()));
    }
    EXPECT_EQ(QStringList({"c0", "a1", "b2"}), found);
}

// An invalid value is as good as none.
TEST_F(PlayListRolesTest, rowsAreReadWithoutItemsAndAreWhatTheItemsGive) {
    PlayListBase& pl = playList("");
    QList<OrvoPlayListItem> items;
    for (const char* text :
         {R"({"title":"Song","type":3,"unknown":5,"mediaData":{"metaData":{"artist":"Someone"}}})",
          R"({"title":"Sång","value":{"string":"old"},"mediaData":{"resources":[{"uri":"a"}]}})",
          R"({"title":"Escaped \n","type":3})", R"({"title":"🎵"})", "no roles", "", "{}",
          R"({"type":3,"mediaData":{"metaData":{"artist":"Someone","album":"Other"}}})"}) {
        OrvoPlayListItem item;
        item.setTitle("not the title of the roles");
        item.setOrvoRoles(QString::fromUtf8(text));
        items.append(item);
    }
    ASSERT_EQ(0, pl.addItems(OrvoPlayListAddPosition::Append, items));

    QList<QVariantHash> expected;
    const LogCapture slowLog("PlayLists");
    for (const OrvoPlayListItem& item : pl.getItems(1, items.size()))
        expected.append(pl.itemToOrvoRoles(item).toHash());
    const QStringList slowLines = slowLog.lines();

    QList<QVariantHash> rows;
    const LogCapture log("PlayLists");
    pl.visitRoles(1, items.size(), [&](QVariantHash& roles, const QString& id, int number) {
        EXPECT_EQ(roles.value("id").toString(), id);
        EXPECT_EQ(OrvoRoles(roles).value().i32(), number);
        rows.append(QVariantHash());
        for (auto it = roles.cbegin(); it != roles.cend(); ++it) {
            if (it->isValid())
                rows.last().insert(it.key(), *it);
        }
        roles.insert("added by the visitor", 1);
        return true;
    });
    EXPECT_EQ(items.size() - 1, rows.size());
    EXPECT_EQ(expected, rows);
    EXPECT_EQ(slowLines, log.lines());
    EXPECT_EQ(2, slowLines.filter("getItems(").size());
    EXPECT_EQ(2, slowLines.filter("Failed to parse data").size());
}
