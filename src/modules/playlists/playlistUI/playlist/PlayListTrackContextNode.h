#pragma once

#include "../MenuNode.h"

// The menu of one track: "plid" and "seqnum" say where it stands, "itemid" (decimal) which item it
// is.
class PlayListTrackContextNode : public MenuNode {
    Q_OBJECT
public:
    using MenuNode::MenuNode;

    static PlayListTrackContextNode* create(CMNodes* nodes, const CMPath& path,
                                            PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;

protected:
    std::span<const MenuAction> actions() const override;
};
