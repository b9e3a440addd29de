#include "Glyphs.h"

#include "CellText.h"

namespace {

struct GlyphRow {
    Glyph glyph;
    const char* text;
    const char* plain;
};

constexpr GlyphRow GlyphTable[] = {
    {Glyph::Plays, "▶", ">"},   {Glyph::Pauses, "‖", "="},  {Glyph::Stopped, "■", "#"},
    {Glyph::Chosen, "✓", "*"},  {Glyph::Opens, "›", ">"},   {Glyph::Between, " › ", " > "},
    {Glyph::Waits, "…", "..."}, {Glyph::Thumb, "┃", "#"},   {Glyph::Track, "│", "|"},
    {Glyph::Line, "─", "-"},    {Glyph::BarDone, "━", "="}, {Glyph::BarLeft, "─", "-"},
};

} // namespace

QString Glyphs::of(Glyph glyph) {
    for (const GlyphRow& row : GlyphTable) {
        if (row.glyph == glyph)
            return QString::fromUtf8(CellText::isUtf8() ? row.text : row.plain);
    }
    return {};
}

QString Glyphs::line(Glyph glyph, int columns) {
    return of(glyph).repeated(qMax(0, columns));
}
