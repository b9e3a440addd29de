#include <algorithm>
#include <functional>

#include <QTimer>

#include "CMConnect.h"
#include "Controller.h"
#include "ControllerText.h"
#include "ItemsCheck.h"
#include "ModuleLog.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "PlayLogicInterface.h"
#include "RepeatedLogLines.h"
#include "StoreResult.h"
#include "TextBudget.h"

namespace {

// How long other clients wait at most for one part of the work on a great many items.
constexpr int SliceMs = 8;

// How many items of a whole playlist are read at once: all of them may be more than memory has.
constexpr int ItemsPerReading = 64;

QString listText(const QList<OrvoPlayListItem>& items) {
    return loggedList(items.size(), [&](int i) { return loggedValue(items.at(i).toHash()); });
}

QString tooManyMessage(const QString& prefix) {
    return Controller::buildErrMsg(prefix, CONTROLLER_TEXT("No items were added."),
                                   CONTROLLER_TEXT("Too many items at once."));
}

QString oneEachText() {
    return CONTROLLER_TEXT("Please give one position for each item.");
}

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

} // namespace

void Controller::plPrepareItems(CMSetDataRequest request) {
    CM_ENTER(moduleLog());
    QStringList paths;
    const QVariantList values = request.value().toList();
    paths.reserve(values.size());
    for (const QVariant& value : values)
        paths.append(value.toString());
    TextBudget budget(m_limits.maxAdditionBytes);
    const QVariantList prepared = preparePlaylistItems(paths, &budget);
    if (budget.isExceeded()) {
        request.reply().setError(CMError(OrvoPlayListTooManyItems(),
                                         TrString(CONTROLLER_TEXT("Too many items at once.")),
                                         CMError::DefaultTitle()));
        return;
    }
    LOG4CPLUS_TRACE(moduleLog(), "preparedItems: " << loggedValue(prepared));
    request.reply().setValue(prepared);
}

QVariantList Controller::preparePlaylistItems(const QStringList& paths, TextBudget* budget) {
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
    const QList<OrvoPlayListItem> items = m_manager->getPlayListItemsByUids(uids, budget);
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
    const QString prefix = CONTROLLER_TEXT("Could not add items to playlist.");
    props.plid = args.plid();
    props.mode = args.containsMode() ? args.mode() : OrvoPlayListAddPosition::Append;
    if (!checkPlayListId(props.plid, prefix, msg))
        return false;
    props.target = m_manager->getPlayListByUid(props.plid);
    return (!props.target || checkRevision(*props.request, props.target, prefix, msg)) &&
           readPlaces(*props.request, prefix, props.wanted, msg);
}

// The items' paths; none, with the reason in `msg`, where they cannot be added.
QList<CMPath> Controller::readPaths(ReqGroupProperties& props, QString& msg) {
    const OrvoPlayListPlAddItems args(props.request->value().toHash());
    const QString prefix = CONTROLLER_TEXT("Could not add items to playlist.");
    QList<CMPath> paths;
    const QVariantList items = args.items();
    paths.reserve(items.size());
    for (const QVariant& item : items)
        paths.append(CMPath::fromQVariant(item));
    props.fromPlid = args.fromPlid();
    props.wholePlaylist = paths.isEmpty();
    if (props.wholePlaylist && !appendPathsOfSource(props, paths)) {
        msg = tooManyMessage(prefix);
        return {};
    }
    if (paths.isEmpty()) {
        LOG4CPLUS_ERROR(moduleLog(), "There isn't any items to add to playlist id: " << props.plid);
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("Please select one or more items to add."));
        return {};
    }
    if (props.wanted.kind == WantedPlaces::Kind::OneEach &&
        props.wanted.positions.size() != paths.size()) {
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("No items were added."), oneEachText());
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
    const QList<OrvoPlayListItem> items = itemsFromAllReplays(group);
    if (hasTooManyItems(group)) {
        const QString prefix = CONTROLLER_TEXT("Could not add items to playlist.");
        setReply(*props.request, false, tooManyMessage(prefix));
        return;
    }
    if (!haveOneEach(group, props.itemsPerReply)) {
        const QString prefix = CONTROLLER_TEXT("Could not add items to playlist.");
        setReply(*props.request, false,
                 buildErrMsg(prefix, CONTROLLER_TEXT("No items were added."), oneEachText()));
        return;
    }
    checkInSlices(props, std::make_shared<ItemsCheck>(items, m_limits));
}

bool Controller::haveOneEach(const CMRequestGroup* group, const QList<int>& itemsPerReply) {
    const QList<CMReply<QVariant>> replies = group->getReplyList();
    for (int i = 0; i < itemsPerReply.size(); ++i) {
        const CMReply<QVariant>& reply = replies.at(i);
        if (reply.isError() || reply.value().toList().size() != itemsPerReply.at(i))
            return false;
    }
    return true;
}

void Controller::checkInSlices(const ReqGroupProperties& props,
                               const std::shared_ptr<ItemsCheck>& check, bool areMany) {
    // A playlist that is moved as a whole must not change between being read and being deleted.
    const QDeadlineTimer deadline =
        props.wholePlaylist ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(SliceMs);
    if (!check->run(deadline)) {
        QTimer::singleShot(0, this, [this, props, check] { checkInSlices(props, check, true); });
    } else if (areMany) {
        // The transaction takes long enough without a slice in front of it, or the items' release
        // behind it: that is left to a turn of the event loop of its own.
        QTimer::singleShot(0, this, [this, props, check] {
            finishAdding(props, *check);
            QTimer::singleShot(0, this, [check] {});
        });
    } else {
        finishAdding(props, *check);
    }
}

void Controller::finishAdding(const ReqGroupProperties& props, const ItemsCheck& check) {
    const QString prefix = CONTROLLER_TEXT("Could not add items to playlist.");
    QString msg;
    // Again: others may have changed the playlist while the items were prepared and checked.
    const PlayListBase* target = targetOf(props);
    if (target && !checkRevision(*props.request, target, prefix, msg)) {
        setReply(*props.request, false, msg);
        return;
    }
    QString resultMsg;
    int first = -1;
    const int added = isComplete(props, check)
                          ? std::max(0, addItemsFromAllReplays(props, check, &resultMsg, &first))
                          : 0;
    LOG4CPLUS_DEBUG(moduleLog(),
                    "numItemsAdded: " << added << " addItemsResMsg: " << loggedText(resultMsg));

    // Adding a whole playlist moves it: the source goes, unless it is the target itself.
    if (added > 0 && props.wholePlaylist && props.fromPlid != props.plid)
        m_manager->deletePlayList(props.fromPlid);

    bool success = false;
    if (added < 1) {
        msg = buildErrMsg(prefix, CONTROLLER_TEXT("No items were added."), resultMsg);
    } else {
        PlayListBase* pl = targetOf(props);
        success = checkPlayList(pl, props.plid, prefix, msg);
        if (success) {
            LOG4CPLUS_DEBUG(moduleLog(), "plsize: " << pl->getSize());
            if (pl->getSize() > 0 && props.mode == OrvoPlayListAddPosition::Now) {
                LOG4CPLUS_DEBUG(moduleLog(),
                                "addMode: now lastSeqNum: " << pl->getLastSequenceNumber()
                                                            << " nextSeqNum: " << first);
                success = startFirstNewItem(
                    pl, first, CONTROLLER_TEXT("Cannot get last sequence number."), prefix, msg);
            }
        }
        if (success)
            msg =
                buildOkMsg(QString::number(added),
                           CONTROLLER_TEXT("Items added successfully to playlist."), pl->getName());
        if (!resultMsg.isEmpty())
            msg += QLatin1Char(' ') + resultMsg;
    }
    setReply(*props.request, success, msg);
    LOG4CPLUS_DEBUG(moduleLog(), "Add items finished, num added: " << added);
}

PlayListBase* Controller::targetOf(const ReqGroupProperties& props) const {
    PlayListBase* pl = m_manager->getPlayListByUid(props.plid);
    return pl == props.target ? pl : nullptr;
}

// A playlist is moved with all that it has or stays: an entry that could not be read, and would be
// left out, would be deleted with the source. Single items may be left out.
bool Controller::isComplete(const ReqGroupProperties& props, const ItemsCheck& check) {
    if (!props.wholePlaylist)
        return true;
    const QList<OrvoPlayListItem>& items = check.items();
    const bool whole = items.size() == props.requested &&
                       std::none_of(items.cbegin(), items.cend(),
                                    [](const OrvoPlayListItem& item) { return item.isEmpty(); });
    if (!whole)
        LOG4CPLUS_ERROR(moduleLog(),
                        "Cannot read all items of playlist with plid: " << props.fromPlid);
    return whole;
}

QList<OrvoPlayListItem> Controller::itemsFromAllReplays(const CMRequestGroup* group) {
    QList<OrvoPlayListItem> items;
    const QList<CMReply<QVariant>> replies = group->getReplyList();
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

bool Controller::hasTooManyItems(const CMRequestGroup* group) {
    const QList<CMReply<QVariant>> replies = group->getReplyList();
    return std::any_of(replies.cbegin(), replies.cend(), [](const CMReply<QVariant>& reply) {
        return reply.isError() && reply.error().name() == OrvoPlayListTooManyItems();
    });
}

int Controller::addItemsFromAllReplays(const ReqGroupProperties& props, const ItemsCheck& check,
                                       QString* msg, int* first) {
    PlayListBase* pl = targetOf(props);
    if (!pl) {
        LOG4CPLUS_ERROR(moduleLog(), "Cannot find playlist with plid: " << props.plid);
        *msg = CONTROLLER_TEXT("There is no playlist with this ID.") +
               QStringLiteral(" (%1)").arg(props.plid);
        return -1;
    }
    return addCheckedItems(pl, check, props.mode, msg, first, props.wanted);
}

int Controller::addItemsToPlaylist(PlayListBase* pl, const QList<OrvoPlayListItem>& items,
                                   OrvoPlayListAddPosition::Enum mode, QString* msg, int* first,
                                   const WantedPlaces& wanted) {
    ItemsCheck check(items, m_limits);
    check.run(QDeadlineTimer(QDeadlineTimer::Forever));
    return addCheckedItems(pl, check, mode, msg, first, wanted);
}

int Controller::addCheckedItems(PlayListBase* pl, const ItemsCheck& check,
                                OrvoPlayListAddPosition::Enum mode, QString* msg, int* first,
                                const WantedPlaces& wanted) {
    const QList<OrvoPlayListItem>& items = check.items();
    LOG4CPLUS_TRACE(moduleLog(), "itemList: (" << listText(items) << ")");
    QList<OrvoPlayListItem> accepted;
    accepted.reserve(items.size());
    RepeatedLogLines leftOut(moduleLog(), log4cplus::WARN_LOG_LEVEL);
    for (int i = 0; i < items.size(); ++i) {
        switch (check.verdict(i)) {
        case ItemsCheck::Verdict::Fine:
            accepted.append(items.at(i));
            break;
        case ItemsCheck::Verdict::NoRoles:
            if (leftOut.next())
                LOG4CPLUS_WARN(moduleLog(),
                               "Invalid file, missing roles: " << loggedText(items.at(i).url()));
            break;
        case ItemsCheck::Verdict::NotAcceptable:
            *msg =
                CONTROLLER_TEXT("Missing title or type==audio or [resource uri and prePlayPath]");
            return -1;
        case ItemsCheck::Verdict::TooLarge:
            *msg = CONTROLLER_TEXT("Item is too large.");
            return -1;
        case ItemsCheck::Verdict::TooMany:
            *msg = CONTROLLER_TEXT("Too many items at once.");
            return -1;
        }
    }
    leftOut.end();
    if (accepted.isEmpty()) {
        LOG4CPLUS_ERROR(moduleLog(), "no playitem found");
        *msg = CONTROLLER_TEXT("No playitem found.");
        return -1;
    }
    if (wanted.kind == WantedPlaces::Kind::OneEach && accepted.size() != items.size()) {
        *msg = oneEachText();
        return -1;
    }
    const int sizeBefore = pl->getSize();
    *first = wanted.kind == WantedPlaces::Kind::None ? pl->addItems(mode, accepted)
                                                     : addAtPlaces(pl, accepted, wanted, msg);
    const int res = *first < 0 ? *first : pl->getSize() - sizeBefore;
    LOG4CPLUS_DEBUG(moduleLog(), "addItems() res: " << res);
    if (res == StoreResult::LimitReached) {
        *msg = QStringLiteral("%1 %2")
                   .arg(CONTROLLER_TEXT("Unable to add more items to the playlist."))
                   .arg(CONTROLLER_TEXT("Items reached limit."));
        return -1;
    }
    if (res < 1)
        return -1;
    *msg = CONTROLLER_TEXT("%1 items added.").arg(res);
    LOG4CPLUS_DEBUG(moduleLog(), "added " << res << " items");
    return res;
}

// `msg` says why the places cannot be taken.
int Controller::addAtPlaces(PlayListBase* pl, const QList<OrvoPlayListItem>& items,
                            const WantedPlaces& wanted, QString* msg) {
    const int size = pl->getSize();
    ItemPlaces places;
    places.positions = wanted.positions;
    places.allOrNothing = wanted.kind == WantedPlaces::Kind::OneEach;
    if (places.allOrNothing && wanted.positions.size() != items.size()) {
        *msg = oneEachText();
        return -1;
    }
    if (wanted.positions.last() < size + items.size()) {
        while (places.positions.size() < items.size())
            places.positions.append(places.positions.last() + 1);
    }
    if (!places.fit(size, items.size())) {
        LOG4CPLUS_ERROR(moduleLog(), "Position is not in valid range");
        *msg = CONTROLLER_TEXT("Position is not in valid range.");
        return -1;
    }
    return pl->addItemsAt(places, items);
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
    QString resultMsg;
    int first = -1;
    const int added = addItemsToPlaylist(pl, items, mode, &resultMsg, &first, wanted);
    LOG4CPLUS_DEBUG(moduleLog(), "addItemsRes: " << added);
    if (added < 1)
        return refuse(msg, QStringLiteral("No items were added to playlist id: %1").arg(plid),
                      prefix, CONTROLLER_TEXT("No items were added."), resultMsg);
    LOG4CPLUS_DEBUG(moduleLog(), "plsize: " << pl->getSize());
    if (pl->getSize() > 0 && mode == OrvoPlayListAddPosition::Now) {
        LOG4CPLUS_DEBUG(moduleLog(), "mode: New nextSeqNum: " << first);
        if (!startFirstNewItem(pl, first, CONTROLLER_TEXT("Cannot get last item."), prefix, msg))
            return refuse(QStringLiteral("Cannot get last item for playlist id: %1").arg(plid));
    }
    LOG4CPLUS_INFO(moduleLog(), "Items added successfully to playlist id: " << plid);
    msg = buildOkMsg(QString::number(added),
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
