#include <gtest/gtest.h>

#include "CellText.h"
#include "Key.h"
#include "LineEditor.h"
#include "Printing.h"

namespace {

class BrowseText : public ::testing::Test {
protected:
    static void SetUpTestSuite() { CellText::prepareLocale(); }
    static QString shown(const QString& text) { return CellText(text).toString(); }
    static int width(const char* text) { return CellText(QString::fromUtf8(text)).width(); }
};

} // namespace

TEST_F(BrowseText, controlCharactersAndHalfSurrogatesBecomeVisibleSigns) {
    EXPECT_EQ(shown("a\x1b[2Jb\nc\x7f"), QString::fromUtf8("a␛[2Jb␊c␡"));
    EXPECT_EQ(shown(QString(QChar(0x9B)) + "1m"), QString::fromUtf8("\uFFFD1m"));
    EXPECT_EQ(shown(QString(QChar(0x202E)) + "abc"), QString::fromUtf8("\uFFFDabc"));
    EXPECT_EQ(shown("a" + QString(QChar(0xD83D)) + "b"), QString::fromUtf8("a\uFFFDb"));
    EXPECT_EQ(shown(QString(QChar(0xDE00))), QString::fromUtf8("\uFFFD"));
    EXPECT_EQ(shown("<b>&amp;</b>"), "<b>&amp;</b>");
}

TEST_F(BrowseText, widthsAreThoseOfTheTerminal) {
    EXPECT_EQ(width("abc"), 3);
    EXPECT_EQ(width("音楽"), 4);
    EXPECT_EQ(width("😀"), 2);
    EXPECT_EQ(width("e\u0301a"), 2);
    EXPECT_EQ(width("\u0301"), 1) << "a mark alone stands on a blank";
    EXPECT_EQ(width("👨\u200D👩"), 4) << "terminals disagree about joined ones";
    EXPECT_EQ(shown(QString::fromUtf8("👨\u200D👩❤\uFE0F")), QString::fromUtf8("👨👩❤"));
}

TEST_F(BrowseText, aFlockOfMarksStaysInItsCell) {
    QString text("a");
    for (int i = 0; i < 50; ++i)
        text += QChar(0x0301);
    const CellText cells(text + "b");
    EXPECT_EQ(cells.width(), 2);
    EXPECT_EQ(cells.cells().size(), 2);
}

TEST_F(BrowseText, aFittedTextTakesExactlyItsColumns) {
    const CellText text(QString::fromUtf8("a音楽b"));
    EXPECT_EQ(text.fitted(8).toString(), QString::fromUtf8("a音楽b  "));
    EXPECT_EQ(text.fitted(6).toString(), QString::fromUtf8("a音楽b"));
    EXPECT_EQ(text.fitted(5).toString(), QString::fromUtf8("a音… "));
    EXPECT_EQ(text.fitted(4).toString(), QString::fromUtf8("a音…"));
    EXPECT_EQ(text.fitted(1).toString(), QString::fromUtf8("…"));
    EXPECT_EQ(text.fitted(0).toString(), "");
    EXPECT_EQ(CellText("7").fitted(3, CellText::Align::Right).toString(), "  7");
    for (int columns = 0; columns < 10; ++columns)
        EXPECT_EQ(text.fitted(columns).width(), columns);
    EXPECT_EQ(text.cutFront(4).toString(), QString::fromUtf8("…楽b"));
}

TEST_F(BrowseText, longMessagesAreBrokenAtBlanksAndLoseNothing) {
    const CellText text("Could not do it. Averyveryverylongword.");
    QStringList lines;
    for (const CellText& line : text.wrapped(10)) {
        EXPECT_LE(line.width(), 10);
        lines.append(line.toString());
    }
    EXPECT_EQ(lines.join(""), "Could not do it. Averyveryverylongword.");
    EXPECT_EQ(lines.first(), "Could not ");
}

TEST(LineEditor, marksGoWithTheirCharacters) {
    LineEditor line(QString::fromUtf8("ae\u0301"));
    line.press({Key::Backspace, 0});
    EXPECT_EQ(line.text(), "a");
    line.press({Key::Char, U'😀'});
    EXPECT_EQ(line.text(), QString::fromUtf8("a😀"));
    line.press({Key::Left, 0});
    EXPECT_EQ(line.cursor(), 1);
    line.press({Key::Char, U'b'});
    EXPECT_EQ(line.text(), QString::fromUtf8("ab😀"));
    line.press({Key::Delete, 0});
    EXPECT_EQ(line.text(), "ab");
    line.press({Key::Home, 0});
    line.press({Key::Backspace, 0});
    line.press({Key::Delete, 0});
    EXPECT_EQ(line.text(), "b");
    EXPECT_FALSE(line.press({Key::Enter, 0}));
}
