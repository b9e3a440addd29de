#include "LibraryIndex.h"

#include <algorithm>
#include <utility>

#include "CMConnect.h"

namespace {

// While a scan goes on, its finds are shown this often, or when ten times what it costs is over.
constexpr int RebuildMs = 1000;
constexpr int RebuildCostFactor = 10;
// One for the library, one for a search meanwhile.
constexpr int LibraryThreads = 2;

void gather(const FolderPtr& folder, std::vector<LibraryTrack>* tracks) {
    for (const TrackPtr& track : folder->tracks) {
        if (track->tagged)
            tracks->push_back({folder, track});
    }
    for (const FolderPtr& child : folder->folders)
        gather(child, tracks);
}

} // namespace

LibraryIndex::LibraryIndex(MusicTree* tree, Scanner* scanner, QObject* parent)
    : QObject(parent), m_tree(tree), m_scanner(scanner) {
    m_pool.setMaxThreadCount(LibraryThreads);
    m_timer.setSingleShot(true);
    m_timer.setInterval(RebuildMs);
    cmConnect(&m_timer, &QTimer::timeout, this, [this] { build(); });
    cmConnect(m_tree, &MusicTree::rowsChanged, this, [this] {
        m_isDirty = true;
        if (!m_timer.isActive())
            m_timer.start();
    });
    cmConnect(m_scanner, &Scanner::finished, this, [this] { build(); });
}

LibraryIndex::~LibraryIndex() {
    m_pool.waitForDone();
}

void LibraryIndex::build() {
    if (m_isBuilding || !m_isDirty)
        return;
    m_timer.stop();
    m_isDirty = false;
    m_isBuilding = true;
    m_buildTime.start();
    std::vector<LibraryTrack> tracks;
    tracks.reserve(std::size_t(m_tree->taggedCount()));
    gather(m_tree->root(), &tracks);
    m_pool.start([this, tracks = std::move(tracks)]() mutable {
        const auto library = std::make_shared<const Library>(std::move(tracks));
        QMetaObject::invokeMethod(this, [this, library] { take(library); });
    });
}

void LibraryIndex::take(const LibraryPtr& library) {
    // Letting go of many thousand tracks takes a while.
    m_pool.start([before = std::exchange(m_library, library)]() mutable { before.reset(); });
    m_isBuilding = false;
    m_timer.setInterval(std::max(RebuildMs, int(m_buildTime.elapsed()) * RebuildCostFactor));
    if (m_isDirty && !m_scanner->isScanning())
        build();
    else if (m_isDirty)
        m_timer.start();
    Q_EMIT changed();
}
