#pragma once

#include <deque>
#include <vector>

#include <QObject>
#include <QThread>

#include "MusicTree.h"
#include "TagWork.h"

// Fills in the tags of the tree's tracks. Files are opened in a thread of its own, a few at a time,
// so that what a caller waits for can overtake the rest. Owned by the worker, on the event loop's
// thread; cannot fail.
class TagLoader : public QObject {
    Q_OBJECT
public:
    TagLoader(MusicTree* tree, const QString& dataFolder, QObject* parent = nullptr);
    // Waits for the file that is being read.
    ~TagLoader() override;

    // The tracks of the folder that have no tags get them, before all others when it is `urgent`.
    void want(const FolderPtr& folder, bool urgent = false);
    // The same for one track, also where it is not listed any more.
    void wantNow(const FolderPtr& folder, const TrackPtr& track);
    bool isBusy() const { return m_underWay > 0 || !m_urgent.empty() || !m_queue.empty(); }
    // Every track has been asked for: others need not be remembered for ever.
    void sawAll();

Q_SIGNALS:
    // Some tracks have their tags now.
    void progressed();
    void finished();

private:
    struct Job {
        FolderPtr folder;
        TrackPtr track;
        bool always = false; // also where the track is not listed any more
    };

    void send();
    bool sendBatch();
    void take(std::deque<Job>* from, std::vector<Job>* jobs);
    void receive(const std::vector<Job>& jobs, const std::vector<TagsPtr>& tags);

    MusicTree* m_tree;
    TagWork* m_work; // lives in m_thread
    QThread m_thread;
    std::deque<Job> m_urgent;
    std::deque<Job> m_queue;
    int m_underWay = 0; // batches
};
