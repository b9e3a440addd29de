#include "PageFiles.h"

#include <QFileInfo>

#include "ServedFile.h"

namespace {

constexpr qint64 MaxFile = 32 * 1024 * 1024;

HttpResponse greeting() {
    return {200,
            "text/plain; charset=utf-8",
            "This device speaks HTTP below /api:\n"
            "  GET  /api/paths   the names of all paths\n"
            "  GET  /api/modules which modules there are\n"
            "  GET  /api/rows    the rows of a list\n"
            "  POST /api/data    a command\n"
            "  GET  /api/value   one value; PUT sets it\n"
            "  GET  /api/events  what changes\n"
            "  GET  /api/artwork a picture of the music folder\n",
            {}};
}

} // namespace

PageFiles::PageFiles(const QString& folder)
    : m_folder(folder.isEmpty() ? QString() : QFileInfo(folder).canonicalFilePath()) {}

std::optional<HttpResponse> PageFiles::find(const QString& path, const QByteArray& heldTag) const {
    const bool root = path == QLatin1String("/");
    if (m_folder.isEmpty())
        return root ? std::optional(greeting()) : std::nullopt;
    return ServedFile::answer(m_folder, m_folder + (root ? QStringLiteral("/index.html") : path),
                              MaxFile, "no-cache", heldTag);
}
