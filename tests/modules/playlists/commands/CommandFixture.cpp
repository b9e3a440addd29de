#include "CommandFixture.h"

#include <QJsonDocument>
#include <QJsonObject>

void CommandFixture::makeParty() {
    ASSERT_EQ(1, createPlayList(QStringLiteral("Party")));
    ASSERT_EQ(2, createPlayList(QStringLiteral("Quiet")));
    addItems(1, {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
    ASSERT_EQ(1, createCollection(QStringLiteral("Box")));
    expectDone(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", 1}, {"plid", 2}});
}

QString CommandFixture::refusal(const CMPath& path, const QVariant& args) {
    const Answer answer = send(path, args);
    EXPECT_TRUE(answer.answered) << qPrintable(path.toString());
    EXPECT_TRUE(answer.failed) << qPrintable(path.toString());
    return answer.message();
}

void CommandFixture::expectDone(const CMPath& path, const QVariant& args) {
    const Answer answer = send(path, args);
    EXPECT_TRUE(answer.answered) << qPrintable(path.toString());
    EXPECT_FALSE(answer.failed) << qPrintable(path.toString() + " " + answer.message());
}

QVariantList CommandFixture::itemHashes(const QStringList& titles) {
    QVariantList result;
    for (const QString& title : titles)
        result.append(itemHash(title));
    return result;
}

OrvoRoles CommandFixture::rolesOfItem(const OrvoPlayListItem& item) {
    return OrvoRoles(QJsonDocument::fromJson(item.orvoRoles().toUtf8()).object().toVariantHash());
}

OrvoPlayListItem CommandFixture::itemWithRoles(const OrvoRoles& roles) {
    OrvoPlayListItem item = makeItem(QStringLiteral("x"));
    item.setOrvoRoles(QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantHash(roles.toHash()))
                                            .toJson(QJsonDocument::Compact)));
    return item;
}

void CommandFixture::offer(RecordingWorker& source, const QString& path, const QString& title) {
    source.items.insert(path, makeItem(title));
}

sqlite3* CommandFixture::open(const QString& name) {
    worker();
    return storeWatch.openUnwatched(name);
}

void CommandFixture::restartAfter(const QString& sql) {
    run(sql);
    restart();
}
