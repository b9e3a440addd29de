#include "BenchStore.h"
#include "Items.h"
#include "Workload.h"

namespace {

constexpr int PageLength = 50;

using Order = Items::Order;
using Parts = BenchStore::Parts;

std::shared_ptr<BenchStore> listOf(const Setting& setting, Parts parts,
                                   Order order = Order::Albums) {
    return std::make_shared<BenchStore>(setting, BenchStore::Contents{1, setting.size, order},
                                        parts);
}

// The start of a page somewhere in the list, another one each time, the same ones in every run.
int nextPage(int* turn, int size) {
    constexpr int Stride = 7919; // prime, so all of the list is visited
    return int(qint64((*turn)++) * Stride % (size - PageLength));
}

bool readItems(BenchStore& store, int from, int to) {
    return store.list()->getItems(from, to).size() == PageLength;
}

bool browseRows(BenchStore&, int from, int to) {
    const CMReplyData<OrvoRowsRoles> reply;
    CMRoot()->getRowsRequest(
        CMGetRowsRequest(BenchStore::itemsPath(), from, to, OrvoRoles::defaultNames(), reply));
    return reply.isFinished() && reply.value().rows().size() == PageLength;
}

// A page by the model, or by the module as the tree shows it.
Workload page(const Setting& setting, Parts parts, Order order) {
    struct Reading {
        std::shared_ptr<BenchStore> store;
        int turn = 0;
        int from = 0;
    };
    const auto reading = std::make_shared<Reading>();
    reading->store = listOf(setting, parts, order);
    reading->store->readThrough();
    const auto readPage = parts == Parts::Module ? browseRows : readItems;
    Workload page;
    page.prepare = [=] { reading->from = nextPage(&reading->turn, setting.size); };
    page.baseline = [=] {
        BenchStore& store = *reading->store;
        return store.baseline()
                   .getItems(*store.baselineList(), reading->from, reading->from + PageLength - 1)
                   .size() == PageLength;
    };
    page.module = [=] {
        return readPage(*reading->store, reading->from, reading->from + PageLength - 1);
    };
    return page;
}

// All items of a list, asked for by their paths as another list that takes them over asks for them;
// held against the model reading the same items where they stand.
Workload prepareByPath(const Setting& setting) {
    const auto store = listOf(setting, Parts::Module);
    QStringList paths;
    for (const OrvoPlayListItem& item : store->list()->getItems(0, setting.size))
        paths.append((OrvoPlayListItemPath() + QString::number(item.uid())).toString());
    Workload prepare;
    prepare.baseline = [=] {
        return store->list()->getItems(0, setting.size).size() == setting.size;
    };
    prepare.module = [=] {
        QVariant answer;
        return BenchStore::send(OrvoPlayListPlPrepareItemsPath(), paths, &answer) &&
               answer.toList().size() == setting.size;
    };
    return prepare;
}

// What a start reads: all playlists and collections, on a connection that has read nothing yet.
Workload load(const Setting& setting) {
    constexpr int Entries = 100;
    const int lists = setting.size / Entries;
    struct Loading {
        std::shared_ptr<BenchStore> store;
        std::unique_ptr<PlayListManager> loaded;
    };
    const auto loading = std::make_shared<Loading>();
    loading->store =
        std::make_shared<BenchStore>(setting, BenchStore::Contents{lists, Entries}, Parts::Store);
    Workload load;
    load.prepare = [=] {
        loading->loaded.reset();
        loading->store->reopen(false);
    };
    load.baseline = [=] {
        return loading->store->baseline().loadPlayLists().size() == std::size_t(lists) + 1;
    };
    load.module = [=] {
        loading->loaded = std::make_unique<PlayListManager>(&loading->store->database());
        return loading->loaded->getAllPlayList().size() == lists;
    };
    return load;
}

} // namespace

std::vector<Work> readWorks() {
    using Length = Work::Length;
    const char* base = "baseline";
    const auto pages = [](Parts parts, Order order) {
        return [=](const Setting& setting) { return page(setting, parts, order); };
    };
    const auto items = pages(Parts::Model, Order::Albums);
    const auto mixed = pages(Parts::Model, Order::Mixed);
    const auto rows = pages(Parts::Module, Order::Albums);
    const auto mixedRows = pages(Parts::Module, Order::Mixed);
    return {
        {"page of 50", base, 2.5, 0.1, Length::Short, {}, items},
        {"page of 50, mixed", base, 2.5, 0.1, Length::Short, {}, mixed},
        {"page of 50 as browse rows", base, 6.0, 0.1, Length::Short, {}, rows},
        {"page of 50 as browse rows, mixed", base, 6.0, 0.1, Length::Short, {}, mixedRows},
        {"prepare n by path", "reading", 3.0, 1.2, Length::Long, {}, prepareByPath},
        {"load 1,000 lists of 100", base, 2.0, {}, Length::Long, 100000, load},
    };
}
