#pragma once

#include <memory>

#include <QString>

// What a file says about itself. Texts are empty and numbers 0 where it says nothing. Texts are
// shared where tracks have the same.
struct TrackTags {
    QString title;
    QString artist;
    QString albumArtist;
    QString album;
    QString genre;
    QString composer;
    QString date; // as written in the file: a year, or more
    // Of the picture inside, where the folder has none: in a store the name in the folder of
    // pictures, with a track the file: URL.
    QString picture;
    int disc = 0;
    int trackNumber = 0;
    qint64 durationMs = 0;
};

// Never changed once made, so that threads share them.
using TagsPtr = std::shared_ptr<const TrackTags>;
