#pragma once

#include <deque>

#include <QObject>
#include <QStringList>
#include <QVector>

#include "RowReader.h"

class AsyncApi;

// Adds tracks, and all tracks of folders and lists, to a playlist: look() finds them in the
// device's order, send() adds them, in parts where that keeps the order. Owned by the caller; each
// step ends with its signal, or with finished() and an error.
class AddFolderJob : public QObject {
    Q_OBJECT
public:
    // Fixed: the numbers of the device's OrvoPlayListAddPosition, which are sent.
    enum Mode { Now = 0, Next = 1, Append = 2 };

    struct Source {
        // Either: a path whose kind shows when it is read.
        enum Kind { Track, List, Either };
        QString path;
        Kind kind;
    };
    struct Target {
        QString command; // the path that adds
        int plid;
        QString name;
    };

    AddFolderJob(AsyncApi* api, const QVector<Source>& sources, const Target& target, Mode mode);

    const Target& target() const { return m_target; }
    // What look() has found so far.
    const QStringList& tracks() const { return m_tracks; }
    void look();
    void send() { sendFrom(0); }

Q_SIGNALS:
    void found(int tracks);
    void looked();
    void adding(int done, int total);
    // `error`: empty when all went well; `status` 0 stands for a device that could not be reached.
    void finished(const QString& error, int status);

private:
    struct Item {
        Source source;
        QStringList way; // the lists that led to it: none is entered from inside itself
    };

    void read(const Item& list);
    void take(const Item& list, const RowsAnswer& answer);
    void addTrack(const QString& path);
    void sendFrom(int from);

    AsyncApi* m_api;
    Target m_target;
    Mode m_mode;
    std::deque<Item> m_items;
    QStringList m_tracks;
};
