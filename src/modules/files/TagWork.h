#pragma once

#include <atomic>
#include <vector>

#include <QObject>
#include <QSet>

#include "PictureStore.h"
#include "TagStore.h"

// One file whose tags are wanted.
struct TagRequest {
    TagStore::Key key;
    bool picture = false; // its folder has none
};

// What the loader's thread does: finds tags in the store, and reads files that are not in it. Owned
// by the loader; everything but stop() is called in the thread. A disk that does not answer holds
// up this thread and nothing else.
class TagWork : public QObject {
    Q_OBJECT
public:
    // Opens nothing yet. Without a data folder every file is read each time.
    explicit TagWork(const QString& dataFolder) : m_dataFolder(dataFolder) {}

    // The tags of each file, in the same order. Files that now lead outside of the music folder are
    // not opened and have none.
    std::vector<TagsPtr> read(const std::vector<TagRequest>& requests, const QString& musicFolder);
    // There is nothing to do for now.
    void rest();
    // Everything in the music folder has been asked for.
    void sawAll();
    // From any thread: what is not read yet need not be.
    void stop() { m_stopped = true; }

private:
    void open();
    TagsPtr readOne(const TagRequest& request, const QString& musicFolder);
    TagsPtr share(TrackTags tags);
    QString shared(const QString& text);

    QString m_dataFolder;
    std::unique_ptr<TagStore> m_store;
    std::unique_ptr<PictureStore> m_pictures;
    QSet<QString> m_texts; // one of each, for tracks to share
    std::atomic<bool> m_stopped = false;
};
