// PlayList's entries as the roles of rows and of what plays.

#include <QJsonObject>
#include <QMutexLocker>

#include "CMJson.h"
#include "Database.h"
#include "EntryRoles.h"
#include "ItemRolesReader.h"
#include "ModuleLog.h"
#include "OrvoPlayListPaths.h"
#include "PlayList.h"
#include "RepeatedLogLines.h"

namespace {

// The whole JSON language, and the reason where it is none.
void parseRoles(const QByteArray& utf8, ItemRolesReader& parts, RepeatedLogLines& errors) {
    QJsonParseError parseError;
    const QJsonDocument document = cmReadJson(utf8, &parseError);
    if (parseError.error != QJsonParseError::NoError && errors.next())
        LOG4CPLUS_ERROR(moduleLog(), "Failed to parse data, error: " << parseError.errorString());
    parts.roles = document.object().toVariantHash();
    parts.mediaData = parts.roles.take(OrvoRoles::MediaData()).toHash();
    parts.metaData = parts.mediaData.take(OrvoMediaData::MetaData()).toHash();
}

void completeRoles(const QByteArray& utf8, const QString& id, int sequenceNumber,
                   ItemRolesReader& parts, RepeatedLogLines& errors) {
    static const QString itemPath = OrvoPlayListItemPath().toString() + QLatin1Char('/');
    static const QVariant playLogicPath = OrvoPlayListsPlayLogicPath().toQVariant();
    if (!parts.read(utf8))
        parseRoles(utf8, parts, errors);
    parts.metaData.insert(OrvoMetaData::PlayLogicPath(), playLogicPath);
    parts.mediaData.insert(OrvoMediaData::MetaData(), parts.metaData);

    QVariantHash& roles = parts.roles;
    roles.insert(OrvoRoles::Id(), id);
    roles.insert(OrvoRoles::Value(), OrvoValue::fromI32(sequenceNumber).toVariant());
    roles.insert(OrvoRoles::Path(), itemPath + id);
    roles.insert(OrvoRoles::MediaData(), parts.mediaData);
}

} // namespace

OrvoRoles PlayList::itemToOrvoRoles(const OrvoPlayListItem& item) const {
    ItemRolesReader parts;
    RepeatedLogLines errors(moduleLog(), log4cplus::ERROR_LOG_LEVEL);
    completeRoles(item.orvoRoles().toUtf8(), QString::number(item.uid()), item.sequenceNumber(),
                  parts, errors);
    return OrvoRoles(parts.roles);
}

void PlayList::visitRoles(int from, int to, const VisitRoles& visit) {
    // The line of getItems, as in the store: logs are searched for it.
    LOG4CPLUS_TRACE(moduleLog(), "Enter virtual QList<OrvoPlayListItem> PlayList::getItems(int, "
                                 "int): from="
                                     << from << " to=" << to);
    ItemRolesReader parts;
    RepeatedLogLines errors(moduleLog(), log4cplus::ERROR_LOG_LEVEL);
    EntryRoles found;
    found.next = from;
    do {
        {
            QMutexLocker lock(&m_mutex);
            catchUp();
            found = m_database->getEntryRoles(m_record, found.next, to);
        }
        int begin = 0;
        for (const EntryRoles::Entry& entry : std::as_const(found.entries)) {
            const auto utf8 =
                QByteArray::fromRawData(found.texts.constData() + begin, entry.end - begin);
            begin = entry.end;
            const QString id = QString::number(entry.uid);
            completeRoles(utf8, id, entry.sequenceNumber, parts, errors);
            if (!visit(parts.roles, id, entry.sequenceNumber))
                return;
        }
    } while (found.next >= 0);
}
