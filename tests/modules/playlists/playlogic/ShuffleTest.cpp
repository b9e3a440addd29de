#include <QSignalSpy>

#include "DrawnOrder.h"
#include "PlayLogicFixture.h"
#include "TestClock.h"

using namespace DrawnOrder;

// What the play logic does with its shuffle order: drawing it, walking it, and what is logged.
class ShuffleTest : public PlayLogicFixture {};

TEST_F(ShuffleTest, aTailOutsideTheOrderIsLeftAlone) {
    for (const int from : {-1, -100, 5, 6, 100}) {
        probe().order() = ascending(5);
        logic()->randomizeShuffleItems(from);
        EXPECT_EQ(ascending(5), probe().order()) << from;
    }
    probe().order().clear();
    logic()->randomizeShuffleItems(0);
    EXPECT_TRUE(probe().order().isEmpty());
}

TEST_F(ShuffleTest, theSeedIsTheMonotonicClockInMilliseconds) {
    constexpr qint64 modulus = 2147483647;
    const QPair<qint64, quint64> rows[] = {
        {1, 1},           {86400123, 86400123}, {modulus - 1, modulus - 1},
        {modulus + 5, 5}, {modulus * 3, 1},     {0, 1}, // the seed nought is one
    };
    for (const auto& [ms, seed] : rows) {
        probe().order() = ascending(40);
        const TestClock clock(ms);
        logic()->randomizeShuffleItems(3);
        EXPECT_EQ(shuffled(ascending(40), 3, seed), probe().order()) << ms;
    }
}

TEST_F(ShuffleTest, aNewOrderBeginsWithTheItemAskedFor) {
    playing("abcdefgh");
    for (int item = 0; item < 8; ++item) {
        probe().cursor() = 5;
        logic()->initShuffle(item);
        EXPECT_EQ(item, probe().order().value(0));
        EXPECT_TRUE(isPermutation(probe().order(), 8));
        EXPECT_EQ(0, probe().cursor());
    }
}

TEST_F(ShuffleTest, theItemAskedForIsPutBeforeTheDrawnOrder) {
    playing("abcdefgh");
    const TestClock clock(4711);
    QVector<int> expected = shuffled(ascending(8), 0, 4711);
    const int index = expected.indexOf(6);
    expected.move(index, 0);
    const LogCapture log("PlayListsPlayLogic");
    logic()->initShuffle(6);
    EXPECT_EQ(expected, probe().order());
    EXPECT_EQ(QString("DEBUG index of startItem in sequence: %1").arg(index), log.lines().value(0));
    EXPECT_EQ("DEBUG m_shuffleSeq.size(): 8", log.lines().value(1));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(QString("DEBUG m_shuffleSeq entry: #%1 %2").arg(i).arg(expected.at(i)),
                  log.lines().value(2 + i));
    EXPECT_EQ(QStringList("DEBUG and 3 more"), log.lines().mid(7));
}

TEST_F(ShuffleTest, withoutAnItemTheDrawnOrderStays) {
    playing("abcdefgh");
    const TestClock clock(4711);
    const LogCapture log("PlayListsPlayLogic");
    probe().cursor() = 5;
    logic()->initShuffle(-1);
    EXPECT_EQ(shuffled(ascending(8), 0, 4711), probe().order());
    EXPECT_EQ(0, probe().cursor());
    EXPECT_EQ("DEBUG m_shuffleSeq.size(): 8", log.lines().value(0));
}

TEST_F(ShuffleTest, anItemThatTheListLacksLeavesTheDrawnOrder) {
    playing("abcdefgh");
    const TestClock clock(4711);
    const LogCapture log("PlayListsPlayLogic");
    logic()->initShuffle(8);
    EXPECT_EQ(shuffled(ascending(8), 0, 4711), probe().order());
    EXPECT_EQ(0, probe().cursor());
    EXPECT_TRUE(log.contains("DEBUG", "index of startItem in sequence: -1"));
}

TEST_F(ShuffleTest, anEmptyListKeepsTheOrderThereWas) {
    logic()->setCurrentPlayList(playList(""));
    probe().order() = {2, 0, 1};
    probe().cursor() = 1;
    const LogCapture log("PlayListsPlayLogic");
    logic()->initShuffle(0);
    EXPECT_EQ((QVector<int>{2, 0, 1}), probe().order());
    EXPECT_EQ(1, probe().cursor());
    EXPECT_EQ(QStringList{"DEBUG size <= 0"}, log.lines());
}

TEST_F(ShuffleTest, withoutAListTheOrderIsForgotten) {
    probe().order() = {2, 0, 1};
    probe().cursor() = 1;
    logic()->initShuffle(0);
    EXPECT_EQ(QVector<int>(), probe().order());
    EXPECT_EQ(-1, probe().cursor());
}

TEST_F(ShuffleTest, switchingOnDrawsFromWhatPlaysAndTellsTheList) {
    PlayListBase* pl = playing("abcdefgh", 5);
    logic()->setPlayMode(OrvoPlayerPlayMode::Shuffle);
    const QSignalSpy changes(pl, &PlayListBase::shuffleChanged);
    const QSignalSpy modes(logic(), &PlayLogicBase::playModeChanged);
    const LogCapture log("PlayListsPlayLogic");
    logic()->setShuffleEnabled(true);
    EXPECT_EQ("TRACE Enter void PlayListPlayLogic::setShuffleEnabled(bool): enabled=1",
              log.lines().value(0));
    EXPECT_TRUE(probe().shuffle());
    EXPECT_TRUE(pl->getShuffle());
    EXPECT_EQ(1, changes.count());
    EXPECT_EQ(0, modes.count());
    EXPECT_EQ(5, probe().order().value(0));
    EXPECT_TRUE(isPermutation(probe().order(), 8));
    EXPECT_EQ(0, probe().cursor());
}

TEST_F(ShuffleTest, switchingOffLeavesTheOrderAndOnDrawsAnew) {
    PlayListBase* pl = playingShuffled("abcd", {3, 2, 1, 0}, 2);
    logic()->setShuffleEnabled(false);
    EXPECT_FALSE(pl->getShuffle());
    EXPECT_EQ((QVector<int>{3, 2, 1, 0}), probe().order());
    EXPECT_EQ(2, probe().cursor());
    const TestClock clock(99);
    logic()->setShuffleEnabled(true);
    QVector<int> expected = shuffled(ascending(4), 0, 99);
    expected.move(expected.indexOf(1), 0);
    EXPECT_EQ(expected, probe().order());
    EXPECT_EQ(0, probe().cursor());
}

TEST_F(ShuffleTest, switchingWithoutAListSetsTheFlagOnly) {
    probe().order() = {1, 0};
    probe().cursor() = 1;
    logic()->setShuffleEnabled(true);
    EXPECT_TRUE(probe().shuffle());
    EXPECT_EQ((QVector<int>{1, 0}), probe().order());
    EXPECT_EQ(1, probe().cursor());
}

TEST_F(ShuffleTest, theOrderIsLoggedEntryByEntry) {
    probe().order() = {2, 0, 1};
    const LogCapture log("PlayListsPlayLogic");
    logic()->debugShuffleItems();
    EXPECT_EQ((QStringList{"DEBUG m_shuffleSeq.size(): 3", "DEBUG m_shuffleSeq entry: #0 2",
                           "DEBUG m_shuffleSeq entry: #1 0", "DEBUG m_shuffleSeq entry: #2 1"}),
              log.lines());
}

TEST_F(ShuffleTest, walkingIsLogged) {
    probe().order() = {2, 0};
    probe().cursor() = 0;
    LogCapture log("PlayListsPlayLogic");
    EXPECT_EQ(0, logic()->getNextShuffleItem());
    EXPECT_EQ((QStringList{"DEBUG m_shuffleCurIndex before next: 0",
                           "DEBUG m_shuffleCurIndex after next: 1", "DEBUG index: 0"}),
              log.lines());
    log.clear();
    EXPECT_EQ(2, logic()->getPrevShuffleItem());
    EXPECT_EQ((QStringList{"DEBUG m_shuffleCurIndex before prev: 1",
                           "DEBUG m_shuffleCurIndex after prev: 0", "DEBUG index: 2"}),
              log.lines());
    log.clear();
    EXPECT_EQ(-1, logic()->getPrevShuffleItem());
    EXPECT_EQ((QStringList{"DEBUG m_shuffleCurIndex before prev: 0",
                           "DEBUG m_shuffleCurIndex after prev: 0", "DEBUG index: -1"}),
              log.lines());
}

TEST_F(ShuffleTest, wrappingIsLogged) {
    logic()->setRepeatMode(PlayListPlayLogic::RepeatAll);
    probe().order() = {2, 0, 1};
    probe().cursor() = 0;
    LogCapture log("PlayListsPlayLogic");
    EXPECT_EQ(1, logic()->getPrevShuffleItem());
    EXPECT_EQ((QStringList{"DEBUG m_shuffleCurIndex before prev: 0",
                           "DEBUG m_shuffleCurIndex is set to last item in m_shuffleSeq",
                           "DEBUG m_shuffleCurIndex after prev: 2", "DEBUG index: 1"}),
              log.lines());
    log.clear();
    EXPECT_EQ(2, logic()->getNextShuffleItem());
    EXPECT_EQ((QStringList{"DEBUG m_shuffleCurIndex before next: 2",
                           "DEBUG m_shuffleCurIndex is set to first item in m_shuffleSeq",
                           "DEBUG m_shuffleCurIndex after next: 0", "DEBUG index: 2"}),
              log.lines());
}

TEST_F(ShuffleTest, anEmptyOrderIsLogged) {
    logic()->setRepeatMode(PlayListPlayLogic::RepeatAll);
    LogCapture log("PlayListsPlayLogic");
    EXPECT_EQ(-1, logic()->getNextShuffleItem());
    EXPECT_EQ(
        (QStringList{"DEBUG m_shuffleCurIndex before next: -1", "DEBUG error: m_shuffleSeq.size: 0",
                     "DEBUG m_shuffleCurIndex after next: -1", "DEBUG index: -1"}),
        log.lines());
    log.clear();
    EXPECT_EQ(-1, logic()->getPrevShuffleItem());
    EXPECT_EQ(
        (QStringList{"DEBUG m_shuffleCurIndex before prev: -1", "DEBUG error: m_shuffleSeq.size: 0",
                     "DEBUG m_shuffleCurIndex after prev: -1", "DEBUG index: -1"}),
        log.lines());
}

TEST_F(ShuffleTest, theWalksByCursorAndRepeatMode) {
    struct Row {
        int cursor;
        int next, cursorAfterNext;
        int previous, cursorAfterPrevious;
    };
    const QVector<int> order = {7, 8, 9};
    // From outside the order nothing leads on, but for repeat all.
    const Row off[] = {{-1, -1, -1, -1, -1}, {0, 8, 1, -1, 0},  {1, 9, 2, 7, 0},
                       {2, -1, 2, 8, 1},     {3, -1, 3, -1, 3}, {9, -1, 9, -1, 9}};
    const Row all[] = {{-1, 7, 0, 9, 2}, {0, 8, 1, 9, 2}, {1, 9, 2, 7, 0},
                       {2, 7, 0, 8, 1},  {3, 7, 0, 9, 2}, {9, 7, 0, 9, 2}};
    const auto check = [&](PlayListPlayLogic::RepeatMode mode, const Row& row) {
        SCOPED_TRACE(testing::Message() << "repeat " << mode << " cursor " << row.cursor);
        logic()->setRepeatMode(mode);
        probe().order() = order;
        probe().cursor() = row.cursor;
        EXPECT_EQ(row.next, logic()->getNextShuffleItem());
        EXPECT_EQ(row.cursorAfterNext, probe().cursor());
        probe().cursor() = row.cursor;
        EXPECT_EQ(row.previous, logic()->getPrevShuffleItem());
        EXPECT_EQ(row.cursorAfterPrevious, probe().cursor());
    };
    for (const Row& row : off) {
        check(PlayListPlayLogic::RepeatOff, row);
        check(PlayListPlayLogic::RepeatOne, row);
    }
    for (const Row& row : all)
        check(PlayListPlayLogic::RepeatAll, row);
}

TEST_F(ShuffleTest, aListOfOneItem) {
    playing("a");
    logic()->setShuffleEnabled(true);
    EXPECT_EQ(-1, logic()->getNextShuffleItem());
    EXPECT_EQ(-1, logic()->getPrevShuffleItem());
    logic()->setRepeatMode(PlayListPlayLogic::RepeatAll);
    EXPECT_EQ(0, logic()->getNextShuffleItem());
    EXPECT_EQ(0, logic()->getPrevShuffleItem());
}

TEST_F(ShuffleTest, aSecondPassPlaysTheSameOrder) {
    playing("abcdefgh");
    changeMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
    QStringList passes[2];
    for (QStringList& pass : passes) {
        for (int i = 0; i < 8; ++i)
            next();
        pass = player.takeCommands();
    }
    EXPECT_EQ(8, passes[0].size());
    EXPECT_EQ(passes[0], passes[1]);
}
