#include "CommandFixture.h"

namespace {

const char* const notAcceptable =
    "(Missing title or type==audio or [resource uri and prePlayPath])";

// What is accepted of the items themselves, the same for both ways in.
class AddItemsTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    Answer addExternal(const QList<OrvoPlayListItem>& items) {
        QVariantList hashes;
        for (const OrvoPlayListItem& item : items)
            hashes.append(item.toHash());
        return send(OrvoPlayListPlAddExternalItemsPath(),
                    QVariantHash{{"plid", 1}, {"items", hashes}});
    }
    Answer addPrepared(const QList<OrvoPlayListItem>& items) {
        QVariantList paths;
        others.files.items.clear();
        for (const OrvoPlayListItem& item : items) {
            paths.append(QString("files:%1").arg(paths.size()));
            others.files.items.insert(paths.last().toString(), item);
        }
        return send(OrvoPlayListPlAddItemsPath(), QVariantHash{{"plid", 1}, {"items", paths}});
    }
    // The reason of a refusal, without the sentence of the command.
    static QString reason(const Answer& answer) {
        QString text = answer.message();
        for (const char* prefix :
             {"Could not add external items to playlist. ", "Could not add items to playlist. "}) {
            if (text.startsWith(prefix))
                return text.mid(int(strlen(prefix)));
        }
        return "unexpected: " + text;
    }

    FakeModules others;
};

OrvoPlayListItem withoutRoles(const QString& url) {
    OrvoPlayListItem item;
    item.setTitle("bare");
    item.setUrl(url);
    return item;
}

// An audio track, or less of one.
OrvoRoles track(int type, const char* title, const QStringList& uris, const char* prePlayPath) {
    OrvoMetaData metaData;
    if (prePlayPath)
        metaData.setPrePlayPath(CMPath(QString(prePlayPath)));
    QList<OrvoResource> resources;
    for (const QString& uri : uris) {
        OrvoResource resource;
        resource.setUri(uri);
        resources.append(resource);
    }
    OrvoMediaData mediaData;
    mediaData.setMetaData(metaData);
    mediaData.setResources(resources);
    OrvoRoles roles;
    roles.setType(type);
    if (title)
        roles.setTitle(TrString(QString(title)));
    roles.setMediaData(mediaData);
    return roles;
}

struct AcceptRow {
    const char* what;
    OrvoRoles roles;
    bool accepted;
};

const QList<AcceptRow>& acceptRows() {
    const QStringList uri{"file:///a"};
    static const QList<AcceptRow> rows = {
        {"all of it", track(3, "t", uri, "files:pre"), true},
        {"title only", track(3, "t", {}, nullptr), true},
        {"title and uri", track(3, "t", uri, nullptr), true},
        {"uri and pre-play path", track(3, nullptr, uri, "files:pre"), true},
        {"an empty title", track(3, "", uri, "files:pre"), true},
        {"the second uri", track(3, nullptr, {"", "file:///a"}, "files:pre"), true},
        {"uri only", track(3, nullptr, uri, nullptr), false},
        {"an empty pre-play path", track(3, nullptr, uri, ""), false},
        {"pre-play path only", track(3, nullptr, {}, "files:pre"), false},
        {"an empty uri", track(3, nullptr, {""}, "files:pre"), false},
        {"audio and nothing else", track(3, nullptr, {}, nullptr), false},
        {"no type", track(0, "t", uri, "files:pre"), false},
        {"a container", track(1, "t", uri, "files:pre"), false},
        {"type 2", track(2, "t", uri, "files:pre"), false},
        {"type 4", track(4, "t", uri, "files:pre"), false},
        {"an action", track(102, "t", uri, "files:pre"), false},
    };
    return rows;
}

TEST_F(AddItemsTest, audioWithATitleOrAWayToPlayItIsAccepted) {
    for (const AcceptRow& row : acceptRows()) {
        for (const Answer& answer :
             {addExternal({itemWithRoles(row.roles)}), addPrepared({itemWithRoles(row.roles)})}) {
            EXPECT_TRUE(answer.answered) << row.what;
            EXPECT_EQ(!row.accepted, answer.failed) << row.what;
            if (!row.accepted) {
                EXPECT_EQ(QString("No items were added. ") + notAcceptable, reason(answer))
                    << row.what;
            }
        }
    }
    EXPECT_EQ(QStringList("15"),
              query("SELECT count(*) FROM playlists_items")); // three, and six rows twice
    expectInvariants();
}

TEST_F(AddItemsTest, rolesThatAreNoJsonAreNotAcceptable) {
    for (const char* text : {"{", "[]", "3", "null", "{\"type\":\"3\"", " "}) {
        OrvoPlayListItem item = makeItem("x");
        item.setOrvoRoles(text);
        EXPECT_EQ(QString("No items were added. ") + notAcceptable, reason(addExternal({item})))
            << text;
    }
}

TEST_F(AddItemsTest, oneBadItemRejectsThemAllWhereverItStands) {
    const OrvoPlayListItem bad = itemWithRoles(track(1, "t", {}, nullptr));
    const OrvoPlayListItem good = makeItem("d");
    for (const QList<OrvoPlayListItem>& items : {QList<OrvoPlayListItem>{bad, good, good},
                                                 {good, bad, good},
                                                 {good, good, bad},
                                                 {withoutRoles("u"), good, bad}}) {
        EXPECT_EQ(QString("No items were added. ") + notAcceptable, reason(addExternal(items)));
        EXPECT_EQ(QString("No items were added. ") + notAcceptable, reason(addPrepared(items)));
    }
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(AddItemsTest, oneBadItemOfOneOwnerRejectsThoseOfAll) {
    others.files.items.insert("files:bad", itemWithRoles(track(1, "t", {}, nullptr)));
    offer(others.radio, "radio:d", "d");
    EXPECT_EQ(QString("Could not add items to playlist. No items were added. ") + notAcceptable,
              refusal(OrvoPlayListPlAddItemsPath(),
                      QVariantHash{{"plid", 1}, {"items", QVariantList{"radio:d", "files:bad"}}}));
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(AddItemsTest, anItemWithoutRolesIsLeftOutWithAWarning) {
    const LogCapture log("PlayLists");
    EXPECT_FALSE(
        addExternal({withoutRoles("file:///one"), makeItem("d"), withoutRoles("file:///two")})
            .failed);
    EXPECT_EQ(QString("a b c d"), stored(1));
    EXPECT_EQ(QStringList({"Invalid file, missing roles: file:///one",
                           "Invalid file, missing roles: file:///two"}),
              log.texts("WARN"));
    EXPECT_EQ(QStringList(), log.errors());
}

TEST_F(AddItemsTest, nothingButItemsWithoutRolesIsAnError) {
    const LogCapture log("PlayLists");
    EXPECT_EQ(QString("No items were added. (No playitem found.)"),
              reason(addExternal({withoutRoles("u")})));
    EXPECT_EQ(QStringList({"no playitem found", "No items were added to playlist id: 1"}),
              log.errors());
    EXPECT_EQ(QString("No items were added. (No playitem found.)"),
              reason(addPrepared({withoutRoles("u")})));
}

TEST_F(AddItemsTest, theNumbersAndIdsThatItemsBringAreIgnored) {
    OrvoPlayListItem item = makeItem("d");
    item.setUid(1);
    item.setSequenceNumber(0);
    EXPECT_FALSE(addExternal({item}).failed);
    EXPECT_EQ(QString("a b c d"), stored(1));
    EXPECT_EQ(QStringList("4"), query("SELECT uid FROM items WHERE title = 'd'"));
}

TEST_F(AddItemsTest, addingToAnEmptyPlaylistSucceedsAtEveryPosition) {
    for (int mode = 0; mode <= 3; ++mode) {
        expectDone(OrvoPlayListPlAddExternalItemsPath(),
                   QVariantHash{{"plid", 2}, {"items", itemHashes({"x", "y"})}, {"mode", mode}});
        EXPECT_EQ(QString("x y"), stored(2));
        expectDone(OrvoPlayListPlClearPath(), QVariantHash{{"plid", 2}});
    }
}

TEST_F(AddItemsTest, theSameTrackMayBeAddedAgain) {
    EXPECT_FALSE(addExternal({makeItem("a"), makeItem("a")}).failed);
    EXPECT_EQ(QString("a b c a a"), stored(1));
}

TEST_F(AddItemsTest, theWayOfCompleteItemsIsInTheLog) {
    const LogCapture log("PlayLists");
    addExternal({makeItem("d"), makeItem("e")});
    EXPECT_EQ(QStringList({"addItems() res: 2", "added 2 items", "addItemsRes: 2", "plsize: 5"}),
              log.texts("DEBUG"));
    EXPECT_EQ(1, log.texts("TRACE")
                     .filter(QRegularExpression("^itemList: \\(\\{.*\\}, \\{.*\\}\\)$"))
                     .size());
}

class LimitedAddTest : public AddItemsTest {
protected:
    void SetUp() override {
        setSetting(OrvoPlayListsSettingsDataBaseItemsLimitPath(), 5);
        makeParty();
    }
};

TEST_F(LimitedAddTest, whatStillFitsIsAddedAndCounted) {
    const LogCapture log("PlayLists");
    EXPECT_FALSE(addPrepared({makeItem("d"), makeItem("e"), makeItem("f"), makeItem("g")}).failed);
    EXPECT_EQ(QString("a b c d e"), stored(1));
    EXPECT_FALSE(
        log.texts("TRACE")
            .filter("res: 1 msg: 2 Items added successfully to playlist. (Party) 2 items added.")
            .isEmpty());
    EXPECT_TRUE(log.contains("DEBUG", "Add items finished, num added: 2"));
    expectInvariants();
}

TEST_F(LimitedAddTest, aFullStoreIsAnError) {
    addItems(2, {"x", "y"});
    const LogCapture log("PlayLists");
    const char* const full =
        "No items were added. (Unable to add more items to the playlist. Items reached limit.)";
    EXPECT_EQ(QString(full), reason(addPrepared({makeItem("d")})));
    EXPECT_TRUE(log.contains("DEBUG", "addItems() res: -2"));
    EXPECT_TRUE(log.contains("DEBUG", "Add items finished, num added: 0"));
    EXPECT_EQ(QString(full), reason(addExternal({makeItem("d")})));
    EXPECT_EQ(QString("a b c"), stored(1));
    // Room that is made counts at once.
    expectDone(OrvoPlayListPlRemoveItemsPath(),
               QVariantHash{{"plid", 2}, {"items", QVariantList{0}}});
    EXPECT_FALSE(addExternal({makeItem("d")}).failed);
    EXPECT_EQ(QString("a b c d"), stored(1));
}

} // namespace
