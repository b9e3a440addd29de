#pragma once

#include "../MenuNode.h"

// The menu of one playlist ("plid"), opened from a collection also with "clid".
class PlayListContextNode : public MenuNode {
    Q_OBJECT
public:
    using MenuNode::MenuNode;

    static PlayListContextNode* create(CMNodes* nodes, const CMPath& path,
                                       PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;

protected:
    std::span<const MenuAction> actions() const override;
};
