#include "TrString.h"

#include <QCoreApplication>

QString Language::ntr(const char* context, const char* source) {
    return QCoreApplication::translate(context, source);
}

QString TrString::toString() const {
    if (!isTranslatable())
        return m_source;
    QString text = Language::ntr(m_context.constData(), m_source.toUtf8().constData());
    for (const QString& argument : m_arguments)
        text = text.arg(argument);
    return text;
}

QVariant TrString::toVariant() const {
    return isTranslatable() ? QVariant::fromValue(*this) : QVariant(m_source);
}

TrString TrString::fromVariant(const QVariant& value) {
    return value.userType() == qMetaTypeId<TrString>() ? value.value<TrString>() : TrString(value.toString());
}

namespace {
// Roles are compared as hashes; without this a title compares by address.
const bool comparable = QMetaType::registerEqualsComparator<TrString>();
} // namespace
