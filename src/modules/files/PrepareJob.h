#pragma once

#include <optional>

#include <QObject>
#include <QStringList>
#include <QTimer>

#include "CMReply.h"
#include "ItemMaker.h"
#include "LibraryIndex.h"
#include "TagLoader.h"

// Answers one prepare call: for each path, in the order given, a track's item or the items of all
// tracks in and below a folder, in the order of listing, or those that a list of the library
// selects. Unknown paths give nothing but a word in the log. What was not read yet is read for it,
// before the rest. More items than any library has are refused. Works in slices; a short call whose
// tags are all there is answered before start() returns. Deletes itself when it has answered; when
// its parent goes first, the caller gets the platform's error for a request that was not answered.
class PrepareJob : public QObject {
    Q_OBJECT
public:
    PrepareJob(MusicTree* tree, TagLoader* loader, LibraryIndex* index, const QStringList& paths,
               const CMReply<QVariant>& reply, QObject* parent);

    void start() { slice(); }

private:
    // A folder on the way down, as it was when it was entered.
    struct Level {
        FolderPtr folder;
        std::vector<FolderPtr> folders;
        std::vector<TrackPtr> tracks;
        std::size_t nextFolder = 0;
        std::size_t nextTrack = 0;
    };

    void slice();
    // One step of work. False when nothing is left.
    bool step(const QDeadlineTimer& deadline);
    // False when there is nothing at the path.
    bool beginPath(const CMPath& path);
    bool beginSelection(const CMPath& path);
    void enterFolder(const QDeadlineTimer& deadline);
    // Or waits for its tags.
    void append(const FolderPtr& folder, const TrackPtr& track);
    void answer();
    void refuse();

    MusicTree* m_tree;
    TagLoader* m_loader;
    LibraryIndex* m_index;
    QStringList m_paths;
    CMReply<QVariant> m_reply;
    int m_nextPath = 0;
    int m_unknown = 0;
    std::vector<Level> m_levels;
    // What a list of the library selects, and how many of these are appended.
    LibraryPtr m_library;
    std::vector<quint64> m_selected;
    std::size_t m_nextSelected = 0;
    // The track whose tags are waited for, and its folder.
    FolderPtr m_awaitedIn;
    TrackPtr m_awaited;
    // The folder to enter next, and its listing while it is being read.
    FolderPtr m_entering;
    std::optional<FolderListing> m_listing;
    ItemMaker m_maker;
    QVariantList m_items;
    QTimer m_timer;
};
