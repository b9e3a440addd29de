#pragma once

#include <QList>
#include <QObject>

class PlayListBase;

// A named group of playlists as the rest of the module sees it. Owned by the manager; the playlists
// are not its own.
class CollectionBase : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    virtual int getUid() const = 0;
    virtual QString getName() const = 0;
    virtual bool valid() const = 0;
    virtual QList<PlayListBase*> getPlayLists() const = 0;
    // Deletes the collection in the store; the object stays.
    virtual bool remove() = 0;
    virtual bool addPlayList(PlayListBase* pl) = 0;
    virtual bool removePlayList(PlayListBase* pl) = 0;
    // Drops a member that is gone from the store already. Does nothing when it is no member.
    virtual void forgetPlayList(PlayListBase* pl) = 0;

Q_SIGNALS:
    void playlistAdded();
    void playlistRemoved();
};
