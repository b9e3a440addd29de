#include "PlayQueueGetItemsNode.h"

#include "../../PlayListManager.h"

PlayQueueGetItemsNode* PlayQueueGetItemsNode::create(CMNodes* nodes, const CMPath& path,
                                                     PlayListManager* manager) {
    auto* node = createNode<PlayQueueGetItemsNode>(nodes, path, manager);
    node->setMediaData(playableMediaData());
    return node;
}

bool PlayQueueGetItemsNode::getRowsRequest(const CMGetRowsRequest& request) {
    sendTracks(manager()->getPlayQueue(), TrString("PlayQueueGetItemsNode", "PlayQueue tracks"),
               request);
    return true;
}
