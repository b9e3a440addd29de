#include "TrString.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTranslator>

#include "CMError.h"
#include "Printing.h"

namespace {

// A language that is installed while it lives. What it does not know stays untranslated.
class Translation : public QTranslator {
public:
    Translation() { QCoreApplication::installTranslator(this); }
    ~Translation() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override {
        return texts.value(QString::fromUtf8(context) + '|' + QString::fromUtf8(source));
    }

    QHash<QString, QString> texts;
};

} // namespace

TEST(TrString, theDefaultOneIsEmpty) {
    EXPECT_TRUE(TrString().isEmpty());
    EXPECT_FALSE(TrString().isTranslatable());
    EXPECT_EQ(TrString().toString(), QString());
}

TEST(TrString, aPlainTextIsShownAsItIs) {
    Translation german;
    german.texts = {{"|Playlists", "falsch"}};
    const TrString text(QString("Playlists"));
    EXPECT_FALSE(text.isTranslatable());
    EXPECT_EQ(text.toString(), "Playlists");
    EXPECT_EQ(TrString(QString("100 %1")).toString(), "100 %1");
}

TEST(TrString, aTranslatableTextKeepsContextSourceAndArguments) {
    const TrString text("BaseNode", "Playlist - %1", {"Mix"});
    EXPECT_TRUE(text.isTranslatable());
    EXPECT_EQ(text.context(), "BaseNode");
    EXPECT_EQ(text.source(), "Playlist - %1");
    EXPECT_EQ(text.arguments(), QStringList({"Mix"}));
    EXPECT_EQ(text.toString(), "Playlist - Mix");
}

TEST(TrString, itIsTranslatedWhenItIsShown) {
    const TrString text("BaseNode", "Playlist - %1", {"Mix"});
    {
        Translation german;
        german.texts = {{"BaseNode|Playlist - %1", "Liste %1"}};
        EXPECT_EQ(text.toString(), "Liste Mix");
        EXPECT_EQ(TrString("Other", "Playlist - %1", {"Mix"}).toString(), "Playlist - Mix");
    }
    EXPECT_EQ(text.toString(), "Playlist - Mix");
}

TEST(TrString, sourcesOutsideAsciiAreTranslated) {
    Translation english;
    english.texts = {{"C|Größe", "Size"}};
    EXPECT_EQ(TrString("C", "Größe").toString(), "Size");
}

TEST(TrString, aTranslationMayReorderArguments) {
    Translation other;
    other.texts = {{"C|%1 of %2", "%2: %1 (%1)"}};
    EXPECT_EQ(TrString("C", "%1 of %2", {"3", "9"}).toString(), "9: 3 (3)");
}

TEST(TrString, aMarkerInsideAnArgumentIsText) {
    EXPECT_EQ(TrString("C", "%1 and %2", {"%2", "%1"}).toString(), "%2 and %1");
    EXPECT_EQ(TrString("C", "Playlist - %1", {"%1 hits"}).toString(), "Playlist - %1 hits");
    EXPECT_EQ(TrString("C", "%1 needs %2", {"files:a%2Fb", "int"}).toString(),
              "files:a%2Fb needs int");
}

TEST(TrString, markersWithoutAnArgumentStay) {
    EXPECT_EQ(TrString("C", "%1 %2 100% %%", {"a"}).toString(), "a %2 100% %%");
    EXPECT_EQ(TrString("C", "%1").toString(), "%1");
    EXPECT_EQ(TrString("C", "%11 %1", {"a"}).toString(), "%11 a");
    EXPECT_EQ(TrString("C", "%0", {"a"}).toString(), "%0");
    EXPECT_EQ(TrString("C", "%", {"a"}).toString(), "%");
}

TEST(TrString, aMissingArgumentOfAnEmptyNameLeavesAnEmptyPlace) {
    EXPECT_EQ(TrString("C", "Playlist - %1", {QString()}).toString(), "Playlist - ");
}

TEST(TrString, equalityIncludesContextAndArguments) {
    const TrString text("C", "%1", {"a"});
    EXPECT_EQ(text, TrString("C", "%1", {"a"}));
    EXPECT_NE(text, TrString("D", "%1", {"a"}));
    EXPECT_NE(text, TrString("C", "%2", {"a"}));
    EXPECT_NE(text, TrString("C", "%1", {"b"}));
    EXPECT_NE(TrString("C", "x"), TrString(QString("x")));
}

TEST(TrString, aVariantKeepsIt) {
    const TrString text("C", "%1", {"a"});
    EXPECT_EQ(TrString::fromVariant(text.toVariant()), text);
    EXPECT_EQ(TrString(QString("plain")).toVariant(), QVariant("plain"));
    EXPECT_EQ(TrString::fromVariant("plain"), TrString(QString("plain")));
    EXPECT_EQ(TrString::fromVariant(QVariant()), TrString());
    EXPECT_EQ(text.toVariant(), TrString("C", "%1", {"a"}).toVariant());
    EXPECT_NE(text.toVariant(), TrString("C", "%1", {"b"}).toVariant());
}

TEST(TrString, aVariantOfOneReadsAsItsText) {
    EXPECT_EQ(TrString("C", "Playlist - %1", {"Mix"}).toVariant().toString(), "Playlist - Mix");
}

TEST(TrString, ntrTranslatesAndFallsBackToTheSource) {
    Translation german;
    german.texts = {{"C|yes", "ja"}};
    EXPECT_EQ(Language::ntr("C", "yes"), "ja");
    EXPECT_EQ(Language::ntr("C", "no"), "no");
}

TEST(TrString, theContextOfAFunctionIsItsSignature) {
    EXPECT_STREQ(trExtractContext("bool A::b(int)"), "bool A::b(int)");
}

TEST(CMError, theDefaultOneIsEmpty) {
    EXPECT_EQ(CMError().name(), QString());
    EXPECT_TRUE(CMError().message().isEmpty());
    EXPECT_TRUE(CMError().title().isEmpty());
}

TEST(CMError, oneMadeFromATextHasTheDefaultNameAndTitle) {
    const CMError error(TrString("C", "Could not do it."));
    EXPECT_EQ(error.name(), "Error");
    EXPECT_EQ(error.message(), TrString("C", "Could not do it."));
    EXPECT_EQ(error.title(), CMError::DefaultTitle());
    EXPECT_EQ(CMError::DefaultTitle(), TrString("CMError", "Error"));
}

TEST(CMError, nameMessageAndTitleAreKept) {
    const CMError error("Busy", TrString(QString("wait")), TrString(QString("Later")));
    EXPECT_EQ(error.name(), "Busy");
    EXPECT_EQ(error.message().toString(), "wait");
    EXPECT_EQ(error.title().toString(), "Later");
}
