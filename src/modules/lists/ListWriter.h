#pragma once

#include <QByteArray>

#include "TrackList.h"

// Writes playlist files, in UTF-8. Control characters and line breaks in texts become blanks, so
// that a line stays a line; locations are written as they are. Pure functions, for any thread;
// nothing fails.
namespace ListWriter {

QByteArray writeM3u8(const TrackList& list);
QByteArray writeXspf(const TrackList& list);

// A text as a file of any kind can hold it.
QString plain(const QString& text);

} // namespace ListWriter
