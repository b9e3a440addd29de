#include "CMPath.h"

#include <gtest/gtest.h>
#include <random>

#include <QSet>

#include "Printing.h"

namespace {

CMPath reread(const CMPath& path) {
    return CMPath(path.toString());
}

const QStringList& oddTexts() {
    static const QStringList texts = {
        "plain-._~09",
        " leading and trailing ",
        "a/b",
        "a?b",
        "a&b=c",
        "100%",
        "%41",
        "%2F",
        "%zz",
        "a:b:c",
        "a+b",
        "#frag",
        "..",
        "line\nbreak\ttab",
        "quote\"and'back\\slash",
        QStringLiteral("Größe und Straße"),
        QStringLiteral("日本語"),
        QString::fromUcs4(U"\U0001F3B5", 1),
        QStringLiteral("e\u0301 combining"),
        QString(QChar(0xFEFF)) + "marked",
        QString(QChar(0)),
        QString("nul") + QChar(0) + "inside",
        QString(4000, QChar('x')),
    };
    return texts;
}

} // namespace

TEST(CMPath, theEmptyPathHasNothing) {
    const CMPath path;
    EXPECT_TRUE(path.isEmpty());
    EXPECT_EQ(path.prefix(), QString());
    EXPECT_TRUE(path.splitBase().isEmpty());
    EXPECT_TRUE(path.params().isEmpty());
    EXPECT_EQ(path.toString(), QString());
    EXPECT_EQ(path, CMPath(QString()));
}

TEST(CMPath, itsTextGivesPrefixComponentsAndParameters) {
    const CMPath path("playlists:pl/items/5?plid=7&action=cmnode");
    EXPECT_FALSE(path.isEmpty());
    EXPECT_EQ(path.prefix(), "playlists");
    EXPECT_EQ(path.splitBase(), QStringList({"pl", "items", "5"}));
    EXPECT_EQ(path.params().size(), 2);
    EXPECT_EQ(path.param("plid"), "7");
    EXPECT_EQ(path.param("action"), "cmnode");
    EXPECT_EQ(path.param("absent"), QString());
    EXPECT_EQ(path.base(), "playlists:pl/items/5");
}

TEST(CMPath, theTextFormListsParametersByName) {
    CMPath path("playlists:root");
    path.addParam("z", "1").addParam("a", "2").addParam("m", "3");
    EXPECT_EQ(path.toString(), "playlists:root?a=2&m=3&z=1");
}

TEST(CMPath, addParamReplacesOneOfTheSameName) {
    CMPath path("playlists:root?plid=1&clid=2");
    path.addParam("plid", "3");
    EXPECT_EQ(path.toString(), "playlists:root?clid=2&plid=3");
}

TEST(CMPath, splitBaseNeverHoldsParameters) {
    CMPath path("playlists:root");
    path.addParam("path", "files:a/b/c");
    EXPECT_EQ(path.splitBase(), QStringList({"root"}));
    EXPECT_EQ(path.base(), "playlists:root");
}

TEST(CMPath, oddTextsInAParameterComeBackWhole) {
    for (const QString& text : oddTexts()) {
        CMPath path("playlists:root");
        path.addParam("value", text).addParam(text, "name");
        EXPECT_EQ(reread(path), path) << text;
        EXPECT_EQ(reread(path).param("value"), text);
        EXPECT_EQ(reread(path).param(text), "name");
        EXPECT_EQ(reread(path).params().size(), 2) << text;
    }
}

TEST(CMPath, oddTextsInAComponentComeBackWhole) {
    for (const QString& text : oddTexts()) {
        if (text.contains('/'))
            continue; // two components
        const CMPath path = CMPath::fromPrefix("files") + "before" + text + "after";
        ASSERT_EQ(path.splitBase(), QStringList({"before", text, "after"})) << text;
        EXPECT_EQ(reread(path), path) << text;
        EXPECT_EQ(reread(path).splitBase(), path.splitBase()) << text;
    }
}

TEST(CMPath, anEncodedSlashIsPartOfItsComponent) {
    const CMPath path("files:AC%2FDC/Back");
    EXPECT_EQ(path.splitBase(), QStringList({"AC/DC", "Back"}));
    EXPECT_EQ(path.toString(), "files:AC%2FDC/Back");
}

TEST(CMPath, anEmptyParameterIsKept) {
    CMPath path("playlists:root");
    path.addParam("a", "");
    EXPECT_EQ(path.toString(), "playlists:root?a=");
    EXPECT_TRUE(reread(path).params().contains("a"));
    EXPECT_EQ(reread(path), path);
}

TEST(CMPath, aPathInAParameterInAParameterComesBackWhole) {
    CMPath inner("files:music/a%20b/c?x=1%262&y=%3D");
    CMPath middle("playlists:item/5");
    middle.addParam("itemid", inner.toString()).addParam("preparepath", "files:prepareItems");
    CMPath outer("playlists:pl/addToPlaylist");
    outer.addParam("itemid", middle.toString()).addParam("action", "cmnode");

    const CMPath outerAgain = reread(outer);
    const CMPath middleAgain(outerAgain.param("itemid"));
    const CMPath innerAgain(middleAgain.param("itemid"));
    EXPECT_EQ(outerAgain, outer);
    EXPECT_EQ(outerAgain.params().keys(), QStringList({"action", "itemid"}));
    EXPECT_EQ(middleAgain, middle);
    EXPECT_EQ(innerAgain, inner);
    EXPECT_EQ(innerAgain.param("x"), "1&2");
    EXPECT_EQ(innerAgain.splitBase(), QStringList({"music", "a b", "c"}));
}

TEST(CMPath, randomPathsComeBackWhole) {
    constexpr unsigned Seed = 20240117;
    SCOPED_TRACE(Seed);
    std::mt19937 random(Seed);
    const QString alphabet =
        QStringLiteral("ab0%/?&=:+ #\\\"äß日\n%%2F") + QChar(0) + QChar(0xFEFF);
    const auto text = [&](bool component) {
        QString result;
        const int length = int(random() % 9) + (component ? 1 : 0);
        while (result.size() < length) {
            const QChar c = alphabet.at(int(random() % unsigned(alphabet.size())));
            if (!component || c != '/')
                result += c;
        }
        return result;
    };
    for (int round = 0; round < 3000; ++round) {
        CMPath path = CMPath::fromPrefix("files");
        for (unsigned i = random() % 4; i > 0; --i)
            path = path + text(true);
        for (unsigned i = random() % 4; i > 0; --i)
            path.addParam(text(false), text(false));
        ASSERT_EQ(reread(path), path) << path.toString();
        ASSERT_EQ(reread(path).toString(), path.toString());
    }
}

TEST(CMPath, malformedTextIsReadWithoutHarmAndItsTextFormIsStable) {
    constexpr unsigned Seed = 77;
    SCOPED_TRACE(Seed);
    std::mt19937 random(Seed);
    const QString alphabet = QStringLiteral("pl:?&=%/%0AfFzZ: é`") + QChar(0) + QChar(0xD800);
    for (int round = 0; round < 20000; ++round) {
        QString text;
        for (unsigned i = random() % 14; i > 0; --i)
            text += alphabet.at(int(random() % unsigned(alphabet.size())));
        if (text.startsWith(QChar(0xD800)) || text.contains(QChar(0xD800)))
            continue; // half a character has no UTF-8; it only must not do harm
        const CMPath path(text);
        ASSERT_EQ(reread(path), path) << text;
        ASSERT_FALSE(path.splitBase().contains(QString())) << text;
    }
    EXPECT_NO_FATAL_FAILURE(
        CMPath("p:" + QString(QChar(0xD800)) + "?a=" + QString(QChar(0xDC00))).toString());
}

TEST(CMPath, textWithoutAPrefixIsTheEmptyPath) {
    const QStringList texts = {"", ":", ":x", "root", "pl/items", "?a=b", "/", "%3A"};
    for (const QString& text : texts) {
        EXPECT_TRUE(CMPath(text).isEmpty()) << text;
        EXPECT_EQ(CMPath(text), CMPath()) << text;
    }
}

TEST(CMPath, emptyComponentsAreDropped) {
    EXPECT_EQ(CMPath("playlists://pl///items//").splitBase(), QStringList({"pl", "items"}));
    EXPECT_EQ(CMPath("playlists:/root"), CMPath("playlists:root"));
    EXPECT_TRUE(CMPath("playlists:").splitBase().isEmpty());
    EXPECT_FALSE(CMPath("playlists:").isEmpty());
    EXPECT_EQ(CMPath("playlists:?a=1").param("a"), "1");
}

TEST(CMPath, aBrokenEscapeStaysAsItIs) {
    EXPECT_EQ(CMPath("files:100% sure").splitBase(), QStringList({"100% sure"}));
    EXPECT_EQ(CMPath("files:%").splitBase(), QStringList({"%"}));
    EXPECT_EQ(CMPath("files:%4").splitBase(), QStringList({"%4"}));
    EXPECT_EQ(CMPath("files:%G1%41").splitBase(), QStringList({"%G1A"}));
    EXPECT_EQ(CMPath("files:%e4%C3%A4").splitBase(),
              QStringList({QString(QChar(0xFFFD)) + QStringLiteral("ä")}));
}

TEST(CMPath, appendingNormalises) {
    const CMPath path("playlists:pl/items");
    EXPECT_EQ(path + "5", path + "/" + "5");
    EXPECT_EQ(path + "/5", path + "5/");
    EXPECT_EQ(path + "a/b", path + "a" + "b");
    EXPECT_EQ(path + "", path);
    EXPECT_EQ(path + "/", path);
    EXPECT_EQ((path + "5").toString(), "playlists:pl/items/5");
    EXPECT_EQ(path.toString(), "playlists:pl/items") << "the path appended to is left as it was";
}

TEST(CMPath, appendingGoesBeforeTheParameters) {
    CMPath path("playlists:pl/items");
    path.addParam("plid", "5");
    EXPECT_EQ((path + "7").toString(), "playlists:pl/items/7?plid=5");
}

TEST(CMPath, whatIsAppendedIsText) {
    const CMPath path = CMPath("files:music") + "a%20b?c=d";
    EXPECT_EQ(path.splitBase(), QStringList({"music", "a%20b?c=d"}));
    EXPECT_TRUE(path.params().isEmpty());
}

TEST(CMPath, startsWithComparesWholeComponents) {
    const CMPath one("playlists:pl/items/1");
    EXPECT_FALSE(CMPath("playlists:pl/items/10").startsWith(one));
    EXPECT_FALSE(CMPath("playlists:pl/items").startsWith(one));
    EXPECT_FALSE(CMPath("playlist:pl/items/1").startsWith(one));
    EXPECT_FALSE(CMPath("playlists:items/1").startsWith(one));
    EXPECT_TRUE(one.startsWith(one));
    EXPECT_TRUE(CMPath("playlists:pl/items/1/x").startsWith(one));
    EXPECT_TRUE(one.startsWith(CMPath("playlists:pl")));
    EXPECT_TRUE(one.startsWith(CMPath("playlists:")));
    EXPECT_FALSE(one.startsWith(CMPath()));
}

TEST(CMPath, startsWithIgnoresParameters) {
    EXPECT_TRUE(CMPath("playlists:pl/items/1?a=1").startsWith(CMPath("playlists:pl/items?b=2")));
}

TEST(CMPath, equalityIncludesParameters) {
    const CMPath path("playlists:root?a=1");
    EXPECT_EQ(path, CMPath("playlists:root?a=1"));
    EXPECT_NE(path, CMPath("playlists:root"));
    EXPECT_NE(path, CMPath("playlists:root?a=2"));
    EXPECT_NE(path, CMPath("playlists:root?b=1"));
    EXPECT_NE(path, CMPath("playlists:root/x?a=1"));
    EXPECT_NE(path, CMPath("files:root?a=1"));
    EXPECT_EQ(CMPath("playlists:root?a=1&b=2"), CMPath("playlists:root?b=2&a=1"));
}

TEST(CMPath, equalPathsHashAlike) {
    QSet<CMPath> paths = {CMPath("playlists:root?a=1&b=2")};
    EXPECT_TRUE(paths.contains(CMPath("playlists:/root?b=2&a=1")));
    EXPECT_FALSE(paths.contains(CMPath("playlists:root")));
}

TEST(CMPath, copiesAreIndependent) {
    const CMPath original("playlists:root");
    CMPath copy = original;
    copy.addParam("a", "1");
    EXPECT_EQ(original.toString(), "playlists:root");
    CMPath params = original;
    params.setParams({{"x", "y"}});
    EXPECT_EQ(params.toString(), "playlists:root?x=y");
    EXPECT_TRUE(original.params().isEmpty());
}

TEST(CMPath, aVariantHoldsItsText) {
    const CMPath path("playlists:pl/items/5?a=%26");
    EXPECT_EQ(path.toQVariant(), QVariant("playlists:pl/items/5?a=%26"));
    EXPECT_EQ(CMPath::fromQVariant(path.toQVariant()), path);
    EXPECT_EQ(CMPath::fromQVariant(QVariant::fromValue(path)), path);
    EXPECT_TRUE(CMPath::fromQVariant(QVariant()).isEmpty());
    EXPECT_TRUE(CMPath::fromQVariant(QVariantHash{{"a", 1}}).isEmpty());
    EXPECT_TRUE(CMPath::fromQVariant(5).isEmpty());
}

TEST(CMPath, fromPrefixNamesTheModuleOnly) {
    const CMPath path = CMPath::fromPrefix("files");
    EXPECT_EQ(path.prefix(), "files");
    EXPECT_TRUE(path.splitBase().isEmpty());
    EXPECT_EQ(path.toString(), "files:");
    EXPECT_EQ(reread(path), path);
    EXPECT_EQ((path + "prepareItems").toString(), "files:prepareItems");
    EXPECT_TRUE(CMPath::fromPrefix({}).isEmpty());
}
