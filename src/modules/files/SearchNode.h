#pragma once

#include "CMNode.h"
#include "LibraryViews.h"
#include "SearchQueue.h"

// One list of what a search found: artists, albums or tracks, by range, or these three lists with
// their counts. Owned by the worker, on its thread; answers when the search is done.
class SearchNode : public CMListRowsNode {
    Q_OBJECT
public:
    // What is longer, or has more words, is no search of a person's.
    static constexpr int MaxSearchText = 200;
    static constexpr int MaxSearchWords = 12;

    struct Part {
        const char* name; // below the root's path; empty for the root
        const char* title;
        LibraryList::Kind kind;
        std::vector<quint64> SearchResult::*rows;
    };
    // The root first.
    static const std::vector<Part>& parts();
    static CMPath rootPath();

    SearchNode(const Part& part, SearchQueue* queue, CMNodes* nodes, QObject* parent = nullptr);

    bool getRowsRequest(const CMGetRowsRequest& request) override;

private:
    OrvoRowsRoles answer(const SearchResult& result, const CMGetRowsRequest& request) const;
    OrvoRowsRoles summary(const SearchResult& result, const CMGetRowsRequest& request) const;

    const Part& m_part;
    SearchQueue* m_queue;
};
