#include "CommandFixture.h"

namespace {

constexpr int MaxItemBytes = 256 * 1024;
constexpr int MaxNameBytes = 4 * 1024;

const QString tooLarge = QStringLiteral("No items were added. (Item is too large.)");
const QString tooMany = QStringLiteral("No items were added. (Too many items at once.)");
const QString addExternalPrefix = QStringLiteral("Could not add external items to playlist. ");
const QString addPrefix = QStringLiteral("Could not add items to playlist. ");

int bytesOf(const OrvoPlayListItem& item) {
    const QString all = item.title() + item.artist() + item.album() + item.artworkUrl() +
                        item.genre() + item.url() + item.serviceId() + item.orvoRoles();
    return all.toUtf8().size();
}

// An item whose texts have this many bytes together; its title grows.
OrvoPlayListItem itemOf(int bytes, OrvoPlayListItem item) {
    item.setTitle(item.title() + QString(bytes - bytesOf(item), QLatin1Char('x')));
    return item;
}

// How large items, additions and names may be. For every caller and every way.
class LimitsTest : public CommandFixture {
protected:
    QString addExternal(const QList<OrvoPlayListItem>& items) {
        QVariantList hashes;
        for (const OrvoPlayListItem& item : items)
            hashes.append(item.toHash());
        return outcome(OrvoPlayListPlAddExternalItemsPath(),
                       QVariantHash{{"plid", 1}, {"items", hashes}});
    }
    QString addPaths(const QStringList& paths) {
        return outcome(OrvoPlayListPlAddItemsPath(), QVariantHash{{"plid", 1}, {"items", paths}});
    }
    QString addPrepared(const QList<OrvoPlayListItem>& items) {
        QStringList paths;
        for (const OrvoPlayListItem& item : items) {
            paths.append(QString("files:%1").arg(paths.size()));
            others.files.items.insert(paths.last(), item);
        }
        return addPaths(paths);
    }
    QString outcome(const CMPath& path, const QVariant& value) {
        const Answer answer = send(path, value);
        EXPECT_TRUE(answer.answered) << qPrintable(path.toString());
        return answer.failed ? answer.message() : QString("done");
    }

    FakeModules others;
};

TEST_F(LimitsTest, anItemMayHaveAQuarterOfAMebibyteOfTexts) {
    makeParty();
    const OrvoPlayListItem largest = itemOf(MaxItemBytes, makeItem("a"));
    EXPECT_EQ(QString("done"), addExternal({largest}));
    EXPECT_EQ(QString("done"), addPrepared({largest}));
    const QString before = stored(1);
    const OrvoPlayListItem larger = itemOf(MaxItemBytes + 1, makeItem("a"));
    EXPECT_EQ(addExternalPrefix + tooLarge, addExternal({larger}));
    EXPECT_EQ(addPrefix + tooLarge, addPrepared({larger}));
    EXPECT_EQ(before, stored(1));
    expectInvariants();
}

TEST_F(LimitsTest, everyTextOfAnItemCounts) {
    config.insert("playlists/maxItemBytes", "1000");
    makeParty();
    using Item = OrvoPlayListItem;
    for (const QString& key :
         {Item::Title(), Item::Artist(), Item::Album(), Item::ArtworkUrl(), Item::Genre(),
          Item::Url(), Item::ServiceId(), QStringLiteral("unknown")}) {
        Item item = makeItem("d");
        const QString was = item.attribute(key).toString();
        item.setAttribute(key, was + QString(1000 - bytesOf(item), QLatin1Char('y')));
        if (key == "unknown")
            item = itemOf(1000, makeItem("d"));
        EXPECT_EQ(QString("done"), addExternal({item})) << qPrintable(key);
        item.setAttribute(key, item.attribute(key).toString() + QLatin1Char('y'));
        EXPECT_EQ(addExternalPrefix + tooLarge, addExternal({item})) << qPrintable(key);
    }
    Item item = makeItem("d");
    item.setOrvoRoles(item.orvoRoles() + QString(1000 - bytesOf(item), QLatin1Char(' ')));
    EXPECT_EQ(QString("done"), addExternal({item}));
    item.setOrvoRoles(item.orvoRoles() + QLatin1Char(' '));
    EXPECT_EQ(addExternalPrefix + tooLarge, addExternal({item}));
    // What is kept as bytes, or as a list, becomes a text when it is stored.
    item = makeItem("d");
    item.setAttribute(Item::Genre(), QByteArray(1000, 'z'));
    EXPECT_EQ(addExternalPrefix + tooLarge, addExternal({item}));
}

TEST_F(LimitsTest, textsAreCountedInUtf8) {
    config.insert("playlists/maxItemBytes", "1000");
    makeParty();
    for (const char* character : {"x", "ä", "あ", "🎵"}) {
        const OrvoPlayListItem plain = itemOf(1000 - 4, makeItem("d"));
        OrvoPlayListItem item = plain;
        item.setArtist(QString(character));
        item = itemOf(1000, item);
        EXPECT_EQ(QString("done"), addExternal({item})) << character;
        item.setGenre("x");
        EXPECT_EQ(addExternalPrefix + tooLarge, addExternal({item})) << character;
    }
}

TEST_F(LimitsTest, oneItemThatIsTooLargeRejectsThemAllWhereverItStands) {
    makeParty();
    const OrvoPlayListItem good = makeItem("d");
    const OrvoPlayListItem large = itemOf(500'000, makeItem("e"));
    for (const QList<OrvoPlayListItem>& items :
         {QList<OrvoPlayListItem>{large, good, good}, {good, large, good}, {good, good, large}}) {
        EXPECT_EQ(addExternalPrefix + tooLarge, addExternal(items));
        EXPECT_EQ(addPrefix + tooLarge, addPrepared(items));
    }
    // Also one that would be left out otherwise: the log would have its address.
    OrvoPlayListItem bare;
    bare.setUrl(QString(500'000, QLatin1Char('u')));
    const LogCapture log("PlayLists");
    EXPECT_EQ(addExternalPrefix + tooLarge, addExternal({good, bare}));
    EXPECT_EQ(QStringList(), log.texts("WARN"));
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(LimitsTest, whatIsWrongFirstIsSaid) {
    makeParty();
    const OrvoPlayListItem large = itemOf(500'000, makeItem("e"));
    OrvoPlayListItem bad = makeItem("bad");
    bad.setOrvoRoles("{}");
    EXPECT_EQ(addExternalPrefix + tooLarge, addExternal({large, bad}));
    EXPECT_EQ(
        addExternalPrefix +
            "No items were added. (Missing title or type==audio or [resource uri and prePlayPath])",
        addExternal({bad, large}));
}

TEST_F(LimitsTest, theItemsOfOneAdditionHaveALimitTogether) {
    config.insert("playlists/maxAdditionBytes", "10000");
    makeParty();
    QList<OrvoPlayListItem> items;
    for (int i = 0; i < 10; ++i)
        items.append(itemOf(1000, makeItem("d")));
    EXPECT_EQ(QString("done"), addExternal(items));
    EXPECT_EQ(QString("done"), addPrepared(items));
    const QString before = stored(1);
    items.append(itemOf(bytesOf(makeItem("d")), makeItem("d")));
    EXPECT_EQ(addExternalPrefix + tooMany, addExternal(items));
    EXPECT_EQ(addPrefix + tooMany, addPrepared(items));
    EXPECT_EQ(before, stored(1));
    expectInvariants();
}

TEST_F(LimitsTest, theItemsOfSeveralSourcesCountTogether) {
    config.insert("playlists/maxAdditionBytes", "10000");
    makeParty();
    others.files.items.insert("files:x", itemOf(6000, makeItem("d")));
    others.radio.items.insert("radio:x", itemOf(4000, makeItem("e")));
    others.radio.items.insert("radio:y", itemOf(4001, makeItem("f")));
    EXPECT_EQ(QString("done"), addPaths({"files:x", "radio:x"}));
    const QString before = stored(1);
    EXPECT_EQ(addPrefix + tooMany, addPaths({"files:x", "radio:y"}));
    EXPECT_EQ(before, stored(1));
}

TEST_F(LimitsTest, oneStoredItemIsNotCopiedAThousandTimes) {
    makeParty();
    const OrvoPlayListItem large = itemOf(250'000, makeItem("d"));
    EXPECT_EQ(QString("done"), addExternal({large})); // item 4
    QStringList paths;
    for (int i = 0; i < 1000; ++i)
        paths.append("playlists:item/4");
    const LogCapture log("PlayLists");
    EXPECT_EQ(addPrefix + tooMany, addPaths(paths));
    EXPECT_EQ(QStringList("replay error: TooManyItems"), log.errors());
    EXPECT_EQ(QStringList("4"), query("SELECT count(*) FROM items"));
    expectInvariants();
}

// An item may be older than the limit.
TEST_F(LimitsTest, anItemThatIsStoredAndTooLargeIsNotCopied) {
    makeParty();
    run("UPDATE items SET title = replace(hex(zeroblob(250000)), '00', 'xx') WHERE uid = 2;");
    EXPECT_EQ(addPrefix + tooLarge, addPaths({"playlists:item/2"}));
    EXPECT_EQ(addPrefix + tooLarge, addPaths({"playlists:item/1", "playlists:item/2"}));
    EXPECT_EQ(QStringList("3"), query("SELECT count(*) FROM items"));
    expectDone(OrvoPlayListPlMoveItemspath(),
               QVariantHash{{"plid", 1}, {"to", 0}, {"items", QVariantList{1}}});
    expectDone(OrvoPlayListPlRemoveItemsPath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{0}}});
    EXPECT_EQ(QString("a c"), stored(1));
}

TEST_F(LimitsTest, preparedItemsHaveTheLimitOfAnAddition) {
    config.insert("playlists/maxAdditionBytes", "10000");
    makeParty();
    EXPECT_EQ(QString("done"), addExternal({itemOf(1000, makeItem("d"))})); // item 4
    const auto prepare = [this](int times) {
        QVariantList paths;
        for (int i = 0; i < times; ++i)
            paths.append("playlists:item/4");
        return send(OrvoPlayListPlPrepareItemsPath(), paths);
    };
    const Answer whole = prepare(10);
    EXPECT_FALSE(whole.failed) << qPrintable(whole.message());
    EXPECT_EQ(10, whole.value.toList().size());
    const Answer refused = prepare(11);
    EXPECT_TRUE(refused.failed);
    EXPECT_EQ(QString("TooManyItems"), refused.error.name());
    EXPECT_EQ(QString("Too many items at once."), refused.message());
    // Few are searched one by one, many are found in a pass.
    run("UPDATE items SET title = replace(hex(zeroblob(3000)), '00', 'xx') WHERE uid < 4;");
    const auto prepareAll = [this](const QStringList& ids) {
        QVariantList paths;
        for (const QString& id : ids)
            paths.append("playlists:item/" + id);
        return send(OrvoPlayListPlPrepareItemsPath(), paths).message();
    };
    EXPECT_EQ(QString(), prepareAll({"1"}));
    EXPECT_EQ(QString("Too many items at once."), prepareAll({"1", "2"}));
    EXPECT_EQ(QString("Too many items at once."), prepareAll({"4", "77", "78", "79", "1", "2"}));
}

TEST_F(LimitsTest, aWholePlaylistIsMovedWithinTheLimitOnly) {
    config.insert("playlists/maxAdditionBytes", "200000");
    makeParty();
    QList<OrvoPlayListItem> items;
    for (int i = 0; i < 100; ++i)
        items.append(itemOf(1000, makeItem("d")));
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(QString("done"), addExternal(items));
    const QString before = stored(1);
    // 200 of 1000 bytes, and the three that were there.
    EXPECT_EQ(addPrefix + tooMany,
              outcome(OrvoPlayListPlAddItemsPath(), QVariantHash{{"plid", 2}, {"fromPlid", 1}}));
    EXPECT_EQ(before, stored(1));
    EXPECT_EQ(QString(), stored(2));
    expectDone(OrvoPlayListPlRemoveItemsPath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{0, 1, 2}}});
    EXPECT_EQ(QString("done"),
              outcome(OrvoPlayListPlAddItemsPath(), QVariantHash{{"plid", 2}, {"fromPlid", 1}}));
    EXPECT_EQ(QStringList("200"), query("SELECT count(*) FROM playlists_items WHERE playlist = 2"));
    expectInvariants();
}

TEST_F(LimitsTest, aNameHasAtMostFourKibibytes) {
    makeParty();
    const QString longest(MaxNameBytes, QLatin1Char('n'));
    const QString longestOfThrees = QString(MaxNameBytes / 3, QChar(0x3042)) + "n";
    ASSERT_EQ(MaxNameBytes, longestOfThrees.toUtf8().size());
    for (const Command& command : commands()) {
        if (!command.args.contains("name"))
            continue;
        for (const QString& name : {longest, longestOfThrees}) {
            QVariantHash args = command.args;
            args.insert("name", name);
            EXPECT_EQ(QString("done"), outcome(command.path(), args));
            args.insert("name", name + "n");
            EXPECT_EQ(QString(command.prefix) + " Name is too long.",
                      outcome(command.path(), args));
        }
    }
    EXPECT_EQ(QStringList({"5", "3"}), query("SELECT count(*) FROM playlists UNION ALL "
                                             "SELECT count(*) FROM collections"));
    EXPECT_EQ(QStringList(longestOfThrees), query("SELECT name FROM playlists WHERE uid = 1"));
}

TEST_F(LimitsTest, aNameThatIsTooLongComesAfterTheQueueAndBeforeThePlaylist) {
    makeParty();
    const QString name(MaxNameBytes + 1, QLatin1Char('n'));
    const auto rename = [&](int plid) {
        return outcome(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", plid}, {"name", name}});
    };
    const QString prefix = "Could not set playlist name. ";
    EXPECT_EQ(prefix + "Cannot find playlist with invalid ID.", rename(-1));
    EXPECT_EQ(prefix + "Cannot rename PlayQueue.", rename(0));
    EXPECT_EQ(prefix + "Name is too long.", rename(77));
}

TEST_F(LimitsTest, theLogHasTheLengthOfANameThatIsTooLong) {
    makeParty();
    const QString name(8'000'000, QLatin1Char('n'));
    const LogCapture log("PlayLists");
    outcome(OrvoPlayListPlCreatePath(), QVariantHash{{"name", name}});
    outcome(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", 1}, {"name", name}});
    outcome(OrvoPlayListClCreatePath(), QVariantHash{{"name", name}});
    EXPECT_EQ(QStringList({"Cannot create playlist with a name of 8000000 bytes",
                           "Cannot rename playlist id:1 to a name of 8000000 bytes",
                           "Cannot create collection with a name of 8000000 bytes"}),
              log.errors());
}

TEST_F(LimitsTest, aLimitThatIsNoNumberAboveZeroIsTheDefault) {
    for (const QVariant& value :
         {QVariant("0"), QVariant("-1"), QVariant("many"), QVariant(""), QVariant(true)}) {
        for (const char* key :
             {"playlists/maxItemBytes", "playlists/maxAdditionBytes", "playlists/maxNameBytes"})
            config.insert(key, value);
        restart();
        const QString name = "n" + value.toString();
        EXPECT_EQ(QString("done"),
                  outcome(OrvoPlayListPlCreatePath(), QVariantHash{{"name", name}}));
        EXPECT_EQ(QString("done"), addExternal({makeItem("a")}));
    }
    config = {{"playlists/maxNameBytes", 3}};
    restart();
    EXPECT_EQ(QString("Could not create playlist. Name is too long."),
              outcome(OrvoPlayListPlCreatePath(), QVariantHash{{"name", "four"}}));
}

} // namespace
