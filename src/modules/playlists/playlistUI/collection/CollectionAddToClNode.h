#pragma once

#include "../MenuNode.h"

// To which collection a playlist ("plid") is added: the collections, after an entry that makes a
// new one.
class CollectionAddToClNode : public MenuNode {
    Q_OBJECT
public:
    using MenuNode::MenuNode;

    static CollectionAddToClNode* create(CMNodes* nodes, const CMPath& path,
                                         PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;

protected:
    std::span<const MenuAction> actions() const override;
};
