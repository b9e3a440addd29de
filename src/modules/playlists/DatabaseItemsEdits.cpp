#include <optional>
#include <utility>

#include <QVector>

#include "DatabaseItemRows.h"
#include "DatabaseTransaction.h"
#include "DatabaseUnusedItems.h"
#include "ItemTexts.h"
#include "ModuleLog.h"
#include "NumberRuns.h"
#include "RepeatedLogLines.h"
#include "Sqlite3Statement.h"

int Database::getNextSequenceNumber(const PlayListRecord& pl) {
    CM_ENTER_ARGS(moduleLog(), "pl=" << pl.uid);
    StatementScope query(statement(StatementId::GetNextSequenceNumber));
    if (!query->bindInt(1, pl.uid) || !query->step_row()) {
        LOG4CPLUS_ERROR(moduleLog(), "Error fetching the next sequenceNumber");
        return StoreResult::Failed;
    }
    const int number = query->columnInt(0);
    if (!query.reset())
        LOG4CPLUS_ERROR(moduleLog(), "Error resetting next sequence number stmt");
    return number;
}

int Database::addItemsNextSequenceNumber(const PlayListRecord& pl,
                                         const OrvoPlayListAddPosition::Enum& position) {
    if (pl.size <= 0) {
        LOG4CPLUS_TRACE(moduleLog(), "playlist is empty");
        const int number = getNextSequenceNumber(pl);
        LOG4CPLUS_TRACE(moduleLog(), "nextSequenceNumber: " << number);
        return number;
    }
    LOG4CPLUS_TRACE(moduleLog(), "playlist is not empty");
    LOG4CPLUS_TRACE(moduleLog(), "lastSeqNum: " << pl.lastPlayedIndex);
    switch (position) {
    case OrvoPlayListAddPosition::Now:
    case OrvoPlayListAddPosition::AfterCurrent:
        // An index beyond the end is left over from a list that was longer: following it would
        // leave a gap.
        if (pl.lastPlayedIndex >= 0 && pl.lastPlayedIndex < pl.size)
            return pl.lastPlayedIndex + 1;
        return getNextSequenceNumber(pl);
    case OrvoPlayListAddPosition::Append:
        return getNextSequenceNumber(pl);
    }
    return StoreResult::Failed;
}

int Database::addItems(const PlayListRecord& pl, OrvoPlayListAddPosition::Enum position,
                       const QList<OrvoPlayListItem>& items, int* addedCount,
                       const ItemPlaces& places) {
    Transaction transaction(*this, Transaction::Lock::AtOnce);
    CM_ENTER_ARGS(moduleLog(), "pl: " << pl.uid << " pl.size(): " << pl.size << " position: "
                                      << OrvoPlayListAddPosition::toString(position)
                                      << " items.size(): " << items.size());
    if (!transaction.begun()) {
        LOG4CPLUS_ERROR(moduleLog(), "Error adding items to list");
        return StoreResult::Failed;
    }
    printItems(pl);

    // A pass over all items, made only where a limit or the log needs the result.
    const bool countWanted =
        m_itemsLimit != 0 || moduleLog().isEnabledFor(log4cplus::TRACE_LOG_LEVEL);
    const std::optional<int> stored =
        countWanted ? readCount(StatementId::CountPlaylistItems) : std::optional<int>(0);
    // Without the count there is no limit; and a read that fails may have ended the transaction, so
    // that what follows would be there for good, piece by piece.
    if (!stored || sqlite3_get_autocommit(m_connection)) {
        LOG4CPLUS_ERROR(moduleLog(), "Error adding items to list");
        return StoreResult::Failed;
    }
    // Where the store already holds more than the limit, the length is negative, which QList takes
    // as "to the end", and everything is added: a limit that was lowered below the store's size is
    // none.
    const qint64 room = qint64(m_itemsLimit) - *stored;
    const QList<OrvoPlayListItem> itemsToAdd =
        m_itemsLimit == 0 ? items : items.mid(0, int(qMax<qint64>(room, -1)));
    const int count = itemsToAdd.size();
    if (addedCount)
        *addedCount = count;
    LOG4CPLUS_TRACE(moduleLog(), "dbItemsCount: " << *stored << ", addedItemsCount: " << count
                                                  << ", limit: " << m_itemsLimit);
    if (count == 0 || (places.allOrNothing && count < items.size())) {
        LOG4CPLUS_ERROR(moduleLog(), "Error adding playlist items: database reached limit!");
        return StoreResult::LimitReached;
    }

    int first = addItemsNextSequenceNumber(pl, position);
    if (first >= 0 && pl.size > first && !offsetItemsFromTransaction(pl, first, count)) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to move item block before adding items");
        first = StoreResult::Failed;
    }
    const QList<int> positions = places.positions.mid(0, count);
    if (first < 0 || !addItemsFromSequenceNumber(pl, first, itemsToAdd) ||
        !bringToPositions(pl, positions)) {
        LOG4CPLUS_ERROR(moduleLog(), "Error adding items to list");
        return StoreResult::Failed;
    }
    transaction.commit();
    return positions.isEmpty() ? first : positions.first();
}

// `pl` as it was before the items were appended.
bool Database::bringToPositions(const PlayListRecord& pl, const QList<int>& positions) {
    if (positions.isEmpty())
        return true;
    PlayListRecord grown = pl;
    grown.size += positions.size();
    QVector<int> order;
    order.reserve(grown.size);
    int present = 0;
    int added = 0;
    for (int position = 0; position < grown.size; ++position) {
        const bool isNew = added < positions.size() && positions.at(added) == position;
        order.append(isNew ? pl.size + added++ : present++);
    }
    const int last = pl.lastPlayedIndex;
    const bool isThere = last >= 0 && last < pl.size;
    return reorderItemsTransaction(grown, 0, order,
                                   isThere ? ItemPlaces::afterAdding(positions, last) : last);
}

bool Database::offsetItemsFromTransaction(const PlayListRecord& pl, int from, int count) {
    // By way of numbers that no entry has: a number may never stand twice, not even halfway through
    // a statement.
    Sqlite3Statement& shift = statement(StatementId::MoveItem1);
    const int away = pl.size + 1;
    return shift.run(pl.uid, from, pl.size, count + away) &&
           shift.run(pl.uid, pl.size, LastPossibleNumber, -away);
}

bool Database::addItemsFromSequenceNumber(const PlayListRecord& pl, const int& sequenceNumber,
                                          const QList<OrvoPlayListItem>& items) {
    constexpr int Many = 100;
    std::optional<ForeignKeysSuspended> unchecked;
    ItemTexts texts;
    RepeatedLogLines inserted(moduleLog(), log4cplus::TRACE_LOG_LEVEL);
    for (int i = 0; i < items.size(); ++i) {
        texts.find(items.at(i));
        const int uid = insertItem(texts, items.at(i).durationSeconds());
        if (uid < 0) {
            inserted.end();
            LOG4CPLUS_ERROR(moduleLog(), "Error inserting item into DB");
            return false;
        }
        if (i == 0)
            m_uidHistory.noteAssigned(uid, m_lastRevision + 1);
        if (inserted.next())
            LOG4CPLUS_TRACE(moduleLog(), "Inserted item into DB with uid" << uid);
        if (!statement(StatementId::InsertPlayListItem).run(pl.uid, uid, sequenceNumber + i)) {
            inserted.end();
            LOG4CPLUS_ERROR(moduleLog(), "Error inserting item into playlist DB");
            return false;
        }
        // The first entry has found its playlist, which stays while this transaction has the lock,
        // and an entry's item was made a moment ago: the others need not be checked.
        if (i == 0 && items.size() >= Many)
            unchecked.emplace(m_connection);
    }
    return true;
}

// The uid that the store has given it, or Failed.
int Database::insertItem(const ItemTexts& item, int durationSeconds) {
    using Text = ItemTexts;
    const bool inserted = statement(StatementId::InsertItem)
                              .run(item[Text::Title], item[Text::Artist], item[Text::Album],
                                   item[Text::ArtworkUrl], item[Text::Genre], durationSeconds,
                                   item[Text::Url], item[Text::ServiceId], item[Text::OrvoRoles]);
    return inserted ? int(sqlite3_last_insert_rowid(m_connection)) : StoreResult::Failed;
}

int Database::removeItems(const PlayListRecord& pl, const QList<int>& indices) {
    CM_ENTER_ARGS(moduleLog(), "pl=" << pl.uid << " indices=" << joined(indices));
    if (indices.isEmpty())
        return 0;
    Transaction transaction(*this, Transaction::Lock::AtOnce);
    const int removed =
        transaction.begun() ? removeItemsTransaction(pl, indices) : StoreResult::Failed;
    if (removed == StoreResult::Failed) {
        LOG4CPLUS_ERROR(moduleLog(), "Error removing items from list");
        return StoreResult::Failed;
    }
    transaction.commit();
    setVacuumNeeded();
    return removed;
}

int Database::removeItemsTransaction(const PlayListRecord& pl, const QList<int>& indices) {
    UnusedItems unused(*this, indices.size());
    RepeatedLogLines lines(moduleLog(), log4cplus::TRACE_LOG_LEVEL);
    int removed = 0;
    for (const NumberRun& run : runsOf(indices)) {
        unused.note(pl.uid, run.from, run.to);
        // A read that failed may have ended the transaction.
        if (sqlite3_get_autocommit(m_connection))
            break;
        const int count = removeItemsHelper(pl, run.from, run.to, &lines);
        removed += count;
        // No further run: some failures have ended the transaction, and the rest would be removed
        // for good. And one number a million times over is found out at its second time.
        if (count != run.to - run.from + 1)
            break;
    }
    lines.end();
    if (removed != indices.size()) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to remove all item indices");
        return StoreResult::Failed;
    }
    if (!unused.remove()) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to clean up unused items");
        return StoreResult::Failed;
    }
    // The first index as given, not the smallest: callers list them in ascending order.
    if (!renumberFrom(pl, indices.first())) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to restore sequence numbers");
        return StoreResult::Failed;
    }
    return removed;
}

int Database::removeItemsHelper(const PlayListRecord& pl, int from, int to,
                                RepeatedLogLines* lines) {
    if (!lines || lines->next())
        LOG4CPLUS_TRACE(moduleLog(), "Remove partial from=" << from << " to=" << to);
    if (!statement(StatementId::DeletePlayListItem).run(pl.uid, from, to)) {
        LOG4CPLUS_ERROR(moduleLog(), "Error removing partial items from list");
        return StoreResult::Failed;
    }
    return sqlite3_changes(m_connection);
}

bool Database::renumberFrom(const PlayListRecord& pl, int first) {
    struct Entry {
        int uid;
        int number;
    };
    // All are read before the first is changed: the rows of a statement that is still being stepped
    // must stay put.
    QVector<Entry> entries;
    entries.reserve(qMax(0, pl.size - first));
    const bool read = visitItems(pl.uid, first, pl.size, [&entries](const Sqlite3Statement& row) {
        entries.append({row.columnInt(UidColumn), row.columnInt(SequenceNumberColumn)});
        return true;
    });
    if (!read)
        return false;
    Sqlite3Statement& setNumber = statement(StatementId::SetSequenceNumber);
    int number = first;
    RepeatedLogLines updates(moduleLog(), log4cplus::TRACE_LOG_LEVEL);
    for (const Entry& entry : std::as_const(entries)) {
        if (updates.next())
            LOG4CPLUS_TRACE(moduleLog(), "update seq: uid=" << entry.uid << " old=" << entry.number
                                                            << " new=" << number);
        // Ascending and never upwards, so each new number is free when it is taken.
        if (!setNumber.run(pl.uid, entry.uid, entry.number, number++))
            return false;
    }
    return true;
}

bool Database::moveItem(const PlayListRecord& pl, int from, int to) {
    CM_ENTER_ARGS(moduleLog(), "pl=" << pl.uid << " from=" << from << " to=" << to);
    Transaction transaction(*this, Transaction::Lock::WhenWriting);
    if (!transaction.begun() || !moveItemTransaction(pl, from, to)) {
        LOG4CPLUS_ERROR(moduleLog(), "Error moving PlayListItem");
        return false;
    }
    transaction.commit();
    return true;
}

bool Database::moveItemTransaction(const PlayListRecord& pl, int from, int to) {
    // The whole range is lifted above the numbers in use, and its entries come back one place on,
    // the moved one first.
    Sqlite3Statement& shift = statement(StatementId::MoveItem1);
    const int size = pl.size;
    const int low = qMin(from, to);
    const int high = qMax(from, to);
    const int direction = from <= to ? 1 : -1;
    return shift.run(pl.uid, low, high, size) &&
           shift.run(pl.uid, from + size, from + size, to - from - size) &&
           shift.run(pl.uid, low + size, high + size, -(direction + size));
}

bool Database::reorderItems(const PlayListRecord& pl, int first, const QVector<int>& order,
                            int lastPlayedIndex) {
    CM_ENTER_ARGS(moduleLog(),
                  "pl=" << pl.uid << " first=" << first << " order.size()=" << order.size());
    Transaction transaction(*this, Transaction::Lock::AtOnce);
    if (!transaction.begun() || !reorderItemsTransaction(pl, first, order, lastPlayedIndex)) {
        LOG4CPLUS_ERROR(moduleLog(), "Error moving PlayListItem");
        return false;
    }
    transaction.commit();
    return true;
}

bool Database::reorderItemsTransaction(const PlayListRecord& pl, int first,
                                       const QVector<int>& order, int lastPlayedIndex) {
    // Both ends may stand where they belong.
    int begin = 0;
    int end = order.size();
    while (begin < end && order[begin] == first + begin)
        ++begin;
    while (end > begin && order[end - 1] == first + end - 1)
        --end;

    // The rest is lifted above the numbers in use, and each run of entries that stay together comes
    // down to its place: every entry is written twice, however many of them move.
    Sqlite3Statement& shift = statement(StatementId::MoveItem1);
    const int above = pl.size;
    if (begin < end && !shift.run(pl.uid, first + begin, first + end - 1, above))
        return false;
    while (begin < end) {
        int next = begin + 1;
        while (next < end && order[next] == order[next - 1] + 1)
            ++next;
        const int from = order[begin] + above;
        const int to = order[next - 1] + above;
        if (!shift.run(pl.uid, from, to, first + begin - from))
            return false;
        begin = next;
    }
    PlayListRecord played = pl;
    played.lastPlayedIndex = lastPlayedIndex;
    return lastPlayedIndex == pl.lastPlayedIndex || updatePlayList(played);
}

bool Database::clearItems(const PlayListRecord& pl) {
    CM_ENTER_ARGS(moduleLog(), "pl=" << pl.uid);
    UnusedItems unused(*this, pl.size);
    unused.note(pl.uid, 0, LastPossibleNumber);
    if (removeItemsHelper(pl, 0, LastPossibleNumber) < 0) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to clear playList " << pl.uid);
        return false;
    }
    const bool cleaned = unused.remove();
    m_mayHoldUnusedItems = !cleaned;
    if (!cleaned)
        LOG4CPLUS_ERROR(moduleLog(), "Unable to clean up unused items");
    setVacuumNeeded();
    return cleaned;
}
