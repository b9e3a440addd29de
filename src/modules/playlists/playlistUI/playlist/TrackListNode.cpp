#include "TrackListNode.h"

#include "../../PlayListBase.h"

void TrackListNode::sendTracks(PlayListBase* pl, const TrString& title,
                               const CMGetRowsRequest& request) {
    int total = 0;
    QVariantList rows;
    OrvoRowsRoles reply;
    if (pl) {
        total = pl->getSize();
        const int plid = pl->getUid();
        const QStringList names = request.roleNames();
        const auto addRow = [&](QVariantHash& roles, const QString& id, int sequenceNumber) {
            roles.insert(OrvoRoles::Context(), trackMenu(id, plid, sequenceNumber).toHash());
            rows.append(QVariant(CMGlobal::itemRolesToList(names, OrvoRoles(roles))));
        };
        pl->visitRoles(request.fromRow(), request.toRow(), addRow);
        reply.setRevision(pl->getRevision());
        reply.setLastPlayedIndex(pl->getLastSequenceNumber());
    }
    sendRowsReply(rows, total, title, createRolesFromPath(path(), request.roleNames()), request,
                  false, reply);
}
