#include "CellText.h"

#include <climits>
#include <clocale>
#include <cstring>
#include <cwchar>
#include <langinfo.h>

#include "SafeText.h"

namespace {

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t PictureOfNull = 0x2400; // the pictures of the other control characters follow
constexpr char32_t PictureOfDelete = 0x2421;
constexpr char32_t Ellipsis = 0x2026;

bool isControl(char32_t code) {
    return code < 0x20 || code == 0x7F;
}

// Joins, varies or tints its neighbours. Terminals differ in what is left of their width.
bool isLeftOut(char32_t code) {
    return code == 0x00AD || (code >= 0x200B && code <= 0x200D) ||
           (code >= 0x2060 && code <= 0x2065) || (code >= 0xFE00 && code <= 0xFE0F) ||
           (code >= 0x1F3FB && code <= 0x1F3FF) || (code >= 0xE0000 && code <= 0xE0FFF);
}

bool isShown(wchar_t c) {
    if (CellText::isUtf8())
        return true;
    char bytes[MB_LEN_MAX];
    std::mbstate_t state{};
    return std::wcrtomb(bytes, c, &state) != std::size_t(-1);
}

} // namespace

void CellText::prepareLocale() {
    std::setlocale(LC_CTYPE, "");
    // The plain locale says nothing about the terminal, and nearly all of them take UTF-8.
    const char* name = std::setlocale(LC_CTYPE, nullptr);
    if (name && (!std::strcmp(name, "C") || !std::strcmp(name, "POSIX")))
        std::setlocale(LC_CTYPE, "C.UTF-8");
}

bool CellText::isUtf8() {
    return !std::strcmp(nl_langinfo(CODESET), "UTF-8");
}

CellText::CellText(const QString& text) {
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            append(QChar::surrogateToUcs4(c, text.at(++i)));
        else if (isControl(c.unicode()))
            append(c.unicode() == 0x7F ? PictureOfDelete : PictureOfNull + c.unicode());
        else if (isLeftOut(c.unicode()))
            continue;
        else
            append(SafeText::isUnsafe(c.unicode()) ? Replacement : c.unicode());
    }
}

TextCell CellText::cellOf(wchar_t c, int width) {
    TextCell cell;
    cell.chars[0] = c;
    cell.width = width;
    return cell;
}

void CellText::append(char32_t code) {
    if (isLeftOut(code))
        return;
    auto c = wchar_t(code);
    int width = ::wcwidth(c);
    // Half surrogates, and what no terminal is known to show.
    if (width < 0) {
        c = wchar_t(Replacement);
        width = 1;
    }
    if (!isShown(c)) {
        c = code == Ellipsis ? L'~' : L'?';
        width = 1;
    }
    if (width > 0) {
        append(cellOf(c, width));
        return;
    }
    // A mark without a character to stand on gets a blank.
    if (m_cells.isEmpty())
        append(cellOf(L' ', 1));
    auto& chars = m_cells.last().chars;
    for (int i = 1; i < TextCell::MaxChars; ++i) {
        if (!chars[std::size_t(i)]) {
            chars[std::size_t(i)] = c;
            return;
        }
    }
}

void CellText::append(const TextCell& cell) {
    m_cells.append(cell);
    m_width += cell.width;
}

void CellText::fill(int columns) {
    while (m_width < columns)
        append(cellOf(L' ', 1));
}

CellText CellText::cut(int columns) const {
    if (m_width <= columns)
        return *this;
    CellText result;
    for (const TextCell& cell : m_cells) {
        if (result.m_width + cell.width > columns - 1)
            break;
        result.append(cell);
    }
    if (columns > 0)
        result.append(Ellipsis);
    return result;
}

CellText CellText::cutFront(int columns) const {
    if (m_width <= columns)
        return *this;
    CellText result;
    if (columns > 0)
        result.append(Ellipsis);
    int first = m_cells.size();
    int width = result.m_width;
    while (first > 0 && width + m_cells.at(first - 1).width <= columns)
        width += m_cells.at(--first).width;
    for (int i = first; i < m_cells.size(); ++i)
        result.append(m_cells.at(i));
    return result;
}

CellText CellText::fitted(int columns, Align align) const {
    CellText text = cut(columns);
    if (align == Align::Left) {
        text.fill(columns);
        return text;
    }
    CellText result;
    result.fill(columns - text.m_width);
    result += text;
    return result;
}

QVector<CellText> CellText::wrapped(int columns) const {
    QVector<CellText> lines;
    CellText line;
    CellText word;
    const auto endLine = [&] {
        lines.append(line);
        line = {};
    };
    const auto endWord = [&] {
        if (line.m_width > 0 && line.m_width + word.m_width > columns)
            endLine();
        line += word;
        word = {};
    };
    for (const TextCell& cell : m_cells) {
        if (word.m_width + cell.width > columns)
            endWord(); // a word longer than a line
        word.append(cell);
        if (cell.chars[0] == L' ')
            endWord();
    }
    endWord();
    if (line.m_width > 0)
        endLine();
    return lines;
}

CellText& CellText::operator+=(const CellText& other) {
    m_cells += other.m_cells;
    m_width += other.m_width;
    return *this;
}

QString CellText::toString() const {
    QString text;
    for (const TextCell& cell : m_cells)
        text += QString::fromWCharArray(cell.chars.data());
    return text;
}
