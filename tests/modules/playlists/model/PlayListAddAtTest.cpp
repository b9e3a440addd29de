#include "ModelFixture.h"

// Items added at places.
class PlayListAddAtTest : public ModelFixture {
protected:
    static int addAt(PlayListBase& pl, const QList<int>& positions, const QString& letters,
                     bool allOrNothing = true) {
        return pl.addItemsAt({positions, allOrNothing}, letterItems(letters));
    }
};

TEST_F(PlayListAddAtTest, addsAsTheHeaderShows) {
    PlayListBase& pl = playList("abc", 1);
    SignalLog signalLog;
    signalLog.watch(&pl);
    const qint64 before = pl.getRevision();
    EXPECT_EQ(1, addAt(pl, {1, 3}, "xy"));
    EXPECT_EQ("axbyc", letters(pl));
    EXPECT_EQ(5, pl.getSize());
    EXPECT_EQ(2, pl.getLastSequenceNumber());
    EXPECT_GT(pl.getRevision(), before);
    EXPECT_EQ(QStringList("itemsInserted 1,3"), signalLog.take());
    expectInStep();
}

// Every choice of places for two new entries, with every played position.
TEST_F(PlayListAddAtTest, everyChoiceOfPlacesKeepsThePlayedEntry) {
    for (int first = 0; first < 5; ++first) {
        for (int second = first + 1; second < 5; ++second) {
            for (int last = -1; last < 5; ++last) {
                SCOPED_TRACE(testing::Message() << first << ' ' << second << " played " << last);
                PlayListBase& pl = playList("abc", last);
                QString expected = "abc";
                expected.insert(first, 'x').insert(second, 'y');
                ASSERT_EQ(first, addAt(pl, {first, second}, "xy"));
                ASSERT_EQ(expected, letters(pl));
                const bool isThere = last >= 0 && last < 3;
                ASSERT_EQ(isThere ? expected.indexOf("abc"[last]) : last,
                          pl.getLastSequenceNumber());
                expectInStep(pl);
            }
        }
    }
    expectInStep();
}

TEST_F(PlayListAddAtTest, anEmptyListAndBothEnds) {
    PlayListBase& pl = playList("");
    EXPECT_EQ(0, addAt(pl, {0, 1}, "bc"));
    EXPECT_EQ(0, addAt(pl, {0}, "a"));
    EXPECT_EQ(3, addAt(pl, {3, 4}, "de"));
    EXPECT_EQ("abcde", letters(pl));
    expectInStep();
}

TEST_F(PlayListAddAtTest, whatDoesNotFitIsRefused) {
    PlayListBase& pl = playList("abc", 1);
    SignalLog signalLog;
    signalLog.watch(&pl);
    const qint64 before = pl.getRevision();
    struct Row {
        QList<int> positions;
        const char* items;
    };
    for (const Row& row : {Row{{}, "x"}, Row{{0}, ""}, Row{{-1}, "x"}, Row{{4}, "x"},
                           Row{{1, 1}, "xy"}, Row{{2, 1}, "xy"}, Row{{0, 5}, "xy"},
                           Row{{0, 1}, "x"}, Row{{0}, "xy"}, Row{{0x7FFFFFFF}, "x"}}) {
        const LogCapture log("PlayLists");
        EXPECT_EQ(-1, addAt(pl, row.positions, row.items));
        EXPECT_EQ(QStringList(), log.errors());
    }
    EXPECT_EQ("abc", letters(pl));
    EXPECT_EQ(before, pl.getRevision());
    EXPECT_EQ(QStringList(), signalLog.take());
    expectInStep();
}

TEST_F(PlayListAddAtTest, theLimitCutsARunShortAndRefusesSinglePlaces) {
    restart(5);
    PlayListBase& pl = playList("abc", 1);
    SignalLog signalLog;
    signalLog.watch(&pl);
    EXPECT_EQ(-2, addAt(pl, {0, 2, 4}, "xyz"));
    EXPECT_EQ("abc", letters(pl));
    EXPECT_EQ(1, addAt(pl, {1, 2, 3}, "xyz", false));
    EXPECT_EQ("axybc", letters(pl));
    EXPECT_EQ(3, pl.getLastSequenceNumber());
    EXPECT_EQ(QStringList("itemsInserted 1,2"), signalLog.take());
    EXPECT_EQ(-2, addAt(pl, {0}, "z", false));
    expectInStep();
}

TEST_F(PlayListAddAtTest, itemsPlacesAndPlayedPositionAreStoredTogetherOrNotAtAll) {
    PlayListBase& pl = playList("abc", 1);
    SignalLog signalLog;
    signalLog.watch(&pl);
    for (const char* change : {"UPDATE ON playlists_items", "UPDATE ON playlists",
                               "INSERT ON playlists_items", "INSERT ON items"}) {
        SCOPED_TRACE(change);
        forbid(change);
        const LogCapture log("PlayLists");
        EXPECT_EQ(-1, addAt(pl, {0}, "x"));
        EXPECT_EQ("Error adding items to list", log.errors().constLast());
        allowAll();
        EXPECT_EQ("abc", letters(pl));
        EXPECT_EQ(1, pl.getLastSequenceNumber());
        EXPECT_EQ(QStringList(), signalLog.take());
        expectInStep();
    }
}
