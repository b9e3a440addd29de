#pragma once

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

// What the model should do, on plain lists: no numbers to keep dense, no store, no rules about who
// follows whom.
struct PlainList {
    int uid = 0;
    QString name;
    bool shuffle = false;
    bool repeatAll = false;
    // A position, as the outside sees it; -1 or past the end when it names no entry.
    int last = -1;
    QStringList entries;

    bool operator==(const PlainList& other) const = default;

    // The entry that was played last, empty when there is none.
    QString played() const { return entries.value(last); }
    // Takes a new order of the same entries or of fewer; the played entry stays the played one.
    void rearrange(const QStringList& newEntries);
};

struct PlainCollection {
    int uid = 0;
    QString name;
    QSet<int> members;

    bool operator==(const PlainCollection& other) const = default;
};

class PlainModel {
public:
    // What a change returned and announced.
    struct Outcome {
        int result = 0;
        QStringList heard;
    };

    // 0: no limit.
    int itemsLimit = 0;
    // The play queue is the first.
    QList<PlainList> lists;
    QList<PlainCollection> collections;

    int itemCount() const;

    Outcome add(PlainList& list, int position, const QStringList& titles) const;
    // Each alone in its place, or all in a run, of which the limit may leave some out.
    Outcome addAt(PlainList& list, const QList<int>& positions, const QStringList& titles,
                  bool allOrNothing) const;
    static Outcome remove(PlainList& list, const QList<int>& indices);
    static Outcome move(PlainList& list, int from, int to);
    // Without what was heard: the single moves may come in any order that leads there.
    static Outcome moveSeveral(PlainList& list, const QList<int>& indices, int to);
    static Outcome setOrder(PlainList& list, const QList<int>& order);
    static Outcome clear(PlainList& list);
    Outcome deleteList(int index);
    void restart();
};

QString toText(const PlainList& list);
QString toText(const PlainCollection& collection);
