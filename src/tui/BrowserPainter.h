#pragma once

#include <QRect>

#include "CellText.h"

class Browser;
class Terminal;
enum class Style;

// Draws the browser onto the terminal, whatever its size: the way that was gone above, the list, a
// line of hints, what plays below; menus and texts being typed in frames over it.
class BrowserPainter {
public:
    BrowserPainter(Terminal* terminal, const Browser* browser)
        : m_terminal(terminal), m_browser(browser) {}

    void paint();

private:
    void paintHead(int width);
    void paintInfo(int row, int width);
    void paintFinding(int row, int width);
    void paintPlayer(int row, int rows, int width);
    void paintBar(int row, int column, int columns);
    void paintMenu(const QRect& room);
    void paintEdit(const QRect& room);
    void paintNotice(int bottom, int width);
    void paintFrame(const QRect& frame, const CellText& title);
    CellText playingText() const;

    Terminal* m_terminal;
    const Browser* m_browser;
};
