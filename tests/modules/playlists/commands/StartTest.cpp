#include "CommandFixture.h"
#include "PlayLogicInterface.h"

namespace {

// What the player is asked when something is to be played.
class StartTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    void expectStarted(int plid, int index, const QString& title) {
        ASSERT_EQ(1, others.player.requests.size());
        EXPECT_EQ(OrvoPlayerPlayContainerPath(), others.player.requests.first().path());
        const QVariantHash args = others.player.requests.first().value().toHash();
        const QString container =
            plid == 0 ? "playlists:pq/items" : QString("playlists:pl/items/%1").arg(plid);
        const OrvoPlayLogicPlayArgs record(args);
        EXPECT_EQ(container, record.mediaRoles().path().toString());
        EXPECT_EQ(1, record.mediaRoles().type());
        EXPECT_TRUE(record.mediaRoles().containerPlayable());
        EXPECT_EQ(QString("playlists:playlogic"),
                  record.mediaRoles().mediaData().metaData().playLogicPath().toString());
        const QString uid =
            query(
                QString(
                    "SELECT item FROM playlists_items WHERE playlist = %1 AND sequenceNumber = %2")
                    .arg(plid)
                    .arg(index))
                .value(0);
        EXPECT_EQ(title, record.trackRoles().title().toString());
        EXPECT_EQ(index, record.trackRoles().value().i32());
        EXPECT_EQ(uid, record.trackRoles().id());
        EXPECT_EQ("playlists:item/" + uid, record.trackRoles().path().toString());
        EXPECT_EQ(QString("playlists:playlogic"),
                  record.trackRoles().mediaData().metaData().playLogicPath().toString());
        EXPECT_EQ(QString("file:///music/%1.flac").arg(title),
                  record.trackRoles().mediaData().resources().value(0).uri());
        EXPECT_EQ(index, record.index());
        EXPECT_EQ(1, record.type());
        EXPECT_EQ(QVariant(0), args.value("startPosition"));
        EXPECT_EQ(QVariant(false), args.value("paused"));
    }
    // Both ways of adding, with the same items.
    void expectFirstNewItem(int lastPlayed, int sizeBefore, const QStringList& added, int index);

    FakeModules others;
};

TEST_F(StartTest, playingAPlaylistStartsItsFirstItem) {
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlPlayPath(), QVariantHash{{"plid", 1}});
    expectStarted(1, 0, "a");
    EXPECT_EQ(QStringList(
                  {"seqIndex: 0 plid: 1", "path: playlists:pl/items/1", "playContainer() called"}),
              log.texts("DEBUG"));
    EXPECT_EQ(1, log.texts("TRACE").filter(QRegularExpression("^play item: \\{")).size());
    EXPECT_EQ(1,
              log.texts("TRACE").filter(QRegularExpression("^play item trackRoles: \\{")).size());
}

TEST_F(StartTest, playingTheQueueNamesTheQueuesOwnPath) {
    addItems(0, {"q", "r"});
    expectDone(OrvoPlayListPlPlayPath(), QVariantHash{{"plid", 0}});
    expectStarted(0, 0, "q");
}

TEST_F(StartTest, anItemWithoutAUrlIsNotPlayedAndTheCommandSucceedsAllTheSame) {
    restartAfter("UPDATE items SET url = '' WHERE title = 'a'");
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlPlayPath(), QVariantHash{{"plid", 1}});
    EXPECT_TRUE(others.player.requests.isEmpty());
    EXPECT_EQ(QStringList("Item 1 hasn't url"), log.errors());
    EXPECT_EQ(QStringList({"seqIndex: 0 plid: 1", "path: playlists:pl/items/1"}),
              log.texts("DEBUG"));
}

TEST_F(StartTest, withoutAPlayerTheAttemptIsLoggedAndTheCommandSucceeds) {
    root()->removeWorker("player", &others.player);
    const LogCapture playerLog("Player");
    expectDone(OrvoPlayListPlPlayPath(), QVariantHash{{"plid", 1}});
    EXPECT_EQ(QStringList("player:playContainer failed: There is nothing at player:playContainer."),
              playerLog.errors());
    expectDone(OrvoPlayListPlAddExternalItemsPath(),
               QVariantHash{{"plid", 1}, {"items", itemHashes({"d"})}, {"mode", 0}});
    EXPECT_EQ(2, playerLog.errors().size());
    EXPECT_EQ(QString("a b c d"), stored(1));
}

void StartTest::expectFirstNewItem(int lastPlayed, int sizeBefore, const QStringList& added,
                                   int index) {
    for (const bool addsByPath : {false, true}) {
        expectDone(OrvoPlayListPlClearPath(), QVariantHash{{"plid", 2}});
        QStringList old;
        for (int i = 0; i < sizeBefore; ++i)
            old.append(QString("old%1").arg(i));
        if (!old.isEmpty())
            addItems(2, old);
        restartAfter(
            QString("UPDATE playlists SET lastPlayedIndex = %1 WHERE uid = 2").arg(lastPlayed));
        others.player.requests.clear();
        if (addsByPath) {
            QVariantList paths;
            for (const QString& title : added) {
                paths.append("files:" + title);
                offer(others.files, "files:" + title, title);
            }
            expectDone(OrvoPlayListPlAddItemsPath(),
                       QVariantHash{{"plid", 2}, {"items", paths}, {"mode", 0}});
        } else {
            expectDone(OrvoPlayListPlAddExternalItemsPath(),
                       QVariantHash{{"plid", 2}, {"items", itemHashes(added)}, {"mode", "now"}});
        }
        expectStarted(2, index, added.first());
        QStringList expected = old;
        for (int i = 0; i < added.size(); ++i)
            expected.insert(index + i, added.at(i));
        EXPECT_EQ(expected.join(' '), stored(2));
        expectInvariants();
    }
}

TEST_F(StartTest, nowWithNothingPlayedYetStartsTheFirstOfTheAppended) {
    expectFirstNewItem(-1, 7, {"x", "y", "z"}, 7);
}

TEST_F(StartTest, nowOnAnEmptyPlaylistStartsAtTheFront) {
    expectFirstNewItem(-1, 0, {"x", "y"}, 0);
}

TEST_F(StartTest, nowStartsRightAfterTheLastPlayed) {
    expectFirstNewItem(3, 10, {"x", "y"}, 4);
}

TEST_F(StartTest, nowAfterTheFirst) {
    expectFirstNewItem(0, 3, {"x"}, 1);
}

TEST_F(StartTest, nowAfterThePlayedLastItemAppends) {
    expectFirstNewItem(6, 7, {"x", "y"}, 7);
}

TEST_F(StartTest, aLastPlayedIndexAtTheSizeIsNoPlace) {
    expectFirstNewItem(7, 7, {"x", "y"}, 7);
}

TEST_F(StartTest, aLastPlayedIndexFarBeyondTheSizeIsNoPlace) {
    expectFirstNewItem(30, 7, {"x", "y"}, 7);
}

TEST_F(StartTest, aLastPlayedIndexOnAnEmptyPlaylistIsNoPlace) {
    expectFirstNewItem(2, 0, {"x", "y", "z", "w"}, 0);
}

TEST_F(StartTest, theQueueStartsAtTheFrontWhateverWasPlayedInTheLastRun) {
    addItems(0, {"q", "r", "s", "t"});
    restartAfter("UPDATE playlists SET lastPlayedIndex = 3 WHERE uid = 0");
    expectDone(OrvoPlayListPlAddExternalItemsPath(),
               QVariantHash{{"plid", 0}, {"items", itemHashes({"x", "y"})}, {"mode", 0}});
    expectStarted(0, 0, "x");
    EXPECT_EQ(QString("x y"), stored(0));
}

TEST_F(StartTest, onlyNowStartsAnything) {
    for (int mode : {1, 2}) {
        expectDone(OrvoPlayListPlAddExternalItemsPath(),
                   QVariantHash{{"plid", 1}, {"items", itemHashes({"d"})}, {"mode", mode}});
        offer(others.files, "files:e", "e");
        expectDone(OrvoPlayListPlAddItemsPath(),
                   QVariantHash{{"plid", 1}, {"items", QVariantList{"files:e"}}, {"mode", mode}});
    }
    expectDone(OrvoPlayListPlAddExternalItemsPath(),
               QVariantHash{{"plid", 1}, {"items", itemHashes({"d"})}});
    EXPECT_TRUE(others.player.requests.isEmpty());
}

TEST_F(StartTest, aWholePlaylistCanBeStartedAsWell) {
    expectDone(OrvoPlayListPlAddItemsPath(),
               QVariantHash{{"plid", 2}, {"fromPlid", 1}, {"mode", 0}});
    expectStarted(2, 0, "a");
}

TEST_F(StartTest, theLimitMovesThePlaceOfTheFirstNewItemNowhere) {
    setSetting(OrvoPlayListsSettingsDataBaseItemsLimitPath(), 5);
    restartAfter("UPDATE playlists SET lastPlayedIndex = 0 WHERE uid = 1");
    expectDone(OrvoPlayListPlAddExternalItemsPath(),
               QVariantHash{{"plid", 1}, {"items", itemHashes({"x", "y", "z"})}, {"mode", 0}});
    expectStarted(1, 1, "x");
    EXPECT_EQ(QString("a x y b c"), stored(1));
}

TEST_F(StartTest, nowIsTraced) {
    restartAfter("UPDATE playlists SET lastPlayedIndex = 1 WHERE uid = 1");
    offer(others.files, "files:d", "d");
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlAddItemsPath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{"files:d"}}, {"mode", 0}});
    EXPECT_TRUE(log.contains("DEBUG", "addMode: now lastSeqNum: 1 nextSeqNum: 2"));
    expectDone(OrvoPlayListPlAddExternalItemsPath(),
               QVariantHash{{"plid", 1}, {"items", itemHashes({"e"})}, {"mode", 0}});
    EXPECT_TRUE(log.contains("DEBUG", "mode: New nextSeqNum: 2"));
}

} // namespace
