#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QProcess>

#include "CMLog.h"
#include "OrvoPlayListCommands.h"
#include "Workload.h"

namespace {

// A program of the build, or what stands beside.
QString program(const char* name) {
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QString::fromLatin1(name);
}

bool writeMusic(const QString& folder, const QList<OrvoPlayListItem>& items) {
    QProcess tagging;
    tagging.start(program("orvo_bench_tag_files"), {folder});
    for (int i = 0; i < items.size(); ++i)
        tagging.write(QStringLiteral("%1 - %2/%3.flac\tARTIST=%1\tALBUM=%2\tTITLE=%4\tGENRE=%5\n")
                          .arg(items.at(i).artist(), items.at(i).album(), QString::number(i),
                               items.at(i).title(), items.at(i).genre())
                          .toUtf8());
    tagging.closeWriteChannel();
    return tagging.waitForFinished(-1) && tagging.exitCode() == 0;
}

// The folder's tracks, read by the files module, which is loaded as the host loads it.
struct Music {
    std::unique_ptr<CMAbstractWorker> files;
    std::unique_ptr<Items> items; // what the module makes of them
};

const QVariantList WholeTree{QStringLiteral("files:tree")};

void load(Music* music, int size) {
    using Create = CMAbstractWorker* (*)(QHash<QString, QVariant>);
    const auto create = reinterpret_cast<Create>(
        QLibrary::resolve(program("../lib/liborvo_files.so"), "worker_create"));
    const QString folder = QDir::current().filePath(QStringLiteral("music"));
    CM_ASSERT(create && writeMusic(folder, Items::of(size).ours()),
              "no files module, or no music for it");
    music->files.reset(create({{QStringLiteral("musicDir"), folder}}));
    const CMPath scan(QStringLiteral("files:scan"));
    while (music->files->getValue(scan).toHash().value(QStringLiteral("state")) !=
           QLatin1String("ready"))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QVariant prepared;
    BenchStore::send(CMPath::fromPrefix(QStringLiteral("files")) + OrvoPlayListPrepareItems(),
                     WholeTree, &prepared);
    QList<OrvoPlayListItem> items;
    for (const QVariant& item : prepared.toList())
        items.append(OrvoPlayListItem(item));
    music->items = std::make_unique<Items>(items);
}

// A folder of n tracks by the command, from the request to its answer; the files are known and
// their tags read. The baseline adds the items that the files module makes of them.
Workload addFolder(int size) {
    const auto music = std::make_shared<Music>();
    Workload add{{1, 0, Items::Order::Albums, BenchStore::Parts::Module}};
    add.begin = [=](BenchStore&) { load(music.get(), size); };
    add.prepare = [](BenchStore& store) {
        // What the answer before has left to be done. No loop runs here that would delete, too.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        store.list()->clearItems();
        store.baseline().clearItems(&store.baselineList);
    };
    add.baseline = [=](BenchStore& store) {
        return store.baseline().addItems(&store.baselineList, Baseline::Position::Append,
                                         music->items->forBaseline());
    };
    add.module = [=](BenchStore& store) {
        OrvoPlayListPlAddItems args;
        args.setPlid(1);
        args.setMode(OrvoPlayListAddPosition::Append);
        args.setItems(WholeTree);
        return BenchStore::send(OrvoPlayListPlAddItemsPath(), args.toVariant()) &&
               store.list()->getSize() == size && music->items->size() == size;
    };
    return add;
}

} // namespace

std::vector<Work> folderWorks() {
    using enum Work::Length;
    return {
        {"add a folder of 1,000", "baseline", 2.0, {}, Long, 1000, addFolder},
        {"add a folder of 10,000", "baseline", 2.0, {}, Long, 10000, addFolder},
    };
}
