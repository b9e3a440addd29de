#include "TextBudget.h"

#include <cstring>

namespace {

// Most texts are; four characters at a time.
bool isAscii(QStringView text) {
    constexpr quint64 NotAscii = 0xff80'ff80'ff80'ff80;
    constexpr qsizetype Block = 4;
    quint64 all = 0;
    qsizetype i = 0;
    for (; i + Block <= text.size(); i += Block) {
        quint64 block = 0;
        std::memcpy(&block, text.utf16() + i, sizeof block);
        all |= block;
    }
    for (; i < text.size(); ++i)
        all |= text.utf16()[i];
    return (all & NotAscii) == 0;
}

} // namespace

qint64 TextBudget::bytesOf(QStringView text) {
    if (isAscii(text))
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
