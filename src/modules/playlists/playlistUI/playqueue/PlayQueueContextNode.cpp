#include "PlayQueueContextNode.h"

#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

PlayQueueContextNode* PlayQueueContextNode::create(CMNodes* nodes, const CMPath& path, PlayListManager* manager) {
    return createNode<PlayQueueContextNode>(nodes, path, manager);
}

bool PlayQueueContextNode::getRowsRequest(const CMGetRowsRequest& request) {
    const QString plid = toStr(manager()->getPlayQueue()->getUid());
    const auto tr = [](const char* text) { return TrString("PlayQueueContextNode", text); };
    const QList<OrvoRoles> entries = {
        actionRow(tr("Play"), entryPath(request, QStringLiteral("playPl"), {{Plid(), plid}})),
        menuRow(tr("Merge with playlist"),
                pathWith(OrvoPlayListPlAddToPlaylistPath(), {{Action(), CmNode()}, {FromPlid(), plid}})),
        separatorRow(),
        actionRow(tr("Clear"), entryPath(request, QStringLiteral("clearPl"), {{Plid(), plid}})),
    };
    sendMenu(entries, tr("PlayQueue Context Menu"), request);
    return true;
}

bool PlayQueueContextNode::setDataRequest(const CMSetDataRequest& request) {
    const QString action = request.path().param(Action());
    OrvoPlayListPlId args;
    args.setPlid(toInt(request.path().param(Plid()), -1));
    if (action == QLatin1String("playPl"))
        sendCommand(OrvoPlayListPlPlayPath(), args, request);
    else if (action == QLatin1String("clearPl"))
        sendCommand(OrvoPlayListPlClearPath(), args, request);
    else
        return false;
    return true;
}
