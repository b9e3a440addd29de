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

namespace {

// Why the text is refused, nothing when it is not.
QString refusal(const QByteArray& text, int maxValues = JsonReader::DefaultMaxValues) {
    QVariantHash object;
    QString reason;
    return JsonReader::readObject(text, &object, &reason, maxValues) ? QString() : reason;
}

QVariant firstOf(const QByteArray& list) {
    QVariantHash object;
    QString reason;
    JsonReader::readObject("{\"a\":" + list + '}', &object, &reason);
    return object.value("a").toList().value(0);
}

} // namespace

TEST(JsonReader, numbersAreWholeWhereTheyCanBe) {
    const struct {
        const char* text;
        QVariant value;
    } rows[] = {
        {"[0]", qint64(0)},
        {"[-1]", qint64(-1)},
        {"[-0.0]", qint64(0)},
        {"[2147483648]", qint64(2147483648)},
        {"[4294967296]", qint64(4294967296)},
        {"[9223372036854775807]", std::numeric_limits<qint64>::max()},
        {"[-9223372036854775808]", std::numeric_limits<qint64>::min()},
        {"[-9223372036854775809]", std::numeric_limits<qint64>::min()},
        {"[9223372036854775808]", 9223372036854775808.0},
        {"[18446744073709551616]", 18446744073709551616.0},
        {"[5.0]", qint64(5)},
        {"[5e2]", qint64(500)},
        {"[0.1]", 0.1},
        {"[1e300]", 1e300},
        {"[1.7976931348623157e308]", std::numeric_limits<double>::max()},
    };
    for (const auto& row : rows) {
        const QVariant value = firstOf(row.text);
        EXPECT_EQ(value.userType(), row.value.userType()) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

TEST(JsonReader, textsComeAsTheyWereMeant) {
    EXPECT_EQ(firstOf(R"(["a\"\\\/\b\f\n\r\t\u0000\u20AC\ud83d\uDE00€😀"])").toString(),
              QString::fromUtf8("a\"\\/\b\f\n\r\t") + QChar(0) + QString::fromUtf8("€😀€😀"));
    QVariantHash object;
    QString reason;
    // A byte order mark in front is none of the text.
    EXPECT_TRUE(JsonReader::readObject("\xEF\xBB\xBF {\"\":\"\"} ", &object, &reason));
    EXPECT_EQ(object, QVariantHash({{"", ""}}));
}

TEST(JsonReader, theReasonOfARefusalSaysWhatIsWrong) {
    const struct {
        QByteArray text;
        const char* reason;
    } rows[] = {
        {"", "The body is no JSON at byte 0: The document is empty."},
        {R"({"a":})", "The body is no JSON at byte 5: Invalid value."},
        {R"({"a":1)",
         "The body is no JSON at byte 6: Missing a comma or '}' after an object member."},
        {"{}{}", "The body is no JSON at byte 2: The document root must not be followed by other "
                 "values."},
        {"{\"a\":\"\xff\"}", "The body is no JSON at byte 6: Invalid encoding in string."},
        {QByteArray("{}\0{}", 5), "The body is no JSON at byte 2: A zero."},
        {R"({"a":1e999})", "The body is no JSON at byte 5: Number too big to be stored in double."},
        {"[{}]", "The body must be a JSON object."},
        {R"({"\udc00":1,"\ufffd":2})", "The body has a name twice in one object."},
        {R"({"a":{"b":1,"\u0062":2}})", "The body has a name twice in one object."},
        {R"({"a":1,"b":{"a":1},"a":{}})", "The body has a name twice in one object."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(refusal(row.text).toStdString(), row.reason) << row.text.toStdString();
}

TEST(JsonReader, halfAPairOfSurrogatesIsReplaced) {
    const struct {
        QByteArray text; // in the place of both a name and a value
        QString read;
    } rows[] = {
        {R"(\udc00)", QStringLiteral("\uFFFD")},
        {R"(\ud800)", QStringLiteral("\uFFFD")},
        {R"(x\uD800y)", QStringLiteral("x\uFFFDy")},
        {R"(\udbff\udbff\udfff)", QStringLiteral("\uFFFD\U0010FFFF")},
        {R"(\udfff\ud800)", QStringLiteral("\uFFFD\uFFFD")},
        {R"(\ud800\u0041)", QStringLiteral("\uFFFDA")},
        {R"(\ud800\n)", QStringLiteral("\uFFFD\n")},
        {R"(\ud83d\ude00\ude00)", QStringLiteral("\U0001F600\uFFFD")},
        {R"(\ud83dé\ude00)", QStringLiteral("\uFFFD\u00E9\uFFFD")},
        // A backslash that is a character, and no escape.
        {R"(\\ud800)", QStringLiteral("\\ud800")},
        {R"(\\\ud800)", QStringLiteral("\\\uFFFD")},
    };
    for (const auto& row : rows) {
        QVariantHash object;
        QString reason;
        EXPECT_TRUE(
            JsonReader::readObject("{\"" + row.text + "\":\"" + row.text + "\"}", &object, &reason))
            << row.text.toStdString() << ": " << reason.toStdString();
        EXPECT_EQ(object, QVariantHash({{row.read, row.read}})) << row.text.toStdString();
    }
    for (const char* text : {R"({"a":"\ud80)", R"({"a":"\ud8)", R"({"a":"\ud800\u)", R"({"a":"\)",
                             R"({"a":"\ud800)", R"({"a":"\udz00"})"})
        EXPECT_FALSE(refusal(text).isEmpty()) << text;
}

TEST(JsonReader, whatIsNoUtf8IsRefused) {
    for (const char* bytes :
         {"\x80", "\xC3", "\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xED\xB0\x80",
          "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xE2\x82"}) {
        EXPECT_FALSE(refusal(QByteArray("{\"a\":\"") + bytes + "\"}").isEmpty());
        EXPECT_FALSE(refusal(QByteArray("{\"") + bytes + "\":1}").isEmpty());
    }
}

TEST(JsonReader, asManyValuesAsTheLimitAreTaken) {
    // The outermost object is one, and every list, object, text and number in it.
    const struct {
        QByteArray text;
        int values;
    } rows[] = {
        {R"({"a":1})", 2},
        {R"({"a":[[],[[]],{}]})", 6},
        {R"({"a":{"b":null,"c":true,"d":"x"},"e":-1.5})", 6},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(refusal(row.text, row.values), QString());
        EXPECT_EQ(refusal(row.text, row.values - 1).toStdString(),
                  "The body has more than " + std::to_string(row.values - 1) + " values.");
    }
}

TEST(JsonReader, anObjectHasOnlySoManyNames) {
    QByteArray names;
    for (int i = 0; i < JsonReader::MaxNames; ++i)
        names += '"' + QByteArray::number(i) + "\":0,";
    const QByteArray inner = "{\"a\":[{" + names;
    EXPECT_EQ(refusal(inner.chopped(1) + "}]}"), QString());
    EXPECT_EQ(refusal(inner + "\"x\":0}]}"),
              QStringLiteral("The body has an object with more than 1000 names."));
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
