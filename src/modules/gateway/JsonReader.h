#pragma once

#include <QByteArray>
#include <QVariant>

// Reads what a client sent: JSON into the variants that records are made of (objects as hashes,
// whole numbers as 64-bit integers). Anything that is no JSON object, or is nested deeper than any
// record, is refused with a reason.
class JsonReader {
public:
    static constexpr int MaxDepth = 64;

    static bool readObject(const QByteArray& text, QVariantHash* object, QString* reason);
};
