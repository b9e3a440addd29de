#include "FolderWatcher.h"

#include <cerrno>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

#include <QSocketNotifier>

#include "CMConnect.h"
#include "FilesLog.h"

namespace {

constexpr int GatherMs = 300;

// Creation counts too: a link that is made is never written to.
constexpr uint32_t Events = IN_CREATE | IN_CLOSE_WRITE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                            IN_ATTRIB | IN_DELETE_SELF | IN_ONLYDIR | IN_DONT_FOLLOW |
                            IN_EXCL_UNLINK;

} // namespace

FolderWatcher::FolderWatcher(int limit, QObject* parent)
    : QObject(parent), m_limit(limit), m_descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    m_gather.setSingleShot(true);
    m_gather.setInterval(GatherMs);
    cmConnect(&m_gather, &QTimer::timeout, this, [this] { report(); });
    if (m_descriptor < 0) {
        LOG4CPLUS_WARN(filesLog(),
                       "changes of the music folder are not followed: " << std::strerror(errno));
        return;
    }
    auto* notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    cmConnect(notifier, &QSocketNotifier::activated, this, [this] { readEvents(); });
}

FolderWatcher::~FolderWatcher() {
    if (m_descriptor >= 0)
        close(m_descriptor);
}

void FolderWatcher::add(const FolderPtr& folder) {
    if (m_descriptor < 0 || folder->diskPath.isEmpty())
        return;
    if (m_watches.size() >= m_limit && !m_descriptors.count(folder.get())) {
        reachedLimit(*folder);
        return;
    }
    const int watch =
        inotify_add_watch(m_descriptor, folder->diskPath.toUtf8().constData(), Events);
    if (watch < 0) {
        if (errno == ENOSPC)
            reachedLimit(*folder);
        return;
    }
    // A folder that was moved keeps its watch: it now belongs to the folder's new place in the
    // tree.
    if (const FolderPtr previous = m_watches.value(watch).lock())
        m_descriptors.erase(previous.get());
    m_watches.insert(watch, folder);
    m_descriptors[folder.get()] = watch;
}

void FolderWatcher::remove(const FolderPtr& folder) {
    m_dirty.erase(folder.get());
    const auto it = m_descriptors.find(folder.get());
    if (it == m_descriptors.end())
        return;
    // Fails when the folder is gone from the disk, where the system has removed the watch itself.
    inotify_rm_watch(m_descriptor, it->second);
    m_watches.remove(it->second);
    m_descriptors.erase(it);
}

void FolderWatcher::readEvents() {
    alignas(inotify_event) char buffer[16 * 1024];
    for (;;) {
        const ssize_t length = ::read(m_descriptor, buffer, sizeof buffer);
        if (length <= 0)
            break;
        for (ssize_t offset = 0; offset < length;) {
            inotify_event event;
            std::memcpy(&event, buffer + offset, sizeof event);
            offset += ssize_t(sizeof event) + ssize_t(event.len);
            if (event.mask & IN_Q_OVERFLOW)
                m_overflowed = true;
            else if (const FolderPtr folder = m_watches.value(event.wd).lock())
                m_dirty[folder.get()] = folder;
            // The folder is gone and the system has dropped the watch.
            if (event.mask & IN_IGNORED) {
                if (const FolderPtr folder = m_watches.take(event.wd).lock())
                    m_descriptors.erase(folder.get());
            }
        }
    }
    // Not restarted by later changes: a copy that goes on for minutes is shown as it grows.
    if ((m_overflowed || !m_dirty.empty()) && !m_gather.isActive())
        m_gather.start();
}

void FolderWatcher::report() {
    const auto dirty = std::move(m_dirty);
    m_dirty.clear();
    if (m_overflowed) {
        m_overflowed = false;
        Q_EMIT overflowed();
        return;
    }
    for (const auto& [key, entry] : dirty) {
        const FolderPtr folder = entry.lock();
        if (folder && folder->listed)
            Q_EMIT changed(folder);
    }
}

void FolderWatcher::reachedLimit(const Folder& folder) {
    if (m_limitLogged)
        return;
    m_limitLogged = true;
    LOG4CPLUS_WARN(filesLog(), "too many folders to watch; changes in "
                                   << folder.diskPath
                                   << " and further folders show after a rescan only ("
                                   << m_watches.size() << " are watched)");
}
