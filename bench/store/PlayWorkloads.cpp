#include "BenchStore.h"
#include "Items.h"
#include "OrvoPlayRecords.h"
#include "Workload.h"

namespace {

using Kind = OrvoPlayLogicRequestKind;

std::shared_ptr<BenchStore> moduleWith(const Setting& setting) {
    return std::make_shared<BenchStore>(setting, BenchStore::Contents{1, setting.size},
                                        BenchStore::Parts::Module);
}

bool skip(Kind::Enum kind) {
    OrvoPlayLogicRequest args;
    args.setKind(kind);
    return BenchStore::send(OrvoPlayListsPlayLogicPath(), args.toVariant());
}

Workload skipShuffled(const Setting& setting, Kind::Enum kind) {
    // Begins within the list: it leaves the turns room on both sides also in the shortest.
    constexpr int WayIn = 500;
    const auto store = moduleWith(setting);
    store->readThrough();
    bool ok = store->play(true);
    for (int i = 0; i < WayIn; ++i)
        ok = ok && skip(Kind::Next);
    Workload skipping;
    skipping.module = [=] { return ok && store && skip(kind); };
    return skipping;
}

// Held against the same on a list that plays in order.
Workload addWhilePlaying(const Setting& setting) {
    const auto store = moduleWith(setting);
    const Items& items = Items::of(setting.size);
    const auto start = [=](bool shuffled) {
        return [=] {
            store->startOver();
            store->play(shuffled);
        };
    };
    const auto add = [=, &items] {
        return store->list()->addItems(OrvoPlayListAddPosition::Append, items.ours()) ==
               setting.size;
    };
    return {[] {}, start(false), start(true), add, add};
}

} // namespace

std::vector<Work> playWorks() {
    using Length = Work::Length;
    const auto next = [](const Setting& s) { return skipShuffled(s, Kind::Next); };
    const auto previous = [](const Setting& s) { return skipShuffled(s, Kind::Previous); };
    return {
        {"next with shuffle", "", {}, 0.05, Length::Short, {}, next},
        {"previous with shuffle", "", {}, 0.05, Length::Short, {}, previous},
        {"add n to a shuffled playing list",
         "not shuffled",
         1.1,
         1.2,
         Length::Long,
         {},
         addWhilePlaying},
    };
}
