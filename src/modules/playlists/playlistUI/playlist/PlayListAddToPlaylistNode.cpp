#include "PlayListAddToPlaylistNode.h"

#include "../../ModuleLog.h"
#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "CMRootWorker.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

PlayListAddToPlaylistNode* PlayListAddToPlaylistNode::create(CMNodes* nodes, const CMPath& path,
                                                             PlayListManager* manager) {
    return createNode<PlayListAddToPlaylistNode>(nodes, path, manager);
}

bool PlayListAddToPlaylistNode::getRowsRequest(const CMGetRowsRequest& request) {
    QList<OrvoRoles> entries;
    entries.append(editRow(TrString("PlayListAddToPlaylistNode", "Create new playlist"),
                           entryPath(request, QStringLiteral("createPl"), {}), OrvoValue::fromString(QString())));
    entries.append(separatorRow());
    // The source is offered too: adding a playlist to itself doubles it, which some want.
    const QList<PlayListBase*> playLists = manager()->getAllPlayList();
    for (const PlayListBase* pl : playLists) {
        LOG4CPLUS_DEBUG(moduleLog(), "plid:" << pl->getUid() << " plname:" << pl->getName());
        CMPath target = OrvoPlayListPlSelectAddModePath();
        target.setParams(request.path().params());
        OrvoRoles entry = menuRow(TrString(pl->getName()), target.addParam(Plid(), toStr(pl->getUid())));
        entry.setContainerPlayable(true);
        entries.append(entry);
    }
    sendMenu(entries, TrString("PlayListAddToPlaylistNode", "Playlists"), request);
    return true;
}

bool PlayListAddToPlaylistNode::setDataRequest(const CMSetDataRequest& request) {
    if (request.path().param(Action()) != QLatin1String("createPl"))
        return false;
    OrvoPlayListPlCreate args;
    args.setName(stringValue(request));
    CMRoot()->invoke(OrvoPlayListPlCreatePath(), args.toVariant(), request.reply());
    return true;
}
