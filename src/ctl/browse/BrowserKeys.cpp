#include "BrowserKeys.h"

#include "Browser.h"
#include "Terminal.h"

namespace {

struct KeyRow {
    Key key;
    void (*run)(Browser& browser);
};

const KeyRow Keys[] = {
    {{Key::Up}, [](Browser& b) { b.shown().cursor().move(-1); }},
    {{Key::Down}, [](Browser& b) { b.shown().cursor().move(1); }},
    {{Key::PageUp}, [](Browser& b) { b.shown().cursor().page(-1); }},
    {{Key::PageDown}, [](Browser& b) { b.shown().cursor().page(1); }},
    {{Key::Home}, [](Browser& b) { b.shown().cursor().home(); }},
    {{Key::Char, U'g'}, [](Browser& b) { b.shown().cursor().home(); }},
    {{Key::End}, [](Browser& b) { b.shown().cursor().end(); }},
    {{Key::Char, U'G'}, [](Browser& b) { b.shown().cursor().end(); }},
    {{Key::Enter}, [](Browser& b) { b.openActive(); }},
    {{Key::Right}, [](Browser& b) { b.enterActive(); }},
    {{Key::Left}, [](Browser& b) { b.back(); }},
    {{Key::Backspace}, [](Browser& b) { b.back(); }},
    {{Key::Escape}, [](Browser& b) { b.back(); }},
    {{Key::Char, U'm'}, [](Browser& b) { b.openMenuOfActive(); }},
    {{Key::Char, U'/'}, [](Browser& b) { b.find(); }},
    {{Key::Char, U' '}, [](Browser& b) { b.togglePlaying(); }},
    {{Key::Char, U'n'}, [](Browser& b) { b.playNext(); }},
    {{Key::Char, U'p'}, [](Browser& b) { b.playPrevious(); }},
    {{Key::Char, U'j'}, [](Browser& b) { b.jumpToCurrent(); }},
    {{Key::Char, U'?'}, [](Browser& b) { b.showHelp(); }},
    {{Key::Char, U'q'}, [](Browser& b) { Q_EMIT b.quit(); }},
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
        if (row.key.name == key.name && row.key.character == key.character) {
            row.run(browser);
            return;
        }
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
