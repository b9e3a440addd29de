#pragma once

#include "../MenuNode.h"

// At which position to add: now, after the current track, at the end.
class PlayListAddModeNode : public MenuNode {
    Q_OBJECT
public:
    using MenuNode::MenuNode;

    static PlayListAddModeNode* create(CMNodes* nodes, const CMPath& path,
                                       PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;
    // Depends on the parameters that are there, not on "action".
    bool setDataRequest(const CMSetDataRequest& request) override;
};
