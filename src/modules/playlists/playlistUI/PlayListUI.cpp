#include "PlayListUI.h"

#include "../CollectionBase.h"
#include "../PlayListBase.h"
#include "../PlayListManager.h"
#include "../PlayListRecord.h"
#include "CMConnect.h"
#include "collection/CollectionAddToClNode.h"
#include "collection/CollectionContextNode.h"
#include "collection/CollectionGetItemsNode.h"
#include "OrvoPlayListPaths.h"
#include "playlist/PlayListAddModeNode.h"
#include "playlist/PlayListAddToPlaylistNode.h"
#include "playlist/PlayListContextNode.h"
#include "playlist/PlayListGetItemsNode.h"
#include "playlist/PlayListGetListNode.h"
#include "playlist/PlayListTrackContextNode.h"
#include "PlayListWatcher.h"
#include "playqueue/PlayQueueContextNode.h"
#include "playqueue/PlayQueueGetItemsNode.h"
#include "RootNode.h"

PlayListUI::PlayListUI(QObject* parent, CMNodes* nodes, CMSubscribe* subscribe,
                       PlayListManager* manager)
    : QObject(parent), m_nodes(nodes), m_subscribe(subscribe), m_manager(manager) {
    createFixedNodes();
    watchPlayQueue();
    const QList<PlayListBase*> playLists = m_manager->getAllPlayList();
    for (PlayListBase* pl : playLists)
        watchPlayList(pl);
    const QList<CollectionBase*> collections = m_manager->getAllCollection();
    for (CollectionBase* cl : collections)
        watchCollection(cl);
    cmConnect(m_manager, &PlayListManager::playlistCreated, this, &PlayListUI::on_playlist_create);
    cmConnect(m_manager, &PlayListManager::playlistDeleted, this, &PlayListUI::on_playlist_delete);
    cmConnect(m_manager, &PlayListManager::collectionCreated, this,
              &PlayListUI::on_collection_create);
    cmConnect(m_manager, &PlayListManager::collectionDeleted, this,
              &PlayListUI::on_collection_delete);
}

PlayListUI::~PlayListUI() {
    disconnect(m_manager, nullptr, this, nullptr);
    // Before the views hear that they are to close: a view that reads then finds nothing.
    qDeleteAll(findChildren<BaseNode*>(QString(), Qt::FindDirectChildrenOnly));
    delete m_watchers.take(PlayListRecord::PlayQueueUid);
    const QList<PlayListBase*> playLists = m_manager->getAllPlayList();
    for (const PlayListBase* pl : playLists)
        delete m_watchers.take(pl->getUid());
}

void PlayListUI::createFixedNodes() {
    m_nodeList = {
        RootNode::create(m_nodes, OrvoPlayListsRootPath(), m_manager),
        PlayQueueContextNode::create(m_nodes, OrvoPlayListPqContextPath(), m_manager),
        m_listNode = PlayListGetListNode::create(m_nodes, OrvoPlayListPlGetlistPath(), m_manager),
        PlayListAddToPlaylistNode::create(m_nodes, OrvoPlayListPlAddToPlaylistPath(), m_manager),
        PlayListAddModeNode::create(m_nodes, OrvoPlayListPlSelectAddModePath(), m_manager),
        PlayListContextNode::create(m_nodes, OrvoPlayListPlContextPath(), m_manager),
        PlayListTrackContextNode::create(m_nodes, OrvoPlayListPlTrackContextPath(), m_manager),
        CollectionGetItemsNode::create(m_nodes, OrvoPlayListClGetItemsPath(), m_manager),
        CollectionAddToClNode::create(m_nodes, OrvoPlayListClAddtoCollectionPath(), m_manager),
        CollectionContextNode::create(m_nodes, OrvoPlayListClContextPath(), m_manager),
    };
    for (BaseNode* node : qAsConst(m_nodeList))
        node->setParent(this);
    m_listNode->createPlaylistNodes();
}

void PlayListUI::watchPlayQueue() {
    auto* node = PlayQueueGetItemsNode::create(m_nodes, OrvoPlayListPqGetItemsPath(), m_manager);
    node->setParent(this);
    PlayListBase* queue = m_manager->getPlayQueue();
    m_watchers.insert(queue->getUid(), new PlayListWatcher(this, m_subscribe, queue, node));
}

void PlayListUI::watchPlayList(PlayListBase* pl) {
    const int plid = pl->getUid();
    m_listNode->createPlaylistNode(plid);
    m_watchers.insert(plid,
                      new PlayListWatcher(this, m_subscribe, pl, m_listNode->playlistNode(plid)));
}

void PlayListUI::watchCollection(CollectionBase* cl) {
    cmConnect(cl, &CollectionBase::playlistAdded, this, &PlayListUI::on_collection_changed);
    cmConnect(cl, &CollectionBase::playlistRemoved, this, &PlayListUI::on_collection_changed);
}

void PlayListUI::sendReset(const CMPath& path) {
    m_subscribe->changedStartingWith(path, CMSubscribe::RowsChangeReset(), -1);
}

void PlayListUI::on_playlist_create(const int& plid) {
    if (PlayListBase* pl = m_manager->getPlayListByUid(plid))
        watchPlayList(pl);
    sendReset(OrvoPlayListsRootPath());
    sendReset(OrvoPlayListPlAddToPlaylistPath());
    sendReset(OrvoPlayListPlGetlistPath());
}

void PlayListUI::on_playlist_delete(const int& plid) {
    if (PlayListWatcher* watcher = m_watchers.take(plid))
        watcher->deleteLater();
    m_listNode->deletePlaylistNode(plid);
    // Not the list of playlists: its views follow the root, and are reset by creation only.
    sendReset(OrvoPlayListsRootPath());
    sendReset(OrvoPlayListPlAddToPlaylistPath());
}

void PlayListUI::on_collection_create(int clid) {
    if (CollectionBase* cl = m_manager->getCollectionByUid(clid))
        watchCollection(cl);
    sendReset(OrvoPlayListsRootPath());
    sendReset(OrvoPlayListClAddtoCollectionPath());
}

void PlayListUI::on_collection_delete(int) {
    sendReset(OrvoPlayListsRootPath());
    sendReset(OrvoPlayListClAddtoCollectionPath());
}

void PlayListUI::on_collection_changed() {
    sendReset(OrvoPlayListClGetItemsPath());
}
