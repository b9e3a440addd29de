#include "PlayListWatcher.h"

#include <utility>

#include "../ModuleLog.h"
#include "../PlayListBase.h"
#include "../PlayListRecord.h"
#include "BaseNode.h"
#include "CMConnect.h"
#include "OrvoPlayListPaths.h"

PlayListWatcher::PlayListWatcher(QObject* parent, CMSubscribe* subscribe, PlayListBase* playlist,
                                 BaseNode* node)
    : QObject(parent),
      m_subscribe(subscribe),
      m_playlist(playlist),
      m_plid(playlist->getUid()),
      m_node(node) {
    cmConnect(m_playlist, &PlayListBase::itemsAdded, this, &PlayListWatcher::on_items_added);
    cmConnect(m_playlist, &PlayListBase::itemsInserted, this, &PlayListWatcher::on_items_inserted);
    cmConnect(m_playlist, &PlayListBase::itemsRemoved, this, &PlayListWatcher::on_items_removed);
    cmConnect(m_playlist, &PlayListBase::itemMoved, this, &PlayListWatcher::on_items_moved);
    cmConnect(m_playlist, &PlayListBase::itemsReordered, this,
              &PlayListWatcher::on_items_reordered);
    cmConnect(m_playlist, &PlayListBase::itemsCleared, this, &PlayListWatcher::on_items_cleared);
    cmConnect(m_playlist, &PlayListBase::shuffleChanged, this,
              &PlayListWatcher::on_playlist_changed);
    cmConnect(m_playlist, &PlayListBase::repeatAllChanged, this,
              &PlayListWatcher::on_playlist_changed);
    cmConnect(m_playlist, &PlayListBase::nameChanged, this,
              &PlayListWatcher::on_playlistName_changed);
}

PlayListWatcher::~PlayListWatcher() {
    // Built the same way for every id: the play queue's own path stays open for 0.
    m_subscribe->rowsChanged(OrvoPlayListPlGetItemsPath() + BaseNode::toStr(m_plid),
                             CMSubscribe::RowsChangeClose(), -1);
    if (m_node)
        m_node->deleteLater();
}

void PlayListWatcher::restartPlayListView(int plid) {
    CMSubscribe::Revision revision;
    if (plid == m_plid)
        revision = m_playlist->getRevision();
    m_subscribe->changedStartingWith(OrvoPlayListItemsPathOf(plid), CMSubscribe::RowsChangeReset(),
                                     -1, revision);
}

void PlayListWatcher::on_items_added(const QString&, int firstSeqNum, int count) {
    LOG4CPLUS_TRACE(moduleLog(), "firstSeqIndex: " << firstSeqNum << " count: " << count);
    QStringList itemsChanged;
    itemsChanged.reserve(count);
    for (int s = firstSeqNum; s < firstSeqNum + count; ++s)
        itemsChanged.append(CMSubscribe::RowInserted(s));
    LOG4CPLUS_TRACE(moduleLog(), "itemsChanged: " << joined(itemsChanged));
    m_subscribe->rowsChanged(OrvoPlayListItemsPathOf(m_plid), itemsChanged, 0, -1,
                             m_playlist->getRevision());
}

void PlayListWatcher::on_items_inserted(const QList<int>& positions) {
    QStringList itemsChanged;
    itemsChanged.reserve(positions.size());
    for (int position : positions)
        itemsChanged.append(CMSubscribe::RowInserted(position));
    m_subscribe->rowsChanged(OrvoPlayListItemsPathOf(m_plid), itemsChanged, 0, -1,
                             m_playlist->getRevision());
}

void PlayListWatcher::on_items_removed(const QList<int>&, int) {
    restartPlayListView(m_plid);
}

void PlayListWatcher::on_items_moved(int, int) {
    // Of entries that moved together each is signalled by itself, when all of them have moved.
    const qint64 revision = m_playlist->getRevision();
    if (std::exchange(m_movedRevision, revision) == revision)
        return;
    on_items_reordered();
}

void PlayListWatcher::on_items_reordered() {
    restartPlayListView(m_plid);
    m_subscribe->changedStartingWith(OrvoPlayListPlTrackContextPath(),
                                     CMSubscribe::RowsChangeReset(), -1);
}

void PlayListWatcher::on_items_cleared() {
    restartPlayListView(m_plid);
}

void PlayListWatcher::on_playlist_changed(bool) {
    const CMPath menu = m_plid == PlayListRecord::PlayQueueUid ? OrvoPlayListPqContextPath()
                                                               : OrvoPlayListPlContextPath();
    m_subscribe->changedStartingWith(menu, CMSubscribe::RowsChangeReset(), -1);
}

void PlayListWatcher::on_playlistName_changed(const QString&) {
    m_subscribe->changedStartingWith(OrvoPlayListsRootPath(), CMSubscribe::RowsChangeReset(), -1);
    m_subscribe->changedStartingWith(OrvoPlayListPlContextPath(), CMSubscribe::RowsChangeReset(),
                                     -1);
}
