#include <atomic>
#include <functional>
#include <future>
#include <sqlite3.h>

#include "ModelFixture.h"

// When a signal leaves, everything is done: the rows are committed, the object says the new state
// and its lock is free.

struct TimingRow {
    const char* name;
    std::function<void(PlayListBase&)> change;
    // What the list looks like to a listener, from inside the slot on.
    const char* letters;
    int last;
    const char* rest; // name, shuffle, repeat
};

class SignalTimingTest : public ModelFixture, public ::testing::WithParamInterface<TimingRow> {};

namespace {
QString restOf(const PlayListBase& pl) {
    return QString("%1 %2 %3")
        .arg(pl.getName())
        .arg(int(pl.getShuffle()))
        .arg(int(pl.getRepeatAll()));
}

// Calls slot() for whichever signal the playlist emits.
void onAnySignal(PlayListBase& pl, const std::function<void()>& slot) {
    using Pl = PlayListBase;
    QObject::connect(&pl, &Pl::itemsAdded, &pl, slot);
    QObject::connect(&pl, &Pl::itemsRemoved, &pl, slot);
    QObject::connect(&pl, &Pl::itemMoved, &pl, slot);
    QObject::connect(&pl, &Pl::itemsCleared, &pl, slot);
    QObject::connect(&pl, &Pl::shuffleChanged, &pl, slot);
    QObject::connect(&pl, &Pl::repeatAllChanged, &pl, slot);
    QObject::connect(&pl, &Pl::nameChanged, &pl, slot);
    QObject::connect(&pl, &Pl::itemsReordered, &pl, slot);
    QObject::connect(&pl, &Pl::itemsInserted, &pl, slot);
}
} // namespace

TEST_P(SignalTimingTest, theSlotFindsEverythingDone) {
    const TimingRow& row = GetParam();
    PlayListBase& pl = playList("abcdef", 3);
    int slots = 0;
    onAnySignal(pl, [&] {
        ++slots;
        EXPECT_EQ(int(strlen(row.letters)), pl.getSize());
        EXPECT_EQ(row.last, pl.getLastSequenceNumber());
        EXPECT_EQ(QString(row.rest), restOf(pl));
        // Committed: another connection sees it.
        EXPECT_TRUE(sqlite3_get_autocommit(StoreProbe::connection(database())));
        EXPECT_EQ(QString(row.letters), letters(pl));
        expectInStep();
    });
    row.change(pl);
    EXPECT_EQ(1, slots);
}

TEST_P(SignalTimingTest, anotherThreadCanTakeTheLockMeanwhile) {
    const TimingRow& row = GetParam();
    PlayListBase& pl = playList("abcdef", 3);
    std::future<int> other;
    bool first = true;
    onAnySignal(pl, [&] {
        // The other thread's own signal is not what this is about.
        if (!first)
            return;
        first = false;
        other = std::async(std::launch::async, [&pl] {
            pl.setLastSequenceNumber(1);
            pl.setName(QStringLiteral("from another thread"));
            return pl.getItems(0, 100).size();
        });
        EXPECT_EQ(std::future_status::ready, other.wait_for(std::chrono::seconds(5)))
            << "the lock is held while the signal is out";
    });
    row.change(pl);
    ASSERT_TRUE(other.valid());
    EXPECT_EQ(int(strlen(row.letters)), other.get());
    EXPECT_EQ("from another thread", pl.getName());
    expectInStep();
}

TEST_P(SignalTimingTest, theSlotMayChangeTheListAgain) {
    const TimingRow& row = GetParam();
    PlayListBase& pl = playList("abcdef", 3);
    bool first = true;
    onAnySignal(pl, [&] {
        if (!first)
            return;
        first = false;
        EXPECT_GE(add(pl, OrvoPlayListAddPosition::Append, "Z"), 0);
    });
    row.change(pl);
    EXPECT_EQ(QString(row.letters) + "Z", letters(pl));
    expectInStep();
}

INSTANTIATE_TEST_SUITE_P(
    changes, SignalTimingTest,
    ::testing::Values(
        TimingRow{"add",
                  [](PlayListBase& pl) {
                      OrvoPlayListItem item;
                      item.setTitle("X");
                      item.setUrl("file:///X");
                      item.setServiceId("files");
                      pl.addItems(OrvoPlayListAddPosition::Now, {item});
                  },
                  "abcdXef", 3, "list 0 0"},
        TimingRow{"remove",
                  [](PlayListBase& pl) {
                      pl.removeItems({1, 5});
                  },
                  "acde", 2, "list 0 0"},
        TimingRow{"move", [](PlayListBase& pl) { pl.moveItem(5, 0); }, "fabcde", 4, "list 0 0"},
        TimingRow{"moveItems", [](PlayListBase& pl) { pl.moveItems({3}, 1); }, "adbcef", 1,
                  "list 0 0"},
        TimingRow{"addAt",
                  [](PlayListBase& pl) {
                      OrvoPlayListItem item;
                      item.setTitle("X");
                      item.setUrl("file:///X");
                      item.setServiceId("files");
                      pl.addItemsAt({{1}, true}, {item});
                  },
                  "aXbcdef", 4, "list 0 0"},
        TimingRow{"setOrder",
                  [](PlayListBase& pl) {
                      pl.setOrder({5, 4, 3, 2, 1, 0});
                  },
                  "fedcba", 2, "list 0 0"},
        TimingRow{"clear", [](PlayListBase& pl) { pl.clearItems(); }, "", 3, "list 0 0"},
        TimingRow{"rename", [](PlayListBase& pl) { pl.setName("new"); }, "abcdef", 3, "new 0 0"},
        TimingRow{"shuffle", [](PlayListBase& pl) { pl.setShuffle(true); }, "abcdef", 3,
                  "list 1 0"},
        TimingRow{"repeat", [](PlayListBase& pl) { pl.setRepeatAll(true); }, "abcdef", 3,
                  "list 0 1"}),
    [](const auto& row) { return std::string(row.param.name); });

class SignalStepsTest : public ModelFixture {};

TEST_F(SignalStepsTest, theFirstOfSeveralMovesIsAnnouncedWhenAllAreStored) {
    PlayListBase& pl = playList("abcdef", 1);
    QStringList steps;
    QObject::connect(&pl, &PlayListBase::itemMoved, &pl, [&] {
        expectInStep();
        steps.append(letters(pl) + QString::number(pl.getLastSequenceNumber()));
    });
    EXPECT_TRUE(pl.moveItems({5, 0, 1}, 3));
    EXPECT_EQ(QStringList({"cdabfe3", "cdabfe3", "cdabfe3"}), steps);
}

// Other threads of the host may look at a list at any time.
TEST_F(SignalStepsTest, aReaderInAnotherThreadSeesWholeValues) {
    const QStringList names = {QString(200, 'a'), QString(300, 'b')};
    PlayListBase& pl = playList("ab", -1, names.at(0));
    std::atomic<bool> done = false;
    std::future<int> other = std::async(std::launch::async, [&] {
        int wrong = 0;
        while (!done) {
            if (!names.contains(pl.getName()))
                ++wrong;
        }
        return wrong;
    });
    // Fresh texts each time: the list must be the only one that keeps them alive.
    for (int i = 0; i < 2000; ++i)
        pl.setName(i % 2 == 0 ? QString(200, 'a') : QString(300, 'b'));
    done = true;
    EXPECT_EQ(0, other.get());
}
