#include "FilesFixture.h"
#include "MatchQueue.h"
#include "Printing.h"

using SoundFiles::writeWav;

namespace {

class Match : public FilesFixture {
protected:
    // The files of the items that were answered, below the music folder; "-" for none.
    QStringList match(const QVariantList& hints) const {
        const CMReply<QVariant> reply = set("files:match", hints);
        EXPECT_TRUE(waitUntil([&reply] { return reply.isFinished(); }));
        EXPECT_EQ(reply.error().message().toString(), "");
        QStringList files;
        for (const QVariant& item : reply.value().toList()) {
            const QString url = OrvoPlayListItem(item).url();
            files.append(url.isEmpty() ? "-" : url.mid(FilesFixture::url(file({})).size()));
        }
        return files;
    }

    static QVariantHash named(const QString& name, qint64 duration = 0) {
        return {{"files", QStringList{name}}, {"duration", duration}};
    }
    static QVariantHash titled(const QString& artist, const QString& title, qint64 duration = 0,
                               const QString& album = {}) {
        return {{"artist", artist}, {"title", title}, {"duration", duration}, {"album", album}};
    }
};

} // namespace

TEST_F(Match, theFileItselfComesFirst) {
    for (const char* name : {"A/x.wav", "a/x.wav", "A/X.wav", "B/A/x.wav"})
        writeWav(file(name));
    startAndScan();
    EXPECT_EQ(match({named("A/x.wav"), named("A/X.wav"), named("a/x.wav"), named(file("A/x.wav")),
                     named("B/../A/./x.wav"), named("B/A/x.wav")}),
              (QStringList{"A/x.wav", "A/X.wav", "a/x.wav", "A/x.wav", "A/x.wav", "B/A/x.wav"}));
    const QVariantHash two = {{"files", QStringList{"gone.wav", "A/x.wav"}}};
    EXPECT_EQ(match({two}), QStringList{"A/x.wav"});
}

TEST_F(Match, elseTheOnlyFileWithTheLongestCommonEnding) {
    for (const char* name :
         {"Ann/One/01.wav", "Ben/One/01.wav", "Ben/Two/01.wav", "Ben/Two/02.wav"})
        writeWav(file(name));
    startAndScan();
    EXPECT_EQ(match({named("/music/ANN/one/01.WAV"), named("/x/Ben/One/01.wav"),
                     named("Two/01.wav"), named("x/02.wav"), named("02.wav")}),
              (QStringList{"Ann/One/01.wav", "Ben/One/01.wav", "Ben/Two/01.wav", "Ben/Two/02.wav",
                           "Ben/Two/02.wav"}));
    // Two fit, parts of names are none, and nothing has no ending.
    EXPECT_EQ(
        match({named("One/01.wav"), named("01.wav"), named("1.wav"), named("/x/"), named("")}),
        (QStringList{"-", "-", "-", "-", "-"}));
}

TEST_F(Match, accentsAreTheSameHoweverTheyAreComposed) {
    writeWav(file(QString::fromUtf8("Zoe\u0308/u\u0308.wav")));
    startAndScan();
    EXPECT_EQ(match({named(QString::fromUtf8("Zo\u00EB/\u00FC.wav")),
                     named(QString::fromUtf8("/m/ZO\u00CB/\u00DC.wav"))})
                  .filter("-"),
              QStringList());
}

TEST_F(Match, aFileNameAloneIsNotEnoughWhereTheLengthDiffers) {
    writeWav(file("A/Track 01.wav"), {}, 10000);
    startAndScan();
    EXPECT_EQ(match({named("x/Track 01.wav", 12000), named("x/Track 01.wav", 12001),
                     named("x/Track 01.wav"), named("A/Track 01.wav", 60000),
                     named("/m/A/Track 01.wav", 60000)}),
              (QStringList{"A/Track%2001.wav", "-", "A/Track%2001.wav", "A/Track%2001.wav",
                           "A/Track%2001.wav"}));
}

TEST_F(Match, elseTheTrackOfThisArtistAndTitleWithinTwoSeconds) {
    writeWav(file("1.wav"), {"Song", "Ann", "First", {}, 1}, 10000);
    writeWav(file("2.wav"), {"Song", "Ann", "Best of", {}, 1}, 11000);
    writeWav(file("3.wav"), {"Song", "Ben", {}, {}, 1}, 10000);
    writeWav(file("4.wav"), {"Song - live", "Ann", {}, {}, 1}, 10000);
    startAndScan();
    EXPECT_EQ(match({titled("ann", " SONG ", 8000), titled("Ann", "Song", 7999),
                     titled("Ann", "Song", 13000), titled("Ann", "Song", 13001),
                     titled("Ann", "Song", 10000, "best OF"), titled("Ann", "Song", 0, "First"),
                     titled("Ann", "Song", 10800, "Unknown")}),
              (QStringList{"1.wav", "-", "2.wav", "-", "2.wav", "1.wav", "2.wav"}));
    // Without a length there must be one only.
    EXPECT_EQ(match({titled("Ann", "Song"), titled("Ben", "Song"), titled("", "Ben - Song"),
                     titled("", "Ann - Song - live"), titled("Ben", ""), titled("", "Song")}),
              (QStringList{"-", "3.wav", "3.wav", "4.wav", "-", "-"}));
}

TEST_F(Match, theAnswerHasACompleteItemForEachHintInTheirOrder) {
    writeWav(file("Ann/a.wav"), {"Title", "Ann", "Album", "Folk", 1}, 2000);
    startAndScan();
    const CMReply<QVariant> reply =
        set("files:match", QVariantList{named("gone"), named("Ann/a.wav")});
    ASSERT_TRUE(waitUntil([&reply] { return reply.isFinished(); }));
    const QVariantList items = reply.value().toList();
    ASSERT_EQ(items.size(), 2);
    EXPECT_FALSE(items.at(0).isValid());
    EXPECT_EQ(OrvoPlayListItem(items.at(1)), prepare({"files:tree/Ann/a.wav"}).value(0));
}

TEST_F(Match, aRequestWaitsForTheScanAndOneInTheMiddleSeesTheNewFiles) {
    writeWav(file("a.wav"));
    start();
    EXPECT_EQ(match({named("a.wav")}), QStringList{"a.wav"});
    ASSERT_TRUE(waitUntilScanned());
    writeWav(file("b.wav"));
    set("files:rescan", {});
    EXPECT_EQ(match({named("b.wav"), named("a.wav")}), (QStringList{"b.wav", "a.wav"}));
}

TEST_F(Match, wrongRequestsAreRefused) {
    startAndScan();
    const auto refusal = [this](const QVariant& value) {
        return set("files:match", value).error().message().toString();
    };
    EXPECT_EQ(refusal(3), "The value must be a list of hints.");
    EXPECT_EQ(refusal(QVariant()), "The value must be a list of hints.");
    QVariantList many;
    for (int i = 0; i <= 500; ++i)
        many.append(named("a"));
    EXPECT_EQ(refusal(many), "More than 500 hints at once are too many.");
    many.removeLast();
    EXPECT_EQ(match(many).size(), 500);
    EXPECT_EQ(match({1, "a", QVariantHash{{"files", 3}, {"duration", "x"}}, QVariant()}),
              (QStringList{"-", "-", "-", "-"}));
    EXPECT_EQ(match({}), QStringList());
}

TEST_F(Match, beforeTheFirstScanHasEndedARequestIsRefusedAfterAWhile) {
    MusicTree tree(file({}));
    TagLoader loader(&tree, {});
    Scanner scanner(&tree, &loader);
    LibraryIndex index(&tree, &scanner);
    // The scan never begins, so there is nothing to publish.
    ChangePublisher publisher(&tree, &scanner, &index, nullptr);
    MatchQueue queue(&tree, &scanner, &index, &publisher);
    queue.setScanTimeout(20);
    std::vector<CMReply<QVariant>> replies(2);
    for (CMReply<QVariant>& reply : replies) {
        reply = CMReply<QVariant>();
        queue.match(CMSetDataRequest(CMPath("files:match"), QVariantList{named("a.wav")}, reply));
        EXPECT_FALSE(reply.isFinished());
    }
    for (const CMReply<QVariant>& reply : replies) {
        ASSERT_TRUE(waitUntil([&reply] { return reply.isFinished(); }));
        EXPECT_EQ(reply.error().name(), "Scanning");
        EXPECT_EQ(reply.error().message().toString(),
                  "The music folder is still being looked through. Please try again later.");
    }
}
