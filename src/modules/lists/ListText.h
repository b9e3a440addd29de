#pragma once

#include <QByteArray>
#include <QString>

#include "TrString.h"

// The text of a playlist file.
namespace ListText {

// By the byte-order mark where there is one, else as UTF-8, else as CP1252, in which older programs
// write.
QString decoded(const QByteArray& bytes);
// Why this is no text to be read: empty, too large, or no text at all. Empty when it is fine.
TrString refusal(const QString& text);

} // namespace ListText
