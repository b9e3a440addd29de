#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>

#include "FilesFixture.h"
#include "LogCapture.h"
#include "TaggedFiles.h"

using SoundFiles::writeWav;

namespace {

class KeptTags : public FilesFixture {
protected:
    QString store() const { return outside("data/files.sqlite"); }

    void startAgain() {
        stop();
        startAndScan();
    }

    // Other content, but what a listing shows of the file stays.
    void writeUnseen(const QString& name, const SoundTags& tags) {
        struct stat before {};
        ASSERT_EQ(::stat(name.toUtf8().constData(), &before), 0);
        writeWav(name, tags);
        struct stat after {};
        ASSERT_EQ(::stat(name.toUtf8().constData(), &after), 0);
        ASSERT_EQ(after.st_size, before.st_size);
        const timespec times[] = {before.st_atim, before.st_mtim};
        ASSERT_EQ(utimensat(AT_FDCWD, name.toUtf8().constData(), times, 0), 0);
    }

    int rowsKept() const {
        sqlite3* db = nullptr;
        sqlite3_open(store().toUtf8().constData(), &db);
        sqlite3_stmt* count = nullptr;
        sqlite3_prepare_v2(db, "SELECT count(*) FROM tracks", -1, &count, nullptr);
        const int rows = sqlite3_step(count) == SQLITE_ROW ? sqlite3_column_int(count, 0) : -1;
        sqlite3_finalize(count);
        sqlite3_close(db);
        return rows;
    }

    // The store is not ours any more; a start says so once and reads the music again.
    void expectMadeAnew() {
        LogCapture log("Files");
        startAndScan();
        EXPECT_EQ(titles("files:tree"), QStringList{"One"});
        EXPECT_EQ(log.texts("WARN"),
                  QStringList{store() + " is damaged, or no file of tags; it is put aside and all "
                                        "tags are read again"});
        log.clear();
        startAgain();
        EXPECT_TRUE(log.texts("WARN").isEmpty());
        stop();
        EXPECT_EQ(rowsKept(), 1);
    }
};

TEST_F(KeptTags, aSecondStartOpensNoFileThatDidNotChange) {
    writeWav(file("a.wav"), {"One", "Ann", "First", "Folk", 3});
    startAndScan();
    const OrvoRoles before = rows("files:tree").row(0);
    stop();
    writeUnseen(file("a.wav"), {"Two", "Bob", "Other", "Jazz", 4});
    startAndScan();
    EXPECT_EQ(titles("files:tree"), QStringList{"One"});
    EXPECT_EQ(rows("files:tree").row(0).toHash(), before.toHash());
}

TEST_F(KeptTags, aFileThatChangedMeanwhileIsReadAgain) {
    writeWav(file("a.wav"), {"One", {}, {}, {}, 0});
    startAndScan();
    stop();
    writeWav(file("a.wav"), {"Longer", {}, {}, {}, 0});
    startAndScan();
    EXPECT_EQ(titles("files:tree"), QStringList{"Longer"});
    EXPECT_EQ(rowsKept(), 1);
}

TEST_F(KeptTags, aDamagedStoreIsMadeAnew) {
    writeWav(file("a.wav"), {"One", {}, {}, {}, 0});
    startAndScan();
    stop();
    QFile damaged(store());
    ASSERT_TRUE(damaged.open(QIODevice::ReadWrite));
    const qint64 size = damaged.size();
    ASSERT_GT(size, 8192);
    damaged.seek(4096);
    damaged.write(QByteArray(int(size - 4096), 'x'));
    damaged.close();
    expectMadeAnew();
    EXPECT_TRUE(QFile::exists(store() + ".damaged"));
}

TEST_F(KeptTags, aStoreThatIsNoDatabaseIsMadeAnew) {
    writeWav(file("a.wav"), {"One", {}, {}, {}, 0});
    SoundFiles::writeBytes(store(), "a shopping list");
    expectMadeAnew();
    QFile aside(store() + ".damaged");
    ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
    EXPECT_EQ(aside.readAll(), "a shopping list");
}

TEST_F(KeptTags, anotherProgramsDatabaseIsLeftWholeAndPutAside) {
    writeWav(file("a.wav"), {"One", {}, {}, {}, 0});
    sqlite3* db = nullptr;
    sqlite3_open(store().toUtf8().constData(), &db);
    ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE tracks(x)", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
    expectMadeAnew();
}

TEST_F(KeptTags, withoutAUsableDataFolderTagsAreReadAtEachStart) {
    writeWav(file("a.wav"), {"One", {}, {}, {}, 0});
    ASSERT_TRUE(QDir().rmdir(outside("data")));
    SoundFiles::writeBytes(outside("data"), "no folder");
    LogCapture log("Files");
    startAndScan();
    EXPECT_EQ(titles("files:tree"), QStringList{"One"});
    EXPECT_EQ(log.texts("WARN").join('|').toStdString(),
              ("tags are not kept: " + store() + " cannot be opened: unable to open database file")
                  .toStdString());
}

TEST_F(KeptTags, filesThatAreGoneAreForgottenWhenTheyAreMany) {
    for (int i = 0; i < 1100; ++i)
        writeWav(file(QString("many/%1.wav").arg(i)), {}, 10);
    writeWav(file("few/a.wav"), {}, 10);
    startAndScan();
    ASSERT_TRUE(QDir(file("few")).removeRecursively());
    startAgain();
    stop();
    EXPECT_EQ(rowsKept(), 1101) << "a disk may be missing for a while";
    ASSERT_TRUE(QDir(file("many")).removeRecursively());
    writeWav(file("b.wav"), {}, 10);
    startAndScan();
    stop();
    EXPECT_EQ(rowsKept(), 1);
}

TEST_F(KeptTags, aLinkThatCameInAFilesPlaceIsNotOpened) {
    writeWav(outside("secret.wav"), {"Secret", {}, {}, {}, 0});
    writeWav(file("a.wav"), {"One", {}, {}, {}, 0});
    TagWork work({});
    const std::vector<TagRequest> request = {{{file("a.wav"), 1, 1}, false}};
    EXPECT_EQ(work.read(request, file({}).chopped(1)).at(0)->title, "One");
    ASSERT_TRUE(QFile::remove(file("a.wav")));
    ASSERT_TRUE(QFile::link(outside("secret.wav"), file("a.wav")));
    LogCapture log("Files");
    EXPECT_EQ(work.read(request, file({}).chopped(1)).at(0)->title, "");
    EXPECT_EQ(
        log.texts("WARN"),
        QStringList{"not opened, it is no file of the music folder any more: " + file("a.wav")});
}

class Pictures : public FilesFixture {
protected:
    QString artwork(const QString& folder, int row = 0) const {
        return rows(folder).row(row).mediaData().metaData().artworkUrl();
    }
    QStringList kept() const { return QDir(outside("data/artwork")).entryList(QDir::Files); }
    void writeFlac(const QString& name, const QByteArray& picture) {
        ASSERT_TRUE(TaggedFiles::write(file(name), {}));
        ASSERT_TRUE(TaggedFiles::addPicture(file(name), picture));
    }
};

TEST_F(Pictures, insideOfFilesServeWhereTheFolderHasNone) {
    const QByteArray picture = TaggedFiles::png("cover");
    writeFlac("A/1.flac", picture);
    writeFlac("A/2.flac", picture);
    writeFlac("B/1.flac", TaggedFiles::png("unused"));
    SoundFiles::writeBytes(file("B/cover.jpg"), "x");
    startAndScan();
    ASSERT_EQ(kept().size(), 1) << "one for all that have the same, none where the folder has one";
    const QString name = outside("data/artwork/") + kept().constFirst();
    EXPECT_EQ(artwork("files:tree/A"), url(name));
    EXPECT_EQ(artwork("files:tree/A", 1), url(name));
    EXPECT_EQ(artwork("files:tree/B"), url(file("B/cover.jpg")));
    EXPECT_EQ(prepare({"files:tree/A/1.flac"}).value(0).artworkUrl(), url(name));
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), picture);
}

TEST_F(Pictures, areThereAtTheNextStartAndAreMadeAgainWhenTheyAreGone) {
    writeFlac("A/1.flac", TaggedFiles::png("cover"));
    startAndScan();
    const QString shown = artwork("files:tree/A");
    stop();
    startAndScan();
    EXPECT_EQ(artwork("files:tree/A"), shown);
    stop();
    ASSERT_TRUE(QDir(outside("data/artwork")).removeRecursively());
    startAndScan();
    EXPECT_EQ(artwork("files:tree/A"), shown);
    EXPECT_EQ(kept().size(), 1);
}

TEST_F(Pictures, thatAreNoneOrTooLargeAreLeftOut) {
    writeFlac("A/1.flac", "<svg/>");
    writeFlac("A/2.flac", TaggedFiles::png(QByteArray(PictureStore::MaxPictureBytes, 'x')));
    writeFlac("A/3.flac", TaggedFiles::png(QByteArray(PictureStore::MaxPictureBytes - 8, 'x')));
    startAndScan();
    EXPECT_EQ(artwork("files:tree/A", 0), "");
    EXPECT_EQ(artwork("files:tree/A", 1), "");
    EXPECT_NE(artwork("files:tree/A", 2), "");
    EXPECT_EQ(kept().size(), 1);
}

TEST_F(Pictures, beyondTheirLimitAreNotKeptWhichIsSaidOnce) {
    PictureStore store(outside("pictures"), 30);
    LogCapture log("Files");
    EXPECT_NE(store.keep(TaggedFiles::png("12345678")), "");
    EXPECT_EQ(store.keep(TaggedFiles::png("1234567")), "");
    EXPECT_EQ(store.keep(TaggedFiles::png("123456789")), "");
    EXPECT_NE(store.keep(TaggedFiles::png("12345678")), "") << "is there already";
    EXPECT_EQ(log.texts("WARN"), QStringList{"pictures of music files are not kept any more: "
                                             "there are 16 bytes of them"});
}

} // namespace
