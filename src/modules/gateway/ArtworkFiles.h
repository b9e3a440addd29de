#pragma once

#include <optional>

#include <QStringList>

#include "HttpMessages.h"

// The pictures in the music folder, and those from inside of music files, which are kept in the
// data folder, for clients that know a track's artwork by its file: URL only. Serves nothing but
// pictures, and nothing from outside the two folders. Nothing here fails: what may
// not be seen is not found.
class ArtworkFiles {
public:
    ArtworkFiles(const QString& musicFolder, const QString& dataFolder);

    std::optional<HttpResponse> find(const QString& uri, const QByteArray& heldTag) const;

private:
    QStringList m_folders; // as configured: they may be links, or come later
};
