#include "PlayListAddToPlaylistNode.h"

#include "../../ModuleLog.h"
#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

PlayListAddToPlaylistNode* PlayListAddToPlaylistNode::create(CMNodes* nodes, const CMPath& path,
                                                             PlayListManager* manager) {
    return createNode<PlayListAddToPlaylistNode>(nodes, path, manager);
}

bool PlayListAddToPlaylistNode::getRowsRequest(const CMGetRowsRequest& request) {
    QList<OrvoRoles> entries;
    entries.append(editRow(TrString("PlayListAddToPlaylistNode", "Create new playlist"),
                           entryPath(request, QStringLiteral("createPl"), {}),
                           OrvoValue::fromString(QString())));
    entries.append(separatorRow());
    // The source is offered too: a user may add a playlist to itself, which doubles it.
    const QList<PlayListBase*> playLists = manager()->getAllPlayList();
    for (const PlayListBase* pl : playLists) {
        LOG4CPLUS_DEBUG(moduleLog(),
                        "plid:" << pl->getUid() << " plname:" << loggedText(pl->getName()));
        CMPath target = OrvoPlayListPlSelectAddModePath();
        target.setParams(request.path().params());
        // Who asks for a track as it was at a revision means each list as it is listed now, too.
        if (target.params().contains(Revision()))
            target.addParam(TargetRevision(), QString::number(pl->getFirstRevision()));
        OrvoRoles entry =
            menuRow(TrString(pl->getName()), target.addParam(Plid(), toStr(pl->getUid())));
        entry.setContainerPlayable(true);
        entries.append(entry);
    }
    sendMenu(entries, TrString("PlayListAddToPlaylistNode", "Playlists"), request);
    return true;
}

std::span<const MenuNode::MenuAction> PlayListAddToPlaylistNode::actions() const {
    constexpr auto name = [](const CMSetDataRequest& request) -> OrvoHash {
        OrvoPlayListPlCreate args;
        args.setName(stringValue(request));
        return args;
    };
    // The menu stays so that the new playlist can be chosen.
    static constexpr MenuAction rows[] = {
        {"createPl", OrvoPlayListPlCreatePath, name, Menu::StaysOpen}};
    return rows;
}
