#pragma once

#include <QByteArray>
#include <QVariant>

// Reads what a client sent: JSON into the variants that records are made of (objects as hashes,
// whole numbers as 64-bit integers), half an escaped surrogate pair as U+FFFD. Anything that is no
// JSON object in UTF-8, is nested deeper than any record, or has more values or names than the
// limits is refused with a reason, as soon as that is read.
class JsonReader {
public:
    static constexpr int MaxDepth = 64;
    // A single object: names can be made up so that a hash of many is slow.
    static constexpr int MaxNames = 1000;
    // A value costs up to fifty times its text: an empty object has three bytes with its comma.
    static constexpr int DefaultMaxValues = 250000;

    static bool readObject(const QByteArray& given, QVariantHash* object, QString* reason,
                           int maxValues = DefaultMaxValues);
};
