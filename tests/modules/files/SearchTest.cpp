#include <QElapsedTimer>

#include "FilesFixture.h"
#include "SearchTexts.h"
#include "TaggedFiles.h"

namespace {

TEST(SearchTextsTest, wordsAreWithoutCaseAccentsAndPunctuation) {
    EXPECT_EQ(SearchTexts::words("Björk – Jóga (live!)"), (QStringList{"bjork", "joga", "live"}));
    EXPECT_EQ(SearchTexts::words("Søren Łukasz Ægir Œuvre Þór Đorđe Straße"),
              (QStringList{"soren", "lukasz", "aegir", "oeuvre", "thor", "dorde", "strasse"}));
    EXPECT_EQ(SearchTexts::words("AC/DC don't"),
              (QStringList{"ac", "dc", "acdc", "don", "t", "dont"}));
    EXPECT_EQ(SearchTexts::typedWords("AC/DC"), (QStringList{"ac", "dc"}));
    EXPECT_EQ(SearchTexts::words("Straße ＡＢＣ"), (QStringList{"strasse", "abc"}));
    EXPECT_EQ(SearchTexts::words(" ?! "), QStringList());
}

TEST(SearchTextsTest, aWordIsFoundAtTheStartOrInsideOfTheTextThatHasIt) {
    SearchTexts texts;
    for (const char* text : {"Overlove", "", "Glove love", "Lovely", "Live"})
        texts.add(QString::fromUtf8(text));
    texts.finish();
    using Found = std::vector<quint8>;
    EXPECT_EQ(texts.match("love"), (Found{1, 0, 2, 2, 0}));
    EXPECT_EQ(texts.match("l"), (Found{1, 0, 2, 2, 2}));
    EXPECT_EQ(texts.match("velive"), (Found{0, 0, 0, 0, 0})) << "two texts are not one";
    EXPECT_EQ(texts.match(""), (Found{0, 0, 0, 0, 0}));
}

class Search : public FilesFixture {
protected:
    void SetUp() override {
        FilesFixture::SetUp();
        const auto track = [this](const char* name, const char* title, const char* artist,
                                  const char* album, const char* composer = "") {
            ASSERT_TRUE(TaggedFiles::write(
                file(name),
                {{"TITLE", title}, {"ARTIST", artist}, {"ALBUM", album}, {"COMPOSER", composer}}));
        };
        track("1.ape", "Señorita", "Ann Lee", "First Love");
        track("2.ape", "Glove", "Ann Lee", "First Love");
        track("3.ape", "Lovely", "Bob", "Hits", "Lee Hazel");
        track("rare-demo.ape", "Other", "Zed", "Hits");
    }

    Rows found(const QString& part, const QString& text, int from = 0,
               int to = CMGetRowsRequest::LastRow) const {
        CMPath path("files:search" + part);
        path.addParam("text", text);
        return waitForRows(path, from, to);
    }
    static Rows waitForRows(const CMPath& path, int from, int to,
                            const QStringList& names = OrvoRoles::defaultNames()) {
        Rows result;
        result.names = names;
        const CMReplyData<OrvoRowsRoles> reply;
        CMRoot()->getRowsRequest(CMGetRowsRequest(path, from, to, names, reply));
        EXPECT_TRUE(reply.waitForFinished(60000));
        result.error = reply.error();
        result.answer = reply.value();
        return result;
    }
    QStringList tracks(const QString& text) const { return found("/tracks", text).titles(); }
};

TEST_F(Search, findsTracksByAllWordsInAnyOrderAndField) {
    startAndScan();
    EXPECT_EQ(tracks("senorita"), QStringList{"Señorita"});
    EXPECT_EQ(tracks("LEE señ"), QStringList{"Señorita"});
    EXPECT_EQ(tracks("hazel bob"), QStringList{"Lovely"});
    EXPECT_EQ(tracks("demo, rare"), QStringList{"Other"});
    EXPECT_EQ(tracks("ann bob"), QStringList());
    EXPECT_EQ(tracks("!"), QStringList());
    EXPECT_EQ(tracks(""), QStringList());
}

TEST_F(Search, theStartOfAWordCountsMoreThanItsInside) {
    startAndScan();
    // Lovely begins with it; Señorita's album has a word that does; so has Glove's.
    EXPECT_EQ(tracks("love"), (QStringList{"Lovely", "Glove", "Señorita"}));
    EXPECT_EQ(tracks("ove"), (QStringList{"Glove", "Lovely", "Señorita"}));
}

TEST_F(Search, tellsArtistsAlbumsAndTracksApart) {
    startAndScan();
    EXPECT_EQ(found("/artists", "lee").titles(), QStringList{"Ann Lee"});
    EXPECT_EQ(found("/albums", "ann love").titles(), QStringList{"First Love"});
    EXPECT_EQ(found("/albums", "ann").titles(), QStringList()) << "an artist's name is no album's";
    EXPECT_EQ(found("/tracks", "lee").answer.rowsCount(), 3);
    const Rows artists = found("/artists", "lee");
    EXPECT_EQ(titles(artists.row(0).path().toString()), QStringList{"First Love"});

    const Rows summary =
        waitForRows(CMPath("files:search?text=lee"), 0, 10, {"title", "path", "rowsCount"});
    EXPECT_EQ(summary.titles(), (QStringList{"Artists", "Albums", "Tracks"}));
    EXPECT_EQ(summary.column("rowsCount"), (QVariantList{1, 0, 3}));
    EXPECT_EQ(summary.row(2).path().toString(), "files:search/tracks?text=lee");
}

TEST_F(Search, givesARangeAndTheCountOfAll) {
    startAndScan();
    const Rows page = found("/tracks", "lee", 1, 1);
    EXPECT_EQ(page.titles(), QStringList{found("/tracks", "lee").titles().at(1)});
    EXPECT_EQ(page.answer.rowsCount(), 3);
}

TEST_F(Search, seesWhatHasChanged) {
    startAndScan();
    EXPECT_EQ(tracks("brandnew"), QStringList());
    ASSERT_TRUE(TaggedFiles::write(file("new.ape"), {{"TITLE", "Brandnew"}}));
    EXPECT_TRUE(waitUntil([this] { return tracks("brandnew") == QStringList{"Brandnew"}; }));
}

TEST_F(Search, whatIsNoSearchIsRefused) {
    startAndScan();
    const auto error = [this](const QString& text) {
        const Rows result = found("", text);
        EXPECT_EQ(result.error.name(), CMError::InvalidValue());
        return result.error.message().toString();
    };
    EXPECT_EQ(rows("files:search").error.message().toString(),
              "The parameter \"text\" is missing.");
    EXPECT_EQ(error(QString(201, 'x')), "More than 200 characters are too long a search.");
    EXPECT_EQ(error(QString("x ").repeated(13)), "More than 12 words are too many for a search.");
    EXPECT_EQ(found("", QString("x ").repeated(12)).error.name(), "");
    EXPECT_EQ(found("/colours", "x").error.name(), CMError::NoSuchNode());
}

TEST_F(Search, tooManyAtATimeAreRefusedAndTheOthersAnswered) {
    startAndScan();
    std::vector<CMReplyData<OrvoRowsRoles>> replies(70);
    for (std::size_t i = 0; i < replies.size(); ++i)
        CMRoot()->getRowsRequest(CMGetRowsRequest(
            CMPath(QString("files:search/tracks?text=e%1").arg(i)), 0, 9, {}, replies[i]));
    int refused = 0;
    for (const auto& reply : replies) {
        ASSERT_TRUE(reply.waitForFinished(60000));
        refused += reply.isError() ? 1 : 0;
    }
    EXPECT_EQ(refused, 6);
    EXPECT_EQ(replies.back().error().message().toString(),
              "Too many searches are under way. Please try again.");
}

TEST_F(Search, oneThatIsUnderWayAtTheEndGetsAnError) {
    startAndScan();
    QString error;
    {
        const CMReplyData<OrvoRowsRoles> reply;
        CMRoot()->getRowsRequest(
            CMGetRowsRequest(CMPath("files:search?text=lee"), 0, 9, {}, reply));
        reply.onError([&error](const CMError& told) { error = told.name(); });
    }
    stop();
    EXPECT_EQ(error, CMError::NotAnswered());
}

} // namespace
