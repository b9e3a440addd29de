#pragma once

#include <QByteArray>

namespace TagLib {
class File;
}

namespace PictureReader {

// The bytes of the picture inside of an open music file: the front of the cover, or else the first
// one. Empty without a picture. Formats that TagLib reads pictures of, each in its own way.
QByteArray read(TagLib::File* file);

} // namespace PictureReader
