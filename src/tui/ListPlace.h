#pragma once

#include <memory>

#include <QHash>
#include <QObject>
#include <QRect>

#include "ListCursor.h"
#include "ListFinder.h"
#include "ListStore.h"

// One list that was opened: its rows, where they are in it, the row that led there.
// Owned by the browser, in its stack of places or in its menu.
class ListPlace : public QObject {
    Q_OBJECT
public:
    // `name`: what the place is called until the device says it.
    ListPlace(const QString& path, const BrowseRow& row, RowReader* reader,
              const QString& name = {});

    const QString& path() const { return m_store.path(); }
    const BrowseRow& row() const { return m_row; }
    ListStore& store() { return m_store; }
    const ListStore& store() const { return m_store; }
    ListCursor& cursor() { return m_cursor; }
    const ListCursor& cursor() const { return m_cursor; }
    ListFinder& finder() { return m_finder; }
    const ListFinder& finder() const { return m_finder; }
    // The row at the cursor.
    const BrowseRow& activeRow() const { return m_store.row(m_cursor.active()); }

    // Rows that were chosen one by one, known by their paths.
    void toggleChosen(const BrowseRow& row);
    bool isChosen(const BrowseRow& row) const { return m_chosen.contains(row.path()); }
    int chosenCount() const { return m_chosen.size(); }
    void chooseNothing() { m_chosen.clear(); }
    // In the order of the list, those that are far away behind the others.
    QVector<BrowseRow> chosenRows() const;
    // Where the chosen rows are now, as far as that is known; the row at the cursor when none is
    // chosen.
    QVector<int> chosenIndices() const;
    // What is concerned is being read again.
    bool isSettling() const;

    // Where on the screen the list was drawn last, and the row that stands at a place of it; -1
    // when none does.
    void setArea(const QRect& area) { m_area = area; }
    int indexAt(const QPoint& point) const;

    // As its row calls it where the published title says more: "Playlist - Party" is "Party".
    QString title() const;
    // "17 tracks", "3 items", "empty".
    QString amount() const;
    // The play logic that plays the tracks of this list; empty when none does.
    QString playLogicPath() const;
    // What to hand over to the player together with a track.
    QJsonObject container() const;
    // The row that led here may have changed; false when its list no longer has it.
    bool followRow(const ListStore& parent);

Q_SIGNALS:
    void changed();

private:
    BrowseRow m_row;
    QString m_name;
    QString m_lead; // what the published title begins with
    ListStore m_store;
    ListCursor m_cursor;
    ListFinder m_finder;
    QHash<QString, BrowseRow> m_chosen; // by their paths
    QRect m_area;
};
