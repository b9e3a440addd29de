#include "TrackListNode.h"

#include "../../PlayListBase.h"

void TrackListNode::sendTracks(PlayListBase* pl, const TrString& title,
                               const CMGetRowsRequest& request) {
    int total = 0;
    QVariantList rows;
    if (pl) {
        total = pl->getSize();
        const QList<OrvoPlayListItem> items = pl->getItems(request.fromRow(), request.toRow());
        rows.reserve(items.size());
        for (const OrvoPlayListItem& item : items) {
            const OrvoRoles roles = addContextMenuToRoles(pl->itemToOrvoRoles(item), pl->getUid());
            rows.append(QVariant(CMGlobal::itemRolesToList(request.roleNames(), roles)));
        }
    }
    sendRowsReply(rows, total, title, createRolesFromPath(path(), request.roleNames()), request,
                  false);
}
