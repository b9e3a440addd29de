#pragma once

#include <QString>
#include <QVariant>

#include "orvo_api_export.h"
#include "OrvoHash.h"

// Numbers and their texts in one place. Every number round-trips: one without a name becomes its
// decimal text, so a command can see what it was sent and refuse it.
namespace OrvoEnum {

struct Name {
    int value;
    const char* text;
};

// What a text that is neither a name nor a number reads as: above every bound a command checks.
constexpr int Unreadable = 0x7FFFFFFF;

ORVO_API_EXPORT QString toString(const Name* names, int count, int value);
ORVO_API_EXPORT int fromString(const Name* names, int count, const QString& text);

} // namespace OrvoEnum

// Declares struct `Type` with `Type::Enum` (any 32-bit number is a valid value of it), toString and
// fromString.
#define ORVO_ENUM(Type, Export, ...)                                                               \
    struct Export Type {                                                                           \
        enum Enum : int { __VA_ARGS__ };                                                           \
        static QString toString(int value);                                                        \
        static Enum fromString(const QString& text);                                               \
    };                                                                                             \
    template <>                                                                                    \
    struct OrvoAttribute<Type::Enum> {                                                             \
        static Type::Enum read(const QVariant& value) {                                            \
            const int number = OrvoHash::toInt(value, OrvoEnum::Unreadable);                       \
            return number != OrvoEnum::Unreadable ? Type::Enum(number)                             \
                                                  : Type::fromString(value.toString());            \
        }                                                                                          \
        static QVariant write(Type::Enum value) { return Type::toString(value); }                  \
    };

// Defines the conversions of one enumeration from its table of { value, "name" } rows.
#define ORVO_ENUM_TABLE(Type, ...)                                                                 \
    namespace {                                                                                    \
    constexpr OrvoEnum::Name Type##Names[] = {__VA_ARGS__};                                        \
    }                                                                                              \
    QString Type::toString(int value) {                                                            \
        return OrvoEnum::toString(Type##Names, int(std::size(Type##Names)), value);                \
    }                                                                                              \
    Type::Enum Type::fromString(const QString& text) {                                             \
        return Type::Enum(OrvoEnum::fromString(Type##Names, int(std::size(Type##Names)), text));   \
    }
