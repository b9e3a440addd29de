#include <QDir>
#include <QFile>
#include <QSignalSpy>

#include "FilesFixture.h"
#include "LogCapture.h"

using SoundFiles::writeWav;

namespace {

class Scan : public FilesFixture {
protected:
    // The changes told about from now on.
    void listen() {
        QObject::connect(CMRoot()->events(), &CMSubscribe::changed, worker(),
                         [this](const CMChange& change) { changes.append(change); });
    }
    bool toldItsEnd() {
        return waitUntil([this] {
            return !progress().isEmpty() && progress().constLast().value("state") == "ready";
        });
    }
    // Scans, and listens from when everything about that has been told.
    void startScanAndListen() {
        start();
        listen();
        ASSERT_TRUE(toldItsEnd());
        changes.clear();
    }
    QStringList resets() const {
        QStringList paths;
        for (const CMChange& change : changes) {
            if (change.kind == CMChange::Kind::Rows && change.changes == QStringList{"reset"})
                paths.append(change.path.toString());
        }
        return paths;
    }
    QList<QVariantHash> progress() const {
        QList<QVariantHash> values;
        for (const CMChange& change : changes) {
            if (change.kind == CMChange::Kind::Value && change.path == CMPath("files:scan"))
                values.append(change.newValue.toHash());
        }
        return values;
    }
    // Waits until the folder's titles are these.
    bool becomes(const QString& path, const QStringList& expected) {
        return waitUntil([&] { return titles(path) == expected; });
    }

    QList<CMChange> changes;
};

TEST_F(Scan, doesNotBeginBeforeStartUpEnded) {
    writeWav(file("A/x.wav"));
    LogCapture log("Files");
    start();
    EXPECT_EQ(scanValue(),
              (QVariantHash{{"state", "scanning"}, {"folders", 0}, {"tracks", 0}, {"done", 0}}));
    EXPECT_TRUE(log.lines().isEmpty());
    ASSERT_TRUE(waitUntilScanned());
    EXPECT_EQ(scanValue(),
              (QVariantHash{{"state", "ready"}, {"folders", 1}, {"tracks", 1}, {"done", 1}}));
    EXPECT_EQ(log.texts("INFO").value(1), "1 tracks in 1 folders");
}

TEST_F(Scan, tellsItsProgressAndItsEnd) {
    for (int i = 0; i < 30; ++i)
        writeWav(file(QString("%1/%2.wav").arg(i % 3).arg(i)));
    start();
    listen();
    ASSERT_TRUE(toldItsEnd());
    int done = 0;
    for (const QVariantHash& value : progress()) {
        EXPECT_GE(value.value("done").toInt(), done);
        EXPECT_LE(value.value("done").toInt(), value.value("tracks").toInt());
        done = value.value("done").toInt();
    }
    EXPECT_EQ(progress().constLast(),
              (QVariantHash{{"state", "ready"}, {"folders", 3}, {"tracks", 30}, {"done", 30}}));
    EXPECT_TRUE(resets().contains("files:tree"));
    EXPECT_TRUE(resets().contains("files:tree/2"));
}

TEST_F(Scan, veryManyChangedFoldersAreToldAsOne) {
    for (int i = 0; i < 80; ++i)
        writeWav(file(QString("%1/x.wav").arg(i)), {}, 10);
    start();
    listen();
    ASSERT_TRUE(toldItsEnd());
    int whole = 0;
    for (const CMChange& change : changes)
        whole += change.kind == CMChange::Kind::StartingWith && change.path == CMPath("files:tree");
    EXPECT_GE(whole, 1);
    EXPECT_LE(changes.size(), 60);
}

TEST_F(Scan, aNewFileIsSeen) {
    writeWav(file("A/1.wav"));
    startScanAndListen();
    writeWav(file("A/2.wav"), {"Two", {}, {}, {}, 0});
    EXPECT_TRUE(becomes("files:tree/A", {"1", "Two"}));
    EXPECT_TRUE(waitUntil([this] { return resets().contains("files:tree/A"); }));
    EXPECT_FALSE(resets().contains("files:tree"));
    EXPECT_TRUE(waitUntil([this] { return scanValue().value("done") == 2; }));
}

TEST_F(Scan, aRemovedFileIsSeen) {
    writeWav(file("A/1.wav"));
    writeWav(file("A/2.wav"));
    startScanAndListen();
    ASSERT_TRUE(QFile::remove(file("A/1.wav")));
    EXPECT_TRUE(becomes("files:tree/A", {"2"}));
    EXPECT_TRUE(waitUntil([this] { return resets().contains("files:tree/A"); }));
    EXPECT_EQ(scanValue(),
              (QVariantHash{{"state", "ready"}, {"folders", 1}, {"tracks", 1}, {"done", 1}}));
    EXPECT_TRUE(prepare({"files:tree/A/1.wav"}).isEmpty());
}

TEST_F(Scan, newFoldersAreSeenAndWatchedInTurn) {
    startAndScan();
    writeWav(file("New/Inner/1.wav"));
    EXPECT_TRUE(becomes("files:tree/New/Inner", {"1"}));
    ASSERT_TRUE(waitUntilScanned());
    writeWav(file("New/Inner/2.wav"));
    EXPECT_TRUE(becomes("files:tree/New/Inner", {"1", "2"}));
}

TEST_F(Scan, aRemovedFolderTakesAllBelowWithIt) {
    writeWav(file("A/B/1.wav"));
    writeWav(file("A/2.wav"));
    writeWav(file("C/3.wav"));
    startAndScan();
    ASSERT_TRUE(QDir(file("A")).removeRecursively());
    EXPECT_TRUE(becomes("files:tree", {"C"}));
    ASSERT_TRUE(waitUntilScanned());
    EXPECT_EQ(scanValue(),
              (QVariantHash{{"state", "ready"}, {"folders", 1}, {"tracks", 1}, {"done", 1}}));
    EXPECT_EQ(rows("files:tree/A/B").error.name(), CMError::NoSuchNode());
}

TEST_F(Scan, aFolderThatMovesIsFollowedAtItsNewPlace) {
    writeWav(file("From/Album/1.wav"));
    ASSERT_TRUE(QDir().mkpath(file("To")));
    startAndScan();
    ASSERT_TRUE(QDir().rename(file("From/Album"), file("To/Album")));
    EXPECT_TRUE(becomes("files:tree/To/Album", {"1"}));
    EXPECT_TRUE(becomes("files:tree/From", {}));
    ASSERT_TRUE(waitUntilScanned());
    writeWav(file("To/Album/2.wav"));
    EXPECT_TRUE(becomes("files:tree/To/Album", {"1", "2"}));
    EXPECT_TRUE(waitUntil([this] { return scanValue().value("tracks") == 2; }));
}

TEST_F(Scan, tagsRewrittenInPlaceAreReadAgain) {
    writeWav(file("1.wav"), {"Old", {}, {}, {}, 0});
    startAndScan();
    EXPECT_EQ(titles("files:tree"), QStringList{"Old"});
    writeWav(file("1.wav"), {"New", {}, {}, {}, 0});
    EXPECT_TRUE(becomes("files:tree", {"New"}));
}

TEST_F(Scan, aLongCopyIsReadWhenItEnds) {
    startAndScan();
    writeWav(outside("whole.wav"), {"Whole", {}, {}, {}, 0}, 5000);
    QFile whole(outside("whole.wav"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    QFile copy(file("copy.wav"));
    ASSERT_TRUE(copy.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    copy.write(bytes.left(20));
    EXPECT_TRUE(becomes("files:tree", {"copy"})) << "listed by its name while it is being copied";
    ASSERT_TRUE(waitUntilScanned());
    copy.write(bytes.mid(20));
    copy.close();
    EXPECT_TRUE(becomes("files:tree", {"Whole"}));
}

TEST_F(Scan, artworkThatComesLaterIsShown) {
    writeWav(file("A/1.wav"));
    startAndScan();
    SoundFiles::writeBytes(file("A/cover.jpg"), "x");
    EXPECT_TRUE(waitUntil([this] {
        return rows("files:tree/A").row(0).mediaData().metaData().artworkUrl() ==
               url(file("A/cover.jpg"));
    }));
}

TEST_F(Scan, aMusicFolderThatComesLaterIsFoundByARescan) {
    ASSERT_TRUE(QDir().rmdir(outside("music")));
    LogCapture log("Files");
    startAndScan();
    EXPECT_EQ(log.texts("WARN"), QStringList{"cannot read the folder " + outside("music") +
                                             ": No such file or directory"});
    writeWav(outside("disk/1.wav"));
    ASSERT_TRUE(QFile::link(outside("disk"), outside("music")));
    const CMReply<QVariant> reply = set("files:rescan", {});
    EXPECT_TRUE(reply.isFinished());
    EXPECT_FALSE(reply.isError());
    EXPECT_EQ(scanValue().value("state"), "scanning");
    ASSERT_TRUE(waitUntilScanned());
    EXPECT_EQ(titles("files:tree"), QStringList{"1"});
}

TEST_F(Scan, aRescanFindsWhatIsBelowFoldersThatDidNotChange) {
    writeWav(file("A/B/1.wav"));
    startAndScan();
    // Nothing is handled between the change and the rescan, so no watch has told of it.
    writeWav(file("A/B/2.wav"));
    ASSERT_TRUE(QFile::remove(file("A/B/1.wav")));
    set("files:rescan", {});
    ASSERT_TRUE(waitUntilScanned());
    EXPECT_EQ(titles("files:tree/A/B"), QStringList{"2"});
}

TEST_F(Scan, aRescanKeepsTheTagsOfWhatDidNotChange) {
    writeWav(file("1.wav"), {"One", {}, {}, {}, 0});
    startAndScan();
    set("files:rescan", {});
    EXPECT_EQ(scanValue().value("done"), 1);
    EXPECT_EQ(titles("files:tree"), QStringList{"One"});
    ASSERT_TRUE(waitUntilScanned());
    EXPECT_EQ(scanValue().value("done"), 1);
}

} // namespace
