#include "CollectionContextNode.h"

#include "../../CollectionBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

CollectionContextNode* CollectionContextNode::create(CMNodes* nodes, const CMPath& path, PlayListManager* manager) {
    return createNode<CollectionContextNode>(nodes, path, manager);
}

bool CollectionContextNode::getRowsRequest(const CMGetRowsRequest& request) {
    const QString clid = request.path().param(Clid());
    const CollectionBase* cl = manager()->getCollectionByUid(toInt(clid, -1));
    QList<OrvoRoles> entries;
    if (cl)
        entries.append(actionRow(TrString("CollectionContextNode", "Delete collection"),
                                 entryPath(request, QStringLiteral("delete"), {{Clid(), clid}})));
    const QString name = cl ? cl->getName() : QString();
    sendMenu(entries, TrString("CollectionContextNode", "Collection Context Menu - %1", {name}), request);
    return true;
}

bool CollectionContextNode::setDataRequest(const CMSetDataRequest& request) {
    if (request.path().param(Action()) != QLatin1String("delete"))
        return false;
    OrvoPlayListClId args;
    args.setClid(toInt(request.path().param(Clid()), -1));
    sendCommand(OrvoPlayListClDeletePath(), args, request);
    return true;
}
