#pragma once

#include <optional>

#include <QSize>

#include "CellText.h"
#include "Key.h"

// How a text looks.
enum class Style { Plain, Dim, Bold, Accent, Heading, Warning, Error };

// The screen and the keyboard, over ncurses: what is drawn appears with show(). One at a time;
// gives the terminal back as it was when it goes. check() says beforehand when there is no use in
// making one: a usage failure.
class Terminal {
public:
    static void check();

    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    QSize size() const;
    // After the window got another size.
    void takeSize();
    // The next key that waits, nothing when none does.
    std::optional<Key> readKey();
    // The other side of the terminal has gone.
    bool isGone() const;

    void clear();
    // Outside the screen nothing is drawn; a text ends at its right edge.
    void put(int row, int column, const CellText& text, Style style = Style::Plain,
             bool reversed = false);
    void put(int row, int column, const QString& text, Style style = Style::Plain,
             bool reversed = false) {
        put(row, column, CellText(text), style, reversed);
    }
    // An empty frame; what was there is covered.
    void frame(int row, int column, int height, int width, Style style);
    // Shown until the next clear().
    void placeCursor(int row, int column);
    void show();

private:
    bool m_cursor = false;
    int m_cursorRow = 0;
    int m_cursorColumn = 0;
};
