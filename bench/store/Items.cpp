#include "Items.h"

#include <map>
#include <utility>

#include <QJsonDocument>
#include <QJsonObject>

#include "OrvoRoles.h"

namespace {

constexpr int TracksPerAlbum = 12;
constexpr int AlbumsPerArtist = 5;

// The album of a track in a mixed list.
int mixedAlbum(int number) {
    constexpr int Stride = 37;
    constexpr int Albums = 5003; // prime, so all come before one comes again
    return int(qint64(number) * Stride % Albums);
}

QString titleOf(int number, Items::Order order) {
    const QString title = order == Items::Order::Albums
                              ? QStringLiteral("A title of usual length, %1")
                          : number % 10 == 0 ? QStringLiteral("A title of \"usual\" length, %1")
                          : number % 3 == 0  ? QStringLiteral("À la récherche du títle, %1")
                                             : QStringLiteral("A title of usual length, %1");
    return title.arg(number);
}

OrvoPlayListItem makeItem(int number, Items::Order order) {
    const int album = order == Items::Order::Albums ? number / TracksPerAlbum : mixedAlbum(number);
    const QString artist = QStringLiteral("The Artist No. %1").arg(album / AlbumsPerArtist);
    const QString albumTitle = QStringLiteral("Album %1 of many").arg(album);
    const QString title = titleOf(number, order);
    const QString folder = QStringLiteral("file:///srv/music/%1/%2/")
                               .arg(artist, albumTitle)
                               .replace(QLatin1Char(' '), QStringLiteral("%20"));
    const int seconds = 120 + number % 240;

    OrvoMetaData metaData;
    metaData.setServiceId(QStringLiteral("files"));
    metaData.setPrePlayPath(CMPath(QStringLiteral("files:prePlay")));
    metaData.setArtist(artist);
    metaData.setAlbum(albumTitle);
    metaData.setGenre(QStringLiteral("Alternative"));
    metaData.setDuration(seconds * 1000LL);
    metaData.setTrackNumber(number % TracksPerAlbum + 1);
    metaData.setArtworkUrl(folder + QStringLiteral("cover.jpg"));
    OrvoResource resource;
    resource.setUri(folder + QStringLiteral("%1.flac").arg(number % TracksPerAlbum + 1));
    resource.setMimeType(QStringLiteral("audio/flac"));
    OrvoMediaData mediaData;
    mediaData.setMetaData(metaData);
    mediaData.setResources({resource});
    OrvoRoles roles;
    roles.setTitle(TrString(title));
    roles.setPath(CMPath(QStringLiteral("files:music")) + artist + albumTitle);
    roles.setType(OrvoRolesType::Audio);
    roles.setMediaData(mediaData);

    OrvoPlayListItem item;
    item.setTitle(title);
    item.setArtist(artist);
    item.setAlbum(albumTitle);
    item.setArtworkUrl(metaData.artworkUrl());
    item.setGenre(metaData.genre());
    item.setDurationSeconds(seconds);
    item.setUrl(resource.uri());
    item.setServiceId(metaData.serviceId());
    item.setOrvoRoles(QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantHash(roles.toHash()))
                                            .toJson(QJsonDocument::Compact)));
    return item;
}

} // namespace

Items::Items(int count, Order order) {
    for (int i = 0; i < count; ++i)
        append(makeItem(i, order));
}

Items::Items(const QList<OrvoPlayListItem>& items) {
    for (const OrvoPlayListItem& item : items)
        append(item);
}

void Items::append(const OrvoPlayListItem& item) {
    m_ours.append(item);
    m_baseline.push_back({keep(item.title()), keep(item.artist()), keep(item.album()),
                          keep(item.artworkUrl()), keep(item.genre()), item.durationSeconds(),
                          keep(item.url()), keep(item.serviceId()), keep(item.orvoRoles())});
}

const Items& Items::of(int count, Order order) {
    static std::map<std::pair<int, Order>, Items> made;
    return made.try_emplace({count, order}, count, order).first->second;
}

std::string_view Items::keep(const QString& text) {
    m_texts.append(text.toUtf8());
    return {m_texts.constLast().constData(), std::size_t(m_texts.constLast().size())};
}
