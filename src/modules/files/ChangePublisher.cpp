#include "ChangePublisher.h"

#include <utility>

#include "CMConnect.h"
#include "LibraryViews.h"
#include "SearchNode.h"

namespace {
constexpr int IntervalMs = 250;
// Above this number of changed folders one reset of the tree is cheaper for every reader.
constexpr std::size_t MaxSingleResets = 50;
} // namespace

ChangePublisher::ChangePublisher(MusicTree* tree, Scanner* scanner, LibraryIndex* index,
                                 CMSubscribe* subscribe, QObject* parent)
    : QObject(parent),
      m_tree(tree),
      m_scanner(scanner),
      m_index(index),
      m_subscribe(subscribe),
      m_published(scanValue()) {
    m_timer.setSingleShot(true);
    m_timer.setInterval(IntervalMs);
    cmConnect(&m_timer, &QTimer::timeout, this, [this] { publish(); });
    const auto publishSoon = [this] {
        if (!m_timer.isActive())
            m_timer.start();
    };
    cmConnect(m_scanner, &Scanner::progressed, this, publishSoon);
    cmConnect(m_index, &LibraryIndex::changed, this, [this, publishSoon] {
        m_libraryChanged = true;
        publishSoon();
    });
    cmConnect(m_tree, &MusicTree::rowsChanged, this, [this, publishSoon](const FolderPtr& folder) {
        m_changed[folder.get()] = folder;
        publishSoon();
    });
}

CMPath ChangePublisher::scanPath() {
    static const CMPath path(QStringLiteral("files:scan"));
    return path;
}

bool ChangePublisher::isReady() const {
    return m_begun && !m_scanner->isScanning() && !m_index->isBehind();
}

OrvoValue ChangePublisher::scanValue() const {
    OrvoValue value;
    value.setAttribute(QStringLiteral("state"),
                       isReady() ? QStringLiteral("ready") : QStringLiteral("scanning"));
    value.setAttribute(QStringLiteral("folders"), m_tree->foldersCount());
    value.setAttribute(QStringLiteral("tracks"), m_tree->tracksCount());
    value.setAttribute(QStringLiteral("done"), m_tree->taggedCount());
    return value;
}

void ChangePublisher::publish() {
    publishRows();
    publishLibrary();
    const OrvoValue value = scanValue();
    if (value == m_published)
        return;
    const OrvoValue before = m_published;
    m_published = value;
    m_subscribe->valueChanged(scanPath(), value, before);
}

void ChangePublisher::publishLibrary() {
    if (!std::exchange(m_libraryChanged, false))
        return;
    QList<CMPath> paths = {SearchNode::rootPath()};
    for (const LibraryViews::View& view : LibraryViews::all())
        paths.append(LibraryViews::pathOf(view));
    for (const CMPath& path : paths)
        m_subscribe->changedStartingWith(path, CMSubscribe::RowsChangeReset(), -1);
}

void ChangePublisher::publishRows() {
    const auto changed = std::move(m_changed);
    m_changed.clear();
    if (changed.size() > MaxSingleResets) {
        m_subscribe->changedStartingWith(MusicTree::rootPath(), CMSubscribe::RowsChangeReset(), -1);
        return;
    }
    for (const auto& [key, entry] : changed) {
        const FolderPtr folder = entry.lock();
        if (folder && folder->listed)
            m_subscribe->rowsChanged(folder->path, CMSubscribe::RowsChangeReset(), -1);
    }
}
