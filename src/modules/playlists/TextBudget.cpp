#include "TextBudget.h"

qint64 TextBudget::bytesOf(QStringView text) {
    constexpr char16_t FirstOfTwoBytes = 0x80;
    constexpr char16_t FirstOfThreeBytes = 0x800;
    qint64 more = 0;
    // Without branches, so that the compiler counts many characters at once. Half of a character
    // beyond 16 bits is two of its four bytes.
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        more += int(unit >= FirstOfTwoBytes) +
                int(unit >= FirstOfThreeBytes && (unit & 0xf800) != 0xd800);
    }
    return text.size() + more;
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
