#include "ItemMaker.h"

#include <algorithm>

#include <QUrl>

#include "MusicRoles.h"

namespace {

// By QUrl, in a path.
constexpr const char* KeptInUrls = "!$&'()*+,;=:@";

bool isPrintableAscii(const QString& name) {
    return std::all_of(name.cbegin(), name.cend(), [](QChar character) {
        return character >= QLatin1Char(' ') && character <= QLatin1Char('~');
    });
}

// `besides` stay as they are, beside letters, digits and "-._~".
QString encoded(const QString& name, const char* besides = "") {
    return QString::fromLatin1(QUrl::toPercentEncoding(name, besides));
}

} // namespace

void ItemMaker::enter(const FolderPtr& folder) {
    m_folder = folder;
    m_path = folder->path.toString() + QLatin1Char('/');
    m_url = MusicRoles::fileUrl(folder->diskPath + QLatin1Char('/'));
    m_artworkUrl = MusicRoles::artworkUrl(*folder);
    m_common.setServiceId(MusicRoles::serviceId());
}

OrvoPlayListItem ItemMaker::item(const FolderPtr& folder, const Track& track) {
    constexpr qint64 MsPerSecond = 1000;
    if (m_folder != folder)
        enter(folder);
    const QString title = MusicRoles::title(track);
    const QString url = isPrintableAscii(track.name)
                            ? m_url + encoded(track.name, KeptInUrls)
                            : MusicRoles::fileUrl(folder->trackFile(track));
    const QString artworkUrl = m_artworkUrl.isEmpty() ? track.tags->picture : m_artworkUrl;
    OrvoPlayListItem item = m_common;
    item.setArtworkUrl(artworkUrl);
    item.setTitle(title);
    item.setArtist(track.tags->artist);
    item.setAlbum(track.tags->album);
    item.setGenre(track.tags->genre);
    item.setDurationSeconds(int((track.tags->durationMs + MsPerSecond / 2) / MsPerSecond));
    item.setUrl(url);
    item.setOrvoRoles(rolesText(track, title, url, artworkUrl));
    return item;
}

// What QJsonDocument makes of MusicRoles::track(), without the hashes in between: a large folder is
// added several times as fast.
QString ItemMaker::rolesText(const Track& track, const QString& title, const QString& url,
                             const QString& artworkUrl) {
    static const QString prePlayPath = MusicRoles::prePlayPath().toString();
    const TrackTags& tags = *track.tags;
    m_json.clear();
    m_json << R"({"mediaData":{"metaData":{"album":)" << tags.album << R"(,"artist":)"
           << tags.artist;
    if (!artworkUrl.isEmpty())
        m_json << R"(,"artworkUrl":)" << artworkUrl;
    m_json << R"(,"duration":)" << tags.durationMs << R"(,"genre":)" << tags.genre
           << R"(,"prePlayPath":)" << prePlayPath << R"(,"serviceId":)" << MusicRoles::serviceId();
    if (tags.trackNumber > 0)
        m_json << R"(,"trackNumber":)" << tags.trackNumber;
    m_json << R"(},"resources":[{"mimeType":)" << track.mimeType << R"(,"uri":)" << url
           << R"(}]},"path":)" << m_path + encoded(track.name) << R"(,"title":)" << title
           << R"(,"type":)" << qint64(OrvoRolesType::Audio) << "}";
    return m_json.text();
}
