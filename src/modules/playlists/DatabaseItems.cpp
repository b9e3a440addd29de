#include <algorithm>
#include <array>

#include <QHash>
#include <QSet>

#include "DatabaseItemRows.h"
#include "EntryRoles.h"
#include "ModuleLog.h"
#include "RepeatedLogLines.h"
#include "Sqlite3Statement.h"
#include "TextBudget.h"

namespace {

// Up to here a search per item is cheaper than a walk through a playlist.
constexpr int FewUids = 4;

// An item with all its keys and no values, and the columns that belong to the values in the order
// of the hash, which every copy has.
struct EmptyItem {
    EmptyItem();

    QVariantHash hash;
    std::array<int, OrvoRolesColumn + 1> columns{};
};

EmptyItem::EmptyItem() {
    using Item = OrvoPlayListItem;
    hash.reserve(int(columns.size()));
    int column = 0;
    for (const QString& key :
         {Item::SequenceNumber(), Item::Uid(), Item::Title(), Item::Artist(), Item::Album(),
          Item::ArtworkUrl(), Item::Genre(), Item::DurationSeconds(), Item::Url(),
          Item::ServiceId(), Item::OrvoRoles()})
        hash.insert(key, column++);
    auto inOrder = columns.begin();
    for (QVariant& value : hash) {
        *inOrder++ = value.toInt();
        value.clear();
    }
}

// Makes items of item rows. Entries that follow each other are often of one album: what a row has
// in common with the one before is shared. No key is looked up.
class ItemMaker {
public:
    OrvoPlayListItem operator()(const Sqlite3Statement& row) {
        static const EmptyItem emptyItem;
        QVariantHash item = emptyItem.hash;
        auto column = emptyItem.columns.cbegin();
        for (QVariant& value : item)
            value = read(row, *column++);
        return OrvoPlayListItem(item);
    }

private:
    QVariant read(const Sqlite3Statement& row, int column) {
        switch (column) {
        case SequenceNumberColumn:
        case UidColumn:
        case DurationSecondsColumn:
            return row.columnInt(column);
        case ArtistColumn:
        case AlbumColumn:
        case ArtworkUrlColumn:
        case GenreColumn:
        case ServiceIdColumn: {
            QString& text = m_last[std::size_t(column)];
            row.updateText(column, &text);
            return text;
        }
        default:
            return row.columnText(column);
        }
    }

    std::array<QString, OrvoRolesColumn + 1> m_last;
};

} // namespace

bool reportUnreadItems() {
    LOG4CPLUS_ERROR(moduleLog(), "Error fetching PlayList items from DB");
    return false;
}

QList<OrvoPlayListItem> Database::getItems(const PlayListRecord& pl, int from, int to) {
    CM_ENTER_ARGS(moduleLog(), "pl=" << pl.uid << " from=" << from << " to=" << to);
    QList<OrvoPlayListItem> items;
    ItemMaker makeItem;
    visitItems(pl.uid, from, to, [&items, &makeItem](const Sqlite3Statement& row) {
        items.append(makeItem(row));
        return true;
    });
    return items;
}

// Much more than a page has; all texts of a large store may be more than memory has.
constexpr int MaxTextsOfOneReading = 4 * 1024 * 1024;

EntryRoles Database::getEntryRoles(const PlayListRecord& pl, int from, int to) {
    // The line of getItems: logs are searched for it, in whatever form entries are read.
    LOG4CPLUS_TRACE(moduleLog(), "Enter QList<OrvoPlayListItem> Database::getItems(const "
                                 "PlayListRecord&, int, int): pl="
                                     << pl.uid << " from=" << from << " to=" << to);
    EntryRoles roles;
    visitItems(pl.uid, from, to, [&roles](const Sqlite3Statement& row) {
        row.appendColumnText(OrvoRolesColumn, &roles.texts);
        roles.entries.append(
            {row.columnInt(SequenceNumberColumn), row.columnInt(UidColumn), roles.texts.size()});
        if (roles.texts.size() < MaxTextsOfOneReading)
            return true;
        roles.next = roles.entries.last().sequenceNumber + 1;
        return false;
    });
    return roles;
}

std::optional<OrvoPlayListItem> Database::readItemByUid(int uid) {
    StatementScope search(statement(StatementId::GetItemByUid));
    if (!search->bindInt(1, uid) || !search->step_row())
        return std::nullopt;
    const OrvoPlayListItem item = ItemMaker()(search.row());
    if (!search.reset())
        return std::nullopt;
    return item;
}

OrvoPlayListItem Database::getItemByUid(int uid) {
    const std::optional<OrvoPlayListItem> item = readItemByUid(uid);
    if (!item)
        LOG4CPLUS_ERROR(moduleLog(), "Error fetching item by UID");
    return item.value_or(OrvoPlayListItem());
}

QList<OrvoPlayListItem> Database::getItemsByUids(const QList<PlayListRecord>& playlists,
                                                 const QList<int>& uids, TextBudget* budget) {
    TextBudget unlimited(std::numeric_limits<qint64>::max());
    if (!budget)
        budget = &unlimited;
    // What is read counts once, what is answered as often as it was asked for.
    const QHash<int, OrvoPlayListItem> found = uids.size() <= FewUids
                                                   ? searchItems(uids, *budget)
                                                   : collectItems(playlists, uids, *budget);
    for (int uid : uids) {
        const auto item = found.constFind(uid);
        if (item != found.constEnd() && !budget->take(TextBudget::bytesOf(*item)))
            return {};
    }
    // The line of getItemByUid for each that is missing, so that one search finds both.
    RepeatedLogLines missing(moduleLog(), log4cplus::ERROR_LOG_LEVEL);
    QList<OrvoPlayListItem> items;
    items.reserve(uids.size());
    for (int uid : uids) {
        const auto item = found.constFind(uid);
        if (item == found.constEnd() && missing.next())
            LOG4CPLUS_ERROR(moduleLog(), "Error fetching item by UID");
        items.append(item == found.constEnd() ? OrvoPlayListItem() : *item);
    }
    return items;
}

QHash<int, OrvoPlayListItem> Database::searchItems(const QList<int>& uids, TextBudget budget) {
    QHash<int, OrvoPlayListItem> found;
    for (int uid : uids) {
        if (found.contains(uid))
            continue;
        const std::optional<OrvoPlayListItem> item = readItemByUid(uid);
        if (!item)
            continue;
        found.insert(uid, *item);
        if (!budget.take(TextBudget::bytesOf(*item)))
            break;
    }
    return found;
}

// There is no index from an item to its entry, so finding one costs a search through all entries,
// and finding the next one of the same playlist costs the same again. Items asked for together
// mostly come from one playlist, or two: find out from which, and walk these first.
QHash<int, OrvoPlayListItem> Database::collectItems(const QList<PlayListRecord>& playlists,
                                                    const QList<int>& uids, TextBudget budget) {
    constexpr int MaxDiscoveries = 2;
    QHash<int, OrvoPlayListItem> found;
    found.reserve(uids.size());
    QSet<int> missing(uids.begin(), uids.end());
    QList<PlayListRecord> unread = playlists;
    ItemMaker makeItem;

    // Nothing is missing any more once the budget is exceeded.
    const auto keep = [&](int uid, const OrvoPlayListItem& item) {
        found.insert(uid, item);
        if (!budget.take(TextBudget::bytesOf(item)))
            missing.clear();
    };
    const auto walk = [&](const PlayListRecord& pl) {
        visitItems(pl.uid, 0, LastPossibleNumber, [&](const Sqlite3Statement& row) {
            const int uid = row.columnInt(UidColumn);
            if (missing.remove(uid))
                keep(uid, makeItem(row));
            return !missing.isEmpty();
        });
    };

    auto next = uids.begin();
    for (int i = 0; i < MaxDiscoveries && !missing.isEmpty(); ++i) {
        next =
            std::find_if(next, uids.end(), [&missing](int uid) { return missing.contains(uid); });
        missing.remove(*next);
        const std::optional<OrvoPlayListItem> item = readItemByUid(*next);
        if (!item)
            break;
        keep(*next, *item);
        const int owner = ownerOfItem(unread, *item);
        if (owner < 0)
            break;
        if (!missing.isEmpty())
            walk(unread.takeAt(owner));
    }
    for (auto pl = unread.constBegin(); pl != unread.constEnd() && !missing.isEmpty(); ++pl)
        walk(*pl);
    return found;
}

// The index of the playlist that `item` is an entry of, or -1.
int Database::ownerOfItem(const QList<PlayListRecord>& playlists, const OrvoPlayListItem& item) {
    const int number = item.sequenceNumber();
    const int uid = item.uid();
    for (int i = 0; i < playlists.size(); ++i) {
        bool owns = false;
        visitItems(playlists[i].uid, number, number, [&owns, uid](const Sqlite3Statement& row) {
            owns = row.columnInt(UidColumn) == uid;
            return false;
        });
        if (owns)
            return i;
    }
    return -1;
}

void Database::printItems(const PlayListRecord& pl) {
    CM_ENTER(moduleLog());
    if (!moduleLog().isEnabledFor(log4cplus::TRACE_LOG_LEVEL))
        return;
    const QList<OrvoPlayListItem> items = getItems(pl, 0, pl.size);
    RepeatedLogLines entries(moduleLog(), log4cplus::TRACE_LOG_LEVEL);
    for (const OrvoPlayListItem& item : items) {
        if (entries.next())
            LOG4CPLUS_TRACE(moduleLog(), "uid: " << item.uid()
                                                 << " seqNum: " << item.sequenceNumber()
                                                 << " name: " << loggedText(item.title()));
    }
}
