#include "TrackAddress.h"

#include <QUrl>

#include "ListWriter.h"

namespace {

QString withPercentCodes(const QString& name) {
    return QString::fromLatin1(QUrl::toPercentEncoding(name, "/"));
}

// A comment, an address or a drive, to a reader that does not know it for a name.
bool looksLikeAnother(const QString& name) {
    return name.startsWith(QLatin1Char('#')) ||
           name.section(QLatin1Char('/'), 0, 0).contains(QLatin1Char(':'));
}

} // namespace

TrackAddress::TrackAddress(Paths paths, bool areUris, const QString& musicFolder)
    : m_paths(paths), m_areUris(areUris), m_musicFolder(musicFolder + QLatin1Char('/')) {}

QString TrackAddress::of(const QString& uri) const {
    const QUrl url(uri);
    if (!url.isLocalFile())
        return ListWriter::plain(uri);
    const QString file = url.toLocalFile();
    const bool isRelative = m_paths == Paths::Relative && file.startsWith(m_musicFolder);
    const QString name = isRelative ? file.mid(m_musicFolder.size()) : file;
    const bool isPlain = ListWriter::plain(name) == name;
    if (!isRelative && (m_areUris || !isPlain || m_paths == Paths::Url))
        return QString::fromLatin1(url.toEncoded());
    const QString written = m_areUris || !isPlain ? withPercentCodes(name) : name;
    return looksLikeAnother(written) ? QStringLiteral("./") + written : written;
}
