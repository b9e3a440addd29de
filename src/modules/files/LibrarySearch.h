#pragma once

#include <vector>

#include <QStringList>

#include "Library.h"

// What of a library has all the words of a search, the best first. Of two that are as good, the one
// that its list has first.
struct SearchResult {
    LibraryPtr library;
    std::vector<quint64> artists; // names of album artists
    std::vector<quint64> albums;
    std::vector<quint64> tracks;
};

namespace LibrarySearch {

// In any thread. Every word has to be found: for an artist in the name, for an album in its name or
// its artist's, and one in its name, for a track in title, artist, album, album artist, composer or
// file name. A word at the start of another counts more than inside of it, and in the name of what
// is listed more than elsewhere. No words find nothing.
SearchResult find(const LibraryPtr& library, const QStringList& words);

} // namespace LibrarySearch
