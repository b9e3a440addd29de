#include <algorithm>
#include <numeric>
#include <random>

#include "Workload.h"

namespace {

using Position = OrvoPlayListAddPosition;
using BaselinePosition = Baseline::Position;
using Length = Work::Length;

// n entries into an empty list, or into the middle of n.
Workload addMany(int size, bool inTheMiddle) {
    const int before = inTheMiddle ? size : 0;
    const auto& items = Items::of(size);
    const auto where = inTheMiddle ? Position::AfterCurrent : Position::Append;
    const auto same = inTheMiddle ? BaselinePosition::AfterCurrent : BaselinePosition::Append;
    Workload add{{1, before}, true};
    add.prepare = [=](BenchStore& store) {
        if (!inTheMiddle)
            return;
        store.baselineList.lastPlayedIndex = before / 2 - 1;
        store.baseline().updatePlayList(store.baselineList, "list 0");
        store.list()->setLastSequenceNumber(before / 2 - 1);
    };
    add.baseline = [=, &items](BenchStore& store) {
        return store.baseline().addItems(&store.baselineList, same, items.forBaseline());
    };
    add.module = [=, &items](BenchStore& store) {
        return store.list()->addItems(where, items.ours()) == before / 2;
    };
    return add;
}

Workload addOne(int size, int itemsLimit) {
    Workload add{{1, size}};
    add.contents.itemsLimit = itemsLimit;
    add.baseline = [](BenchStore& store) {
        return store.baseline().addItems(&store.baselineList, BaselinePosition::Append,
                                         Items::of(1).forBaseline());
    };
    add.module = [](BenchStore& store) {
        return store.list()->addItems(Position::Append, Items::of(1).ours()) >= 0;
    };
    return add;
}

// The same move over and over: what stands at `from` is another entry each time.
Workload moveOne(int size, int from, int to) {
    Workload move{{1, size}};
    move.baseline = [=](BenchStore& store) {
        return store.baseline().moveItem(store.baselineList, from, to);
    };
    move.module = [=](BenchStore& store) { return store.list()->moveItem(from, to); };
    return move;
}

// `module` is to bring about this order.
Workload reorder(const std::vector<int>& order, const Workload::Side& module) {
    Workload reorder{{1, int(order.size())}};
    reorder.baseline = [=](BenchStore& store) {
        return store.baseline().reorderItems(store.baselineList, 0, order);
    };
    reorder.module = module;
    return reorder;
}

// Every `step`-th entry goes to the end.
Workload moveScattered(int size, int step) {
    std::vector<int> order(static_cast<std::size_t>(size));
    std::iota(order.begin(), order.end(), 0);
    const auto moved = std::stable_partition(order.begin(), order.end(),
                                             [=](int place) { return place % step != 0; });
    const QList<int> indices(moved, order.end());
    return reorder(order,
                   [=](BenchStore& store) { return store.list()->moveItems(indices, size - 1); });
}

Workload setOrder(int size) {
    std::vector<int> order(static_cast<std::size_t>(size));
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    const QList<int> indices(order.begin(), order.end());
    return reorder(order, [=](BenchStore& store) { return store.list()->setOrder(indices); });
}

Workload removeFirst(int size) {
    Workload remove{{1, size}};
    remove.baseline = [](BenchStore& store) {
        return store.baseline().removeItems(&store.baselineList, {0});
    };
    remove.module = [](BenchStore& store) { return store.list()->removeItems({0}) == 1; };
    return remove;
}

Workload removeLast(int size) {
    Workload remove{{1, size}};
    remove.baseline = [](BenchStore& store) {
        return store.baseline().removeItems(&store.baselineList, {store.baselineList.size - 1});
    };
    remove.module = [](BenchStore& store) {
        return store.list()->removeItems({store.list()->getSize() - 1}) == 1;
    };
    return remove;
}

Workload removeEverySecond(int size) {
    std::vector<int> indices;
    for (int i = 0; i < size; i += 2)
        indices.push_back(i);
    const QList<int> list(indices.begin(), indices.end());
    Workload remove{{1, size}, true};
    remove.baseline = [=](BenchStore& store) {
        return store.baseline().removeItems(&store.baselineList, indices);
    };
    remove.module = [=](BenchStore& store) {
        return store.list()->removeItems(list) == list.size();
    };
    return remove;
}

Workload clearList(int size) {
    Workload clear{{2, size}, true};
    clear.baseline = [](BenchStore& store) {
        return store.baseline().clearItems(&store.baselineList);
    };
    clear.module = [](BenchStore& store) { return store.list()->clearItems(); };
    return clear;
}

Workload deleteList(int size) {
    Workload remove{{2, size}, true};
    remove.baseline = [](BenchStore& store) {
        return store.baseline().deletePlayList(store.baselineList);
    };
    remove.module = [](BenchStore& store) { return store.manager().deletePlayList(1); };
    return remove;
}

// A list of a hundred, made for each turn, beside `lists` that hold the n others.
Workload deleteShort(int size, int lists) {
    Workload remove{{lists, size / lists}};
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
    remove.baseline = [](BenchStore& store) {
        return store.baseline().deletePlayList(store.baselineList);
    };
    remove.module = [](BenchStore& store) {
        return store.manager().deletePlayList(store.baselineList.uid);
    };
    return remove;
}

} // namespace

std::vector<Work> editWorks() {
    const char* base = "baseline";
    const auto with = [](auto setUp, auto argument) {
        return [=](int size) { return setUp(size, argument); };
    };
    const auto toTheEnd = [](int size) { return moveOne(size, 0, size - 1); };
    const auto toTheFront = [](int size) { return moveOne(size, size - 1, 0); };
    const auto byOne = [](int size) { return moveOne(size, size / 2, size / 2 + 1); };
    const auto some = [](int size, int count) { return moveScattered(size, size / count); };
    return {
        {"add n to an empty list", base, 1.3, 1.3, Length::Long, {}, with(addMany, false)},
        {"add n in the middle of n", base, 1.3, 1.3, Length::Long, {}, with(addMany, true)},
        {"add one at the end", base, 1.5, 0.8, Length::Short, {}, with(addOne, 0)},
        {"add one, in a store with a limit",
         base,
         1.5,
         0.8,
         Length::Short,
         {},
         with(addOne, 1000000)},
        {"move first to last", base, 1.1, 1.2, Length::Long, {}, toTheEnd},
        {"move last to first", base, 1.1, 1.2, Length::Long, {}, toTheFront},
        {"move by one", base, 1.1, 0.2, Length::Short, {}, byOne},
        {"move a tenth to the end", base, 1.2, 1.2, Length::Long, {}, with(moveScattered, 10)},
        {"move 500 to the end", base, 1.2, {}, Length::Long, 5000, with(some, 500)},
        {"move 1,000 to the end", base, 1.2, {}, Length::Long, 20000, with(some, 1000)},
        {"set the order", base, 1.2, {}, Length::Long, 20000, setOrder},
        {"remove last", base, 1.5, 0.2, Length::Short, {}, removeLast},
        {"remove first", base, 1.15, 1.2, Length::Long, {}, removeFirst},
        {"remove every second", base, 1.15, 1.2, Length::Long, {}, removeEverySecond},
        {"clear n, n others stay", base, 1.15, 1.3, Length::Long, {}, clearList},
        {"delete n, n others stay", base, 1.15, 1.3, Length::Long, {}, deleteList},
        {"delete 100, others in one list",
         base,
         {},
         {},
         Length::Short,
         100000,
         with(deleteShort, 1),
         5000},
        {"delete 100, others in 1,000",
         base,
         {},
         {},
         Length::Short,
         100000,
         with(deleteShort, 1000),
         5000},
    };
}
