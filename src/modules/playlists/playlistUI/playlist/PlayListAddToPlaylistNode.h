#pragma once

#include "../MenuNode.h"

// Where to add a track ("itemid") or a whole playlist ("fromplid"): the playlists, after an entry
// that makes a new one.
class PlayListAddToPlaylistNode : public MenuNode {
    Q_OBJECT
public:
    using MenuNode::MenuNode;

    static PlayListAddToPlaylistNode* create(CMNodes* nodes, const CMPath& path,
                                             PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;

protected:
    std::span<const MenuAction> actions() const override;
};
