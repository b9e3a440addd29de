#include "PlayListAddModeNode.h"

#include "../../ModuleLog.h"
#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

PlayListAddModeNode* PlayListAddModeNode::create(CMNodes* nodes, const CMPath& path,
                                                 PlayListManager* manager) {
    return createNode<PlayListAddModeNode>(nodes, path, manager);
}

bool PlayListAddModeNode::getRowsRequest(const CMGetRowsRequest& request) {
    struct AddMode {
        const char* title;
        OrvoPlayListAddPosition::Enum position;
    };
    static constexpr AddMode modes[] = {{"Now", OrvoPlayListAddPosition::Now},
                                        {"After current", OrvoPlayListAddPosition::AfterCurrent},
                                        {"Append", OrvoPlayListAddPosition::Append}};
    QList<OrvoRoles> entries;
    for (const AddMode& mode : modes) {
        CMPath entry = path();
        entry.setParams(request.path().params());
        entries.append(actionRow(TrString("PlayListAddModeNode", mode.title),
                                 entry.addParam(Mode(), toStr(int(mode.position)))));
    }
    sendMenu(entries, TrString("PlayListAddModeNode", "Playlists"), request);
    return true;
}

static TrString changedMeanwhile() {
    return {"PlayListAddModeNode",
            "Could not add items to playlist. The playlist has changed meanwhile."};
}

bool PlayListAddModeNode::setDataRequest(const CMSetDataRequest& request) {
    const QMap<QString, QString>& params = request.path().params();
    OrvoPlayListPlAddItems args;
    if (params.contains(Plid()))
        args.setPlid(toInt(params.value(Plid()), -1));
    if (params.contains(FromPlid()))
        args.setFromPlid(toInt(params.value(FromPlid()), -1));
    if (params.contains(Mode()))
        args.setMode(OrvoPlayListAddPosition::Enum(params.value(Mode()).toInt()));
    const PlayListBase* target = manager()->getPlayListByUid(args.plid());
    if (target && !isMadeForTarget(request.path(), target)) {
        LOG4CPLUS_ERROR(moduleLog(), "Another playlist by now: " << args.plid());
        refuse(request, changedMeanwhile());
        return true;
    }
    if (params.contains(ItemId())) {
        const QString item = params.value(ItemId());
        if (CMPath(item).startsWith(OrvoPlayListItemPath()) &&
            !isMadeForItem(request.path(), toInt(item.section(QLatin1Char('/'), -1), -1))) {
            LOG4CPLUS_ERROR(moduleLog(), "Another item by now: " << loggedText(item));
            refuse(request, changedMeanwhile());
            return true;
        }
        args.setItems({item});
    }
    sendCommand(OrvoPlayListPlAddItemsPath(), args, request);
    return true;
}
