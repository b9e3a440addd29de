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

const QList<Command>& CommandFixture::commands() {
    static const QVariantList first{0};
    static const QList<Command> rows = {
        {OrvoPlayListPlPrepareItemsPath, "plPrepareItems", "", {}},
        {OrvoPlayListPlPlayPath, "plPlay", "Could not start playback on playlist.", {{"plid", 1}}},
        {OrvoPlayListPlCreatePath, "plCreate", "Could not create playlist.", {{"name", "x"}}},
        {OrvoPlayListPlSetNamePath,
         "plSetName",
         "Could not set playlist name.",
         {{"plid", 1}, {"name", "x"}}},
        {OrvoPlayListPlSetShufflePath,
         "plSetShuffle",
         "Could not set shuffle mode on playlist.",
         {{"plid", 1}, {"mode", 1}}},
        {OrvoPlayListPlSetRepeatPath,
         "plSetRepeat",
         "Could not set repeat mode on playlist.",
         {{"plid", 1}, {"mode", 2}}},
        {OrvoPlayListPlSetOrderPath,
         "plSetOrder",
         "Could not set order of playlist.",
         {{"plid", 1}, {"order", QVariantList{2, 0, 1}}},
         true},
        {OrvoPlayListPlAddExternalItemsPath,
         "plAddExternalItems",
         "Could not add external items to playlist.",
         {{"plid", 1}, {"items", itemHashes({"d"})}},
         true},
        {OrvoPlayListPlAddItemsPath,
         "plAddItems",
         "Could not add items to playlist.",
         {{"plid", 1}, {"items", QVariantList{"files:x"}}},
         true},
        {OrvoPlayListPlMoveItemspath,
         "plMoveItems",
         "Could not move items in playlist.",
         {{"plid", 1}, {"items", first}, {"to", 2}},
         true},
        {OrvoPlayListPlRemoveItemsPath,
         "plRemoveItems",
         "Could not remove items from playlist.",
         {{"plid", 1}, {"items", first}},
         true},
        {OrvoPlayListPlClearPath, "plClearItems", "Could not clear playlist.", {{"plid", 1}}, true},
        {OrvoPlayListPlDeletePath, "plDelete", "Could not delete playlist.", {{"plid", 1}}, true},
        {OrvoPlayListClCreatePath, "clCreate", "Could not create collection.", {{"name", "x"}}},
        {OrvoPlayListClAddItemPath,
         "clAddItem",
         "Could not add items to collection.",
         {{"clid", 1}, {"plid", 1}}},
        {OrvoPlayListClRemoveItemPath,
         "clRemoveItem",
         "Could not remove items from collection.",
         {{"clid", 1}, {"plid", 2}}},
        {OrvoPlayListClDeletePath, "clDelete", "Could not delete collection.", {{"clid", 1}}},
    };
    return rows;
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
