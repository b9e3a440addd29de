#include "Glyphs.h"

#include "CellText.h"

namespace {

QString either(const char* sign, const char* plain) {
    return QString::fromUtf8(CellText::isUtf8() ? sign : plain);
}

} // namespace

QString Glyphs::plays() {
    return either("▶", ">");
}

QString Glyphs::pauses() {
    return either("‖", "=");
}

QString Glyphs::stopped() {
    return either("■", "#");
}

QString Glyphs::opens() {
    return either("›", ">");
}

QString Glyphs::between() {
    return either(" › ", " > ");
}

QString Glyphs::waits() {
    return either("…", "...");
}

QString Glyphs::thumb() {
    return either("┃", "#");
}

QString Glyphs::track() {
    return either("│", "|");
}

QString Glyphs::line(int columns) {
    return either("─", "-").repeated(qMax(0, columns));
}

QString Glyphs::barDone(int columns) {
    return either("━", "=").repeated(qMax(0, columns));
}

QString Glyphs::barLeft(int columns) {
    return either("─", "-").repeated(qMax(0, columns));
}
