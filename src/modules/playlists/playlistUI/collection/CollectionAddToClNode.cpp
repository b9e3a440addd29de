#include "CollectionAddToClNode.h"

#include "../../CollectionBase.h"
#include "../../ModuleLog.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

CollectionAddToClNode* CollectionAddToClNode::create(CMNodes* nodes, const CMPath& path, PlayListManager* manager) {
    return createNode<CollectionAddToClNode>(nodes, path, manager);
}

bool CollectionAddToClNode::closesAfter(const QString& action) const {
    return action == QLatin1String("addItem");
}

bool CollectionAddToClNode::getRowsRequest(const CMGetRowsRequest& request) {
    QList<OrvoRoles> entries;
    entries.append(editRow(TrString("CollectionAddToClNode", "Create new collection"),
                           entryPath(request, QStringLiteral("createCl"), {}), OrvoValue::fromString(QString())));
    entries.append(separatorRow());
    const QList<CollectionBase*> collections = manager()->getAllCollection();
    for (const CollectionBase* cl : collections) {
        LOG4CPLUS_DEBUG(moduleLog(), "clid:" << cl->getUid() << " clname:" << cl->getName());
        entries.append(actionRow(TrString(cl->getName()), entryPath(request, QStringLiteral("addItem"),
                                                                    {{Clid(), toStr(cl->getUid())}})));
    }
    sendMenu(entries, TrString("CollectionAddToClNode", "Add playlist to collection"), request);
    return true;
}

bool CollectionAddToClNode::setDataRequest(const CMSetDataRequest& request) {
    const QMap<QString, QString>& params = request.path().params();
    const QString action = params.value(Action());
    if (action == QLatin1String("createCl")) {
        OrvoPlayListClCreate args;
        args.setName(stringValue(request));
        sendCommand(OrvoPlayListClCreatePath(), args, request);
        return true;
    }
    if (action == QLatin1String("addItem")) {
        OrvoPlayListClAddRemoveItem args;
        if (params.contains(Plid()))
            args.setPlid(toInt(params.value(Plid()), -1));
        if (params.contains(Clid()))
            args.setClid(toInt(params.value(Clid()), -1));
        sendCommand(OrvoPlayListClAddItemPath(), args, request);
        return true;
    }
    return false;
}
