#include "Items.h"

#include <map>
#include <utility>

#include <QJsonArray>
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
    const int place = number % TracksPerAlbum + 1;
    OrvoPlayListItem item;
    item.setTitle(title);
    item.setArtist(artist);
    item.setAlbum(albumTitle);
    item.setArtworkUrl(folder + QStringLiteral("cover.jpg"));
    item.setGenre(QStringLiteral("Alternative"));
    item.setDurationSeconds(120 + number % 240);
    item.setUrl(folder + QStringLiteral("%1.flac").arg(place));
    item.setServiceId(QStringLiteral("files"));
    const QJsonObject metaData{{"album", albumTitle},
                               {"artist", artist},
                               {"artworkUrl", item.artworkUrl()},
                               {"duration", item.durationSeconds() * 1000},
                               {"genre", item.genre()},
                               {"prePlayPath", "files:prePlay"},
                               {"serviceId", item.serviceId()},
                               {"trackNumber", place}};
    const QJsonArray resources{QJsonObject{{"mimeType", "audio/flac"}, {"uri", item.url()}}};
    const QJsonObject roles{
        {"mediaData", QJsonObject{{"metaData", metaData}, {"resources", resources}}},
        {"path", "files:" + folder.mid(int(qstrlen("file:///srv/"))).chopped(1)},
        {"title", title},
        {"type", int(OrvoRolesType::Audio)}};
    item.setOrvoRoles(QString::fromUtf8(QJsonDocument(roles).toJson(QJsonDocument::Compact)));
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
