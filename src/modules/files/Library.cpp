#include "Library.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "MusicRoles.h"

namespace {

const QString& textOf(const TrackTags& tags, Library::Role role) {
    switch (role) {
    case Library::Artist:
        return tags.artist;
    case Library::AlbumArtist:
        return tags.albumArtist.isEmpty() ? tags.artist : tags.albumArtist;
    case Library::Album:
        return tags.album;
    case Library::Genre:
        return tags.genre;
    case Library::Composer:
        return tags.composer;
    case Library::Date:
    case Library::RolesCount:
        break;
    }
    return tags.date;
}

std::vector<quint32> places(std::size_t count) {
    std::vector<quint32> all(count);
    std::iota(all.begin(), all.end(), 0);
    return all;
}

} // namespace

Library::Library(std::vector<LibraryTrack> tracks) {
    nameTracks(tracks);
    orderTracks(std::move(tracks));
    findAlbums();
    gatherTexts();
}

const std::vector<Library::Role>& Library::searchedRoles() {
    static const std::vector<Role> roles = {Artist, AlbumArtist, Album, Composer};
    return roles;
}

void Library::nameTracks(const std::vector<LibraryTrack>& tracks) {
    for (int role = 0; role < RolesCount; ++role) {
        std::vector<quint32>& ids = m_ids[role];
        ids.reserve(tracks.size());
        for (const LibraryTrack& each : tracks)
            ids.push_back(m_names[role].add(textOf(*each.track->tags, Role(role))));
        const std::vector<quint32> inOrder = m_names[role].finish();
        for (quint32& id : ids)
            id = inOrder[id];
    }
    NameTable titles;
    m_titleRanks.reserve(tracks.size());
    for (const LibraryTrack& each : tracks)
        m_titleRanks.push_back(titles.add(MusicRoles::title(*each.track)));
    const std::vector<quint32> inOrder = titles.finish();
    for (quint32& rank : m_titleRanks)
        rank = inOrder[rank];
}

void Library::orderTracks(std::vector<LibraryTrack> tracks) {
    const auto key = [this, &tracks](quint32 track) {
        const TrackTags& tags = *tracks[track].track->tags;
        return std::make_tuple(nameOf(AlbumArtist, track), nameOf(Album, track), tags.disc,
                               tags.trackNumber, titleRank(track), track);
    };
    std::vector<quint32> order = places(tracks.size());
    std::sort(order.begin(), order.end(), [&key](quint32 a, quint32 b) { return key(a) < key(b); });
    const auto rearrange = [&order](std::vector<quint32>* values) {
        std::vector<quint32> arranged;
        arranged.reserve(order.size());
        for (const quint32 place : order)
            arranged.push_back((*values)[place]);
        *values = std::move(arranged);
    };
    for (std::vector<quint32>& ids : m_ids)
        rearrange(&ids);
    rearrange(&m_titleRanks);
    m_tracks.reserve(order.size());
    for (const quint32 place : order)
        m_tracks.push_back(std::move(tracks[place]));
}

void Library::findAlbums() {
    m_albumOf.reserve(m_tracks.size());
    for (quint32 track = 0; track < tracksCount(); ++track) {
        const quint32 artist = nameOf(AlbumArtist, track);
        const quint32 name = nameOf(Album, track);
        if (m_albums.empty() || m_albums.back().artist != artist || m_albums.back().name != name)
            m_albums.push_back({artist, name, track, 0, 0});
        AlbumEntry& album = m_albums.back();
        ++album.tracksCount;
        album.newest = std::max(album.newest, m_tracks[track].track->modified);
        m_albumOf.push_back(quint32(m_albums.size() - 1));
    }
    m_albums.shrink_to_fit();
    m_albumsByName = places(m_albums.size());
    std::stable_sort(m_albumsByName.begin(), m_albumsByName.end(),
                     [this](quint32 a, quint32 b) { return m_albums[a].name < m_albums[b].name; });
    m_albumsByAge = places(m_albums.size());
    std::stable_sort(m_albumsByAge.begin(), m_albumsByAge.end(), [this](quint32 a, quint32 b) {
        return m_albums[a].newest > m_albums[b].newest;
    });
}

void Library::gatherTexts() {
    for (const Role role : searchedRoles()) {
        for (quint32 id = 0; id < m_names[role].size(); ++id)
            m_texts[role].add(m_names[role].name(id));
        m_texts[role].finish();
    }
    for (const LibraryTrack& each : m_tracks) {
        m_titleTexts.add(each.track->tags->title);
        m_fileTexts.add(each.track->name.section(QLatin1Char('.'), 0, -2));
    }
    m_titleTexts.finish();
    m_fileTexts.finish();
}
