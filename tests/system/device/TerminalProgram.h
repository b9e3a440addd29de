#pragma once

#include <QSize>
#include <QStringList>

struct VTerm;
struct VTermScreen;

// orvoctl in a terminal of its own, whose screen can be read: a pseudo-terminal, with a terminal
// emulator behind it. Killed by its destructor.
class TerminalProgram {
public:
    explicit TerminalProgram(const QStringList& arguments, const QSize& size = {80, 24},
                             const char* term = "xterm-256color");
    ~TerminalProgram();
    TerminalProgram(const TerminalProgram&) = delete;
    TerminalProgram& operator=(const TerminalProgram&) = delete;

    void type(const QByteArray& keys);
    void resize(const QSize& size);
    // The screen line by line, without the blanks at the ends.
    QStringList lines();
    QString text() { return lines().join(QLatin1Char('\n')); }
    // The line, from 0, on which the bar stands; the lowest when several are shown, -1 for none.
    int barLine();
    // The text on the bar.
    QString bar() { return lines().value(barLine()).trimmed(); }
    // The column in which the character stands in that line, -1 when it does not.
    int columnOf(int line, uint character);

    // False when patience was over first. The message of a failed wait shows the screen.
    bool waitForText(const QString& text);
    bool waitForNoText(const QString& text);
    bool waitForBar(const QString& text);
    // Until the character stands in that column of the line.
    bool waitForColumn(int line, uint character, int column);
    // The exit status, -1 when it does not end.
    int waitForEnd();

    // Everything that was written to the terminal so far.
    const QByteArray& written() const { return m_written; }

private:
    void take();
    template <typename Condition>
    bool wait(Condition condition);

    QSize m_size;
    int m_terminal = -1;
    int m_process = -1;
    VTerm* m_emulator;
    VTermScreen* m_screen;
    QByteArray m_written;
};
