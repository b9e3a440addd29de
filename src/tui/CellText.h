#pragma once

#include <array>

#include <QString>
#include <QVector>

// What stands in one place of a terminal: a character with the marks that combine with it.
struct TextCell {
    static constexpr int MaxChars = 5; // as many as the screen library keeps together

    std::array<wchar_t, MaxChars + 1> chars{}; // ended by 0
    int width = 1;                             // columns: 1 or 2
};

// A text that others wrote, cut into what a terminal shows, so that a name can neither move the
// cursor nor push its neighbours aside: control characters become a visible sign, half surrogates
// and what the terminal cannot show a replacement character; what only joins or varies others is
// left out, because terminals disagree about its width. A value; needs prepareLocale() first.
class CellText {
public:
    enum class Align { Left, Right };

    CellText() = default;
    explicit CellText(const QString& text);

    // Makes widths and output agree with the terminal: UTF-8 unless the environment names another
    // character set.
    static void prepareLocale();
    static bool isUtf8();

    int width() const { return m_width; }
    const QVector<TextCell>& cells() const { return m_cells; }
    // Exactly so many columns: filled up with blanks, or cut with an ellipsis.
    CellText fitted(int columns, Align align = Align::Left) const;
    // Cut where it is too long, otherwise as it is.
    CellText cut(int columns) const;
    // The last so many columns, cut at the front.
    CellText cutFront(int columns) const;
    // In lines of at most so many columns, broken at blanks where there are some.
    QVector<CellText> wrapped(int columns) const;
    CellText& operator+=(const CellText& other);

    // As a test or a log reads it.
    QString toString() const;

private:
    void append(char32_t code);
    void append(const TextCell& cell);
    void fill(int columns);
    static TextCell cellOf(wchar_t c, int width);

    QVector<TextCell> m_cells;
    int m_width = 0;
};
