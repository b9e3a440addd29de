// The part of BaseNode that runs for every row of a page.

#include <algorithm>

#include <QStringBuilder>

#include "BaseNode.h"
#include "OrvoPlayListPaths.h"

// Every row of a page has such a menu, so its path is put together as text; CMPath has the first
// part and says how an id is written that is none of ours.
OrvoRoles BaseNode::trackMenu(const QString& itemId, int plid, int sequenceNumber) {
    static const OrvoRoles withoutPath = [] {
        OrvoRoles roles;
        roles.setAttribute(OrvoRoles::Title(), TrString("BaseNode", "Playlist").toVariant());
        roles.setType(OrvoRolesType::Container);
        roles.setContainerType(OrvoRolesContainerType::ContextMenu);
        return roles;
    }();
    static const QString before = OrvoPlayListPlTrackContextPath()
                                      .addParam(Action(), QStringLiteral("cmnode"))
                                      .addParam(ItemId(), QString())
                                      .toString();
    static const QString playlist = QLatin1Char('&') + Plid() + QLatin1Char('=');
    static const QString number = QLatin1Char('&') + SeqNum() + QLatin1Char('=');

    QString path;
    if (std::all_of(itemId.cbegin(), itemId.cend(),
                    [](QChar c) { return c.unicode() >= '0' && c.unicode() <= '9'; }))
        path = before % itemId % playlist % toStr(plid) % number % toStr(sequenceNumber);
    else
        path = OrvoPlayListPlTrackContextPath()
                   .addParam(Action(), QStringLiteral("cmnode"))
                   .addParam(Plid(), toStr(plid))
                   .addParam(ItemId(), itemId)
                   .addParam(SeqNum(), toStr(sequenceNumber))
                   .toString();

    OrvoRoles menu = withoutPath;
    menu.setAttribute(OrvoRoles::Path(), path);
    return menu;
}
