#include "TextBudget.h"

#include <cstring>

#include "PlainUnits.h"

namespace {

// Most texts are.
bool isAscii(QStringView text) {
    constexpr quint64 NotAscii = 0xff80'ff80'ff80'ff80;
    PlainUnits::Units all{};
    const QChar* at = text.cbegin();
    for (; text.cend() - at >= PlainUnits::Block; at += PlainUnits::Block)
        all |= PlainUnits::load(at);
    quint64 halves[2];
    static_assert(sizeof halves == sizeof all);
    std::memcpy(halves, &all, sizeof halves);
    quint64 rest = halves[0] | halves[1];
    for (; at != text.cend(); ++at)
        rest |= at->unicode();
    return (rest & NotAscii) == 0;
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
