#include "ArtworkFiles.h"

#include <QFileInfo>
#include <QUrl>

#include "ServedFile.h"

namespace {

constexpr qint64 MaxPicture = 16 * 1024 * 1024;
// Long enough for a list to be scrolled back and forth without asking again.
constexpr char CacheControl[] = "private, max-age=600";

// No SVG: opened by itself it is a document that may run scripts.
constexpr const char* PictureTypes[] = {"image/png", "image/jpeg", "image/gif", "image/webp"};

bool isPicture(const QString& file) {
    const QByteArray type = ServedFile::mediaType(file);
    for (const char* picture : PictureTypes) {
        if (type == picture)
            return true;
    }
    return false;
}

} // namespace

ArtworkFiles::ArtworkFiles(const QString& musicFolder, const QString& dataFolder) {
    if (!musicFolder.isEmpty())
        m_folders.append(musicFolder);
    if (!dataFolder.isEmpty())
        m_folders.append(dataFolder + QStringLiteral("/artwork"));
}

std::optional<HttpResponse> ArtworkFiles::find(const QString& uri,
                                               const QByteArray& heldTag) const {
    const QUrl url(uri, QUrl::StrictMode);
    if (!url.isLocalFile() || !url.host().isEmpty())
        return std::nullopt;
    // Also after links are followed: a link named like a picture may lead to something else.
    const QString file = QFileInfo(url.toLocalFile()).canonicalFilePath();
    if (!isPicture(file))
        return std::nullopt;
    for (const QString& configured : m_folders) {
        const QString folder = QFileInfo(configured).canonicalFilePath();
        if (folder.isEmpty() || !file.startsWith(folder + QLatin1Char('/')))
            continue;
        return ServedFile::answer(folder, file, MaxPicture, CacheControl, heldTag);
    }
    return std::nullopt;
}
