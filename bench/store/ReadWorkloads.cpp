#include "Workload.h"

namespace {

constexpr int PageLength = 50;

using Order = Items::Order;
using Parts = BenchStore::Parts;

bool readItems(BenchStore& store, int from) {
    return store.list()->getItems(from, from + PageLength - 1).size() == PageLength;
}

bool browseRows(BenchStore&, int from) {
    const CMReplyData<OrvoRowsRoles> reply;
    CMRoot()->getRowsRequest(CMGetRowsRequest(BenchStore::itemsPath(), from, from + PageLength - 1,
                                              OrvoRoles::defaultNames(), reply));
    return reply.isFinished() && reply.value().rows().size() == PageLength;
}

// A page by the model, or by the module as the tree shows it: somewhere in the list, at another
// place each time, at the same ones in every run.
Workload page(int size, Parts parts, Order order) {
    constexpr int Stride = 7919; // prime, so all of the list is visited
    const auto from = std::make_shared<int>(0);
    const auto readPage = parts == Parts::Module ? browseRows : readItems;
    Workload page{{1, size, order, parts}};
    page.begin = [](BenchStore& store) { store.readThrough(); };
    page.prepare = [=](BenchStore&) { *from = (*from + Stride) % (size - PageLength); };
    page.baseline = [=](BenchStore& store) {
        const int first = *from;
        return store.baseline()
                   .getItems(store.baselineList, first, first + PageLength - 1)
                   .size() == PageLength;
    };
    page.module = [=](BenchStore& store) { return readPage(store, *from); };
    return page;
}

// All items of a list, asked for by their paths as another list that takes them over asks for them;
// held against the model reading the same items where they stand.
Workload prepareByPath(int size) {
    const auto paths = std::make_shared<QStringList>();
    Workload prepare{{1, size, Order::Albums, Parts::Module}};
    prepare.begin = [=](BenchStore& store) {
        for (const OrvoPlayListItem& item : store.list()->getItems(0, size))
            paths->append((OrvoPlayListItemPath() + QString::number(item.uid())).toString());
    };
    prepare.baseline = [=](BenchStore& store) {
        return store.list()->getItems(0, size).size() == size;
    };
    prepare.module = [=](BenchStore&) {
        QVariant answer;
        return BenchStore::send(OrvoPlayListPlPrepareItemsPath(), *paths, &answer) &&
               answer.toList().size() == size;
    };
    return prepare;
}

// What a start reads: all playlists and collections, on a connection that has read nothing yet.
Workload load(int size) {
    constexpr int Entries = 100;
    const int lists = size / Entries;
    Workload load{{lists, Entries, Order::Albums, Parts::Store}};
    load.prepare = [](BenchStore& store) { store.reopen(false); };
    load.baseline = [=](BenchStore& store) {
        return store.baseline().loadPlayLists().size() == std::size_t(lists) + 1;
    };
    load.module = [=](BenchStore& store) {
        store.makeManager();
        return store.manager().getAllPlayList().size() == lists;
    };
    return load;
}

} // namespace

std::vector<Work> readWorks() {
    using enum Work::Length;
    const char* base = "baseline";
    const auto pages = [](Parts parts, Order order) {
        return [=](int size) { return page(size, parts, order); };
    };
    const auto rows = pages(Parts::Module, Order::Albums);
    const auto mixedRows = pages(Parts::Module, Order::Mixed);
    return {
        {"page of 50", base, 2.5, 0.1, Short, {}, pages(Parts::Model, Order::Albums)},
        {"page of 50, mixed", base, 2.5, 0.1, Short, {}, pages(Parts::Model, Order::Mixed)},
        {"page of 50 as browse rows", base, 6.0, 0.1, Short, {}, rows},
        {"page of 50 as browse rows, mixed", base, 6.0, 0.1, Short, {}, mixedRows},
        {"prepare n by path", "reading", 3.0, 1.2, Long, {}, prepareByPath},
        {"load 1,000 lists of 100", base, 2.0, {}, Long, 100000, load},
    };
}
