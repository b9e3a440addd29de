#include "FilesFixture.h"

#include <QDir>
#include <QTextCodec>
#include <QUrl>

void FilesFixture::SetUpTestSuite() {
    // As the host does, so that the tests run alike in every locale.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

void FilesFixture::SetUp() {
    ASSERT_TRUE(m_folder.isValid());
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("music"));
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("data"));
    m_root = std::make_unique<CMRootWorker>();
}

void FilesFixture::TearDown() {
    m_worker.reset();
    m_root.reset();
}

QString FilesFixture::url(const QString& file) {
    return QString::fromLatin1(QUrl::fromLocalFile(file).toEncoded());
}

void FilesFixture::start() {
    m_worker = std::make_unique<FilesWorker>(QHash<QString, QVariant>{
        {"musicDir", m_folder.path() + "/music"}, {"dataDir", m_folder.path() + "/data"}});
}

void FilesFixture::startAndScan() {
    start();
    ASSERT_TRUE(waitUntilScanned());
}

bool FilesFixture::waitUntilScanned() {
    return waitUntil([this] { return scanValue().value("state") == "ready"; });
}

QVariantHash FilesFixture::scanValue() const {
    return CMRoot()->getValue(CMPath("files:scan")).toHash();
}

QVariantList FilesFixture::Rows::column(const QString& role) const {
    QVariantList values;
    for (const QVariant& each : answer.rows())
        values.append(each.toList().value(names.indexOf(role)));
    return values;
}

QStringList FilesFixture::Rows::titles() const {
    QStringList texts;
    for (const QVariant& title : column(OrvoRoles::Title()))
        texts.append(TrString::fromVariant(title).toString());
    return texts;
}

OrvoRoles FilesFixture::Rows::row(int index) const {
    OrvoRoles roles;
    const QVariantList values = answer.rows().value(index).toList();
    for (int i = 0; i < values.size(); ++i)
        roles.setAttribute(names.at(i), values.at(i));
    return roles;
}

FilesFixture::Rows FilesFixture::rows(const QString& path, int from, int to,
                                      const QStringList& names) const {
    Rows result;
    result.names = names;
    const CMReplyData<OrvoRowsRoles> reply;
    CMRoot()->getRowsRequest(CMGetRowsRequest(CMPath(path), from, to, names, reply));
    EXPECT_TRUE(reply.isFinished()) << qUtf8Printable(path);
    result.error = reply.error();
    result.answer = reply.value();
    return result;
}

CMReply<QVariant> FilesFixture::set(const QString& path, const QVariant& value) const {
    const CMReply<QVariant> reply;
    CMRoot()->invoke(CMPath(path), value, reply);
    return reply;
}

QList<OrvoPlayListItem> FilesFixture::prepare(const QStringList& paths) const {
    const CMReply<QVariant> reply = set("files:prepareItems", paths);
    EXPECT_TRUE(waitUntil([&reply] { return reply.isFinished(); }));
    EXPECT_FALSE(reply.isError());
    QList<OrvoPlayListItem> items;
    for (const QVariant& item : reply.value().toList())
        items.append(OrvoPlayListItem(item));
    return items;
}

QStringList FilesFixture::itemTitles(const QList<OrvoPlayListItem>& items) {
    QStringList titles;
    for (const OrvoPlayListItem& item : items)
        titles.append(item.title());
    return titles;
}
