#pragma once

#include "../MenuNode.h"

// The menu of one track: "plid" and "seqnum" say where it stands, "itemid" (decimal) which item it
// is. Its entries act on that item wherever the playlist has it by then, and are refused when the
// playlist no longer has it. "revision" tells the item from a later one with the same number.
class PlayListTrackContextNode : public MenuNode {
    Q_OBJECT
public:
    using MenuNode::MenuNode;

    static PlayListTrackContextNode* create(CMNodes* nodes, const CMPath& path,
                                            PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;
    bool setDataRequest(const CMSetDataRequest& request) override;

protected:
    std::span<const MenuAction> actions() const override;
};
