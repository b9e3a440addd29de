#include "CMJson.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

namespace {

bool isTaken(const QByteArray& text) {
    QJsonParseError error;
    const QJsonDocument document = cmReadJson(text, &error);
    EXPECT_EQ(error.error == QJsonParseError::NoError, !document.isNull()) << text.data();
    return !document.isNull();
}

} // namespace

TEST(CMJson, readsWhatQtReads) {
    const char* const texts[] = {
        "{}",
        "[]",
        R"({"a":1,"b":{"a":1,"b":[{"a":1},{"a":1}]},"c":"a","d":["a","a"]})",
        R"({"a":"{\"a\":1,\"a\":1}","\"":1,"\\":2,"\u0061b":3})",
        R"([{"a":1},{"a":1}])",
    };
    for (const char* text : texts)
        EXPECT_EQ(cmReadJson(text), QJsonDocument::fromJson(text)) << text;
}

TEST(CMJson, readsHalfAnEscapedCharacterAsTheReplacement) {
    const QString replacement(QChar(0xfffd));
    const auto read = [](const char* text) {
        const QJsonDocument document = cmReadJson(QByteArray("[\"") + text + "\"]");
        return document.array().at(0).toString("nothing");
    };
    EXPECT_EQ(read(R"(a\ud83cz)"), "a" + replacement + "z");
    EXPECT_EQ(read(R"(\uDF55)"), replacement);
    EXPECT_EQ(read(R"(\ud83c\ud83c\udf55)"), replacement + QString::fromUtf8("🍕"));
    EXPECT_EQ(read(R"(\ud83c\n\udf55)"), replacement + "\n" + replacement);
    EXPECT_EQ(read(R"(\ud83c\udf55)"), QString::fromUtf8("🍕"));
    EXPECT_EQ(read(R"(\\ud83c)"), R"(\ud83c)") << "an escaped backslash and letters";
    EXPECT_EQ(read(R"(\u00e4\/)"), QString::fromUtf8("ä/"));
    EXPECT_EQ(read(R"(\ud83)"), "nothing");
    EXPECT_EQ(read("\\"), "nothing");
}

TEST(CMJson, refusesANameThatStandsTwiceInOneObject) {
    const char* const texts[] = {
        R"({"a":1,"a":2})",
        R"({"a":{},"b":2,"a":{}})",
        R"([1,{"b":{"x":[],"y":{},"x":[]}}])",
        R"({"a":[],"\u0061":[]})",
        R"({"\"":1,"\u0022":1})",
        R"({"":1,"":1})",
        "{\"\xc3\xa4\":1,\"\\u00e4\":1}",
    };
    for (const char* text : texts) {
        QJsonParseError error;
        EXPECT_TRUE(cmReadJson(text, &error).isNull()) << text;
        EXPECT_EQ(error.error, QJsonParseError::IllegalValue) << text;
    }
}

TEST(CMJson, refusesWhatIsNoJson) {
    for (const char* text : {"", "{", "\"", R"({"a)", R"({"a\)", "}", "]", R"({"a":1]})", "{,}",
                             R"({"a":1,"\u00zz":2})", "nul"})
        EXPECT_FALSE(isTaken(text)) << text;
    EXPECT_FALSE(isTaken(QByteArray(3000, '[') + QByteArray(3000, ']')));
    EXPECT_FALSE(isTaken(QByteArray(3000000, '{')));
}

TEST(CMJson, takesAnObjectOfManyNames) {
    QByteArray text = "{";
    for (int i = 0; i < 100000; ++i)
        text += "\"n" + QByteArray::number(i) + "\":0,";
    EXPECT_TRUE(isTaken(text + "\"n\":0}"));
    EXPECT_FALSE(isTaken(text + "\"n5\":0}"));
}
