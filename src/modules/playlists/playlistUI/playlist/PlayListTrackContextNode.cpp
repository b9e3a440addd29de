#include "PlayListTrackContextNode.h"

#include <algorithm>

#include "../../ModuleLog.h"
#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

PlayListTrackContextNode* PlayListTrackContextNode::create(CMNodes* nodes, const CMPath& path,
                                                           PlayListManager* manager) {
    return createNode<PlayListTrackContextNode>(nodes, path, manager);
}

// The actions of the entries that change the list.
static constexpr char MoveTrack[] = "moveTr";
static constexpr char RemoveTrack[] = "removeTr";

static QString From() {
    return QStringLiteral("from");
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
    LOG4CPLUS_DEBUG(moduleLog(), "plid:" << loggedText(plid) << " itemid:" << loggedText(itemId)
                                         << " seqnum:" << loggedText(seqNum));
    const auto tr = [](const char* text) { return TrString("PlayListTrackContextNode", text); };
    const OrvoPlayListItem item = manager()->getPlayListItemByUid(toInt(itemId, -1));
    QList<OrvoRoles> entries;
    PlayListBase* pl = manager()->getPlayListByUid(toInt(plid, -1));
    if (holds(pl, item) && isMadeForItem(request.path(), item.uid())) {
        const PlayListBase* queue = manager()->getPlayQueue();
        // To the add-to nodes the item is named by its path.
        const QString itemPath = OrvoPlayListItemPathOf(item.uid()).toString();
        const QString position = toStr(item.sequenceNumber());
        const QString revision =
            request.path().params().value(Revision(), QString::number(pl->getRevision()));
        if (isPlayQueueVisible() && plid != toStr(queue->getUid())) {
            entries.append(
                menuRow(tr("Add to playqueue"), pathWith(OrvoPlayListPlSelectAddModePath(),
                                                         {{Action(), CmNode()},
                                                          {FromPlid(), plid},
                                                          {ItemId(), itemPath},
                                                          {Revision(), revision},
                                                          {Plid(), toStr(queue->getUid())}})));
        }
        // The prepare path is carried for interfaces that ask for it; nothing here reads it back.
        entries.append(
            menuRow(tr("Add to playlist"),
                    pathWith(OrvoPlayListPlAddToPlaylistPath(),
                             {{Action(), CmNode()},
                              {FromPlid(), plid},
                              {ItemId(), itemPath},
                              {Revision(), revision},
                              {PreparePath(), OrvoPlayListPlPrepareItemsPath().toString()}})));
        entries.append(
            editRow(tr("Move track"),
                    entryPath(request, QLatin1String(MoveTrack),
                              {{Plid(), plid}, {From(), position}, {Revision(), revision}}),
                    OrvoValue::fromString(position)));
        entries.append(actionRow(
            tr("Remove track"),
            entryPath(request, QLatin1String(RemoveTrack),
                      {{FromPlid(), plid}, {SeqNum(), position}, {Revision(), revision}})));
    }
    sendMenu(entries, tr("Track Context Menu"), request);
    return true;
}

bool PlayListTrackContextNode::setDataRequest(const CMSetDataRequest& request) {
    struct ActionRow {
        const char* action;
        QString playlist; // the parameters of the playlist and the position
        QString position;
        const char* gone;
        const char* changed;
    };
    static const ActionRow rows[] = {
        {MoveTrack, Plid(), From(),
         "Could not move items in playlist. The playlist no longer holds this track.",
         "Could not move items in playlist. The playlist has changed meanwhile."},
        {RemoveTrack, FromPlid(), SeqNum(),
         "Could not remove items from playlist. The playlist no longer holds this track.",
         "Could not remove items from playlist. The playlist has changed meanwhile."},
    };
    const QMap<QString, QString>& params = request.path().params();
    const auto row = std::find_if(std::begin(rows), std::end(rows), [&params](const auto& known) {
        return params.value(Action()) == QLatin1String(known.action);
    });
    if (row == std::end(rows) || !params.contains(ItemId()))
        return MenuNode::setDataRequest(request);
    const int plid = numberParam(request, row->playlist);
    PlayListBase* pl = manager()->getPlayListByUid(plid);
    if (!pl)
        return MenuNode::setDataRequest(request); // the command says what is wrong
    const int uid = numberParam(request, ItemId());
    if (!isMadeForItem(request.path(), uid)) {
        LOG4CPLUS_ERROR(moduleLog(),
                        "Playlist id: " << plid << " has another item by now: " << uid);
        refuse(request, TrString("PlayListTrackContextNode", row->changed));
        return true;
    }
    const OrvoPlayListItem item = manager()->getPlayListItemByUid(uid);
    if (!holds(pl, item)) {
        LOG4CPLUS_ERROR(moduleLog(), "Playlist id: " << plid << " no longer holds item: " << uid);
        refuse(request, TrString("PlayListTrackContextNode", row->gone));
        return true;
    }
    CMPath present = request.path();
    present.addParam(row->position, toStr(item.sequenceNumber()));
    return MenuNode::setDataRequest(CMSetDataRequest(present, request.value(), request.reply()));
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
        args.setItems({numberParam(request, From())});
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
        {MoveTrack, OrvoPlayListPlMoveItemspath, move},
        {RemoveTrack, OrvoPlayListPlRemoveItemsPath, remove},
    };
    return rows;
}
