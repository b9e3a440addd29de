#include "PageFiles.h"

#include <QCryptographicHash>
#include <QFile>
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

// Of the style sheet in the page, by which its frame is shown before any other file is there.
QByteArray ownStyle(const QString& file) {
    static const QByteArray Begin = "<style>";
    QFile page(file);
    if (!page.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = page.read(MaxFile);
    const int begin = text.indexOf(Begin);
    const int end = text.indexOf("</style>", begin);
    if (begin < 0 || end < 0)
        return {};
    const QByteArray style = text.mid(begin + Begin.size(), end - begin - Begin.size());
    return "sha256-" + QCryptographicHash::hash(style, QCryptographicHash::Sha256).toBase64();
}

} // namespace

PageFiles::PageFiles(const QString& folder)
    : m_folder(folder.isEmpty() ? QString() : QFileInfo(folder).canonicalFilePath()) {}

std::optional<HttpResponse> PageFiles::find(const QString& path, const QByteArray& heldTag) const {
    const bool root = path == QLatin1String("/");
    if (m_folder.isEmpty())
        return root ? std::optional(greeting()) : std::nullopt;
    const QString file = m_folder + (root ? QStringLiteral("/index.html") : path);
    auto answer = ServedFile::answer(m_folder, file, MaxFile, "no-cache", heldTag);
    // The policy of a page that the client holds is renewed by the answer that says so.
    if (answer && answer->contentType.startsWith("text/html"))
        answer->ownStyle = ownStyle(file);
    return answer;
}
