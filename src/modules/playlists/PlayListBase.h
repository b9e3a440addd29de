#pragma once

#include <functional>

#include <QList>
#include <QObject>

#include "ItemPlaces.h"
#include "OrvoPlayListEnums.h"
#include "OrvoPlayListItem.h"
#include "OrvoRoles.h"

// A playlist as the rest of the module sees it. Owned by the manager. Positions are sequence
// numbers: 0 to size - 1, without gaps. Nothing throws; failures are false or a StoreResult.
class PlayListBase : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    virtual int getUid() const = 0;
    virtual QString getName() const = 0;
    virtual bool getShuffle() const = 0;
    virtual bool getRepeatAll() const = 0;
    // Sequence number of the last played item, -1 when nothing has been played. May lie at or past
    // the size after the played item at the end was removed.
    virtual int getLastSequenceNumber() const = 0;
    virtual int getSize() const = 0;
    // Which state of the entries this is: a number that rises with each change of them. No other
    // list has it, not even a later one with the same uid, nor the same list after a restart.
    virtual qint64 getRevision() const = 0;
    // The one that it had when it was made, or loaded at the start: it tells the list from every
    // other that has had its uid.
    virtual qint64 getFirstRevision() const = 0;
    virtual bool valid() const = 0;

    // Each is false when the change could not be stored: nothing has changed then.
    virtual bool setName(const QString& name) = 0;
    virtual bool setShuffle(bool shuffle) = 0;
    virtual bool setRepeatAll(bool repeatAll) = 0;
    // Counts at once, stored or not: it says what plays.
    virtual void setLastSequenceNumber(int sequenceNumber) = 0;
    virtual bool updateDatabase() const = 0;
    // Deletes the playlist in the store; the object stays.
    virtual bool remove() = 0;

    // The entries from `from` to `to`, both included.
    virtual QList<OrvoPlayListItem> getItems(int from, int to) = 0;
    // Returns the sequence number of the first item added, Failed, or LimitReached when the store
    // is full. How many were added (the limit may cut the list short) is what getSize() grew by.
    virtual int addItems(OrvoPlayListAddPosition::Enum position,
                         const QList<OrvoPlayListItem>& items) = 0;
    // The same at these places; Failed also where they do not fit.
    virtual int addItemsAt(const ItemPlaces& places, const QList<OrvoPlayListItem>& items) = 0;
    // Returns how many entries were removed, Failed when one of them does not exist (then none is
    // removed).
    virtual int removeItems(const QList<int>& indices) = 0;
    // Moves one entry; those between shift by one. 0..9, move 2 to 5: 0,1,3,4,5,2,6,…; 5 to 2:
    // 0,1,5,2,3,4,6,…
    virtual bool moveItem(int from, int to) = 0;
    // Moves several entries, given by their positions before the call. They end up together in
    // their old order, the first of those from behind, or the last of those from before, at `to`:
    // 0..9, [1,3] to 5: 0,2,4,5,1,3,6,…; [8,6] to 2: 0,1,6,8,2,…
    // All of them move or none. Then itemMoved comes for each, as if they had moved one after the
    // other.
    virtual bool moveItems(QList<int> indices, int to) = 0;
    // Gives all entries a new order: order[i] is the present position of the entry that comes to
    // stand at i. a b c d, order 3 0 1 2: d a b c. False, and nothing changed, unless it names
    // every position once.
    virtual bool setOrder(const QList<int>& order) = 0;
    bool isOrder(const QList<int>& order) const;
    virtual bool clearItems() = 0;

    // The roles of one item, as user interfaces and the player get them. The value is the item's
    // sequence number.
    virtual OrvoRoles itemToOrvoRoles(const OrvoPlayListItem& item) const = 0;
    // Calls visit(roles, id, sequenceNumber) for each entry from `from` to `to`, both included,
    // with what itemToOrvoRoles() makes of it. A role without a value may stand there as a null
    // one. The visitor may change the roles; they are made anew for the next entry. It returns
    // whether it wants the next entry.
    using VisitRoles =
        std::function<bool(QVariantHash& roles, const QString& id, int sequenceNumber)>;
    virtual void visitRoles(int from, int to, const VisitRoles& visit) = 0;

    // Whether playback came to its end, with nothing played from it since: then one begins anew.
    // Forgotten at a restart.
    bool hasEnded() const { return m_hasEnded; }
    void setEnded(bool ended) { m_hasEnded = ended; }

Q_SIGNALS:
    void itemsAdded(const QString& positionEnum, int firstSeqNum, int count);
    void itemsRemoved(const QList<int>& indices, int lastSeqNumBeforeRemove);
    void itemMoved(int from, int to);
    void itemsCleared();
    void shuffleChanged(bool newValue);
    void repeatAllChanged(bool newValue);
    void nameChanged(const QString& name);
    // As setOrder() was given it. Not sent for moved entries.
    void itemsReordered(const QList<int>& order);
    // In place of itemsAdded where the items were given places: those, ascending.
    void itemsInserted(const QList<int>& positions);
    // After the last itemMoved of a call.
    void itemsMoved();

private:
    bool m_hasEnded = false;
};
