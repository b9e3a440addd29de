#include "ListPainter.h"

#include "Browser.h"
#include "ClockText.h"
#include "Glyphs.h"
#include "Terminal.h"

namespace {

const QString AskAgain = QStringLiteral("sure? Enter again");

constexpr int MarkColumns = 2;
constexpr int DurationColumns = 7; // "1:23:45"
// Below this width a track shows its title alone, below the other one no album.
constexpr int RoomForArtist = 60;
constexpr int RoomForAlbum = 100;

// What stands at the end of a row that is no track.
QString detailOf(const BrowseRow& row) {
    if (row.isSwitch())
        return row.isOn() ? QStringLiteral("on") : QStringLiteral("off");
    if (row.type() == BrowseRow::Editable)
        return row.text();
    return row.opens() ? Glyphs::of(Glyph::Opens) : QString();
}

} // namespace

QString ListPainter::markOf(const BrowseRow& row) const {
    const PlayerModel& player = m_browser->player();
    if (m_place->isChosen(row))
        return Glyphs::of(Glyph::Chosen);
    if (player.isCurrent(row))
        return player.isPlaying() ? Glyphs::of(Glyph::Plays) : Glyphs::of(Glyph::Pauses);
    return row.isCreate() ? QStringLiteral("+") : QString();
}

int ListPainter::wantedWidth(const ListPlace& place) {
    int width = 0;
    for (int i = 0; i < qMin(place.store().count(), ListStore::PageSize); ++i) {
        const BrowseRow& row = place.store().row(i);
        const bool mayAsk = row.actionInMenu() == RowAction::CarryOutWhenSure;
        const int detail = CellText(mayAsk ? AskAgain : detailOf(row)).width();
        width = qMax(width, CellText(row.title()).width() + (detail ? detail + 3 : 0));
    }
    return width + MarkColumns + 2;
}

void ListPainter::paint(ListPlace& place, const QRect& area) {
    m_area = area;
    m_place = &place;
    place.setArea(area);
    place.cursor().setHeight(area.height());
    const ListStore& store = place.store();
    m_numberColumns = QString::number(qMax(1, store.count())).size();
    const bool scrolls = store.count() > area.height();
    if (scrolls)
        m_area.setWidth(area.width() - 2);
    if (store.count() == 0)
        m_terminal->put(area.top(), area.left() + MarkColumns,
                        CellText(m_isMenu ? QStringLiteral("Nothing to choose here.")
                                          : QStringLiteral("Nothing here yet."))
                            .cut(area.width() - MarkColumns),
                        Style::Dim);
    for (int i = 0; i < area.height() && place.cursor().top() + i < store.count(); ++i) {
        const int index = place.cursor().top() + i;
        paintRow(store.row(index), area.top() + i, index == place.cursor().active());
    }
    if (scrolls) {
        m_area = area;
        paintScrollBar(place);
    }
}

void ListPainter::paintRow(const BrowseRow& row, int line, bool isActive) {
    if (isActive)
        m_terminal->put(line, m_area.left(), CellText().fitted(m_area.width()), Style::Plain, true);
    if (!row.isThere())
        m_terminal->put(line, m_area.left() + MarkColumns, Glyphs::of(Glyph::Waits), Style::Dim,
                        isActive);
    else if (row.type() == BrowseRow::Separator)
        m_terminal->put(line, m_area.left(), Glyphs::line(Glyph::Line, m_area.width()), Style::Dim);
    else if (row.type() == BrowseRow::Header)
        paintHeading(row, line);
    else if (row.type() == BrowseRow::Audio)
        paintTrack(row, line, isActive);
    else
        paintOther(row, line, isActive);
}

void ListPainter::paintHeading(const BrowseRow& row, int line) {
    const CellText title = CellText(row.title()).cut(m_area.width());
    m_terminal->put(line, m_area.left(), title, Style::Heading);
    m_terminal->put(line, m_area.left() + title.width() + 1,
                    Glyphs::line(Glyph::Line, m_area.width() - title.width() - 1), Style::Dim);
}

void ListPainter::paintTrack(const BrowseRow& row, int line, bool isActive) {
    const bool isCurrent = m_browser->player().isCurrent(row);
    const Style style = isCurrent ? Style::Accent : Style::Plain;
    const Style beside = isCurrent ? Style::Accent : Style::Dim;
    int at = m_area.left();
    m_terminal->put(line, at, markOf(row), style, isActive);
    at += MarkColumns;
    if (row.position() >= 0) {
        m_terminal->put(line, at,
                        CellText(QString::number(row.position() + 1))
                            .fitted(m_numberColumns, CellText::Align::Right),
                        beside, isActive);
        at += m_numberColumns + 2;
    }
    // The last column stays free, as it does behind other rows.
    const int end = m_area.left() + m_area.width() - 1;
    m_terminal->put(line, end - DurationColumns,
                    CellText(ClockText::ofDuration(row.duration()))
                        .fitted(DurationColumns, CellText::Align::Right),
                    beside, isActive);
    const int room = end - DurationColumns - 1 - at;
    const int album = m_area.width() >= RoomForAlbum ? room * 3 / 10 : 0;
    const int artist = m_area.width() >= RoomForArtist ? room * (album ? 3 : 4) / 10 : 0;
    const int title = room - album - artist;
    m_terminal->put(line, at, CellText(row.title()).fitted(title - 1), style, isActive);
    m_terminal->put(line, at + title, CellText(row.artist()).cut(artist - 1), beside, isActive);
    m_terminal->put(line, at + title + artist, CellText(row.album()).cut(album - 1), beside,
                    isActive);
}

void ListPainter::paintOther(const BrowseRow& row, int line, bool isActive) {
    const bool isCurrent = m_browser->player().isCurrent(row);
    const bool asks = m_browser->asksAgain(row);
    const Style style = asks                 ? Style::Warning
                        : isCurrent          ? Style::Accent
                        : !row.canBeChosen() ? Style::Dim
                                             : Style::Plain;
    m_terminal->put(line, m_area.left(), markOf(row), style, isActive);
    const QString detail = asks ? AskAgain : detailOf(row);
    const int room = m_area.width() - MarkColumns;
    // The detail may be long, too: the title keeps at least half.
    const CellText end =
        CellText(detail).cut(qMax(room / 2, room - CellText(row.title()).width() - 3));
    const int titleRoom = room - (end.width() ? end.width() + 2 : 0);
    m_terminal->put(line, m_area.left() + MarkColumns, CellText(row.title()).cut(titleRoom), style,
                    isActive);
    const bool isQuiet = !asks && !(row.isSwitch() && row.isOn());
    m_terminal->put(line, m_area.left() + m_area.width() - end.width() - 1, end,
                    isQuiet ? Style::Dim
                    : asks  ? Style::Warning
                            : Style::Accent,
                    isActive);
}

void ListPainter::paintScrollBar(const ListPlace& place) {
    const int height = m_area.height();
    const int count = place.store().count();
    const int size = qBound(1, int(qint64(height) * height / count), height);
    const int room = qMax(1, count - height);
    const int from = int(qint64(height - size) * qMin(place.cursor().top(), room) / room);
    for (int i = 0; i < height; ++i) {
        const bool isThumb = i >= from && i < from + size;
        m_terminal->put(m_area.top() + i, m_area.right(),
                        isThumb ? Glyphs::of(Glyph::Thumb) : Glyphs::of(Glyph::Track),
                        isThumb ? Style::Plain : Style::Dim);
    }
}
