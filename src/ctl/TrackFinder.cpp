#include "TrackFinder.h"

#include <QDir>
#include <QFileInfo>

#include "ClientFailure.h"
#include "PathText.h"

namespace {

// The paths of the files module: its tree, and the value that names the folder behind it.
const QString TreeRoot = QStringLiteral("files:tree");
const QString MusicFolderValue = QStringLiteral("files:musicFolder");

const QStringList Roles = {QStringLiteral("type"), QStringLiteral("path"),
                           QStringLiteral("containerType")};
constexpr int ContainerType = 1;
constexpr int TrackType = 3;
constexpr int ContextMenuContainer = 100;
constexpr int MaxDepth = 64;

} // namespace

QStringList TrackFinder::find(const QStringList& words) {
    for (const QString& word : words) {
        bool isFolder = false;
        const QString path = toPath(word, &isFolder);
        const auto content = isFolder ? m_device->tryRows(path, Roles) : std::nullopt;
        if (content)
            addFolder(path, *content, 0);
        else
            addTrack(path);
    }
    return m_tracks;
}

QString TrackFinder::toPath(const QString& word, bool* isFolder) {
    const QFileInfo file(word);
    *isFolder = true;
    if (file.exists()) {
        *isFolder = file.isDir();
        return pathOf(file.canonicalFilePath(), musicFolder());
    }
    // A path of the device may be either; it shows when it is read.
    if (PathText::isPath(word))
        return word;
    throw ClientFailure::refused(QStringLiteral("there is no file or folder %1").arg(word));
}

QString TrackFinder::pathOf(const QString& file, const QString& musicFolder) {
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

QString TrackFinder::musicFolder() {
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

void TrackFinder::addFolder(const QString& path, const DeviceRows& content, int depth) {
    if (depth > MaxDepth || m_open.contains(path))
        return;
    m_open.insert(path);
    for (const QJsonObject& row : content.rows) {
        const QString rowPath = row.value(QStringLiteral("path")).toString();
        const int type = row.value(QStringLiteral("type")).toInt();
        if (rowPath.isEmpty())
            continue;
        if (type == TrackType)
            addTrack(rowPath);
        else if (type == ContainerType &&
                 row.value(QStringLiteral("containerType")).toInt() != ContextMenuContainer)
            addFolder(rowPath, m_device->rows(rowPath, Roles), depth + 1);
    }
    m_open.remove(path);
}

void TrackFinder::addTrack(const QString& path) {
    m_tracks.append(path);
    m_found(m_tracks.size());
}
