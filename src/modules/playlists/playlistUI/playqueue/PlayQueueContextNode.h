#pragma once

#include "../MenuNode.h"

// The menu of the play queue.
class PlayQueueContextNode : public MenuNode {
    Q_OBJECT
public:
    using MenuNode::MenuNode;

    static PlayQueueContextNode* create(CMNodes* nodes, const CMPath& path,
                                        PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;

protected:
    std::span<const MenuAction> actions() const override;
};
