#include "SearchQueue.h"

#include <algorithm>

#include "CMConnect.h"

namespace {
constexpr std::size_t MaxKeptResults = 4;
constexpr int MaxWaitingSearches = 64;
} // namespace

SearchQueue::SearchQueue(LibraryIndex* index, QObject* parent) : QObject(parent), m_index(index) {
    cmConnect(m_index, &LibraryIndex::changed, this, [this] { m_kept.clear(); });
}

SearchQueue::~SearchQueue() {
    m_index->pool()->waitForDone();
}

void SearchQueue::find(const QStringList& words, const Callback& callback) {
    const QString key = words.join(QLatin1Char(' '));
    const auto kept = std::find_if(m_kept.begin(), m_kept.end(),
                                   [&key](const auto& each) { return each.first == key; });
    if (kept != m_kept.end()) {
        const ResultPtr result = kept->second;
        callback(result);
        return;
    }
    if (m_waiting.contains(key)) {
        m_waiting[key].push_back(callback);
        return;
    }
    if (m_waiting.size() >= MaxWaitingSearches) {
        callback(nullptr);
        return;
    }
    m_waiting[key].push_back(callback);
    m_index->pool()->start([this, key, words, library = m_index->library()] {
        const auto result =
            std::make_shared<const SearchResult>(LibrarySearch::find(library, words));
        QMetaObject::invokeMethod(this, [this, key, result] { take(key, result); });
    });
}

void SearchQueue::take(const QString& key, const ResultPtr& result) {
    if (result->library == m_index->library()) {
        m_kept.emplace_front(key, result);
        if (m_kept.size() > MaxKeptResults)
            m_kept.pop_back();
    }
    for (const Callback& callback : m_waiting.take(key))
        callback(result);
}
