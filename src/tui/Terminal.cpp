#include "Terminal.h"

#define NCURSES_NOMACROS 1
#define NCURSES_WIDECHAR 1
#include <curses.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <term.h>
#include <unistd.h>

#include "ClientFailure.h"

namespace {

// A lone Esc is told from the start of a key's sequence by the time that follows it.
constexpr int EscapeMs = 25;
constexpr int CtrlL = 12;

enum Pair : short { AccentPair = 1, WarningPair, ErrorPair };

struct NamedKey {
    wint_t code;
    Key::Name name;
};

// Keys that the terminal's description knows.
constexpr NamedKey FunctionKeys[] = {
    {KEY_UP, Key::Up},        {KEY_DOWN, Key::Down},
    {KEY_LEFT, Key::Left},    {KEY_RIGHT, Key::Right},
    {KEY_PPAGE, Key::PageUp}, {KEY_NPAGE, Key::PageDown},
    {KEY_HOME, Key::Home},    {KEY_END, Key::End},
    {KEY_ENTER, Key::Enter},  {KEY_BACKSPACE, Key::Backspace},
    {KEY_DC, Key::Delete},
};
// Keys that come as characters.
constexpr NamedKey CharacterKeys[] = {
    {L'\r', Key::Enter}, {L'\n', Key::Enter},   {27, Key::Escape},
    {8, Key::Backspace}, {127, Key::Backspace}, {CtrlL, Key::Redraw},
};

template <std::size_t Size>
Key::Name nameOf(const NamedKey (&keys)[Size], wint_t code) {
    for (const NamedKey& key : keys) {
        if (key.code == code)
            return key.name;
    }
    return Key::None;
}

struct Look {
    attr_t attributes;
    short pair;
};

Look lookOf(Style style) {
    switch (style) {
    case Style::Dim:
        return {A_DIM, 0};
    case Style::Bold:
        return {A_BOLD, 0};
    case Style::Accent:
        return {A_BOLD, AccentPair};
    case Style::Heading:
        return {A_NORMAL, AccentPair};
    case Style::Warning:
        return {A_BOLD, WarningPair};
    case Style::Error:
        return {A_BOLD, ErrorPair};
    case Style::Plain:
        break;
    }
    return {A_NORMAL, 0};
}

Key readMouse() {
    MEVENT event;
    if (::getmouse(&event) != OK)
        return {};
    for (const auto& [button, name] : {std::pair<mmask_t, Key::Name>(BUTTON1_PRESSED, Key::Click),
                                       {BUTTON4_PRESSED, Key::WheelUp},
                                       {BUTTON5_PRESSED, Key::WheelDown}}) {
        if (event.bstate & button)
            return {name, 0, event.y, event.x};
    }
    return {};
}

} // namespace

void Terminal::check() {
    if (!::isatty(STDIN_FILENO) || !::isatty(STDOUT_FILENO))
        throw ClientFailure::usage(QStringLiteral("browse needs a terminal"));
    int error = 0;
    const bool known = ::setupterm(nullptr, STDOUT_FILENO, &error) == OK;
    const bool canPlace = known && ::tigetstr("cup");
    if (known)
        ::del_curterm(::cur_term); // the screen has its own
    if (!canPlace)
        throw ClientFailure::usage(
            QStringLiteral("browse needs a terminal that can place its cursor, and TERM=%1 cannot")
                .arg(QString::fromLocal8Bit(qgetenv("TERM"))));
}

Terminal::Terminal() {
    ::initscr();
    ::set_escdelay(EscapeMs);
    ::cbreak();
    ::noecho();
    ::nonl();
    ::keypad(stdscr, true);
    ::nodelay(stdscr, true);
    ::mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
    ::mouseinterval(0); // a click is told at once, not when it is known to be no double one
    ::curs_set(0);
    if (::has_colors()) {
        ::start_color();
        ::use_default_colors();
        ::init_pair(AccentPair, COLOR_CYAN, -1);
        ::init_pair(WarningPair, COLOR_YELLOW, -1);
        ::init_pair(ErrorPair, COLOR_RED, -1);
    }
}

Terminal::~Terminal() {
    ::endwin();
}

QSize Terminal::size() const {
    return {getmaxx(stdscr), getmaxy(stdscr)};
}

void Terminal::takeSize() {
    winsize window{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_row > 0 && window.ws_col > 0)
        ::resizeterm(window.ws_row, window.ws_col);
    // What the terminal made of the old lines is its own affair.
    ::clearok(curscr, true);
}

std::optional<Key> Terminal::readKey() {
    wint_t code = 0;
    switch (::wget_wch(stdscr, &code)) {
    case KEY_CODE_YES:
        if (code == KEY_MOUSE)
            return readMouse();
        return Key{nameOf(FunctionKeys, code)};
    case OK: {
        const Key::Name name = nameOf(CharacterKeys, code);
        if (name == Key::Redraw)
            ::clearok(curscr, true);
        if (name != Key::None)
            return Key{name};
        return code < 0x20 ? Key{} : Key{Key::Char, char32_t(code)};
    }
    default:
        return {};
    }
}

bool Terminal::isGone() const {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (::poll(&input, 1, 0) <= 0)
        return false;
    int waiting = 0;
    return (input.revents & (POLLHUP | POLLERR)) != 0 ||
           (::ioctl(STDIN_FILENO, FIONREAD, &waiting) == 0 && waiting == 0);
}

void Terminal::clear() {
    m_cursor = false;
    ::werase(stdscr);
}

void Terminal::put(int row, int column, const CellText& text, Style style, bool reversed) {
    const QSize room = size();
    if (row < 0 || row >= room.height() || column < 0)
        return;
    const Look look = lookOf(style);
    // Dim on a bar is hardly to be read.
    const attr_t attributes =
        reversed ? ((look.attributes & ~attr_t(A_DIM)) | A_REVERSE) : look.attributes;
    int at = column;
    for (const TextCell& cell : text.cells()) {
        if (at + cell.width > room.width())
            return;
        cchar_t shown;
        ::setcchar(&shown, cell.chars.data(), attributes, look.pair, nullptr);
        ::mvwadd_wch(stdscr, row, at, &shown);
        at += cell.width;
    }
}

void Terminal::frame(int row, int column, int height, int width, Style style) {
    for (int i = 0; i < height; ++i)
        put(row + i, column, CellText().fitted(width));
    const Look look = lookOf(style);
    ::wattr_set(stdscr, look.attributes, look.pair, nullptr);
    const int bottom = row + height - 1;
    const int right = column + width - 1;
    ::mvwhline_set(stdscr, row, column, WACS_HLINE, width);
    ::mvwhline_set(stdscr, bottom, column, WACS_HLINE, width);
    ::mvwvline_set(stdscr, row, column, WACS_VLINE, height);
    ::mvwvline_set(stdscr, row, right, WACS_VLINE, height);
    ::mvwadd_wch(stdscr, row, column, WACS_ULCORNER);
    ::mvwadd_wch(stdscr, row, right, WACS_URCORNER);
    ::mvwadd_wch(stdscr, bottom, column, WACS_LLCORNER);
    ::mvwadd_wch(stdscr, bottom, right, WACS_LRCORNER);
    ::wattr_set(stdscr, A_NORMAL, 0, nullptr);
}

void Terminal::placeCursor(int row, int column) {
    m_cursor = true;
    m_cursorRow = row;
    m_cursorColumn = column;
}

void Terminal::show() {
    ::curs_set(m_cursor ? 1 : 0);
    if (m_cursor)
        ::wmove(stdscr, m_cursorRow, m_cursorColumn);
    ::wnoutrefresh(stdscr);
    ::doupdate();
}
