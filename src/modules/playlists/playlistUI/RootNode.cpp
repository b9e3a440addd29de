#include "RootNode.h"

#include "../CollectionBase.h"
#include "../ModuleLog.h"
#include "../PlayListBase.h"
#include "../PlayListManager.h"
#include "CMRootWorker.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

namespace {
constexpr int CollectionHeadRows = 2; // the header, and the entry that makes one
}

RootNode* RootNode::create(CMNodes* nodes, const CMPath& path, PlayListManager* manager) {
    return createNode<RootNode>(nodes, path, manager);
}

OrvoRoles RootNode::playQueueRow(const PlayListBase* queue) {
    LOG4CPLUS_DEBUG(moduleLog(), "pqname: " << loggedText(queue->getName()));
    LOG4CPLUS_DEBUG(moduleLog(), "pqid: " << queue->getUid());
    OrvoRoles row;
    row.setTitle(TrString(queue->getName()));
    row.setPath(OrvoPlayListPqGetItemsPath());
    row.setType(OrvoRolesType::Container);
    row.setContainerPlayable(true);
    row.setMediaData(playableMediaData());
    row.setContext(contextMenu(TrString(queue->getName()), OrvoPlayListPqContextPath().addParam(
                                                               Plid(), toStr(queue->getUid()))));
    return row;
}

OrvoRoles RootNode::collectionRow(const CollectionBase* cl) {
    LOG4CPLUS_DEBUG(moduleLog(), "clid: " << cl->getUid());
    LOG4CPLUS_DEBUG(moduleLog(), "clname: " << loggedText(cl->getName()));
    // Unlike a playlist's row: one node serves all collections, told apart by a
    // parameter, and a collection has no play logic.
    OrvoRoles row;
    row.setTitle(TrString(cl->getName()));
    row.setPath(OrvoPlayListClGetItemsPath().addParam(Clid(), toStr(cl->getUid())));
    row.setType(OrvoRolesType::Container);
    row.setContainerPlayable(true);
    row.setContext(
        contextMenu(TrString("RootNode", "Collection Context Menu - %1", {cl->getName()}),
                    OrvoPlayListClContextPath().addParam(Clid(), toStr(cl->getUid()))));
    return row;
}

bool RootNode::getRowsRequest(const CMGetRowsRequest& request) {
    LOG4CPLUS_DEBUG(moduleLog(), "fromRow: " << request.fromRow() << " toRow: " << request.toRow());
    QVariantList rows;
    const auto append = [&rows, &request](const OrvoRoles& row) {
        rows.append(QVariant(CMGlobal::itemRolesToList(request.roleNames(), row)));
    };
    CMPath ownPath = path();
    ownPath.setParams(request.path().params());

    const PlayListBase* queue = manager() ? manager()->getPlayQueue() : nullptr;
    if (isPlayQueueVisible() && queue)
        append(playQueueRow(queue));

    append(headerRow(TrString("PlayLists", "Playlists")));
    append(textEntryRow(TrString("RootNode", "Create New Playlist"), ownPath,
                        QStringLiteral("createPl")));
    const QList<PlayListBase*> playLists =
        manager() ? manager()->getAllPlayList() : QList<PlayListBase*>();
    const QList<CollectionBase*> collections = manager() && areCollectionsVisible()
                                                   ? manager()->getAllCollection()
                                                   : QList<CollectionBase*>();
    const int total = rows.size() + playLists.size() +
                      (areCollectionsVisible() ? CollectionHeadRows + collections.size() : 0);
    // Of hundreds of playlists a page shows a few: the others only keep their places.
    const RowRange asked = askedRows(request, total);
    rows.reserve(total);
    for (const PlayListBase* pl : playLists) {
        if (!asked.contains(rows.size())) {
            rows.append(QVariant());
            continue;
        }
        OrvoRoles row = playListRow(
            pl, contextMenu(TrString("RootNode", "Playlist Context Menu - %1", {pl->getName()}),
                            OrvoPlayListPlContextPath().addParam(Plid(), toStr(pl->getUid()))));
        row.setContainerPlayable(true);
        append(row);
    }

    if (areCollectionsVisible()) {
        append(headerRow(TrString("PlayLists", "Collections")));
        append(textEntryRow(TrString("RootNode", "Create New Collection"), ownPath,
                            QStringLiteral("createCl")));
        for (const CollectionBase* cl : collections)
            append(collectionRow(cl));
    }
    sendRowsReply(rows, rows.count(), TrString("RootNode", "Playlists"), OrvoRoles(), request,
                  true);
    return true;
}

namespace {
// The create record out of a typed name: the value that a text entry sends.
template <typename Create>
QVariant createArguments(const OrvoHash& value) {
    Create args(value.toHash());
    if (value.contains(OrvoValue::String_()))
        args.setName(value.attribute(OrvoValue::String_()).toString());
    return args.toVariant();
}
} // namespace

bool RootNode::setDataRequest(const CMSetDataRequest& request) {
    const OrvoHash value(request.value().toHash());
    const QString action = request.path().param(Action());
    if (action == QLatin1String("createPl")) {
        CMRoot()->invoke(OrvoPlayListPlCreatePath(), createArguments<OrvoPlayListPlCreate>(value),
                         request.reply());
        return true;
    }
    if (action == QLatin1String("createCl")) {
        CMRoot()->invoke(OrvoPlayListClCreatePath(), createArguments<OrvoPlayListClCreate>(value),
                         request.reply());
        return true;
    }
    return false;
}
