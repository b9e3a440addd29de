#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QUrl>

#include "FilesFixture.h"
#include "LogCapture.h"

using SoundFiles::writeWav;

namespace {

class TreeSafety : public FilesFixture {};

TEST_F(TreeSafety, noPathReachesOutOfTheMusicFolder) {
    writeWav(file("A/in.wav"));
    writeWav(outside("secret.wav"));
    writeWav(file(".hidden/h.wav"));
    startAndScan();
    const QString absolute = QString::fromLatin1(QUrl::toPercentEncoding(outside("secret.wav")));
    const QStringList paths = {
        "files:tree/..",
        "files:tree/../secret.wav",
        "files:tree/A/../../secret.wav",
        "files:tree/A/../in.wav",
        "files:tree/%2E%2E/secret.wav",
        "files:tree/..%2Fsecret.wav",
        "files:tree/A%2Fin.wav",
        "files:tree/A/.",
        "files:tree/.hidden",
        "files:tree/.hidden/h.wav",
        "files:tree/" + absolute,
        "files:tree/" + outside("secret.wav"),
        "files:tree/A/in.wav/",
        "files:tree/A/in.wav/..",
        "files:tree/A/in.wav%00",
        "files:tree/" + QString(100000, 'x'),
        "files:" + absolute,
        "files:",
        "files",
        "",
    };
    for (const QString& path : paths) {
        if (path != "files:tree/A/in.wav/") {
            EXPECT_FALSE(rows(path).error.name().isEmpty()) << qUtf8Printable(path.left(80));
            EXPECT_TRUE(prepare({path}).isEmpty()) << qUtf8Printable(path.left(80));
        }
    }
    // Empty components are none: this is the track's own path.
    EXPECT_EQ(prepare({"files:tree/A/in.wav/"}).size(), 1);
}

TEST_F(TreeSafety, aLinkOutOfTheFolderIsNotListed) {
    writeWav(outside("secret.wav"));
    writeWav(outside("album/x.wav"));
    writeWav(outside("music-not-below/x.wav"));
    writeWav(file("in.wav"));
    ASSERT_TRUE(QFile::link(outside("secret.wav"), file("out.wav")));
    ASSERT_TRUE(QFile::link(outside("music-not-below/x.wav"), file("sibling.wav")));
    ASSERT_TRUE(QFile::link(outside("album"), file("album")));
    ASSERT_TRUE(QFile::link(outside("gone.wav"), file("dangling.wav")));
    ASSERT_TRUE(QFile::link(outside("secret.wav"), file("cover.jpg")));
    LogCapture log("Files");
    startAndScan();
    EXPECT_EQ(titles("files:tree"), QStringList{"in"});
    EXPECT_EQ(rows("files:tree").row(0).mediaData().metaData().artworkUrl(), "");
    EXPECT_EQ(log.texts("WARN").filter("left out a link out of the music folder").size(), 3);
    for (const char* path : {"files:tree/out.wav", "files:tree/album", "files:tree/album/x.wav"})
        EXPECT_TRUE(prepare({path}).isEmpty()) << path;
}

TEST_F(TreeSafety, aLinkToAFileInsideIsATrack) {
    writeWav(file("A/x.wav"), {"X", {}, {}, {}, 0});
    ASSERT_TRUE(QFile::link(file("A/x.wav"), file("favourite.wav")));
    startAndScan();
    EXPECT_EQ(titles("files:tree"), (QStringList{"A", "X"}));
    EXPECT_EQ(prepare({"files:tree/favourite.wav"}).value(0).url(), url(file("favourite.wav")));
}

TEST_F(TreeSafety, linksThatLoopEndTheScanAllTheSame) {
    writeWav(file("A/x.wav"));
    ASSERT_TRUE(QFile::link(file(""), file("A/up")));
    ASSERT_TRUE(QFile::link(file("A"), file("A/self")));
    ASSERT_TRUE(QFile::link("loop2.wav", file("loop1.wav")));
    ASSERT_TRUE(QFile::link("loop1.wav", file("loop2.wav")));
    startAndScan();
    EXPECT_EQ(scanValue().value("folders"), 1);
    EXPECT_EQ(scanValue().value("tracks"), 1);
}

TEST_F(TreeSafety, theMusicFolderItselfMayBeALink) {
    writeWav(outside("elsewhere/x.wav"));
    ASSERT_TRUE(QDir().rmdir(outside("music")));
    ASSERT_TRUE(QFile::link(outside("elsewhere"), outside("music")));
    startAndScan();
    EXPECT_EQ(titles("files:tree"), QStringList{"x"});
    EXPECT_EQ(prepare({"files:tree/x.wav"}).value(0).url(), url(outside("elsewhere/x.wav")));
}

TEST_F(TreeSafety, aFolderThatBecomesALinkIsNotEntered) {
    writeWav(file("A/B/x.wav"));
    writeWav(outside("other/secret.wav"));
    start();
    // The tree knows A and B but has not read B when B changes.
    EXPECT_EQ(titles("files:tree/A"), QStringList{"B"});
    ASSERT_TRUE(QDir(file("A/B")).removeRecursively());
    ASSERT_TRUE(QFile::link(outside("other"), file("A/B")));
    LogCapture log("Files");
    EXPECT_TRUE(titles("files:tree/A/B").isEmpty());
    EXPECT_TRUE(
        log.contains("WARN", "cannot read the folder " + file("A/B") + ": it has become a link"));
}

TEST_F(TreeSafety, aNameThatIsNotUtf8IsLeftOutWithAWarning) {
    writeWav(file("fine.wav"));
    const QByteArray bad = file("").toUtf8() + "bad\xff\xfe.wav";
    ASSERT_EQ(::link(file("fine.wav").toUtf8().constData(), bad.constData()), 0);
    const QByteArray badFolder = file("").toUtf8() + "dir\xc3";
    ASSERT_EQ(::mkdir(badFolder.constData(), 0700), 0);
    LogCapture log("Files");
    startAndScan();
    EXPECT_EQ(titles("files:tree"), QStringList{"fine"});
    EXPECT_EQ(log.texts("WARN").filter("left out a name that is not UTF-8: " + file("")).size(), 2);
    // Qt could not remove them.
    ::unlink(bad.constData());
    ::rmdir(badFolder.constData());
}

TEST_F(TreeSafety, whatIsNoPlainFileIsNoTrack) {
    writeWav(file("x.wav"));
    // Opening it would wait for a writer that never comes.
    ASSERT_EQ(::mkfifo(file("pipe.wav").toUtf8().constData(), 0600), 0);
    ASSERT_TRUE(QDir().mkpath(file("folder.mp3")));
    startAndScan();
    EXPECT_EQ(titles("files:tree"), (QStringList{"folder.mp3", "x"}));
    EXPECT_EQ(rows("files:tree").row(0).type(), OrvoRolesType::Container);
}

TEST_F(TreeSafety, aFolderThatCannotBeReadIsSkippedAndLogged) {
    writeWav(file("A/x.wav"));
    writeWav(file("B/y.wav"));
    start();
    EXPECT_EQ(titles("files:tree"), (QStringList{"A", "B"}));
    ASSERT_TRUE(QDir(file("A")).removeRecursively());
    LogCapture log("Files");
    EXPECT_TRUE(titles("files:tree/A").isEmpty());
    EXPECT_TRUE(log.contains("WARN", "cannot read the folder " + file("A") +
                                         ": No such file or directory"));
    EXPECT_EQ(titles("files:tree/B"), QStringList{"y"});
}

TEST_F(TreeSafety, aFolderWithoutPermissionIsSkippedAndLogged) {
    writeWav(file("A/x.wav"));
    ASSERT_EQ(::chmod(file("A").toUtf8().constData(), 0), 0);
    LogCapture log("Files");
    startAndScan();
    ::chmod(file("A").toUtf8().constData(), 0700);
    const bool everythingIsAllowed = ::geteuid() == 0;
    EXPECT_EQ(log.contains("WARN", "cannot read the folder " + file("A") + ": Permission denied"),
              !everythingIsAllowed);
    EXPECT_EQ(scanValue().value("tracks"), everythingIsAllowed ? 1 : 0);
}

} // namespace
