#pragma once

#include <span>

#include "BaseNode.h"

class PlayListBase;

// What the menus share: building entries, and sending an entry's command on behalf of the
// requester. A command's error reaches the requester unchanged; after a success the menu closes
// unless the action says that it stays open.
class MenuNode : public BaseNode {
    Q_OBJECT
public:
    using BaseNode::BaseNode;

    // Sends the command of the action that the path names; any other action is not taken.
    bool setDataRequest(const CMSetDataRequest& request) override;

    void watchReplyFinished(const CMReply<QVariant>& reply, CMSetDataRequest request);

protected:
    using Params = QList<QPair<QString, QString>>;

    enum class Menu { Closes, StaysOpen };

    // What the entry with this "action" does: the command that it sends, the command's arguments
    // out of the request, and what becomes of the menu after a success.
    struct MenuAction {
        const char* name;
        CMPath (*command)();
        OrvoHash (*arguments)(const CMSetDataRequest& request);
        Menu after = Menu::Closes;
    };
    virtual std::span<const MenuAction> actions() const { return {}; }

    // This node's path with the request's parameters, `action` and further ones.
    CMPath entryPath(const CMGetRowsRequest& request, const QString& action,
                     const Params& params) const;
    // Another path with exactly these parameters.
    static CMPath pathWith(CMPath path, const Params& params);

    static OrvoRoles actionRow(const TrString& title, const CMPath& path);
    static OrvoRoles editRow(const TrString& title, const CMPath& path, const OrvoValue& value);
    static OrvoRoles menuRow(const TrString& title, const CMPath& path);
    static OrvoRoles separatorRow();

    void sendMenu(const QList<OrvoRoles>& entries, const TrString& title,
                  const CMGetRowsRequest& request);

    // Invokes the command; the requester is answered when it is done.
    void sendCommand(const CMPath& command, const OrvoHash& args, const CMSetDataRequest& request);
    // An id or a position that a path carries: -1, which every command refuses, when it is missing
    // or no number.
    static int numberParam(const CMSetDataRequest& request, const QString& name);
    // Whether the item with this uid is still the one for which the path, by its revision, was
    // made. True where the path has no revision.
    bool isMadeForItem(const CMPath& path, int uid) const;
    // The same for the playlist that the entry is to add to, by its first revision.
    static bool isMadeForTarget(const CMPath& path, const PlayListBase* target);
    // Answers that what the entry was made for is no longer there.
    static void refuse(const CMSetDataRequest& request, const TrString& message);
    // The arguments of a command that needs the playlist alone.
    static OrvoHash playListOnly(const CMSetDataRequest& request);

    // The first revision of the playlist that an entry is to add to.
    static QString TargetRevision() { return QStringLiteral("targetrevision"); }
    static QString Mode() { return QStringLiteral("mode"); }
    static QString CmNode() { return QStringLiteral("cmnode"); }
    // The text that an entry was given.
    static QString stringValue(const CMSetDataRequest& request);

private:
    const MenuAction* findAction(const CMSetDataRequest& request) const;
};
