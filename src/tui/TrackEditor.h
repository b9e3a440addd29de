#pragma once

#include <optional>

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QVector>

class AsyncApi;
class ListPlace;

// Removes and moves the chosen tracks of a playlist; without a choice, the one at the cursor. The
// device refuses what was meant for another state of the list. Owned by the browser.
class TrackEditor : public QObject {
    Q_OBJECT
public:
    // `paths`: the device's paths by the names of their functions.
    TrackEditor(AsyncApi* api, const QJsonObject& paths) : m_api(api), m_paths(paths) {}

    // The playlist whose tracks are at the path; nothing when these are no playlist's.
    std::optional<int> playlistAt(const QString& path) const;
    // Edits that come while one is under way wait for it and for the rows that it changed.
    void remove(ListPlace* place) { add(place, 0); }
    // So many rows further down, or up when negative. Steps that wait are taken together.
    void move(ListPlace* place, int steps) { add(place, steps); }
    // The rows of the place have come anew.
    void onRows(ListPlace* place);

Q_SIGNALS:
    void done(const QString& text);
    void refused(const QString& text);

private:
    struct Edit {
        int plid;
        QVector<int> indices;
    };

    void add(ListPlace* place, int steps);
    void goOn();
    bool isSettled() const;
    std::optional<Edit> editOf(const ListPlace& place);
    void send(const char* function, const QJsonObject& record, const QString& said);
    QString pathOf(const char* function) const;

    AsyncApi* m_api;
    QJsonObject m_paths;
    QPointer<ListPlace> m_place;
    QVector<int> m_waiting; // steps of moves; 0 removes
    bool m_isBusy = false;
    qint64 m_revisionBefore = -1; // of the list, when the last edit was sent
};
