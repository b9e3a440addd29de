#pragma once

#include "ChangePublisher.h"
#include "CMWorker.h"
#include "FolderWatcher.h"
#include "LibraryNode.h"
#include "MatchQueue.h"
#include "MusicTree.h"
#include "Scanner.h"
#include "SearchNode.h"
#include "TagLoader.h"
#include "TreeNode.h"

// The module's root object: makes and wires the others, and routes requests. Owned by the host, on
// its thread. Configuration: "musicDir", the folder to publish; without one the tree is
// empty. "dataDir", where tags and pictures are kept; without one they are read at each start.
class FilesWorker : public CMNodesWorker {
    Q_OBJECT
public:
    explicit FilesWorker(const QHash<QString, QVariant>& config);

    QVariant getValue(const CMPath& path) override;
    void setDataRequest(const CMSetDataRequest& request) override;
    void getRowsRequest(const CMGetRowsRequest& request) override;
    void getDataRequest(const CMGetDataRequest& request) override;
    void matchRowRequest(const CMMatchRowRequest& request) override;

    static CMPath musicFolderPath();
    static CMPath rescanPath();
    static CMPath prepareItemsPath();
    static CMPath matchPath();

private:
    void prepareItems(const CMSetDataRequest& request);
    void match(const CMSetDataRequest& request) { m_matches.match(request); }
    void prePlay(const CMSetDataRequest& request);
    void rescan(const CMSetDataRequest& request);
    void scan();
    void announce();

    MusicTree m_tree;
    TagLoader m_loader;
    Scanner m_scanner;
    LibraryIndex m_index;
    FolderWatcher m_watcher;
    ChangePublisher m_publisher;
    TreeNode m_treeNode;
    std::vector<std::unique_ptr<LibraryNode>> m_libraryNodes;
    SearchQueue m_searches;
    std::vector<std::unique_ptr<SearchNode>> m_searchNodes;
    MatchQueue m_matches;
    bool m_announce = false; // a scan of everything is under way
};
