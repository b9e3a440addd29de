#pragma once

#include "OrvoHash.h"
#include "TrString.h"

// Why a request failed: a name for programs, a title and a message for people.
class ORVO_API_EXPORT CMError {
public:
    CMError() = default;
    CMError(const TrString& message)
        : m_name(DefaultName()), m_message(message), m_title(DefaultTitle()) {}
    CMError(const QString& name, const TrString& message, const TrString& title)
        : m_name(name), m_message(message), m_title(title) {}

    const QString& name() const { return m_name; }
    const TrString& message() const { return m_message; }
    const TrString& title() const { return m_title; }

    static QString DefaultName() { return QStringLiteral("Error"); }
    static TrString DefaultTitle();

    // Names the platform itself answers with.
    static QString NoSuchNode() { return QStringLiteral("NoSuchNode"); }
    static QString NotSupported() { return QStringLiteral("NotSupported"); }
    static QString NotAnswered() { return QStringLiteral("NotAnswered"); }
    static QString InvalidValue() { return QStringLiteral("InvalidValue"); }
    // What the request was made for is no longer as it was.
    static QString Conflict() { return QStringLiteral("Conflict"); }

private:
    QString m_name;
    TrString m_message;
    TrString m_title;
};

// An error as it travels inside records: a code beside the texts.
class OrvoError : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(QString, code, Code, "code")
    ORVO_ATTRIBUTE(QString, message, Message, "message")
};
