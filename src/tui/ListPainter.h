#pragma once

#include <QRect>

class BrowseRow;
class Browser;
class ListPlace;
class Terminal;

// Draws one list into a part of the screen: a row per line, columns as wide as there is room for,
// and where the view is in a list that is longer.
class ListPainter {
public:
    // `isMenu`: a list in a frame, whose rows say what they do.
    ListPainter(Terminal* terminal, const Browser* browser, bool isMenu)
        : m_terminal(terminal), m_browser(browser), m_isMenu(isMenu) {}

    // Also tells the place how much of it is in view.
    void paint(ListPlace& place, const QRect& area);

    // So many columns a menu would like to have.
    static int wantedWidth(const ListPlace& place);

private:
    void paintRow(const BrowseRow& row, int line, bool isActive);
    void paintHeading(const BrowseRow& row, int line);
    void paintTrack(const BrowseRow& row, int line, bool isActive);
    void paintOther(const BrowseRow& row, int line, bool isActive);
    QString markOf(const BrowseRow& row) const;
    void paintScrollBar(const ListPlace& place);

    Terminal* m_terminal;
    const Browser* m_browser;
    const ListPlace* m_place = nullptr;
    bool m_isMenu;
    QRect m_area;
    int m_numberColumns = 0;
};
