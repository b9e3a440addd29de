#pragma once

#include <cstdint>
#include <cstring>

#include <QStringView>

// Looks at the units of UTF-16 texts eight at a time. Most texts are ASCII, and most of those are
// plain: JSON writes them as they are, in one byte each.
namespace PlainUnits {

constexpr int Block = 8;
using Units = ushort __attribute__((vector_size(Block * sizeof(ushort))));

inline Units load(const QChar* from) {
    Units units;
    std::memcpy(&units, from, sizeof units);
    return units;
}

// Printable ASCII without the quote and the backslash.
inline bool arePlain(Units units) {
    constexpr ushort FirstPlain = 0x20;
    constexpr ushort Span = 0x7E - FirstPlain;
    const auto odd = (units - FirstPlain > Span) | (units == ushort('"')) | (units == ushort('\\'));
    std::uint64_t halves[2];
    static_assert(sizeof halves == sizeof odd);
    std::memcpy(halves, &odd, sizeof halves);
    return (halves[0] | halves[1]) == 0;
}

// Whether all bits that are set in `all` or `rest` are those of ASCII.
inline bool areAscii(Units all, ushort rest) {
    constexpr std::uint64_t NotAscii = 0xff80'ff80'ff80'ff80;
    std::uint64_t halves[2];
    static_assert(sizeof halves == sizeof all);
    std::memcpy(halves, &all, sizeof halves);
    return ((halves[0] | halves[1] | rest) & NotAscii) == 0;
}

inline bool isAscii(QStringView text) {
    Units all{};
    const QChar* at = text.cbegin();
    for (; text.cend() - at >= Block; at += Block)
        all |= load(at);
    ushort rest = 0;
    for (; at != text.cend(); ++at)
        rest |= at->unicode();
    return areAscii(all, rest);
}

// As bytes, of which there are text.size(). False when `text` is not ASCII; they are of no use
// then.
inline bool copyAscii(QStringView text, char* to) {
    using Bytes = char __attribute__((vector_size(Block)));
    Units all{};
    const QChar* at = text.cbegin();
    for (; text.cend() - at >= Block; at += Block, to += Block) {
        const Units units = load(at);
        all |= units;
        const Bytes bytes = __builtin_convertvector(units, Bytes);
        std::memcpy(to, &bytes, sizeof bytes);
    }
    ushort rest = 0;
    for (; at != text.cend(); ++at, ++to) {
        rest |= at->unicode();
        *to = char(at->unicode());
    }
    return areAscii(all, rest);
}

} // namespace PlainUnits
