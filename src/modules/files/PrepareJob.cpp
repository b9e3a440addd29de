#include "PrepareJob.h"

#include <utility>

#include "CMConnect.h"
#include "FilesLog.h"
#include "LibraryViews.h"

namespace {
// A person waits for this one, so its slices are longer than the scan's.
constexpr int PrepareSliceMs = 8;
// A call with thousands of unknown paths must not fill the log.
constexpr int MaxUnknownLogged = 5;
// One short request can name the same large folder a hundred thousand times.
constexpr int MaxItems = 100000;
} // namespace

PrepareJob::PrepareJob(MusicTree* tree, TagLoader* loader, LibraryIndex* index,
                       const QStringList& paths, const CMReply<QVariant>& reply, QObject* parent)
    : QObject(parent),
      m_tree(tree),
      m_loader(loader),
      m_index(index),
      m_paths(paths),
      m_reply(reply) {
    m_timer.setInterval(0);
    cmConnect(&m_timer, &QTimer::timeout, this, [this] { slice(); });
    cmConnect(m_loader, &TagLoader::progressed, this, [this] {
        if (m_awaited && m_awaited->tagged)
            m_timer.start();
    });
}

void PrepareJob::slice() {
    const QDeadlineTimer deadline(PrepareSliceMs);
    while (step(deadline)) {
        if (m_awaited) {
            m_timer.stop();
            return;
        }
        if (m_items.size() > MaxItems) {
            refuse();
            return;
        }
        if (deadline.hasExpired()) {
            m_timer.start();
            return;
        }
    }
    answer();
}

bool PrepareJob::step(const QDeadlineTimer& deadline) {
    if (m_awaited) {
        append(std::exchange(m_awaitedIn, nullptr), std::exchange(m_awaited, nullptr));
        return true;
    }
    if (m_entering) {
        enterFolder(deadline);
        return true;
    }
    if (!m_levels.empty()) {
        Level& level = m_levels.back();
        if (level.nextFolder < level.folders.size())
            m_entering = level.folders[level.nextFolder++];
        else if (level.nextTrack < level.tracks.size())
            append(level.folder, level.tracks[level.nextTrack++]);
        else
            m_levels.pop_back();
        return true;
    }
    if (m_nextSelected < m_selected.size()) {
        const LibraryTrack& next = m_library->track(quint32(m_selected[m_nextSelected++]));
        append(next.folder, next.track);
        return true;
    }
    if (m_nextPath < m_paths.size()) {
        const QString& path = m_paths.at(m_nextPath++);
        if (!beginPath(CMPath(path)) && ++m_unknown <= MaxUnknownLogged)
            LOG4CPLUS_WARN(filesLog(), "nothing to prepare at " << path);
        return true;
    }
    return false;
}

bool PrepareJob::beginPath(const CMPath& path) {
    const MusicTree::Place place = m_tree->find(path);
    if (!place.folder)
        return beginSelection(path);
    if (place.track)
        append(place.folder, place.track);
    else
        m_entering = place.folder;
    return true;
}

bool PrepareJob::beginSelection(const CMPath& path) {
    const LibraryViews::View* view = LibraryViews::find(path);
    if (!view)
        return false;
    m_library = m_index->library();
    m_selected = LibraryViews::tracks(*m_library, *view, path);
    m_nextSelected = 0;
    return !m_selected.empty();
}

void PrepareJob::enterFolder(const QDeadlineTimer& deadline) {
    if (!m_entering->loaded && m_entering->listed) {
        if (!m_listing)
            m_listing.emplace(m_tree->list(*m_entering));
        if (!m_listing->read(deadline))
            return;
        const FolderListing listing = std::move(*m_listing);
        m_listing.reset();
        m_tree->apply(m_entering, listing.entries());
    }
    m_listing.reset();
    m_loader->want(m_entering, /*urgent=*/true);
    m_levels.push_back({m_entering, m_entering->folders, m_entering->tracks});
    m_entering.reset();
}

void PrepareJob::append(const FolderPtr& folder, const TrackPtr& track) {
    if (!track->tagged) {
        m_awaitedIn = folder;
        m_awaited = track;
        m_loader->wantNow(folder, track);
        return;
    }
    m_items.append(m_maker.item(folder, *track).toVariant());
}

void PrepareJob::refuse() {
    m_timer.stop();
    LOG4CPLUS_ERROR(filesLog(), "more than " << MaxItems << " items in one call");
    deleteLater();
    m_reply.setError(CMError(
        CMError::InvalidValue(),
        TrString("Files", "More than %1 tracks at once are too many.", {QString::number(MaxItems)}),
        CMError::DefaultTitle()));
}

void PrepareJob::answer() {
    m_timer.stop();
    if (m_unknown > MaxUnknownLogged)
        LOG4CPLUS_WARN(filesLog(), "nothing to prepare at " << m_unknown << " paths in all");
    LOG4CPLUS_DEBUG(filesLog(), "prepared " << m_items.size() << " items");
    deleteLater();
    m_reply.setValue(m_items);
}
