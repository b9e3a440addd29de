#pragma once

#include "../MenuNode.h"

// The menu of one collection ("clid").
class CollectionContextNode : public MenuNode {
    Q_OBJECT
public:
    using MenuNode::MenuNode;

    static CollectionContextNode* create(CMNodes* nodes, const CMPath& path,
                                         PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;

protected:
    std::span<const MenuAction> actions() const override;
};
