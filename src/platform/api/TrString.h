#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "orvo_api_export.h"

// A text for people: either a source text with its translation context and arguments, translated
// when it is shown, or a plain text that is shown as it is (names that people gave).
class ORVO_API_EXPORT TrString {
public:
    TrString() = default;
    TrString(const QString& plain) : m_source(plain) {}
    TrString(const char* context, const char* source, const QStringList& arguments = {})
        : m_context(context), m_source(QString::fromUtf8(source)), m_arguments(arguments) {}

    bool isEmpty() const { return m_source.isEmpty(); }
    bool isTranslatable() const { return !m_context.isEmpty(); }
    QString context() const { return QString::fromUtf8(m_context); }
    const QString& source() const { return m_source; }
    const QStringList& arguments() const { return m_arguments; }

    // The text in the current language, its arguments filled in.
    QString toString() const;

    QVariant toVariant() const;
    static TrString fromVariant(const QVariant& value);

    bool operator==(const TrString& other) const {
        return m_context == other.m_context && m_source == other.m_source &&
               m_arguments == other.m_arguments;
    }
    bool operator!=(const TrString& other) const { return !(*this == other); }

private:
    QByteArray m_context;
    QString m_source;
    QStringList m_arguments;
};
Q_DECLARE_METATYPE(TrString)

namespace Language {
// The translation of `source` in `context`, or `source` itself when the current language has none.
ORVO_API_EXPORT QString ntr(const char* context, const char* source);
} // namespace Language

// The translation context of a function: its full signature.
constexpr const char* trExtractContext(const char* signature) {
    return signature;
}
