#include "PlayQueueContextNode.h"

#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListPaths.h"

PlayQueueContextNode* PlayQueueContextNode::create(CMNodes* nodes, const CMPath& path,
                                                   PlayListManager* manager) {
    return createNode<PlayQueueContextNode>(nodes, path, manager);
}

bool PlayQueueContextNode::getRowsRequest(const CMGetRowsRequest& request) {
    const QString plid = toStr(manager()->getPlayQueue()->getUid());
    const auto tr = [](const char* text) { return TrString("PlayQueueContextNode", text); };
    const QList<OrvoRoles> entries = {
        actionRow(tr("Play"), entryPath(request, QStringLiteral("playPl"), {{Plid(), plid}})),
        menuRow(tr("Merge with playlist"), pathWith(OrvoPlayListPlAddToPlaylistPath(),
                                                    {{Action(), CmNode()}, {FromPlid(), plid}})),
        separatorRow(),
        actionRow(tr("Clear"), entryPath(request, QStringLiteral("clearPl"), {{Plid(), plid}})),
    };
    sendMenu(entries, tr("PlayQueue Context Menu"), request);
    return true;
}

std::span<const MenuNode::MenuAction> PlayQueueContextNode::actions() const {
    static constexpr MenuAction rows[] = {
        {"playPl", OrvoPlayListPlPlayPath, playListOnly},
        {"clearPl", OrvoPlayListPlClearPath, playListOnly},
    };
    return rows;
}
