#pragma once

#include <deque>

#include <QObject>
#include <QStringList>

#include "BrowseRow.h"

class AsyncApi;

// Adds tracks, and all tracks of folders, to a playlist: looks for them first, in the device's
// order, then sends them, in parts where that keeps the order. Owned by the browser; ends with
// finished() in any case.
class AddFolderJob : public QObject {
    Q_OBJECT
public:
    enum Mode { Now = 0, Next = 1, Append = 2 };

    struct Target {
        QString command; // the path that adds
        int plid;
        QString name;
    };

    AddFolderJob(AsyncApi* calls, const BrowseRow& what, const Target& target, Mode mode);

    void start() { look(); }

Q_SIGNALS:
    void progress(const QString& text);
    // `error`: the device's words, empty when all went well.
    void finished(const QString& text, const QString& error);

private:
    struct Item {
        BrowseRow row;
        int from; // rows of it that were looked at already
        int depth;
    };

    void look();
    void readOn(const Item& folder);
    void send(int from);

    AsyncApi* m_calls;
    Target m_target;
    Mode m_mode;
    std::deque<Item> m_items;
    QStringList m_tracks;
};
