#pragma once

#include "../playlist/TrackListNode.h"

// The tracks of the play queue.
class PlayQueueGetItemsNode : public TrackListNode {
    Q_OBJECT
public:
    using TrackListNode::TrackListNode;

    static PlayQueueGetItemsNode* create(CMNodes* nodes, const CMPath& path,
                                         PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;
};
