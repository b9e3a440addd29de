#include "BrowserKeys.h"

#include "Browser.h"
#include "Key.h"

namespace {

// What concerns the rows of a list waits for them.
enum class When { Always, RowsAreThere };

struct KeyRow {
    Key key;
    When when;
    void (*run)(Browser& browser);
};

const KeyRow Keys[] = {
    {{Key::Up}, When::RowsAreThere, [](Browser& b) { b.shown().cursor().move(-1); }},
    {{Key::Down}, When::RowsAreThere, [](Browser& b) { b.shown().cursor().move(1); }},
    {{Key::PageUp}, When::RowsAreThere, [](Browser& b) { b.shown().cursor().page(-1); }},
    {{Key::PageDown}, When::RowsAreThere, [](Browser& b) { b.shown().cursor().page(1); }},
    {{Key::Home}, When::RowsAreThere, [](Browser& b) { b.shown().cursor().home(); }},
    {{Key::Char, U'g'}, When::RowsAreThere, [](Browser& b) { b.shown().cursor().home(); }},
    {{Key::End}, When::RowsAreThere, [](Browser& b) { b.shown().cursor().end(); }},
    {{Key::Char, U'G'}, When::RowsAreThere, [](Browser& b) { b.shown().cursor().end(); }},
    {{Key::Enter}, When::RowsAreThere, [](Browser& b) { b.openActive(); }},
    {{Key::Right}, When::RowsAreThere, [](Browser& b) { b.enterActive(); }},
    {{Key::Left}, When::Always, [](Browser& b) { b.back(); }},
    {{Key::Backspace}, When::Always, [](Browser& b) { b.back(); }},
    {{Key::Escape}, When::Always, [](Browser& b) { b.back(); }},
    {{Key::Char, U'm'}, When::RowsAreThere, [](Browser& b) { b.openMenuOfActive(); }},
    {{Key::Char, U'/'}, When::RowsAreThere, [](Browser& b) { b.find(); }},
    {{Key::Char, U' '}, When::Always, [](Browser& b) { b.togglePlaying(); }},
    {{Key::Char, U'n'}, When::Always, [](Browser& b) { b.playNext(); }},
    {{Key::Char, U'p'}, When::Always, [](Browser& b) { b.playPrevious(); }},
    {{Key::Char, U'j'}, When::Always, [](Browser& b) { b.jumpToCurrent(); }},
    {{Key::Char, U'?'}, When::Always, [](Browser& b) { b.showHelp(); }},
    {{Key::Char, U'q'}, When::Always, [](Browser& b) { Q_EMIT b.quit(); }},
};

} // namespace

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
    for (const KeyRow& row : Keys) {
        if (row.key.name != key.name || row.key.character != key.character)
            continue;
        if (row.when == When::RowsAreThere && browser.typesAhead(key))
            return;
        row.run(browser);
        return;
    }
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
