#include <cstdlib>
#include <ctime>
#include <sqlite3.h>

#include "PlayLogicFixture.h"

namespace {
int randomizations = 0;
unsigned lastCSeed = 0;
sqlite3* store = nullptr;

int rememberStore(sqlite3* connection, const char**, const sqlite3_api_routines*) {
    store = connection;
    return SQLITE_OK;
}

// Steps of SQLite's virtual machine since the last call, over all statements of the store.
qint64 takeSteps() {
    qint64 steps = 0;
    for (sqlite3_stmt* s = sqlite3_next_stmt(store, nullptr); s; s = sqlite3_next_stmt(store, s))
        steps += sqlite3_stmt_status(s, SQLITE_STMTSTATUS_VM_STEP, 1);
    return steps;
}
} // namespace

// Stands in for the C library's: each shuffle seeds it once, so it counts them.
extern "C" void srand(unsigned seed) noexcept {
    ++randomizations;
    lastCSeed = seed;
}

// What things cost, in operations, never in time.
class CostTest : public PlayLogicFixture {
protected:
    CostTest() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(rememberStore)); }
    ~CostTest() override {
        sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(rememberStore));
    }

    PlayListBase* listOfSize(int size) {
        PlayListBase* pl = listOf("");
        const OrvoPlayListItem item = makeItem("a");
        QList<OrvoPlayListItem> items;
        for (int i = 0; i < size; ++i)
            items.append(item);
        EXPECT_EQ(0, pl->addItems(Position::Append, items));
        return pl;
    }
};

TEST_F(CostTest, anAddShufflesOnceHoweverManyItems) {
    for (const int count : {1, 1000, 100000}) {
        PlayListBase* pl = playingShuffled("abc", {1, 0, 2}, 1);
        randomizations = 0;
        Q_EMIT pl->itemsAdded(Position::toString(Position::Append), 3, count);
        EXPECT_EQ(1, randomizations) << count;
        EXPECT_EQ((QVector<int>{1, 0}), probe().order().mid(0, 2));
        EXPECT_TRUE(isPermutation(probe().order(), 3 + count));
    }
}

TEST_F(CostTest, insertedItemsAreNotShuffled) {
    PlayListBase* pl = playingShuffled("abc", {1, 0, 2}, 1);
    randomizations = 0;
    add(pl, Position::Now, "xy");
    add(pl, Position::AfterCurrent, "xy");
    pl->removeItems({5});
    pl->moveItem(0, 2);
    next();
    previous();
    EXPECT_EQ(0, randomizations);
}

TEST_F(CostTest, eachShuffleSeedsTheCLibraryWithTheTimeInSeconds) {
    randomizations = 0;
    const std::time_t begin = std::time(nullptr);
    // Also where there is nothing to shuffle.
    logic()->randomizeShuffleItems(-1);
    logic()->randomizeShuffleItems(0);
    EXPECT_EQ(2, randomizations);
    EXPECT_GE(lastCSeed, unsigned(begin));
    EXPECT_LE(lastCSeed, unsigned(std::time(nullptr)));
}

TEST_F(CostTest, nextOnALongListCostsWhatItCostsOnAShortOne) {
    for (const bool shuffle : {false, true}) {
        qint64 costs[2] = {};
        int at = 0;
        for (const int size : {10, 100000}) {
            PlayListBase* pl = listOfSize(size);
            pl->setShuffle(shuffle);
            play(pl, 5);
            player.start();
            takeSteps();
            next();
            player.start();
            logic()->prepareNextMedia();
            previous();
            costs[at++] = takeSteps();
        }
        EXPECT_GT(costs[0], 0);
        // Reading the last entry of a list takes a step less than reading another.
        EXPECT_NEAR(double(costs[0]), double(costs[1]), 4);
    }
}
