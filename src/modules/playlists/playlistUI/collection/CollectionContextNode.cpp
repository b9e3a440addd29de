#include "CollectionContextNode.h"

#include "../../CollectionBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

CollectionContextNode* CollectionContextNode::create(CMNodes* nodes, const CMPath& path,
                                                     PlayListManager* manager) {
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
    sendMenu(entries, TrString("CollectionContextNode", "Collection Context Menu - %1", {name}),
             request);
    return true;
}

std::span<const MenuNode::MenuAction> CollectionContextNode::actions() const {
    constexpr auto collection = [](const CMSetDataRequest& request) -> OrvoHash {
        OrvoPlayListClId args;
        args.setClid(numberParam(request, Clid()));
        return args;
    };
    static constexpr MenuAction rows[] = {{"delete", OrvoPlayListClDeletePath, collection}};
    return rows;
}
