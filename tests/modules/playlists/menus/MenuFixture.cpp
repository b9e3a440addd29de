#include "MenuFixture.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "CMNode.h"
#include "OrvoPlayListPaths.h"
#include "playlistUI/collection/CollectionAddToClNode.h"
#include "playlistUI/collection/CollectionContextNode.h"
#include "playlistUI/playlist/PlayListAddModeNode.h"
#include "playlistUI/playlist/PlayListAddToPlaylistNode.h"
#include "playlistUI/playlist/PlayListContextNode.h"
#include "playlistUI/playlist/PlayListTrackContextNode.h"
#include "playlistUI/playqueue/PlayQueueContextNode.h"

QJsonObject Expected::action(const QString& title, const QString& path) {
    return {{"title", title}, {"path", path}, {"type", 102}};
}

QJsonObject Expected::edit(const QString& title, const QString& path, const QJsonObject& value) {
    return {
        {"title", title}, {"path", path}, {"type", 101}, {"value", value}, {"modifiable", true}};
}

QJsonObject Expected::separator() {
    return {{"type", 105}};
}

QJsonObject Expected::text(const QString& value) {
    return {{"string", value}};
}

QJsonObject Expected::flag(bool value) {
    return {{"bool", value}};
}

RowText Expected::done(const QJsonObject& value) {
    return RowText(
        QJsonObject{{"xclass", "OrvoActionReply"}, {"result", QJsonObject{{"value", value}}}});
}

RowText Expected::doneAndClosed(const QJsonObject& value, const QString& closes) {
    return RowText(
        QJsonObject{{"xclass", "OrvoActionReply"},
                    {"result", QJsonObject{{"value", value}}},
                    {"events", QJsonArray{QJsonObject{{"rowsType", 1}, {"path", closes}}}}});
}

RowText MenuFixture::answerText(const Answer& answer) {
    EXPECT_TRUE(answer.answered);
    EXPECT_FALSE(answer.failed) << answer.message();
    return RowText(OrvoHash(answer.value.toHash()));
}

void MenuFixture::expectMenu(const QString& path, const QString& title,
                             const QList<QJsonObject>& rows) {
    const OrvoRowsRoles reply = rowsAt(path);
    EXPECT_EQ(rowTexts(reply), rowTexts(rows)) << path;
    EXPECT_EQ(reply.rowsCount(), rows.size()) << path;
    EXPECT_EQ(RowText(reply.roles()),
              RowText(QJsonObject{
                  {"title", title}, {"path", path}, {"type", 1}, {"rowsCount", rows.size()}}));
}

void MenuFixture::expectNotTaken(const QStringList& paths) {
    const QStringList told = eventsOf([&] {
        for (const QString& path : paths) {
            const Answer answer = select(path, {{"string", "5"}});
            EXPECT_TRUE(answer.answered) << path;
            EXPECT_TRUE(answer.failed) << path;
            EXPECT_EQ(answer.error.name(), CMError::NotSupported()) << path;
            EXPECT_EQ(answer.message(), path + " does not do that.");
        }
        turnEventLoop();
    });
    EXPECT_EQ(told, QStringList());
}

QString MenuFixture::itemId(int plid, int place) {
    const CMPath path = plid == 0 ? OrvoPlayListPqGetItemsPath()
                                  : OrvoPlayListPlGetItemsPath() + QString::number(plid);
    return asRoles(rows(path, place, place)).value(0).id();
}

MenuAloneFixture::MenuAloneFixture() {
    const auto make = [this](auto create, const CMPath& path) {
        m_made.emplace_back(create(&nodes, path, &manager));
    };
    make(PlayListContextNode::create, OrvoPlayListPlContextPath());
    make(PlayListTrackContextNode::create, OrvoPlayListPlTrackContextPath());
    make(PlayQueueContextNode::create, OrvoPlayListPqContextPath());
    make(CollectionContextNode::create, OrvoPlayListClContextPath());
    make(PlayListAddToPlaylistNode::create, OrvoPlayListPlAddToPlaylistPath());
    make(PlayListAddModeNode::create, OrvoPlayListPlSelectAddModePath());
    make(CollectionAddToClNode::create, OrvoPlayListClAddtoCollectionPath());
}

bool MenuAloneFixture::choose(const QString& path, const QVariant& value,
                              const CMReply<QVariant>& reply) {
    CMNode* node = nodes.find(CMPath(path));
    return node && node->setDataRequest(CMSetDataRequest(CMPath(path), value, reply));
}

QString MenuAloneFixture::sent(const QString& path, const QVariant& value) {
    module.requests.clear();
    const CMReply<QVariant> reply;
    const bool taken = choose(path, value, reply);
    EXPECT_FALSE(reply.isFinished()) << path << ": only the command's answer answers the request";
    EXPECT_EQ(module.requests.size(), taken ? 1 : 0) << path;
    if (module.requests.size() != 1)
        return QStringLiteral("nothing");
    const CMSetDataRequest& command = module.requests.first();
    const QJsonObject args = QJsonObject::fromVariantHash(command.value().toHash());
    return command.path().toString() + ' ' +
           QString::fromUtf8(QJsonDocument(args).toJson(QJsonDocument::Compact));
}
