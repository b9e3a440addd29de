#include <QSignalSpy>

#include "StoreFixture.h"

class PlayListRowsTest : public StoreFixture {
protected:
    QStringList names() {
        QStringList result;
        for (const PlayListRecord& pl : database().getPlayLists())
            result.append(pl.name);
        return result;
    }
};

TEST_F(PlayListRowsTest, aRecordStartsAsNoPlaylist) {
    const PlayListRecord none;
    EXPECT_EQ(-1, none.uid);
    EXPECT_EQ(QString(), none.name);
    EXPECT_FALSE(none.shuffle);
    EXPECT_FALSE(none.repeatAll);
    EXPECT_EQ(0, none.lastPlayedIndex);
    EXPECT_EQ(0, none.size);
}

TEST_F(PlayListRowsTest, aNewPlaylistIsEmptyAndUnplayed) {
    const PlayListRecord created = database().createPlayList(QStringLiteral("Ünïcødé 🎵"));
    EXPECT_LT(0, created.uid);
    for (const PlayListRecord& pl : {created, record(created.uid)}) {
        EXPECT_EQ(created.uid, pl.uid);
        EXPECT_EQ(QStringLiteral("Ünïcødé 🎵"), pl.name);
        EXPECT_FALSE(pl.shuffle);
        EXPECT_FALSE(pl.repeatAll);
        EXPECT_EQ(-1, pl.lastPlayedIndex);
        EXPECT_EQ(0, pl.size);
    }
    expectInvariants();
}

TEST_F(PlayListRowsTest, playlistsComeByNameWithoutTheQueue) {
    EXPECT_EQ(QStringList(), names());
    for (const char* name : {"b", "a", "C", "", "a"})
        database().createPlayList(QString::fromLatin1(name));
    EXPECT_EQ(QStringList({QString(), QStringLiteral("C"), QStringLiteral("a"), QStringLiteral("a"),
                           QStringLiteral("b")}),
              names());
    for (const PlayListRecord& pl : database().getPlayLists())
        EXPECT_LT(0, pl.uid);
    expectInvariants();
}

TEST_F(PlayListRowsTest, sizesAreCounts) {
    EXPECT_EQ(3, playListOf("abc").size);
    EXPECT_EQ(0, playListOf("").size);
    EXPECT_EQ(1, playListOf("a").size);
}

TEST_F(PlayListRowsTest, flagsAreSetOnlyByOne) {
    const PlayListRecord pl = playListOf("");
    run(QStringLiteral("UPDATE playlists SET shuffle = 2, repeatAll = 1 WHERE uid > 0"));
    EXPECT_FALSE(record(pl.uid).shuffle);
    EXPECT_TRUE(record(pl.uid).repeatAll);
    run(QStringLiteral("UPDATE playlists SET shuffle = 1, repeatAll = -1 WHERE uid > 0"));
    EXPECT_TRUE(record(pl.uid).shuffle);
    EXPECT_FALSE(record(pl.uid).repeatAll);
}

TEST_F(PlayListRowsTest, theQueueIsARecordLikeAnyOther) {
    const PlayListRecord queue = database().getPlayQueue();
    EXPECT_EQ(0, queue.uid);
    EXPECT_EQ(QStringLiteral("PlayQueue"), queue.name);
    EXPECT_FALSE(queue.shuffle);
    EXPECT_FALSE(queue.repeatAll);
    EXPECT_EQ(-1, queue.lastPlayedIndex);
    EXPECT_EQ(0, queue.size);
    EXPECT_EQ(queue.name, database().getPlayListByUid(0).name);
}

TEST_F(PlayListRowsTest, aMissingQueueIsNoPlaylist) {
    database();
    run(QStringLiteral("DELETE FROM playlists WHERE uid = 0"));
    EXPECT_EQ(-1, database().getPlayQueue().uid);
}

TEST_F(PlayListRowsTest, updatingWritesEveryFieldButTheSize) {
    for (int uid : {playListOf("abc").uid, 0}) {
        PlayListRecord pl = record(uid);
        const int size = pl.size;
        pl.name = QStringLiteral("new name");
        pl.shuffle = true;
        pl.repeatAll = true;
        pl.lastPlayedIndex = 2;
        pl.size = 4711;
        EXPECT_TRUE(database().updatePlayList(pl));
        reopen();
        const PlayListRecord read = record(uid);
        EXPECT_EQ(QStringLiteral("new name"), read.name);
        EXPECT_TRUE(read.shuffle);
        EXPECT_TRUE(read.repeatAll);
        EXPECT_EQ(2, read.lastPlayedIndex);
        EXPECT_EQ(size, read.size);
        pl.shuffle = false;
        EXPECT_TRUE(database().updatePlayList(pl));
        EXPECT_FALSE(record(uid).shuffle);
        EXPECT_TRUE(record(uid).repeatAll);
    }
    expectInvariants();
}

TEST_F(PlayListRowsTest, updatingWithoutAChangeSucceeds) {
    EXPECT_TRUE(database().updatePlayList(playListOf("abc")));
}

TEST_F(PlayListRowsTest, updatingAnUnknownPlaylistFails) {
    database();
    PlayListRecord pl;
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_FALSE(database().updatePlayList(pl));
    EXPECT_EQ(QStringList(QStringLiteral("Error updating PlayList: no such uid in DB")),
              log.errors());
}

TEST_F(PlayListRowsTest, deletingTakesEntriesItemsAndMemberships) {
    const PlayListRecord other = playListOf("xyz");
    const PlayListRecord pl = playListOf("abc");
    const CollectionRecord first = database().createCollection(QStringLiteral("first"));
    const CollectionRecord second = database().createCollection(QStringLiteral("second"));
    ASSERT_TRUE(database().addToCollection(first, pl.uid));
    ASSERT_TRUE(database().addToCollection(second, pl.uid));
    ASSERT_TRUE(database().addToCollection(second, other.uid));
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    EXPECT_TRUE(database().deletePlayList(pl));
    EXPECT_EQ(-1, record(pl.uid).uid);
    EXPECT_EQ(3, database().countPlaylistsItems());
    EXPECT_EQ(QStringLiteral("x y z"), stored(other.uid));
    EXPECT_EQ(QList<int>(), database().getCollections().value(0).playlists);
    EXPECT_EQ(QList<int>{other.uid}, database().getCollections().value(1).playlists);
    ASSERT_EQ(1, spy.size());
    EXPECT_TRUE(spy[0][0].toBool());
    expectInvariants();
}

TEST_F(PlayListRowsTest, deletingOwesAVacuumOnceCommitted) {
    const PlayListRecord pl = playListOf("abc");
    bool committed = false;
    QObject::connect(&database(), &Database::vacuumNeeded, [this, &committed] {
        committed = queryInt(QStringLiteral("SELECT COUNT(*) FROM playlists WHERE uid > 0")) == 0;
    });
    EXPECT_TRUE(database().deletePlayList(pl));
    EXPECT_TRUE(committed);
}

TEST_F(PlayListRowsTest, theQueueCannotBeDeleted) {
    ASSERT_EQ(0, database().addItems(database().getPlayQueue(), OrvoPlayListAddPosition::Append,
                                     items(2), nullptr));
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_FALSE(database().deletePlayList(database().getPlayQueue()));
    EXPECT_EQ(QStringList({QStringLiteral("Error deleting PlayList: no such list in DB"),
                           QStringLiteral("Error deleting PlayList")}),
              log.errors());
    EXPECT_EQ(QStringLiteral("t0 t1"), stored(0));
    EXPECT_EQ(0, spy.size());
    expectInvariants();
}

TEST_F(PlayListRowsTest, anUnknownPlaylistCannotBeDeleted) {
    database();
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_FALSE(database().deletePlayList(PlayListRecord()));
    EXPECT_EQ(QStringList({QStringLiteral("Error deleting PlayList: no such list in DB"),
                           QStringLiteral("Error deleting PlayList")}),
              log.errors());
    expectInvariants();
}

TEST_F(PlayListRowsTest, idsOfDeletedPlaylistsAreGivenAgain) {
    const PlayListRecord pl = playListOf("abc");
    ASSERT_TRUE(database().deletePlayList(pl));
    EXPECT_EQ(pl.uid, database().createPlayList(QStringLiteral("successor")).uid);
    EXPECT_EQ(0, record(pl.uid).size);
}
