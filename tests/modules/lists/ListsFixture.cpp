#include "ListsFixture.h"

#include <dlfcn.h>

#include <QDir>
#include <QTextCodec>
#include <QUrl>

void ListsFixture::SetUpTestSuite() {
    // As the host does, so that the tests run alike in every locale.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

ListsFixture::ListsFixture() : m_folderBefore(QDir::currentPath()) {
    QDir(m_folder.path()).mkpath("music");
    QDir(m_folder.path()).mkpath("data");
    QDir::setCurrent(m_folder.path()); // the store lies below it
    m_root = std::make_unique<CMRootWorker>();
}

ListsFixture::~ListsFixture() {
    unload();
    m_root.reset();
    QDir::setCurrent(m_folderBefore);
}

void ListsFixture::track(const QString& name, const SoundTags& tags, int durationMs) {
    SoundFiles::writeWav(musicFolder() + '/' + name, tags, durationMs);
}

void ListsFixture::setItemsLimit(int items) {
    CMRoot()->setValue(OrvoPlayListsSettingsDataBaseItemsLimitPath(),
                       OrvoValue::fromI32(items).toVariant(), CMVoidReply());
}

void ListsFixture::load(const char* module, const QHash<QString, QVariant>& config) {
    void* library = dlopen(module, RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(library) << dlerror();
    using Create = CMAbstractWorker* (*)(QHash<QString, QVariant>);
    const auto create = reinterpret_cast<Create>(dlsym(library, "worker_create"));
    ASSERT_TRUE(create);
    m_modules.emplace_back(create(config));
}

void ListsFixture::unload() {
    while (!m_modules.empty())
        m_modules.pop_back();
}

void ListsFixture::unloadFiles() {
    m_modules.erase(m_modules.begin() + 1);
}

void ListsFixture::restart() {
    unload();
    start(m_config);
}

void ListsFixture::start(const QHash<QString, QVariant>& config) {
    m_config = config;
    QHash<QString, QVariant> all = config;
    all.insert("musicDir", musicFolder());
    all.insert("dataDir", m_folder.path() + "/data");
    load(PLAYLISTS_MODULE, all);
    load(FILES_MODULE, all);
    m_modules.push_back(std::make_unique<ListsWorker>(all));
    const auto isScanned = [] {
        return CMRoot()->getValue(CMPath("files:scan")).toHash().value("state") == "ready";
    };
    ASSERT_TRUE(waitUntil(isScanned));
}

QStringList ListsFixture::Answer::notFound() const {
    QStringList lines;
    for (const QVariant& each : value.value("notFound").toList())
        lines.append(QStringLiteral("%1: %2")
                         .arg(each.toHash().value("line").toInt())
                         .arg(each.toHash().value("text").toString()));
    return lines;
}

ListsFixture::Answer ListsFixture::call(const QString& path, const QVariantHash& args) {
    const CMReply<QVariant> reply;
    CMRoot()->invoke(CMPath(path), args, reply);
    EXPECT_TRUE(waitUntil([&reply] { return reply.isFinished(); })) << qPrintable(path);
    return {reply.error(), reply.value().toHash()};
}

ListsFixture::Answer ListsFixture::importText(const QString& text, const QString& file) {
    return call("lists:import", {{"text", text}, {"file", file}});
}

ListsFixture::Answer ListsFixture::importBytes(const QByteArray& bytes, const QString& file,
                                               const QString& base) {
    return call("lists:import",
                {{"bytes", QString::fromLatin1(bytes.toBase64())}, {"file", file}, {"base", base}});
}

ListsFixture::Answer ListsFixture::exportList(int plid, const QString& format,
                                              const QString& paths) {
    return call("lists:export", {{"plid", plid}, {"format", format}, {"paths", paths}});
}

QList<OrvoRoles> ListsFixture::rows(int plid) {
    const QString path = plid == 0 ? QString("playlists:pq/items")
                                   : QStringLiteral("playlists:pl/items/%1").arg(plid);
    const QStringList names = {OrvoRoles::Title(), OrvoRoles::MediaData()};
    const CMReplyData<OrvoRowsRoles> reply;
    CMRoot()->getRowsRequest(
        CMGetRowsRequest(CMPath(path), 0, CMGetRowsRequest::LastRow, names, reply));
    EXPECT_TRUE(waitUntil([&reply] { return reply.isFinished(); })) << qPrintable(path);
    QList<OrvoRoles> all;
    for (const QVariant& row : reply.value().rows()) {
        OrvoRoles roles;
        for (int i = 0; i < names.size(); ++i)
            roles.setAttribute(names.at(i), row.toList().value(i));
        all.append(roles);
    }
    return all;
}

QStringList ListsFixture::tracks(int plid) const {
    const QString start = musicFolder() + '/';
    QStringList names;
    for (const OrvoRoles& row : rows(plid)) {
        const QUrl url(row.mediaData().resources().value(0).uri());
        const QString file = url.toLocalFile();
        names.append(file.startsWith(start) ? file.mid(start.size()) : url.toString());
    }
    return names;
}

QStringList ListsFixture::playlistNames() {
    const CMReplyData<OrvoRowsRoles> reply;
    CMRoot()->getRowsRequest(CMGetRowsRequest(
        CMPath("playlists:pl/list"), 0, CMGetRowsRequest::LastRow, {OrvoRoles::Title()}, reply));
    QStringList names;
    for (const QVariant& row : reply.value().rows())
        names.append(TrString::fromVariant(row.toList().value(0)).toString());
    names.removeFirst(); // the entry that makes one
    return names;
}
