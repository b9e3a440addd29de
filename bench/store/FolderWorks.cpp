#include <taglib/fileref.h>
#include <taglib/tag.h>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLibrary>
#include <QTemporaryDir>

#include "Items.h"
#include "ModuleTurns.h"
#include "OrvoPlayListCommands.h"

namespace {

TagLib::String tagText(const QString& text) {
    return TagLib::String(text.toUtf8().constData(), TagLib::String::UTF8);
}

// A tagged file of the shortest sound, where the address of the item says.
bool writeTrack(const QString& file, const OrvoPlayListItem& item) {
    static const QByteArray silence =
        QByteArray::fromHex("524946462800000057415645666d7420100000000100010040"
                            "1f0000803e00000200100064617461040000000000"
                            "0000");
    QFile track(file);
    if (!track.open(QIODevice::WriteOnly) || track.write(silence) != silence.size())
        return false;
    track.close();
    TagLib::FileRef tagged(QFile::encodeName(file).constData());
    if (tagged.isNull())
        return false;
    tagged.tag()->setTitle(tagText(item.title()));
    tagged.tag()->setArtist(tagText(item.artist()));
    tagged.tag()->setAlbum(tagText(item.album()));
    tagged.tag()->setGenre(tagText(item.genre()));
    return tagged.save();
}

// A folder of n tracks by the command, from the request to its answer; the files are known and
// their tags read. The floor adds the items that the files module makes of them.
class AddFolder : public ModuleTurns {
public:
    explicit AddFolder(const Setting& setting)
        : ModuleTurns(setting, {1, 0}), m_music(setting.folder + QStringLiteral("/music-XXXXXX")) {
        m_ok = writeMusic() && loadModule() && scan() && prepareForFloor();
    }

    void prepare() override {
        // What the answer before has left to be done.
        QCoreApplication::processEvents();
        m_ok = m_ok && list()->clearItems() && floor_clear(store(), &floorList);
    }
    bool base() override {
        return m_ok && floor_add(store(), &floorList, floor_append, m_items->forFloor().data(),
                                 m_items->size());
    }
    bool ours() override {
        OrvoPlayListPlAddItems args;
        args.setPlid(list()->getUid());
        args.setMode(OrvoPlayListAddPosition::Append);
        args.setItems({folderPath().toString()});
        return m_ok && finish(OrvoPlayListPlAddItemsPath(), args.toVariant()) &&
               list()->getSize() == size();
    }

private:
    static CMPath folderPath() { return CMPath(QStringLiteral("files:tree")); }

    bool writeMusic() {
        constexpr int TracksPerFolder = 12;
        const QList<OrvoPlayListItem>& items = Items::of(size()).ours();
        for (int i = 0; i < size(); ++i) {
            const QString folder =
                QStringLiteral("%1/%2 - %3")
                    .arg(m_music.path(), items.at(i).artist(), items.at(i).album());
            if (i % TracksPerFolder == 0 && !QDir().mkpath(folder))
                return false;
            if (!writeTrack(QStringLiteral("%1/%2.wav").arg(folder).arg(i), items.at(i)))
                return false;
        }
        return true;
    }
    // As the host does.
    bool loadModule() {
        using Create = CMAbstractWorker* (*)(QHash<QString, QVariant>);
        const auto create = reinterpret_cast<Create>(QLibrary::resolve(
            QCoreApplication::applicationDirPath() + QStringLiteral("/../lib/liborvo_files.so"),
            "worker_create"));
        if (create)
            m_files.reset(create({{QStringLiteral("musicDir"), m_music.path()}}));
        return create != nullptr;
    }
    bool scan() {
        const auto state = [this] {
            return m_files->getValue(CMPath(QStringLiteral("files:scan")))
                .toHash()
                .value(QStringLiteral("state"))
                .toString();
        };
        while (state() != QLatin1String("ready"))
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return true;
    }
    bool prepareForFloor() {
        QVariant answer;
        const CMPath path =
            CMPath::fromPrefix(QStringLiteral("files")) + OrvoPlayListPrepareItems();
        if (!finish(path, QStringList(folderPath().toString()), &answer))
            return false;
        QList<OrvoPlayListItem> items;
        for (const QVariant& item : answer.toList())
            items.append(OrvoPlayListItem(item));
        m_items = std::make_unique<Items>(items);
        return m_items->size() == size();
    }
    bool finish(const CMPath& path, const QVariant& value, QVariant* answer = nullptr) {
        const CMReply<QVariant> reply;
        CMRoot()->setDataRequest(CMSetDataRequest(path, value, reply));
        while (!reply.isFinished())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (answer)
            *answer = reply.value();
        return !reply.isError();
    }

    QTemporaryDir m_music;
    std::unique_ptr<CMAbstractWorker> m_files;
    std::unique_ptr<Items> m_items;
    bool m_ok;
};

} // namespace

std::vector<Work> folderWorks() {
    using Length = Work::Length;
    const auto add = [](const Setting& s) { return std::make_unique<AddFolder>(s); };
    return {
        {"add a folder of 1,000", "floor", 2.0, {}, Length::Long, 1000, add},
        {"add a folder of 10,000", "floor", 2.0, {}, Length::Long, 10000, add},
    };
}
