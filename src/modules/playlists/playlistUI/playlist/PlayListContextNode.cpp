#include "PlayListContextNode.h"

#include "../../CollectionBase.h"
#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

PlayListContextNode* PlayListContextNode::create(CMNodes* nodes, const CMPath& path, PlayListManager* manager) {
    return createNode<PlayListContextNode>(nodes, path, manager);
}

bool PlayListContextNode::closesAfter(const QString& action) const {
    return action != QLatin1String("shuffle") && action != QLatin1String("repeat") && action != QLatin1String("rename");
}

bool PlayListContextNode::getRowsRequest(const CMGetRowsRequest& request) {
    const QString plid = request.path().param(Plid());
    const QString clid = request.path().param(Clid());
    const PlayListBase* pl = manager()->getPlayListByUid(toInt(plid, -1));
    const auto tr = [](const char* text, const QStringList& arguments = {}) {
        return TrString("PlayListContextNode", text, arguments);
    };
    QList<OrvoRoles> entries;
    if (pl) {
        const auto entry = [this, &request, &plid](const char* action, const Params& params = {}) {
            return pathWith(entryPath(request, QString::fromLatin1(action), {{Plid(), plid}}), params);
        };
        const auto opposite = [](bool on) { return on ? QStringLiteral("0") : QStringLiteral("1"); };
        entries.append(actionRow(tr("Play"), entry("play")));
        entries.append(editRow(tr("Rename"), entry("rename"), OrvoValue::fromString(pl->getName())));
        entries.append(editRow(tr("Set shuffle mode"), entry("shuffle", {{Mode(), opposite(pl->getShuffle())}}),
                               OrvoValue::fromBool(pl->getShuffle())));
        entries.append(editRow(tr("Set repeat mode"), entry("repeat", {{Mode(), opposite(pl->getRepeatAll())}}),
                               OrvoValue::fromBool(pl->getRepeatAll())));
        entries.append(menuRow(tr("Merge with playlist"), pathWith(OrvoPlayListPlAddToPlaylistPath(),
                                                                   {{Action(), CmNode()}, {FromPlid(), plid}})));
        if (areCollectionsVisible()) {
            entries.append(menuRow(tr("Add to collection"), pathWith(OrvoPlayListClAddtoCollectionPath(),
                                                                     {{Action(), CmNode()}, {Plid(), plid}})));
            const CollectionBase* cl = clid.isEmpty() ? nullptr : manager()->getCollectionByUid(toInt(clid, -1));
            if (cl)
                entries.append(actionRow(tr("Remove from collection - %1", {cl->getName()}),
                                         entry("delFromCl", {{Clid(), clid}})));
        }
        entries.append(separatorRow());
        entries.append(actionRow(tr("Clear playlist"), entry("clearPl")));
        // Upper case in "delPL" is deliberate: interfaces keep these paths.
        entries.append(actionRow(tr("Delete playlist"), entry("delPL")));
    }
    sendMenu(entries, tr("Playlist Context Menu - %1", {pl ? pl->getName() : QString()}), request);
    return true;
}

namespace {

// The mode that the entry carries, else the switch's value. Which numbers are modes is for the command to say.
int wantedMode(const CMSetDataRequest& request, const QString& modeParam) {
    const QMap<QString, QString>& params = request.path().params();
    if (params.contains(modeParam))
        return params.value(modeParam).toInt();
    return OrvoValue(request.value().toHash()).bool_() ? 1 : 0;
}

} // namespace

bool PlayListContextNode::setDataRequest(const CMSetDataRequest& request) {
    const QString action = request.path().param(Action());
    const int plid = toInt(request.path().param(Plid()), -1);
    if (action == QLatin1String("rename")) {
        OrvoPlayListPlSetName args;
        args.setPlid(plid);
        args.setName(stringValue(request));
        sendCommand(OrvoPlayListPlSetNamePath(), args, request);
        return true;
    }
    if (action == QLatin1String("shuffle")) {
        OrvoPlayListPlSetShuffle args;
        args.setPlid(plid);
        args.setMode(OrvoPlayListPlShuffleMode::Enum(wantedMode(request, Mode())));
        sendCommand(OrvoPlayListPlSetShufflePath(), args, request);
        return true;
    }
    if (action == QLatin1String("repeat")) {
        // "On" is repeat-all here, the one mode that a playlist keeps.
        OrvoPlayListPlSetRepeat args;
        args.setPlid(plid);
        const int mode = wantedMode(request, Mode());
        args.setMode(mode == 1 ? OrvoPlayListPlRepeatMode::All : OrvoPlayListPlRepeatMode::Enum(mode));
        sendCommand(OrvoPlayListPlSetRepeatPath(), args, request);
        return true;
    }
    if (action == QLatin1String("delFromCl")) {
        OrvoPlayListClAddRemoveItem args;
        args.setPlid(plid);
        args.setClid(toInt(request.path().param(Clid()), -1));
        sendCommand(OrvoPlayListClRemoveItemPath(), args, request);
        return true;
    }
    struct PlainAction {
        const char* action;
        CMPath (*command)();
    };
    static constexpr PlainAction plainActions[] = {
        {"play", OrvoPlayListPlPlayPath}, {"clearPl", OrvoPlayListPlClearPath}, {"delPL", OrvoPlayListPlDeletePath}};
    for (const PlainAction& plain : plainActions) {
        if (action == QLatin1String(plain.action)) {
            OrvoPlayListPlId args;
            args.setPlid(plid);
            sendCommand(plain.command(), args, request);
            return true;
        }
    }
    return false;
}
