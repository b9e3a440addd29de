#include "Signs.h"

#include "CellText.h"

namespace {

QString either(const char* sign, const char* plain) {
    return QString::fromUtf8(CellText::isUtf8() ? sign : plain);
}

} // namespace

QString Signs::plays() {
    return either("▶", ">");
}

QString Signs::pauses() {
    return either("‖", "=");
}

QString Signs::stopped() {
    return either("■", "#");
}

QString Signs::opens() {
    return either("›", ">");
}

QString Signs::between() {
    return either(" › ", " > ");
}

QString Signs::waits() {
    return either("…", "...");
}

QString Signs::thumb() {
    return either("┃", "#");
}

QString Signs::track() {
    return either("│", "|");
}

QString Signs::line(int columns) {
    return either("─", "-").repeated(qMax(0, columns));
}

QString Signs::barDone(int columns) {
    return either("━", "=").repeated(qMax(0, columns));
}

QString Signs::barLeft(int columns) {
    return either("─", "-").repeated(qMax(0, columns));
}
