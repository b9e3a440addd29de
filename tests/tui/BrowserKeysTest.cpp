#include "BrowserKeys.h"

#include <gtest/gtest.h>

#include <QSet>

#include "Printing.h"

namespace {

QString keysOf(const QString& does) {
    for (const KeyNote& note : BrowserKeys::notes()) {
        if (note.does == does)
            return note.keys;
    }
    return {};
}

} // namespace

TEST(BrowserKeys, theListOfKeysSaysWhatEachDoes) {
    EXPECT_EQ(keysOf("One row up"), QString::fromUtf8("↑ k"));
    EXPECT_EQ(keysOf("Back"), QString::fromUtf8("← h Backspace"));
    EXPECT_EQ(keysOf("Remove from the playlist"), "dd Delete");
    EXPECT_EQ(keysOf("Choose, or not any more"), "Space");
    EXPECT_EQ(keysOf("Draw anew"), "Ctrl-L");
}

TEST(BrowserKeys, noKeyHasTwoMeanings) {
    QSet<QString> seen;
    for (const KeyNote& note : BrowserKeys::notes()) {
        EXPECT_FALSE(note.keys.isEmpty()) << qPrintable(note.does);
        const QStringList keys = note.keys.split(note.keys.contains("heel") ? '\n' : ' ');
        for (const QString& key : keys) {
            EXPECT_FALSE(seen.contains(key)) << qPrintable(key);
            seen.insert(key);
        }
    }
}
