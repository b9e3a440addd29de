#include "FilesWorker.h"

#include <utility>

#include <QTimer>

#include "CMConnect.h"
#include "FilesLog.h"
#include "MusicRoles.h"
#include "OrvoPlayListPaths.h"
#include "PrepareJob.h"

namespace {
// Well below what a system grants a user, and more folders than most collections have.
constexpr int MaxWatches = 8192;
} // namespace

FilesWorker::FilesWorker(const QHash<QString, QVariant>& config)
    : CMNodesWorker(config, QStringLiteral("Files")),
      m_tree(config.value(QStringLiteral("musicDir")).toString()),
      m_loader(&m_tree, config.value(QStringLiteral("dataDir")).toString()),
      m_scanner(&m_tree, &m_loader),
      m_index(&m_tree, &m_scanner),
      m_watcher(MaxWatches),
      m_publisher(&m_tree, &m_scanner, &m_index, subscribe()),
      m_treeNode(&m_tree, nodes(), nullptr),
      m_searches(&m_index),
      m_matches(&m_tree, &m_scanner, &m_index, &m_publisher) {
    cmConnect(&m_tree, &MusicTree::folderAdded, &m_watcher, &FolderWatcher::add);
    cmConnect(&m_tree, &MusicTree::folderRemoved, &m_watcher, &FolderWatcher::remove);
    cmConnect(&m_watcher, &FolderWatcher::changed, &m_scanner, &Scanner::refresh);
    cmConnect(&m_watcher, &FolderWatcher::overflowed, &m_scanner, &Scanner::scanAll);
    cmConnect(&m_scanner, &Scanner::finished, this, [this] { announce(); });
    for (const LibraryViews::View& view : LibraryViews::all())
        m_libraryNodes.push_back(std::make_unique<LibraryNode>(view, &m_index, nodes()));
    for (const SearchNode::Part& part : SearchNode::parts())
        m_searchNodes.push_back(std::make_unique<SearchNode>(part, &m_searches, nodes()));
    // The first turn of the event loop comes when every module is loaded: start-up never waits for
    // a disk full of music.
    QTimer::singleShot(0, this, [this] { scan(); });
}

CMPath FilesWorker::musicFolderPath() {
    static const CMPath path(QStringLiteral("files:musicFolder"));
    return path;
}

CMPath FilesWorker::rescanPath() {
    static const CMPath path(QStringLiteral("files:rescan"));
    return path;
}

CMPath FilesWorker::prepareItemsPath() {
    static const CMPath path =
        CMPath::fromPrefix(QStringLiteral("files")) + OrvoPlayListPrepareItems();
    return path;
}

CMPath FilesWorker::matchPath() {
    static const CMPath path(QStringLiteral("files:match"));
    return path;
}

void FilesWorker::scan() {
    m_publisher.scanBegins();
    m_tree.locate();
    if (m_tree.musicFolder().isEmpty()) {
        LOG4CPLUS_INFO(filesLog(), "no music folder is configured");
    } else {
        LOG4CPLUS_INFO(filesLog(), "scanning " << m_tree.musicFolder());
        // Again each time: a folder that was not there, or was replaced, has no watch yet.
        m_watcher.add(m_tree.root());
        m_announce = true;
        m_scanner.scanAll();
    }
}

void FilesWorker::announce() {
    if (!std::exchange(m_announce, false))
        return;
    m_loader.sawAll();
    LOG4CPLUS_INFO(filesLog(), m_tree.tracksCount()
                                   << " tracks in " << m_tree.foldersCount() << " folders");
}

QVariant FilesWorker::getValue(const CMPath& path) {
    if (path == ChangePublisher::scanPath())
        return m_publisher.scanValue().toVariant();
    if (path == musicFolderPath())
        return OrvoValue::fromString(m_tree.musicFolder()).toVariant();
    return {};
}

void FilesWorker::setDataRequest(const CMSetDataRequest& request) {
    struct Command {
        CMPath path;
        void (FilesWorker::*handler)(const CMSetDataRequest&);
    };
    static const Command commands[] = {
        {prepareItemsPath(), &FilesWorker::prepareItems},
        {matchPath(), &FilesWorker::match},
        {MusicRoles::prePlayPath(), &FilesWorker::prePlay},
        {rescanPath(), &FilesWorker::rescan},
    };
    for (const Command& command : commands) {
        if (request.path().base() == command.path.base()) {
            (this->*command.handler)(request);
            return;
        }
    }
    CMNodesWorker::setDataRequest(request);
}

void FilesWorker::prepareItems(const CMSetDataRequest& request) {
    if (!request.value().canConvert<QVariantList>()) {
        request.reply().setError(CMError(CMError::InvalidValue(),
                                         TrString("Files", "The value must be a list of paths."),
                                         CMError::DefaultTitle()));
        return;
    }
    QStringList paths;
    for (const QVariant& element : request.value().toList()) {
        const QString text = element.toString();
        paths.append(text.isEmpty() ? CMPath::fromQVariant(element).toString() : text);
    }
    auto* job = new PrepareJob(&m_tree, &m_loader, &m_index, paths, request.reply(), this);
    job->start();
}

void FilesWorker::prePlay(const CMSetDataRequest& request) {
    // A local file needs no preparation.
    request.reply().setValue(OrvoActionReply().toVariant());
}

void FilesWorker::rescan(const CMSetDataRequest& request) {
    scan();
    request.reply().setValue(OrvoActionReply().toVariant());
}

void FilesWorker::getRowsRequest(const CMGetRowsRequest& request) {
    if (!request.path().startsWith(MusicTree::rootPath()))
        CMNodesWorker::getRowsRequest(request);
    else
        m_treeNode.getRowsRequest(request);
}

void FilesWorker::getDataRequest(const CMGetDataRequest& request) {
    if (!request.path().startsWith(MusicTree::rootPath()))
        CMNodesWorker::getDataRequest(request);
    else
        m_treeNode.getDataRequest(request);
}

void FilesWorker::matchRowRequest(const CMMatchRowRequest& request) {
    if (!request.path().startsWith(MusicTree::rootPath()))
        CMNodesWorker::matchRowRequest(request);
    else
        m_treeNode.matchRowRequest(request);
}
