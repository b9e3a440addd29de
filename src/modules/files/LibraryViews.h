#pragma once

#include <vector>

#include "CMError.h"
#include "CMPath.h"
#include "Library.h"

// One list of the library: what its rows are, by number.
struct LibraryList {
    enum class Kind { Albums, Tracks, Names };

    Kind kind = Kind::Tracks;
    // Places of albums or tracks. Of names their numbers; above them, in the upper half, those of
    // the names they are grouped by.
    std::vector<quint64> rows;
    Library::Role role = Library::Artist;      // of names
    Library::Role group = Library::RolesCount; // RolesCount without groups
    QMap<QString, QString> filter;             // what rows are selected by
    TrString title;
    CMError error; // named where the path asks for what there is not
};

// The lists of the library, driven by a table, and what their paths mean:
//
//   files:albums?genre=Folk     albums that have a track of that genre
//   files:select?album=First&sort=-date,title
//
// Every list takes what tracks can be selected by; names are the same except for case, an empty one
// means those without. Plain functions of a library and a path.
namespace LibraryViews {

struct View {
    const char* name; // of the path
    const char* title;
    QStringList parameters; // beside what tracks are selected by
    void (*fill)(const Library& library, const CMPath& path, const std::vector<quint32>& tracks,
                 LibraryList* list);
};
const std::vector<View>& all();
CMPath pathOf(const View& view);
// Null where the path is of none.
const View* find(const CMPath& path);

// The role's name in paths, and what is shown for tracks that say nothing of it.
QString roleName(Library::Role role);
TrString unnamed(Library::Role role);

LibraryList list(const Library& library, const View& view, const CMPath& path);
// The tracks that the list's path selects, in its order; empty for a path that is refused.
std::vector<quint64> tracks(const Library& library, const View& view, const CMPath& path);

} // namespace LibraryViews
