#pragma once

#include <QString>

// Which files are tracks: told by the end of their name, as reading every file would make a scan as
// slow as the disk.
namespace AudioFormats {

// The MIME type of an audio file, empty for anything else.
QString mimeType(const QString& fileName);

} // namespace AudioFormats
