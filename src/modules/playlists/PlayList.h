#pragma once

#include <QRecursiveMutex>

#include "PlayListBase.h"
#include "PlayListRecord.h"

class Database;

// A playlist over the store. Its record is the authority for size and last played position, so
// every change goes to the store first, then into the record, and is announced once the lock is
// released. An edit whose commit failed is a failed edit: the store does not say so by its result,
// but the client that sent the edit is told.
class PlayList : public PlayListBase {
    Q_OBJECT
public:
    PlayList(Database* database, const PlayListRecord& record);

    int getUid() const override;
    QString getName() const override;
    bool getShuffle() const override;
    bool getRepeatAll() const override;
    int getLastSequenceNumber() const override;
    int getSize() const override;
    qint64 getRevision() const override;
    qint64 getFirstRevision() const override { return m_firstRevision; }
    bool valid() const override;

    bool setName(const QString& name) override;
    bool setShuffle(bool shuffle) override;
    bool setRepeatAll(bool repeatAll) override;
    void setLastSequenceNumber(int sequenceNumber) override;
    bool updateDatabase() const override;
    bool remove() override;

    QList<OrvoPlayListItem> getItems(int from, int to) override;
    int addItems(OrvoPlayListAddPosition::Enum position,
                 const QList<OrvoPlayListItem>& items) override;
    int addItemsAt(const ItemPlaces& places, const QList<OrvoPlayListItem>& items) override;
    int removeItems(const QList<int>& indices) override;
    bool moveItem(int from, int to) override;
    bool moveItems(QList<int> indices, int to) override;
    bool setOrder(const QList<int>& order) override;
    bool clearItems() override;

    OrvoRoles itemToOrvoRoles(const OrvoPlayListItem& item) const override;
    void visitRoles(int from, int to, const VisitRoles& visit) override;

private:
    // A copy taken under the lock.
    PlayListRecord record() const;
    // Writes a changed copy of the record; the record follows only when the store took it.
    bool writeRecord(const PlayListRecord& changed);
    void followMovedItem(int from, int to);
    // Under the lock. The signals are the caller's.
    bool reorder(int first, const QVector<int>& order, int lastPlayed);
    // What the store has written along with the order.
    void takeLastPlayed(int lastPlayed);
    // Makes up for what the store refused before. Each use of the store begins with it; it does
    // nothing unless something is left to do.
    void catchUp();
    // Reads the record from the store, all but a position that is still to be written.
    void readAgain();
    // After an edit that the store has reported: a new revision, and the record as in the store.
    // False when the commit failed, unless the store shows a size that the edit has changed.
    bool finishEdit(int newSize);

    Database* m_database;
    PlayListRecord m_record;
    const qint64 m_firstRevision;
    qint64 m_revision;
    // The record may differ from the store, which could not be read when it was to be compared.
    bool m_inDoubt = false;
    // The last played position could not be written.
    bool m_positionOwed = false;
    // Guards the record, all but its uid, which never changes, for a host that reads it on another
    // thread than the worker's. Recursive: removing and moving set the last played position while
    // they hold it.
    mutable QRecursiveMutex m_mutex;
};
