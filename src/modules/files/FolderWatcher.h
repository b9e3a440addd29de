#pragma once

#include <memory>
#include <unordered_map>

#include <QHash>
#include <QObject>
#include <QTimer>

#include "MusicTree.h"

// Tells which folders of the tree changed on the disk: files and folders that came, went, were
// renamed or written to. Uses inotify itself, because the ready-made watcher sees neither a file's
// tags being rewritten in place nor the end of a long copy. Changes are gathered for a moment, as a
// copied album is dozens of them.
//
// Each folder costs the system one watch, so their number is limited. Folders beyond the limit (the
// module's or the system's) are listed, but their changes show only after a rescan; the log says so
// once. Owned by the worker, on its thread.
class FolderWatcher : public QObject {
    Q_OBJECT
public:
    explicit FolderWatcher(int limit, QObject* parent = nullptr);
    ~FolderWatcher() override;

    void add(const FolderPtr& folder);
    void remove(const FolderPtr& folder);
    int count() const { return m_watches.size(); }

Q_SIGNALS:
    void changed(const FolderPtr& folder);
    // More happened than the system could note: anything may have changed.
    void overflowed();

private:
    void readEvents();
    void report();
    void reachedLimit(const Folder& folder);

    int m_limit;
    bool m_limitLogged = false;
    int m_descriptor = -1;
    QHash<int, std::weak_ptr<Folder>> m_watches; // watch descriptor → folder
    std::unordered_map<const Folder*, int> m_descriptors;
    std::unordered_map<const Folder*, std::weak_ptr<Folder>> m_dirty;
    bool m_overflowed = false;
    QTimer m_gather;
};
