#pragma once

#include <QObject>
#include <QStringList>
#include <QVector>

class BrowseRow;
class ListStore;

// Finding in a list: the whole list is searched, also what was never in view, in parts that are not
// kept. Nothing is filtered away, so that the place of a match in its list stays visible. Owned by
// the list's place. A list that cannot be read has no matches.
class ListFinder : public QObject {
    Q_OBJECT
public:
    explicit ListFinder(ListStore* store);

    // Searches from the row `from` on. An empty text finds nothing.
    void search(const QString& text, int from);
    // To the next match, or the one before; from the last one on to the first.
    void step(int by);
    void stop();

    bool isSearching() const { return m_isSearching; }
    // The row that is found now, -1 when none is.
    int match() const { return m_matches.value(m_at, -1); }
    int place() const { return m_at + 1; }
    int matches() const { return m_matches.size(); }

    // Letters without accents and case.
    static QString searchText(const QString& text);

Q_SIGNALS:
    void changed();

private:
    void forget();
    void begin();
    void readOn();
    void collect();
    static QString textOf(const BrowseRow& row);

    ListStore* m_store;
    QString m_wanted;
    int m_from = 0;
    // What is searched of each row, read once per state of the list.
    QStringList m_texts;
    bool m_isComplete = false;
    bool m_isSearching = false;
    int m_run = 0; // answers of an earlier one are out of date
    QVector<int> m_matches;
    int m_at = -1;
};
