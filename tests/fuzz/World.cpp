#include "World.h"

#include <sqlite3.h>

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include "FilesWorker.h"
#include "FuzzTarget.h"
#include "LateWorker.h"
#include "OrvoPlayListItem.h"
#include "OrvoPlayListPaths.h"
#include "PlayListWorker.h"

namespace {

// A few playlists and rows are within them.
constexpr int SmallAnswerBytes = 16 * 1024;
constexpr int SmallBodyValues = 100;
QHash<QString, QVariant> smallLimits() {
    return {{"playlists/maxItemBytes", 1000},
            {"playlists/maxAdditionBytes", 3000},
            {"playlists/maxNameBytes", 60}};
}

void write(const QString& name, const QByteArray& bytes) {
    QFile file(name);
    Fuzz::require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(),
                  "cannot write " + name);
}

// The shortest file that has a sound in it: 100 bytes of silence.
QByteArray wav() {
    return QByteArray::fromHex("524946468800000057415645666d74201000000001000100e8030000e803000001"
                               "0008006461746164000000") +
           QByteArray(100, char(0x80));
}

// The store is not meant to outlive this process.
int withoutSync(sqlite3* connection, char**, const sqlite3_api_routines*) {
    return sqlite3_exec(connection, "PRAGMA synchronous=OFF;", nullptr, nullptr, nullptr);
}

void send(const CMPath& path, const QVariant& value) {
    const CMReply<QVariant> reply;
    CMRoot()->setDataRequest(CMSetDataRequest(path, value, reply));
    Fuzz::require(reply.isFinished() && !reply.isError(), "the world cannot be made");
}

} // namespace

World& World::instance() {
    static World world;
    return world;
}

World::World() : m_secret(QUuid::createUuid().toByteArray()) {
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(reinterpret_cast<void*>(withoutSync)));
    const QDir folder(m_folder.path());
    for (const char* name : {"data", "music/album", "page"})
        Fuzz::require(folder.mkpath(QString::fromLatin1(name)), "no temporary folder");
    write(folder.filePath("outside.png"), m_secret);
    write(folder.filePath("music/One.wav"), wav());
    write(folder.filePath("music/album/Two.wav"), wav());
    write(folder.filePath("music/album/cover.png"), "a picture");
    write(folder.filePath("page/index.html"), "a page");
    QFile::link(folder.filePath("outside.png"), folder.filePath("music/out.png"));
    QFile::link(folder.filePath("outside.png"), folder.filePath("page/out.png"));
    QDir::setCurrent(folder.filePath("data"));

    startOthers();
    start();
    send(OrvoPlayListPlCreatePath(), QVariantHash{{"name", "Party"}});
    send(OrvoPlayListPlCreatePath(), QVariantHash{{"name", "Quiet"}});
    send(OrvoPlayListPlAddExternalItemsPath(),
         QVariantHash{{"plid", 1}, {"items", QVariantList{item("a"), item("b"), item("c")}}});
    send(OrvoPlayListClCreatePath(), QVariantHash{{"name", "Box"}});
    send(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", 1}, {"plid", 2}});
    stop();
    QFile store(QString::fromLatin1(File));
    Fuzz::require(store.open(QIODevice::ReadOnly), "there is no store");
    m_emptyStore = store.readAll();
    start();
    m_files = files();
}

World::~World() {
    stop();
    stopOthers();
}

void World::startOthers() {
    m_root = std::make_unique<CMRootWorker>();
    m_filesModule = std::make_unique<FilesWorker>(
        QHash<QString, QVariant>{{QStringLiteral("musicDir"), musicFolder()}});
    m_attic = std::make_unique<LateWorker>(QStringLiteral("Attic"), true);
    m_player = std::make_unique<LateWorker>(QStringLiteral("Player"), false);
}

void World::stopOthers() {
    m_attic.reset();
    m_player.reset();
    m_filesModule.reset();
    m_root.reset();
}

void World::start() {
    m_root->setValue(OrvoPlayListsSettingsDataBaseItemsLimitPath(), m_itemsLimit, CMVoidReply());
    m_root->setValue(OrvoPlayListSettingsDataBaseVacuumPath(), false, CMVoidReply());
    m_playLists = std::make_unique<PlayListWorker>(
        m_limits == Limits::Small ? smallLimits() : QHash<QString, QVariant>());
    handleEvents();
}

void World::stop() {
    disconnect();
    m_playLists.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void World::reset(int itemsLimit, bool settingsWritten) {
    stop();
    if (settingsWritten) {
        stopOthers();
        startOthers();
    }
    m_itemsLimit = itemsLimit;
    QFile::remove(QString::fromLatin1(File) + "-journal");
    write(QString::fromLatin1(File), m_emptyStore);
    start();
}

void World::restart() {
    stop();
    start();
}

void World::setLimits(Limits limits) {
    if (m_limits == limits)
        return;
    m_limits = limits;
    restart();
}

ApiLimits World::apiLimits() const {
    ApiLimits limits;
    if (m_limits == Limits::Small) {
        limits.answerBytes = SmallAnswerBytes;
        limits.bodyValues = SmallBodyValues;
    }
    return limits;
}

void World::handleEvents() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void World::settle() {
    handleEvents();
    m_attic->answerKept();
    handleEvents();
}

void World::requireInvariants(bool thorough) {
    const QStringList broken = brokenRules(thorough);
    Fuzz::require(broken.isEmpty(), broken.join(QStringLiteral(" | ")));
}

QStringList World::files() const {
    QStringList found;
    QDirIterator each(m_folder.path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (each.hasNext()) {
        const QString name = each.next();
        if (!name.endsWith(QLatin1String("-journal")))
            found.append(
                name + ' ' +
                (name.contains("/data-rw/") ? "" : QString::number(each.fileInfo().size())));
    }
    found.sort();
    return found;
}

void World::requireSameFiles() {
    Fuzz::require(files() == m_files, "files have come, gone or changed: " + files().join(' '));
}

QVariantHash World::item(const QString& title) {
    const QJsonObject roles{
        {"title", title},
        {"type", 3},
        {"mediaData", QJsonObject{{"metaData", QJsonObject{{"prePlayPath", "files:prePlay"}}},
                                  {"resources", QJsonArray{QJsonObject{{"uri", "file:///x"}}}}}}};
    OrvoPlayListItem item;
    item.setTitle(title);
    item.setUrl(QStringLiteral("file:///x"));
    item.setServiceId(QStringLiteral("files"));
    item.setOrvoRoles(QString::fromUtf8(QJsonDocument(roles).toJson(QJsonDocument::Compact)));
    return item.toHash();
}
