#include "PlayList.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

#include <QMutexLocker>

#include "Database.h"
#include "ModuleLog.h"

namespace {

struct ItemMove {
    int from;
    int to;
};

// The single moves that bring the entries at `indices`, ascending, together at `to`, each with the
// numbers that the moves before it have left.
QVector<ItemMove> movesOf(const QList<int>& indices, int to) {
    QVector<ItemMove> moves;
    const auto add = [&moves](int from, int target) {
        if (from != target)
            moves.append({from, target});
    };
    const int firstBehind =
        int(std::upper_bound(indices.cbegin(), indices.cend(), to) - indices.cbegin());
    // Each move out of the front lets the rest of the front slide down by one.
    for (int moved = 0; moved < firstBehind; ++moved)
        add(indices.at(moved) - moved, to);
    int target = firstBehind > 0 ? to + 1 : to;
    for (int i = firstBehind; i < indices.size(); ++i)
        add(indices.at(i), target++);
    return moves;
}

// What these moves come to: the old numbers in their new order, from the lowest number concerned to
// the highest.
QVector<int> orderAfterMoving(const QList<int>& indices, int to) {
    const int low = std::min(indices.first(), to);
    const int high = std::max(indices.last(), to);
    const int fromBefore =
        int(std::upper_bound(indices.cbegin(), indices.cend(), to) - indices.cbegin());
    const int blockBegin = fromBefore > 0 ? to - fromBefore + 1 : to;
    QVector<int> all(high - low + 1);
    std::iota(all.begin(), all.end(), low);
    QVector<int> order;
    order.reserve(all.size());
    std::set_difference(all.cbegin(), all.cend(), indices.cbegin(), indices.cend(),
                        std::back_inserter(order));
    order.insert(blockBegin - low, indices.size(), 0);
    std::copy(indices.cbegin(), indices.cend(), order.begin() + (blockBegin - low));
    return order;
}

// Where the entry numbered `number` stands after the move.
int followed(int number, const ItemMove& move) {
    if (number == move.from)
        return move.to;
    if (number >= move.to && number < move.from)
        return number + 1;
    return number > move.from && number <= move.to ? number - 1 : number;
}

} // namespace

PlayList::PlayList(Database* database, const PlayListRecord& record)
    : m_database(database),
      m_record(record),
      m_firstRevision(database->nextRevision()),
      m_revision(m_firstRevision) {}

int PlayList::getUid() const {
    return m_record.uid;
}

QString PlayList::getName() const {
    return record().name;
}

bool PlayList::getShuffle() const {
    return record().shuffle;
}

bool PlayList::getRepeatAll() const {
    return record().repeatAll;
}

int PlayList::getLastSequenceNumber() const {
    return record().lastPlayedIndex;
}

int PlayList::getSize() const {
    return record().size;
}

qint64 PlayList::getRevision() const {
    QMutexLocker lock(&m_mutex);
    return m_revision;
}

bool PlayList::valid() const {
    return m_record.uid != PlayListRecord::NoUid;
}

PlayListRecord PlayList::record() const {
    QMutexLocker lock(&m_mutex);
    return m_record;
}

bool PlayList::writeRecord(const PlayListRecord& changed) {
    if (!m_database->updatePlayList(changed))
        return false;
    m_record = changed;
    m_positionOwed = false;
    return true;
}

void PlayList::catchUp() {
    if (m_inDoubt)
        readAgain();
    if (m_positionOwed)
        writeRecord(m_record);
}

void PlayList::readAgain() {
    PlayListRecord stored = m_database->getPlayListByUid(m_record.uid);
    m_inDoubt = stored.uid != m_record.uid;
    if (m_inDoubt)
        return;
    if (m_positionOwed)
        stored.lastPlayedIndex = m_record.lastPlayedIndex;
    m_record = stored;
}

bool PlayList::finishEdit(int newSize) {
    m_revision = m_database->nextRevision();
    if (!m_database->lastCommitFailed()) {
        m_record.size = newSize;
        return true;
    }
    // Another order cannot be told from the one before by the size.
    const bool isTold = newSize != m_record.size;
    readAgain();
    return isTold && !m_inDoubt && m_record.size == newSize;
}

bool PlayList::setName(const QString& name) {
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        PlayListRecord changed = m_record;
        changed.name = name;
        if (!writeRecord(changed))
            return false;
    }
    Q_EMIT nameChanged(name);
    return true;
}

bool PlayList::setShuffle(bool shuffle) {
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        PlayListRecord changed = m_record;
        changed.shuffle = shuffle;
        if (shuffle == m_record.shuffle)
            return true;
        if (!writeRecord(changed))
            return false;
    }
    Q_EMIT shuffleChanged(shuffle);
    return true;
}

bool PlayList::setRepeatAll(bool repeatAll) {
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        PlayListRecord changed = m_record;
        changed.repeatAll = repeatAll;
        if (repeatAll == m_record.repeatAll)
            return true;
        if (!writeRecord(changed))
            return false;
    }
    Q_EMIT repeatAllChanged(repeatAll);
    return true;
}

void PlayList::setLastSequenceNumber(int sequenceNumber) {
    QMutexLocker lock(&m_mutex);
    // The position is kept even when it cannot be written: after a move it names the item that
    // plays.
    m_record.lastPlayedIndex = sequenceNumber;
    m_positionOwed = !updateDatabase();
}

bool PlayList::updateDatabase() const {
    QMutexLocker lock(&m_mutex);
    return m_database->updatePlayList(m_record);
}

bool PlayList::remove() {
    QMutexLocker lock(&m_mutex);
    return m_database->deletePlayList(m_record) && !m_database->lastCommitFailed();
}

QList<OrvoPlayListItem> PlayList::getItems(int from, int to) {
    CM_ENTER_ARGS(moduleLog(), "from=" << from << " to=" << to);
    QMutexLocker lock(&m_mutex);
    catchUp();
    return m_database->getItems(m_record, from, to);
}

int PlayList::addItems(OrvoPlayListAddPosition::Enum position,
                       const QList<OrvoPlayListItem>& items) {
    CM_ENTER_ARGS(moduleLog(), "position=" << OrvoPlayListAddPosition::toString(position)
                                           << " count=" << items.count());
    int added = 0;
    int first = -1;
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        first = m_database->addItems(m_record, position, items, &added);
        if (first < 0)
            return first;
        if (!finishEdit(m_record.size + added))
            return StoreResult::Failed;
    }
    Q_EMIT itemsAdded(OrvoPlayListAddPosition::toString(position), first, added);
    return first;
}

int PlayList::addItemsAt(const ItemPlaces& places, const QList<OrvoPlayListItem>& items) {
    CM_ENTER_ARGS(moduleLog(), "count=" << items.count());
    QList<int> positions;
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        const int size = m_record.size;
        if (!places.fit(size, items.size()))
            return StoreResult::Failed;
        int added = 0;
        const int first =
            m_database->addItems(m_record, OrvoPlayListAddPosition::Append, items, &added, places);
        if (first < 0)
            return first;
        // A look at what was stored may read it as it is now.
        const int last = m_record.lastPlayedIndex;
        if (!finishEdit(size + added))
            return StoreResult::Failed;
        positions = places.positions.mid(0, added);
        if (last >= 0 && last < size)
            takeLastPlayed(ItemPlaces::afterAdding(positions, last));
    }
    Q_EMIT itemsInserted(positions);
    return positions.first();
}

int PlayList::removeItems(const QList<int>& indices) {
    CM_ENTER_ARGS(moduleLog(), "indices=" << joined(indices));
    // The store renumbers from the first index on: it relies on ascending order.
    QList<int> sorted = indices;
    std::sort(sorted.begin(), sorted.end());
    int removed = 0;
    int lastPlayed = -1;
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        removed = m_database->removeItems(m_record, sorted);
        if (removed <= 0)
            return removed;
        if (!finishEdit(m_record.size - removed))
            return StoreResult::Failed;
        lastPlayed = getLastSequenceNumber();
        const int before =
            int(std::lower_bound(sorted.cbegin(), sorted.cend(), lastPlayed) - sorted.cbegin());
        if (before > 0)
            setLastSequenceNumber(lastPlayed - before);
    }
    Q_EMIT itemsRemoved(sorted, lastPlayed);
    return removed;
}

bool PlayList::moveItem(int from, int to) {
    CM_ENTER_ARGS(moduleLog(), "from=" << from << " to=" << to);
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        const int size = getSize();
        from = std::min(from, size);
        to = std::min(to, size);
        if (from == to)
            return true;
        LOG4CPLUS_TRACE(moduleLog(), "lastPlayedSeqNum: " << getLastSequenceNumber());
        // There is no entry below 0 or at the size: moving it would leave a gap.
        if (from < 0 || to < 0 || from == size)
            return false;
        to = std::min(to, size - 1);
        if (from == to)
            return true;
        if (!m_database->moveItem(m_record, from, to) || !finishEdit(m_record.size))
            return false;
        followMovedItem(from, to);
    }
    Q_EMIT itemMoved(from, to);
    Q_EMIT itemsMoved();
    return true;
}

// Keeps the last played position on the same entry.
void PlayList::followMovedItem(int from, int to) {
    const int last = getLastSequenceNumber();
    const int now = followed(last, {from, to});
    if (now == last && last != from)
        return;
    const char* const how = last == from ? "toIndex"
                            : now > last ? "lastPlayedSeqNum + 1"
                                         : "lastPlayedSeqNum - 1";
    LOG4CPLUS_TRACE(moduleLog(), "setLastSequenceNumber(" << how << "): " << now);
    setLastSequenceNumber(now);
}

bool PlayList::moveItems(QList<int> indices, int to) {
    LOG4CPLUS_TRACE(moduleLog(), "indicies.size(): " << indices.size());
    if (indices.isEmpty()) {
        LOG4CPLUS_TRACE(moduleLog(), "indicies.size() is 0, returning");
        return true;
    }
    std::sort(indices.begin(), indices.end());
    indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
    QVector<ItemMove> moves;
    {
        QMutexLocker lock(&m_mutex);
        // The positions are judged by the size.
        catchUp();
        if (indices.first() < 0 || indices.last() >= m_record.size || to < 0)
            return false;
        to = std::min(to, m_record.size - 1);
        moves = movesOf(indices, to);
        // One alone is moved by the operation for one.
        if (indices.size() > 1 && !moves.isEmpty()) {
            const int lastPlayed =
                std::accumulate(moves.cbegin(), moves.cend(), m_record.lastPlayedIndex, followed);
            if (!reorder(std::min(indices.first(), to), orderAfterMoving(indices, to), lastPlayed))
                return false;
        }
    }
    if (moves.isEmpty())
        return true;
    if (indices.size() == 1)
        return moveItem(moves.constFirst().from, moves.constFirst().to);
    for (const ItemMove& move : std::as_const(moves))
        Q_EMIT itemMoved(move.from, move.to);
    Q_EMIT itemsMoved();
    return true;
}

bool PlayList::reorder(int first, const QVector<int>& order, int lastPlayed) {
    if (!m_database->reorderItems(m_record, first, order, lastPlayed))
        return false;
    if (!finishEdit(m_record.size))
        return false;
    takeLastPlayed(lastPlayed);
    return true;
}

void PlayList::takeLastPlayed(int lastPlayed) {
    m_positionOwed = m_positionOwed && lastPlayed == m_record.lastPlayedIndex;
    m_record.lastPlayedIndex = lastPlayed;
}

bool PlayList::setOrder(const QList<int>& order) {
    CM_ENTER_ARGS(moduleLog(), "order.size()=" << order.size());
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        if (!isOrder(order))
            return false;
        if (std::is_sorted(order.cbegin(), order.cend()))
            return true;
        const int played = order.indexOf(m_record.lastPlayedIndex);
        if (!reorder(0, order.toVector(), played >= 0 ? played : m_record.lastPlayedIndex))
            return false;
    }
    Q_EMIT itemsReordered(order);
    return true;
}

bool PlayList::clearItems() {
    CM_ENTER(moduleLog());
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        if (m_record.size == 0)
            return true;
        const bool cleared = m_database->clearItems(m_record);
        m_revision = m_database->nextRevision();
        if (!cleared) {
            // The entries may be gone although the clean-up failed: believe the store.
            const int size = m_database->getNextSequenceNumber(m_record);
            m_inDoubt = size < 0;
            if (!m_inDoubt)
                m_record.size = size;
            return false;
        }
        m_record.size = 0;
    }
    Q_EMIT itemsCleared();
    return true;
}
