#include "MusicRoles.h"

#include <QUrl>

namespace {

OrvoMetaData metaData(const QString& artworkUrl) {
    OrvoMetaData data;
    data.setServiceId(MusicRoles::serviceId());
    if (!artworkUrl.isEmpty())
        data.setArtworkUrl(artworkUrl);
    return data;
}

OrvoMediaData mediaData(const Folder& folder, const Track& track) {
    OrvoMetaData data = metaData(MusicRoles::artworkUrl(folder, track));
    data.setPrePlayPath(MusicRoles::prePlayPath());
    data.setArtist(track.tags->artist);
    data.setAlbum(track.tags->album);
    data.setGenre(track.tags->genre);
    data.setDuration(track.tags->durationMs);
    if (track.tags->trackNumber > 0)
        data.setTrackNumber(track.tags->trackNumber);
    OrvoResource resource;
    resource.setUri(MusicRoles::fileUrl(folder.trackFile(track)));
    resource.setMimeType(track.mimeType);
    OrvoMediaData media;
    media.setMetaData(data);
    media.setResources({resource});
    return media;
}

} // namespace

QString MusicRoles::serviceId() {
    return QStringLiteral("files");
}

CMPath MusicRoles::prePlayPath() {
    static const CMPath path(QStringLiteral("files:prePlay"));
    return path;
}

QString MusicRoles::fileUrl(const QString& file) {
    return QString::fromLatin1(QUrl::fromLocalFile(file).toEncoded());
}

QString MusicRoles::artworkUrl(const Folder& folder) {
    return folder.artwork.isEmpty() ? QString()
                                    : fileUrl(folder.diskPath + QLatin1Char('/') + folder.artwork);
}

QString MusicRoles::artworkUrl(const Folder& folder, const Track& track) {
    return folder.artwork.isEmpty() ? track.tags->picture : artworkUrl(folder);
}

QString MusicRoles::title(const Track& track) {
    if (!track.tags->title.isEmpty())
        return track.tags->title;
    return track.name.left(track.name.lastIndexOf(QLatin1Char('.')));
}

TrString MusicRoles::title(const Folder& folder) {
    return folder.name.isEmpty() ? TrString("Files", "Music") : TrString(folder.name);
}

OrvoRoles MusicRoles::folder(const Folder& folder) {
    OrvoMediaData media;
    media.setMetaData(metaData(MusicRoles::artworkUrl(folder)));
    OrvoRoles roles;
    roles.setTitle(title(folder));
    roles.setPath(folder.path);
    roles.setType(OrvoRolesType::Container);
    roles.setMediaData(media);
    return roles;
}

OrvoRoles MusicRoles::track(const Folder& folder, const Track& track) {
    OrvoRoles roles;
    roles.setTitle(TrString(title(track)));
    roles.setPath(folder.path + track.name);
    roles.setType(OrvoRolesType::Audio);
    roles.setMediaData(mediaData(folder, track));
    return roles;
}
