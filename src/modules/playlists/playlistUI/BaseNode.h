#pragma once

#include <QVariantList>

#include "CMNode.h"
#include "OrvoRoles.h"

class PlayListBase;
class PlayListManager;

// What all nodes of the tree share: the manager, the two visibility settings, path parameters, and
// how rows are sent. Owned by its parent node, worker's thread only. Never fails: what is
// unknown lists as empty.
class BaseNode : public CMListRowsNode {
    Q_OBJECT
public:
    BaseNode(const CMPath& path, PlayListManager* manager);

    static BaseNode* create(CMNodes* nodes, const CMPath& path, PlayListManager* manager);

    // Both return true and do nothing here: a node with rows or actions overrides them.
    bool getRowsRequest(const CMGetRowsRequest& request) override;
    bool setDataRequest(const CMSetDataRequest& request) override;

    // `defaultValue` when the text is no decimal number.
    static int toInt(const QString& s, int defaultValue);
    static QString toStr(const int& value);

    // The node's own roles as seen at `path`, restricted to `keys`.
    OrvoRoles createRolesFromPath(const CMPath& path, const QStringList& keys) const;

    // Answers the request. With `sliceRows` the rows are all there are and the requested range is
    // cut out of them; without it they are that range already. `rowsCount` is the total in both
    // cases. What `reply` holds already goes along.
    void sendRowsReply(const QVariantList& rows, int rowsCount, const TrString& title,
                       const OrvoRoles& roles, const CMGetRowsRequest& request, bool sliceRows,
                       OrvoRowsRoles reply = {});

    // Adds the link to the track's menu to a track row.
    static OrvoRoles addContextMenuToRoles(OrvoRoles roles, int plid);

    // Tells the user interface to close this node's view.
    OrvoEvent genClosePathEvent() const;

protected:
    // The path parameters of the tree.
    static QString Plid() { return QStringLiteral("plid"); }
    static QString Clid() { return QStringLiteral("clid"); }
    static QString ItemId() { return QStringLiteral("itemid"); }
    static QString SeqNum() { return QStringLiteral("seqnum"); }
    static QString FromPlid() { return QStringLiteral("fromplid"); }
    static QString Action() { return QStringLiteral("action"); }
    // The revision that the playlist had when a menu of one of its tracks was read.
    static QString Revision() { return QStringLiteral("revision"); }
    static QString PreparePath() { return QStringLiteral("preparepath"); }

    PlayListManager* manager() const { return m_manager; }
    bool isPlayQueueVisible() const { return m_playQueueVisible; }
    bool areCollectionsVisible() const { return m_collectionsVisible; }

    // Both ends included.
    struct RowRange {
        int first;
        int last;
        bool contains(int row) const { return row >= first && row <= last; }
    };
    // The rows that a request asks for of the `rowsCount` (at least 1) that there are.
    static RowRange askedRows(const CMGetRowsRequest& request, int rowsCount);

    // Rows that several nodes list.
    static OrvoRoles headerRow(const TrString& title);
    static OrvoRoles playListRow(const PlayListBase* pl, const OrvoRoles& menu);
    // A text to be entered; entering it sends set-data to `path` with `action`.
    static OrvoRoles textEntryRow(const TrString& title, CMPath path, const QString& action);
    // The media data of a container that this module plays.
    static OrvoMediaData playableMediaData();
    static OrvoRoles contextMenu(const TrString& title, const CMPath& path);
    // The link that addContextMenuToRoles() adds.
    static OrvoRoles trackMenu(const QString& itemId, int plid, int sequenceNumber);

private:
    PlayListManager* m_manager;
    // Read once: a later change of the settings takes effect at the next start.
    bool m_playQueueVisible;
    bool m_collectionsVisible;
};

// The form of every node's `create`.
template <typename Node>
Node* createNode(CMNodes* nodes, const CMPath& path, PlayListManager* manager) {
    auto* node = new Node(path, manager);
    node->setNodes(nodes);
    return node;
}
