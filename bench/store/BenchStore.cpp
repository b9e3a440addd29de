#include "BenchStore.h"

#include <cstdio>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include "CMLog.h"
#include "OrvoPlayListCommands.h"
#include "PlayLogicProbe.h"

namespace {

constexpr const char* BaselineFile = "baseline.sqlite";
constexpr const char* StoreFile = "data-rw/playlists/playlists.sqlite";

} // namespace

BenchStore::BenchStore(const QString& storage, bool isDisk, const Contents& contents)
    : m_contents(contents),
      m_isDisk(isDisk),
      m_oldFolder(QDir::currentPath()),
      m_folder(storage + QStringLiteral("/orvo-bench-XXXXXX")) {
    CM_ASSERT(QDir::setCurrent(m_folder.path()), "no folder on the storage");
    PlayLogicInterface::playerInstance()->setPlayer(this);
    m_image = image();
    reopen(true);
}

BenchStore::~BenchStore() {
    close();
    PlayLogicInterface::playerInstance()->setPlayer(nullptr);
    QDir::setCurrent(m_oldFolder);
}

QByteArray BenchStore::image() const {
    const Database tables(0, false); // makes them
    Baseline store(StoreFile);
    const Items& items = Items::of(m_contents.length, m_contents.order);
    for (int i = 0; i < m_contents.lists; ++i) {
        Baseline::List list;
        CM_ASSERT(store.createPlayList("list " + std::to_string(i), &list) &&
                      store.addItems(&list, Baseline::Position::Append, items.forBaseline()),
                  "no entries to begin with");
    }
    QFile file(QString::fromLatin1(StoreFile));
    CM_ASSERT(file.open(QIODevice::ReadOnly), "what was laid out cannot be read");
    return file.readAll();
}

void BenchStore::reopen(bool anew) {
    close();
    for (const char* name : {BaselineFile, StoreFile}) {
        QFile file(QString::fromLatin1(name));
        // On a disk all of it is there before anything is timed.
        CM_ASSERT(!anew || (file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                            file.write(m_image) == m_image.size() && file.flush() &&
                            (!m_isDisk || fsync(file.handle()) == 0)),
                  "a store cannot be laid out");
    }
    open();
}

void BenchStore::open() {
    if (m_contents.parts == Parts::Module) {
        // All items of the longest list, prepared at once, are more than a device takes by default.
        constexpr qint64 MaxAdditionBytes = 1 << 30;
        m_root = std::make_unique<CMRootWorker>(QStringLiteral("settings.json"));
        m_worker = std::make_unique<PlayListWorker>(QHash<QString, QVariant>{
            {QStringLiteral("playlists/maxAdditionBytes"), MaxAdditionBytes}});
        auto* logic =
            static_cast<PlayListPlayLogic*>(m_worker->nodes()->find(OrvoPlayListsPlayLogicPath()));
        m_modulesManager = PlayLogicProbe(logic).manager();
    } else {
        m_database = std::make_unique<Database>(m_contents.itemsLimit, false);
        if (m_contents.parts == Parts::Model)
            makeManager();
    }
    m_baseline = std::make_unique<Baseline>(BaselineFile);
    baselineList = {1, m_contents.length, -1};
}

void BenchStore::close() {
    m_worker.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_root.reset();
    m_ownManager.reset();
    m_database.reset();
    m_baseline.reset();
}

bool BenchStore::send(const CMPath& path, const QVariant& value, QVariant* answer) {
    const CMReply<QVariant> reply;
    CMRoot()->setDataRequest(CMSetDataRequest(path, value, reply));
    while (!reply.isFinished())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (reply.isError())
        std::fprintf(stderr, "%s is refused: %s\n", qPrintable(path.toString()),
                     qPrintable(reply.error().name()));
    else if (answer)
        *answer = reply.value();
    return !reply.isError();
}

void BenchStore::play(bool shuffled) {
    list()->setShuffle(shuffled);
    OrvoRoles container;
    container.setPath(itemsPath());
    OrvoPlayLogicPlayArgs args;
    args.setKind(OrvoPlayLogicRequestKind::Play);
    args.setMediaRoles(container);
    args.setIndex(0);
    args.setType(OrvoPlayLogicPlayArgs::ContainerType);
    send(OrvoPlayListsPlayLogicPath(), args.toVariant());
}

void BenchStore::readThrough() {
    constexpr int Piece = 1000;
    for (int from = 0; from < m_contents.length; from += Piece) {
        list()->getItems(from, from + Piece - 1);
        m_baseline->getItems(baselineList, from, from + Piece - 1);
    }
}
