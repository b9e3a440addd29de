#pragma once

#include <QHash>

#include "../BaseNode.h"

class PlayListGetItemsNode;

// All playlists, after an entry that creates one. Owns the items node of every playlist, which is
// made when a client first asks for it.
class PlayListGetListNode : public BaseNode, private CMNodeFamily {
    Q_OBJECT
public:
    using BaseNode::BaseNode;

    static PlayListGetListNode* create(CMNodes* nodes, const CMPath& path,
                                       PlayListManager* manager);

    bool getRowsRequest(const CMGetRowsRequest& request) override;

    // The playlist has an items node from here on.
    void createPlaylistNode(const int& plid);
    // The node leaves the registry at once and goes with the next turn of the event loop.
    void deletePlaylistNode(const int& plid);
    void createPlaylistNodes();
    void debugPlaylistNodes() const;
    // Null when the playlist has no node.
    PlayListGetItemsNode* playlistNode(int plid);

private:
    CMNode* makeNode(const QString& lastComponent) override;
    int unmadeCount() const override;

    // Null for a node that was not asked for yet.
    QHash<int, PlayListGetItemsNode*> m_itemsNodeMap;
};
