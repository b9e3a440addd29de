#pragma once

#include <QByteArray>
#include <QString>

// Texts that others wrote (names, titles, messages) on their way to a terminal: control characters,
// and those that turn the direction of writing, become visible escapes, so that a name cannot move
// the cursor or hide what follows.
namespace SafeText {

// Whether the code unit moves the cursor, or turns the direction of writing.
bool isUnsafe(ushort unit);
QString forTerminal(const QString& text);
// JSON text stays JSON: such characters stand inside strings only and become \u escapes there.
QByteArray json(const QByteArray& json);
// How many columns the text takes on a terminal.
int width(const QString& text);

} // namespace SafeText
