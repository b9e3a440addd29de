#pragma once

#include <QString>

struct SoundTags {
    QString title;
    QString artist;
    QString album;
    QString genre;
    int track = 0;
};

namespace SoundFiles {

// A silent WAV file with its tags in an INFO chunk; folders on the way are made.
void writeWav(const QString& file, const SoundTags& tags = {}, int durationMs = 1000);
// A file of the kind its suffix names, made by sox. False when sox could not.
bool writeWithSox(const QString& file, const SoundTags& tags, double seconds);
// Any bytes; folders on the way are made.
void writeBytes(const QString& file, const QByteArray& bytes);

} // namespace SoundFiles
