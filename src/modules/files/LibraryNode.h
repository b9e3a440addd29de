#pragma once

#include <deque>

#include "CMNode.h"
#include "LibraryIndex.h"
#include "LibraryViews.h"

// One view of the library, whatever its parameters: lists its rows by range. Owned by the worker,
// on its thread; answers at once, with an error what its path asks wrongly.
class LibraryNode : public CMListRowsNode {
    Q_OBJECT
public:
    LibraryNode(const LibraryViews::View& view, LibraryIndex* index, CMNodes* nodes,
                QObject* parent = nullptr);

    bool getRowsRequest(const CMGetRowsRequest& request) override;
    bool getDataRequest(const CMGetDataRequest& request) override;

    bool matchRowRequest(const CMMatchRowRequest& request) override;

    // More rows are not given at once, so that no request keeps others waiting.
    static constexpr int MaxRowsAtOnce = 1000;
    // The rows in the request's range, for every list of the library.
    static OrvoRowsRoles answer(const Library& library, const LibraryList& list,
                                const CMGetRowsRequest& request);

private:
    using ListPtr = std::shared_ptr<const LibraryList>;
    ListPtr listAt(const CMPath& path);

    const LibraryViews::View& m_view;
    LibraryIndex* m_index;
    // The lists asked for last, the latest first: a reader turns many pages of one.
    std::deque<std::pair<QString, ListPtr>> m_lists;
};
