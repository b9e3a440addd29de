#pragma once

#include <QString>

// The lines of a text, one after the other, however they end (LF, CR LF, CR). A value of the reader
// that goes through them; the text outlives it.
class TextLines {
public:
    explicit TextLines(const QString& text) : m_text(text) {}

    // Goes on to the next line. False behind the last.
    bool next();
    // The line without blanks around it, and its number from 1.
    QString line() const { return m_line; }
    int number() const { return m_number; }
    bool isTooLong() const { return m_isTooLong; }

private:
    const QString& m_text;
    int m_at = 0;
    int m_number = 0;
    QString m_line;
    bool m_isTooLong = false;
};
