#include "OrvoPlayRecords.h"
#include "Workload.h"

namespace {

using Kind = OrvoPlayLogicRequestKind;

bool skip(Kind::Enum kind) {
    OrvoPlayLogicRequest args;
    args.setKind(kind);
    return BenchStore::send(OrvoPlayListsPlayLogicPath(), args.toVariant());
}

Workload skipShuffled(int size, Kind::Enum kind) {
    Workload skipping{{1, size, Items::Order::Albums, BenchStore::Parts::Module}};
    skipping.begin = [](BenchStore& store) {
        // Begins within the list: it leaves the turns room on both sides also in the shortest.
        constexpr int WayIn = 500;
        store.readThrough();
        store.play(true);
        for (int i = 0; i < WayIn; ++i)
            skip(Kind::Next);
    };
    skipping.module = [=](BenchStore&) { return skip(kind); };
    return skipping;
}

// Held against the same on a list that plays in order.
Workload addWhilePlaying(int size) {
    Workload add{{1, size, Items::Order::Albums, BenchStore::Parts::Module}};
    const auto start = [](bool shuffled) {
        return [=](BenchStore& store) {
            store.reopen(true);
            store.play(shuffled);
        };
    };
    add.prepareBaseline = start(false);
    add.prepareModule = start(true);
    add.module = [=](BenchStore& store) {
        return store.list()->addItems(OrvoPlayListAddPosition::Append, Items::of(size).ours()) ==
               size;
    };
    add.baseline = add.module;
    return add;
}

} // namespace

std::vector<Work> playWorks() {
    using enum Work::Length;
    const auto next = [](int size) { return skipShuffled(size, Kind::Next); };
    const auto previous = [](int size) { return skipShuffled(size, Kind::Previous); };
    return {
        {"next with shuffle", "", {}, 0.05, Short, {}, next},
        {"previous with shuffle", "", {}, 0.05, Short, {}, previous},
        {"add n to a shuffled playing list", "not shuffled", 1.1, 1.2, Long, {}, addWhilePlaying},
    };
}
