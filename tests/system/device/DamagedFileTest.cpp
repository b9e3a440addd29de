#include <sys/mount.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>

#include "Device.h"

namespace {

const QByteArray trackText =
    R"({"title":"A","url":"file:///a.flac","serviceId":"files","orvoRoles":"{\"type\":3,\"title\":\"A\"}"})";

// A store that a device cannot use: it says so, ends, and leaves the file as it is.
class DamagedFile : public ::testing::Test {
protected:
    QString folder() const { return QFileInfo(device.databaseFile()).path(); }

    void write(const QByteArray& bytes) {
        QDir().mkpath(folder());
        QFile file(device.databaseFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
    QByteArray read() const {
        QFile file(device.databaseFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // What a device with two playlists has left; a vacuum is owed.
    void writeUsedFile() {
        ASSERT_TRUE(device.start());
        for (int i = 0; i < 40; ++i) {
            device.command("playlists:pl/create", R"({"name":"Party"})");
            device.command("playlists:pl/addExternalItems",
                           R"({"plid":1,"items":[)" + trackText + "," + trackText + "]}");
        }
        device.command("playlists:pl/delete", R"({"plid":2})");
        device.kill();
    }
    void run(const char* sql) {
        QDir().mkpath(folder());
        StoreFile(device.databaseFile()).run(sql);
    }

    // `reason` is the module's own line at fatal level.
    void expectRefused(const QString& reason) {
        const QByteArray before = read();
        const QStringList entries = QDir(folder()).entryList(QDir::Files);
        const Device::ProgramRun ending = device.failingStart();
        EXPECT_EQ(ending.status, -1) << "ended by its assertion";
        EXPECT_FALSE(ending.out.contains("ready"));
        EXPECT_TRUE(ending.err.contains("FATAL PlayLists - " + reason + "\n"))
            << qPrintable(ending.err);
        const QString message = QStringLiteral("orvo-host: cannot use the playlists in %1 "
                                               "(left as it is): %2\n")
                                    .arg(device.databaseFile(), reason);
        EXPECT_TRUE(ending.err.endsWith(message)) << qPrintable(ending.err);
        EXPECT_TRUE(read() == before) << "the file has changed";
        EXPECT_EQ(QDir(folder()).entryList(QDir::Files), entries);
    }

    Device device;
};

// A disk of a few pages that is full, if this process may mount one.
class FullDisk {
public:
    explicit FullDisk(const QString& folder) : m_folder(folder.toUtf8()) {
        QDir().mkpath(folder);
        m_mounted = mount("none", m_folder.constData(), "tmpfs", 0, "size=64k") == 0;
    }
    ~FullDisk() {
        if (m_mounted)
            umount(m_folder.constData());
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    bool mounted() const { return m_mounted; }
    void fill() const {
        QFile filler(QString::fromUtf8(m_folder + "/filler"));
        ASSERT_TRUE(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (filler.write(QByteArray(4096, 'x')) == 4096) {
        }
    }

private:
    QByteArray m_folder;
    bool m_mounted = false;
};

} // namespace

TEST_F(DamagedFile, aTextFileEndsTheStartAndStays) {
    write(QByteArray("A shopping list is no database. ").repeated(100));
    expectRefused("Unable to create table playlists: file is not a database");
}

TEST_F(DamagedFile, aFewBytesEndTheStartAndStay) {
    // Too short for a page: SQLite itself would take it for an empty file.
    write("x");
    expectRefused("Unable to open PlayList database file: file is not a database");
}

TEST_F(DamagedFile, aTruncatedFileEndsTheStartAndStays) {
    writeUsedFile();
    const QByteArray whole = read();
    const QString malformed = "Unable to create table playlists: database disk image is malformed";
    const QString open = "Unable to open PlayList database file: ";
    const QList<QPair<int, QString>> rows = {
        {whole.size() / 2, malformed},
        {4096, malformed},
        {600, malformed},
        {whole.size() - 1, open + "database disk image is malformed"},
        {100, open + "file is not a database"}, // shorter than any page
    };
    for (const auto& [length, reason] : rows) {
        SCOPED_TRACE(length);
        write(whole.left(length));
        expectRefused(reason);
    }
}

TEST_F(DamagedFile, aFileWithAGarbledBeginningEndsTheStartAndStays) {
    writeUsedFile();
    const QByteArray whole = read();
    QByteArray garbled = whole;
    garbled.replace(0, 16, QByteArray(16, '\xa5'));
    write(garbled);
    expectRefused("Unable to create table playlists: file is not a database");
    // The header is whole, the schema behind it is not.
    garbled = whole;
    garbled.replace(100, 3996, QByteArray(3996, '\xa5'));
    write(garbled);
    expectRefused("Unable to create table playlists: database disk image is malformed");
}

TEST_F(DamagedFile, anotherApplicationsFileEndsTheStartAndStays) {
    run("CREATE TABLE bookmarks (id INTEGER PRIMARY KEY, address TEXT);"
        "INSERT INTO bookmarks(address) VALUES ('a'), ('b')");
    expectRefused("Unable to open PlayList database file: file is not a database");
}

TEST_F(DamagedFile, anotherApplicationsFileWithTablesOfTheSameNamesEndsTheStartAndStays) {
    run("CREATE TABLE playlists (id INTEGER PRIMARY KEY, label TEXT);"
        "CREATE TABLE items (id INTEGER PRIMARY KEY, url TEXT)");
    expectRefused(
        "Unable to create table createplayqueue: table playlists has no column named uid");
    QFile::remove(device.databaseFile());
    run("CREATE TABLE items (id INTEGER PRIMARY KEY, label TEXT)");
    expectRefused("Unable to create table items: no such column: url");
}

TEST_F(DamagedFile, aReadOnlyFileEndsTheStartAndStays) {
    writeUsedFile();
    ASSERT_EQ(chmod(device.databaseFile().toUtf8().constData(), 0444), 0);
    expectRefused("Unable to create table createplayqueue: attempt to write a readonly database");
}

TEST_F(DamagedFile, aFileThatMayNotBeReadEndsTheStart) {
    writeUsedFile();
    ASSERT_EQ(chmod(device.databaseFile().toUtf8().constData(), 0), 0);
    const Device::ProgramRun ending = device.failingStart();
    EXPECT_EQ(ending.status, -1);
    EXPECT_TRUE(ending.err.contains(
        "Unable to open PlayList database file: unable to open database file\n"))
        << qPrintable(ending.err);
}

TEST_F(DamagedFile, aFolderInItsPlaceEndsTheStart) {
    QDir().mkpath(device.databaseFile());
    expectRefused("Unable to open PlayList database file: unable to open database file");
    EXPECT_TRUE(QFileInfo(device.databaseFile()).isDir());
}

TEST_F(DamagedFile, aFileWhereItsFolderIsToBeEndsTheStart) {
    QDir().mkpath(QFileInfo(folder()).path());
    QFile inTheWay(folder());
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    expectRefused("Unable to create directory for PlayList database file");
}

TEST_F(DamagedFile, aFullDiskEndsTheFirstStart) {
    const FullDisk disk(folder());
    if (disk.mounted()) {
        disk.fill();
        const Device::ProgramRun ending = device.failingStart();
        EXPECT_EQ(ending.status, -1);
        EXPECT_TRUE(ending.err.contains(
            "FATAL PlayLists - Unable to create table playlists: database or disk is full\n"))
            << qPrintable(ending.err);
        EXPECT_EQ(read(), QByteArray());
    }
    // Without privileges: no file may grow beyond what the settings need.
    Device limited;
    limited.limitFileSize(2000);
    const Device::ProgramRun ending = limited.failingStart();
    EXPECT_EQ(ending.status, -1);
    EXPECT_TRUE(
        ending.err.contains("FATAL PlayLists - Unable to create table playlists: disk I/O error\n"))
        << qPrintable(ending.err);
}

TEST_F(DamagedFile, aFullDiskLaterRefusesEditsAndKeepsTheFile) {
    const FullDisk disk(folder());
    if (!disk.mounted())
        GTEST_SKIP() << "no disk can be mounted here";
    ASSERT_TRUE(device.start());
    device.command("playlists:pl/create", R"({"name":"Party"})");
    device.kill();
    disk.fill();
    const QByteArray before = read();
    ASSERT_TRUE(device.start());
    EXPECT_EQ(device.command("playlists:pl/create", R"({"name":"Late"})").errorMessage(),
              "Could not create playlist. Create playlist error.");
    EXPECT_EQ(device.titles("playlists:pl/list"), (QStringList{"Create new playlist", "Party"}));
    device.kill();
    EXPECT_TRUE(read() == before);
    device.expectInvariants();
}

TEST_F(DamagedFile, anEmptyFileIsANewOne) {
    write("");
    ASSERT_TRUE(device.start());
    device.kill();
    EXPECT_EQ(device.query("SELECT * FROM playlists"), QStringList{"0|PlayQueue|0|0|-1"});
    device.expectInvariants();
}
