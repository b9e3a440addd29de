// PlayList's entries as the roles of rows and of what plays.

#include <QJsonObject>

#include "CMJson.h"
#include "ItemRolesReader.h"
#include "ModuleLog.h"
#include "OrvoPlayListPaths.h"
#include "PlayList.h"

namespace {

// The whole JSON language, and the reason where it is none.
void parseRoles(const QString& text, ItemRolesReader& parts) {
    QJsonParseError parseError;
    const QJsonDocument document = cmReadJson(text.toUtf8(), &parseError);
    if (parseError.error != QJsonParseError::NoError)
        LOG4CPLUS_ERROR(moduleLog(), "Failed to parse data, error: " << parseError.errorString());
    parts.roles = document.object().toVariantHash();
    parts.mediaData = parts.roles.take(OrvoRoles::MediaData()).toHash();
    parts.metaData = parts.mediaData.take(OrvoMediaData::MetaData()).toHash();
}

} // namespace

OrvoRoles PlayList::itemToOrvoRoles(const OrvoPlayListItem& item) const {
    static const QString itemPath = OrvoPlayListItemPath().toString() + QLatin1Char('/');
    static const QVariant playLogicPath = OrvoPlayListsPlayLogicPath().toQVariant();
    ItemRolesReader parts(item);
    if (!parts.read())
        parseRoles(item.orvoRoles(), parts);
    parts.metaData.insert(OrvoMetaData::PlayLogicPath(), playLogicPath);
    parts.mediaData.insert(OrvoMediaData::MetaData(), parts.metaData);

    const QString uid = QString::number(item.uid());
    QVariantHash& roles = parts.roles;
    roles.insert(OrvoRoles::Id(), uid);
    roles.insert(OrvoRoles::Value(), OrvoValue::fromI32(item.sequenceNumber()).toVariant());
    roles.insert(OrvoRoles::Path(), itemPath + uid);
    roles.insert(OrvoRoles::MediaData(), parts.mediaData);
    return OrvoRoles(roles);
}
