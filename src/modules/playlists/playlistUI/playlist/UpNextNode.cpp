#include "UpNextNode.h"

#include <algorithm>
#include <utility>

#include "../../PlayListPlayLogic.h"
#include "CMConnect.h"

UpNextNode::UpNextNode(const CMPath& path, PlayListManager* manager,
                       const PlayListPlayLogic* playLogic, CMSubscribe* subscribe)
    : TrackListNode(path, manager), m_playLogic(playLogic), m_subscribe(subscribe) {
    cmConnect(m_playLogic, &PlayListPlayLogic::upNextChanged, this, &UpNextNode::on_upNext_changed);
}

bool UpNextNode::getRowsRequest(const CMGetRowsRequest& request) {
    const UpNext upNext = m_playLogic->upNext();
    const int last = std::min(request.toRow(), upNext.count() - 1);
    const auto visitRows = [&](const PlayListBase::VisitRoles& visit) {
        bool goesOn = true;
        int row = std::max(request.fromRow(), 0);
        while (row <= last && goesOn) {
            // Tracks that follow each other in the list, too, are read at once.
            const int from = upNext.number(row++);
            int to = from;
            for (; row <= last && upNext.number(row) == to + 1; ++row)
                ++to;
            upNext.list->visitRoles(from, to,
                                    [&](QVariantHash& roles, const QString& id, int number) {
                                        return goesOn = visit(roles, id, number);
                                    });
        }
    };
    sendTracks(upNext.list, upNext.count(), visitRows, TrString("UpNextNode", "Up next"), request);
    return true;
}

void UpNextNode::on_upNext_changed() {
    if (!std::exchange(m_resetIsDue, true))
        QMetaObject::invokeMethod(this, &UpNextNode::sendReset, Qt::QueuedConnection);
}

void UpNextNode::sendReset() {
    m_resetIsDue = false;
    const UpNext upNext = m_playLogic->upNext();
    if (upNext == std::exchange(m_told, upNext))
        return;
    m_subscribe->rowsChanged(path(), CMSubscribe::RowsChangeReset(), -1);
}
