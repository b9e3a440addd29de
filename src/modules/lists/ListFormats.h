#pragma once

#include "ListReader.h"
#include "ListWriter.h"

// A kind of playlist file.
struct ListFormat {
    const char* suffix;
    // Of every file of this kind, in lower case; null: no such thing.
    const char* beginning = nullptr;
    ListReader::Result (*read)(const QString& text);
    QByteArray (*write)(const TrackList& list) = nullptr; // null: is only read
    bool areUris = false; // locations are addresses with percent codes, never plain names
    const char* mimeType;
};

namespace ListFormats {

// Null when there is none.
const ListFormat* ofSuffix(const QString& suffix);
const ListFormat* beginningOf(const QString& text);

} // namespace ListFormats
