#include "OrvoRoles.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

#include "Printing.h"

TEST(OrvoRoles, theDefaultOnesAreEmptyAndReadAsNothing) {
    const OrvoRoles roles;
    EXPECT_TRUE(roles.isEmpty());
    EXPECT_TRUE(roles.title().isEmpty());
    EXPECT_TRUE(roles.path().isEmpty());
    EXPECT_EQ(roles.type(), 0);
    EXPECT_EQ(roles.containerType(), 0);
    EXPECT_FALSE(roles.containerPlayable());
    EXPECT_TRUE(roles.value().isEmpty());
    EXPECT_FALSE(roles.modifiable());
    EXPECT_EQ(roles.id(), QString());
    EXPECT_TRUE(roles.context().isEmpty());
    EXPECT_TRUE(roles.mediaData().isEmpty());
}

TEST(OrvoRoles, everyRoleIsKeptUnderItsName) {
    OrvoRoles context;
    context.setTitle(TrString("C", "Menu"));
    OrvoMetaData metaData;
    metaData.setPlayLogicPath(CMPath("playlists:playlogic"));
    OrvoMediaData mediaData;
    mediaData.setMetaData(metaData);
    OrvoRoles roles;
    roles.setTitle(TrString("C", "Title %1", {"x"}));
    roles.setPath(CMPath("playlists:root?a=1"));
    roles.setType(OrvoRolesType::Editable);
    roles.setContainerType(OrvoRolesContainerType::ContextMenu);
    roles.setContainerPlayable(true);
    roles.setValue(OrvoValue::fromI32(3));
    roles.setModifiable(true);
    roles.setId("12");
    roles.setContext(context);
    roles.setMediaData(mediaData);
    const QStringList keys = roles.toHash().keys();
    EXPECT_EQ(QSet<QString>(keys.begin(), keys.end()),
              QSet<QString>({"title", "path", "type", "containerType", "containerPlayable", "value",
                             "modifiable", "id", "context", "mediaData"}));
    const OrvoRoles again(roles.toVariant());
    EXPECT_EQ(again, roles);
    EXPECT_EQ(again.title(), TrString("C", "Title %1", {"x"}));
    EXPECT_EQ(again.path(), CMPath("playlists:root?a=1"));
    EXPECT_EQ(again.type(), 101);
    EXPECT_EQ(again.containerType(), 100);
    EXPECT_TRUE(again.containerPlayable());
    EXPECT_EQ(again.value().i32(), 3);
    EXPECT_TRUE(again.modifiable());
    EXPECT_EQ(again.id(), "12");
    EXPECT_EQ(again.context().title(), TrString("C", "Menu"));
    EXPECT_EQ(again.mediaData().metaData().playLogicPath(), CMPath("playlists:playlogic"));
}

TEST(OrvoRoles, theNumbersOfTypesAreFixed) {
    EXPECT_EQ(int(OrvoRolesType::Container), 1);
    EXPECT_EQ(int(OrvoRolesType::Audio), 3);
    EXPECT_EQ(int(OrvoRolesType::Editable), 101);
    EXPECT_EQ(int(OrvoRolesType::Action), 102);
    EXPECT_EQ(int(OrvoRolesType::Header), 103);
    EXPECT_EQ(int(OrvoRolesType::Separator), 105);
    EXPECT_EQ(int(OrvoRolesContainerType::ContextMenu), 100);
    EXPECT_EQ(int(OrvoEventRowsType::Close), 1);
}

TEST(OrvoRoles, equalityComparesTitlesByWhatTheySay) {
    OrvoRoles one;
    one.setTitle(TrString("C", "%1", {"a"}));
    OrvoRoles same;
    same.setTitle(TrString("C", "%1", {"a"}));
    OrvoRoles other;
    other.setTitle(TrString("C", "%1", {"b"}));
    EXPECT_EQ(one, same);
    EXPECT_NE(one, other);
}

TEST(OrvoRoles, mediaDataSurvivesJson) {
    OrvoMetaData metaData;
    metaData.setPrePlayPath(CMPath("files:prePlay?x=%26"));
    metaData.setAllowSeekTime(true);
    metaData.setDuration(Q_INT64_C(5000000000));
    OrvoResource first;
    first.setUri("file:///a.flac");
    OrvoResource second(QVariantHash{{"uri", "http://b"}, {"bitrate", 320}});
    OrvoMediaData mediaData;
    mediaData.setMetaData(metaData);
    mediaData.setResources({first, second});
    OrvoRoles roles;
    roles.setMediaData(mediaData);
    const QByteArray json = QJsonDocument(QJsonObject::fromVariantHash(roles.toHash())).toJson();
    const OrvoMediaData again =
        OrvoRoles(QJsonDocument::fromJson(json).object().toVariantHash()).mediaData();
    EXPECT_EQ(again.metaData().prePlayPath(), CMPath("files:prePlay?x=%26"));
    EXPECT_TRUE(again.metaData().allowSeekTime());
    EXPECT_FALSE(again.metaData().allowSeekBytes());
    EXPECT_FALSE(again.metaData().containsAllowSeekBytes());
    EXPECT_TRUE(again.metaData().containsPrePlayPath());
    EXPECT_FALSE(again.metaData().containsPlayLogicPath());
    EXPECT_EQ(again.metaData().duration(), Q_INT64_C(5000000000));
    ASSERT_EQ(again.resources().size(), 2);
    EXPECT_EQ(again.resources().at(0).uri(), "file:///a.flac");
    EXPECT_EQ(again.resources().at(1).attribute("bitrate").toInt(), 320);
}

TEST(OrvoRoles, rolesListedByNameKeepTheOrderOfTheNames) {
    OrvoRoles roles;
    roles.setTitle(TrString(QString("t")));
    roles.setType(3);
    roles.setId("9");
    const QVariantList list =
        CMGlobal::itemRolesToList({"id", "absent", "title", "type", "id"}, roles);
    ASSERT_EQ(list.size(), 5);
    EXPECT_EQ(list.at(0), QVariant("9"));
    EXPECT_FALSE(list.at(1).isValid());
    EXPECT_EQ(list.at(2), QVariant("t"));
    EXPECT_EQ(list.at(3), QVariant(3));
    EXPECT_EQ(list.at(4), QVariant("9"));
    EXPECT_TRUE(CMGlobal::itemRolesToList({}, roles).isEmpty());
}

TEST(OrvoRoles, theDefaultNamesAreThoseOfEveryRoleARowMayHave) {
    EXPECT_EQ(OrvoRoles::defaultNames(),
              QStringList({"title", "path", "type", "containerType", "containerPlayable", "value",
                           "modifiable", "id", "context", "mediaData"}));
}

TEST(OrvoRowsRoles, rolesRowsAndCountAreKept) {
    OrvoRoles roles;
    roles.setTitle(TrString(QString("t")));
    OrvoRowsRoles rows;
    rows.setRoles(roles);
    rows.setRows({QVariantList{"a", 1}, QVariantList{"b", 2}});
    rows.setRowsCount(20);
    const OrvoRowsRoles again(rows.toVariant());
    EXPECT_EQ(again.roles(), roles);
    EXPECT_EQ(again.rows().size(), 2);
    EXPECT_EQ(again.rows().at(1).toList(), QVariantList({"b", 2}));
    EXPECT_EQ(again.rowsCount(), 20);
}

TEST(OrvoActionReply, itsHashFormHoldsClassResultAndEvents) {
    OrvoRoles result;
    result.setValue(OrvoValue::fromI32(5));
    OrvoEvent event;
    event.setRowsType(OrvoEventRowsType::Close);
    event.setPath(CMPath("playlists:pl/context?plid=5"));
    OrvoActionReply reply;
    reply.setXclass("OrvoActionReply");
    reply.setResult(result);
    EXPECT_TRUE(reply.events().isEmpty());
    reply.setEvents({event});
    EXPECT_EQ(reply.toHash(),
              QVariantHash(
                  {{"xclass", "OrvoActionReply"},
                   {"result", QVariantHash({{"value", QVariantHash({{"i32", 5}})}})},
                   {"events", QVariantList({QVariantHash(
                                  {{"rowsType", 1}, {"path", "playlists:pl/context?plid=5"}})})}}));
    EXPECT_EQ(OrvoActionReply(reply.toVariant()).events().first(), event);
}

TEST(OrvoPowerManagerTarget, itReadsItsTarget) {
    EXPECT_EQ(OrvoPowerManagerTarget().target(), 0);
    EXPECT_EQ(OrvoPowerManagerTarget(QVariantHash{{"target", 2}}).target(), 2);
}
