#pragma once

#include <ostream>

#include "CMLog.h"

// Qt values in the messages of failed tests, as text.
inline void PrintTo(const QString& value, std::ostream* out) {
    *out << '"' << value << '"';
}
inline void PrintTo(const QStringList& value, std::ostream* out) {
    *out << '[' << value.join(QStringLiteral("\n ")) << ']';
}
inline void PrintTo(const QVariant& value, std::ostream* out) {
    *out << (value.typeName() ? value.typeName() : "null") << ' ' << value;
}
inline void PrintTo(const CMPath& value, std::ostream* out) {
    *out << value;
}
