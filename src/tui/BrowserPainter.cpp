#include "BrowserPainter.h"

#include "Browser.h"
#include "ClockText.h"
#include "Glyphs.h"
#include "ListPainter.h"
#include "Terminal.h"

namespace {

constexpr int HeadRows = 1;
constexpr int InfoRows = 1;
// From this height on what plays gets two lines.
constexpr int RoomForTwo = 14;
constexpr int MinRows = 4;
constexpr int MinColumns = 16;
constexpr int MenuColumns = 64;

QString modeText(const QString& mode) {
    struct Name {
        const char* mode;
        const char* text;
    };
    static constexpr Name Names[] = {
        {"shuffle", "shuffle"},
        {"repeatOne", "repeat one"},
        {"shuffleRepeatOne", "shuffle, repeat one"},
        {"repeatAll", "repeat"},
        {"shuffleRepeatAll", "shuffle, repeat"},
    };
    for (const Name& name : Names) {
        if (mode == QLatin1String(name.mode))
            return QString::fromLatin1(name.text);
    }
    return {};
}

} // namespace

void BrowserPainter::paint() {
    m_terminal->clear();
    const QSize size = m_terminal->size();
    const int width = size.width();
    if (size.height() < MinRows || width < MinColumns) {
        m_terminal->put(0, 0, CellText(QStringLiteral("too small")).cut(width));
        m_terminal->show();
        return;
    }
    const int playerRows = size.height() >= RoomForTwo ? 2 : 1;
    const int listRows = size.height() - HeadRows - InfoRows - playerRows;
    const QRect list(0, HeadRows, width, listRows);
    paintHead(width);
    ListPainter(m_terminal, m_browser, false).paint(m_browser->place(), list);
    paintPlayer(size.height() - playerRows, playerRows, width);
    if (!m_browser->menu().empty())
        paintMenu(list);
    if (m_browser->edit())
        paintEdit(list);
    paintInfo(HeadRows + listRows, width);
    paintNotice(HeadRows + listRows, width);
    m_terminal->show();
}

// "Orvo › Playlists › Party", of which the end is never cut.
void BrowserPainter::paintHead(int width) {
    const QString amount =
        m_browser->isBusy() ? QStringLiteral("working") : m_browser->place().amount();
    const CellText right(amount);
    QStringList way;
    for (const auto& place : m_browser->places())
        way.append(place->title());
    const QString last = way.takeLast();
    const QString between = Glyphs::of(Glyph::Between);
    const QString behind = way.isEmpty() ? QString() : way.join(between) + between;
    CellText text(behind);
    const int before = text.width();
    text += CellText(last);
    const int room = width - right.width() - 2;
    const int cut = qMax(0, text.width() - room);
    const CellText shown = text.cutFront(room);
    // What lies behind is quiet, where one is stands out.
    m_terminal->put(0, 0, shown, Style::Accent);
    if (cut == 0)
        m_terminal->put(0, 0, CellText(behind).cut(before), Style::Dim);
    m_terminal->put(0, width - right.width(), right, Style::Dim);
}

void BrowserPainter::paintInfo(int row, int width) {
    m_terminal->put(row, 0, Glyphs::line(Glyph::Line, width), Style::Dim);
    if (m_browser->finding()) {
        paintFinding(row, width);
        return;
    }
    const ListPlace& place = m_browser->shown();
    QString where;
    if (place.store().count() > 0)
        where = (place.chosenCount() > 0 ? QStringLiteral(" %1 chosen  ").arg(place.chosenCount())
                                         : QString()) +
                QStringLiteral(" %1 of %2 ")
                    .arg(place.cursor().active() + 1)
                    .arg(place.store().count());
    const CellText right(where);
    m_terminal->put(row, width - right.width() - 1, right, Style::Dim);
    const int room = width - right.width() - 3;
    if (!m_browser->isOnline()) {
        m_terminal->put(row, 1, CellText(QStringLiteral(" No connection, trying again ")).cut(room),
                        Style::Error, true);
    } else if (!m_browser->progress().isEmpty()) {
        m_terminal->put(row, 1,
                        CellText(QStringLiteral(" %1 ").arg(m_browser->progress())).cut(room),
                        Style::Accent);
    } else {
        const CellText hints(QStringLiteral(" ?  keys   m  menu   /  find   q  quit "));
        const CellText fewer(QStringLiteral(" ?  keys   q  quit "));
        if (fewer.width() <= room)
            m_terminal->put(row, 1, hints.width() <= room ? hints : fewer, Style::Dim);
    }
}

void BrowserPainter::paintFinding(int row, int width) {
    const LineEditor& line = *m_browser->finding();
    const ListFinder& finder = m_browser->shown().finder();
    QString count;
    if (finder.isSearching())
        count = QStringLiteral("searching");
    else if (finder.matches() > 0)
        count = QStringLiteral("%1 of %2").arg(finder.place()).arg(finder.matches());
    else if (!line.text().trimmed().isEmpty())
        count = QStringLiteral("none");
    const CellText right(count);
    m_terminal->put(row, 0, CellText().fitted(width));
    m_terminal->put(row, 0, QStringLiteral("/ "), Style::Accent);
    const int room = width - right.width() - 5;
    const CellText before = CellText(line.text().left(line.cursor())).cutFront(room);
    const CellText behind = CellText(line.text().mid(line.cursor())).cut(room - before.width());
    m_terminal->put(row, 2, before);
    m_terminal->put(row, 2 + before.width(), behind);
    m_terminal->put(row, width - right.width() - 1, right, Style::Dim);
    m_terminal->placeCursor(row, 2 + before.width());
}

CellText BrowserPainter::playingText() const {
    const PlayerModel& player = m_browser->player();
    if (!player.isPresent())
        return CellText(QStringLiteral("No player"));
    const BrowseRow track = player.track();
    if (!track.isThere())
        return CellText(Glyphs::of(Glyph::Stopped) + QStringLiteral(" Nothing plays"));
    QString text = (player.isPlaying() ? Glyphs::of(Glyph::Plays) : Glyphs::of(Glyph::Pauses)) +
                   QLatin1Char(' ') + track.title();
    if (!track.artist().isEmpty())
        text += QStringLiteral(" – ") + track.artist();
    return CellText(text);
}

// In two lines the bar has one of its own, in one it stands behind the title.
void BrowserPainter::paintPlayer(int row, int rows, int width) {
    const PlayerModel& player = m_browser->player();
    const bool active = player.track().isThere();
    const CellText text = playingText();
    const Style style = active ? Style::Bold : Style::Dim;
    if (rows == 1) {
        const int bar = active ? width / 2 : 0;
        m_terminal->put(row, 0, text.cut(width - bar - 1), style);
        if (active)
            paintBar(row, width - bar, bar);
        return;
    }
    QStringList extras;
    if (player.isPresent()) {
        if (!modeText(player.mode()).isEmpty())
            extras.append(modeText(player.mode()));
        extras.append(QStringLiteral("volume %1").arg(player.volume()));
    }
    const CellText right(extras.join(QStringLiteral("   ")));
    const int room = width - right.width() - 2;
    m_terminal->put(row, 0, text.cut(room), style);
    m_terminal->put(row, width - right.width(), right, Style::Dim);
    if (active)
        paintBar(row + 1, 0, width);
}

void BrowserPainter::paintBar(int row, int column, int columns) {
    const PlayerModel& player = m_browser->player();
    const CellText before(ClockText::ofTime(player.position()));
    const CellText behind(player.duration() > 0 ? ClockText::ofTime(player.duration()) : QString());
    const int cells = columns - before.width() - behind.width() - 2;
    m_terminal->put(row, column, before);
    m_terminal->put(row, column + columns - behind.width(), behind, Style::Dim);
    if (cells < 2)
        return;
    const int done = player.duration() > 0 ? int(player.position() * cells / player.duration()) : 0;
    m_terminal->put(row, column + before.width() + 1, Glyphs::line(Glyph::BarDone, done),
                    Style::Accent);
    m_terminal->put(row, column + before.width() + 1 + done,
                    Glyphs::line(Glyph::BarLeft, cells - done), Style::Dim);
}

void BrowserPainter::paintFrame(const QRect& frame, const CellText& title) {
    m_terminal->frame(frame.top(), frame.left(), frame.height(), frame.width(), Style::Heading);
    CellText label(QStringLiteral(" "));
    label += title.cut(frame.width() - 6);
    label += CellText(QStringLiteral(" "));
    m_terminal->put(frame.top(), frame.left() + 2, label, Style::Bold);
}

void BrowserPainter::paintMenu(const QRect& room) {
    const MenuPage& page = m_browser->menu().back();
    const int most = qMin(room.width(), MenuColumns);
    const int wanted =
        qMax(ListPainter::wantedWidth(*page.place) + 4, CellText(page.title).width() + 6);
    const bool loaded = page.place->store().isLoaded();
    const int rows = loaded ? qMax(1, page.place->store().count()) : 1;
    const int height = qMin(room.height(), rows + 2);
    const int width = qBound(qMin(30, most), wanted, most);
    const QRect frame((room.width() - width) / 2, room.top() + (room.height() - height) / 2, width,
                      height);
    paintFrame(frame, CellText(page.title));
    ListPainter(m_terminal, m_browser, true).paint(*page.place, frame.adjusted(1, 1, -1, -1));
}

void BrowserPainter::paintEdit(const QRect& room) {
    const RowEdit& edit = *m_browser->edit();
    const int width = qMin(room.width(), MenuColumns);
    const int height = qMin(room.height(), 4);
    const QRect frame((room.width() - width) / 2, room.top() + (room.height() - height) / 2, width,
                      height);
    paintFrame(frame, CellText(edit.row.title()));
    const int line = frame.top() + 1;
    const int columns = width - 5;
    const CellText before = CellText(edit.line.text().left(edit.line.cursor())).cutFront(columns);
    const CellText behind =
        CellText(edit.line.text().mid(edit.line.cursor())).cut(columns - before.width());
    m_terminal->put(line, frame.left() + 2, before);
    m_terminal->put(line, frame.left() + 2 + before.width(), behind);
    if (height > 3)
        m_terminal->put(line + 1, frame.left() + 2,
                        CellText(edit.row.isCreate() ? QStringLiteral("Enter creates, Esc leaves")
                                                     : QStringLiteral("Enter saves, Esc leaves"))
                            .cut(columns),
                        Style::Dim);
    m_terminal->placeCursor(line, frame.left() + 2 + before.width());
}

// Whole, over the list.
void BrowserPainter::paintNotice(int bottom, int width) {
    const auto& notice = m_browser->notice();
    if (!notice)
        return;
    QVector<CellText> lines = CellText(notice->text).wrapped(width - 2);
    lines = lines.mid(0, bottom - HeadRows);
    for (int i = 0; i < lines.size(); ++i) {
        const int row = bottom - lines.size() + i;
        CellText line(QStringLiteral(" "));
        line += lines.at(i);
        m_terminal->put(row, 0, line.fitted(width), notice->isError ? Style::Error : Style::Accent,
                        true);
    }
}
