#include "OrvoPlayListEnums.h"

#include <climits>
#include <gtest/gtest.h>

#include <QSet>

#include "Printing.h"

namespace {

template <typename T>
class OrvoPlayListEnumsTest : public ::testing::Test {};

using Enums = ::testing::Types<OrvoPlayListAddPosition, OrvoPlayListPlShuffleMode,
                               OrvoPlayListPlRepeatMode, OrvoPlayerPlayMode>;
TYPED_TEST_SUITE(OrvoPlayListEnumsTest, Enums);

template <typename Enumeration>
struct Names {
    QStringList texts;
    explicit Names(int count) {
        for (int i = 0; i < count; ++i)
            texts.append(Enumeration::toString(i));
    }
};

} // namespace

TYPED_TEST(OrvoPlayListEnumsTest, everyNumberComesBackFromItsText) {
    const auto comesBack = [](int number) {
        ASSERT_EQ(int(TypeParam::fromString(TypeParam::toString(number))), number);
    };
    for (int number = -2000; number <= 2000; ++number)
        comesBack(number);
    for (qint64 number = INT_MIN; number <= INT_MAX; number += 1000003)
        comesBack(int(number));
    for (int number : {INT_MIN, INT_MIN + 1, INT_MAX - 1, INT_MAX})
        comesBack(number);
}

TYPED_TEST(OrvoPlayListEnumsTest, numbersWithoutANameAreDecimalText) {
    EXPECT_EQ(TypeParam::toString(-1), "-1");
    EXPECT_EQ(TypeParam::toString(17), "17");
    EXPECT_EQ(TypeParam::toString(INT_MIN), "-2147483648");
    EXPECT_EQ(TypeParam::toString(INT_MAX), "2147483647");
}

TYPED_TEST(OrvoPlayListEnumsTest, namesAreToldApart) {
    QSet<QString> texts;
    for (int number = -3; number < 10; ++number)
        texts.insert(TypeParam::toString(number));
    EXPECT_EQ(texts.size(), 13);
}

TEST(OrvoPlayListEnums, theNamesAreFixed) {
    EXPECT_EQ(Names<OrvoPlayListAddPosition>(4).texts,
              QStringList({"now", "afterCurrent", "append", "3"}));
    EXPECT_EQ(Names<OrvoPlayListPlShuffleMode>(3).texts,
              QStringList({"shuffleOff", "shuffleOn", "2"}));
    EXPECT_EQ(Names<OrvoPlayListPlRepeatMode>(5).texts,
              QStringList({"repeatOff", "repeatOne", "repeatAll", "3", "4"}));
    EXPECT_EQ(Names<OrvoPlayerPlayMode>(7).texts,
              QStringList({"normal", "shuffle", "repeatOne", "shuffleRepeatOne", "repeatAll",
                           "shuffleRepeatAll", "6"}));
}

TEST(OrvoPlayListEnums, theNumbersAreFixed) {
    EXPECT_EQ(int(OrvoPlayListAddPosition::Now), 0);
    EXPECT_EQ(int(OrvoPlayListAddPosition::AfterCurrent), 1);
    EXPECT_EQ(int(OrvoPlayListAddPosition::Append), 2);
    EXPECT_EQ(int(OrvoPlayListPlShuffleMode::Off), 0);
    EXPECT_EQ(int(OrvoPlayListPlShuffleMode::On), 1);
    EXPECT_EQ(int(OrvoPlayListPlRepeatMode::All), 2);
    EXPECT_EQ(int(OrvoPlayerPlayMode::Normal), 0);
    EXPECT_EQ(int(OrvoPlayerPlayMode::ShuffleRepeatAll), 5);
}
