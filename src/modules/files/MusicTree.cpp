#include "MusicTree.h"

#include <QDir>
#include <QFileInfo>

namespace {

// The folder without links; one that is not there yet keeps its name, it may come.
QString canonicalFolder(const QString& folder) {
    if (folder.isEmpty())
        return folder;
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(folder) : canonical;
}

} // namespace

const TagsPtr& Track::noTags() {
    static const TagsPtr none = std::make_shared<const TrackTags>();
    return none;
}

CMPath MusicTree::rootPath() {
    static const CMPath path(QStringLiteral("files:tree"));
    return path;
}

MusicTree::MusicTree(const QString& musicFolder, QObject* parent)
    : QObject(parent),
      m_configured(musicFolder),
      m_musicFolder(canonicalFolder(musicFolder)),
      m_root(std::make_shared<Folder>()) {
    m_root->path = rootPath();
    m_root->diskPath = m_musicFolder;
    m_root->loaded = m_musicFolder.isEmpty();
}

void MusicTree::locate() {
    const QString musicFolder = canonicalFolder(m_configured);
    if (musicFolder == m_musicFolder)
        return;
    apply(m_root, {});
    m_musicFolder = musicFolder;
    m_root->diskPath = musicFolder;
}

MusicTree::Place MusicTree::find(const CMPath& path) {
    if (!path.startsWith(rootPath()))
        return {};
    const QStringList& components = path.splitBase();
    FolderPtr folder = m_root;
    for (int i = rootPath().splitBase().size(); i < components.size(); ++i) {
        const QString& name = components.at(i);
        load(folder);
        if (const auto it = folder->folderIndex.constFind(name); it != folder->folderIndex.cend()) {
            folder = folder->folders[std::size_t(*it)];
            continue;
        }
        const auto it = folder->trackIndex.constFind(name);
        const bool isLast = i + 1 == components.size();
        if (it == folder->trackIndex.cend() || !isLast)
            return {};
        return {folder, folder->tracks[std::size_t(*it)]};
    }
    return {folder, {}};
}

FolderListing MusicTree::list(const Folder& folder) {
    return FolderListing(folder.diskPath, m_musicFolder);
}

void MusicTree::load(const FolderPtr& folder) {
    if (folder->loaded || !folder->listed)
        return;
    FolderListing listing = list(*folder);
    listing.read(QDeadlineTimer(QDeadlineTimer::Forever));
    apply(folder, listing.entries());
}

void MusicTree::apply(const FolderPtr& folder, const FolderEntries& entries) {
    if (!folder->listed)
        return;
    const bool newArtwork = folder->artwork != entries.artwork;
    folder->artwork = entries.artwork;
    folder->loaded = true;
    const bool newFolders = applyFolders(folder, entries.folders);
    const bool newTracks = applyTracks(folder, entries.tracks);
    if (!newFolders && !newTracks && !newArtwork)
        return;
    Q_EMIT rowsChanged(folder);
    if (newTracks)
        Q_EMIT tagsWanted(folder);
}

bool MusicTree::applyFolders(const FolderPtr& folder,
                             const std::vector<FolderEntries::Entry>& entries) {
    const std::vector<FolderPtr> before = std::move(folder->folders);
    const QHash<QString, int> indexBefore = std::move(folder->folderIndex);
    folder->folders.clear();
    folder->folderIndex.clear();
    std::vector<FolderPtr> added;
    for (const FolderEntries::Entry& entry : entries) {
        FolderPtr child;
        if (const auto it = indexBefore.constFind(entry.name); it != indexBefore.cend()) {
            child = before[std::size_t(*it)];
        } else {
            child = std::make_shared<Folder>();
            child->name = entry.name;
            child->path = folder->path + entry.name;
            child->diskPath = folder->diskPath + QLatin1Char('/') + entry.name;
            added.push_back(child);
        }
        folder->folderIndex.insert(entry.name, int(folder->folders.size()));
        folder->folders.push_back(child);
    }
    bool changed = !added.empty();
    for (const FolderPtr& child : before) {
        if (!folder->folderIndex.contains(child->name)) {
            changed = true;
            remove(child);
        }
    }
    m_foldersCount += int(added.size());
    for (const FolderPtr& child : added)
        Q_EMIT folderAdded(child);
    return changed;
}

bool MusicTree::applyTracks(const FolderPtr& folder,
                            const std::vector<FolderEntries::Entry>& entries) {
    const std::vector<TrackPtr> before = std::move(folder->tracks);
    const QHash<QString, int> indexBefore = std::move(folder->trackIndex);
    folder->tracks.clear();
    folder->trackIndex.clear();
    forget(before);
    std::size_t kept = 0;
    for (const FolderEntries::Entry& entry : entries) {
        const auto it = indexBefore.constFind(entry.name);
        TrackPtr track = it != indexBefore.cend() ? before[std::size_t(*it)] : nullptr;
        if (track && track->size == entry.size && track->modified == entry.modified) {
            ++kept;
            track->listed = true;
        } else {
            track = std::make_shared<Track>();
            track->name = entry.name;
            track->mimeType = entry.mimeType;
            track->size = entry.size;
            track->modified = entry.modified;
        }
        m_taggedCount += track->tagged ? 1 : 0;
        folder->trackIndex.insert(entry.name, int(folder->tracks.size()));
        folder->tracks.push_back(track);
    }
    m_tracksCount += int(folder->tracks.size());
    return kept != before.size() || kept != entries.size();
}

void MusicTree::forget(const std::vector<TrackPtr>& tracks) {
    for (const TrackPtr& track : tracks) {
        track->listed = false;
        m_taggedCount -= track->tagged ? 1 : 0;
    }
    m_tracksCount -= int(tracks.size());
}

void MusicTree::remove(const FolderPtr& folder) {
    folder->listed = false;
    --m_foldersCount;
    forget(folder->tracks);
    for (const FolderPtr& child : folder->folders)
        remove(child);
    Q_EMIT folderRemoved(folder);
}

void MusicTree::setTags(const FolderPtr& folder, const TrackPtr& track, const TagsPtr& tags) {
    if (track->tagged)
        return;
    track->tags = tags;
    track->tagged = true;
    if (!track->listed)
        return;
    ++m_taggedCount;
    Q_EMIT rowsChanged(folder);
}
