#pragma once

#include <QString>

// What a file says about itself. Texts are empty and numbers 0 where it says nothing.
struct TrackTags {
    QString title;
    QString artist;
    QString album;
    QString genre;
    int trackNumber = 0;
    qint64 durationMs = 0;
};

namespace TagReader {

// Reads the file's tags and duration. Synchronous. Never fails: a file that is damaged, gone or of
// an unknown kind has empty tags.
TrackTags read(const QString& file);

} // namespace TagReader
