#pragma once

#include <deque>
#include <optional>

#include <QHash>
#include <QObject>
#include <QTimer>

#include "MusicTree.h"

// Reads the music folder in the background of the event loop: folders first, so that there is
// something to browse soon, then tags. Works in slices of a few milliseconds and only while there
// is something to do. Owned by the worker, on its thread; cannot fail.
class Scanner : public QObject {
    Q_OBJECT
public:
    explicit Scanner(MusicTree* tree, QObject* parent = nullptr);

    // Reads everything again; tracks that did not change keep their tags.
    void scanAll();
    // Reads one folder again, and what is new in it.
    void refresh(const FolderPtr& folder);
    bool isScanning() const { return m_timer.isActive(); }

Q_SIGNALS:
    // A slice of work is done, or there is none left.
    void progressed();
    void finished();

private:
    struct FolderJob {
        std::weak_ptr<Folder> folder;
        bool again;     // although it was read before
        bool recursive; // and all folders below
    };
    struct TagJob {
        std::weak_ptr<Folder> folder;
        std::vector<std::weak_ptr<Track>> tracks;
        std::size_t next;
    };

    void slice();
    void readFolder(const QDeadlineTimer& deadline);
    void readTag();
    void wantTags(const FolderPtr& folder);
    void start();

    MusicTree* m_tree;
    QTimer m_timer;
    std::deque<FolderJob> m_folders;
    std::deque<TagJob> m_tags;
    // The listing of the first of m_folders while it is being read.
    std::optional<FolderListing> m_listing;
};
