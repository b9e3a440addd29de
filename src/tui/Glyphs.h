#pragma once

#include <QString>

// What is drawn besides texts; plain characters where the terminal has no others.
enum class Glyph {
    Plays,
    Pauses,
    Chosen,
    Stopped,
    Opens,
    Between, // two parts of a way: "Playlists › Party"
    Waits,
    Thumb,
    Track,
    Line,
    BarDone, // how much of something is done, and what is left of it
    BarLeft
};

namespace Glyphs {

QString of(Glyph glyph);
// So many of them side by side.
QString line(Glyph glyph, int columns);

} // namespace Glyphs
