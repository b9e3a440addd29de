#include "ShuffleOrder.h"

#include <functional>
#include <gtest/gtest.h>

#include <QStringList>

#include "DrawnOrder.h"
#include "PlayLogicFixture.h"
#include "Printing.h"

using namespace DrawnOrder;

namespace {

// "4 2 [0] 3 1": the cursor is on the 0.
ShuffleOrder orderOf(const QString& text) {
    QVector<int> entries;
    int cursor = ShuffleOrder::None;
    for (QString entry : text.split(' ')) {
        if (entry.startsWith('[')) {
            cursor = entries.size();
            entry = entry.mid(1, entry.size() - 2);
        }
        entries.append(entry.toInt());
    }
    return {entries, cursor};
}

// The same way back; with something announced, what plays is in round brackets.
QString text(const ShuffleOrder& order) {
    QStringList result;
    for (int place = 0; place < order.entries().size(); ++place) {
        const QString entry = QString::number(order.entries().at(place));
        result.append(place == order.cursor()         ? '[' + entry + ']'
                      : place == order.playingPlace() ? '(' + entry + ')'
                                                      : entry);
    }
    return result.join(' ');
}

} // namespace

// --- drawing ---

TEST(ShuffleOrderTest, theReferenceGeneratorIsTheMinimalStandard) {
    // The standard library's documentation of minstd_rand0 gives its ten thousandth number.
    MinimalStandard engine(1);
    quint64 number = 0;
    for (int i = 0; i < 10000; ++i)
        number = engine();
    EXPECT_EQ(1043618065u, number);
}

TEST(ShuffleOrderTest, aSeedGivesThePermutationOfTheMinimalStandard) {
    for (const quint64 seed :
         {quint64(1), quint64(2), quint64(16807), quint64(123456789), quint64(2147483646)}) {
        for (const int size : {1, 2, 3, 10, 257, 70000}) {
            for (const int from : {0, 1, size / 2, size - 1}) {
                if (from >= size)
                    continue;
                ShuffleOrder order(ascending(size), 0);
                order.shuffleTail(from, seed);
                ASSERT_EQ(shuffled(ascending(size), from, seed), order.entries())
                    << seed << ' ' << size << ' ' << from;
            }
        }
    }
}

TEST(ShuffleOrderTest, theSeedNoughtIsOne) {
    ShuffleOrder order(ascending(50), 0);
    order.shuffleTail(0, 0);
    EXPECT_EQ(shuffled(ascending(50), 0, 1), order.entries());
}

TEST(ShuffleOrderTest, onlyTheTailIsShuffled) {
    ShuffleOrder order(ascending(10), 2);
    order.shuffleTail(4, 99);
    EXPECT_EQ(ascending(4), order.entries().mid(0, 4));
    EXPECT_TRUE(isPermutation(order.entries(), 10));
    EXPECT_NE(ascending(10), order.entries());
    EXPECT_EQ(2, order.cursor());
}

TEST(ShuffleOrderTest, aTailOutsideTheOrderIsLeftAlone) {
    ShuffleOrder order(ascending(5), 0);
    for (const int from : {-1, -100, 5, 6, 100}) {
        order.shuffleTail(from, 7);
        EXPECT_EQ(ascending(5), order.entries()) << from;
    }
}

TEST(ShuffleOrderTest, itRestartsWithTheNumbersAsTheyAre) {
    ShuffleOrder order = orderOf("4 2 [0] 3 1");
    order.restart(3);
    EXPECT_EQ("[0] 1 2", text(order));
    EXPECT_EQ(2, order.bringToFront(2));
    EXPECT_EQ("[2] 0 1", text(order));
    EXPECT_EQ(ShuffleOrder::None, order.bringToFront(3));
    EXPECT_EQ("[2] 0 1", text(order));
}

// --- the walk ---

TEST(ShuffleOrderTest, aStepMovesTheCursorAndWrapsOnlyWhenAskedTo) {
    struct Row {
        const char* before;
        int (ShuffleOrder::*step)(bool wraps);
        bool wraps;
        int number;
        const char* after;
    };
    constexpr auto next = &ShuffleOrder::next;
    constexpr auto previous = &ShuffleOrder::previous;
    const Row rows[] = {
        {"4 2 [0] 3 1", next, false, 3, "4 2 0 [3] 1"},
        {"4 2 0 3 [1]", next, false, ShuffleOrder::None, "4 2 0 3 [1]"},
        {"4 2 0 3 [1]", next, true, 4, "[4] 2 0 3 1"},
        {"4 2 [0] 3 1", previous, false, 2, "4 [2] 0 3 1"},
        {"[4] 2 0 3 1", previous, false, ShuffleOrder::None, "[4] 2 0 3 1"},
        {"[4] 2 0 3 1", previous, true, 1, "4 2 0 3 [1]"},
        // Without a cursor only the wrap leads into the order.
        {"4 2 0", next, false, ShuffleOrder::None, "4 2 0"},
        {"4 2 0", next, true, 4, "[4] 2 0"},
        {"4 2 0", previous, false, ShuffleOrder::None, "4 2 0"},
        {"4 2 0", previous, true, 0, "4 2 [0]"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.before << " to " << row.after);
        ShuffleOrder order = orderOf(row.before);
        if (row.step == next) {
            EXPECT_EQ(row.number, order.numberAfterPlaying(row.wraps));
        }
        EXPECT_EQ(row.number, (order.*row.step)(row.wraps));
        EXPECT_EQ(row.after, text(order));
    }
}

TEST(ShuffleOrderTest, nothingIsInAnEmptyOrder) {
    ShuffleOrder order;
    EXPECT_EQ(ShuffleOrder::None, order.cursor());
    EXPECT_EQ(ShuffleOrder::None, order.next(true));
    EXPECT_EQ(ShuffleOrder::None, order.previous(true));
    EXPECT_EQ(ShuffleOrder::None, order.numberAfterPlaying(true));
    EXPECT_EQ(ShuffleOrder::None, order.cursor());
}

// --- the announcement ---

TEST(ShuffleOrderTest, anAnnouncedEntryIsAheadUntilItPlaysOrIsGivenUp) {
    ShuffleOrder announced = orderOf("4 2 [0] 3 1");
    EXPECT_FALSE(announced.isAnnounced());
    announced.announceNext(false);
    EXPECT_TRUE(announced.isAnnounced());
    EXPECT_EQ("4 2 (0) [3] 1", text(announced));
    EXPECT_EQ(3, announced.numberAfterPlaying(false));
    announced.announceNext(false);
    EXPECT_EQ("4 2 (0) [3] 1", text(announced));

    ShuffleOrder heard = announced;
    heard.playAtCursor();
    EXPECT_FALSE(heard.isAnnounced());
    EXPECT_EQ("4 2 0 [3] 1", text(heard));

    announced.returnToPlaying();
    EXPECT_FALSE(announced.isAnnounced());
    EXPECT_EQ("4 2 [0] 3 1", text(announced));
}

TEST(ShuffleOrderTest, atTheEndTheAnnouncementIsThatNothingFollows) {
    ShuffleOrder order = orderOf("2 0 [1]");
    order.announceNext(false);
    EXPECT_TRUE(order.isAnnounced());
    EXPECT_EQ("2 0 [1]", text(order));
    order.announceNext(true);
    EXPECT_EQ("[2] 0 (1)", text(order));
}

// --- edits ---

TEST(ShuffleOrderTest, editsKeepTheCursorOnWhatPlaysAlsoWithAnotherAnnounced) {
    struct Row {
        const char* before;
        std::function<void(ShuffleOrder&)> edit;
        const char* after;
    };
    const auto round = [](int number) { return (number + 1) % 3; };
    const Row rows[] = {
        {"2 [0] 1", [](ShuffleOrder& order) { order.insertNext(1, 2); }, "4 [0] 1 2 3"},
        {"2 0 [1]", [](ShuffleOrder& order) { order.insertNext(3, 1); }, "2 0 [1] 3"},
        {"2 [0] 1", [](ShuffleOrder& order) { order.append(3); }, "2 [0] 1 3"},
        {"2 [0] 1", [&](ShuffleOrder& order) { order.renumber(round); }, "0 [1] 2"},
        {"4 2 [0] 3 1",
         [](ShuffleOrder& order) {
             order.remove({1, 2});
         },
         "2 1 [0]"},
        {"4 2 [0] 3 1", [](ShuffleOrder& order) { order.remove({2}); }, "3 [0] 2 1"},
        // The playing one goes: the cursor is on what was heard before it.
        {"4 2 [0] 3 1", [](ShuffleOrder& order) { order.remove({0}); }, "3 [1] 2 0"},
        {"4 [2] 0 3 1", [](ShuffleOrder& order) { order.playInstead(3); }, "4 2 [3] 0 1"},
        {"4 2 [0] 3 1", [](ShuffleOrder& order) { order.playInstead(4); }, "2 0 [4] 3 1"},
        {"4 2 [0] 3 1", [](ShuffleOrder& order) { order.playInstead(5); }, "4 2 [0] 3 1"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.before << " to " << row.after);
        ShuffleOrder order = orderOf(row.before);
        row.edit(order);
        EXPECT_EQ(row.after, text(order));

        ShuffleOrder announced = orderOf(row.before);
        announced.announceNext(true);
        row.edit(announced);
        EXPECT_TRUE(announced.isAnnounced());
        announced.returnToPlaying();
        EXPECT_EQ(row.after, text(announced));
    }
}
