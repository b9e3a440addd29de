#include "TerminalProgram.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>
#include <vterm.h>

#include <QDeadlineTimer>
#include <QSocketNotifier>

#include "EventLoop.h"

namespace {
constexpr int WaitMs = 30000;

winsize windowOf(const QSize& size) {
    winsize window{};
    window.ws_col = static_cast<unsigned short>(size.width());
    window.ws_row = static_cast<unsigned short>(size.height());
    return window;
}
} // namespace

TerminalProgram::TerminalProgram(const QStringList& arguments, const QSize& size, const char* term)
    : m_size(size),
      m_emulator(vterm_new(size.height(), size.width())),
      m_screen(vterm_obtain_screen(m_emulator)) {
    vterm_set_utf8(m_emulator, 1);
    vterm_screen_reset(m_screen, 1);
    std::vector<QByteArray> words{ORVOCTL};
    for (const QString& argument : arguments)
        words.push_back(argument.toUtf8());
    std::vector<char*> line;
    line.reserve(words.size() + 1);
    for (QByteArray& word : words)
        line.push_back(word.data());
    line.push_back(nullptr);
    const winsize window = windowOf(size);
    m_process = ::forkpty(&m_terminal, nullptr, nullptr, &window);
    if (m_process == 0) {
        ::setenv("TERM", term, 1);
        ::unsetenv("LC_ALL");
        ::unsetenv("LC_CTYPE");
        ::setenv("LANG", "C.UTF-8", 1);
        ::execv(line[0], line.data());
        ::_exit(127);
    }
}

TerminalProgram::~TerminalProgram() {
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    ::close(m_terminal);
    vterm_free(m_emulator);
}

void TerminalProgram::type(const QByteArray& keys) {
    ASSERT_EQ(::write(m_terminal, keys.constData(), std::size_t(keys.size())), keys.size());
}

void TerminalProgram::resize(const QSize& size) {
    take();
    m_size = size;
    vterm_set_size(m_emulator, size.height(), size.width());
    const winsize window = windowOf(size);
    ::ioctl(m_terminal, TIOCSWINSZ, &window);
}

// What the program has written since.
void TerminalProgram::take() {
    char bytes[65536];
    for (;;) {
        int waiting = 0;
        if (::ioctl(m_terminal, FIONREAD, &waiting) != 0 || waiting == 0)
            return;
        const ssize_t count = ::read(m_terminal, bytes, sizeof bytes);
        if (count <= 0)
            return;
        vterm_input_write(m_emulator, bytes, std::size_t(count));
        m_written.append(bytes, int(count));
    }
}

QStringList TerminalProgram::lines() {
    take();
    QStringList result;
    for (int row = 0; row < m_size.height(); ++row) {
        QString line;
        for (int column = 0; column < m_size.width();) {
            VTermScreenCell cell;
            vterm_screen_get_cell(m_screen, {row, column}, &cell);
            for (int i = 0; i < VTERM_MAX_CHARS_PER_CELL && cell.chars[i]; ++i)
                line += QString::fromUcs4(&cell.chars[i], 1);
            if (!cell.chars[0])
                line += QLatin1Char(' ');
            column += qMax(1, int(cell.width));
        }
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        result.append(line);
    }
    return result;
}

int TerminalProgram::barLine() {
    take();
    int found = -1;
    // In the middle: a frame that is open has its bar there, too.
    for (int row = 0; row < m_size.height(); ++row) {
        VTermScreenCell cell;
        vterm_screen_get_cell(m_screen, {row, m_size.width() / 2}, &cell);
        if (cell.attrs.reverse)
            found = row;
    }
    return found;
}

int TerminalProgram::columnOf(int line, uint character) {
    take();
    for (int column = 0; column < m_size.width(); ++column) {
        VTermScreenCell cell;
        vterm_screen_get_cell(m_screen, {line, column}, &cell);
        if (cell.chars[0] == character)
            return column;
    }
    return -1;
}

template <typename Condition>
bool TerminalProgram::wait(Condition condition) {
    const bool came = waitUntil(condition, WaitMs);
    EXPECT_TRUE(came) << "the screen:\n" << qPrintable(text());
    return came;
}

bool TerminalProgram::waitForText(const QString& wanted) {
    return wait([&] { return text().contains(wanted); });
}

bool TerminalProgram::waitForNoText(const QString& wanted) {
    return wait([&] { return !text().contains(wanted); });
}

bool TerminalProgram::waitForBar(const QString& text) {
    return wait([&] { return bar().contains(text); });
}

bool TerminalProgram::waitForColumn(int line, uint character, int column) {
    return wait([&] { return columnOf(line, character) == column; });
}

int TerminalProgram::waitForEnd() {
    int status = 0;
    const bool ended = waitUntil(
        [&] {
            take();
            return ::waitpid(m_process, &status, WNOHANG) == m_process;
        },
        WaitMs);
    if (!ended)
        return -1;
    m_process = -1;
    // What it wrote last may still be on its way through the kernel; its end comes after it.
    char bytes[4096];
    pollfd terminal{m_terminal, POLLIN, 0};
    while (::poll(&terminal, 1, 1000) > 0) {
        const ssize_t count = ::read(m_terminal, bytes, sizeof bytes);
        if (count <= 0)
            break;
        vterm_input_write(m_emulator, bytes, std::size_t(count));
        m_written.append(bytes, int(count));
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
