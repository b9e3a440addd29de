#include "Scanner.h"

#include <algorithm>

#include "CMConnect.h"

namespace {
// Short enough for a request that waits not to be noticed by a person or a player's clock.
constexpr int ScanSliceMs = 5;
} // namespace

Scanner::Scanner(MusicTree* tree, TagLoader* loader, QObject* parent)
    : QObject(parent), m_tree(tree), m_loader(loader) {
    m_timer.setInterval(0);
    cmConnect(&m_timer, &QTimer::timeout, this, [this] { slice(); });
    cmConnect(m_loader, &TagLoader::progressed, this, [this] { tellProgress(); });
    cmConnect(m_tree, &MusicTree::folderAdded, this, [this](const FolderPtr& folder) {
        m_folders.push_back({.folder = folder});
        start();
    });
}

void Scanner::scanAll() {
    // One that is still waiting its turn will do.
    const bool isWaiting =
        std::any_of(m_folders.begin(), m_folders.end(), [this](const FolderJob& job) {
            return job.recursive && job.folder.lock() == m_tree->root();
        });
    if (isWaiting && !m_listing)
        return;
    m_folders.push_back({.folder = m_tree->root(), .again = true, .recursive = true});
    start();
}

void Scanner::refresh(const FolderPtr& folder) {
    m_folders.push_back({.folder = folder, .again = true});
    start();
}

void Scanner::start() {
    if (!m_timer.isActive())
        m_timer.start();
}

void Scanner::slice() {
    const QDeadlineTimer deadline(ScanSliceMs);
    do {
        if (!m_folders.empty())
            readFolder(deadline);
        else
            m_timer.stop();
    } while (m_timer.isActive() && !deadline.hasExpired());
    tellProgress();
}

void Scanner::tellProgress() {
    Q_EMIT progressed();
    if (!isScanning())
        Q_EMIT finished();
}

void Scanner::readFolder(const QDeadlineTimer& deadline) {
    const FolderJob job = m_folders.front();
    const FolderPtr folder = job.folder.lock();
    if (!folder || !folder->listed || (folder->loaded && !job.again)) {
        m_listing.reset();
        m_folders.pop_front();
        return;
    }
    if (!m_listing)
        m_listing.emplace(m_tree->list(*folder));
    if (!m_listing->read(deadline))
        return;
    m_folders.pop_front();
    if (job.recursive) {
        for (const FolderPtr& child : folder->folders)
            m_folders.push_back({.folder = child, .again = true, .recursive = true});
    }
    const FolderListing listing = std::move(*m_listing);
    m_listing.reset();
    m_tree->apply(folder, listing.entries());
}
