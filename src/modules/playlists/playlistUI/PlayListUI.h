#pragma once

#include <QHash>
#include <QList>
#include <QObject>

#include "CMNodes.h"
#include "CMSubscribe.h"

class BaseNode;
class CollectionBase;
class PlayListBase;
class PlayListGetListNode;
class PlayListManager;
class PlayListWatcher;

// Publishes the browse tree and keeps it current: the fixed nodes, one items node and watcher per
// playlist, and the notifications of what came and went. Made once by the worker, goes before the
// manager, owns its nodes and watchers.
class PlayListUI : public QObject {
    Q_OBJECT
public:
    PlayListUI(QObject* parent, CMNodes* nodes, CMSubscribe* subscribe, PlayListManager* manager);
    // Closes the views of every list.
    ~PlayListUI() override;

private Q_SLOTS:
    void on_playlist_create(const int& plid);
    void on_playlist_delete(const int& plid);
    void on_collection_create(int clid);
    void on_collection_delete(int clid);
    void on_collection_changed();

private:
    void createFixedNodes();
    void watchPlayQueue();
    void watchPlayList(PlayListBase* pl);
    void watchCollection(CollectionBase* cl);
    void sendReset(const CMPath& path);

    CMNodes* m_nodes;
    CMSubscribe* m_subscribe;
    PlayListManager* m_manager;
    QList<BaseNode*> m_nodeList;
    PlayListGetListNode* m_listNode = nullptr;
    QHash<int, PlayListWatcher*> m_watchers;
};
