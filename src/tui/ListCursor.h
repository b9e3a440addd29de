#pragma once

#include <QObject>

class ListStore;

// The place in a list: the active row and the rows in view. Follows its row while
// rows come, go and are read again; when that row is gone, its neighbour. Owned by its place, with
// the store.
class ListCursor : public QObject {
    Q_OBJECT
public:
    explicit ListCursor(ListStore* store);

    // -1 while there is nothing to stand on.
    int active() const { return m_active; }
    int top() const { return m_top; }
    int height() const { return m_height; }
    void setHeight(int rows);

    // To the next row in that direction that can be chosen.
    void move(int by);
    void page(int pages) { move(pages * qMax(1, m_height - 1)); }
    void home();
    void end();
    void jumpTo(int index);
    // The row to stand on may not be loaded yet: it is looked for by its path.
    void expect(int index, const QString& path);

private:
    void onRows();
    void onInserted(int at, int count);
    void onCount();
    void remember();
    void keepPlace();
    int find(const QString& key, int near) const;
    int nearestChoosable(int from, int direction) const;
    void setActive(int index);
    void reveal();
    void want();

    ListStore* m_store;
    int m_active = -1;
    int m_top = 0;
    int m_height = 1;
    // While the list is being read again: what the row is recognised by, and where it was.
    bool m_isLooking = false;
    QString m_key;
};
