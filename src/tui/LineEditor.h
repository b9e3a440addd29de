#pragma once

#include <QString>

struct Key;

// One line of text that is being typed, with its cursor between characters as people see them. A
// value.
class LineEditor {
public:
    explicit LineEditor(const QString& text = {}) : m_text(text), m_cursor(text.size()) {}

    const QString& text() const { return m_text; }
    // In code units.
    int cursor() const { return m_cursor; }
    // False when the key is none of its own.
    bool press(const Key& key);

private:
    int boundary(int direction) const;

    QString m_text;
    int m_cursor;
};
