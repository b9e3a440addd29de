#include "CollectionGetItemsNode.h"

#include "../../CollectionBase.h"
#include "../../ModuleLog.h"
#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListPaths.h"

CollectionGetItemsNode* CollectionGetItemsNode::create(CMNodes* nodes, const CMPath& path,
                                                       PlayListManager* manager) {
    return createNode<CollectionGetItemsNode>(nodes, path, manager);
}

bool CollectionGetItemsNode::getRowsRequest(const CMGetRowsRequest& request) {
    const int clid = request.path().param(Clid()).toInt();
    const CollectionBase* cl = manager()->getCollectionByUid(clid);
    const QList<PlayListBase*> playLists = cl ? cl->getPlayLists() : QList<PlayListBase*>();
    LOG4CPLUS_DEBUG(moduleLog(), "clid:" << clid << " collection size:" << playLists.size());
    QVariantList rows;
    for (const PlayListBase* pl : playLists) {
        LOG4CPLUS_DEBUG(moduleLog(),
                        "plid:" << pl->getUid() << " plname:" << loggedText(pl->getName()));
        // The menu's "clid" is what lets it offer the removal from this collection.
        CMPath menuPath = OrvoPlayListPlContextPath();
        menuPath.addParam(Plid(), toStr(pl->getUid()));
        menuPath.addParam(Clid(), toStr(clid));
        OrvoRoles row = playListRow(
            pl, contextMenu(TrString("CollectionGetItemsNode", "Playlist - %1", {pl->getName()}),
                            menuPath));
        row.setContainerPlayable(true);
        rows.append(QVariant(CMGlobal::itemRolesToList(request.roleNames(), row)));
    }
    const TrString title("CollectionGetItemsNode", "Collection - %1",
                         {cl ? cl->getName() : QString()});
    sendRowsReply(rows, rows.count(), title,
                  createRolesFromPath(request.path(), request.roleNames()), request, true);
    return true;
}
