#include "OrvoEnum.h"

QString OrvoEnum::toString(const Name* names, int count, int value) {
    for (int i = 0; i < count; ++i) {
        if (names[i].value == value)
            return QString::fromLatin1(names[i].text);
    }
    return QString::number(value);
}

int OrvoEnum::fromString(const Name* names, int count, const QString& text) {
    for (int i = 0; i < count; ++i) {
        if (text == QLatin1String(names[i].text))
            return names[i].value;
    }
    bool ok = false;
    const int number = text.toInt(&ok);
    return ok ? number : Unreadable;
}
