#include "PlayListGetListNode.h"

#include "../../ModuleLog.h"
#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "../../RepeatedLogLines.h"
#include "OrvoPlayListPaths.h"
#include "PlayListGetItemsNode.h"

PlayListGetListNode* PlayListGetListNode::create(CMNodes* nodes, const CMPath& path,
                                                 PlayListManager* manager) {
    return createNode<PlayListGetListNode>(nodes, path, manager);
}

bool PlayListGetListNode::getRowsRequest(const CMGetRowsRequest& request) {
    QVariantList rows;
    // The root creates. Translations have "new" in lower case here, unlike there.
    CMPath createPath = OrvoPlayListsRootPath();
    createPath.setParams(request.path().params());
    rows.append(QVariant(CMGlobal::itemRolesToList(
        request.roleNames(), textEntryRow(TrString("PlayListGetListNode", "Create new playlist"),
                                          createPath, QStringLiteral("createPl")))));
    const QList<PlayListBase*> playLists = manager()->getAllPlayList();
    for (const PlayListBase* pl : playLists) {
        LOG4CPLUS_DEBUG(moduleLog(),
                        "plid:" << pl->getUid() << " plname:" << loggedText(pl->getName()));
        // No container-playable flag, unlike the root's rows: this list is for choosing, not
        // playing.
        const OrvoRoles row = playListRow(
            pl, contextMenu(
                    TrString("PlayListGetListNode", "Playlist Context Menu - %1", {pl->getName()}),
                    OrvoPlayListPlContextPath().addParam(Plid(), toStr(pl->getUid()))));
        rows.append(QVariant(CMGlobal::itemRolesToList(request.roleNames(), row)));
    }
    sendRowsReply(rows, rows.count(), TrString("PlayListGetListNode", "Playlists"), OrvoRoles(),
                  request, true);
    return true;
}

void PlayListGetListNode::createPlaylistNode(const int& plid) {
    if (!m_itemsNodeMap.contains(plid)) {
        PlayListGetItemsNode* node = PlayListGetItemsNode::create(
            nodes(), OrvoPlayListPlGetItemsPath() + toStr(plid), manager());
        node->setParent(this);
        m_itemsNodeMap.insert(plid, node);
    }
    debugPlaylistNodes();
}

void PlayListGetListNode::deletePlaylistNode(const int& plid) {
    if (PlayListGetItemsNode* node = m_itemsNodeMap.take(plid))
        node->deleteLater();
    else
        LOG4CPLUS_DEBUG(moduleLog(), "no items node for playlist " << plid);
    debugPlaylistNodes();
}

void PlayListGetListNode::createPlaylistNodes() {
    const QList<PlayListBase*> playLists = manager()->getAllPlayList();
    for (const PlayListBase* pl : playLists)
        createPlaylistNode(pl->getUid());
}

void PlayListGetListNode::debugPlaylistNodes() const {
    if (!moduleLog().isEnabledFor(log4cplus::DEBUG_LOG_LEVEL))
        return;
    LOG4CPLUS_DEBUG(moduleLog(), "m_itemsNodeMap keys.count():" << m_itemsNodeMap.size());
    RepeatedLogLines keys(moduleLog(), log4cplus::DEBUG_LOG_LEVEL);
    for (auto it = m_itemsNodeMap.cbegin(); it != m_itemsNodeMap.cend(); ++it) {
        if (keys.next())
            LOG4CPLUS_DEBUG(moduleLog(), "m_itemsNodeMap key:" << it.key());
    }
}
