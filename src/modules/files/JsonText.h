#pragma once

#include <QString>

// A JSON document that is put together front to back, in memory that serves again for the next one.
// A value of the code that writes it; nothing here fails.
class JsonText {
public:
    void clear() { m_text.resize(0); }
    // A piece of the document, quotation marks and all.
    JsonText& operator<<(const char* json);
    JsonText& operator<<(qint64 number);
    // As a JSON string.
    JsonText& operator<<(const QString& text);

    // A copy with no more room than it needs.
    QString text() const { return QString(m_text.constData(), m_text.size()); }

private:
    QString m_text;
};
