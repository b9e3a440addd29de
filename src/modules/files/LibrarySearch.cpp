#include "LibrarySearch.h"

#include <algorithm>
#include <numeric>

namespace {

// By SearchTexts::Match.
constexpr int PointsInName[] = {0, 2, 4};
constexpr int PointsElsewhere[] = {0, 1, 3};

// How well one word is found in each name of the roles that are searched.
using NameMatches = std::array<std::vector<quint8>, Library::RolesCount>;

NameMatches matchNames(const Library& library, const QString& word) {
    NameMatches matches;
    for (const Library::Role role : Library::searchedRoles())
        matches[role] = library.texts(role).match(word);
    return matches;
}

// The points of all words so far; 0 where one was not found.
class Points {
public:
    explicit Points(std::size_t count) : m_points(count, 1) {}

    template <typename PointsOf>
    void add(PointsOf pointsOf) {
        for (std::size_t i = 0; i < m_points.size(); ++i) {
            if (m_points[i] == 0)
                continue;
            const int points = pointsOf(quint32(i));
            m_points[i] = points > 0 ? m_points[i] + points : 0;
        }
    }
    bool isFound(std::size_t place) const { return m_points[place] > 0; }

    // Those that are found, in this order where they are as good.
    std::vector<quint64> best(const std::vector<quint32>& order) const {
        std::vector<quint64> found;
        for (const quint32 place : order) {
            if (isFound(place))
                found.push_back(place);
        }
        std::stable_sort(found.begin(), found.end(),
                         [this](quint64 a, quint64 b) { return m_points[a] > m_points[b]; });
        return found;
    }

private:
    std::vector<int> m_points;
};

std::vector<quint32> ascending(std::size_t count) {
    std::vector<quint32> order(count);
    std::iota(order.begin(), order.end(), 0);
    return order;
}

} // namespace

SearchResult LibrarySearch::find(const LibraryPtr& library, const QStringList& words) {
    SearchResult result{library, {}, {}, {}};
    if (words.isEmpty())
        return result;
    const std::vector<Library::AlbumEntry>& allAlbums = library->albums();
    Points artists(library->names(Library::AlbumArtist).size());
    Points albums(allAlbums.size());
    Points tracks(library->tracksCount());
    std::vector<bool> isNamed(allAlbums.size());
    for (const QString& word : words) {
        const NameMatches names = matchNames(*library, word);
        const std::vector<quint8> titles = library->titleTexts().match(word);
        const std::vector<quint8> files = library->fileTexts().match(word);
        artists.add([&](quint32 id) { return PointsInName[names[Library::AlbumArtist][id]]; });
        albums.add([&](quint32 place) {
            const Library::AlbumEntry& album = allAlbums[place];
            const quint8 inName = names[Library::Album][album.name];
            isNamed[place] = isNamed[place] || inName != SearchTexts::None;
            return std::max(PointsInName[inName],
                            PointsElsewhere[names[Library::AlbumArtist][album.artist]]);
        });
        tracks.add([&](quint32 track) {
            int points = std::max(PointsInName[titles[track]], PointsElsewhere[files[track]]);
            for (const Library::Role role : Library::searchedRoles())
                points =
                    std::max(points, PointsElsewhere[names[role][library->nameOf(role, track)]]);
            return points;
        });
    }
    result.artists = artists.best(ascending(library->names(Library::AlbumArtist).size()));
    result.albums = albums.best(library->albumsByName());
    result.albums.erase(std::remove_if(result.albums.begin(), result.albums.end(),
                                       [&isNamed](quint64 album) { return !isNamed[album]; }),
                        result.albums.end());
    result.tracks = tracks.best(ascending(library->tracksCount()));
    return result;
}
