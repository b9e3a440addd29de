#include <QDir>
#include <QFile>
#include <QUrl>

#include "FilesFixture.h"
#include "LogCapture.h"

using SoundFiles::writeBytes;
using SoundFiles::writeWav;

namespace {

class TreeRows : public FilesFixture {};

TEST_F(TreeRows, foldersComeBeforeTracksAndBothInTheOrderOfAPerson) {
    for (const char* name : {"10 ten.wav", "2 two.wav", "1 One.wav", "b.wav", "A.wav"})
        writeWav(file(name));
    for (const char* name : {"Zoo", "disc 10", "Disc 2"})
        writeWav(file(QString(name) + "/x.wav"));
    startAndScan();
    EXPECT_EQ(titles("files:tree"),
              (QStringList{"Disc 2", "disc 10", "Zoo", "1 One", "2 two", "10 ten", "A", "b"}));
    const QVariantList types = rows("files:tree").column(OrvoRoles::Type());
    EXPECT_EQ(types, (QVariantList{1, 1, 1, 3, 3, 3, 3, 3}));
}

TEST_F(TreeRows, namesThatDifferInCaseOnlyKeepOneOrder) {
    for (const char* name : {"same.wav", "SAME.wav", "Same.wav"})
        writeWav(file(name));
    startAndScan();
    EXPECT_EQ(titles("files:tree"), (QStringList{"SAME", "Same", "same"}));
}

TEST_F(TreeRows, aTrackCarriesWhatItsFileSays) {
    writeWav(file("Ann/Album/01 Song.wav"), {"The Song", "Ann", "Album", "Folk", 7}, 2500);
    writeBytes(file("Ann/Album/cover.jpg"), "no picture, but named like one");
    startAndScan();
    const Rows answer = rows("files:tree/Ann/Album");
    ASSERT_EQ(answer.answer.rowsCount(), 1);
    const OrvoRoles track = answer.row(0);
    EXPECT_EQ(track.title().toString(), "The Song");
    EXPECT_EQ(track.type(), OrvoRolesType::Audio);
    EXPECT_EQ(track.path().toString(), "files:tree/Ann/Album/01%20Song.wav");
    const OrvoMetaData data = track.mediaData().metaData();
    EXPECT_EQ(data.artist(), "Ann");
    EXPECT_EQ(data.album(), "Album");
    EXPECT_EQ(data.genre(), "Folk");
    EXPECT_EQ(data.trackNumber(), 7);
    EXPECT_EQ(data.duration(), 2500);
    EXPECT_EQ(data.serviceId(), "files");
    EXPECT_EQ(data.artworkUrl(), url(file("Ann/Album/cover.jpg")));
    EXPECT_EQ(data.prePlayPath().toString(), "files:prePlay");
    const QList<OrvoResource> resources = track.mediaData().resources();
    ASSERT_EQ(resources.size(), 1);
    EXPECT_EQ(resources.at(0).uri(), url(file("Ann/Album/01 Song.wav")));
    EXPECT_EQ(resources.at(0).mimeType(), "audio/wav");
}

TEST_F(TreeRows, aFolderIsAContainerWithItsNameAndItsPicture) {
    writeWav(file("Ann/x.wav"));
    writeBytes(file("Ann/Folder.PNG"), "x");
    startAndScan();
    const OrvoRoles folder = rows("files:tree").row(0);
    EXPECT_EQ(folder.title().toString(), "Ann");
    EXPECT_EQ(folder.type(), OrvoRolesType::Container);
    EXPECT_EQ(folder.path().toString(), "files:tree/Ann");
    EXPECT_EQ(folder.mediaData().metaData().artworkUrl(), url(file("Ann/Folder.PNG")));
}

TEST_F(TreeRows, theBestPictureIsChosen) {
    struct Case {
        QStringList present;
        QString chosen;
    };
    const Case cases[] = {
        {{"front.png", "folder.jpg", "cover.png"}, "cover.png"},
        {{"cover.png", "cover.jpg"}, "cover.jpg"},
        {{"front.jpg", "folder.png"}, "folder.png"},
        {{"Front.JPEG", "back.jpg", "cover.gif"}, "Front.JPEG"},
    };
    int number = 0;
    for (const Case& each : cases) {
        const QString folder = QString("case %1/").arg(number++);
        writeWav(file(folder + "x.wav"));
        for (const QString& name : each.present)
            writeBytes(file(folder + name), "x");
    }
    startAndScan();
    number = 0;
    for (const Case& each : cases) {
        const QString folder = QString("case %1").arg(number);
        const OrvoRoles row = rows("files:tree").row(number++);
        EXPECT_EQ(row.mediaData().metaData().artworkUrl(), url(file(folder + "/" + each.chosen)));
    }
}

TEST_F(TreeRows, aPageIsClampedAndOrderedAndKeepsTheTotal) {
    for (int i = 0; i < 10; ++i)
        writeWav(file(QString("%1.wav").arg(i)));
    startAndScan();
    struct Case {
        int from;
        int to;
        QStringList expected;
    };
    const Case cases[] = {
        {0, 9, {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}},
        {2, 5, {"2", "3", "4", "5"}},
        {5, 2, {"2", "3", "4", "5"}},
        {8, 100, {"8", "9"}},
        {20, 30, {"9"}},
        {-5, 1, {"0", "1"}},
        {-5, -2, {"0"}},
        {3, 3, {"3"}},
    };
    for (const Case& each : cases) {
        const Rows answer = rows("files:tree", each.from, each.to);
        EXPECT_EQ(answer.titles(), each.expected) << each.from << ".." << each.to;
        EXPECT_EQ(answer.answer.rowsCount(), 10);
    }
}

TEST_F(TreeRows, aPageMayReachFromFoldersIntoTracks) {
    for (const char* name : {"A/x.wav", "B/x.wav", "1.wav", "2.wav"})
        writeWav(file(name));
    startAndScan();
    EXPECT_EQ(rows("files:tree", 1, 2).titles(), (QStringList{"B", "1"}));
}

TEST_F(TreeRows, theAnswerDescribesTheFolderItself) {
    writeWav(file("Ann/x.wav"));
    startAndScan();
    EXPECT_EQ(rows("files:tree").answer.roles().title().toString(), "Music");
    const OrvoRoles roles = rows("files:tree/Ann").answer.roles();
    EXPECT_EQ(roles.title().toString(), "Ann");
    EXPECT_EQ(roles.path().toString(), "files:tree/Ann");
    const Rows few = rows("files:tree/Ann", 0, 10, {OrvoRoles::Type()});
    EXPECT_EQ(few.answer.roles().title().toString(), "Ann");
    EXPECT_FALSE(few.answer.roles().containsPath());
}

TEST_F(TreeRows, valuesComeInTheOrderTheRolesWereAskedFor) {
    writeWav(file("x.wav"));
    startAndScan();
    const QVariantList row =
        rows("files:tree", 0, 0, {OrvoRoles::Type(), "nothing", OrvoRoles::Title()})
            .answer.rows()
            .at(0)
            .toList();
    EXPECT_EQ(row, (QVariantList{3, QVariant(), "x"}));
}

TEST_F(TreeRows, anEmptyFolderListsNothing) {
    ASSERT_TRUE(QDir().mkpath(file("Empty")));
    startAndScan();
    const Rows answer = rows("files:tree/Empty", 0, 5);
    EXPECT_TRUE(answer.error.name().isEmpty());
    EXPECT_EQ(answer.answer.rowsCount(), 0);
    EXPECT_TRUE(answer.answer.rows().isEmpty());
}

TEST_F(TreeRows, onlyVisibleAudioFilesAreTracks) {
    writeWav(file("x.wav"));
    writeWav(file("Upper.WAV"));
    writeWav(file(".hidden.wav"));
    writeWav(file(".hidden/x.wav"));
    writeWav(file("noSuffix"));
    writeBytes(file("notes.txt"), "x");
    writeBytes(file("cover.jpg"), "x");
    startAndScan();
    EXPECT_EQ(titles("files:tree"), (QStringList{"Upper", "x"}));
}

TEST_F(TreeRows, everyNameThatADiskTakesIsReachable) {
    const QStringList names = {"100% + more", "what?",       "a#b",          "a:b",
                               "a&b=c",       "line\nbreak", "back\\slash",  "%2F",
                               " pad",        "Grüße 日本",  "semi;colon\"", "..."};
    for (const QString& name : names)
        writeWav(file("x" + name + "/t" + name + ".wav"));
    startAndScan();
    const Rows folders = rows("files:tree");
    EXPECT_EQ(folders.answer.rowsCount(), names.size());
    for (int i = 0; i < folders.answer.rowsCount(); ++i) {
        const Rows inner = rows(folders.row(i).path().toString());
        ASSERT_EQ(inner.answer.rowsCount(), 1) << qUtf8Printable(folders.titles().at(i));
        const QString path = inner.row(0).path().toString();
        const QList<OrvoPlayListItem> items = prepare({path});
        ASSERT_EQ(items.size(), 1) << qUtf8Printable(path);
        EXPECT_TRUE(QFile::exists(QUrl(items.at(0).url()).toLocalFile()))
            << qUtf8Printable(items.at(0).url());
    }
}

TEST_F(TreeRows, aTrackIsListedByItsFileNameUntilItsTagsAreRead) {
    writeWav(file("A/B/01 Song.v2.wav"), {"The Song", {}, {}, {}, 0});
    start();
    // No event has been handled: the scan has not begun, and what is asked for is there all the
    // same.
    EXPECT_EQ(titles("files:tree/A/B"), QStringList{"01 Song.v2"});
    ASSERT_TRUE(waitUntilScanned());
    EXPECT_EQ(titles("files:tree/A/B"), QStringList{"The Song"});
}

TEST_F(TreeRows, aTitleIsFoundByMatching) {
    for (const char* name : {"apple.wav", "Banana.wav", "cherry.wav", "banana2.wav"})
        writeWav(file(name));
    startAndScan();
    const auto match = [](const QString& text, int from) {
        const CMReply<int> reply;
        CMRoot()->matchRowRequest(CMMatchRowRequest(CMPath("files:tree"), text, from, reply));
        return reply.isError() ? -2 : reply.value();
    };
    EXPECT_EQ(titles("files:tree"), (QStringList{"apple", "Banana", "banana2", "cherry"}));
    EXPECT_EQ(match("banana", 0), 1);
    EXPECT_EQ(match("banana", 2), 2);
    EXPECT_EQ(match("plum", 0), -1);
}

TEST_F(TreeRows, dataIsAnsweredForFoldersAndTracks) {
    writeWav(file("Ann/x.wav"), {"X", {}, {}, {}, 0});
    startAndScan();
    const auto title = [](const char* path) {
        const CMReply<OrvoRoles> reply;
        CMRoot()->getDataRequest(CMGetDataRequest(CMPath(path), {OrvoRoles::Title()}, reply));
        return reply.isError() ? reply.error().name() : reply.value().title().toString();
    };
    EXPECT_EQ(title("files:tree/Ann"), "Ann");
    EXPECT_EQ(title("files:tree/Ann/x.wav"), "X");
    EXPECT_EQ(title("files:tree/Ann/y.wav"), "NoSuchNode");
}

TEST_F(TreeRows, aTrackListsNothing) {
    writeWav(file("x.wav"));
    startAndScan();
    EXPECT_EQ(rows("files:tree/x.wav").error.name(), CMError::NotSupported());
}

TEST_F(TreeRows, withoutAMusicFolderTheTreeIsEmpty) {
    FilesWorker worker({});
    ASSERT_TRUE(waitUntilScanned());
    EXPECT_EQ(rows("files:tree").answer.rowsCount(), 0);
    EXPECT_EQ(CMRoot()->getValue(CMPath("files:musicFolder")).toHash().value("string"), "");
}

TEST_F(TreeRows, theMusicFolderIsAValue) {
    startAndScan();
    EXPECT_EQ(CMRoot()->getValue(CMPath("files:musicFolder")).toHash().value("string").toString() +
                  "/",
              file(""));
    EXPECT_FALSE(CMRoot()->getValue(CMPath("files:nothing")).isValid());
}

} // namespace
