#include "OrvoHash.h"

#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include <QJsonDocument>
#include <QJsonObject>

#include "OrvoEnum.h"
#include "Printing.h"

ORVO_ENUM(Colour, , Red = 0, Green = 7, Blue = -2)
ORVO_ENUM_TABLE(Colour, {Colour::Red, "red"}, {Colour::Green, "green"}, {Colour::Blue, "blue"})

namespace {

class Part : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(QString, name, Name, "name")
};

class Record : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
    ORVO_ATTRIBUTE(int, count, Count, "count")
    ORVO_ATTRIBUTE(qint64, duration, Duration, "duration")
    ORVO_ATTRIBUTE(bool, flag, Flag, "flag")
    ORVO_ATTRIBUTE(QString, text, Text, "text")
    ORVO_ATTRIBUTE(QList<int>, positions, Positions, "positions")
    ORVO_ATTRIBUTE(Part, part, OnePart, "part")
    ORVO_LIST_ATTRIBUTE(Part, parts, Parts, "parts")
    ORVO_ATTRIBUTE(Colour::Enum, colour, Mode, "colour")
};

Record recordWith(const QString& key, const QVariant& value) {
    return Record(QVariantHash{{key, value}});
}

} // namespace

TEST(OrvoHash, theDefaultOneIsEmpty) {
    const OrvoHash hash;
    EXPECT_TRUE(hash.isEmpty());
    EXPECT_FALSE(hash.contains("plid"));
    EXPECT_EQ(hash.toHash(), QVariantHash());
    EXPECT_EQ(hash.toVariant(), QVariant(QVariantHash()));
}

TEST(OrvoHash, unsetAttributesReadTheirNothing) {
    const Record record;
    EXPECT_EQ(record.plid(), -1);
    EXPECT_EQ(record.count(), 0);
    EXPECT_EQ(record.duration(), 0);
    EXPECT_FALSE(record.flag());
    EXPECT_EQ(record.text(), QString());
    EXPECT_TRUE(record.positions().isEmpty());
    EXPECT_TRUE(record.part().isEmpty());
    EXPECT_TRUE(record.parts().isEmpty());
    EXPECT_FALSE(record.containsPlid() || record.containsCount() || record.containsFlag() ||
                 record.containsText());
}

TEST(OrvoHash, oneDeclarationGivesGetterSetterNameAndTest) {
    Record record;
    record.setPlid(0);
    EXPECT_TRUE(record.containsPlid());
    EXPECT_EQ(Record::Plid(), "plid");
    EXPECT_EQ(record.plid(), 0);
    EXPECT_EQ(record.toHash(), QVariantHash({{"plid", 0}}));
    record.setFlag(true);
    record.setDuration(Q_INT64_C(1) << 40);
    record.setText("x");
    record.setPositions({3, 1});
    EXPECT_TRUE(record.flag());
    EXPECT_EQ(record.duration(), Q_INT64_C(1) << 40);
    EXPECT_EQ(record.text(), "x");
    EXPECT_EQ(record.positions(), QList<int>({3, 1}));
    record.removeAttribute(Record::Plid());
    EXPECT_FALSE(record.containsPlid());
    EXPECT_EQ(record.plid(), -1);
}

TEST(OrvoHash, keysItDoesNotKnowAreKept) {
    Record record(QVariantHash{{"plid", 1}, {"newer", "kept"}});
    record.setPlid(2);
    const Record copy(record.toVariant());
    EXPECT_EQ(copy.toHash(), QVariantHash({{"plid", 2}, {"newer", "kept"}}));
    EXPECT_TRUE(copy.contains("newer"));
    EXPECT_EQ(copy.attribute("newer"), QVariant("kept"));
}

TEST(OrvoHash, itIsReadFromHashesAndMapsAndFromNothingElse) {
    EXPECT_EQ(Record(QVariant(QVariantMap{{"plid", 3}})).plid(), 3);
    EXPECT_EQ(Record(QVariant(QVariantHash{{"plid", 3}})).plid(), 3);
    EXPECT_TRUE(Record(QVariant("plid")).isEmpty());
    EXPECT_TRUE(Record(QVariant(QVariantList{1, 2})).isEmpty());
    EXPECT_TRUE(Record(QVariant()).isEmpty());
}

TEST(OrvoHash, copiesAreIndependent) {
    Record record;
    record.setPlid(1);
    Record copy = record;
    copy.setPlid(2);
    EXPECT_EQ(record.plid(), 1);
    EXPECT_NE(record, copy);
    copy.setPlid(1);
    EXPECT_EQ(record, copy);
}

TEST(OrvoHash, integersAreReadStrictly) {
    struct Row {
        QVariant value;
        int expected;
    };
    constexpr int fallback = -77;
    const QList<Row> rows = {
        {5, 5},
        {-5, -5},
        {INT_MIN, INT_MIN},
        {INT_MAX, INT_MAX},
        {5u, 5},
        {4294967295u, fallback},
        {qlonglong(12), 12},
        {qlonglong(INT_MAX) + 1, fallback},
        {qlonglong(INT_MIN) - 1, fallback},
        {Q_UINT64_C(18446744073709551615), fallback},
        {7.0, 7},
        {-0.0, 0},
        {7.5, fallback},
        {1e300, fallback},
        {std::nan(""), fallback},
        {std::numeric_limits<double>::infinity(), fallback},
        {QString("42"), 42},
        {QString("-42"), -42},
        {QString("2147483648"), fallback},
        {QString("4294967297"), fallback},
        {QString("0x10"), fallback},
        {QString("1e3"), fallback},
        {QString("12abc"), fallback},
        {QString("1,000"), fallback},
        {QString(""), fallback},
        {QByteArray("42"), 42},
        {true, fallback},
        {QVariant(), fallback},
        {QVariantList{1}, fallback},
        {QVariantHash{{"i32", 1}}, fallback},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(OrvoHash::toInt(row.value, fallback), row.expected)
            << row.value.typeName() << ' ' << row.value.toString();
    }
}

TEST(OrvoHash, longIntegersAreReadStrictly) {
    EXPECT_EQ(OrvoHash::toInt64(std::numeric_limits<qint64>::max(), 1),
              std::numeric_limits<qint64>::max());
    EXPECT_EQ(OrvoHash::toInt64(std::numeric_limits<qint64>::min(), 1),
              std::numeric_limits<qint64>::min());
    EXPECT_EQ(OrvoHash::toInt64(Q_UINT64_C(9223372036854775807), 1),
              Q_INT64_C(9223372036854775807));
    EXPECT_EQ(OrvoHash::toInt64(Q_UINT64_C(9223372036854775808), 1), 1);
    EXPECT_EQ(OrvoHash::toInt64(9007199254740992.0, 1), Q_INT64_C(9007199254740992));
    EXPECT_EQ(OrvoHash::toInt64(9007199254740994.0, 1), 1)
        << "beyond 2^53 a double is no exact number";
    EXPECT_EQ(OrvoHash::toInt64(QString("9223372036854775808"), 1), 1);
}

TEST(OrvoHash, anIdThatIsNoNumberReadsMinusOne) {
    for (const QVariant& value :
         QVariantList{"x", 1.5, true, QVariant(), QVariantList(), 4294967296.0})
        EXPECT_EQ(recordWith("plid", value).plid(), -1) << value.typeName();
    EXPECT_EQ(recordWith("plid", "12").plid(), 12);
    EXPECT_EQ(recordWith("plid", 12.0).plid(), 12) << "JSON has no integers";
}

TEST(OrvoHash, aListElementThatIsNoNumberReadsMinusOne) {
    EXPECT_EQ(recordWith("positions", QVariantList{1, "2", "x", 3.5, 4.0}).positions(),
              QList<int>({1, 2, -1, -1, 4}));
    EXPECT_TRUE(recordWith("positions", 5).positions().isEmpty());
}

TEST(OrvoHash, recordsWithinRecordsTravelAsHashes) {
    Part one;
    one.setName("one");
    Part two(QVariantHash{{"name", "two"}, {"extra", 2}});
    Record record;
    record.setOnePart(one);
    record.setParts({one, two});
    EXPECT_EQ(record.attribute("part"), QVariant(QVariantHash({{"name", "one"}})));
    const QByteArray json = QJsonDocument(QJsonObject::fromVariantHash(record.toHash())).toJson();
    const Record again(QJsonDocument::fromJson(json).object().toVariantHash());
    EXPECT_EQ(again.part().name(), "one");
    ASSERT_EQ(again.parts().size(), 2);
    EXPECT_EQ(again.parts().at(1).name(), "two");
    EXPECT_TRUE(again.parts().at(1).contains("extra"));
}

TEST(OrvoEnum, everyNumberComesBackFromItsText) {
    for (qint64 number = INT_MIN; number <= INT_MAX; number += 999983)
        ASSERT_EQ(int(Colour::fromString(Colour::toString(int(number)))), int(number));
    for (int number : {INT_MIN, INT_MIN + 1, -1000, -2, -1, 0, 1, 2, 6, 7, 8, INT_MAX - 1, INT_MAX})
        EXPECT_EQ(int(Colour::fromString(Colour::toString(number))), number);
}

TEST(OrvoEnum, namedNumbersHaveTheirNameAndTheOthersTheirDigits) {
    EXPECT_EQ(Colour::toString(Colour::Red), "red");
    EXPECT_EQ(Colour::toString(Colour::Blue), "blue");
    EXPECT_EQ(Colour::toString(2), "2");
    EXPECT_EQ(Colour::toString(-1), "-1");
    EXPECT_EQ(Colour::fromString("green"), Colour::Green);
    EXPECT_EQ(Colour::fromString("7"), Colour::Green);
    EXPECT_EQ(int(Colour::fromString("-1")), -1);
}

TEST(OrvoEnum, aTextThatIsNeitherNameNorNumberIsAboveEveryBound) {
    for (const QString& text :
         {QString(), QString("Green"), QString("mauve"), QString("1.5"), QString("4294967296")})
        EXPECT_EQ(int(Colour::fromString(text)), INT_MAX) << text;
}

TEST(OrvoEnum, anAttributeIsKeptByNameAndReadBackAsItsNumber) {
    Record record;
    record.setMode(Colour::Green);
    EXPECT_EQ(record.attribute("colour"), QVariant("green"));
    EXPECT_EQ(record.colour(), Colour::Green);
    record.setMode(Colour::Enum(-5));
    EXPECT_EQ(record.attribute("colour"), QVariant("-5"));
    EXPECT_EQ(int(record.colour()), -5);
}

TEST(OrvoEnum, anAttributeMayBeSentAsNumberOrName) {
    EXPECT_EQ(recordWith("colour", 7).colour(), Colour::Green);
    EXPECT_EQ(recordWith("colour", 7.0).colour(), Colour::Green);
    EXPECT_EQ(recordWith("colour", "7").colour(), Colour::Green);
    EXPECT_EQ(recordWith("colour", "green").colour(), Colour::Green);
    EXPECT_EQ(int(recordWith("colour", INT_MAX).colour()), INT_MAX);
    EXPECT_EQ(int(recordWith("colour", INT_MIN).colour()), INT_MIN);
    EXPECT_EQ(int(recordWith("colour", true).colour()), INT_MAX) << "a truth is no mode";
    EXPECT_EQ(int(Record().colour()), INT_MAX);
}
