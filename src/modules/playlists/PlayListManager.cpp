#include "PlayListManager.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "Collection.h"
#include "Database.h"
#include "ModuleLog.h"
#include "PlayList.h"

PlayListManager::PlayListManager(Database* database) : m_database(database) {
    initPlayLists();
    initCollections();
}

PlayListManager::~PlayListManager() {
    qDeleteAll(m_collections);
    qDeleteAll(m_playLists);
}

void PlayListManager::append(PlayListBase* pl) {
    m_playLists.append(pl);
    m_playListsByUid.insert(pl->getUid(), pl);
}

void PlayListManager::initPlayLists() {
    CM_ENTER(moduleLog());
    // What is not read here is missing until the next start, so a read that failed is made once
    // more, here and below.
    PlayListRecord queue = m_database->getPlayQueue();
    if (queue.uid == PlayListRecord::NoUid)
        queue = m_database->getPlayQueue();
    m_playQueue = std::make_unique<PlayList>(m_database, queue);
    // The play queue is of one session: only user playlists keep their items.
    m_playQueue->clearItems();
    QList<PlayListRecord> records = m_database->getPlayLists();
    if (records.size() + 1 != m_database->countPlaylists())
        records = m_database->getPlayLists();
    // The sizes of all lists were looked up in an index that is not read as a whole again
    // soon. Its memory goes before the playlists are made, so that they can have it.
    m_database->releaseReadPages();
    m_playLists.reserve(records.size());
    m_playListsByUid.reserve(records.size());
    for (const PlayListRecord& record : std::as_const(records))
        append(new PlayList(m_database, record));
}

void PlayListManager::initCollections() {
    CM_ENTER(moduleLog());
    QList<CollectionRecord> records = m_database->getCollections();
    if (records.size() != m_database->countCollections())
        records = m_database->getCollections();
    for (const CollectionRecord& record : std::as_const(records)) {
        QList<PlayListBase*> members;
        for (int uid : record.playlists) {
            if (PlayListBase* pl = getPlayListByUid(uid))
                members.append(pl);
            else
                LOG4CPLUS_ERROR(moduleLog(), "Unknown playlist in collection");
        }
        m_collections.append(new Collection(m_database, record, members));
    }
}

PlayListBase* PlayListManager::getPlayListByUid(int uid) const {
    return uid == PlayListRecord::PlayQueueUid ? m_playQueue.get() : m_playListsByUid.value(uid);
}

OrvoPlayListItem PlayListManager::getPlayListItemByUid(int uid) const {
    return m_database->getItemByUid(uid);
}

QList<OrvoPlayListItem> PlayListManager::getPlayListItemsByUids(const QList<int>& uids,
                                                                TextBudget* budget) const {
    QList<PlayListRecord> records;
    records.reserve(m_playLists.size() + 1);
    const auto appendRecord = [&records](const PlayListBase* pl) {
        PlayListRecord record;
        record.uid = pl->getUid();
        record.size = pl->getSize();
        records.append(record);
    };
    appendRecord(m_playQueue.get());
    std::for_each(m_playLists.cbegin(), m_playLists.cend(), appendRecord);
    return m_database->getItemsByUids(records, uids, budget);
}

bool PlayListManager::isItemOf(qint64 revision, int uid) const {
    return m_database->isItemOf(revision, uid);
}

int PlayListManager::getPlayListsCount() const {
    return m_database->countPlaylists();
}

int PlayListManager::getPlaylistsItemsCount() const {
    return m_database->countPlaylistsItems();
}

int PlayListManager::getCollectionsCount() const {
    return m_database->countCollections();
}

CollectionBase* PlayListManager::getCollectionByUid(int uid) const {
    const auto found =
        std::find_if(m_collections.cbegin(), m_collections.cend(),
                     [uid](const CollectionBase* cl) { return cl->getUid() == uid; });
    return found == m_collections.cend() ? nullptr : *found;
}

QList<CollectionBase*> PlayListManager::getCollections(int from, int to) const {
    CM_ASSERT(!m_collections.isEmpty(), "index out of range");
    const int last = m_collections.size() - 1;
    from = std::clamp(from, 0, last);
    to = std::clamp(to, 0, last);
    return m_collections.mid(std::min(from, to), std::abs(to - from) + 1);
}

PlayListBase* PlayListManager::createPlayList(const QString& name) {
    CM_ENTER_ARGS(moduleLog(), "name=" << loggedText(name));
    auto* pl = new PlayList(m_database, m_database->createPlayList(name));
    if (!pl->valid()) {
        LOG4CPLUS_ERROR(moduleLog(),
                        "Unable to create PlayList " << loggedText(name) << " in database");
        delete pl;
        return nullptr;
    }
    append(pl);
    Q_EMIT playlistCreated(pl->getUid());
    return pl;
}

bool PlayListManager::deletePlayList(PlayListBase* pl) {
    const int uid = pl->getUid();
    CM_ENTER_ARGS(moduleLog(), "pl->uid=" << uid);
    // The store refuses to delete the play queue; its memberships must outlive the attempt.
    if (uid != PlayListRecord::PlayQueueUid) {
        // Copies here and below: a slot that hears of a membership may create or delete a
        // collection.
        const QList<CollectionBase*> before = m_collections;
        for (CollectionBase* cl : before) {
            if (cl->getPlayLists().contains(pl) && !cl->removePlayList(pl))
                LOG4CPLUS_ERROR(moduleLog(), "Unable to remove playlist ("
                                                 << uid << ") from collection (" << cl->getUid()
                                                 << ")");
        }
    }
    if (!pl->remove()) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to delete PlayList uid=" << uid << " from database");
        return false;
    }
    // The cascade took every membership: collections whose removal failed above let go now.
    const QList<CollectionBase*> after = m_collections;
    for (CollectionBase* cl : after)
        cl->forgetPlayList(pl);
    LOG4CPLUS_INFO(moduleLog(), "Deleted PlayList uid=" << uid);
    m_playLists.removeOne(pl);
    m_playListsByUid.remove(uid);
    Q_EMIT playlistDeleted(uid);
    pl->deleteLater();
    return true;
}

bool PlayListManager::deletePlayList(int uid) {
    PlayListBase* pl = getPlayListByUid(uid);
    if (!pl) {
        LOG4CPLUS_ERROR(moduleLog(), "Can't delete non-existant PlayList uid=" << uid);
        return false;
    }
    return deletePlayList(pl);
}

CollectionBase* PlayListManager::createCollection(const QString& name) {
    CM_ENTER_ARGS(moduleLog(), "name=" << loggedText(name));
    auto* cl = new Collection(m_database, m_database->createCollection(name), {});
    if (!cl->valid()) {
        LOG4CPLUS_ERROR(moduleLog(),
                        "Unable to create collection " << loggedText(name) << " in database");
        delete cl;
        return nullptr;
    }
    m_collections.append(cl);
    Q_EMIT collectionCreated(cl->getUid());
    return cl;
}

bool PlayListManager::deleteCollection(CollectionBase* cl) {
    const int uid = cl->getUid();
    CM_ENTER_ARGS(moduleLog(), "col->uid=" << uid);
    if (!cl->remove()) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to remove collection uid=" << uid << " from database");
        return false;
    }
    LOG4CPLUS_INFO(moduleLog(), "Deleted collection uid=" << uid);
    m_collections.removeOne(cl);
    Q_EMIT collectionDeleted(uid);
    cl->deleteLater();
    return true;
}

bool PlayListManager::deleteCollection(int uid) {
    CollectionBase* cl = getCollectionByUid(uid);
    if (!cl) {
        LOG4CPLUS_ERROR(moduleLog(), "Can't delete non-existant collection uid=" << uid);
        return false;
    }
    return deleteCollection(cl);
}
