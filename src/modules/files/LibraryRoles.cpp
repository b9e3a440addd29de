#include "LibraryRoles.h"

#include "MusicRoles.h"

namespace {

constexpr quint64 NameMask = 0xffffffff;
constexpr int GroupBits = 32;

CMPath libraryPath(const char* view, const QMap<QString, QString>& filter) {
    CMPath path = CMPath::fromPrefix(QStringLiteral("files")) + QString::fromLatin1(view);
    path.setParams(filter);
    return path;
}

OrvoRoles container(const TrString& title, const CMPath& path, OrvoMetaData metaData) {
    metaData.setServiceId(MusicRoles::serviceId());
    OrvoMediaData media;
    media.setMetaData(metaData);
    OrvoRoles roles;
    roles.setTitle(title);
    roles.setPath(path);
    roles.setType(OrvoRolesType::Container);
    roles.setMediaData(media);
    return roles;
}

TrString shown(const Library& library, Library::Role role, quint32 id) {
    const QString& name = library.names(role).name(id);
    return name.isEmpty() ? LibraryViews::unnamed(role) : TrString(name);
}

OrvoRoles album(const Library& library, const LibraryList& list, quint64 place) {
    constexpr int YearDigits = 4;
    const Library::AlbumEntry& entry = library.albums()[place];
    const QString& name = library.names(Library::Album).name(entry.name);
    const QString& artist = library.names(Library::AlbumArtist).name(entry.artist);
    OrvoMetaData data;
    data.setArtist(artist);
    data.setAlbum(name);
    QString year;
    QString artwork;
    for (quint32 i = 0; i < entry.tracksCount && (year.isEmpty() || artwork.isEmpty()); ++i) {
        const LibraryTrack& each = library.track(entry.firstTrack + i);
        if (year.isEmpty())
            year = each.track->tags->date.left(YearDigits);
        if (artwork.isEmpty())
            artwork = MusicRoles::artworkUrl(*each.folder, *each.track);
    }
    if (!year.isEmpty())
        data.setAttribute(QStringLiteral("year"), year);
    if (!artwork.isEmpty())
        data.setArtworkUrl(artwork);
    QMap<QString, QString> filter = list.filter;
    filter.insert(LibraryViews::roleName(Library::Album), name);
    filter.insert(LibraryViews::roleName(Library::AlbumArtist), artist);
    return container(shown(library, Library::Album, entry.name), libraryPath("select", filter),
                     data);
}

OrvoRoles track(const Library& library, quint64 place) {
    const LibraryTrack& found = library.track(quint32(place));
    const TrackTags& tags = *found.track->tags;
    OrvoRoles roles = MusicRoles::track(*found.folder, *found.track);
    OrvoMediaData media = roles.mediaData();
    OrvoMetaData data = media.metaData();
    const auto tell = [&data](const char* name, const QString& text) {
        if (!text.isEmpty())
            data.setAttribute(QString::fromLatin1(name), text);
    };
    tell("albumArtist", tags.albumArtist);
    tell("composer", tags.composer);
    tell("date", tags.date);
    if (tags.disc > 0)
        data.setAttribute(QStringLiteral("disc"), tags.disc);
    media.setMetaData(data);
    roles.setMediaData(media);
    return roles;
}

OrvoRoles name(const Library& library, const LibraryList& list, quint64 row) {
    const auto id = quint32(row & NameMask);
    const QString& text = library.names(list.role).name(id);
    OrvoMetaData data;
    QMap<QString, QString> filter = list.filter;
    filter.insert(LibraryViews::roleName(list.role), text);
    if (list.group != Library::RolesCount) {
        const QString& group = library.names(list.group).name(quint32(row >> GroupBits));
        filter.insert(LibraryViews::roleName(list.group), group);
        data.setAttribute(LibraryViews::roleName(list.group), group);
    }
    // An album's name leads to tracks, any other to albums.
    const bool isAlbum = list.role == Library::Album;
    return container(shown(library, list.role, id),
                     libraryPath(isAlbum ? "select" : "albums", filter), data);
}

} // namespace

OrvoRoles LibraryRoles::list(const LibraryList& list, const CMPath& path) {
    return container(list.title, path, {});
}

TrString LibraryRoles::title(const Library& library, const LibraryList& list, quint64 row) {
    switch (list.kind) {
    case LibraryList::Kind::Albums:
        return shown(library, Library::Album, library.albums()[row].name);
    case LibraryList::Kind::Tracks:
        return TrString(MusicRoles::title(*library.track(quint32(row)).track));
    case LibraryList::Kind::Names:
        break;
    }
    return shown(library, list.role, quint32(row & NameMask));
}

OrvoRoles LibraryRoles::row(const Library& library, const LibraryList& list, quint64 row) {
    switch (list.kind) {
    case LibraryList::Kind::Albums:
        return album(library, list, row);
    case LibraryList::Kind::Tracks:
        return track(library, row);
    case LibraryList::Kind::Names:
        break;
    }
    return name(library, list, row);
}
