#include "MatchQueue.h"

#include <utility>

#include "CMConnect.h"
#include "ItemMaker.h"

namespace {

// The items of one answer are made in one turn of the event loop.
constexpr int MaxHints = 500;
constexpr std::size_t MaxMatches = 64;
constexpr int KeepMatcherMs = 5000;

CMError matchRefusal(const QString& name, const char* text, const QStringList& arguments = {}) {
    return CMError(name, TrString("Files", text, arguments), CMError::DefaultTitle());
}

TrackHint hintOf(const QVariant& value) {
    const QVariantHash hash = value.toHash();
    TrackHint hint;
    hint.files = hash.value(QStringLiteral("files")).toStringList();
    hint.title = hash.value(QStringLiteral("title")).toString();
    hint.artist = hash.value(QStringLiteral("artist")).toString();
    hint.album = hash.value(QStringLiteral("album")).toString();
    hint.durationMs = OrvoHash::toInt64(hash.value(QStringLiteral("duration")), 0);
    return hint;
}

} // namespace

MatchQueue::MatchQueue(MusicTree* tree, Scanner* scanner, LibraryIndex* index,
                       ChangePublisher* publisher, QObject* parent)
    : QObject(parent), m_tree(tree), m_index(index), m_publisher(publisher) {
    m_matcherTimer.setSingleShot(true);
    m_matcherTimer.setInterval(KeepMatcherMs);
    cmConnect(&m_matcherTimer, &QTimer::timeout, this, [this] { forget(std::move(m_matcher)); });
    m_scanTimeout.setSingleShot(true);
    m_scanTimeout.setInterval(ScanTimeoutMs);
    cmConnect(&m_scanTimeout, &QTimer::timeout, this, [this] { giveUpWaiting(); });
    cmConnect(scanner, &Scanner::finished, this, [this] { runWaiting(); });
    cmConnect(m_index, &LibraryIndex::changed, this, [this] {
        forget(std::move(m_matcher));
        runWaiting();
    });
}

MatchQueue::~MatchQueue() {
    m_index->pool()->waitForDone();
}

void MatchQueue::match(const CMSetDataRequest& request) {
    const QVariant& value = request.value();
    if (!value.canConvert<QVariantList>()) {
        request.reply().setError(
            matchRefusal(CMError::InvalidValue(), "The value must be a list of hints."));
    } else if (value.toList().size() > MaxHints) {
        request.reply().setError(matchRefusal(CMError::InvalidValue(),
                                              "More than %1 hints at once are too many.",
                                              {QString::number(MaxHints)}));
    } else if (m_waiting.size() + m_running.size() >= MaxMatches) {
        request.reply().setError(matchRefusal(
            CMError::InvalidValue(), "Too many tracks are being looked for. Please try again."));
    } else if (m_publisher->isReady()) {
        start(request);
    } else {
        m_waiting.push_back(request);
        if (!m_scanTimeout.isActive())
            m_scanTimeout.start();
    }
}

void MatchQueue::runWaiting() {
    if (!m_publisher->isReady())
        return;
    m_wasReady = true;
    m_scanTimeout.stop();
    for (const CMSetDataRequest& request : std::exchange(m_waiting, {}))
        start(request);
}

// A folder that changes all the time is behind for ever; one that was never looked through whole
// would have tracks missing that are there.
void MatchQueue::giveUpWaiting() {
    for (const CMSetDataRequest& request : std::exchange(m_waiting, {})) {
        if (m_wasReady)
            start(request);
        else
            request.reply().setError(matchRefusal(
                QStringLiteral("Scanning"),
                "The music folder is still being looked through. Please try again later."));
    }
}

void MatchQueue::start(const CMSetDataRequest& request) {
    m_matcherTimer.start();
    const quint64 id = ++m_lastStarted;
    m_running.emplace(id, request.reply());
    m_index->pool()->start([this, id, hints = request.value().toList(), matcher = m_matcher,
                            library = m_index->library(), musicFolder = m_tree->musicFolder()] {
        Found found;
        found.matcher =
            matcher ? matcher : std::make_shared<const TrackMatcher>(library, musicFolder);
        for (const QVariant& hint : hints)
            found.tracks.push_back(found.matcher->find(hintOf(hint)));
        QMetaObject::invokeMethod(this, [this, id, found] {
            const auto running = m_running.extract(id);
            answer(running.mapped(), found);
        });
    });
}

void MatchQueue::answer(const CMReply<QVariant>& reply, const Found& found) {
    const LibraryPtr& library = found.matcher->library();
    if (library != m_index->library())
        forget(found.matcher);
    else if (m_matcherTimer.isActive())
        m_matcher = found.matcher;
    ItemMaker maker;
    QVariantList items;
    items.reserve(int(found.tracks.size()));
    for (const std::optional<quint32>& track : found.tracks) {
        if (!track) {
            items.append(QVariant());
            continue;
        }
        const LibraryTrack& each = library->track(*track);
        items.append(maker.item(each.folder, *each.track).toVariant());
    }
    reply.setValue(items);
}

// Letting go of a matcher takes too long for the event loop.
void MatchQueue::forget(MatcherPtr matcher) {
    if (matcher)
        m_index->pool()->start([forgotten = std::move(matcher)]() mutable { forgotten.reset(); });
}
