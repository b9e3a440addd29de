#include "ModuleFixture.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"
#include "PlayListWorker.h"

OrvoValue Answer::result() const {
    return OrvoActionReply(value.toHash()).result().value();
}

void RecordingWorker::setDataRequest(const CMSetDataRequest& request) {
    requests.append(request);
    const bool isPrepare =
        request.path() == CMPath::fromPrefix(prefix()) + OrvoPlayListPrepareItems();
    if (!isPrepare) {
        request.reply().setValue(QVariant());
        return;
    }
    if (keepPrepareRequests)
        return;
    QVariantList prepared;
    const QVariantList paths = request.value().toList();
    for (const QVariant& path : paths) {
        if (items.contains(path.toString()))
            prepared.append(items.value(path.toString()).toVariant());
    }
    request.reply().setValue(prepared);
}

ModuleFixture::ModuleFixture() : m_oldFolder(QDir::currentPath()) {
    EXPECT_TRUE(folder.isValid());
    QDir::setCurrent(folder.path());
    m_root = std::make_unique<CMRootWorker>(folder.filePath("settings.json"));
    QObject::connect(m_root->events(), &CMSubscribe::changed, m_root->events(),
                     [this](const CMChange& change) {
                         if (change.kind == CMChange::Kind::Value)
                             return;
                         const bool rows = change.kind == CMChange::Kind::Rows;
                         QStringList words = {rows ? "Rows" : "StartingWith",
                                              change.path.toString(), change.changes.join(',')};
                         if (change.start >= 0)
                             words.append(QString::number(change.start));
                         words.append(QString::number(change.count));
                         events.append(words.join(' '));
                     });
}

ModuleFixture::~ModuleFixture() {
    m_worker.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_root.reset();
    QDir::setCurrent(m_oldFolder);
    if (HasFailure()) {
        folder.setAutoRemove(false);
        std::printf("the folder of the failed test is kept: %s\n", qPrintable(folder.path()));
    }
}

PlayListWorker* ModuleFixture::worker() {
    if (!m_worker)
        m_worker = std::make_unique<PlayListWorker>(config);
    return m_worker.get();
}

void ModuleFixture::restart() {
    m_worker.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    worker();
}

void ModuleFixture::setSetting(const CMPath& path, const QVariant& value) {
    const CMVoidReply reply;
    m_root->setValue(path, value, reply);
    ASSERT_FALSE(reply.isError());
}

LateAnswer ModuleFixture::sendLate(const CMPath& path, const QVariant& value) {
    worker();
    const auto answer = std::make_shared<Answer>();
    const CMReply<QVariant> reply;
    reply.onSuccess([answer](const QVariant& result) {
        EXPECT_FALSE(answer->answered);
        answer->answered = true;
        answer->value = result;
    });
    reply.onError([answer](const CMError& error) {
        EXPECT_FALSE(answer->answered);
        answer->answered = true;
        answer->failed = true;
        answer->error = error;
    });
    m_root->setDataRequest(CMSetDataRequest(path, value, reply));
    return answer;
}

Answer ModuleFixture::send(const CMPath& path, const QVariant& value) {
    const LateAnswer answer = sendLate(path, value);
    if (!answer->answered)
        QCoreApplication::processEvents();
    return *answer;
}

OrvoRowsRoles ModuleFixture::rows(const CMPath& path, int from, int to, const QStringList& roles) {
    worker();
    const CMReplyData<OrvoRowsRoles> reply;
    m_root->getRowsRequest(CMGetRowsRequest(path, from, to, roles, reply));
    EXPECT_TRUE(reply.isFinished()) << qPrintable(path.toString());
    EXPECT_FALSE(reply.isError()) << qPrintable(reply.error().message().toString());
    return reply.value();
}

QList<OrvoRoles> ModuleFixture::asRoles(const OrvoRowsRoles& reply, const QStringList& roles) {
    QList<OrvoRoles> result;
    const QVariantList rows = reply.rows();
    for (const QVariant& row : rows) {
        const QVariantList values = row.toList();
        EXPECT_EQ(values.size(), roles.size());
        OrvoRoles rowRoles;
        for (int i = 0; i < roles.size(); ++i) {
            if (values.value(i).isValid())
                rowRoles.setAttribute(roles.at(i), values.value(i));
        }
        result.append(rowRoles);
    }
    return result;
}

int ModuleFixture::createPlayList(const QString& name) {
    OrvoPlayListPlCreate args;
    args.setName(name);
    return send(OrvoPlayListPlCreatePath(), args).result().i32();
}

int ModuleFixture::createCollection(const QString& name) {
    OrvoPlayListClCreate args;
    args.setName(name);
    return send(OrvoPlayListClCreatePath(), args).result().i32();
}

OrvoPlayListItem ModuleFixture::makeItem(const QString& title) {
    OrvoMetaData metaData;
    metaData.setPrePlayPath(CMPath(QStringLiteral("files:prePlay")));
    OrvoResource resource;
    resource.setUri(QStringLiteral("file:///music/%1.flac").arg(title));
    OrvoMediaData mediaData;
    mediaData.setMetaData(metaData);
    mediaData.setResources({resource});
    OrvoRoles roles;
    roles.setTitle(TrString(title));
    roles.setType(OrvoRolesType::Audio);
    roles.setMediaData(mediaData);
    OrvoPlayListItem item;
    item.setTitle(title);
    item.setUrl(resource.uri());
    item.setServiceId(QStringLiteral("files"));
    item.setOrvoRoles(QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantHash(roles.toHash()))
                                            .toJson(QJsonDocument::Compact)));
    return item;
}

void ModuleFixture::addItems(int plid, const QStringList& titles, int mode) {
    QList<OrvoPlayListItem> items;
    for (const QString& title : titles)
        items.append(makeItem(title));
    OrvoPlayListPlAddExternalItems args;
    args.setPlid(plid);
    args.setItems(items);
    args.setMode(OrvoPlayListAddPosition::Enum(mode));
    const Answer answer = send(OrvoPlayListPlAddExternalItemsPath(), args);
    ASSERT_FALSE(answer.failed) << qPrintable(answer.message());
}

QStringList ModuleFixture::titles(int plid) {
    const CMPath path = plid == 0 ? OrvoPlayListPqGetItemsPath()
                                  : OrvoPlayListPlGetItemsPath() + QString::number(plid);
    QStringList result;
    const QVariantList all = rows(path, 0, CMGetRowsRequest::LastRow, {OrvoRoles::Title()}).rows();
    for (const QVariant& row : all)
        result.append(TrString::fromVariant(row.toList().value(0)).toString());
    return result;
}

void ModuleFixture::expectInvariants() {
    EXPECT_EQ(QStringList(), brokenRules());
    EXPECT_EQ(QStringList("PlayQueue"), query("SELECT name FROM playlists WHERE uid = 0"));
}
