#include <sys/stat.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QProcess>

#include "Device.h"

namespace {

QByteArray itemsJson(int count) {
    QByteArrayList items;
    for (int i = 0; i < count; ++i)
        items.append(
            R"({"title":"A","url":"file:///a.flac","serviceId":"files","orvoRoles":"{\"type\":3,\"title\":\"A\"}"})");
    return "[" + items.join(',') + "]";
}

QByteArray contents(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// check and backup, on the file of a real device.
class CtlStore : public ::testing::Test {
protected:
    // Two playlists with two tracks each, a collection with the first. The device is over then.
    void SetUp() override {
        ASSERT_TRUE(device.start());
        for (const char* plid : {"1", "2"}) {
            device.command("playlists:pl/create", R"({"name":"Party"})");
            device.command("playlists:pl/addExternalItems",
                           QByteArray(R"({"plid":)") + plid + ",\"items\":" + itemsJson(2) + "}");
        }
        device.command("playlists:cl/create", R"({"name":"Weekend"})");
        device.command("playlists:cl/addItem", R"({"clid":1,"plid":1})");
        device.kill();
        file = device.databaseFile();
    }

    void write(const QByteArray& bytes) {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        ASSERT_EQ(out.write(bytes), bytes.size());
    }
    // Checks it, and that the check changes nothing.
    Device::ProgramRun check() {
        const QByteArray before = contents(file);
        const QStringList entries = QDir(QFileInfo(file).path()).entryList();
        Device::ProgramRun result = device.ctl({"check", file});
        EXPECT_TRUE(contents(file) == before);
        EXPECT_EQ(QDir(QFileInfo(file).path()).entryList(), entries);
        return result;
    }

    Device device;
    QString file;
    QTemporaryDir folder;
};

} // namespace

TEST_F(CtlStore, aFileInOrderIsStatusZero) {
    const Device::ProgramRun result = check();
    EXPECT_EQ(result.status, 0) << qPrintable(result.err);
    EXPECT_EQ(result.out, file + " is in order: 2 playlists, 4 tracks, 1 collections\n");
    EXPECT_EQ(result.err, "");
    // The data folder stands for the file in it.
    const QString data = QDir::cleanPath(QFileInfo(file).path() + "/../..");
    EXPECT_EQ(device.ctl({"check", data}).out.section('/', -1),
              "playlists.sqlite is in order: 2 playlists, 4 tracks, 1 collections\n");
    EXPECT_EQ(device.ctl({"--json", "check", file}).out,
              QStringLiteral("{\"file\":\"%1\",\"findings\":[]}\n").arg(file));
}

TEST_F(CtlStore, eachBrokenRuleIsAFindingWithAnAdvice) {
    struct Row {
        const char* damage;
        const char* finding;
        const char* advice;
    };
    const Row rows[] = {
        {"UPDATE playlists_items SET sequenceNumber = 7 WHERE sequenceNumber = 1 AND playlist = 1",
         "playlist 1: its 2 entries are numbered from 0 to 7, with gaps", "Clear the playlist"},
        {"UPDATE playlists_items SET sequenceNumber = sequenceNumber + 1 WHERE playlist = 2"
         " AND sequenceNumber = 1; UPDATE playlists_items SET sequenceNumber = 1 WHERE"
         " playlist = 2 AND sequenceNumber = 0",
         "playlist 2: its 2 entries are numbered from 1 to 2, with gaps", "Clear the playlist"},
        {"DELETE FROM playlists_items WHERE playlist = 2", "2 tracks belong to no playlist",
         "The next start of the device mends this."},
        {"DELETE FROM items WHERE uid = 1", "playlist 1: entry 0 has no track", "Clear"},
        {"DELETE FROM items WHERE uid = 1",
         "SQLite: a row of playlists_items refers to a row of items that is not there", "backup"},
        {"DELETE FROM playlists WHERE uid = 2",
         "there are entries of playlist 2, which does not exist", "put back a backup"},
        {"DELETE FROM playlists WHERE uid = 1",
         "collection 1 names playlist 1, which does not exist", "Delete the collection"},
        {"DELETE FROM collections", "there are members of collection 1, which does not exist",
         "put back a backup"},
        {"DELETE FROM playlists WHERE uid = 0", "the play queue is missing", "next start"},
        {"INSERT INTO playlists_items VALUES (2, 1, 2)", "track 1 belongs to 2 entries",
         "add it again"},
        {"UPDATE playlists SET name = x'00' WHERE uid = 1", "playlist 1: its name is no text",
         "Set it anew"},
        {"UPDATE playlists SET shuffle = 2 WHERE uid = 1",
         "playlist 1: shuffle is 2, repeat is 0; each must be 0 or 1", "Set it anew"},
        {"UPDATE playlists SET lastPlayedIndex = 'x' WHERE uid = 1",
         "playlist 1: the last played position is 'x'", "Play the playlist"},
        {"INSERT INTO playlists(uid, name) VALUES (-4, 'x')",
         "playlist -4 has an id that no playlist can have", "put back a backup"},
        {"UPDATE items SET url = x'01' WHERE uid = 3",
         "track 3: title, address or service is no text", "add it again"},
        {"UPDATE items SET genre = x'01' WHERE uid = 3",
         "track 3: artist, album, artwork or genre is no text", "add it again"},
        {"UPDATE items SET durationSeconds = 'long' WHERE uid = 3",
         "track 3: the duration is 'long'", "add it again"},
        {"UPDATE items SET orvoRoles = '{' WHERE uid = 2",
         "track 2: its roles are none of an audio track", "add it again"},
        {"UPDATE collections SET name = ''", "collection 1: its name is no text", "make it again"},
        {"DROP TABLE collections_playlists", "cannot be read: no such table", "backup"},
    };
    const QByteArray whole = contents(file);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.damage);
        write(whole);
        // Foreign keys off: the rows that they refuse are damage, too.
        StoreFile(file).run(QStringLiteral("PRAGMA foreign_keys=0;") + row.damage);
        const Device::ProgramRun result = check();
        EXPECT_EQ(result.status, 1) << qPrintable(result.out);
        EXPECT_TRUE(result.out.contains(row.finding)) << qPrintable(result.out);
        EXPECT_TRUE(result.out.contains(row.advice)) << qPrintable(result.out);
        EXPECT_TRUE(result.err.contains("is not in order, findings: "));
    }
}

TEST_F(CtlStore, manyFindingsOfOneKindAreCutShort) {
    device.query("WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 40)"
                 " INSERT INTO playlists(uid, name) SELECT i, '' FROM n");
    const Device::ProgramRun result = check();
    EXPECT_EQ(result.out.count("its name is no text"), 10);
    EXPECT_TRUE(result.out.contains("… and 21 more of this kind\n")) << qPrintable(result.out);
}

TEST_F(CtlStore, damageBelowTheRowsIsFound) {
    const QByteArray whole = contents(file);
    // Every page but the first is garbled once.
    int found = 0;
    const int pages = whole.size() / 4096;
    for (int page = 1; page < pages; ++page) {
        write(QByteArray(whole).replace(page * 4096, 64, QByteArray(64, '\xa5')));
        const Device::ProgramRun result = check();
        EXPECT_EQ(result.status, 1) << "page " << page + 1 << qPrintable(result.out);
        found += result.out.contains("SQLite: ") || result.out.contains("cannot be read");
    }
    EXPECT_EQ(found, pages - 1);
    write(whole.left(whole.size() / 2));
    Device::ProgramRun result = check();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.out.contains("database disk image is malformed\n"))
        << qPrintable(result.out);
    write(whole.chopped(1));
    result = check();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.out.contains("the file ends in the middle of a page\n"));
    write("");
    result = check();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.out.contains("the file is empty\n")) << qPrintable(result.out);
}

TEST_F(CtlStore, whatCannotBeReadIsStatusTwo) {
    write(QByteArray("no database at all ").repeated(100));
    EXPECT_EQ(check().status, 2);
    QFile::remove(file);
    Device::ProgramRun result = device.ctl({"check", file});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "orvoctl: cannot read " + file + ": No such file or directory\n");
    result = device.ctl({"check", folder.path()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "orvoctl: cannot read " + folder.path() +
                              ": it is a folder without data-rw/playlists/playlists.sqlite\n");
    StoreFile(file).run("PRAGMA page_size=1024; CREATE TABLE bookmarks (id)");
    result = check();
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "orvoctl: " + file + " holds no playlists; is it another application's?\n");
    EXPECT_EQ(device.ctl({"check"}).status, 2);
    EXPECT_EQ(device.ctl({"backup", folder.filePath("none")}).status, 2);
}

TEST_F(CtlStore, theSettingsBesideItAreLookedAt) {
    QFile settings(QDir::cleanPath(QFileInfo(file).path() + "/../../settings.json"));
    ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
    settings.write(R"({"settings:playlists/databaseVacuum": "soon"})");
    settings.close();
    Device::ProgramRun result = check();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.out.contains(
        "settings.json: settings:playlists/databaseVacuum has a value of the wrong kind\n"));
    ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
    settings.write("{");
    settings.close();
    result = check();
    EXPECT_TRUE(result.out.contains("settings.json holds no settings\n")) << qPrintable(result.out);
}

TEST_F(CtlStore, anEditThatWasCutOffIsLeftOutAndTheFileNotTouched) {
    // A writer that has spilled half of its transaction into the file is killed: what it left is
    // kept as a copy, and the writer ends in order.
    const QByteArray whole = contents(file);
    StoreFile writer(file);
    writer.run("PRAGMA cache_size=1; PRAGMA cache_spill=1; BEGIN;"
               "UPDATE playlists SET name = 'half';"
               "UPDATE items SET title = printf('%.3000c', 'x');"
               "UPDATE items SET album = printf('%.9000c', 'x')");
    const QByteArray half = contents(file);
    const QByteArray journal = contents(file + "-journal");
    writer.run("ROLLBACK");
    writer.disconnect();
    ASSERT_TRUE(half != whole);
    write(half);
    QFile out(file + "-journal");
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(journal);
    out.close();

    const Device::ProgramRun result = check();
    EXPECT_EQ(result.status, 0) << qPrintable(result.out + result.err);
    EXPECT_TRUE(result.err.startsWith("an edit was cut off")) << qPrintable(result.err);
    EXPECT_TRUE(contents(file + "-journal") == journal);
    const QString target = folder.filePath("copy.sqlite");
    EXPECT_EQ(device.ctl({"backup", file, target}).status, 0);
    EXPECT_TRUE(contents(file + "-journal") == journal);
    write(contents(target));
    QFile::remove(file + "-journal");
    EXPECT_EQ(device.query("SELECT DISTINCT name FROM playlists WHERE uid > 0"),
              QStringList{"Party"});
}

TEST_F(CtlStore, aBackupGetsItsNameWhenItIsCheckedAndReplacesNothing) {
    const QString target = folder.filePath("kept.sqlite");
    Device::ProgramRun result = device.ctl({"backup", file, target});
    EXPECT_EQ(result.status, 0) << qPrintable(result.err);
    EXPECT_EQ(result.err, "copied 2 playlists, 4 tracks, 1 collections to " + target + "\n");
    EXPECT_EQ(device.ctl({"check", target}).status, 0);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{"kept.sqlite"});

    const QByteArray kept = contents(target);
    device.query("UPDATE playlists SET name = 'Later'");
    result = device.ctl({"backup", file, target});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "orvoctl: " + target + " is there already; --force replaces it\n");
    EXPECT_TRUE(contents(target) == kept);
    EXPECT_EQ(device.ctl({"backup", file, target, "--force"}).status, 0);
    EXPECT_FALSE(contents(target) == kept);
    EXPECT_EQ(device.ctl({"backup", file, file, "--force"}).status, 1);
    EXPECT_EQ(device.ctl({"backup", file, folder.filePath("no/such/folder")}).status, 1);

    // Into a folder: a name of its own.
    QDir(folder.path()).mkdir("many");
    const Device::ProgramRun named =
        device.ctl({"--json", "backup", file, folder.filePath("many")});
    const QString name =
        QJsonDocument::fromJson(named.out.toUtf8()).object().value("file").toString();
    EXPECT_TRUE(name.startsWith(folder.filePath("many/playlists-"))) << qPrintable(named.out);
    EXPECT_TRUE(QFile::exists(name));
}

TEST_F(CtlStore, aBackupOfWhatIsNotInOrderIsKeptUnderAnotherName) {
    device.query("UPDATE playlists_items SET sequenceNumber = 7 WHERE sequenceNumber = 1");
    const QString target = folder.filePath("copy.sqlite");
    const Device::ProgramRun result = device.ctl({"backup", file, target});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.out.contains("with gaps"));
    EXPECT_TRUE(result.err.contains("the copy is kept as " + target + ".damaged"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{"copy.sqlite.damaged"});
}

TEST_F(CtlStore, aDeviceIsCopiedWhileItIsEdited) {
    ASSERT_TRUE(device.start());
    for (int i = 0; i < 8; ++i)
        device.command("playlists:pl/addExternalItems",
                       R"({"plid":1,"items":)" + itemsJson(1500) + "}");
    qint64 longest = 0;
    int edits = 0;
    for (int round = 0; round < 4; ++round) {
        const QString target = folder.filePath(QStringLiteral("copy%1").arg(round));
        const int before = edits;
        QProcess backup;
        backup.start(QStringLiteral(ORVOCTL), {"backup", file, target});
        ASSERT_TRUE(backup.waitForStarted());
        while (backup.state() != QProcess::NotRunning) {
            QElapsedTimer timer;
            timer.start();
            const HttpAnswer answer = device.command("playlists:pl/create", R"({"name":"New"})");
            longest = qMax(longest, timer.elapsed());
            ASSERT_EQ(answer.status, 200) << answer.body.constData();
            ++edits;
            device.command(
                "playlists:pl/setName",
                QStringLiteral(R"({"plid":%1,"name":"New %1"})").arg(edits + 2).toUtf8());
        }
        ASSERT_EQ(backup.exitCode(), 0) << backup.readAllStandardError().constData();
        EXPECT_GT(edits, before) << "nothing was edited meanwhile";
        const QString text = QString::fromUtf8(backup.readAllStandardError());
        const int copied = text.section(' ', 1, 1).toInt() - 2;
        EXPECT_GE(copied, before) << qPrintable(text);
        EXPECT_LE(copied, edits) << qPrintable(text);
    }
    RecordProperty("edits", edits);
    RecordProperty("longestMs", int(longest));
    EXPECT_LT(longest, 5000);
    device.kill();
    device.expectInvariants();
    EXPECT_EQ(device.query("SELECT count(*) FROM playlists WHERE name LIKE 'New %'"),
              QStringList{QString::number(edits)})
        << "a rename was answered and lost";
}
