#pragma once

#include "ListReader.h"
#include "ListWriter.h"

// A kind of playlist file.
struct ListFormat {
    const char* suffix;
    const char* beginning; // of every file of this kind, in lower case; null: no such thing
    ListReader::Result (*read)(const QString& text);
    QByteArray (*write)(const TrackList& list); // null: is only read
    bool areUris; // locations are addresses with percent codes, never plain names
    const char* mimeType;
};

namespace ListFormats {

// Null when there is none.
const ListFormat* ofSuffix(const QString& suffix);
const ListFormat* beginningOf(const QString& text);

} // namespace ListFormats
