#include "CollectionAddToClNode.h"

#include "../../CollectionBase.h"
#include "../../ModuleLog.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

CollectionAddToClNode* CollectionAddToClNode::create(CMNodes* nodes, const CMPath& path,
                                                     PlayListManager* manager) {
    return createNode<CollectionAddToClNode>(nodes, path, manager);
}

bool CollectionAddToClNode::getRowsRequest(const CMGetRowsRequest& request) {
    QList<OrvoRoles> entries;
    entries.append(editRow(TrString("CollectionAddToClNode", "Create new collection"),
                           entryPath(request, QStringLiteral("createCl"), {}),
                           OrvoValue::fromString(QString())));
    entries.append(separatorRow());
    const QList<CollectionBase*> collections = manager()->getAllCollection();
    for (const CollectionBase* cl : collections) {
        LOG4CPLUS_DEBUG(moduleLog(),
                        "clid:" << cl->getUid() << " clname:" << loggedText(cl->getName()));
        entries.append(
            actionRow(TrString(cl->getName()), entryPath(request, QStringLiteral("addItem"),
                                                         {{Clid(), toStr(cl->getUid())}})));
    }
    sendMenu(entries, TrString("CollectionAddToClNode", "Add playlist to collection"), request);
    return true;
}

std::span<const MenuNode::MenuAction> CollectionAddToClNode::actions() const {
    constexpr auto name = [](const CMSetDataRequest& request) -> OrvoHash {
        OrvoPlayListClCreate args;
        args.setName(stringValue(request));
        return args;
    };
    constexpr auto membership = [](const CMSetDataRequest& request) -> OrvoHash {
        const QMap<QString, QString>& params = request.path().params();
        OrvoPlayListClAddRemoveItem args;
        if (params.contains(Plid()))
            args.setPlid(numberParam(request, Plid()));
        if (params.contains(Clid()))
            args.setClid(numberParam(request, Clid()));
        return args;
    };
    // The menu stays so that the new collection can be chosen.
    static constexpr MenuAction rows[] = {
        {"createCl", OrvoPlayListClCreatePath, name, Menu::StaysOpen},
        {"addItem", OrvoPlayListClAddItemPath, membership},
    };
    return rows;
}
