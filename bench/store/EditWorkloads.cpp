#include <algorithm>
#include <numeric>
#include <random>

#include "Workload.h"

namespace {

using Position = OrvoPlayListAddPosition;
using BaselinePosition = Baseline::Position;
using BaselineEdit = std::function<bool(Baseline&, Baseline::List*)>;
using ListEdit = std::function<bool(PlayListBase*)>;

// The same edit of the first list by both sides.
Workload edit(const BenchStore::Contents& contents, bool startsOver, const BaselineEdit& baseline,
              const ListEdit& module) {
    Workload edit{contents, startsOver};
    edit.baseline = [=](BenchStore& store) {
        return baseline(store.baseline(), &store.baselineList);
    };
    edit.module = [=](BenchStore& store) { return module(store.list()); };
    return edit;
}

// n entries into an empty list, or into the middle of n.
Workload addMany(int size, bool inTheMiddle) {
    const int before = inTheMiddle ? size : 0;
    const auto& items = Items::of(size);
    const auto where = inTheMiddle ? Position::AfterCurrent : Position::Append;
    const auto same = inTheMiddle ? BaselinePosition::AfterCurrent : BaselinePosition::Append;
    Workload add = edit(
        {1, before}, true,
        [=, &items](Baseline& b, auto* list) {
            return b.addItems(list, same, items.forBaseline());
        },
        [=, &items](auto* list) { return list->addItems(where, items.ours()) == before / 2; });
    add.prepare = [=](BenchStore& store) {
        if (!inTheMiddle)
            return;
        store.baselineList.lastPlayedIndex = before / 2 - 1;
        store.baseline().updatePlayList(store.baselineList, "list 0");
        store.list()->setLastSequenceNumber(before / 2 - 1);
    };
    return add;
}

Workload addOne(int size, int itemsLimit) {
    const Items& one = Items::of(1);
    return edit(
        {1, size, Items::Order::Albums, BenchStore::Parts::Model, itemsLimit}, false,
        [&](Baseline& b, auto* list) {
            return b.addItems(list, BaselinePosition::Append, one.forBaseline());
        },
        [&](auto* list) { return list->addItems(Position::Append, one.ours()) >= 0; });
}

// The same move over and over: what stands at `from` is another entry each time.
Workload moveOne(int size, int from, int to) {
    return edit(
        {1, size}, false, [=](Baseline& b, auto* list) { return b.moveItem(*list, from, to); },
        [=](auto* list) { return list->moveItem(from, to); });
}

// `module` is to bring about this order.
Workload reorder(const std::vector<int>& order, const ListEdit& module) {
    return edit(
        {1, int(order.size())}, false,
        [=](Baseline& b, auto* list) { return b.reorderItems(*list, 0, order); }, module);
}

std::vector<int> places(int size) {
    std::vector<int> all(static_cast<std::size_t>(size));
    std::iota(all.begin(), all.end(), 0);
    return all;
}

// Every `step`-th entry goes to the end.
Workload moveScattered(int size, int step) {
    std::vector<int> order = places(size);
    const auto moved = std::stable_partition(order.begin(), order.end(),
                                             [=](int place) { return place % step != 0; });
    const QList<int> indices(moved, order.end());
    return reorder(order, [=](auto* list) { return list->moveItems(indices, size - 1); });
}

Workload setOrder(int size) {
    std::vector<int> order = places(size);
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    const QList<int> indices(order.begin(), order.end());
    return reorder(order, [=](auto* list) { return list->setOrder(indices); });
}

Workload removeOne(int size, bool last) {
    return edit(
        {1, size}, false,
        [=](Baseline& b, auto* list) { return b.removeItems(list, {last ? list->size - 1 : 0}); },
        [=](auto* list) { return list->removeItems({last ? list->getSize() - 1 : 0}) == 1; });
}

Workload removeEverySecond(int size) {
    std::vector<int> indices;
    for (int i = 0; i < size; i += 2)
        indices.push_back(i);
    const QList<int> same(indices.begin(), indices.end());
    return edit(
        {1, size}, true, [=](Baseline& b, auto* list) { return b.removeItems(list, indices); },
        [=](auto* list) { return list->removeItems(same) == same.size(); });
}

Workload clearList(int size) {
    return edit(
        {2, size}, true, [](Baseline& b, auto* list) { return b.clearItems(list); },
        [](auto* list) { return list->clearItems(); });
}

// The list that the baseline has at hand.
Workload deleteList(const BenchStore::Contents& contents, bool startsOver) {
    Workload remove{contents, startsOver};
    remove.baseline = [](BenchStore& store) {
        return store.baseline().deletePlayList(store.baselineList);
    };
    remove.module = [](BenchStore& store) {
        return store.manager().deletePlayList(store.baselineList.uid);
    };
    return remove;
}

// A list of a hundred, made for each turn, beside `lists` that hold the n others.
Workload deleteShort(int size, int lists) {
    Workload remove = deleteList({lists, size / lists}, false);
    remove.prepare = [](BenchStore& store) {
        const Items& items = Items::of(100);
        store.manager().createPlayList(QStringLiteral("short"));
        store.baseline().createPlayList("short", &store.baselineList);
        store.baseline().addItems(&store.baselineList, BaselinePosition::Append,
                                  items.forBaseline());
        store.manager()
            .getPlayListByUid(store.baselineList.uid)
            ->addItems(Position::Append, items.ours());
    };
    return remove;
}

} // namespace

std::vector<Work> editWorks() {
    using enum Work::Length;
    const char* base = "baseline";
    const auto with = [](auto setUp, auto argument) {
        return [=](int size) { return setUp(size, argument); };
    };
    const auto toTheEnd = [](int size) { return moveOne(size, 0, size - 1); };
    const auto toTheFront = [](int size) { return moveOne(size, size - 1, 0); };
    const auto byOne = [](int size) { return moveOne(size, size / 2, size / 2 + 1); };
    const auto some = [](int size, int count) { return moveScattered(size, size / count); };
    const auto deleteMany = [](int size) { return deleteList({2, size}, true); };
    const auto limited = with(addOne, 1000000);
    const auto besideOne = with(deleteShort, 1);
    const auto beside1000 = with(deleteShort, 1000);
    return {
        {"add n to an empty list", base, 1.3, 1.3, Long, {}, with(addMany, false)},
        {"add n in the middle of n", base, 1.3, 1.3, Long, {}, with(addMany, true)},
        {"add one at the end", base, 1.5, 0.8, Short, {}, with(addOne, 0)},
        {"add one, in a store with a limit", base, 1.5, 0.8, Short, {}, limited},
        {"move first to last", base, 1.1, 1.2, Long, {}, toTheEnd},
        {"move last to first", base, 1.1, 1.2, Long, {}, toTheFront},
        {"move by one", base, 1.1, 0.2, Short, {}, byOne},
        {"move a tenth to the end", base, 1.2, 1.2, Long, {}, with(moveScattered, 10)},
        {"move 500 to the end", base, 1.2, {}, Long, 5000, with(some, 500)},
        {"move 1,000 to the end", base, 1.2, {}, Long, 20000, with(some, 1000)},
        {"set the order", base, 1.2, {}, Long, 20000, setOrder},
        {"remove last", base, 1.5, 0.2, Short, {}, with(removeOne, true)},
        {"remove first", base, 1.15, 1.2, Long, {}, with(removeOne, false)},
        {"remove every second", base, 1.15, 1.2, Long, {}, removeEverySecond},
        {"clear n, n others stay", base, 1.15, 1.3, Long, {}, clearList},
        {"delete n, n others stay", base, 1.15, 1.3, Long, {}, deleteMany},
        {"delete 100, others in one list", base, {}, {}, Short, 100000, besideOne, 5000, 5000},
        {"delete 100, others in 1,000", base, {}, {}, Short, 100000, beside1000, 5000},
    };
}
