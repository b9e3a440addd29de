#pragma once

#include "MusicTree.h"
#include "OrvoRoles.h"

// Folders and tracks in the shapes the data model has for them.
namespace MusicRoles {

// What the module calls itself in media data and items.
QString serviceId();
// The path that a player asks before each playback.
CMPath prePlayPath();

QString fileUrl(const QString& file);
// Empty where the folder has none.
QString artworkUrl(const Folder& folder);
// The folder's, else that of the picture inside of the file.
QString artworkUrl(const Folder& folder, const Track& track);

// What people see: the track's title, before its tags are read and where it has none the file's
// name without suffix.
QString title(const Track& track);
TrString title(const Folder& folder);

OrvoRoles folder(const Folder& folder);
OrvoRoles track(const Folder& folder, const Track& track);

} // namespace MusicRoles
