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

OrvoPlayListItem withRoles(const QString& text) {
    OrvoPlayListItem item;
    item.setTitle("A title");
    item.setArtist("Somebody");
    item.setUrl("file:///a.flac");
    item.setOrvoRoles(text);
    return item;
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
bool takes(const QString& text) {
    ItemRolesReader reader(withRoles(text));
    if (!reader.read())
        return false;
    QVariantHash roles;
    QVariantHash mediaData;
    QVariantHash metaData;
    EXPECT_TRUE(parsed(text, &roles, &mediaData, &metaData)) << qPrintable(text);
    EXPECT_EQ(described(roles), described(reader.roles)) << qPrintable(text);
    EXPECT_EQ(described(mediaData), described(reader.mediaData)) << qPrintable(text);
    EXPECT_EQ(described(metaData), described(reader.metaData)) << qPrintable(text);
    return true;
}

} // namespace

class ItemRolesReaderTest : public ::testing::Test {};

TEST_F(ItemRolesReaderTest, readsWhatRoleTextsAreMadeOf) {
    for (const char* text :
         {R"({})", R"({"title":"A title","type":3})",
          R"({"mediaData":{"metaData":{"artist":"Somebody","duration":123456,"trackNumber":0},)"
          R"("resources":[{"mimeType":"audio/flac","uri":"file:///a.flac"}]},"title":"Ünïcødé"})",
          R"({"a":true,"b":false,"c":null,"d":-7,"e":[],"f":{},"g":[1,[2,{"h":"i"}]],"":""})",
          R"({"mediaData":{},"value":{"i32":5},"context":{"mediaData":{"metaData":{}}}})",
          " {\n\t\"title\" : \"x\" ,\r\n \"list\" : [ 1 , 2 ] } ", R"({"n":123456789012345})"}) {
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
                             "{\"a\":nul}",
                             "{\"a\":[1,]}",
                             "{\"a\":[1",
                             "{\"a\":01}",
                             "{\"a\":-}",
                             "{\"a\":-0}",
                             "{\"a\":+1}",
                             "{\"a\":1.0}",
                             "{\"a\":1e3}",
                             "{\"a\":1234567890123456}",
                             "{\"a\":\"\\n\"}",
                             "{\"a\":\"\t\"}",
                             "{\"a\":1,\"a\":2}",
                             "{\"x\":{\"a\":1,\"a\":2}}",
                             "{\"mediaData\":7}",
                             "{\"mediaData\":null}",
                             "{\"mediaData\":{\"metaData\":[]}}",
                             "{\"mediaData\":{},\"mediaData\":{}}",
                             "{\"a\":\"🎵\"}",
                             "{\"a\":truefalse}",
                             "{\"a\":[[[[[[[[[[1]]]]]]]]]]}"}) {
        EXPECT_FALSE(takes(QString::fromUtf8(text))) << text;
    }
    EXPECT_FALSE(takes(QStringLiteral("{\"a\":\"") + QChar(0xD800) + QStringLiteral("\"}")));
    EXPECT_FALSE(takes(QChar(0xFEFF) + QStringLiteral("{}")));
}

TEST_F(ItemRolesReaderTest, neverDisagreesWithTheParserOnDamagedTexts) {
    const QString whole = QStringLiteral(
        R"({"mediaData":{"metaData":{"artist":"Somebody","duration":1500,"ok":true},)"
        R"("resources":[{"uri":"file:///a.flac"}]},"title":"A title","type":3,"none":null})");
    const QString alphabet = QStringLiteral("{}[]\",:0123456789-+.eEtrufalsn\\ \nxü");
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

TEST_F(ItemRolesReaderTest, textsOfTheItemAreSharedWithItsRoles) {
    const OrvoPlayListItem item =
        withRoles(R"({"title":"A title","mediaData":{"metaData":{"artist":"Somebody"}}})");
    ItemRolesReader reader(item);
    ASSERT_TRUE(reader.read());
    EXPECT_EQ(item.title().constData(), reader.roles.value("title").toString().constData());
    EXPECT_EQ(item.artist().constData(), reader.metaData.value("artist").toString().constData());
}
