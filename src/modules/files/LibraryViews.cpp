#include "LibraryViews.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int GroupShift = 32;

struct RoleRow {
    Library::Role role;
    const char* name;
    const char* unnamed;
};
constexpr RoleRow RoleRows[] = {
    {Library::Artist, "artist", "Unknown artist"},
    {Library::AlbumArtist, "albumArtist", "Unknown artist"},
    {Library::Album, "album", "Unknown album"},
    {Library::Genre, "genre", "Unknown genre"},
    {Library::Composer, "composer", "Unknown composer"},
    {Library::Date, "date", "Unknown date"},
};

// A role's number is the place of its row.
constexpr bool rowsStandInOrder() {
    for (std::size_t place = 0; place < std::size(RoleRows); ++place) {
        if (std::size_t(RoleRows[place].role) != place)
            return false;
    }
    return std::size(RoleRows) == Library::RolesCount;
}
static_assert(rowsStandInOrder());

// RolesCount for a name that is none.
Library::Role roleNamed(const QString& name) {
    for (const RoleRow& row : RoleRows) {
        if (name == QLatin1String(row.name))
            return row.role;
    }
    return Library::RolesCount;
}

CMError refusal(const char* text, const QString& name) {
    return CMError(CMError::InvalidValue(), TrString("Files", text, {name}),
                   CMError::DefaultTitle());
}

CMError refused(const LibraryViews::View& view, const CMPath& path) {
    for (const QString& name : path.params().keys()) {
        if (roleNamed(name) == Library::RolesCount && !view.parameters.contains(name))
            return refusal("The list has no parameter \"%1\".", name);
    }
    return {};
}

std::vector<quint32> selected(const Library& library, const CMPath& path) {
    struct Condition {
        Library::Role role;
        quint32 name;
    };
    std::vector<Condition> conditions;
    for (const RoleRow& row : RoleRows) {
        const auto it = path.params().constFind(QLatin1String(row.name));
        if (it == path.params().cend())
            continue;
        const auto name = library.names(row.role).find(*it);
        if (!name)
            return {};
        conditions.push_back({row.role, *name});
    }
    std::vector<quint32> tracks;
    for (quint32 track = 0; track < library.tracksCount(); ++track) {
        const bool fits = std::all_of(
            conditions.begin(), conditions.end(), [&library, track](const Condition& condition) {
                return library.nameOf(condition.role, track) == condition.name;
            });
        if (fits)
            tracks.push_back(track);
    }
    return tracks;
}

void listNames(const Library& library, Library::Role role, Library::Role group,
               const std::vector<quint32>& tracks, LibraryList* list) {
    list->kind = LibraryList::Kind::Names;
    list->role = role;
    list->group = group;
    for (const quint32 track : tracks) {
        const quint64 above =
            group == Library::RolesCount ? 0 : quint64(library.nameOf(group, track));
        list->rows.push_back((above << GroupShift) | library.nameOf(role, track));
    }
    std::sort(list->rows.begin(), list->rows.end());
    list->rows.erase(std::unique(list->rows.begin(), list->rows.end()), list->rows.end());
    list->rows.shrink_to_fit();
}

void listArtists(const Library& library, const CMPath&, const std::vector<quint32>& tracks,
                 LibraryList* list) {
    listNames(library, Library::AlbumArtist, Library::RolesCount, tracks, list);
}

void listGenres(const Library& library, const CMPath&, const std::vector<quint32>& tracks,
                LibraryList* list) {
    listNames(library, Library::Genre, Library::RolesCount, tracks, list);
}

void listAlbumsIn(const std::vector<quint32>& order, const Library& library,
                  const std::vector<quint32>& tracks, LibraryList* list) {
    list->kind = LibraryList::Kind::Albums;
    std::vector<bool> has(library.albums().size());
    for (const quint32 track : tracks)
        has[library.albumOf(track)] = true;
    std::copy_if(order.begin(), order.end(), std::back_inserter(list->rows),
                 [&has](quint32 album) { return has[album]; });
}

void listAlbums(const Library& library, const CMPath&, const std::vector<quint32>& tracks,
                LibraryList* list) {
    listAlbumsIn(library.albumsByName(), library, tracks, list);
}

void listRecent(const Library& library, const CMPath&, const std::vector<quint32>& tracks,
                LibraryList* list) {
    listAlbumsIn(library.albumsByAge(), library, tracks, list);
}

void listDistinct(const Library& library, const CMPath& path, const std::vector<quint32>& tracks,
                  LibraryList* list) {
    const QString group = path.param(QStringLiteral("group"));
    const Library::Role role = roleNamed(path.param(QStringLiteral("role")));
    if (role == Library::RolesCount)
        list->error =
            refusal("There is no role \"%1\" to tell apart.", path.param(QStringLiteral("role")));
    else if (!group.isEmpty() && roleNamed(group) == Library::RolesCount)
        list->error = refusal("There is no role \"%1\" to group by.", group);
    else
        listNames(library, role, roleNamed(group), tracks, list);
}

// A number by which tracks are sorted.
qint64 sortKey(const Library& library, const QString& key, quint32 track) {
    const Library::Role role = roleNamed(key);
    if (role != Library::RolesCount)
        return library.nameOf(role, track);
    const Track& found = *library.track(track).track;
    if (key == QLatin1String("title"))
        return library.titleRank(track);
    if (key == QLatin1String("modified"))
        return found.modified;
    if (key == QLatin1String("duration"))
        return found.tags->durationMs;
    return (qint64(found.tags->disc) << GroupShift) + found.tags->trackNumber;
}

void listTracks(const Library& library, const CMPath& path, const std::vector<quint32>& tracks,
                LibraryList* list) {
    static const QStringList others = {QStringLiteral("title"), QStringLiteral("modified"),
                                       QStringLiteral("duration"), QStringLiteral("trackNumber")};
    list->rows.assign(tracks.begin(), tracks.end());
    QStringList keys =
        path.param(QStringLiteral("sort")).split(QLatin1Char(','), Qt::SkipEmptyParts);
    // By the last key first: those before it keep its order where they are equal.
    while (!keys.isEmpty() && keys.size() <= Library::RolesCount + others.size()) {
        QString key = keys.takeLast();
        const bool descending = key.startsWith(QLatin1Char('-'));
        key = key.mid(descending ? 1 : 0);
        if (roleNamed(key) == Library::RolesCount && !others.contains(key)) {
            list->error = refusal("There is no role \"%1\" to sort by.", key);
            return;
        }
        std::vector<std::pair<qint64, quint64>> keyed;
        keyed.reserve(list->rows.size());
        for (const quint64 track : list->rows) {
            const qint64 value = sortKey(library, key, quint32(track));
            keyed.emplace_back(descending ? -value : value, track);
        }
        std::stable_sort(keyed.begin(), keyed.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        std::transform(keyed.begin(), keyed.end(), list->rows.begin(),
                       [](const auto& each) { return each.second; });
    }
    if (!keys.isEmpty())
        list->error =
            refusal("These are too many roles to sort by: %1.", QString::number(keys.size()));
}

} // namespace

const std::vector<LibraryViews::View>& LibraryViews::all() {
    static const std::vector<View> views = {
        {"artists", "Artists", {}, listArtists},
        {"albums", "Albums", {}, listAlbums},
        {"genres", "Genres", {}, listGenres},
        {"recent", "Newest", {}, listRecent},
        {"select", "Tracks", {QStringLiteral("sort")}, listTracks},
        {"distinct", "Names", {QStringLiteral("role"), QStringLiteral("group")}, listDistinct},
    };
    return views;
}

CMPath LibraryViews::pathOf(const View& view) {
    return CMPath::fromPrefix(QStringLiteral("files")) + QString::fromLatin1(view.name);
}

const LibraryViews::View* LibraryViews::find(const CMPath& path) {
    const QStringList& components = path.splitBase();
    for (const View& view : all()) {
        if (path.prefix() == QLatin1String("files") && components.size() == 1 &&
            components.constFirst() == QLatin1String(view.name))
            return &view;
    }
    return nullptr;
}

QString LibraryViews::roleName(Library::Role role) {
    return QString::fromLatin1(RoleRows[role].name);
}

TrString LibraryViews::unnamed(Library::Role role) {
    return TrString("Files", RoleRows[role].unnamed);
}

LibraryList LibraryViews::list(const Library& library, const View& view, const CMPath& path) {
    LibraryList list;
    list.error = refused(view, path);
    list.title = TrString("Files", view.title);
    for (const Library::Role role : {Library::Date, Library::Composer, Library::Genre,
                                     Library::Artist, Library::AlbumArtist, Library::Album}) {
        const auto value = path.params().constFind(roleName(role));
        if (value == path.params().cend())
            continue;
        list.filter.insert(roleName(role), *value);
        list.title = value->isEmpty() ? unnamed(role) : TrString(*value);
    }
    if (list.error.name().isEmpty())
        view.fill(library, path, selected(library, path), &list);
    return list;
}

std::vector<quint64> LibraryViews::tracks(const Library& library, const View& view,
                                          const CMPath& path) {
    const LibraryList found = list(library, view, path);
    if (found.kind == LibraryList::Kind::Tracks || !found.error.name().isEmpty())
        return found.rows;
    const std::vector<quint32> all = selected(library, path);
    return std::vector<quint64>(all.begin(), all.end());
}
