#include "OrvoHash.h"

#include <cmath>

const QVariant& OrvoHash::nothing() {
    static const QVariant null;
    return null;
}

qint64 OrvoHash::toInt64(const QVariant& value, qint64 fallback) {
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
        return value.toLongLong();
    case QMetaType::ULongLong:
        return value.toULongLong() > quint64(std::numeric_limits<qint64>::max())
                   ? fallback
                   : value.toLongLong();
    case QMetaType::Double: {
        constexpr double MaxExact =
            9007199254740992.0; // 2^53: beyond it a double is no exact integer
        const double number = value.toDouble();
        return std::trunc(number) == number && std::fabs(number) <= MaxExact ? qint64(number)
                                                                             : fallback;
    }
    case QMetaType::QString:
    case QMetaType::QByteArray: {
        bool ok = false;
        const qint64 number = value.toString().toLongLong(&ok);
        return ok ? number : fallback;
    }
    default:
        return fallback;
    }
}

int OrvoHash::toInt(const QVariant& value, int fallback) {
    const qint64 number = toInt64(value, fallback);
    const bool fits =
        number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    return fits ? int(number) : fallback;
}
