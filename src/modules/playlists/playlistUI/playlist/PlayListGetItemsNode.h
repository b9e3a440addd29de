#pragma once

#include "TrackListNode.h"

// The tracks of one playlist; the last component of its path is the playlist's id.
class PlayListGetItemsNode : public TrackListNode {
    Q_OBJECT
public:
    using TrackListNode::TrackListNode;

    static PlayListGetItemsNode* create(CMNodes* nodes, const CMPath& path,
                                        PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;
};
