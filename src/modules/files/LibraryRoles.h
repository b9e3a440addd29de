#pragma once

#include "LibraryViews.h"
#include "OrvoRoles.h"

// What the library lists in the shapes the data model has for it. For the event loop's thread:
// pictures are asked of folders.
namespace LibraryRoles {

// The list itself.
OrvoRoles list(const LibraryList& list, const CMPath& path);
OrvoRoles row(const Library& library, const LibraryList& list, quint64 row);
TrString title(const Library& library, const LibraryList& list, quint64 row);

} // namespace LibraryRoles
