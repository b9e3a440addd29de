#include "LineEditor.h"

#include <QTextBoundaryFinder>

#include "Key.h"

namespace {
constexpr int MaxUnits = 500;
}

// Where the cursor gets to with one step.
int LineEditor::boundary(int direction) const {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, m_text);
    finder.setPosition(m_cursor);
    const int found = direction < 0 ? finder.toPreviousBoundary() : finder.toNextBoundary();
    return found < 0 ? m_cursor : found;
}

bool LineEditor::press(const Key& key) {
    switch (key.name) {
    case Key::Left:
        m_cursor = boundary(-1);
        return true;
    case Key::Right:
        m_cursor = boundary(1);
        return true;
    case Key::Home:
        m_cursor = 0;
        return true;
    case Key::End:
        m_cursor = m_text.size();
        return true;
    case Key::Backspace: {
        const int from = boundary(-1);
        m_text.remove(from, m_cursor - from);
        m_cursor = from;
        return true;
    }
    case Key::Delete:
        m_text.remove(m_cursor, boundary(1) - m_cursor);
        return true;
    case Key::Char: {
        const QString typed = QString::fromUcs4(&key.character, 1);
        if (m_text.size() + typed.size() <= MaxUnits) {
            m_text.insert(m_cursor, typed);
            m_cursor += typed.size();
        }
        return true;
    }
    default:
        return false;
    }
}
