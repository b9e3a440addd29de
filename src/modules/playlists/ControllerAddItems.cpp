#include <algorithm>
#include <functional>

#include "AddedItems.h"
#include "CMConnect.h"
#include "Controller.h"
#include "ControllerAddItemsJob.h"
#include "ControllerText.h"
#include "ItemsCheck.h"
#include "ModuleLog.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "PlayLogicInterface.h"
#include "RepeatedLogLines.h"
#include "TextBudget.h"

namespace {

// How many items of a whole playlist are read at once: all of them may be more than memory has.
constexpr int ItemsPerReading = 64;

// What one module is asked for at once.
struct PrepareCall {
    QString owner;
    QStringList paths;
};

// In the order in which the owners are first seen.
QList<PrepareCall> callsByOwner(const QList<CMPath>& paths) {
    QList<PrepareCall> calls;
    QHash<QString, int> callOfOwner;
    for (const CMPath& path : paths) {
        const QString owner = path.prefix();
        if (!callOfOwner.contains(owner)) {
            callOfOwner.insert(owner, calls.size());
            calls.append({owner, {}});
        }
        calls[callOfOwner.value(owner)].paths.append(path.toString());
    }
    return calls;
}

// For items that have one place each. Where all paths of a module are asked for together, a
// folder's tracks, or a path that names nothing, would give the items behind it the places of
// others. Only this module's own paths give one item each.
QList<PrepareCall> callsInOrder(const QList<CMPath>& paths) {
    const QString own = OrvoPlayListItemPath().prefix();
    QList<PrepareCall> calls;
    for (const CMPath& path : paths) {
        const QString owner = path.prefix();
        if (calls.isEmpty() || owner != own || calls.last().owner != own)
            calls.append({owner, {}});
        calls.last().paths.append(path.toString());
    }
    return calls;
}

// "Replays" are the replies of the modules that were asked; the log calls them so, too.
QList<OrvoPlayListItem> itemsFromAllReplays(const QList<CMReply<QVariant>>& replies) {
    QList<OrvoPlayListItem> items;
    LOG4CPLUS_TRACE(moduleLog(), "curReplyList: " << replies.size());
    RepeatedLogLines errors(moduleLog(), log4cplus::ERROR_LOG_LEVEL);
    for (const CMReply<QVariant>& reply : replies) {
        reply.waitForFinished(); // at once: a finished group has finished replies
        if (reply.isError()) {
            if (errors.next())
                LOG4CPLUS_ERROR(moduleLog(), "replay error: " << loggedText(reply.error().name()));
            continue;
        }
        const QVariantList values = reply.value().toList();
        items.reserve(items.size() + values.size());
        for (const QVariant& value : values)
            items.append(OrvoPlayListItem(value.toHash()));
    }
    return items;
}

// Why nothing of it is added, whatever the items are; empty where nothing is against it.
QString refusalOf(const QList<CMReply<QVariant>>& replies, const QList<int>& itemsPerReply) {
    const bool areTooMany =
        std::any_of(replies.cbegin(), replies.cend(), [](const CMReply<QVariant>& reply) {
            return reply.isError() && reply.error().name() == OrvoPlayListTooManyItems();
        });
    if (areTooMany)
        return AddedItems::tooManyText();
    for (int i = 0; i < itemsPerReply.size(); ++i) {
        const CMReply<QVariant>& reply = replies.at(i);
        if (reply.isError() || reply.value().toList().size() != itemsPerReply.at(i))
            return AddedItems::oneEachText();
    }
    return {};
}

} // namespace

void Controller::plPrepareItems(CMSetDataRequest request) {
    CM_ENTER(moduleLog());
    QStringList paths;
    const QVariantList values = request.value().toList();
    paths.reserve(values.size());
    for (const QVariant& value : values)
        paths.append(value.toString());
    TextBudget budget(m_limits.maxAdditionBytes);
    const QVariantList prepared = preparePlaylistItems(paths, budget);
    if (budget.isExceeded()) {
        request.reply().setError(CMError(OrvoPlayListTooManyItems(),
                                         TrString(AddedItems::tooManyText()),
                                         CMError::DefaultTitle()));
        return;
    }
    LOG4CPLUS_TRACE(moduleLog(), "preparedItems: " << loggedValue(prepared));
    request.reply().setValue(prepared);
}

QVariantList Controller::preparePlaylistItems(const QStringList& paths, TextBudget& budget) {
    const auto idIn = [](const QString& path) {
        return path.midRef(path.lastIndexOf(QLatin1Char('/')) + 1);
    };
    QList<int> uids;
    uids.reserve(paths.size());
    for (const QString& path : paths) {
        const int uid = idIn(path).toInt();
        if (uid == 0)
            break;
        uids.append(uid);
    }
    QVariantList prepared;
    prepared.reserve(uids.size());
    const QList<OrvoPlayListItem> items = m_manager->getPlayListItemsByUids(uids, &budget);
    for (const OrvoPlayListItem& item : items)
        prepared.append(item.toVariant());
    if (uids.size() < paths.size()) {
        const QString& path = paths.at(uids.size());
        LOG4CPLUS_ERROR(moduleLog(),
                        "conversion error occured: uid, str=" << loggedText(idIn(path).toString())
                                                              << " path=" << loggedText(path));
    }
    return prepared;
}

void Controller::plAddItems(CMSetDataRequest request) {
    CM_ENTER(moduleLog());
    ReqGroupProperties props;
    props.request = std::make_shared<CMSetDataRequest>(request);
    props.prefix = CONTROLLER_TEXT("Could not add items to playlist.");
    QString msg;
    // None where one of the two refuses.
    const QList<CMPath> paths = readTarget(props, msg) ? readPaths(props, msg) : QList<CMPath>();
    if (paths.isEmpty()) {
        setReply(request, false, msg);
        return;
    }
    props.requested = paths.size();
    askForItems(props, paths);
}

// Where the items go.
bool Controller::readTarget(ReqGroupProperties& props, QString& msg) {
    const OrvoPlayListPlAddItems args(props.request->value().toHash());
    props.plid = args.plid();
    props.mode = args.containsMode() ? args.mode() : OrvoPlayListAddPosition::Append;
    if (!checkPlayListId(props.plid, props.prefix, msg))
        return false;
    props.target = m_manager->getPlayListByUid(props.plid);
    return (!props.target || checkRevision(*props.request, props.target, props.prefix, msg)) &&
           readPlaces(*props.request, props.prefix, props.wanted, msg);
}

// The items' paths; none, with the reason in `msg`, where they cannot be added.
QList<CMPath> Controller::readPaths(ReqGroupProperties& props, QString& msg) {
    const OrvoPlayListPlAddItems args(props.request->value().toHash());
    QList<CMPath> paths;
    const QVariantList items = args.items();
    paths.reserve(items.size());
    for (const QVariant& item : items)
        paths.append(CMPath::fromQVariant(item));
    props.fromPlid = args.fromPlid();
    props.wholePlaylist = paths.isEmpty();
    if (props.wholePlaylist && !appendPathsOfSource(props, paths)) {
        msg = buildErrMsg(props.prefix, CONTROLLER_TEXT("No items were added."),
                          AddedItems::tooManyText());
        return {};
    }
    if (paths.isEmpty()) {
        LOG4CPLUS_ERROR(moduleLog(), "There isn't any items to add to playlist id: " << props.plid);
        msg = buildErrMsg(props.prefix, CONTROLLER_TEXT("Please select one or more items to add."));
        return {};
    }
    if (props.wanted.kind == WantedPlaces::Kind::OneEach &&
        props.wanted.positions.size() != paths.size()) {
        msg = buildErrMsg(props.prefix, CONTROLLER_TEXT("No items were added."),
                          AddedItems::oneEachText());
        return {};
    }
    return paths;
}

// Of all items of the playlist that is to be moved, or of none where they cannot all be read: what
// could not be read would go with it. False when the items are more than may be added at once.
bool Controller::appendPathsOfSource(const ReqGroupProperties& props, QList<CMPath>& paths) const {
    LOG4CPLUS_DEBUG(moduleLog(),
                    QStringLiteral("adding whole playlist (id: %1) to playlist (id: %2)")
                        .arg(props.fromPlid)
                        .arg(props.plid));
    PlayListBase* source = m_manager->getPlayListByUid(props.fromPlid);
    QString ignored; // an unknown playlist has no items to add, which is what the caller is told
    if (!checkPlayList(source, props.fromPlid, QString(), ignored))
        return true;
    TextBudget budget(m_limits.maxAdditionBytes);
    const int size = source->getSize();
    for (int from = 0; from < size; from += ItemsPerReading) {
        const int to = std::min(from + ItemsPerReading - 1, size);
        const QList<OrvoPlayListItem> items = source->getItems(from, to);
        for (const OrvoPlayListItem& item : items) {
            if (!budget.take(TextBudget::bytesOf(item)))
                return false;
            paths.append(OrvoPlayListItemPathOf(item.uid()));
        }
    }
    if (paths.size() != source->getSize())
        paths.clear();
    return true;
}

void Controller::askForItems(ReqGroupProperties& props, const QList<CMPath>& paths) {
    const bool oneEach = props.wanted.kind == WantedPlaces::Kind::OneEach;
    const QList<PrepareCall> calls = oneEach ? callsInOrder(paths) : callsByOwner(paths);
    for (int i = 0; oneEach && i < calls.size(); ++i)
        props.itemsPerReply.append(calls.at(i).paths.size());

    auto* group = new CMRequestGroup(this);
    m_ReqGroupPropertiesHash.insert(group, props);
    cmConnect(group, &CMRequestGroup::finished, this, &Controller::on_prepareItemsGroup_finished);

    RepeatedLogLines prefixLines(moduleLog(), log4cplus::DEBUG_LOG_LEVEL);
    RepeatedLogLines itemLines(moduleLog(), log4cplus::TRACE_LOG_LEVEL);
    for (const PrepareCall& call : calls) {
        if (prefixLines.next())
            LOG4CPLUS_DEBUG(moduleLog(), "requestPrefix: " << loggedText(call.owner) << " call: "
                                                           << OrvoPlayListPrepareItems());
        if (itemLines.next())
            LOG4CPLUS_TRACE(moduleLog(), "items: " << joined(call.paths));
        group->addInvoke(OrvoPlayListPrepareItems(), CMPath::fromPrefix(call.owner), call.paths);
    }
    group->checkAndCallCallback();
}

void Controller::on_prepareItemsGroup_finished() {
    CM_ENTER(moduleLog());
    auto* group = qobject_cast<CMRequestGroup*>(sender());
    if (!group) {
        LOG4CPLUS_ERROR(moduleLog(), "Called without request group as sender");
        return;
    }
    if (!m_ReqGroupPropertiesHash.contains(group)) {
        LOG4CPLUS_ERROR(moduleLog(),
                        "Called without request group stored in m_ReqGroupPropertiesHash");
        cmFatal("m_ReqGroupPropertiesHash.contains(group)");
    }
    const ReqGroupProperties props = m_ReqGroupPropertiesHash.take(group);
    group->deleteLater();
    const QList<CMReply<QVariant>>& replies = group->getReplyList();
    const QList<OrvoPlayListItem> items = itemsFromAllReplays(replies);
    const QString refusal = refusalOf(replies, props.itemsPerReply);
    if (!refusal.isEmpty())
        setReply(*props.request, false,
                 buildErrMsg(props.prefix, CONTROLLER_TEXT("No items were added."), refusal));
    else
        (new AddItemsJob(this, props, items))->start();
}

PlayListBase* Controller::targetOf(const ReqGroupProperties& props) const {
    PlayListBase* pl = m_manager->getPlayListByUid(props.plid);
    return pl == props.target ? pl : nullptr;
}

AddedItems Controller::addItemsFromAllReplays(const ReqGroupProperties& props,
                                              const ItemsCheck& check) {
    PlayListBase* pl = targetOf(props);
    if (pl)
        return AddedItems::add(pl, check, props.mode, props.wanted);
    LOG4CPLUS_ERROR(moduleLog(), "Cannot find playlist with plid: " << props.plid);
    AddedItems none;
    none.text = CONTROLLER_TEXT("There is no playlist with this ID.") +
                QStringLiteral(" (%1)").arg(props.plid);
    return none;
}

AddedItems Controller::addItemsToPlaylist(PlayListBase* pl, const QList<OrvoPlayListItem>& items,
                                          OrvoPlayListAddPosition::Enum mode,
                                          const WantedPlaces& wanted) {
    ItemsCheck check(items, m_limits);
    check.run(QDeadlineTimer(QDeadlineTimer::Forever));
    return AddedItems::add(pl, check, mode, wanted);
}

bool Controller::readPlaces(const CMSetDataRequest& request, const QString& prefix,
                            WantedPlaces& wanted, QString& msg) {
    const OrvoPlayListPlAddItems args(request.value().toHash());
    if (!args.containsAt())
        return true;
    const QVariant at = args.at();
    const bool isList = at.type() == QVariant::List;
    wanted.kind = isList ? WantedPlaces::Kind::OneEach : WantedPlaces::Kind::FromOneOn;
    wanted.positions = isList ? OrvoAttribute<QList<int>>::read(at) : QList<int>{OrvoId::read(at)};
    const QList<int>& positions = wanted.positions;
    const bool areAscending = !positions.isEmpty() && positions.first() >= 0 &&
                              std::adjacent_find(positions.cbegin(), positions.cend(),
                                                 std::greater_equal<int>()) == positions.cend();
    if (!areAscending)
        return refuse(msg, QStringLiteral("Cannot add items at invalid positions"), prefix,
                      CONTROLLER_TEXT("Invalid position."), OrvoPlayListPlAddItems::At());
    if (args.containsMode() && args.mode() != OrvoPlayListAddPosition::Append)
        return refuse(msg, QStringLiteral("Cannot add items at positions and by a mode"), prefix,
                      CONTROLLER_TEXT("Positions go with the mode append only."),
                      OrvoPlayListPlAddItems::Mode());
    return true;
}

bool Controller::plAddExternalItems(CMSetDataRequest request, QString& msg) {
    CM_ENTER(moduleLog());
    const OrvoPlayListPlAddExternalItems args(request.value().toHash());
    const int plid = args.plid();
    const QList<OrvoPlayListItem> items = args.items();
    const OrvoPlayListAddPosition::Enum mode =
        args.containsMode() ? args.mode() : OrvoPlayListAddPosition::Append;
    const QString prefix = CONTROLLER_TEXT("Could not add external items to playlist.");
    if (!checkPlayListId(plid, prefix, msg))
        return refuse(QStringLiteral("Cannot add items to invalid playlist id: %1").arg(plid));
    if (items.isEmpty())
        return refuse(msg, QStringLiteral("Cannot add zero items to playlist id: %1").arg(plid),
                      prefix, CONTROLLER_TEXT("Please select one or more items to add."));
    PlayListBase* pl = existingPlayList(plid, prefix, msg);
    if (!pl)
        return false;
    WantedPlaces wanted;
    if (!checkRevision(request, pl, prefix, msg) || !readPlaces(request, prefix, wanted, msg))
        return false;
    const AddedItems added = addItemsToPlaylist(pl, items, mode, wanted);
    LOG4CPLUS_DEBUG(moduleLog(), "addItemsRes: " << added.count);
    if (added.count < 1)
        return refuse(msg, QStringLiteral("No items were added to playlist id: %1").arg(plid),
                      prefix, CONTROLLER_TEXT("No items were added."), added.text);
    LOG4CPLUS_DEBUG(moduleLog(), "plsize: " << pl->getSize());
    if (pl->getSize() > 0 && mode == OrvoPlayListAddPosition::Now) {
        LOG4CPLUS_DEBUG(moduleLog(), "mode: New nextSeqNum: " << added.first);
        if (!startFirstNewItem(pl, added.first, CONTROLLER_TEXT("Cannot get last item."), prefix,
                               msg))
            return refuse(QStringLiteral("Cannot get last item for playlist id: %1").arg(plid));
    }
    LOG4CPLUS_INFO(moduleLog(), "Items added successfully to playlist id: " << plid);
    msg = buildOkMsg(QString::number(added.count),
                     CONTROLLER_TEXT("Items added successfully to playlist."), pl->getName());
    return true;
}

bool Controller::startFirstNewItem(PlayListBase* pl, int first, const QString& failure,
                                   const QString& prefix, QString& msg) {
    const QList<OrvoPlayListItem> items = pl->getItems(first, first);
    if (items.size() != 1) {
        msg = buildErrMsg(prefix, failure);
        return false;
    }
    tryStartItem(items.first(), pl, first);
    return true;
}

void Controller::tryStartItem(const OrvoPlayListItem& item, const PlayListBase* pl, int seqIndex) {
    LOG4CPLUS_DEBUG(moduleLog(), "seqIndex: " << seqIndex << " plid: " << pl->getUid());
    const CMPath path = OrvoPlayListItemsPathOf(pl->getUid());
    LOG4CPLUS_DEBUG(moduleLog(), "path: " << path);
    if (item.url().isEmpty()) {
        LOG4CPLUS_ERROR(moduleLog(), "Item " << item.uid() << " hasn't url");
        return;
    }
    OrvoMetaData metaData;
    metaData.setPlayLogicPath(OrvoPlayListsPlayLogicPath());
    OrvoMediaData mediaData;
    mediaData.setMetaData(metaData);
    OrvoRoles container;
    container.setType(OrvoRolesType::Container);
    container.setPath(path);
    container.setContainerPlayable(true);
    container.setMediaData(mediaData);
    const OrvoRoles track = pl->itemToOrvoRoles(item);
    LOG4CPLUS_TRACE(moduleLog(), "play item: " << loggedValue(item.toVariant()));
    LOG4CPLUS_TRACE(moduleLog(), "play item trackRoles: " << loggedValue(track.toVariant()));
    PlayLogicInterface::playerInstance()->playContainer(container, track, seqIndex, 0, false);
    LOG4CPLUS_DEBUG(moduleLog(), "playContainer() called");
}
