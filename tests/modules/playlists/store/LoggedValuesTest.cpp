#include <gtest/gtest.h>
#include <numeric>

#include "LogCapture.h"
#include "RepeatedLogLines.h"

namespace {

QString longText(int size, const QString& letter = QStringLiteral("x")) {
    return letter.repeated(size / letter.size());
}

QList<int> numbersBelow(int count) {
    QVector<int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers.toList();
}

// What `count` lines alike, and one behind them, leave in the log.
QStringList alike(int count, log4cplus::LogLevel level = log4cplus::TRACE_LOG_LEVEL) {
    const LogCapture log(QStringLiteral("PlayLists"), level);
    {
        RepeatedLogLines lines(moduleLog(), log4cplus::WARN_LOG_LEVEL);
        for (int i = 0; i < count; ++i) {
            if (lines.next())
                LOG4CPLUS_WARN(moduleLog(), "line " << i);
        }
    }
    LOG4CPLUS_ERROR(moduleLog(), "behind");
    return log.lines();
}

QStringList expectedLines(int written, const QStringList& rest) {
    QStringList lines;
    for (int i = 0; i < written; ++i)
        lines.append(QStringLiteral("WARN line %1").arg(i));
    return lines + rest;
}

} // namespace

TEST(LoggedValues, aTextOfTheGreatestLengthIsWhole) {
    EXPECT_EQ(QString(), loggedText(QString()));
    EXPECT_EQ(QString("Sunday"), loggedText("Sunday"));
    EXPECT_EQ(longText(200), loggedText(longText(200)));
}

TEST(LoggedValues, aLongerTextSaysHowMuchIsLeftOut) {
    EXPECT_EQ(longText(200) + "… (1 more)", loggedText(longText(201)));
    EXPECT_EQ(longText(200) + "… (3,896 more)", loggedText(longText(4096)));
    EXPECT_EQ(longText(200) + "… (7,999,800 more)", loggedText(longText(8'000'000)));
}

TEST(LoggedValues, noCharacterIsCutInHalf) {
    const QString note = QString::fromUtf8("🎵");
    ASSERT_EQ(2, note.size());
    EXPECT_EQ("x" + longText(198, note) + "… (202 more)", loggedText("x" + longText(400, note)));
    EXPECT_EQ(longText(200, note) + "… (200 more)", loggedText(longText(400, note)));
}

TEST(LoggedValues, aListIsWholeWhereItHasRoom) {
    EXPECT_EQ(QString(), joined(QList<int>{}));
    EXPECT_EQ(QString("1, 2, 5"), joined(QList<int>{1, 2, 5}));
    EXPECT_EQ(QString("radio:e, radio:g"), joined(QStringList{"radio:e", "radio:g"}));
    // Two letters and two of the separator, the last one without.
    const QStringList texts =
        QStringList{longText(4)} + QVector<QString>(149, longText(2)).toList();
    EXPECT_EQ(600, texts.join(", ").size());
    EXPECT_EQ(texts.join(", "), joined(texts));
}

TEST(LoggedValues, aLongerListHasWholeElementsAndSaysHowManyAreLeftOut) {
    const QStringList texts =
        QStringList{longText(5)} + QVector<QString>(149, longText(2)).toList();
    EXPECT_EQ(601, texts.join(", ").size());
    EXPECT_EQ(QStringList(texts.mid(0, 149)).join(", ") + ", … and 1 more", joined(texts));
    // 10 × 3 + 90 × 4 characters up to 99, and 42 × 5 up to 141.
    QStringList kept;
    for (int number = 0; number <= 141; ++number)
        kept.append(QString::number(number));
    EXPECT_EQ(598, kept.join(", ").size());
    EXPECT_EQ(kept.join(", ") + ", … and 99,858 more", joined(numbersBelow(100'000)));
}

TEST(LoggedValues, theTextsOfAListAreCutAsWell) {
    EXPECT_EQ(longText(200) + "… (800 more), b", joined(QStringList{longText(1000), "b"}));
    const auto large = [](int) { return longText(5000); };
    EXPECT_EQ(longText(600) + "… (4,400 more), … and 2 more", loggedList(3, large));
}

TEST(LoggedValues, ofALongListOnlyWhatIsWrittenIsAskedFor) {
    int asked = 0;
    loggedList(100'000, [&asked](int i) {
        ++asked;
        return QString::number(i);
    });
    EXPECT_EQ(143, asked);
}

TEST(LoggedValues, aValueIsJsonWithItsTextsAndListsCut) {
    EXPECT_EQ(QString("plain"), loggedValue("plain"));
    EXPECT_EQ(QString("3"), loggedValue(3));
    EXPECT_EQ(QString("[]"), loggedValue(QVariantList{}));
    EXPECT_EQ(QString(R"({"a":"say \"x\"","b":[1,2.5,true,null],"c":{}})"),
              loggedValue(QVariantHash{{"b", QVariantList{1, 2.5, true, QVariant()}},
                                       {"a", "say \"x\""},
                                       {"c", QVariantHash{}}}));
    QVariantList numbers;
    for (int i = 0; i < 100'000; ++i)
        numbers.append(i);
    const QString value = loggedValue(QVariantHash{{"items", numbers}, {"name", longText(201)}});
    EXPECT_TRUE(value.startsWith(R"({"items":[0,1,2,)")) << value.toStdString();
    const QString end =
        QStringLiteral(",176,… and 99,823 more],\"name\":\"%1… (1 more)\"}").arg(longText(200));
    EXPECT_TRUE(value.endsWith(end)) << value.toStdString();
}

TEST(LoggedValues, fiveLinesAlikeAreWritten) {
    EXPECT_EQ(expectedLines(0, {"ERROR behind"}), alike(0));
    EXPECT_EQ(expectedLines(1, {"ERROR behind"}), alike(1));
    EXPECT_EQ(expectedLines(5, {"ERROR behind"}), alike(5));
}

TEST(LoggedValues, moreLinesAlikeAreCounted) {
    EXPECT_EQ(expectedLines(5, {"WARN and 1 more", "ERROR behind"}), alike(6));
    EXPECT_EQ(expectedLines(5, {"WARN and 99,995 more", "ERROR behind"}), alike(100'000));
    EXPECT_EQ(QStringList("ERROR behind"), alike(6, log4cplus::ERROR_LOG_LEVEL));
}

TEST(LoggedValues, whatComesAfterTheEndIsCountedAnew) {
    const LogCapture log(QStringLiteral("PlayLists"));
    RepeatedLogLines lines(moduleLog(), log4cplus::ERROR_LOG_LEVEL);
    for (int i = 0; i < 7; ++i)
        lines.next();
    lines.end();
    EXPECT_EQ(QStringList("ERROR and 2 more"), log.lines());
    EXPECT_TRUE(lines.next());
    lines.end();
    EXPECT_EQ(QStringList("ERROR and 2 more"), log.lines());
}
