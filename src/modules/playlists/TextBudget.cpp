#include "TextBudget.h"

#include "PlainUnits.h"

qint64 TextBudget::bytesOf(QStringView text) {
    if (PlainUnits::isAscii(text))
        return text.size();
    constexpr char16_t FirstOfTwoBytes = 0x80;
    constexpr char16_t FirstOfThreeBytes = 0x800;
    qint64 bytes = text.size();
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        bytes += int(unit >= FirstOfTwoBytes);
        // Half of a character beyond 16 bits is two of its four bytes.
        bytes += int(unit >= FirstOfThreeBytes && !character.isSurrogate());
    }
    return bytes;
}

qint64 TextBudget::bytesOf(const OrvoPlayListItem& item) {
    qint64 bytes = 0;
    for (const QVariant& value : item.toHash()) {
        if (value.userType() == QMetaType::QString)
            bytes += bytesOf(*static_cast<const QString*>(value.constData()));
        else if (value.userType() != QMetaType::Int)
            bytes += bytesOf(value.toString()); // as the store will
    }
    return bytes;
}
