#pragma once

#include <QString>

// The text with U+FFFD for each half of a surrogate pair. Half a pair is no character: the store
// could not give it back, so it is replaced before memory has it.
QString replaceLoneSurrogates(QString text);
