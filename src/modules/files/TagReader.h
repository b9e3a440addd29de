#pragma once

#include <QByteArray>
#include <QString>

#include "TrackTags.h"

namespace TagReader {

// Longer texts are cut: no title needs more, and every list carries them.
constexpr int MaxTagText = 1000;

// Reads the file's tags and duration, and into `picture`, where given, the bytes of the picture
// inside, the front of the cover before others. Synchronous, from any thread. Never fails: a file
// that is damaged, gone or of an unknown kind has empty tags. Control characters become blanks.
TrackTags read(const QString& file, QByteArray* picture = nullptr);

} // namespace TagReader
