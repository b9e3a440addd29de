#include "TagLoader.h"

#include "CMConnect.h"

namespace {
// Few, so that what is urgent waits for few.
constexpr std::size_t MaxBatchFiles = 32;
// The thread goes on with the second while the event loop takes the first.
constexpr int MaxBatchesUnderWay = 2;
} // namespace

TagLoader::TagLoader(MusicTree* tree, const QString& dataFolder, QObject* parent)
    : QObject(parent), m_tree(tree), m_work(new TagWork(dataFolder)) {
    cmConnect(m_tree, &MusicTree::tagsWanted, this,
              [this](const FolderPtr& folder) { want(folder); });
    m_work->moveToThread(&m_thread);
    m_thread.setObjectName(QStringLiteral("files-tags"));
    m_thread.start();
}

TagLoader::~TagLoader() {
    m_work->stop();
    m_thread.quit();
    m_thread.wait();
    delete m_work;
}

void TagLoader::want(const FolderPtr& folder, bool urgent) {
    for (const TrackPtr& track : folder->tracks) {
        if (!track->tagged)
            (urgent ? m_urgent : m_queue).push_back({.folder = folder, .track = track});
    }
    send();
}

void TagLoader::wantNow(const FolderPtr& folder, const TrackPtr& track) {
    m_urgent.push_front({.folder = folder, .track = track, .always = true});
    send();
}

void TagLoader::sawAll() {
    QMetaObject::invokeMethod(m_work, [work = m_work] { work->sawAll(); });
}

void TagLoader::send() {
    while (m_underWay < MaxBatchesUnderWay && sendBatch()) {
    }
}

bool TagLoader::sendBatch() {
    std::vector<Job> jobs;
    take(&m_urgent, &jobs);
    take(&m_queue, &jobs);
    if (jobs.empty())
        return false;
    std::vector<TagRequest> requests;
    requests.reserve(jobs.size());
    for (const Job& job : jobs) {
        const Track& track = *job.track;
        requests.push_back({{job.folder->trackFile(track), track.size, track.modified},
                            job.folder->artwork.isEmpty()});
    }
    ++m_underWay;
    const auto work = [this, work = m_work, jobs, requests, root = m_tree->musicFolder()] {
        const std::vector<TagsPtr> tags = work->read(requests, root);
        QMetaObject::invokeMethod(this, [this, jobs, tags] { receive(jobs, tags); });
    };
    QMetaObject::invokeMethod(m_work, work);
    return true;
}

void TagLoader::take(std::deque<Job>* from, std::vector<Job>* jobs) {
    while (!from->empty() && jobs->size() < MaxBatchFiles) {
        const Job& job = from->front();
        if (!job.track->tagged && (job.always || job.track->listed))
            jobs->push_back(job);
        from->pop_front();
    }
}

void TagLoader::receive(const std::vector<Job>& jobs, const std::vector<TagsPtr>& tags) {
    for (std::size_t i = 0; i < tags.size(); ++i)
        m_tree->setTags(jobs[i].folder, jobs[i].track, tags[i]);
    --m_underWay;
    send();
    Q_EMIT progressed();
    if (isBusy())
        return;
    QMetaObject::invokeMethod(m_work, [work = m_work] { work->rest(); });
    Q_EMIT finished();
}
