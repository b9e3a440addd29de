#include "LoneSurrogates.h"

QString replaceLoneSurrogates(QString text) {
    if (text.isValidUtf16())
        return text;
    for (int i = 0; i < text.size(); ++i) {
        if (!text.at(i).isSurrogate())
            continue;
        if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        else
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}
