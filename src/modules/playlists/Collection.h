#pragma once

#include "CollectionBase.h"
#include "CollectionRecord.h"

class Database;

// A collection over the store. Members change only after the store has changed.
class Collection : public CollectionBase {
    Q_OBJECT
public:
    Collection(Database* database, const CollectionRecord& record, QList<PlayListBase*> playlists);

    int getUid() const override { return m_record.uid; }
    QString getName() const override { return m_record.name; }
    bool valid() const override { return m_record.uid != CollectionRecord::NoUid; }
    QList<PlayListBase*> getPlayLists() const override { return m_playLists; }
    bool remove() override;
    bool addPlayList(PlayListBase* pl) override;
    bool removePlayList(PlayListBase* pl) override;
    void forgetPlayList(PlayListBase* pl) override;

private:
    Database* m_database;
    CollectionRecord m_record;
    QList<PlayListBase*> m_playLists;
};
