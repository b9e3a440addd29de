#pragma once

#include <array>
#include <memory>
#include <vector>

#include "MusicTree.h"
#include "NameTable.h"
#include "SearchTexts.h"

// A track and where it is.
struct LibraryTrack {
    FolderPtr folder;
    TrackPtr track;
};

// All tracks by what their tags say, as they were at one moment. Made in a thread, never changed,
// and read by the event loop and by searches at the same time; of folders and tracks it reads only
// what never changes either. What it lists is told by numbers: of a track its place in the order of
// albums, of an album or name its place in the order of a person.
class Library {
public:
    // What tracks can be selected and told apart by.
    enum Role : int { Artist, AlbumArtist, Album, Genre, Composer, Date, RolesCount };

    struct AlbumEntry {
        quint32 artist = 0; // AlbumArtist
        quint32 name = 0;   // Album
        quint32 firstTrack = 0;
        quint32 tracksCount = 0;
        qint64 newest = 0; // time of change, nanoseconds
    };

    Library() = default;
    explicit Library(std::vector<LibraryTrack> tracks);

    quint32 tracksCount() const { return quint32(m_tracks.size()); }
    const LibraryTrack& track(quint32 track) const { return m_tracks[track]; }
    const NameTable& names(Role role) const { return m_names[role]; }
    quint32 nameOf(Role role, quint32 track) const { return m_ids[role][track]; }
    // The track's place in the order of titles.
    quint32 titleRank(quint32 track) const { return m_titleRanks[track]; }
    quint32 albumOf(quint32 track) const { return m_albumOf[track]; }

    // The roles whose names a search looks into, and the texts of these, of titles and of file
    // names.
    static const std::vector<Role>& searchedRoles();
    const SearchTexts& texts(Role role) const { return m_texts[role]; }
    const SearchTexts& titleTexts() const { return m_titleTexts; }
    const SearchTexts& fileTexts() const { return m_fileTexts; }

    // In the order of artists, then names: an artist's albums are next to each other.
    const std::vector<AlbumEntry>& albums() const { return m_albums; }
    // The same by name, and the newest first.
    const std::vector<quint32>& albumsByName() const { return m_albumsByName; }
    const std::vector<quint32>& albumsByAge() const { return m_albumsByAge; }

private:
    void nameTracks(const std::vector<LibraryTrack>& tracks);
    void orderTracks(std::vector<LibraryTrack> tracks);
    void findAlbums();
    void gatherTexts();

    std::vector<LibraryTrack> m_tracks;
    std::array<NameTable, RolesCount> m_names;
    std::array<std::vector<quint32>, RolesCount> m_ids; // by track
    std::vector<quint32> m_titleRanks;
    std::array<SearchTexts, RolesCount> m_texts; // of the roles that are searched, by name
    SearchTexts m_titleTexts;
    SearchTexts m_fileTexts;
    std::vector<quint32> m_albumOf;
    std::vector<AlbumEntry> m_albums;
    std::vector<quint32> m_albumsByName;
    std::vector<quint32> m_albumsByAge;
};
using LibraryPtr = std::shared_ptr<const Library>;
