#include <algorithm>
#include <numeric>
#include <random>

#include "BenchStore.h"
#include "Items.h"
#include "Workload.h"

namespace {

using Position = OrvoPlayListAddPosition;
using Length = Work::Length;

std::shared_ptr<BenchStore> storeOf(const Setting& setting, int lists, int length,
                                    int itemsLimit = 0) {
    return std::make_shared<BenchStore>(setting, BenchStore::Contents{lists, length},
                                        BenchStore::Parts::Model, itemsLimit);
}

// n entries into an empty list, or into the middle of n.
Workload addMany(const Setting& setting, bool inTheMiddle) {
    const int before = inTheMiddle ? setting.size : 0;
    const auto store = storeOf(setting, 1, before);
    const Items& items = Items::of(setting.size);
    Workload add;
    add.prepare = [=] {
        store->startOver();
        if (!inTheMiddle)
            return;
        store->baselineList()->lastPlayedIndex = before / 2 - 1;
        store->baseline().updatePlayList(*store->baselineList(), "list 0");
        store->list()->setLastSequenceNumber(before / 2 - 1);
    };
    add.baseline = [=, &items] {
        const auto where =
            inTheMiddle ? Baseline::Position::AfterCurrent : Baseline::Position::Append;
        return store->baseline().addItems(store->baselineList(), where, items.forBaseline());
    };
    add.module = [=, &items] {
        const auto where = inTheMiddle ? Position::AfterCurrent : Position::Append;
        return store->list()->addItems(where, items.ours()) == before / 2;
    };
    return add;
}

Workload addOne(const Setting& setting, int itemsLimit) {
    const auto store = storeOf(setting, 1, setting.size, itemsLimit);
    const Items& item = Items::of(1);
    Workload add;
    add.baseline = [=, &item] {
        return store->baseline().addItems(store->baselineList(), Baseline::Position::Append,
                                          item.forBaseline());
    };
    add.module = [=, &item] { return store->list()->addItems(Position::Append, item.ours()) >= 0; };
    return add;
}

// The same move over and over: what stands at `from` is another entry each time.
Workload moveOne(const Setting& setting, int from, int to) {
    const auto store = storeOf(setting, 1, setting.size);
    Workload move;
    move.baseline = [=] { return store->baseline().moveItem(*store->baselineList(), from, to); };
    move.module = [=] { return store->list()->moveItem(from, to); };
    return move;
}

Workload reorder(const std::shared_ptr<BenchStore>& store, const std::vector<int>& order,
                 const std::function<bool()>& module) {
    Workload reorder;
    reorder.baseline = [=] {
        return store->baseline().reorderItems(*store->baselineList(), 0, order);
    };
    reorder.module = module;
    return reorder;
}

// Every `step`-th entry goes to the end.
Workload moveScattered(const Setting& setting, int step) {
    const auto store = storeOf(setting, 1, setting.size);
    std::vector<int> moved;
    std::vector<int> order;
    for (int i = 0; i < setting.size; ++i) {
        if (i % step == 0)
            moved.push_back(i);
        else
            order.push_back(i);
    }
    order.insert(order.end(), moved.begin(), moved.end());
    const QList<int> indices(moved.begin(), moved.end());
    const int last = setting.size - 1;
    return reorder(store, order, [=] { return store->list()->moveItems(indices, last); });
}

Workload setOrder(const Setting& setting) {
    const auto store = storeOf(setting, 1, setting.size);
    std::vector<int> order(std::size_t(setting.size));
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    const QList<int> indices(order.begin(), order.end());
    return reorder(store, order, [=] { return store->list()->setOrder(indices); });
}

// These entries; the list is used up by many of them.
Workload removeThese(const Setting& setting, const std::vector<int>& indices) {
    const auto store = storeOf(setting, 1, setting.size);
    const QList<int> list(indices.begin(), indices.end());
    Workload remove;
    if (indices.size() > 1)
        remove.prepare = [=] { store->startOver(); };
    remove.baseline = [=] { return store->baseline().removeItems(store->baselineList(), indices); };
    remove.module = [=] { return store->list()->removeItems(list) == list.size(); };
    return remove;
}

Workload removeEverySecond(const Setting& setting) {
    std::vector<int> indices;
    for (int i = 0; i < setting.size; i += 2)
        indices.push_back(i);
    return removeThese(setting, indices);
}

Workload removeLast(const Setting& setting) {
    const auto store = storeOf(setting, 1, setting.size);
    Workload remove;
    remove.baseline = [=] {
        const int last = store->baselineList()->size - 1;
        return store->baseline().removeItems(store->baselineList(), {last});
    };
    remove.module = [=] { return store->list()->removeItems({store->list()->getSize() - 1}) == 1; };
    return remove;
}

Workload clearList(const Setting& setting) {
    const auto store = storeOf(setting, 2, setting.size);
    Workload clear;
    clear.prepare = [=] { store->startOver(); };
    clear.baseline = [=] { return store->baseline().clearItems(store->baselineList()); };
    clear.module = [=] { return store->list()->clearItems(); };
    return clear;
}

Workload deleteList(const Setting& setting) {
    const auto store = storeOf(setting, 2, setting.size);
    Workload remove;
    remove.prepare = [=] { store->startOver(); };
    remove.baseline = [=] { return store->baseline().deletePlayList(*store->baselineList()); };
    remove.module = [=] { return store->manager().deletePlayList(1); };
    return remove;
}

// A list of a hundred, made for each turn, beside `lists` that hold the n others.
Workload deleteShort(const Setting& setting, int lists) {
    const auto store = storeOf(setting, lists, setting.size / lists);
    const Items& items = Items::of(100);
    const auto made = std::make_shared<Baseline::List>();
    Workload remove;
    remove.prepare = [=, &items] {
        store->manager().createPlayList(QStringLiteral("short"));
        store->baseline().createPlayList("short", made.get());
        store->baseline().addItems(made.get(), Baseline::Position::Append, items.forBaseline());
        store->manager().getPlayListByUid(made->uid)->addItems(Position::Append, items.ours());
    };
    remove.baseline = [=] { return store->baseline().deletePlayList(*made); };
    remove.module = [=] { return store->manager().deletePlayList(made->uid); };
    return remove;
}

} // namespace

std::vector<Work> editWorks() {
    const char* base = "baseline";
    const auto with = [](auto setUp, auto argument) {
        return [=](const Setting& s) { return setUp(s, argument); };
    };
    const auto toTheEnd = [](const Setting& s) { return moveOne(s, 0, s.size - 1); };
    const auto toTheFront = [](const Setting& s) { return moveOne(s, s.size - 1, 0); };
    const auto some = [](const Setting& s, int count) { return moveScattered(s, s.size / count); };
    const auto byOne = [](const Setting& s) { return moveOne(s, s.size / 2, s.size / 2 + 1); };
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
        {"remove first", base, 1.15, 1.2, Length::Long, {}, with(removeThese, std::vector<int>{0})},
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
