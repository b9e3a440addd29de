#include "PropertyModel.h"

#include <algorithm>

#include "StoreFile.h"

namespace {
template <typename Map>
int nextId(const Map& map) {
    return map.isEmpty() ? 1 : std::max(map.lastKey(), 0) + 1;
}
} // namespace

int PropertyModel::itemCount() const {
    int count = 0;
    for (const PlayList& pl : playLists)
        count += pl.titles.size();
    return count;
}

std::optional<int> PropertyModel::createPlayList(const QString& name) {
    if (name.isEmpty())
        return std::nullopt;
    const int id = nextId(playLists);
    playLists[id].name = name;
    playLists[id].birth = ++m_births;
    return id;
}

std::optional<int> PropertyModel::createCollection(const QString& name) {
    if (name.isEmpty())
        return std::nullopt;
    const int id = nextId(collections);
    collections[id].name = name;
    return id;
}

bool PropertyModel::renamePlayList(int plid, const QString& name) {
    if (plid == 0 || name.isEmpty() || !playLists.contains(plid))
        return false;
    playLists[plid].name = name;
    return true;
}

bool PropertyModel::setShuffle(int plid, int mode) {
    if (mode > 1 || !playLists.contains(plid))
        return false;
    playLists[plid].shuffle = mode == 1;
    return true;
}

bool PropertyModel::setRepeat(int plid, int mode) {
    if (mode > 3 || !playLists.contains(plid))
        return false;
    playLists[plid].repeatAll = mode == 2;
    return true;
}

bool PropertyModel::deletePlayList(int plid) {
    if (plid == 0 || playLists.remove(plid) == 0)
        return false;
    for (Collection& cl : collections)
        cl.members.remove(plid);
    return true;
}

bool PropertyModel::deleteCollection(int clid) {
    return collections.remove(clid) > 0;
}

bool PropertyModel::addMember(int clid, int plid) {
    if (!collections.contains(clid) || !playLists.contains(plid) ||
        collections[clid].members.contains(plid))
        return false;
    collections[clid].members.insert(plid);
    return true;
}

bool PropertyModel::removeMember(int clid, int plid) {
    return collections.contains(clid) && playLists.contains(plid) &&
           collections[clid].members.remove(plid);
}

bool PropertyModel::clear(int plid) {
    if (!playLists.contains(plid))
        return false;
    playLists[plid].titles.clear();
    return true;
}

bool PropertyModel::removeItems(int plid, const QList<int>& positions) {
    if (positions.isEmpty() || !playLists.contains(plid))
        return false;
    PlayList& pl = playLists[plid];
    const QSet<int> gone(positions.begin(), positions.end());
    const auto exists = [&pl](int position) {
        return position >= 0 && position < pl.titles.size();
    };
    if (gone.size() != positions.size() || !std::all_of(gone.begin(), gone.end(), exists))
        return false;
    QStringList kept;
    for (int i = 0; i < pl.titles.size(); ++i) {
        if (!gone.contains(i))
            kept.append(pl.titles.at(i));
    }
    pl.titles = kept;
    const int lastPlayed = pl.lastPlayed;
    pl.lastPlayed -= int(
        std::count_if(gone.begin(), gone.end(), [lastPlayed](int p) { return p < lastPlayed; }));
    return true;
}

// Cuts the movers out and puts them back as one block. When some stood at or before the target,
// those end at it and the others follow; else the block begins at it.
bool PropertyModel::moveItems(int plid, const QList<int>& positions, int to) {
    if (positions.isEmpty() || to < 0 || !playLists.contains(plid))
        return false;
    PlayList& pl = playLists[plid];
    const int size = pl.titles.size();
    if (to >= size)
        return false;
    const QSet<int> movers(positions.begin(), positions.end());
    const auto exists = [size](int position) { return position >= 0 && position < size; };
    if (!std::all_of(movers.begin(), movers.end(), exists))
        return false;

    // Numbers stand for the entries, so that the last played one is found again.
    QList<int> block;
    QList<int> rest;
    for (int i = 0; i < size; ++i)
        (movers.contains(i) ? block : rest).append(i);
    const int fromBefore =
        int(std::count_if(block.begin(), block.end(), [to](int p) { return p <= to; }));
    const int start = fromBefore > 0 ? to - fromBefore + 1 : to;
    QList<int> order = rest.mid(0, start) + block + rest.mid(start);
    QStringList titles;
    for (int entry : qAsConst(order))
        titles.append(pl.titles.at(entry));
    if (pl.lastPlayed >= 0 && pl.lastPlayed < size)
        pl.lastPlayed = order.indexOf(pl.lastPlayed);
    pl.titles = titles;
    return true;
}

bool PropertyModel::setOrder(int plid, const QList<int>& order) {
    if (!playLists.contains(plid))
        return false;
    PlayList& pl = playLists[plid];
    QList<int> sorted = order;
    std::sort(sorted.begin(), sorted.end());
    QList<int> all;
    QStringList titles;
    for (int i = 0; i < pl.titles.size(); ++i) {
        all.append(i);
        titles.append(pl.titles.value(order.value(i, -1)));
    }
    if (sorted != all)
        return false;
    pl.titles = titles;
    if (order.contains(pl.lastPlayed))
        pl.lastPlayed = order.indexOf(pl.lastPlayed);
    return true;
}

int PropertyModel::addItems(int plid, const QStringList& titles, int mode) {
    if (titles.isEmpty() || !playLists.contains(plid))
        return 0;
    PlayList& pl = playLists[plid];
    // A store that is over its limit already takes everything.
    const int room = limit - itemCount();
    const QStringList added = titles.mid(0, limit == 0 ? -1 : std::max(room, -1));
    const bool noSuchPosition = mode < 0 || mode > Append;
    if (added.isEmpty() || (noSuchPosition && !pl.titles.isEmpty()))
        return 0;
    const bool afterLastPlayed =
        mode != Append && pl.lastPlayed >= 0 && pl.lastPlayed < pl.titles.size();
    int at = afterLastPlayed ? pl.lastPlayed + 1 : pl.titles.size();
    addedAt = at;
    for (const QString& title : added)
        pl.titles.insert(at++, title);
    return added.size();
}

int PropertyModel::addItemsAt(int plid, const QStringList& titles, const QList<int>& positions,
                              bool isRun) {
    if (titles.isEmpty() || !playLists.contains(plid) || positions.size() != titles.size())
        return 0;
    PlayList& pl = playLists[plid];
    const int size = pl.titles.size();
    if (positions.last() >= size + titles.size())
        return 0;
    const int room = limit - itemCount();
    const QStringList added = titles.mid(0, limit == 0 ? -1 : std::max(room, -1));
    if (added.isEmpty() || (!isRun && added.size() < titles.size()))
        return 0;
    const bool wasPlayed = pl.lastPlayed >= 0 && pl.lastPlayed < size;
    for (int i = 0; i < added.size(); ++i) {
        pl.titles.insert(positions.at(i), added.at(i));
        if (wasPlayed && positions.at(i) <= pl.lastPlayed)
            ++pl.lastPlayed;
    }
    return added.size();
}

int PropertyModel::merge(int from, int plid, int mode) {
    if (!playLists.contains(from))
        return 0;
    const int added = addItems(plid, playLists[from].titles, mode);
    if (added > 0 && from != plid)
        deletePlayList(from);
    return added;
}

QStringList PropertyModel::lines() const {
    QStringList lines;
    for (auto pl = playLists.cbegin(); pl != playLists.cend(); ++pl)
        lines.append(QStringLiteral("%1|%2|%3|%4|")
                         .arg(pl.key())
                         .arg(pl->shuffle)
                         .arg(pl->repeatAll)
                         .arg(pl->lastPlayed) +
                     pl->name + '|' + pl->titles.join(' '));
    for (auto cl = collections.cbegin(); cl != collections.cend(); ++cl) {
        QList<int> members = cl->members.values();
        std::sort(members.begin(), members.end());
        QStringList texts;
        for (int plid : qAsConst(members))
            texts.append(QString::number(plid));
        lines.append(QString::number(cl.key()) + '|' + cl->name + '|' + texts.join(','));
    }
    return lines;
}

QStringList PropertyModel::linesOf(StoreFile& file) {
    return file.query(QStringLiteral(
               "SELECT p.uid, shuffle, repeatAll, lastPlayedIndex, name,"
               " coalesce((SELECT group_concat(title, ' ') FROM (SELECT title FROM playlists_items"
               " JOIN items ON item = items.uid WHERE playlist = p.uid ORDER BY sequenceNumber)),"
               " '') FROM playlists AS p ORDER BY p.uid")) +
           file.query(QStringLiteral(
               "SELECT uid, name, coalesce((SELECT group_concat(playlist) FROM (SELECT playlist"
               " FROM collections_playlists WHERE collection = uid ORDER BY playlist)), '')"
               " FROM collections ORDER BY uid"));
}
