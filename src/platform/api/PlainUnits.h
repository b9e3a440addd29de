#pragma once

#include <cstdint>
#include <cstring>

#include <QChar>

// Units of UTF-16 that JSON writes as they are, in one byte each: printable ASCII without the quote
// and the backslash. Most texts are nothing else, so they are looked at eight at a time.
namespace PlainUnits {

constexpr int Block = 8;
using Units = ushort __attribute__((vector_size(Block * sizeof(ushort))));

inline Units load(const QChar* from) {
    Units units;
    std::memcpy(&units, from, sizeof units);
    return units;
}

inline bool arePlain(Units units) {
    constexpr ushort FirstPlain = 0x20;
    constexpr ushort Span = 0x7E - FirstPlain;
    const auto odd = (units - FirstPlain > Span) | (units == ushort('"')) | (units == ushort('\\'));
    std::uint64_t halves[2];
    static_assert(sizeof halves == sizeof odd);
    std::memcpy(halves, &odd, sizeof halves);
    return (halves[0] | halves[1]) == 0;
}

} // namespace PlainUnits
