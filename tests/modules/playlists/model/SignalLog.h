#pragma once

#include <QObject>
#include <QStringList>

class CollectionBase;
class PlayListBase;
class PlayListManager;

// Every signal of the watched objects as a line "itemsAdded append 0 2", in the order in which they
// came. All signals that an object has are watched, so a line that is missing is a signal that did
// not come.
class SignalLog : public QObject {
public:
    // `origin` stands before each line, where several objects are watched.
    void watch(PlayListBase* pl, const QString& origin = {});
    void watch(CollectionBase* cl, const QString& origin = {});
    void watch(PlayListManager* manager, const QString& origin = {});

    // What came since the last call.
    QStringList take();

private:
    void add(const QString& origin, const QStringList& words);

    QStringList m_lines;
};
