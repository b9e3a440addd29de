#pragma once

#include <deque>
#include <optional>

#include <QObject>
#include <QTimer>

#include "MusicTree.h"
#include "TagLoader.h"

// Reads the folders of the music folder in the background of the event loop, in slices of a few
// milliseconds and only while there is something to do. Their tracks' tags are the loader's, and
// the scan is done when it is. Owned by the worker, on its thread; cannot fail.
class Scanner : public QObject {
    Q_OBJECT
public:
    Scanner(MusicTree* tree, TagLoader* loader, QObject* parent = nullptr);

    // Reads everything again; tracks that did not change keep their tags.
    void scanAll();
    // Reads one folder again, and what is new in it.
    void refresh(const FolderPtr& folder);
    bool isScanning() const { return m_timer.isActive() || m_loader->isBusy(); }

Q_SIGNALS:
    // Some of the work is done, or there is none left.
    void progressed();
    void finished();

private:
    struct FolderJob {
        std::weak_ptr<Folder> folder;
        bool again = false;     // although it was read before
        bool recursive = false; // and all folders below
    };

    void slice();
    void tellProgress();
    void readFolder(const QDeadlineTimer& deadline);
    void start();

    MusicTree* m_tree;
    TagLoader* m_loader;
    QTimer m_timer;
    std::deque<FolderJob> m_folders;
    // The listing of the first of m_folders while it is being read.
    std::optional<FolderListing> m_listing;
};
