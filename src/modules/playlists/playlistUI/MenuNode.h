#pragma once

#include "BaseNode.h"

// What the menus share: building entries, and sending an entry's command on behalf of the requester. A command's error
// reaches the requester unchanged; after a success the menu closes unless the node says that it stays open.
class MenuNode : public BaseNode {
    Q_OBJECT
public:
    using BaseNode::BaseNode;

    void watchReplyFinished(const CMReply<QVariant>& reply, CMSetDataRequest request);

protected:
    using Params = QList<QPair<QString, QString>>;

    // This node's path with the request's parameters, `action` and further ones.
    CMPath entryPath(const CMGetRowsRequest& request, const QString& action, const Params& params) const;
    // Another path with exactly these parameters.
    static CMPath pathWith(CMPath path, const Params& params);

    static OrvoRoles actionRow(const TrString& title, const CMPath& path);
    static OrvoRoles editRow(const TrString& title, const CMPath& path, const OrvoValue& value);
    static OrvoRoles menuRow(const TrString& title, const CMPath& path);
    static OrvoRoles separatorRow();

    void sendMenu(const QList<OrvoRoles>& entries, const TrString& title, const CMGetRowsRequest& request);

    // Invokes the command; the requester is answered when it is done.
    void sendCommand(const CMPath& command, const OrvoHash& args, const CMSetDataRequest& request);
    // Whether the menu closes after this action succeeded.
    virtual bool closesAfter(const QString& action) const;

    static QString Mode() { return QStringLiteral("mode"); }
    static QString CmNode() { return QStringLiteral("cmnode"); }
    // The text that an entry was given.
    static QString stringValue(const CMSetDataRequest& request);
};
