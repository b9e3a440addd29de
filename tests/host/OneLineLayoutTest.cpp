#include "OneLineLayout.h"

#include <gtest/gtest.h>

namespace {

TEST(OneLineLayoutTest, plainTextStaysAsItIs) {
    for (const char* text :
         {"", "scanning /music", "Grüße, 日本 \xf0\x9f\x8e\xb5", "50 % \\n", "\xc2\xa0\xc3\x80"})
        EXPECT_EQ(OneLineLayout::escaped(text), text);
}

TEST(OneLineLayoutTest, controlCharactersBecomeEscapes) {
    EXPECT_EQ(OneLineLayout::escaped("a\nb\tc\rd"), "a\\nb\\tc\\x0dd");
    EXPECT_EQ(OneLineLayout::escaped("\x1b[31m\x7f"), "\\x1b[31m\\x7f");
    EXPECT_EQ(OneLineLayout::escaped(std::string("a\0b", 3)), "a\\x00b");
    // U+009B, an escape sequence's beginning in one character.
    EXPECT_EQ(OneLineLayout::escaped("\xc2\x9b"
                                     "31m"),
              "\\x9b31m");
    EXPECT_EQ(OneLineLayout::escaped("end\xc2"), "end\xc2");
}

TEST(OneLineLayoutTest, lineSeparatorsAndTurnsOfDirectionBecomeEscapes) {
    EXPECT_EQ(OneLineLayout::escaped("a\u2028b\u2029c"), "a\\u2028b\\u2029c");
    EXPECT_EQ(OneLineLayout::escaped("\u202egnp.\u2069\u200f\u061c"),
              "\\u202egnp.\\u2069\\u200f\\u061c");
    EXPECT_EQ(OneLineLayout::escaped("\u2027\u202f\u2065"), "\u2027\u202f\u2065");
}

TEST(OneLineLayoutTest, aLongTextIsCutBetweenCharactersAndSaysSo) {
    const std::string mark = "… (cut)";
    EXPECT_EQ(OneLineLayout::escaped("0123456789", 10), "0123456789");
    EXPECT_EQ(OneLineLayout::escaped("0123456789a", 10), "0" + mark);
    EXPECT_EQ(OneLineLayout::escaped("0123456789a", 9), mark);
    EXPECT_EQ(OneLineLayout::escaped("日本日本日本", 18), "日本日本日本");
    for (std::size_t room : {15, 16, 17})
        EXPECT_EQ(OneLineLayout::escaped("日本日本日本", room), "日本" + mark) << room;
    EXPECT_EQ(OneLineLayout::escaped("日本日本日本", 14), "日" + mark);
    EXPECT_EQ(OneLineLayout::escaped(std::string(100, '\x1b'), 20), "\\x1b\\x1b" + mark);
    EXPECT_EQ(OneLineLayout::escaped(std::string(100, '\xb5'), 20), mark)
        << "no character ends there";
}

} // namespace
