#include "BaseNode.h"

#include <algorithm>

#include "../ModuleLog.h"
#include "../PlayListBase.h"
#include "CMRootWorker.h"
#include "OrvoPlayListPaths.h"

namespace {
bool readFlag(const CMPath& path) {
    return OrvoValue(CMRoot()->getValue(path).toHash()).bool_();
}
} // namespace

BaseNode::BaseNode(const CMPath& path, PlayListManager* manager)
    : CMListRowsNode(path),
      m_manager(manager),
      m_playQueueVisible(readFlag(OrvoPlayListSettingsPlayqueueVisibilityPath())),
      m_collectionsVisible(readFlag(OrvoPlayListSettingsCollectionsVisibilityPath())) {}

BaseNode* BaseNode::create(CMNodes* nodes, const CMPath& path, PlayListManager* manager) {
    return createNode<BaseNode>(nodes, path, manager);
}

bool BaseNode::getRowsRequest(const CMGetRowsRequest&) {
    return true;
}

bool BaseNode::setDataRequest(const CMSetDataRequest&) {
    return true;
}

int BaseNode::toInt(const QString& s, int defaultValue) {
    bool ok = false;
    const int value = s.toInt(&ok);
    return ok ? value : defaultValue;
}

QString BaseNode::toStr(const int& value) {
    return QString::number(value);
}

OrvoRoles BaseNode::createRolesFromPath(const CMPath& path, const QStringList& keys) const {
    return getDataRoles(keys, path.params());
}

BaseNode::RowRange BaseNode::askedRows(const CMGetRowsRequest& request, int rowsCount) {
    const int last = rowsCount - 1;
    const int one = std::clamp(request.fromRow(), 0, last);
    const int other = std::clamp(request.toRow(), 0, last);
    return {std::min(one, other), std::max(one, other)};
}

void BaseNode::sendRowsReply(const QVariantList& rows, int rowsCount, const TrString& title,
                             const OrvoRoles& roles, const CMGetRowsRequest& request,
                             bool sliceRows, OrvoRowsRoles reply) {
    LOG4CPLUS_TRACE(moduleLog(), "rowsCount: " << rowsCount);
    setTitle(title);
    QVariantList sent = rows;
    if (rowsCount >= 1 && sliceRows) {
        const RowRange asked = askedRows(request, rowsCount);
        const int count = asked.last - asked.first + 1;
        if (count < rowsCount)
            sent = rows.mid(asked.first, count);
    }
    OrvoRoles replyRoles = roles;
    replyRoles.setTitle(title);
    replyRoles.setRowsCount(rowsCount);
    reply.setRoles(replyRoles);
    reply.setRows(sent);
    reply.setRowsCount(rowsCount);
    LOG4CPLUS_TRACE(moduleLog(), "roles: " << loggedValue(replyRoles.toVariant()));
    request.reply().setValue(reply);
    LOG4CPLUS_TRACE(moduleLog(), "sent reply with " << sent.size() << " lines");
}

OrvoRoles BaseNode::addContextMenuToRoles(OrvoRoles roles, int plid) {
    roles.setContext(trackMenu(roles.id(), plid, roles.value().i32()));
    return roles;
}

OrvoEvent BaseNode::genClosePathEvent() const {
    OrvoEvent event;
    event.setRowsType(OrvoEventRowsType::Close);
    event.setPath(path());
    return event;
}

OrvoRoles BaseNode::headerRow(const TrString& title) {
    OrvoRoles row;
    row.setType(OrvoRolesType::Header);
    row.setTitle(title);
    return row;
}

OrvoRoles BaseNode::playListRow(const PlayListBase* pl, const OrvoRoles& menu) {
    OrvoRoles row;
    row.setTitle(TrString(pl->getName()));
    row.setPath(OrvoPlayListPlGetItemsPath() + toStr(pl->getUid()));
    row.setType(OrvoRolesType::Container);
    row.setMediaData(playableMediaData());
    row.setContext(menu);
    return row;
}

OrvoRoles BaseNode::textEntryRow(const TrString& title, CMPath path, const QString& action) {
    OrvoRoles row;
    row.setTitle(title);
    row.setPath(path.addParam(Action(), action));
    row.setType(OrvoRolesType::Editable);
    row.setValue(OrvoValue::fromString(QString()));
    row.setModifiable(true);
    return row;
}

OrvoMediaData BaseNode::playableMediaData() {
    // One for all: every playlist's node holds it.
    static const OrvoMediaData shared = [] {
        OrvoMetaData metaData;
        metaData.setPlayLogicPath(OrvoPlayListsPlayLogicPath());
        OrvoMediaData mediaData;
        mediaData.setMetaData(metaData);
        return mediaData;
    }();
    return shared;
}

OrvoRoles BaseNode::contextMenu(const TrString& title, const CMPath& path) {
    OrvoRoles menu;
    menu.setTitle(title);
    menu.setPath(path);
    menu.setType(OrvoRolesType::Container);
    menu.setContainerType(OrvoRolesContainerType::ContextMenu);
    return menu;
}
