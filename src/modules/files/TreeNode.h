#pragma once

#include "CMNode.h"
#include "MusicTree.h"

// Lists the rows of every folder of the tree. One node for all of them: there may be thousands of
// folders, and what they list is in the tree already. Owned by the worker, which sends it every
// request at or below its path; answers them all, with an error where there is nothing or no list.
class TreeNode : public CMListRowsNode {
    Q_OBJECT
public:
    TreeNode(MusicTree* tree, CMNodes* nodes, QObject* parent);

    bool getRowsRequest(const CMGetRowsRequest& request) override;
    bool getDataRequest(const CMGetDataRequest& request) override;

private:
    MusicTree* m_tree;
};
