#include <QCoreApplication>

#include "PlayLogicFixture.h"

// What "playlists:upnext" lists, and when its views are told to read again.
class UpNextTest : public PlayLogicFixture {
protected:
    static CMPath path() { return OrvoPlayListUpNextPath(); }

    // "c@2" for each row.
    QStringList upNext(int from = 0, int to = CMGetRowsRequest::LastRow) {
        QStringList tracks;
        for (const OrvoRoles& roles : asRoles(rows(path(), from, to)))
            tracks.append(RecordingPlayer::text(roles));
        return tracks;
    }
    // How many resets there were since the last call.
    int resets() {
        QCoreApplication::processEvents();
        const int count = events.count("Rows playlists:upnext reset -1");
        events.clear();
        return count;
    }
};

TEST_F(UpNextTest, nothingPlaysNothingComes) {
    PlayListBase* pl = playList("abc");
    EXPECT_EQ(QStringList(), upNext());
    EXPECT_EQ(0, rows(path()).rowsCount());
    EXPECT_FALSE(rows(path()).containsRevision());
    play(pl, 2);
    player.start();
    player.end();
    EXPECT_EQ("ended", player.commands.last());
    EXPECT_EQ(QStringList(), upNext());
    play(pl, 0);
    stop();
    EXPECT_EQ(QStringList(), upNext());
}

TEST_F(UpNextTest, whatStandsBehindThePlayingItemComes) {
    PlayListBase* pl = playing("abcde", 1);
    EXPECT_EQ((QStringList{"c@2", "d@3", "e@4"}), upNext());
    EXPECT_EQ((QStringList{"d@3"}), upNext(1, 1));
    EXPECT_EQ((QStringList{"d@3", "e@4"}), upNext(1, 7));
    EXPECT_EQ(QStringList(), upNext(3, 7));
    const OrvoRowsRoles reply = rows(path());
    EXPECT_EQ(3, reply.rowsCount());
    EXPECT_EQ(pl->getRevision(), reply.revision());
    EXPECT_EQ(1, reply.lastPlayedIndex());
    EXPECT_EQ("Up next", reply.roles().title().toString());
}

TEST_F(UpNextTest, aRowIsThatOfTheList) {
    PlayListBase* pl = playing("abc", 0);
    EXPECT_EQ(asRoles(rows(itemsPath(pl), 1, 2)), asRoles(rows(path())));
    probe().shuffle() = true;
    probe().order() = {0, 2, 1};
    probe().cursor() = 0;
    EXPECT_EQ(asRoles(rows(itemsPath(pl), 1, 1)), asRoles(rows(path(), 1, 1)));
}

TEST_F(UpNextTest, repeatAllGoesRoundToThePlayingItem) {
    playing("abcd", 2);
    changeMode(OrvoPlayerPlayMode::RepeatAll);
    EXPECT_EQ((QStringList{"d@3", "a@0", "b@1", "c@2"}), upNext());
    EXPECT_EQ((QStringList{"a@0", "b@1"}), upNext(1, 2));
}

TEST_F(UpNextTest, repeatOneRepeatsOne) {
    playing("abcd", 2);
    for (const int mode : {OrvoPlayerPlayMode::RepeatOne, OrvoPlayerPlayMode::ShuffleRepeatOne}) {
        changeMode(mode);
        EXPECT_EQ(QStringList{"c@2"}, upNext());
    }
}

TEST_F(UpNextTest, underShuffleTheOrderIsShownToItsEnd) {
    playingShuffled("abcdef", {4, 2, 3, 0, 5, 1}, 1);
    EXPECT_EQ((QStringList{"d@3", "a@0", "f@5", "b@1"}), upNext());
    EXPECT_EQ((QStringList{"f@5", "b@1"}), upNext(2, 3));
    changeMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
    EXPECT_EQ((QStringList{"d@3", "a@0", "f@5", "b@1"}), upNext());
}

TEST_F(UpNextTest, anOrderWithoutAPlaceHasNothingToCome) {
    playingShuffled("abc", {2, 0, 1}, 0);
    probe().cursor() = -1;
    EXPECT_EQ(QStringList(), upNext());
    next();
    EXPECT_EQ(QStringList(), player.takeCommands());
    probe().repeat() = PlayListPlayLogic::RepeatAll;
    EXPECT_EQ((QStringList{"c@2", "a@0", "b@1"}), upNext());
}

TEST_F(UpNextTest, whatIsAnnouncedIsStillToCome) {
    playingShuffled("abcd", {1, 3, 0, 2}, 0);
    logic()->prepareNextMedia();
    EXPECT_EQ((QStringList{"d@3", "a@0", "c@2"}), upNext());
    player.end();
    EXPECT_EQ((QStringList{"a@0", "c@2"}), upNext());
}

TEST_F(UpNextTest, aReplacementPlaysAndTheRestIsStillToCome) {
    PlayListBase* pl = playingShuffled("abcd", {1, 3, 0, 2}, 0);
    pl->removeItems({1});
    EXPECT_EQ((QStringList{"d@2", "a@0"}), upNext());
}

TEST_F(UpNextTest, eachChangeIsOneReset) {
    PlayListBase* pl = playing("abcdef", 1);
    resets();
    const QList<std::function<void()>> changes = {
        [this] { next(); },
        [this] { previous(); },
        [this] { player.end(); },
        [&] { pl->removeItems({4}); },
        [&] {
            pl->moveItems({3, 4}, 2);
        },
        [&] { pl->moveItem(0, 3); },
        [&] {
            pl->setOrder({4, 3, 2, 1, 0});
        },
        [&] { add(pl, Position::Append, "x"); },
        [&] {
            pl->addItemsAt({{0, 2}, true}, letterItems("yz"));
        },
        [this] { changeMode(OrvoPlayerPlayMode::RepeatAll); },
        [this] { changeMode(OrvoPlayerPlayMode::RepeatOne); },
        [this] { changeMode(OrvoPlayerPlayMode::Shuffle); },
        [&] {
            pl->removeItems({pl->getLastSequenceNumber() - 1, pl->getLastSequenceNumber()});
        },
        [&] {
            next();
            next();
            add(pl, Position::AfterCurrent, "v");
        },
        [&] { pl->clearItems(); },
    };
    for (int i = 0; i < changes.size(); ++i) {
        changes.at(i)();
        EXPECT_EQ(1, resets()) << i;
        if (!player.opening.isEmpty())
            player.start();
        EXPECT_EQ(0, resets()) << i << ", as the item starts";
    }
}

TEST_F(UpNextTest, whatChangesNothingIsNoReset) {
    PlayListBase* pl = playing("abcdef", 1);
    PlayListBase* other = playList("xyz");
    resets();
    logic()->prepareNextMedia();
    EXPECT_EQ(0, resets());
    logic()->prepareNextMedia();
    EXPECT_EQ(0, resets());
    other->removeItems({1});
    EXPECT_EQ(0, resets());
    pl->setName("other name");
    EXPECT_EQ(0, resets());
    changeMode(OrvoPlayerPlayMode::Normal);
    EXPECT_EQ(0, resets());
    previous();
    player.start();
    previous();
    EXPECT_EQ(1, resets());
    previous();
    EXPECT_EQ(0, resets());
}

TEST_F(UpNextTest, theEndAndAStopAreResets) {
    PlayListBase* pl = playing("ab", 1);
    resets();
    player.end();
    EXPECT_EQ(1, resets()) << "nothing plays any more";
    play(pl, 0);
    EXPECT_EQ(1, resets());
    stop();
    EXPECT_EQ(1, resets());
    play(pl, 0);
    resets();
    manager()->deletePlayList(pl);
    EXPECT_EQ(1, resets());
}
