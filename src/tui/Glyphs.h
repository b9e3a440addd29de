#pragma once

#include <QString>

// The signs that are drawn besides texts; plain ones where the terminal has no others.
namespace Glyphs {

QString plays();
QString pauses();
QString stopped();
QString opens();
QString between(); // two parts of a way: "Playlists › Party"
QString waits();
QString thumb();
QString track();
QString line(int columns);
// How much of something is done.
QString barDone(int columns);
QString barLeft(int columns);

} // namespace Glyphs
