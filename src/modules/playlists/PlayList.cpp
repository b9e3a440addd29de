#include "PlayList.h"

#include <algorithm>

#include <QMutexLocker>

#include "Database.h"
#include "ModuleLog.h"

PlayList::PlayList(Database* database, const PlayListRecord& record)
    : m_database(database), m_record(record), m_revision(database->nextRevision()) {}

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

bool PlayList::isCommitted(int size) {
    m_revision = m_database->nextRevision();
    if (!m_database->lastCommitFailed()) {
        m_record.size = size;
        return true;
    }
    readAgain();
    return !m_inDoubt && m_record.size == size;
}

void PlayList::setName(const QString& name) {
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        PlayListRecord changed = m_record;
        changed.name = name;
        if (!writeRecord(changed))
            return;
    }
    tell(&PlayList::nameChanged, name);
}

void PlayList::setShuffle(bool shuffle) {
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        PlayListRecord changed = m_record;
        changed.shuffle = shuffle;
        if (shuffle == m_record.shuffle || !writeRecord(changed))
            return;
    }
    tell(&PlayList::shuffleChanged, shuffle);
}

void PlayList::setRepeatAll(bool repeatAll) {
    {
        QMutexLocker lock(&m_mutex);
        catchUp();
        PlayListRecord changed = m_record;
        changed.repeatAll = repeatAll;
        if (repeatAll == m_record.repeatAll || !writeRecord(changed))
            return;
    }
    tell(&PlayList::repeatAllChanged, repeatAll);
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
        if (!isCommitted(m_record.size + added))
            return Database::Failed;
    }
    tell(&PlayList::itemsAdded, OrvoPlayListAddPosition::toString(position), first, added);
    return first;
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
        if (!isCommitted(m_record.size - removed))
            return Database::Failed;
        lastPlayed = getLastSequenceNumber();
        const int before =
            int(std::lower_bound(sorted.cbegin(), sorted.cend(), lastPlayed) - sorted.cbegin());
        if (before > 0)
            setLastSequenceNumber(lastPlayed - before);
    }
    tell(&PlayList::itemsRemoved, sorted, lastPlayed);
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
        if (!m_database->moveItem(m_record, from, to))
            return false;
        m_revision = m_database->nextRevision();
        if (m_database->lastCommitFailed()) {
            readAgain();
            return false;
        }
        followMovedItem(from, to);
    }
    tell(&PlayList::itemMoved, from, to);
    return true;
}

// Keeps the last played position on the same entry.
void PlayList::followMovedItem(int from, int to) {
    const int last = getLastSequenceNumber();
    if (last >= to && last < from) {
        LOG4CPLUS_TRACE(moduleLog(), "setLastSequenceNumber(lastPlayedSeqNum + 1): " << last + 1);
        setLastSequenceNumber(last + 1);
    } else if (last == from) {
        LOG4CPLUS_TRACE(moduleLog(), "setLastSequenceNumber(toIndex): " << to);
        setLastSequenceNumber(to);
    } else if (last > from && last <= to) {
        LOG4CPLUS_TRACE(moduleLog(), "setLastSequenceNumber(lastPlayedSeqNum - 1): " << last - 1);
        setLastSequenceNumber(last - 1);
    }
}

bool PlayList::moveItems(QList<int> indices, int to) {
    LOG4CPLUS_TRACE(moduleLog(), "indicies.size(): " << indices.size());
    if (indices.isEmpty()) {
        LOG4CPLUS_TRACE(moduleLog(), "indicies.size() is 0, returning");
        return true;
    }
    {
        // The positions are judged by the size.
        QMutexLocker lock(&m_mutex);
        catchUp();
    }
    std::sort(indices.begin(), indices.end());
    indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
    if (indices.first() < 0 || indices.last() >= getSize() || to < 0)
        return false;
    to = std::min(to, getSize() - 1);

    const int firstBehind =
        int(std::upper_bound(indices.cbegin(), indices.cend(), to) - indices.cbegin());
    for (int moved = 0; moved < firstBehind; ++moved) {
        // Each move out of the front lets the rest of the front slide down by one.
        if (!moveItem(indices.at(moved) - moved, to))
            return false;
    }
    int target = firstBehind > 0 ? to + 1 : to;
    for (int i = firstBehind; i < indices.size(); ++i) {
        if (!moveItem(indices.at(i), target++))
            return false;
    }
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
    tell(&PlayList::itemsCleared);
    return true;
}
