#include "Collection.h"

#include "Database.h"
#include "ModuleLog.h"
#include "PlayListBase.h"

Collection::Collection(Database* database, const CollectionRecord& record,
                       QList<PlayListBase*> playlists)
    : m_database(database), m_record(record), m_playLists(std::move(playlists)) {}

bool Collection::remove() {
    return m_database->deleteCollection(m_record);
}

bool Collection::addPlayList(PlayListBase* pl) {
    CM_ENTER_ARGS(moduleLog(), "this=" << getUid() << " pl=" << pl->getUid());
    if (!m_database->addToCollection(m_record, pl->getUid())) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to add pl to collection, this=" << getUid() << " pl="
                                                                             << pl->getUid());
        return false;
    }
    m_record.playlists.append(pl->getUid());
    m_playLists.append(pl);
    Q_EMIT playlistAdded();
    return true;
}

bool Collection::removePlayList(PlayListBase* pl) {
    CM_ENTER_ARGS(moduleLog(), "this=" << getUid() << " pl=" << pl->getUid());
    if (!m_database->removeFromCollection(m_record, pl->getUid()))
        return false;
    m_record.playlists.removeAll(pl->getUid());
    m_playLists.removeAll(pl);
    Q_EMIT playlistRemoved();
    return true;
}

void Collection::forgetPlayList(PlayListBase* pl) {
    m_record.playlists.removeAll(pl->getUid());
    if (m_playLists.removeAll(pl) > 0)
        Q_EMIT playlistRemoved();
}
