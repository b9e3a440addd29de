#include <taglib/fileref.h>
#include <taglib/tag.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLibrary>

#include "CMLog.h"
#include "OrvoPlayListCommands.h"
#include "Workload.h"

namespace {

TagLib::String tagText(const QString& text) {
    return TagLib::String(text.toUtf8().constData(), TagLib::String::UTF8);
}

// A tagged file of the shortest sound.
bool writeTrack(const QString& name, const OrvoPlayListItem& item) {
    static const QByteArray silence =
        QByteArray::fromHex("524946462800000057415645666d7420100000000100010040"
                            "1f0000803e00000200100064617461040000000000"
                            "0000");
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(silence) != silence.size())
        return false;
    file.close();
    TagLib::FileRef tagged(QFile::encodeName(name).constData());
    if (tagged.isNull())
        return false;
    tagged.tag()->setTitle(tagText(item.title()));
    tagged.tag()->setArtist(tagText(item.artist()));
    tagged.tag()->setAlbum(tagText(item.album()));
    tagged.tag()->setGenre(tagText(item.genre()));
    return tagged.save();
}

bool writeMusic(const QString& folder, const QList<OrvoPlayListItem>& items) {
    for (int i = 0; i < items.size(); ++i) {
        const QString album =
            QStringLiteral("%1/%2 - %3").arg(folder, items.at(i).artist(), items.at(i).album());
        if (!QDir().mkpath(album) ||
            !writeTrack(QStringLiteral("%1/%2.wav").arg(album).arg(i), items.at(i)))
            return false;
    }
    return true;
}

// The folder's tracks, read by the files module, which is loaded as the host loads it.
struct Music {
    std::unique_ptr<CMAbstractWorker> files;
    std::unique_ptr<Items> items; // what the module makes of them
};

const QVariantList wholeTree{QStringLiteral("files:tree")};

void load(Music* music, int size) {
    using Create = CMAbstractWorker* (*)(QHash<QString, QVariant>);
    const auto create = reinterpret_cast<Create>(QLibrary::resolve(
        QCoreApplication::applicationDirPath() + QStringLiteral("/../lib/liborvo_files.so"),
        "worker_create"));
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
                     wholeTree, &prepared);
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
        // What the answer before has left to be done.
        QCoreApplication::processEvents();
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
        args.setItems(wholeTree);
        return BenchStore::send(OrvoPlayListPlAddItemsPath(), args.toVariant()) &&
               store.list()->getSize() == size && music->items->size() == size;
    };
    return add;
}

} // namespace

std::vector<Work> folderWorks() {
    using Length = Work::Length;
    return {
        {"add a folder of 1,000", "baseline", 2.0, {}, Length::Long, 1000, addFolder},
        {"add a folder of 10,000", "baseline", 2.0, {}, Length::Long, 10000, addFolder},
    };
}
