#pragma once

#include <deque>
#include <functional>
#include <vector>

#include <QHash>
#include <QObject>

#include "LibraryIndex.h"
#include "LibrarySearch.h"

// Has searches done in a thread, each once for all that ask the same, and keeps the last ones: a
// reader turns pages of what was found. Owned by the worker, on the event loop's thread.
class SearchQueue : public QObject {
    Q_OBJECT
public:
    explicit SearchQueue(LibraryIndex* index, QObject* parent = nullptr);
    // Waits for the search that is under way, which tells this object its end.
    ~SearchQueue() override;

    using ResultPtr = std::shared_ptr<const SearchResult>;
    using Callback = std::function<void(const ResultPtr&)>;
    // Calls back at once where the result is kept, with null where too many searches wait already.
    void find(const QStringList& words, const Callback& callback);

private:
    void take(const QString& key, const ResultPtr& result);

    LibraryIndex* m_index;
    std::deque<std::pair<QString, ResultPtr>> m_kept; // the latest first
    QHash<QString, std::vector<Callback>> m_waiting;
};
