#include <QCoreApplication>
#include <QElapsedTimer>

#include "CommandFixture.h"

namespace {

// More items than are checked in one go on any machine.
constexpr int Many = 20'000;
constexpr int BareOne = 7;
constexpr int OtherBareOne = 19'000;

// Adding so much that others get their turn in between.
class AddManyTest : public CommandFixture {
protected:
    void SetUp() override {
        makeParty();
        others.files.keepPrepareRequests = true;
    }

    // Items "0", "1" …
    static QVariantList many() {
        QVariantList items;
        for (int i = 0; i < Many; ++i)
            items.append(makeItem(QString::number(i)).toHash());
        return items;
    }
    static void makeBare(QVariantList* items, int index) {
        OrvoPlayListItem bare;
        bare.setUrl(QString("file:///bare%1").arg(index));
        (*items)[index] = bare.toHash();
    }

    // The command is on its way, and its items are there.
    LateAnswer addByPath(int plid, const QVariantList& items) {
        const LateAnswer answer = sendLate(OrvoPlayListPlAddItemsPath(),
                                           {{"plid", plid}, {"items", QVariantList{"files:all"}}});
        // Only the module holds the reply from now on.
        const CMReply<QVariant> reply = others.files.requests.takeFirst().reply();
        reply.setValue(items);
        return answer;
    }

    FakeModules others;
};

TEST_F(AddManyTest, othersAreAnsweredWhileManyItemsAreChecked) {
    const LateAnswer answer = addByPath(2, many());
    EXPECT_FALSE(answer->answered);
    EXPECT_EQ(QStringList({"a", "b", "c"}), titles(1));
    expectDone(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", 1}, {"name", "Feast"}});
    EXPECT_EQ(QString(), stored(2));
    ASSERT_TRUE(waitUntil([&] { return answer->answered; }));
    EXPECT_FALSE(answer->failed);
    EXPECT_EQ(QStringList(QString::number(Many + 3)), query("SELECT count(*) FROM items"));
    EXPECT_EQ(QStringList(), query("SELECT title FROM items JOIN playlists_items ON uid = item "
                                   "WHERE playlist = 2 AND title <> sequenceNumber"));
    expectInvariants();
}

TEST_F(AddManyTest, manyItemsAreAddedAndLoggedAsThoseOfOneCall) {
    QVariantList items = many();
    makeBare(&items, BareOne);
    makeBare(&items, OtherBareOne);
    const QStringList warnings = {
        QString("Invalid file, missing roles: file:///bare%1").arg(BareOne),
        QString("Invalid file, missing roles: file:///bare%1").arg(OtherBareOne)};
    const auto titlesOf = [this](int plid) {
        return query(QString("SELECT title FROM items JOIN playlists_items ON uid = item WHERE "
                             "playlist = %1 ORDER BY sequenceNumber")
                         .arg(plid));
    };
    {
        const LogCapture log("PlayLists");
        ASSERT_TRUE(waitUntil([answer = addByPath(2, items)] { return answer->answered; }));
        EXPECT_EQ(warnings, log.texts("WARN"));
        EXPECT_EQ(QStringList({"requestPrefix: files call: prepareItems", "addItems() res: 19998",
                               "added 19998 items",
                               "numItemsAdded: 19998 addItemsResMsg: 19998 items added.",
                               "plsize: 19998", "Add items finished, num added: 19998"}),
                  log.texts("DEBUG"));
    }
    const int plid = createPlayList("At once");
    {
        const LogCapture log("PlayLists");
        expectDone(OrvoPlayListPlAddExternalItemsPath(),
                   QVariantHash{{"plid", plid}, {"items", items}});
        EXPECT_EQ(warnings, log.texts("WARN"));
    }
    EXPECT_EQ(Many - 2, titlesOf(2).size());
    EXPECT_EQ(titlesOf(plid), titlesOf(2));
}

TEST_F(AddManyTest, whatWasAddedIsLetGoAfterwards) {
    const QString album = QStringLiteral("album %1").arg(1); // not a constant: its uses are counted
    QVariantList items = many();
    for (QVariant& item : items) {
        OrvoPlayListItem onAlbum(item.toHash());
        onAlbum.setAlbum(album);
        item = onAlbum.toHash();
    }
    const LateAnswer answer = addByPath(2, items);
    items.clear();
    EXPECT_FALSE(album.isDetached());
    ASSERT_TRUE(waitUntil([&] { return answer->answered; }));
    EXPECT_TRUE(waitUntil([&] { return album.isDetached(); }));
}

TEST_F(AddManyTest, oneThatIsNotAcceptableRejectsAllOfMany) {
    QVariantList items = many();
    makeBare(&items, BareOne);
    OrvoPlayListItem wrong = makeItem("wrong");
    wrong.setOrvoRoles("{}");
    items[OtherBareOne] = wrong.toHash();
    const LogCapture log("PlayLists");
    const LateAnswer answer = addByPath(1, items);
    ASSERT_TRUE(waitUntil([&] { return answer->answered; }));
    EXPECT_EQ(QString("Could not add items to playlist. No items were added. (Missing title or "
                      "type==audio or [resource uri and prePlayPath])"),
              answer->message());
    EXPECT_EQ(QStringList(QString("Invalid file, missing roles: file:///bare%1").arg(BareOne)),
              log.texts("WARN"));
    EXPECT_EQ(QString("a b c"), stored(1));
    expectInvariants();
}

TEST_F(AddManyTest, aTargetThatIsDeletedWhileItemsAreCheckedIsAnError) {
    const LateAnswer answer = addByPath(2, many());
    ASSERT_FALSE(answer->answered);
    expectDone(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 2}});
    const LogCapture log("PlayLists");
    ASSERT_TRUE(waitUntil([&] { return answer->answered; }));
    EXPECT_EQ(QString("Could not add items to playlist. No items were added. (There is no playlist "
                      "with this ID. (2))"),
              answer->message());
    EXPECT_EQ(QStringList("Cannot find playlist with plid: 2"), log.errors());
    EXPECT_EQ(QStringList("3"), query("SELECT count(*) FROM items"));
}

TEST_F(AddManyTest, whatIsBeingCheckedWhenTheModuleEndsIsAnswered) {
    const LateAnswer answer = addByPath(2, many());
    ASSERT_FALSE(answer->answered);
    restart();
    EXPECT_TRUE(answer->failed);
    EXPECT_EQ(CMError::NotAnswered(), answer->error.name());
    QCoreApplication::processEvents();
    EXPECT_EQ(QString(), stored(2));
}

TEST_F(AddManyTest, aPlaylistThatIsMovedAsAWholeCannotChangeOnTheWay) {
    expectDone(OrvoPlayListPlAddExternalItemsPath(), QVariantHash{{"plid", 1}, {"items", many()}});
    const LateAnswer answer =
        sendLate(OrvoPlayListPlAddItemsPath(), {{"plid", 2}, {"fromPlid", 1}});
    EXPECT_TRUE(answer->answered);
    EXPECT_FALSE(answer->failed);
    EXPECT_EQ(QStringList({"0", "2"}), query("SELECT uid FROM playlists ORDER BY uid"));
    EXPECT_EQ(QStringList(QString::number(Many + 3)),
              query("SELECT count(*) FROM playlists_items WHERE playlist = 2"));
}

TEST_F(AddManyTest, theItemsOfTheStoreAreCountedOnlyWhereALimitOrTheLogNeedsTheNumber) {
    const auto countsOfOneAdd = [this] {
        constexpr const char* Count = "SELECT Count(*) FROM items";
        const int before = storeWatch.runsOf(Count);
        expectDone(OrvoPlayListPlAddExternalItemsPath(),
                   QVariantHash{{"plid", 1}, {"items", itemHashes({"one"})}});
        return storeWatch.runsOf(Count) - before;
    };
    EXPECT_EQ(0, countsOfOneAdd());
    {
        const LogCapture log("PlayLists");
        EXPECT_EQ(1, countsOfOneAdd());
        EXPECT_TRUE(log.contains("TRACE", "dbItemsCount: 4, addedItemsCount: 1, limit: 0"));
    }
    setSetting(OrvoPlayListsSettingsDataBaseItemsLimitPath(), OrvoValue::fromI32(6).toVariant());
    restart();
    EXPECT_EQ(1, countsOfOneAdd());
    EXPECT_EQ(QString("Could not add external items to playlist. No items were added. (Unable to "
                      "add more items to the playlist. Items reached limit.)"),
              refusal(OrvoPlayListPlAddExternalItemsPath(),
                      QVariantHash{{"plid", 1}, {"items", itemHashes({"one"})}}));
}

} // namespace
