#include "FakePlayLists.h"

#include "OrvoPlayListCommands.h"
#include "OrvoPlayListPaths.h"

namespace {

OrvoRoles row(int type, const QString& title, const CMPath& path) {
    OrvoRoles roles;
    roles.setType(type);
    roles.setTitle(title);
    roles.setPath(path);
    return roles;
}

OrvoRoles track(const QString& path, int plid, int number) {
    OrvoRoles roles = row(OrvoRolesType::Audio, CMPath(path).splitBase().value(1, path),
                          OrvoPlayListItemPath() + QString::number(number + 100));
    if (!CMPath(path).splitBase().isEmpty())
        roles.setTitle(CMPath(path).splitBase().last());
    roles.setId(QString::number(number + 100));
    roles.setValue(OrvoValue::fromI32(number));
    OrvoRoles menu;
    menu.setPath(
        OrvoPlayListPlTrackContextPath().addParam(QStringLiteral("plid"), QString::number(plid)));
    roles.setContext(menu);
    OrvoMetaData meta;
    meta.setArtist(QStringLiteral("Artist"));
    meta.setAlbum(QStringLiteral("Album"));
    meta.setDuration(61000);
    OrvoResource resource;
    resource.setUri(path);
    OrvoMediaData media;
    media.setMetaData(meta);
    media.setResources({resource});
    roles.setMediaData(media);
    return roles;
}

CMPath itemsPath(int id) {
    return OrvoPlayListPlGetItemsPath() + QString::number(id);
}

const QString NoList = QStringLiteral("No such list.");

} // namespace

FakePlayLists::FakePlayLists() : CMNodesWorker({}, QStringLiteral("PlayLists")) {
    lists.insert(0, {QStringLiteral("PlayQueue"), {}, -1, 0, 0});
}

const QHash<QString, FakePlayLists::Command>& FakePlayLists::commands() {
    static const QHash<QString, Command> table = {
        {OrvoPlayListPlCreatePath().toString(), &FakePlayLists::create},
        {OrvoPlayListPlSetNamePath().toString(), &FakePlayLists::rename},
        {OrvoPlayListPlDeletePath().toString(), &FakePlayLists::remove},
        {OrvoPlayListPlClearPath().toString(), &FakePlayLists::clear},
        {OrvoPlayListPlSetShufflePath().toString(), &FakePlayLists::setShuffle},
        {OrvoPlayListPlSetRepeatPath().toString(), &FakePlayLists::setRepeat},
        {OrvoPlayListPlAddItemsPath().toString(), &FakePlayLists::addItems},
        {OrvoPlayListPlRemoveItemsPath().toString(), &FakePlayLists::removeItems},
        {OrvoPlayListPlMoveItemspath().toString(), &FakePlayLists::moveItems},
        {OrvoPlayListPlSetOrderPath().toString(), &FakePlayLists::setOrder},
        {OrvoPlayListPlPlayPath().toString(), &FakePlayLists::play},
        {OrvoPlayListClCreatePath().toString(), &FakePlayLists::createGroup},
        {OrvoPlayListClDeletePath().toString(), &FakePlayLists::deleteGroup},
        {OrvoPlayListClAddItemPath().toString(), &FakePlayLists::addMember},
        {OrvoPlayListClRemoveItemPath().toString(), &FakePlayLists::removeMember},
    };
    return table;
}

void FakePlayLists::setDataRequest(const CMSetDataRequest& request) {
    const Command command = commands().value(request.path().toString());
    if (!command) {
        CMNodesWorker::setDataRequest(request);
        return;
    }
    int value = -1;
    const QString error = (this->*command)(OrvoHash(request.value()), &value);
    if (!error.isEmpty()) {
        request.reply().setError(CMError(TrString(error)));
        return;
    }
    OrvoRoles roles;
    roles.setValue(value < 0 ? OrvoValue::fromBool(true) : OrvoValue::fromI32(value));
    OrvoActionReply reply;
    reply.setResult(roles);
    request.reply().setValue(reply.toVariant());
}

QVector<OrvoRoles> FakePlayLists::rowsOf(const CMPath& path) const {
    QVector<OrvoRoles> rows;
    const bool root = path == OrvoPlayListsRootPath();
    if (root || path == OrvoPlayListPlGetlistPath()) {
        CMPath create = OrvoPlayListsRootPath();
        create.addParam(QStringLiteral("action"), QStringLiteral("createPl"));
        rows.append(row(OrvoRolesType::Editable, QStringLiteral("Create new playlist"), create));
        for (auto it = lists.begin(); it != lists.end(); ++it) {
            if (it.key() > 0)
                rows.append(row(OrvoRolesType::Container, it->name, itemsPath(it.key())));
        }
        for (auto it = groups.begin(); root && it != groups.end(); ++it) {
            CMPath group = OrvoPlayListClGetItemsPath();
            group.addParam(QStringLiteral("clid"), QString::number(it.key()));
            rows.append(row(OrvoRolesType::Container, it->name, group));
        }
    } else if (path.startsWith(OrvoPlayListClGetItemsPath())) {
        for (const int id : groups.value(path.param(QStringLiteral("clid")).toInt()).members)
            rows.append(row(OrvoRolesType::Container, lists.value(id).name, itemsPath(id)));
    } else if (path == OrvoPlayListUpNextPath()) {
        for (const int number : upNext)
            rows.append(track(lists.value(upNextList).tracks.at(number), upNextList, number));
    } else {
        const int id = listAt(path);
        const QStringList tracks = lists.value(id).tracks;
        for (int i = 0; i < tracks.size(); ++i)
            rows.append(track(tracks.at(i), id, i));
    }
    return rows;
}

// -1 for what lists no tracks.
int FakePlayLists::listAt(const CMPath& path) const {
    if (path == OrvoPlayListPqGetItemsPath())
        return 0;
    return path.startsWith(OrvoPlayListPlGetItemsPath()) ? path.splitBase().last().toInt() : -1;
}

void FakePlayLists::getRowsRequest(const CMGetRowsRequest& request) {
    const QVector<OrvoRoles> all = rowsOf(request.path());
    OrvoRowsRoles answer;
    answer.setRowsCount(all.size());
    QVariantList rows;
    for (int i = request.fromRow(); i <= qMin(request.toRow(), all.size() - 1); ++i)
        rows.append(QVariant(CMGlobal::itemRolesToList(request.roleNames(), all.at(i))));
    answer.setRows(rows);
    const int id = listAt(request.path());
    if (lists.contains(id)) {
        const List& list = lists[id];
        answer.setLastPlayedIndex(list.lastPlayed);
        if (!list.hasEnded && list.lastPlayed >= 0 && list.lastPlayed < list.tracks.size())
            answer.setResumeIndex(list.lastPlayed);
    }
    request.reply().setValue(answer);
}

FakePlayLists::List* FakePlayLists::list(const OrvoHash& record) {
    const auto it = lists.find(OrvoPlayListPlId(record.toHash()).plid());
    return it == lists.end() ? nullptr : &*it;
}

QString FakePlayLists::create(const OrvoHash& record, int* value) {
    const QString name = OrvoPlayListPlCreate(record.toHash()).name();
    if (name.isEmpty())
        return QStringLiteral("A name, please.");
    *value = m_nextId++;
    lists.insert(*value, {name, {}, -1, 0, 0});
    return {};
}

QString FakePlayLists::rename(const OrvoHash& record, int*) {
    if (!list(record))
        return NoList;
    list(record)->name = OrvoPlayListPlSetName(record.toHash()).name();
    return {};
}

QString FakePlayLists::remove(const OrvoHash& record, int*) {
    return lists.remove(OrvoPlayListPlId(record.toHash()).plid()) ? QString() : NoList;
}

QString FakePlayLists::clear(const OrvoHash& record, int*) {
    if (!list(record))
        return NoList;
    list(record)->tracks.clear();
    return {};
}

QString FakePlayLists::setShuffle(const OrvoHash& record, int*) {
    if (!list(record))
        return NoList;
    list(record)->shuffle = OrvoPlayListPlSetShuffle(record.toHash()).mode();
    return {};
}

QString FakePlayLists::setRepeat(const OrvoHash& record, int*) {
    if (!list(record))
        return NoList;
    list(record)->repeat = OrvoPlayListPlSetRepeat(record.toHash()).mode();
    return {};
}

QString FakePlayLists::addItems(const OrvoHash& record, int*) {
    const OrvoPlayListPlAddItems request(record.toHash());
    List* target = list(record);
    if (!target)
        return NoList;
    QStringList paths;
    for (const QVariant& item : request.items())
        paths.append(item.toString());
    addSizes.append(paths.size());
    const bool whole = paths.isEmpty();
    if (whole)
        paths = lists.value(request.fromPlid()).tracks;
    int held = 0;
    for (const List& one : qAsConst(lists))
        held += one.tracks.size();
    if (limit > 0)
        paths = paths.mid(0, limit - held);
    if (paths.isEmpty())
        return QStringLiteral("No items were added.");
    // After what was played last, at the end when nothing was; "now" starts what it adds.
    const bool atEnd = request.mode() == OrvoPlayListAddPosition::Append ||
                       !request.containsMode() || target->lastPlayed < 0;
    int at = atEnd ? target->tracks.size() : target->lastPlayed + 1;
    if (request.containsMode() && request.mode() == OrvoPlayListAddPosition::Now)
        target->lastPlayed = at;
    for (const QString& path : qAsConst(paths))
        target->tracks.insert(at++, path);
    if (whole)
        lists.remove(request.fromPlid());
    return {};
}

QString FakePlayLists::removeItems(const OrvoHash& record, int*) {
    if (!list(record))
        return NoList;
    QList<int> items = OrvoPlayListPlRemoveItems(record.toHash()).items();
    std::sort(items.rbegin(), items.rend());
    if (items.isEmpty() || items.first() >= list(record)->tracks.size())
        return QStringLiteral("Remove items failed");
    for (const int item : qAsConst(items))
        list(record)->tracks.removeAt(item);
    return {};
}

QString FakePlayLists::moveItems(const OrvoHash& record, int*) {
    const OrvoPlayListPlMoveItems request(record.toHash());
    if (!list(record))
        return NoList;
    const int size = list(record)->tracks.size();
    if (request.items().size() != 1 || request.to() >= size || request.items().first() >= size)
        return QStringLiteral("Move items failed");
    list(record)->tracks.move(request.items().first(), request.to());
    return {};
}

QString FakePlayLists::setOrder(const OrvoHash& record, int*) {
    if (!list(record))
        return NoList;
    QStringList& tracks = list(record)->tracks;
    const QList<int> order = OrvoPlayListPlSetOrder(record.toHash()).order();
    QStringList ordered;
    for (const int position : order)
        ordered.append(tracks.value(position));
    QList<int> positions = order;
    std::sort(positions.begin(), positions.end());
    for (int i = 0; i < tracks.size(); ++i) {
        if (positions.size() != tracks.size() || positions.at(i) != i)
            return QStringLiteral("Please name every position once.");
    }
    tracks = ordered;
    return {};
}

QString FakePlayLists::play(const OrvoHash& record, int*) {
    if (!list(record))
        return NoList;
    played = OrvoPlayListPlId(record.toHash()).plid();
    return {};
}

QString FakePlayLists::createGroup(const OrvoHash& record, int* value) {
    *value = m_nextId++;
    groups.insert(*value, {OrvoPlayListClCreate(record.toHash()).name(), {}});
    return {};
}

QString FakePlayLists::deleteGroup(const OrvoHash& record, int*) {
    return groups.remove(OrvoPlayListClId(record.toHash()).clid())
               ? QString()
               : QStringLiteral("No such group.");
}

QString FakePlayLists::addMember(const OrvoHash& record, int*) {
    const OrvoPlayListClAddRemoveItem request(record.toHash());
    if (!groups.contains(request.clid()))
        return QStringLiteral("No such group.");
    groups[request.clid()].members.append(request.plid());
    return {};
}

QString FakePlayLists::removeMember(const OrvoHash& record, int*) {
    const OrvoPlayListClAddRemoveItem request(record.toHash());
    return groups[request.clid()].members.removeOne(request.plid()) ? QString()
                                                                    : QStringLiteral("Not in it.");
}
