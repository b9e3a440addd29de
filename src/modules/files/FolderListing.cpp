#include "FolderListing.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

#include <QStringList>

#include "AudioFormats.h"
#include "FilesLog.h"
#include "NameOrder.h"

namespace {

// The best first.
const QStringList& artworkNames() {
    static const QStringList names = {
        QStringLiteral("cover.jpg"),  QStringLiteral("cover.jpeg"),  QStringLiteral("cover.png"),
        QStringLiteral("folder.jpg"), QStringLiteral("folder.jpeg"), QStringLiteral("folder.png"),
        QStringLiteral("front.jpg"),  QStringLiteral("front.jpeg"),  QStringLiteral("front.png"),
    };
    return names;
}

// The path without links, empty when it leads nowhere.
QByteArray canonical(const QByteArray& path) {
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path.constData(), nullptr),
                                                          std::free);
    return QByteArray(resolved.get());
}

bool listedBefore(const FolderEntries::Entry& a, const FolderEntries::Entry& b) {
    const int order = a.sortKey.compare(b.sortKey);
    return order != 0 ? order < 0 : a.name < b.name;
}

} // namespace

FolderListing::FolderListing(const QString& folder, const QString& root)
    : m_folder(folder),
      m_root(root),
      m_collator(NameOrder::collator()),
      m_artworkRank(artworkNames().size()) {
    open();
}

void FolderListing::open() {
    const QByteArray path = m_folder.toUtf8();
    // A folder that has become a link since its parent was read may lead anywhere.
    const QByteArray target = canonical(path);
    const bool isLink = !target.isEmpty() && target != path;
    if (target == path)
        m_dir.reset(opendir(path.constData()));
    const char* reason = isLink ? "it has become a link" : std::strerror(errno);
    m_finished = !m_dir;
    if (!m_dir)
        LOG4CPLUS_WARN(filesLog(), "cannot read the folder " << m_folder << ": " << reason);
}

bool FolderListing::read(const QDeadlineTimer& deadline) {
    while (!m_finished) {
        errno = 0;
        const dirent* found = readdir(m_dir.get());
        if (found) {
            add(*found);
        } else {
            if (errno != 0)
                LOG4CPLUS_WARN(filesLog(), "the folder " << m_folder << " was read in part only");
            finish();
        }
        if (deadline.hasExpired())
            break;
    }
    return m_finished;
}

void FolderListing::add(const dirent& found) {
    const QByteArray bytes(found.d_name);
    if (bytes.startsWith('.'))
        return;
    const QString name = QString::fromUtf8(bytes);
    if (name.toUtf8() != bytes) {
        LOG4CPLUS_WARN(filesLog(),
                       "left out a name that is not UTF-8: " << m_folder << "/" << name);
        return;
    }
    struct stat status {};
    const int dirDescriptor = dirfd(m_dir.get());
    if (fstatat(dirDescriptor, bytes.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return; // gone again
    const bool isLink = S_ISLNK(status.st_mode);
    if (isLink && fstatat(dirDescriptor, bytes.constData(), &status, 0) != 0)
        return; // leads nowhere
    if (S_ISDIR(status.st_mode)) {
        if (isLink)
            LOG4CPLUS_DEBUG(filesLog(), "left out a link to a folder: " << m_folder << "/" << name);
        else
            m_entries.folders.push_back({name, m_collator.sortKey(name), {}, 0, 0});
        return;
    }
    const QString mimeType = AudioFormats::mimeType(name);
    const bool isPicture = artworkNames().contains(name, Qt::CaseInsensitive);
    if (!S_ISREG(status.st_mode) || (mimeType.isEmpty() && !isPicture))
        return;
    if (isLink && !leadsInside(name)) {
        LOG4CPLUS_WARN(filesLog(),
                       "left out a link out of the music folder: " << m_folder << "/" << name);
        return;
    }
    if (isPicture) {
        considerArtwork(name);
        return;
    }
    constexpr qint64 NanosecondsPerSecond = 1'000'000'000;
    const qint64 modified =
        qint64(status.st_mtim.tv_sec) * NanosecondsPerSecond + status.st_mtim.tv_nsec;
    m_entries.tracks.push_back(
        {name, m_collator.sortKey(name), mimeType, qint64(status.st_size), modified});
}

bool FolderListing::leadsInside(const QString& name) const {
    const QByteArray target = canonical((m_folder + QLatin1Char('/') + name).toUtf8());
    return target.startsWith((m_root + QLatin1Char('/')).toUtf8());
}

void FolderListing::considerArtwork(const QString& name) {
    const int rank = artworkNames().indexOf(name.toLower());
    if (rank < m_artworkRank || (rank == m_artworkRank && name < m_entries.artwork)) {
        m_artworkRank = rank;
        m_entries.artwork = name;
    }
}

void FolderListing::finish() {
    m_dir.reset();
    m_finished = true;
    std::sort(m_entries.folders.begin(), m_entries.folders.end(), listedBefore);
    std::sort(m_entries.tracks.begin(), m_entries.tracks.end(), listedBefore);
}
