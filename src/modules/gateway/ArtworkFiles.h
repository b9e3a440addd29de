#pragma once

#include <optional>

#include <QString>

#include "HttpMessages.h"

// The pictures in the music folder, for clients that know a track's artwork by its file: URL only.
// Serves nothing but pictures, and nothing from outside the folder. Nothing here fails: what may
// not be seen is not found.
class ArtworkFiles {
public:
    explicit ArtworkFiles(const QString& musicFolder) : m_musicFolder(musicFolder) {}

    std::optional<HttpResponse> find(const QString& uri, const QByteArray& heldTag) const;

private:
    QString m_musicFolder; // as configured: it may be a link, or come later
};
