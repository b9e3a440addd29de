#pragma once

#include "../MenuNode.h"

// The menu of one playlist ("plid"), opened from a collection also with "clid".
class PlayListContextNode : public MenuNode {
    Q_OBJECT
public:
    using MenuNode::MenuNode;

    static PlayListContextNode* create(CMNodes* nodes, const CMPath& path, PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;
    bool setDataRequest(const CMSetDataRequest& request) override;

protected:
    // Stays open where the entry shows the new value.
    bool closesAfter(const QString& action) const override;
};
