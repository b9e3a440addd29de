#include "TagWork.h"

#include <QFileInfo>

#include "FilesLog.h"
#include "MusicRoles.h"
#include "TagReader.h"

namespace {

// A name that was listed may have become a link, or a pipe that would be waited for.
bool isFileInside(const QString& file, const QString& folder) {
    const QFileInfo info(QFileInfo(file).canonicalFilePath());
    return info.isFile() && info.filePath().startsWith(folder + QLatin1Char('/'));
}

} // namespace

void TagWork::open() {
    m_store = std::make_unique<TagStore>(
        m_dataFolder.isEmpty() ? QString() : m_dataFolder + QStringLiteral("/files.sqlite"));
    m_pictures = std::make_unique<PictureStore>(PictureStore::folderIn(m_dataFolder));
}

std::vector<TagsPtr> TagWork::read(const std::vector<TagRequest>& requests,
                                   const QString& musicFolder) {
    if (!m_store)
        open();
    std::vector<TagsPtr> results;
    results.reserve(requests.size());
    for (const TagRequest& request : requests) {
        if (m_stopped)
            break;
        results.push_back(readOne(request, musicFolder));
    }
    return results;
}

TagsPtr TagWork::readOne(const TagRequest& request, const QString& musicFolder) {
    const bool wantsPicture = request.picture && m_pictures->isUsable();
    if (const auto found = m_store->find(request.key)) {
        const bool hasPicture = found->pictureSought && (found->tags.picture.isEmpty() ||
                                                         m_pictures->has(found->tags.picture));
        if (!wantsPicture || hasPicture)
            return share(found->tags);
    }
    if (!isFileInside(request.key.path, musicFolder)) {
        LOG4CPLUS_WARN(filesLog(), "not opened, it is no file of the music folder any more: "
                                       << request.key.path);
        return share({});
    }
    QByteArray picture;
    TrackTags tags = TagReader::read(request.key.path, wantsPicture ? &picture : nullptr);
    tags.picture = m_pictures->keep(picture);
    m_store->put(request.key, tags, wantsPicture);
    return share(tags);
}

TagsPtr TagWork::share(TrackTags tags) {
    if (!tags.picture.isEmpty())
        tags.picture = MusicRoles::fileUrl(m_pictures->file(tags.picture));
    for (QString* text : {&tags.artist, &tags.albumArtist, &tags.album, &tags.genre, &tags.composer,
                          &tags.date, &tags.picture})
        *text = shared(*text);
    return std::make_shared<const TrackTags>(std::move(tags));
}

QString TagWork::shared(const QString& text) {
    return text.isEmpty() ? QString() : *m_texts.insert(text);
}

void TagWork::rest() {
    if (m_store)
        m_store->commit();
    m_texts = {};
}

void TagWork::sawAll() {
    if (m_store)
        m_store->forgetUnseen();
}
