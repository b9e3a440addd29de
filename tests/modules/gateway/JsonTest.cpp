#include <gtest/gtest.h>
#include <limits>

#include "JsonReader.h"
#include "JsonWriter.h"
#include "OrvoRoles.h"

namespace {

QByteArray written(const QVariant& value) {
    JsonWriter json;
    json.value(value);
    return json.text();
}

} // namespace

TEST(JsonWriter, everyKindOfValueHasItsForm) {
    const struct {
        QVariant value;
        const char* json;
    } rows[] = {
        {QVariant(), "null"},
        {true, "true"},
        {0, "0"},
        {-5, "-5"},
        {std::numeric_limits<qint64>::min(), "-9223372036854775808"},
        {std::numeric_limits<quint64>::max(), "18446744073709551615"},
        {3.0, "3"},
        {0.1, "0.1"},
        {std::numeric_limits<double>::infinity(), "null"},
        {std::numeric_limits<double>::quiet_NaN(), "null"},
        {QString(), "\"\""},
        {QByteArray("bytes"), "\"bytes\""},
        {QStringList({"a", "b"}), "[\"a\",\"b\"]"},
        {QVariantList({1, QVariantList(), QVariantHash()}), "[1,[],{}]"},
        {QVariantMap({{"b", 1}, {"a", 2}}), "{\"a\":2,\"b\":1}"},
        {QVariant::fromValue(TrString("Context", "%1 of %2", {"1", "2"})), "\"1 of 2\""},
        {QVariant::fromValue(CMPath(QStringLiteral("x:a b?c=d"))), "\"x:a%20b?c=d\""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(written(row.value).toStdString(), row.json);
}

TEST(JsonWriter, textsAreEscapedAndBecomeUtf8) {
    EXPECT_EQ(written(QStringLiteral("\"\\/\n\r\t\x01\x7f")), "\"\\\"\\\\/\\n\\r\\t\\u0001\x7f\"");
    EXPECT_EQ(written(QString::fromUtf8("aé€😀z")), QByteArray("\"aé€😀z\""));
    const QString loneHigh = QStringLiteral("a") + QChar(0xD83D);
    const QString loneLow = QChar(0xDE00) + QStringLiteral("b");
    EXPECT_EQ(written(loneHigh), QByteArray("\"a\xEF\xBF\xBD\""));
    EXPECT_EQ(written(loneLow), QByteArray("\"\xEF\xBF\xBD"
                                           "b\""));
}

// Many units are taken at a step, and long texts in parts: a unit that needs more than itself is
// found at every place of both.
TEST(JsonWriter, noPlaceInATextIsLeftOut) {
    const struct {
        QString text;
        QByteArray json;
    } units[] = {
        {"\"", "\\\""},
        {"\\", "\\\\"},
        {QChar(0), "\\u0000"},
        {QChar(0x1f), "\\u001F"},
        {QChar(0x7f), "\x7f"},
        {QChar(0x80), "\xC2\x80"},
        {QChar(0xffff), "\xEF\xBF\xBF"},
        {QString::fromUtf8("😀"), "😀"},
        {QChar(0xDE00), "\xEF\xBF\xBD"},
        {" ", " "},
        {"~", "~"},
    };
    for (const int around : {0, 4080}) {
        for (int before = around; before < around + 34; ++before) {
            for (const int after : {0, 1, 7, 8, 9, 40}) {
                for (const auto& unit : units) {
                    const QByteArray expected =
                        '"' + QByteArray(before, 'x') + unit.json + QByteArray(after, 'y') + '"';
                    ASSERT_EQ(written(QString(before, 'x') + unit.text + QString(after, 'y')),
                              expected)
                        << before << ' ' << after << ' ' << unit.json.toStdString();
                }
            }
        }
    }
}

TEST(JsonWriter, doublesAreAsShortAsTheyCanBe) {
    EXPECT_EQ(written(1e300), "1e+300");
    EXPECT_EQ(written(-2.5e-7), "-2.5e-07");
    EXPECT_EQ(written(1.0 / 3), "0.3333333333333333");
    EXPECT_EQ(written(9007199254740992.0), "9007199254740992");
    EXPECT_EQ(written(18014398509481984.0), "18014398509481984");
}

TEST(JsonWriter, aTextOfExactlyTheLimitIsWhole) {
    const QVariantHash record{{"a", QStringLiteral("x\n€")}, {"b", QVariantList{1, 2.5, true}}};
    const QByteArray whole = written(record);
    JsonWriter exact(whole.size());
    exact.value(QVariant(record));
    EXPECT_FALSE(exact.isFull());
    EXPECT_EQ(exact.text(), whole);
    for (int limit = 1; limit < whole.size(); ++limit) {
        JsonWriter tooSmall(limit);
        tooSmall.value(QVariant(record));
        EXPECT_TRUE(tooSmall.isFull()) << limit;
        EXPECT_EQ(tooSmall.text(), QByteArray()) << limit;
    }
}

// Shared texts cost nothing until they are written: 40 TiB here.
TEST(JsonWriter, whatIsFarAboveTheLimitIsNotMade) {
    const QVariant text = QString(1 << 20, QLatin1Char('x'));
    QVariantList list;
    list.reserve(6400);
    for (int i = 0; i < 6400; ++i)
        list.append(text);
    QVariantHash hash;
    QVariantMap map;
    for (int i = 0; i < 6400; ++i) {
        hash.insert(QString::number(i), list);
        map.insert(QString::number(i), list);
    }
    for (const QVariant& record : {QVariant(hash), QVariant(map), QVariant(QVariantList{hash})}) {
        JsonWriter json(3 << 20);
        json.value(record);
        EXPECT_TRUE(json.isFull());
        EXPECT_EQ(json.text(), QByteArray());
    }
}

TEST(JsonWriter, theMembersOfARecordStandInTheOrderOfTheirNames) {
    OrvoRoles roles;
    roles.setType(OrvoRolesType::Audio);
    roles.setTitle(QStringLiteral("t"));
    roles.setPath(CMPath(QStringLiteral("p:q")));
    roles.setValue(OrvoValue::fromI32(4));
    EXPECT_EQ(written(roles.toVariant()),
              R"({"path":"p:q","title":"t","type":3,"value":{"i32":4}})");
}

TEST(JsonWriter, aValueNestedWithoutEndIsCut) {
    QVariant value = 1;
    for (int i = 0; i < 2000; ++i)
        value = QVariant(QVariantList{value});
    const QByteArray text = written(value);
    EXPECT_TRUE(text.contains("[null]"));
    EXPECT_LT(text.size(), 1000);
}

TEST(JsonReader, objectsBecomeHashesAndWholeNumbersStayWhole) {
    QVariantHash object;
    QString reason;
    ASSERT_TRUE(JsonReader::readObject(
        R"({"a":{"b":[{"c":9007199254740993}]},"d":1.5,"e":null,"f":"x","g":false})", &object,
        &reason));
    const QVariant inner = object.value("a").toHash().value("b").toList().at(0);
    EXPECT_EQ(object.value("a").userType(), int(QMetaType::QVariantHash));
    EXPECT_EQ(inner.userType(), int(QMetaType::QVariantHash));
    EXPECT_EQ(inner.toHash().value("c"), QVariant(qint64(9007199254740993)));
    EXPECT_EQ(object.value("d"), QVariant(1.5));
    EXPECT_TRUE(object.contains("e"));
    EXPECT_FALSE(object.value("e").isValid());
    EXPECT_EQ(object.value("f"), QVariant("x"));
    EXPECT_EQ(object.value("g"), QVariant(false));
}

TEST(JsonReader, whatIsNoObjectIsRefusedWithAReason) {
    for (const char* text :
         {"", "{", "[]", "1", "\"a\"", "null", "{}x", "{\"a\":}", "{\"a\":\"\xff\"}", "{'a':1}"}) {
        QVariantHash object;
        QString reason;
        EXPECT_FALSE(JsonReader::readObject(text, &object, &reason)) << text;
        EXPECT_FALSE(reason.isEmpty()) << text;
    }
}

TEST(JsonReader, nestingBeyondTheLimitIsRefused) {
    // The outermost object is the first level.
    const auto nested = [](int depth) {
        return "{\"a\":" + QByteArray(depth - 1, '[') + QByteArray(depth - 1, ']') + '}';
    };
    QVariantHash object;
    QString reason;
    EXPECT_TRUE(JsonReader::readObject(nested(JsonReader::MaxDepth), &object, &reason));
    EXPECT_FALSE(JsonReader::readObject(nested(JsonReader::MaxDepth + 1), &object, &reason));
    EXPECT_FALSE(JsonReader::readObject(nested(1000000), &object, &reason));
}
