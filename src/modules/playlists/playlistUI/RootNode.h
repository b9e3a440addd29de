#pragma once

#include "BaseNode.h"

class CollectionBase;
class PlayListBase;

// The entry of the tree: the play queue, the playlists and, where visible, the collections, each
// section with an entry that creates one.
class RootNode : public BaseNode {
    Q_OBJECT
public:
    using BaseNode::BaseNode;

    static RootNode* create(CMNodes* nodes, const CMPath& path, PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;
    // "createPl" and "createCl" send the create commands; they answer the request themselves.
    bool setDataRequest(const CMSetDataRequest& request) override;

private:
    static OrvoRoles playQueueRow(const PlayListBase* queue);
    static OrvoRoles collectionRow(const CollectionBase* cl);
};
