#include "PageFiles.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 MaxFile = 32 * 1024 * 1024;

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
    {"webp", "image/webp"},
    {"ico", "image/x-icon"},
    {"woff2", "font/woff2"},
    {"txt", "text/plain; charset=utf-8"},
};

QByteArray mediaTypeOf(const QString& suffix) {
    for (const MediaType& row : MediaTypes) {
        if (suffix.compare(QLatin1String(row.suffix), Qt::CaseInsensitive) == 0)
            return row.type;
    }
    return "application/octet-stream";
}

HttpResponse greeting() {
    return {200,
            "text/plain; charset=utf-8",
            "This device speaks HTTP below /api:\n"
            "  GET  /api/paths   the names of all paths\n"
            "  GET  /api/rows    the rows of a list\n"
            "  POST /api/data    a command\n"
            "  GET  /api/value   one value; PUT sets it\n"
            "  GET  /api/events  what changes\n",
            {}};
}

} // namespace

PageFiles::PageFiles(const QString& folder)
    : m_folder(folder.isEmpty() ? QString() : QFileInfo(folder).canonicalFilePath()) {}

std::optional<HttpResponse> PageFiles::find(const QString& path, const QByteArray& heldTag) const {
    const bool root = path == QLatin1String("/");
    if (m_folder.isEmpty())
        return root ? std::optional(greeting()) : std::nullopt;
    const QFileInfo info(m_folder + (root ? QStringLiteral("/index.html") : path));
    // The canonical name has no ".." and no link left, so it is either inside the folder or not.
    const QString file = info.canonicalFilePath();
    if (!file.startsWith(m_folder + QLatin1Char('/')) || !info.isFile() || info.size() > MaxFile)
        return std::nullopt;
    const QByteArray tag = '"' + QByteArray::number(info.lastModified().toMSecsSinceEpoch(), 36) +
                           '-' + QByteArray::number(info.size(), 36) + '"';
    const QVector<QPair<QByteArray, QByteArray>> headers = {
        {"ETag", tag}, {"Cache-Control", "no-cache"}, {"X-Content-Type-Options", "nosniff"}};
    const QByteArray type = mediaTypeOf(info.suffix());
    if (heldTag == tag)
        return HttpResponse{304, type, {}, headers};
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly))
        return std::nullopt;
    return HttpResponse{200, type, opened.readAll(), headers};
}
