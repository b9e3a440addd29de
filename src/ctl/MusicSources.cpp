#include "MusicSources.h"

#include <QFileInfo>

#include "ClientFailure.h"
#include "Device.h"
#include "PathText.h"

namespace {
// The paths of the files module: its tree, and the value that names the folder behind it.
const QString TreeRoot = QStringLiteral("files:tree");
const QString MusicFolderValue = QStringLiteral("files:musicFolder");
} // namespace

AddFolderJob::Source MusicSources::of(const QString& word) {
    const QFileInfo file(word);
    if (file.exists())
        return {pathOf(file.canonicalFilePath(), musicFolder()),
                file.isDir() ? AddFolderJob::Source::Either : AddFolderJob::Source::Track};
    if (PathText::isPath(word))
        return {word, AddFolderJob::Source::Either};
    throw ClientFailure::refused(QStringLiteral("there is no file or folder %1").arg(word));
}

QString MusicSources::pathOf(const QString& file, const QString& musicFolder) {
    if (file == musicFolder)
        return TreeRoot;
    const QString start =
        musicFolder.endsWith(QLatin1Char('/')) ? musicFolder : musicFolder + QLatin1Char('/');
    if (!file.startsWith(start))
        throw ClientFailure::refused(
            QStringLiteral("%1 is not in the device's music folder %2").arg(file, musicFolder));
    return PathText::append(TreeRoot,
                            file.mid(start.size()).split(QLatin1Char('/'), Qt::SkipEmptyParts));
}

QString MusicSources::musicFolder() {
    if (m_musicFolder.isEmpty()) {
        const QString folder =
            m_device->value(MusicFolderValue).toObject().value(QStringLiteral("string")).toString();
        const QString canonical = QFileInfo(folder).canonicalFilePath();
        m_musicFolder = canonical.isEmpty() ? folder : canonical;
    }
    if (m_musicFolder.isEmpty())
        throw ClientFailure::refused(QStringLiteral("this device has no music folder"));
    return m_musicFolder;
}
