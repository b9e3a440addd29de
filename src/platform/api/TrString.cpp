#include "TrString.h"

#include <QCoreApplication>

QString Language::ntr(const char* context, const char* source) {
    return QCoreApplication::translate(context, source);
}

namespace {
// Replaces %1 to %99 in one pass: filled in one after the other, a "%2" inside the first argument
// would be taken for the place of the second. Markers without an argument stay.
QString filledIn(const QString& text, const QStringList& arguments) {
    QString result;
    for (int i = 0; i < text.size();) {
        int end = i + 1;
        int number = 0;
        while (text.at(i) == QLatin1Char('%') && end < text.size() && end <= i + 2 &&
               text.at(end) >= QLatin1Char('0') && text.at(end) <= QLatin1Char('9'))
            number = number * 10 + (text.at(end++).unicode() - '0');
        const bool filled = number >= 1 && number <= arguments.size();
        result += filled ? arguments.at(number - 1) : text.mid(i, end - i);
        i = end;
    }
    return result;
}
} // namespace

QString TrString::toString() const {
    if (!isTranslatable())
        return m_source;
    const QString text = Language::ntr(m_context.constData(), m_source.toUtf8().constData());
    return m_arguments.isEmpty() ? text : filledIn(text, m_arguments);
}

QVariant TrString::toVariant() const {
    return isTranslatable() ? QVariant::fromValue(*this) : QVariant(m_source);
}

TrString TrString::fromVariant(const QVariant& value) {
    return value.userType() == qMetaTypeId<TrString>() ? value.value<TrString>()
                                                       : TrString(value.toString());
}

namespace {
// Roles are compared, logged and sent as hashes; without these a title compares by address and
// shows as nothing.
const bool comparable = QMetaType::registerEqualsComparator<TrString>();
const bool printable = QMetaType::registerConverter<TrString, QString>(&TrString::toString);
} // namespace
