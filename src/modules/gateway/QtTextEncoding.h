#pragma once

#include <rapidjson/encodings.h>

#include <QChar>

// The texts of Qt for RapidJSON. Half a pair of surrogates, which is no character, is written as
// the replacement character; it is read as it stands, for the reader to refuse.
struct QtTextEncoding : rapidjson::UTF16<ushort> {
    template <typename InputStream>
    static bool Decode(InputStream& text, unsigned* codepoint) {
        const ushort unit = text.Take();
        if (!QChar::isSurrogate(unit))
            *codepoint = unit;
        else if (QChar::isHighSurrogate(unit) && QChar::isLowSurrogate(text.Peek()))
            *codepoint = QChar::surrogateToUcs4(unit, text.Take());
        else
            *codepoint = QChar::ReplacementCharacter;
        return true;
    }

    template <typename OutputStream>
    static void Encode(OutputStream& text, unsigned codepoint) {
        if (QChar::requiresSurrogates(codepoint)) {
            text.Put(QChar::highSurrogate(codepoint));
            text.Put(QChar::lowSurrogate(codepoint));
        } else {
            text.Put(ushort(codepoint));
        }
    }
};
