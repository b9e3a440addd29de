#include "ServedFile.h"

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
    const QFileInfo info(file);
    // The canonical name has no ".." and no link left, so it is either inside the folder or not.
    const QString canonical = info.canonicalFilePath();
    if (!canonical.startsWith(folder + QLatin1Char('/')) || !info.isFile() ||
        info.size() > maxBytes)
        return std::nullopt;
    const QByteArray tag = '"' + QByteArray::number(info.lastModified().toMSecsSinceEpoch(), 36) +
                           '-' + QByteArray::number(info.size(), 36) + '"';
    const QVector<QPair<QByteArray, QByteArray>> headers = {{"ETag", tag},
                                                            {"Cache-Control", cacheControl}};
    const QByteArray type = mediaType(canonical);
    if (heldTag == tag)
        return HttpResponse{304, type, {}, headers};
    QFile opened(canonical);
    if (!opened.open(QIODevice::ReadOnly))
        return std::nullopt;
    return HttpResponse{200, type, opened.readAll(), headers};
}
