#include "PlayListTrackContextNode.h"

#include "../../ModuleLog.h"
#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

PlayListTrackContextNode* PlayListTrackContextNode::create(CMNodes* nodes, const CMPath& path,
                                                           PlayListManager* manager) {
    return createNode<PlayListTrackContextNode>(nodes, path, manager);
}

bool PlayListTrackContextNode::getRowsRequest(const CMGetRowsRequest& request) {
    const QString plid = request.path().param(Plid());
    const QString itemId = request.path().param(ItemId());
    const QString seqNum = request.path().param(SeqNum());
    LOG4CPLUS_DEBUG(moduleLog(), "plid:" << plid << " itemid:" << itemId << " seqnum:" << seqNum);
    const auto tr = [](const char* text) { return TrString("PlayListTrackContextNode", text); };
    const OrvoPlayListItem item = manager()->getPlayListItemByUid(toInt(itemId, -1));
    QList<OrvoRoles> entries;
    if (item.uid() > 0) {
        const PlayListBase* queue = manager()->getPlayQueue();
        // To the add-to nodes the item is named by its path.
        const QString itemPath = (OrvoPlayListItemPath() + toStr(item.uid())).toString();
        const QString place = toStr(item.sequenceNumber());
        if (isPlayQueueVisible() && plid != toStr(queue->getUid())) {
            entries.append(menuRow(tr("Add to playqueue"), pathWith(OrvoPlayListPlSelectAddModePath(),
                                                                    {{Action(), CmNode()},
                                                                     {FromPlid(), plid},
                                                                     {ItemId(), itemPath},
                                                                     {Plid(), toStr(queue->getUid())}})));
        }
        // The prepare path is carried for interfaces that ask for it; nothing here reads it back.
        entries.append(menuRow(tr("Add to playlist"),
                               pathWith(OrvoPlayListPlAddToPlaylistPath(),
                                        {{Action(), CmNode()},
                                         {FromPlid(), plid},
                                         {ItemId(), itemPath},
                                         {PreparePath(), OrvoPlayListPlPrepareItemsPath().toString()}})));
        entries.append(editRow(
            tr("Move track"),
            entryPath(request, QStringLiteral("moveTr"), {{Plid(), plid}, {QStringLiteral("from"), place}}),
            OrvoValue::fromString(place)));
        entries.append(actionRow(tr("Remove track"), entryPath(request, QStringLiteral("removeTr"),
                                                               {{FromPlid(), plid}, {SeqNum(), place}})));
    }
    sendMenu(entries, tr("Track Context Menu"), request);
    return true;
}

namespace {
// A target position, entered as text or sent as a number; anything else is -1, which the command refuses.
int enteredPosition(const CMSetDataRequest& request) {
    const OrvoValue value(request.value().toHash());
    return OrvoHash::toInt(value.attribute(value.tag()), -1);
}
} // namespace

bool PlayListTrackContextNode::setDataRequest(const CMSetDataRequest& request) {
    const CMPath& path = request.path();
    const QString action = path.param(Action());
    if (action == QLatin1String("moveTr")) {
        OrvoPlayListPlMoveItems args;
        args.setPlid(toInt(path.param(Plid()), -1));
        args.setItems({toInt(path.param(QStringLiteral("from")), -1)});
        args.setTo(enteredPosition(request));
        sendCommand(OrvoPlayListPlMoveItemspath(), args, request);
        return true;
    }
    if (action == QLatin1String("removeTr")) {
        OrvoPlayListPlRemoveItems args;
        args.setPlid(toInt(path.param(FromPlid()), -1));
        args.setItems({toInt(path.param(SeqNum()), -1)});
        sendCommand(OrvoPlayListPlRemoveItemsPath(), args, request);
        return true;
    }
    return false;
}
