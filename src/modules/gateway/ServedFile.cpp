#include "ServedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

namespace {

struct MediaType {
    const char* suffix;
    const char* type;
};

constexpr MediaType MediaTypes[] = {
    {"html", "text/html; charset=utf-8"},
    {"css", "text/css; charset=utf-8"},
    {"js", "text/javascript; charset=utf-8"},
    {"mjs", "text/javascript; charset=utf-8"},
    {"json", "application/json"},
    {"map", "application/json"},
    {"webmanifest", "application/manifest+json"},
    {"svg", "image/svg+xml"},
    {"png", "image/png"},
    {"jpg", "image/jpeg"},
    {"jpeg", "image/jpeg"},
    {"gif", "image/gif"},
    {"webp", "image/webp"},
    {"ico", "image/x-icon"},
    {"woff2", "font/woff2"},
    {"txt", "text/plain; charset=utf-8"},
};

// Null for what is no regular file; a pipe is not waited for.
std::shared_ptr<QFile> openRegular(const QString& name) {
    // It would end the name for the system and not for the checks before.
    if (name.contains(QChar(0)))
        return nullptr;
    const int descriptor =
        ::open(QFile::encodeName(name).constData(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    auto file = std::make_shared<QFile>();
    struct stat about {};
    const bool isRegular = ::fstat(descriptor, &about) == 0 && S_ISREG(about.st_mode);
    if (file->open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered,
                   QFileDevice::AutoCloseHandle))
        return isRegular ? file : nullptr;
    ::close(descriptor);
    return nullptr;
}

} // namespace

QByteArray ServedFile::mediaType(const QString& fileName) {
    const QString suffix = QFileInfo(fileName).suffix();
    for (const MediaType& row : MediaTypes) {
        if (suffix.compare(QLatin1String(row.suffix), Qt::CaseInsensitive) == 0)
            return row.type;
    }
    return "application/octet-stream";
}

std::optional<HttpResponse> ServedFile::answer(const QString& folder, const QString& file,
                                               qint64 maxBytes, const QByteArray& cacheControl,
                                               const QByteArray& heldTag) {
    // The canonical name has no ".." and no link left, so it is either inside the folder or not.
    const QString canonical = QFileInfo(file).canonicalFilePath();
    if (!canonical.startsWith(folder + QLatin1Char('/')))
        return std::nullopt;
    const auto opened = openRegular(canonical);
    if (!opened || opened->size() > maxBytes)
        return std::nullopt;
    const qint64 changed = opened->fileTime(QFileDevice::FileModificationTime).toMSecsSinceEpoch();
    const QByteArray tag =
        '"' + QByteArray::number(changed, 36) + '-' + QByteArray::number(opened->size(), 36) + '"';
    HttpResponse answer{200, mediaType(canonical), {}, {{"ETag", tag}}, opened, opened->size()};
    answer.headers.append({"Cache-Control", cacheControl});
    if (heldTag == tag) {
        answer.status = 304;
        answer.file.reset();
    }
    return answer;
}
