#pragma once

#include "../BaseNode.h"

// The playlists of one collection. One node serves all collections: the path parameter "clid" tells
// which.
class CollectionGetItemsNode : public BaseNode {
    Q_OBJECT
public:
    using BaseNode::BaseNode;

    static CollectionGetItemsNode* create(CMNodes* nodes, const CMPath& path,
                                          PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;
};
