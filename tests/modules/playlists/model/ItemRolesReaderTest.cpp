#include "ItemRolesReader.h"

#include <random>

#include <QJsonDocument>
#include <QJsonObject>

#include "ModelFixture.h"
#include "OrvoRoles.h"

namespace {

// A value with the types of all its parts: "map{a=qlonglong:1}".
QString described(const QVariant& value);

template <typename Map>
QString describedMembers(const Map& map) {
    QStringList members;
    for (auto it = map.begin(); it != map.end(); ++it)
        members.append(it.key() + '=' + described(it.value()));
    members.sort();
    return '{' + members.join(',') + '}';
}

QString described(const QVariant& value) {
    const QString type = value.isValid() ? QString(value.typeName()) : "invalid";
    if (value.type() == QVariant::Hash)
        return type + describedMembers(value.toHash());
    if (value.type() == QVariant::Map)
        return type + describedMembers(value.toMap());
    if (value.type() != QVariant::List)
        return type + ':' + value.toString();
    QStringList elements;
    for (const QVariant& element : value.toList())
        elements.append(described(element));
    return type + '[' + elements.join(',') + ']';
}

// What the platform's parser gives, taken apart as the reader does. False where it gives nothing.
bool parsed(const QString& text, QVariantHash* roles, QVariantHash* mediaData,
            QVariantHash* metaData) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    *roles = document.object().toVariantHash();
    *mediaData = roles->take("mediaData").toHash();
    *metaData = mediaData->take("metaData").toHash();
    return error.error == QJsonParseError::NoError && document.isObject();
}

// True when the reader takes the text; whether or not, it must not disagree with the parser.
bool takes(ItemRolesReader& reader, const QString& text) {
    QVariantHash roles;
    QVariantHash mediaData;
    QVariantHash metaData;
    const bool takesTopLevel = reader.read(text.toUtf8(), false);
    if (takesTopLevel) {
        EXPECT_TRUE(parsed(text, &roles, &mediaData, &metaData)) << qPrintable(text);
        EXPECT_EQ(described(roles), described(reader.roles)) << qPrintable(text);
    }
    if (!reader.read(text.toUtf8()))
        return false;
    EXPECT_TRUE(takesTopLevel) << qPrintable(text);
    EXPECT_TRUE(parsed(text, &roles, &mediaData, &metaData)) << qPrintable(text);
    EXPECT_EQ(described(roles), described(reader.roles)) << qPrintable(text);
    EXPECT_EQ(described(mediaData), described(reader.mediaData)) << qPrintable(text);
    EXPECT_EQ(described(metaData), described(reader.metaData)) << qPrintable(text);
    return true;
}

} // namespace

class ItemRolesReaderTest : public ::testing::Test {
protected:
    // What was read before must make no difference.
    bool takes(const QString& text) {
        ItemRolesReader fresh;
        const bool taken = ::takes(fresh, text);
        EXPECT_EQ(taken, ::takes(m_used, text)) << qPrintable(text);
        return taken;
    }

private:
    ItemRolesReader m_used;
};

TEST_F(ItemRolesReaderTest, readsWhatRoleTextsAreMadeOf) {
    for (const char* text :
         {R"({})", R"({"title":"A title","type":3})",
          R"({"mediaData":{"metaData":{"artist":"Somebody","duration":123456,"trackNumber":0},)"
          R"("resources":[{"mimeType":"audio/flac","uri":"file:///a.flac"}]},"title":"Ünïcødé"})",
          R"({"title":"Ｆｕｌｌ"})", R"({"title":"A 🎵 and 🎶","🎵":"🎶"})",
          R"({"title":"the \"best\" of","type":3,"mediaData":{"metaData":{"artist":"AC\/DC"}}})",
          R"({"a":"\\","b":"\"","\"c\"":"x\\","d":["\b\f\n\r\t"],"e\n":{"\/":"\\\\ü🎵\"x"}})",
          R"({"a":true,"b":false,"c":null,"d":-7,"e":[],"f":{},"g":[1,[2,{"h":"i"}]],"":""})",
          R"({"mediaData":{},"value":{"i32":5},"context":{"mediaData":{"metaData":{}}}})",
          " {\n\t\"title\" : \"x\" ,\r\n \"list\" : [ 1 , 2 ] } ", R"({"n":123456789012345})",
          R"({"n":1234567890123456,"m":[9223372036854775807,-9223372036854775808,-1,0]})",
          R"({"a":"\u0041\ud83c\udfb5","\u0062":"\u0000"})"}) {
        EXPECT_TRUE(takes(QString::fromUtf8(text))) << text;
    }
}

TEST_F(ItemRolesReaderTest, leavesToTheParserWhatIsDamagedOrUnusual) {
    for (const char* text : {"",
                             " ",
                             "x",
                             "[]",
                             "3",
                             "{",
                             "{\"",
                             "{\"a",
                             "{\"a\"",
                             "{\"a\":",
                             "{\"a\":1",
                             "{\"a\":1,",
                             "{\"a\":1,}",
                             "{,}",
                             "{a:1}",
                             "{} x",
                             "{}{}",
                             "{\"a\" 1}",
                             "{\"a\":tru}",
                             "{\"a\":tru",
                             "{\"mediaData\":{},\"mediaData\":{}}",
                             "{\"a\":nul}",
                             "{\"a\":[1,]}",
                             "{\"a\":[1",
                             "{\"a\":01}",
                             "{\"a\":-}",
                             "{\"a\":-0}",
                             "{\"a\":+1}",
                             "{\"a\":1.0}",
                             "{\"a\":1e3}",
                             "{\"a\":9223372036854775808}",
                             "{\"a\":-9223372036854775809}",
                             "{\"\\udfb5\":1}",
                             "{\"a\":\"\\x\"}",
                             "{\"a\":\"\\\"}",
                             "{\"a\":\"\\",
                             "{\"a\":\"\\n",
                             "{\"a\":\"\\n\t\"}",
                             "{\"a\":\"\t\"}",
                             "{\"a\":1,\"a\":2}",
                             "{\"x\":{\"a\":1,\"a\":2}}",
                             "{\"mediaData\":7}",
                             "{\"mediaData\":null}",
                             "{\"mediaData\":{\"metaData\":[]}}",
                             "{\"mediaData\":{},\"mediaData\":{}}",
                             "{\"a\":truefalse}",
                             "{\"a\":[[[[[[[[[[1]]]]]]]]]]}"}) {
        EXPECT_FALSE(takes(QString::fromUtf8(text))) << text;
    }
    EXPECT_FALSE(takes(QChar(0xFEFF) + QStringLiteral("{}")));
}

TEST_F(ItemRolesReaderTest, leavesAByteOrderMarkToTheParser) {
    for (const char* text :
         {R"({"title":"\ufeffA"})", R"({"title":"\ufeff"})", R"({"\ufefftitle":"A"})",
          "{\"title\":\"\uFEFFA\\n\"}", "{\"title\":\"\uFEFFA\"}",
          R"({"mediaData":{"metaData":{"artist":"\ufeffA"}}})"}) {
        EXPECT_FALSE(takes(QString::fromUtf8(text))) << text;
    }
    EXPECT_TRUE(takes(R"({"title":"A\ufeff"})"));
}

// Many units are taken at a step: the end of a text, and what is for the parser, is seen
// everywhere.
TEST_F(ItemRolesReaderTest, noPlaceInATextIsLeftOut) {
    for (int before = 0; before < 34; ++before) {
        const QString begin = QStringLiteral("{\"a\":\"") + QString(before, 'x');
        for (const int after : {0, 1, 7, 8, 9}) {
            const QString end = QString(after, 'y') + QStringLiteral("\"}");
            for (const ushort unit : {0x20, 0x7e, 0x7f, 0x80, 0xd7ff, 0xe000})
                EXPECT_TRUE(takes(begin + QChar(unit) + end)) << before << ' ' << unit;
            for (const char* escaped : {"\\n", "\\\"", "\\\\"})
                EXPECT_TRUE(takes(begin + escaped + end)) << before << ' ' << escaped;
            EXPECT_TRUE(takes(begin + QString::fromUtf8("🎵") + end)) << before;
            EXPECT_TRUE(takes(begin + "\\u000a" + end)) << before;
            for (const char* half : {"\\ud83c", "\\udfb5"})
                EXPECT_FALSE(takes(begin + half + end)) << before << ' ' << half;
            for (const ushort unit : {0, 0x22})
                EXPECT_FALSE(takes(begin + QChar(unit) + end)) << before << ' ' << unit;
            takes(begin + QChar(0x1f) + end); // by one of them or the other
        }
        EXPECT_TRUE(takes(begin + QStringLiteral("\"}"))) << before;
        EXPECT_FALSE(takes(begin)) << before;
    }
}

TEST_F(ItemRolesReaderTest, neverDisagreesWithTheParserOnDamagedTexts) {
    const QString whole = QStringLiteral(
        R"({"mediaData":{"metaData":{"artist":"Somebody","duration":1500,"ok":true},)"
        R"("resources":[{"uri":"file:///a.flac"}]},"title":"A \"title\" \\","type":3,"none":null})");
    const QString alphabet = QStringLiteral("{}[]\",:0123456789-+.eEtrufalsnb\\\\/ \nxü") +
                             QChar(0xD83C) + QChar(0xDFB5);
    std::mt19937 random(20250101);
    int taken = 0;
    for (int round = 0; round < 20000; ++round) {
        QString text = whole;
        const int edits = int(random() % 3) + 1;
        for (int i = 0; i < edits; ++i) {
            const int at = int(random() % unsigned(text.size()));
            const QChar c = alphabet.at(int(random() % unsigned(alphabet.size())));
            switch (random() % 3) {
            case 0:
                text[at] = c;
                break;
            case 1:
                text.insert(at, c);
                break;
            default:
                text.remove(at, 1);
                break;
            }
        }
        taken += takes(text) ? 1 : 0;
        if (HasFailure())
            return;
    }
    // Edits inside strings and names leave it readable.
    EXPECT_GT(taken, 1000);
    EXPECT_LT(taken, 19000);
}

// What is passed over must be in order, too: an item whose roles cannot be read is not accepted.
TEST_F(ItemRolesReaderTest, aNameThatStandsTwiceIsFoundInWhatIsPassedOver) {
    ItemRolesReader reader;
    const QByteArray text = R"({"title":"A","mediaData":{"x":{"y":1,"z":{"y":2}},"y":[{"y":3}]}})";
    EXPECT_TRUE(reader.read(text, false));
    for (const char* twice : {R"("x":4,"x":5)", R"("w":{"v":1,"v":2})", R"("w":[{"v":{},"v":1}])",
                              R"("x":4,"\u0078":5)", R"("\udc00":4,"\udc01":5)"}) {
        const QByteArray damaged =
            QByteArray(text).replace("\"x\":{", QByteArray(twice) + ",\"q\":{");
        EXPECT_FALSE(reader.read(damaged, false)) << twice;
        EXPECT_FALSE(reader.read(damaged)) << twice;
    }
}

// They are compared one by one: tens of thousands would take too long.
TEST_F(ItemRolesReaderTest, manyNamesInWhatIsPassedOverAreLeftToTheParser) {
    const auto withNames = [](int count) {
        QStringList members;
        for (int i = 0; i < count; ++i)
            members.append(QStringLiteral("\"%1\":%1").arg(i));
        return QStringLiteral(R"({"title":"A","mediaData":{"x":[{%1}]}})")
            .arg(members.join(','))
            .toUtf8();
    };
    ItemRolesReader reader;
    EXPECT_TRUE(reader.read(withNames(64), false));
    EXPECT_FALSE(reader.read(withNames(65), false));
    EXPECT_TRUE(reader.read(withNames(65)));
}

TEST_F(ItemRolesReaderTest, nothingOfATextIsLeftForTheNext) {
    ItemRolesReader reader;
    ASSERT_TRUE(reader.read(R"({"title":"A","type":3,"mediaData":{"x":1,"metaData":{"y":2}}})"));
    ASSERT_TRUE(reader.read(R"({"type":3})"));
    EXPECT_EQ("QVariantHash{type=qlonglong:3}", described(reader.roles));
    EXPECT_TRUE(reader.mediaData.isEmpty());
    EXPECT_TRUE(reader.metaData.isEmpty());
}
