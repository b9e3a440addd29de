#pragma once

#include <QJsonDocument>

#include "orvo_api_export.h"

// Reads JSON that another program wrote. Like QJsonDocument::fromJson, which does the work, but a
// text in which an object has the same name twice is refused as IllegalValue: Qt never frees what
// stood under the first of them, so that a few requests in a row would use up all memory. And an
// escaped half of a surrogate pair, which is no character, is read as U+FFFD instead of "?".
ORVO_API_EXPORT QJsonDocument cmReadJson(const QByteArray& text, QJsonParseError* error = nullptr);
