#pragma once

#include <QHash>

#include "../BaseNode.h"

class PlayListGetItemsNode;

// All playlists, after an entry that creates one. Owns the items node of every playlist.
class PlayListGetListNode : public BaseNode {
    Q_OBJECT
public:
    using BaseNode::BaseNode;

    static PlayListGetListNode* create(CMNodes* nodes, const CMPath& path,
                                       PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;

    void createPlaylistNode(const int& plid);
    // The node leaves the registry at once and goes with the next turn of the event loop.
    void deletePlaylistNode(const int& plid);
    void createPlaylistNodes();
    void debugPlaylistNodes() const;
    // Null when the playlist has no node.
    PlayListGetItemsNode* playlistNode(int plid) const { return m_itemsNodeMap.value(plid); }

private:
    QHash<int, PlayListGetItemsNode*> m_itemsNodeMap;
};
