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

constexpr char StoreFile[] = "data-rw/playlists/playlists.sqlite";

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
    QFile store(StoreFile);
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
    sqlite3_close(m_raw);
    m_raw = nullptr;
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
    QFile::remove(QString::fromLatin1(StoreFile) + "-journal");
    write(StoreFile, m_emptyStore);
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

QStringList World::query(const QString& sql) {
    if (!m_raw)
        Fuzz::require(sqlite3_open(StoreFile, &m_raw) == SQLITE_OK, "the store cannot be opened");
    QStringList texts;
    sqlite3_stmt* statement = nullptr;
    const int prepared =
        sqlite3_prepare_v2(m_raw, sql.toUtf8().constData(), -1, &statement, nullptr);
    Fuzz::require(prepared == SQLITE_OK, "the store cannot be read: " + sql);
    int code = SQLITE_OK;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW)
        texts.append(
            QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)),
                              sqlite3_column_bytes(statement, 0)));
    Fuzz::require(code == SQLITE_DONE, "the store cannot be read on: " + sql);
    sqlite3_finalize(statement);
    return texts;
}

void World::run(const QString& sql) {
    query(sql);
}

void World::requireSoundStore(bool thorough) {
    struct Rule {
        const char* broken;
        const char* sql;
        bool thorough;
    };
    static const Rule rules[] = {
        {"numbers that are not dense",
         "SELECT playlist || ': ' || group_concat(sequenceNumber) FROM playlists_items"
         " GROUP BY playlist HAVING min(sequenceNumber) <> 0"
         " OR max(sequenceNumber) <> count(*) - 1",
         false},
        {"items without exactly one entry",
         "SELECT uid FROM items LEFT JOIN playlists_items ON item = uid GROUP BY uid"
         " HAVING count(item) <> 1",
         false},
        {"no play queue", "SELECT 'none' WHERE NOT EXISTS (SELECT 1 FROM playlists WHERE uid = 0)",
         false},
        {"a foreign key that leads nowhere", "PRAGMA foreign_key_check", true},
        {"a damaged file", "SELECT * FROM pragma_integrity_check WHERE integrity_check <> 'ok'",
         true},
    };
    for (const Rule& rule : rules) {
        if (rule.thorough && !thorough)
            continue;
        const QStringList found = query(QString::fromLatin1(rule.sql));
        Fuzz::require(found.isEmpty(),
                      QString::fromLatin1(rule.broken) + ": " + found.join(QStringLiteral(" | ")));
    }
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
