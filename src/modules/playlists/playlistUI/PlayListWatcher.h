#pragma once

#include <QObject>
#include <QPointer>

#include "CMSubscribe.h"

class BaseNode;
class PlayListBase;

// Turns one playlist's signals into row-change events for user interfaces. Owned by
// PlayListUI. When it goes, it tells the views of its list to close and schedules the node's end.
class PlayListWatcher : public QObject {
    Q_OBJECT
public:
    PlayListWatcher(QObject* parent, CMSubscribe* subscribe, PlayListBase* playlist,
                    BaseNode* node);
    ~PlayListWatcher() override;

    void restartPlayListView(int plid);

private Q_SLOTS:
    void on_items_added(const QString& position, int firstSeqNum, int count);
    void on_items_inserted(const QList<int>& positions);
    void on_items_removed(const QList<int>& items, int seqNumber);
    void on_items_moved(int from, int to);
    void on_items_reordered();
    void on_items_cleared();
    void on_playlist_changed(bool newValue);
    void on_playlistName_changed(const QString& name);

private:
    CMSubscribe* m_subscribe;
    PlayListBase* m_playlist;
    int m_plid;
    QPointer<BaseNode> m_node;
    // The last one that moved entries have led to.
    qint64 m_movedRevision = 0;
};
