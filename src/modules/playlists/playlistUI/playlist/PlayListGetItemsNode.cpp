#include "PlayListGetItemsNode.h"

#include "../../PlayListBase.h"
#include "../../PlayListManager.h"

PlayListGetItemsNode* PlayListGetItemsNode::create(CMNodes* nodes, const CMPath& path,
                                                   PlayListManager* manager) {
    auto* node = createNode<PlayListGetItemsNode>(nodes, path, manager);
    node->setMediaData(playableMediaData());
    return node;
}

bool PlayListGetItemsNode::getRowsRequest(const CMGetRowsRequest& request) {
    const QStringList components = path().splitBase();
    PlayListBase* pl = manager()->getPlayListByUid(
        toInt(components.isEmpty() ? QString() : components.last(), -1));
    const TrString title("PlayListGetItemsNode", "Playlist - %1", {pl ? pl->getName() : QString()});
    sendTracks(pl, title, request);
    return true;
}
