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

// An item is one entry of one playlist. A menu that stayed open while its track went may ask for an
// item that is another playlist's by now.
static bool holds(PlayListBase* pl, const OrvoPlayListItem& item) {
    if (!pl || item.uid() <= 0)
        return false;
    const QList<OrvoPlayListItem> there =
        pl->getItems(item.sequenceNumber(), item.sequenceNumber());
    return there.size() == 1 && there.constFirst().uid() == item.uid();
}

bool PlayListTrackContextNode::getRowsRequest(const CMGetRowsRequest& request) {
    const QString plid = request.path().param(Plid());
    const QString itemId = request.path().param(ItemId());
    const QString seqNum = request.path().param(SeqNum());
    LOG4CPLUS_DEBUG(moduleLog(), "plid:" << plid << " itemid:" << itemId << " seqnum:" << seqNum);
    const auto tr = [](const char* text) { return TrString("PlayListTrackContextNode", text); };
    const OrvoPlayListItem item = manager()->getPlayListItemByUid(toInt(itemId, -1));
    QList<OrvoRoles> entries;
    if (holds(manager()->getPlayListByUid(toInt(plid, -1)), item)) {
        const PlayListBase* queue = manager()->getPlayQueue();
        // To the add-to nodes the item is named by its path.
        const QString itemPath = (OrvoPlayListItemPath() + toStr(item.uid())).toString();
        const QString place = toStr(item.sequenceNumber());
        if (isPlayQueueVisible() && plid != toStr(queue->getUid())) {
            entries.append(
                menuRow(tr("Add to playqueue"), pathWith(OrvoPlayListPlSelectAddModePath(),
                                                         {{Action(), CmNode()},
                                                          {FromPlid(), plid},
                                                          {ItemId(), itemPath},
                                                          {Plid(), toStr(queue->getUid())}})));
        }
        // The prepare path is carried for interfaces that ask for it; nothing here reads it back.
        entries.append(
            menuRow(tr("Add to playlist"),
                    pathWith(OrvoPlayListPlAddToPlaylistPath(),
                             {{Action(), CmNode()},
                              {FromPlid(), plid},
                              {ItemId(), itemPath},
                              {PreparePath(), OrvoPlayListPlPrepareItemsPath().toString()}})));
        entries.append(editRow(tr("Move track"),
                               entryPath(request, QStringLiteral("moveTr"),
                                         {{Plid(), plid}, {QStringLiteral("from"), place}}),
                               OrvoValue::fromString(place)));
        entries.append(
            actionRow(tr("Remove track"), entryPath(request, QStringLiteral("removeTr"),
                                                    {{FromPlid(), plid}, {SeqNum(), place}})));
    }
    sendMenu(entries, tr("Track Context Menu"), request);
    return true;
}

namespace {
// A target position, entered as text or sent as a number; anything else is -1, which the command
// refuses.
int enteredPosition(const CMSetDataRequest& request) {
    const OrvoValue value(request.value().toHash());
    return OrvoHash::toInt(value.attribute(value.tag()), -1);
}
} // namespace

std::span<const MenuNode::MenuAction> PlayListTrackContextNode::actions() const {
    constexpr auto move = [](const CMSetDataRequest& request) -> OrvoHash {
        OrvoPlayListPlMoveItems args;
        args.setPlid(numberParam(request, Plid()));
        args.setItems({numberParam(request, QStringLiteral("from"))});
        args.setTo(enteredPosition(request));
        return args;
    };
    constexpr auto remove = [](const CMSetDataRequest& request) -> OrvoHash {
        OrvoPlayListPlRemoveItems args;
        args.setPlid(numberParam(request, FromPlid()));
        args.setItems({numberParam(request, SeqNum())});
        return args;
    };
    static constexpr MenuAction rows[] = {
        {"moveTr", OrvoPlayListPlMoveItemspath, move},
        {"removeTr", OrvoPlayListPlRemoveItemsPath, remove},
    };
    return rows;
}
