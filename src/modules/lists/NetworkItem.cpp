#include "NetworkItem.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "OrvoRoles.h"

OrvoPlayListItem NetworkItem::of(const ListedTrack& track, const QString& address) {
    constexpr qint64 MsPerSecond = 1000;
    const QString serviceId = QStringLiteral("lists");
    const QString title = track.title.isEmpty() ? address : track.title;
    // A file of the machine that the list comes from is none of this one's.
    const bool isOnNetwork = track.artworkUrl.startsWith(QLatin1String("http"));
    const QString artworkUrl = isOnNetwork ? track.artworkUrl : QString();
    OrvoMetaData metaData;
    metaData.setServiceId(serviceId);
    metaData.setArtist(track.artist);
    metaData.setAlbum(track.album);
    metaData.setDuration(track.durationMs);
    metaData.setArtworkUrl(artworkUrl);
    OrvoResource resource;
    resource.setUri(address);
    OrvoMediaData mediaData;
    mediaData.setMetaData(metaData);
    mediaData.setResources({resource});
    OrvoRoles roles;
    roles.setTitle(TrString(title));
    roles.setType(OrvoRolesType::Audio);
    roles.setMediaData(mediaData);

    OrvoPlayListItem item;
    item.setTitle(title);
    item.setArtist(track.artist);
    item.setAlbum(track.album);
    item.setArtworkUrl(artworkUrl);
    item.setDurationSeconds(int((track.durationMs + MsPerSecond / 2) / MsPerSecond));
    item.setUrl(address);
    item.setServiceId(serviceId);
    item.setOrvoRoles(QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantHash(roles.toHash()))
                                            .toJson(QJsonDocument::Compact)));
    return item;
}
