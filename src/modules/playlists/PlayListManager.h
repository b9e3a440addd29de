#pragma once

#include <memory>

#include <QHash>
#include <QList>
#include <QObject>

#include "CollectionBase.h"
#include "OrvoPlayListItem.h"
#include "PlayListBase.h"

class Database;
class TextBudget;

// The registry of all playlists and collections, which it owns: loads them at start, creates and
// deletes them in store and memory alike, finds them by uid and announces what came and went. Made
// once by the worker, worker's thread only. Failures are logged and come back as null or false,
// with nothing changed in the lists.
class PlayListManager : public QObject {
    Q_OBJECT
public:
    explicit PlayListManager(Database* database);
    ~PlayListManager() override;

    // Every playlist but the play queue: by name as loaded, then in the order of creation.
    QList<PlayListBase*> getAllPlayList() const { return m_playLists; }
    PlayListBase* getPlayQueue() const { return m_playQueue.get(); }
    // Uid 0 is the play queue; null when there is no such playlist. Constant time.
    PlayListBase* getPlayListByUid(int uid) const;
    // An empty item when there is none.
    OrvoPlayListItem getPlayListItemByUid(int uid) const;
    // The same for many uids at the cost of one pass over the store at most; one element per uid,
    // in their order.
    QList<OrvoPlayListItem> getPlayListItemsByUids(const QList<int>& uids,
                                                   TextBudget* budget = nullptr) const;

    // Whether the item that has this uid now, if any, is the one that had it when a playlist had
    // that revision. Uids of deleted items are given again.
    bool isItemOf(qint64 revision, int uid) const;

    // Counts of the store; the first includes the play queue.
    int getPlayListsCount() const;
    int getPlaylistsItemsCount() const;
    int getCollectionsCount() const;

    QList<CollectionBase*> getAllCollection() const { return m_collections; }
    CollectionBase* getCollectionByUid(int uid) const;
    // The collections from one bound to the other, both included, in either order and limited to
    // what there is. Not for an empty list: that ends the process.
    QList<CollectionBase*> getCollections(int from, int to) const;

    PlayListBase* createPlayList(const QString& name);
    // The object goes with the next turn of the event loop, after the slots of playlistDeleted()
    // ran.
    bool deletePlayList(PlayListBase* pl);
    bool deletePlayList(int uid);
    CollectionBase* createCollection(const QString& name);
    bool deleteCollection(CollectionBase* cl);
    bool deleteCollection(int uid);

Q_SIGNALS:
    void playlistCreated(int plid);
    void playlistDeleted(int plid);
    void collectionCreated(int clid);
    void collectionDeleted(int clid);

private:
    void initPlayLists();
    void initCollections();
    void append(PlayListBase* pl);

    Database* m_database;
    std::unique_ptr<PlayListBase> m_playQueue;
    QList<PlayListBase*> m_playLists;
    QList<CollectionBase*> m_collections;
    QHash<int, PlayListBase*> m_playListsByUid;
};
