#pragma once

#include "TrackList.h"
#include "TrString.h"

// Reads the text of a playlist file. Pure functions, for any thread; what cannot be read is
// refused as a whole.
namespace ListReader {

struct Result {
    TrackList list;
    TrString refusal; // empty when the file was read
};

// The kind of file is what its text begins with, else what the suffix says ("m3u8", without a dot),
// else, where there is no suffix either, a plain list of names.
Result read(const QString& text, const QString& suffix);

Result readM3u(const QString& text);
Result readPls(const QString& text);
Result readXspf(const QString& text);

// What readers have in common.
TrString lineTooLong(int line);
// Adds an entry. A refusal when there are too many.
TrString add(TrackList* list, const ListedTrack& track);

} // namespace ListReader
