#include <taglib/fileref.h>
#include <taglib/tag.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLibrary>

#include "BenchStore.h"
#include "Items.h"
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
    explicit Music(const Setting& setting)
        : store(setting, {1, 0}, BenchStore::Parts::Module),
          folder(setting.folder + QStringLiteral("/orvo-music-XXXXXX")) {}

    BenchStore store;
    QTemporaryDir folder;
    std::unique_ptr<CMAbstractWorker> files;
    std::unique_ptr<Items> items; // what the module makes of them

    bool isReady() const {
        const QVariantHash scan = files->getValue(CMPath(QStringLiteral("files:scan"))).toHash();
        return scan.value(QStringLiteral("state")) == QLatin1String("ready");
    }
};

QVariantList wholeTree() {
    return {QStringLiteral("files:tree")};
}

bool load(Music& music, const Setting& setting) {
    using Create = CMAbstractWorker* (*)(QHash<QString, QVariant>);
    const auto create = reinterpret_cast<Create>(QLibrary::resolve(
        QCoreApplication::applicationDirPath() + QStringLiteral("/../lib/liborvo_files.so"),
        "worker_create"));
    if (!create || !writeMusic(music.folder.path(), Items::of(setting.size).ours()))
        return false;
    music.files.reset(create({{QStringLiteral("musicDir"), music.folder.path()}}));
    while (!music.isReady())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QVariant prepared;
    const CMPath prepare = CMPath::fromPrefix(QStringLiteral("files")) + OrvoPlayListPrepareItems();
    if (!BenchStore::send(prepare, wholeTree(), &prepared))
        return false;
    QList<OrvoPlayListItem> items;
    for (const QVariant& item : prepared.toList())
        items.append(OrvoPlayListItem(item));
    music.items = std::make_unique<Items>(items);
    return music.items->size() == setting.size;
}

// A folder of n tracks by the command, from the request to its answer; the files are known and
// their tags read. The baseline adds the items that the files module makes of them.
Workload addFolder(const Setting& setting) {
    const auto music = std::make_shared<Music>(setting);
    const bool isLoaded = load(*music, setting);
    OrvoPlayListPlAddItems args;
    args.setPlid(1);
    args.setMode(OrvoPlayListAddPosition::Append);
    args.setItems(wholeTree());
    Workload add;
    add.prepare = [=] {
        // What the answer before has left to be done.
        QCoreApplication::processEvents();
        music->store.list()->clearItems();
        music->store.baseline().clearItems(music->store.baselineList());
    };
    add.baseline = [=] {
        return isLoaded && music->store.baseline().addItems(music->store.baselineList(),
                                                            Baseline::Position::Append,
                                                            music->items->forBaseline());
    };
    add.module = [=] {
        return isLoaded && BenchStore::send(OrvoPlayListPlAddItemsPath(), args.toVariant()) &&
               music->store.list()->getSize() == setting.size;
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
