#include "BrowserKeys.h"

#include "Browser.h"
#include "Key.h"

namespace {

// What concerns the rows of a list waits for them.
enum class When { Always, RowsAreThere };

constexpr int VolumeStep = 5;
constexpr int SeekSeconds = 10;
constexpr int WheelRows = 3;

constexpr Key letter(char32_t character) {
    return {Key::Char, character};
}

constexpr Key Nothing;

// A key, or two that are pressed one after the other.
struct KeySequence {
    Key first = Nothing;
    Key second = Nothing;
};

struct KeyRow {
    KeySequence keys[4];
    const char* does;
    When when;
    void (*run)(Browser& browser, const Key& key);
};

const KeyRow KeyTable[] = {
    {{{{Key::Up}}, {letter('k')}},
     "One row up",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.shown().cursor().move(-1); }},
    {{{{Key::Down}}, {letter('j')}},
     "One row down",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.shown().cursor().move(1); }},
    {{{{Key::PageUp}}},
     "A page up",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.shown().cursor().page(-1); }},
    {{{{Key::PageDown}}},
     "A page down",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.shown().cursor().page(1); }},
    {{{{Key::Home}}, {letter('g')}},
     "First row",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.shown().cursor().home(); }},
    {{{{Key::End}}, {letter('G')}},
     "Last row",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.shown().cursor().end(); }},
    {{{{Key::Enter}}},
     "Open, play, edit, switch",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.openActive(); }},
    {{{{Key::Right}}, {letter('l')}},
     "Open a list",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.enterActive(); }},
    {{{{Key::Left}}, {letter('h')}, {{Key::Backspace}}},
     "Back",
     When::Always,
     [](Browser& b, const Key&) { b.back(); }},
    {{{{Key::Escape}}},
     "Choose nothing, or back",
     When::Always,
     [](Browser& b, const Key&) { b.escape(); }},
    {{{letter('m')}},
     "Menu of the row, or of what is chosen",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.openMenuOfActive(); }},
    {{{letter(' ')}},
     "Choose, or not any more",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.choose(); }},
    {{{letter('d'), letter('d')}, {{Key::Delete}}},
     "Remove from the playlist",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.removeChosen(); }},
    {{{letter('J')}},
     "Move down in the playlist",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.moveChosen(1); }},
    {{{letter('K')}},
     "Move up in the playlist",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.moveChosen(-1); }},
    {{{letter('/')}},
     "Find in the list",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.find(); }},
    {{{letter('p')}},
     "Play or pause",
     When::Always,
     [](Browser& b, const Key&) { b.togglePlaying(); }},
    {{{letter('<')}},
     "Previous track",
     When::Always,
     [](Browser& b, const Key&) { b.playPrevious(); }},
    {{{letter('>')}}, "Next track", When::Always, [](Browser& b, const Key&) { b.playNext(); }},
    {{{letter('f')}},
     "Ten seconds ahead",
     When::Always,
     [](Browser& b, const Key&) { b.seekBy(SeekSeconds); }},
    {{{letter('b')}},
     "Ten seconds back",
     When::Always,
     [](Browser& b, const Key&) { b.seekBy(-SeekSeconds); }},
    {{{letter('+')}},
     "Louder",
     When::Always,
     [](Browser& b, const Key&) { b.changeVolume(VolumeStep); }},
    {{{letter('-')}},
     "Quieter",
     When::Always,
     [](Browser& b, const Key&) { b.changeVolume(-VolumeStep); }},
    {{{letter('c')}},
     "Go to what plays",
     When::Always,
     [](Browser& b, const Key&) { b.jumpToCurrent(); }},
    {{{{Key::WheelUp}}},
     "Three rows up",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.scroll(-WheelRows); }},
    {{{{Key::WheelDown}}},
     "Three rows down",
     When::RowsAreThere,
     [](Browser& b, const Key&) { b.scroll(WheelRows); }},
    {{{{Key::Click}}},
     "Go to a row; on the bar, as Enter",
     When::RowsAreThere,
     [](Browser& b, const Key& k) {
         b.click({k.column, k.row});
     }},
    // Reading the key makes the terminal draw everything; the rest is what any key does.
    {{{{Key::Redraw}}}, "Draw anew", When::Always, [](Browser&, const Key&) {}},
    {{{letter('?')}}, "These keys", When::Always, [](Browser& b, const Key&) { b.showHelp(); }},
    {{{letter('q')}}, "Quit", When::Always, [](Browser& b, const Key&) { Q_EMIT b.quit(); }},
};

// What the named keys are called.
struct NameRow {
    Key::Name name;
    const char* text;
};

constexpr NameRow KeyNames[] = {
    {Key::Up, "↑"},
    {Key::Down, "↓"},
    {Key::Left, "←"},
    {Key::Right, "→"},
    {Key::PageUp, "PgUp"},
    {Key::PageDown, "PgDn"},
    {Key::Home, "Home"},
    {Key::End, "End"},
    {Key::Enter, "Enter"},
    {Key::Escape, "Esc"},
    {Key::Backspace, "Backspace"},
    {Key::Delete, "Delete"},
    {Key::Redraw, "Ctrl-L"},
    {Key::Click, "Click"},
    {Key::WheelUp, "Wheel up"},
    {Key::WheelDown, "Wheel down"},
};

QString textOf(const Key& key) {
    if (key.isSame(letter(' ')))
        return QStringLiteral("Space");
    if (key.name == Key::Char)
        return QString::fromUcs4(&key.character, 1);
    for (const NameRow& row : KeyNames) {
        if (row.name == key.name)
            return QString::fromUtf8(row.text);
    }
    return {};
}

struct Found {
    const KeyRow* row = nullptr;
    bool isPrefix = false; // the first of two keys
};

Found find(const std::optional<Key>& prefix, const Key& key) {
    for (const KeyRow& row : KeyTable) {
        for (const KeySequence& keys : row.keys) {
            const bool isPair = keys.second.name != Key::None;
            if (prefix && isPair && keys.first.isSame(*prefix) && keys.second.isSame(key))
                return {&row, false};
            if (!prefix && keys.first.isSame(key))
                return {&row, isPair};
        }
    }
    return {};
}

} // namespace

QVector<KeyNote> BrowserKeys::notes() {
    QVector<KeyNote> notes;
    for (const KeyRow& row : KeyTable) {
        QStringList texts;
        for (const KeySequence& keys : row.keys) {
            if (keys.first.name != Key::None)
                texts.append(textOf(keys.first) + textOf(keys.second));
        }
        notes.append({QString::fromUtf8(row.does), texts.join(QLatin1Char(' '))});
    }
    return notes;
}

void BrowserKeys::press(Browser& browser, const Key& key) {
    if (key.name == Key::None)
        return;
    browser.m_notice.reset();
    if (browser.m_edit) {
        pressInEdit(browser, key);
        return;
    }
    if (browser.m_finding) {
        pressInFinding(browser, key);
        return;
    }
    pressInList(browser, key);
}

// Keys that are typed ahead are kept as they came, the first of two as well.
void BrowserKeys::pressInList(Browser& browser, const Key& key) {
    const std::optional<Key> prefix = browser.m_prefix;
    Found found = find(prefix, key);
    if (prefix && !found.row)
        found = find(std::nullopt, key);
    if (!found.row) {
        browser.m_prefix.reset();
        return;
    }
    if (found.row->when == When::RowsAreThere && browser.typesAhead(key))
        return;
    browser.m_prefix.reset();
    if (found.isPrefix)
        browser.m_prefix = key;
    else
        found.row->run(browser, key);
}

void BrowserKeys::pressInEdit(Browser& browser, const Key& key) {
    if (key.name == Key::Enter)
        browser.saveEdit();
    else if (key.name == Key::Escape)
        browser.m_edit.reset();
    else
        browser.m_edit->line.press(key);
}

// The first match is gone to while it is typed.
void BrowserKeys::pressInFinding(Browser& browser, const Key& key) {
    ListFinder& finder = browser.shown().finder();
    const QString before = browser.m_finding->text();
    if (key.name == Key::Escape || (key.name == Key::Backspace && before.isEmpty()))
        browser.endFinding(false);
    else if (key.name == Key::Enter)
        browser.endFinding(true);
    else if (key.name == Key::Down || key.name == Key::Up)
        finder.step(key.name == Key::Down ? 1 : -1);
    else if (browser.m_finding->press(key) && browser.m_finding->text() != before)
        finder.search(browser.m_finding->text(), browser.m_foundFrom);
}
