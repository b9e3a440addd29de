#pragma once

#include <map>

#include <QObject>
#include <QSet>
#include <QStringList>

#include "BrowseRow.h"
#include "RowReader.h"

// A change that the device reports.
struct ListChange {
    QString path;
    bool below = false; // concerns every list at or below the path
    QStringList changes;
    qint64 revision = -1; // that a list of tracks has then
};

// The rows of one list, however long: read by pages as they are wanted, kept while they are near,
// brought up to date by the device's events. A row that may be out of date stays until its
// successor is there. Owned by its place; on the thread of the event loop. What cannot be read is
// reported by failed() and asked for again with the next want(), event or pump().
class ListStore : public QObject {
    Q_OBJECT
public:
    static constexpr int PageSize = 100;

    ListStore(const QString& path, RowReader* reader);

    const QString& path() const { return m_path; }
    RowReader* reader() const { return m_reader; }
    bool isLoaded() const { return m_count >= 0; }
    // Rows of the whole list, -1 before the first answer.
    int count() const { return m_count; }
    QString title() const { return m_title; }
    const QJsonObject& roles() const { return m_roles; }
    // Of a list of tracks, -1 for others.
    qint64 revision() const { return m_revision; }
    bool isClosed() const { return m_closed; }
    // An empty row when it is still on its way.
    const BrowseRow& row(int index) const;
    bool isFresh(int index) const;
    // Those rows with one of the paths that are here, as they are now.
    QVector<int> indicesOf(const QSet<QString>& paths) const;
    // Everything is here, as it is now.
    bool isCurrent() const;
    int kept() const { return int(m_rows.size()); }
    bool isReading() const { return !m_requests.empty(); }

    // Rows from..to (exclusive) are in view, or about to be.
    void want(int from, int to);
    void pump();
    void apply(const ListChange& change);
    // Everything is to be read again.
    void invalidate();
    void close();
    // A look at the list's title and size alone, when nothing else is under way.
    void lookAtHead();

Q_SIGNALS:
    void rowsChanged();
    void inserted(int at, int count);
    void countChanged();
    void titleChanged();
    // Sent before anything is replaced.
    void stale();
    void closed();
    void failed(const QString& message, int status);

private:
    struct Slot {
        BrowseRow row;
        int generation = 0; // 0: out of date
    };
    struct Head {
        int count;
        QString title;
    };
    struct Run {
        int at;
        int count;
    };

    static QVector<Run> insertedRuns(const QStringList& changes);
    void insert(const Run& run);
    QVector<int> missingPages() const;
    bool isPageFresh(int page) const;
    void fetch(int page);
    void take(int from, const RowsAnswer& answer);
    void takeHead(const RowsAnswer& answer);
    void tellHead(const Head& before);
    Head head() const { return {m_count, m_title}; }
    void forgetFarRows();
    void cancelFrom(int index);

    QString m_path;
    RowReader* m_reader;
    QString m_title;
    QJsonObject m_roles;
    int m_count = -1;
    qint64 m_revision = -1;
    bool m_closed = false;
    // Only what is kept: a list may be as long as it likes.
    std::map<int, Slot> m_rows;
    int m_generation = 1;
    int m_emptyGeneration = 0; // the generation in which the list was seen empty
    int m_wantedFrom = 0;
    int m_wantedTo = 1;
    // Page → ticket of the request under way; an answer to another ticket is out of date.
    std::map<int, int> m_requests;
    int m_lastTicket = 0;
};
