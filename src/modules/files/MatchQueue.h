#pragma once

#include <deque>
#include <memory>
#include <unordered_map>

#include <QObject>
#include <QTimer>

#include "ChangePublisher.h"
#include "CMRequest.h"
#include "TrackMatcher.h"

// Answers `files:match`: for each hint of a list the item of the track that it means, or nothing.
// What takes long is done in a thread, and the matcher is kept for a while, because a list is asked
// for in parts. A request waits for a scan that is under way, but not for long. Owned by the
// worker, on the event loop's thread; failures are error replies.
class MatchQueue : public QObject {
    Q_OBJECT
public:
    MatchQueue(MusicTree* tree, Scanner* scanner, LibraryIndex* index, ChangePublisher* publisher,
               QObject* parent = nullptr);
    // Waits for the thread, which tells this object its end.
    ~MatchQueue() override;

    void match(const CMSetDataRequest& request);

    // How long a request waits for a scan, unless this says otherwise.
    static constexpr int ScanTimeoutMs = 10000;
    void setScanTimeout(int milliseconds) { m_scanTimeout.setInterval(milliseconds); }

private:
    using MatcherPtr = std::shared_ptr<const TrackMatcher>;
    struct Found {
        MatcherPtr matcher;
        std::vector<std::optional<quint32>> tracks;
    };

    void runWaiting();
    void giveUpWaiting();
    void start(const CMSetDataRequest& request);
    void answer(const CMReply<QVariant>& reply, const Found& found);
    void forget(MatcherPtr matcher);

    MusicTree* m_tree;
    LibraryIndex* m_index;
    ChangePublisher* m_publisher;
    bool m_wasReady = false;
    std::deque<CMSetDataRequest> m_waiting; // for the end of the scan
    QTimer m_scanTimeout;
    // Replies stay on this thread.
    std::unordered_map<quint64, CMReply<QVariant>> m_running;
    quint64 m_lastStarted = 0;
    MatcherPtr m_matcher;
    QTimer m_matcherTimer;
};
