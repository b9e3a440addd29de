#include <cstdlib>
#include <ctime>

#include "PlayLogicFixture.h"
#include "StoreWatch.h"

namespace {
int randomizations = 0;
unsigned lastCSeed = 0;
} // namespace

// Stands in for the C library's: each shuffle seeds it once, so it counts them.
extern "C" void srand(unsigned seed) noexcept {
    ++randomizations;
    lastCSeed = seed;
}

// What things cost, in operations, never in time.
class CostTest : public PlayLogicFixture {
protected:
    StoreWatch storeWatch;

    PlayListBase* listOfSize(int size) {
        PlayListBase* pl = playList("");
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
            storeWatch.takeSteps();
            next();
            player.start();
            logic()->prepareNextMedia();
            previous();
            costs[at++] = storeWatch.takeSteps();
        }
        EXPECT_GT(costs[0], 0);
        // Reading the last entry of a list takes a step less than reading another.
        EXPECT_NEAR(double(costs[0]), double(costs[1]), 4);
    }
}
