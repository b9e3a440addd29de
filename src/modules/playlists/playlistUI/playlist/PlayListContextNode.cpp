#include "PlayListContextNode.h"

#include "../../CollectionBase.h"
#include "../../PlayListBase.h"
#include "../../PlayListManager.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

PlayListContextNode* PlayListContextNode::create(CMNodes* nodes, const CMPath& path,
                                                 PlayListManager* manager) {
    return createNode<PlayListContextNode>(nodes, path, manager);
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
            return pathWith(entryPath(request, QString::fromLatin1(action), {{Plid(), plid}}),
                            params);
        };
        const auto opposite = [](bool on) {
            return on ? QStringLiteral("0") : QStringLiteral("1");
        };
        entries.append(actionRow(tr("Play"), entry("play")));
        entries.append(
            editRow(tr("Rename"), entry("rename"), OrvoValue::fromString(pl->getName())));
        entries.append(editRow(tr("Set shuffle mode"),
                               entry("shuffle", {{Mode(), opposite(pl->getShuffle())}}),
                               OrvoValue::fromBool(pl->getShuffle())));
        entries.append(editRow(tr("Set repeat mode"),
                               entry("repeat", {{Mode(), opposite(pl->getRepeatAll())}}),
                               OrvoValue::fromBool(pl->getRepeatAll())));
        entries.append(menuRow(tr("Merge with playlist"),
                               pathWith(OrvoPlayListPlAddToPlaylistPath(),
                                        {{Action(), CmNode()}, {FromPlid(), plid}})));
        if (areCollectionsVisible()) {
            entries.append(
                menuRow(tr("Add to collection"), pathWith(OrvoPlayListClAddtoCollectionPath(),
                                                          {{Action(), CmNode()}, {Plid(), plid}})));
            const CollectionBase* cl =
                clid.isEmpty() ? nullptr : manager()->getCollectionByUid(toInt(clid, -1));
            if (cl)
                entries.append(actionRow(tr("Remove from collection - %1", {cl->getName()}),
                                         entry("delFromCl", {{Clid(), clid}})));
        }
        entries.append(separatorRow());
        entries.append(actionRow(tr("Clear playlist"), entry("clearPl")));
        // Upper case in "delPL": interfaces have stored this path.
        entries.append(actionRow(tr("Delete playlist"), entry("delPL")));
    }
    sendMenu(entries, tr("Playlist Context Menu - %1", {pl ? pl->getName() : QString()}), request);
    return true;
}

namespace {

// The mode that the entry carries, else the switch's value. Which numbers are modes is for the
// command to say.
int wantedMode(const CMSetDataRequest& request, const QString& modeParam) {
    const QMap<QString, QString>& params = request.path().params();
    if (params.contains(modeParam))
        return params.value(modeParam).toInt();
    return OrvoValue(request.value().toHash()).bool_() ? 1 : 0;
}

} // namespace

std::span<const MenuNode::MenuAction> PlayListContextNode::actions() const {
    constexpr auto newName = [](const CMSetDataRequest& request) -> OrvoHash {
        OrvoPlayListPlSetName args;
        args.setPlid(numberParam(request, Plid()));
        args.setName(stringValue(request));
        return args;
    };
    constexpr auto shuffleMode = [](const CMSetDataRequest& request) -> OrvoHash {
        OrvoPlayListPlSetShuffle args;
        args.setPlid(numberParam(request, Plid()));
        args.setMode(OrvoPlayListPlShuffleMode::Enum(wantedMode(request, Mode())));
        return args;
    };
    constexpr auto repeatMode = [](const CMSetDataRequest& request) -> OrvoHash {
        // "On" is repeat-all here, the one mode that a playlist keeps.
        const int mode = wantedMode(request, Mode());
        OrvoPlayListPlSetRepeat args;
        args.setPlid(numberParam(request, Plid()));
        args.setMode(mode == 1 ? OrvoPlayListPlRepeatMode::All
                               : OrvoPlayListPlRepeatMode::Enum(mode));
        return args;
    };
    constexpr auto membership = [](const CMSetDataRequest& request) -> OrvoHash {
        OrvoPlayListClAddRemoveItem args;
        args.setPlid(numberParam(request, Plid()));
        args.setClid(numberParam(request, Clid()));
        return args;
    };
    // The menu stays where its entry shows the new value.
    static constexpr MenuAction rows[] = {
        {"play", OrvoPlayListPlPlayPath, playListOnly},
        {"rename", OrvoPlayListPlSetNamePath, newName, Menu::StaysOpen},
        {"shuffle", OrvoPlayListPlSetShufflePath, shuffleMode, Menu::StaysOpen},
        {"repeat", OrvoPlayListPlSetRepeatPath, repeatMode, Menu::StaysOpen},
        {"delFromCl", OrvoPlayListClRemoveItemPath, membership},
        {"clearPl", OrvoPlayListPlClearPath, playListOnly},
        {"delPL", OrvoPlayListPlDeletePath, playListOnly},
    };
    return rows;
}
