#pragma once

#include <memory>
#include <vector>

#include <QHash>
#include <QObject>

#include "CMPath.h"
#include "FolderListing.h"
#include "TrackTags.h"

struct Track {
    QString name;
    QString mimeType;
    qint64 size = 0;
    qint64 modified = 0;
    bool listed = true; // in the tree
    bool tagged = false;
    TagsPtr tags = noTags(); // empty until tagged

    static const TagsPtr& noTags();
};
using TrackPtr = std::shared_ptr<Track>;

struct Folder;
using FolderPtr = std::shared_ptr<Folder>;

// One folder as it was last read. A job that holds one across a turn of the event loop may find it
// out of the tree.
struct Folder {
    QString name; // empty for the root
    CMPath path;
    QString diskPath;
    QString artwork;    // file name
    bool listed = true; // in the tree
    bool loaded = false;
    std::vector<FolderPtr> folders;
    std::vector<TrackPtr> tracks;
    QHash<QString, int> folderIndex; // name → place
    QHash<QString, int> trackIndex;

    QString trackFile(const Track& track) const { return diskPath + QLatin1Char('/') + track.name; }
    int rowsCount() const { return int(folders.size() + tracks.size()); }
};

Q_DECLARE_METATYPE(FolderPtr)

// The music folder in memory: what is listed, and the only way from a path of the data model to a
// file. A path is looked up name by name among what was found on the disk, so no path, however
// made, reaches a file that was not listed. Owned by the worker, on its thread. Reading the disk
// never fails, it finds less.
class MusicTree : public QObject {
    Q_OBJECT
public:
    // An empty musicFolder gives an empty tree.
    explicit MusicTree(const QString& musicFolder, QObject* parent = nullptr);

    // Where the tree begins in the data model.
    static CMPath rootPath();
    const QString& musicFolder() const { return m_musicFolder; }
    const FolderPtr& root() const { return m_root; }
    // Folders below the root, tracks, and those whose tags are read.
    int foldersCount() const { return m_foldersCount; }
    int tracksCount() const { return m_tracksCount; }
    int taggedCount() const { return m_taggedCount; }

    // Looks where the music folder is now: it may have come, or be a link that leads elsewhere.
    // Empties the tree when it is another folder than before.
    void locate();

    struct Place {
        FolderPtr folder; // null: there is nothing at the path
        TrackPtr track;   // null: the path is the folder's
    };
    // Folders on the way that were not read yet are read now; the folder found may still be unread.
    Place find(const CMPath& path);

    // A listing of the folder, to be read and given to apply().
    FolderListing list(const Folder& folder);
    // Takes over what was read. Tracks whose files did not change keep their tags.
    void apply(const FolderPtr& folder, const FolderEntries& entries);
    // Reads the folder at once, unless it was read before.
    void load(const FolderPtr& folder);
    // The track's tags were read.
    void setTags(const FolderPtr& folder, const TrackPtr& track, const TagsPtr& tags);

Q_SIGNALS:
    void folderAdded(const FolderPtr& folder);
    void folderRemoved(const FolderPtr& folder);
    // Tracks came into the folder, or changed, and have no tags yet.
    void tagsWanted(const FolderPtr& folder);
    // What the folder lists is not what it was.
    void rowsChanged(const FolderPtr& folder);

private:
    bool applyFolders(const FolderPtr& folder, const std::vector<FolderEntries::Entry>& entries);
    bool applyTracks(const FolderPtr& folder, const std::vector<FolderEntries::Entry>& entries);
    void remove(const FolderPtr& folder);
    void forget(const std::vector<TrackPtr>& tracks);

    QString m_configured; // as named, links and all
    QString m_musicFolder;
    FolderPtr m_root;
    int m_foldersCount = 0;
    int m_tracksCount = 0;
    int m_taggedCount = 0;
};
