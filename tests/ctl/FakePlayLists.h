#pragma once

#include <QMap>

#include "CMWorker.h"

// Stands in for the playlists module: the lists and commands that the client uses, in memory, with
// the texts of a refusal its own. Tests read and set its state directly.
class FakePlayLists : public CMNodesWorker {
    Q_OBJECT
public:
    struct List {
        QString name;
        QStringList tracks; // what was added, path by path
        int lastPlayed = -1;
        bool hasEnded = false;
        int shuffle = 0;
        int repeat = 0;
    };
    struct Group {
        QString name;
        QList<int> members;
    };

    FakePlayLists();

    void setDataRequest(const CMSetDataRequest& request) override;
    void getRowsRequest(const CMGetRowsRequest& request) override;

    QMap<int, List> lists; // 0 is the play queue
    QMap<int, Group> groups;
    int limit = 0;       // tracks over all lists, 0 for none
    int played = -1;     // the list that was played last
    QVector<int> upNext; // what comes, by its numbers in that list
    int upNextList = -1;
    QList<int> addSizes; // how many paths each add request brought

private:
    using Command = QString (FakePlayLists::*)(const OrvoHash&, int* value);
    static const QHash<QString, Command>& commands();

    QString create(const OrvoHash& record, int* value);
    QString rename(const OrvoHash& record, int* value);
    QString remove(const OrvoHash& record, int* value);
    QString clear(const OrvoHash& record, int* value);
    QString setShuffle(const OrvoHash& record, int* value);
    QString setRepeat(const OrvoHash& record, int* value);
    QString addItems(const OrvoHash& record, int* value);
    QString removeItems(const OrvoHash& record, int* value);
    QString moveItems(const OrvoHash& record, int* value);
    QString setOrder(const OrvoHash& record, int* value);
    QString play(const OrvoHash& record, int* value);
    QString createGroup(const OrvoHash& record, int* value);
    QString deleteGroup(const OrvoHash& record, int* value);
    QString addMember(const OrvoHash& record, int* value);
    QString removeMember(const OrvoHash& record, int* value);
    List* list(const OrvoHash& record);
    QVector<OrvoRoles> rowsOf(const CMPath& path) const;
    int listAt(const CMPath& path) const;
    int m_nextId = 1;
};
