#include <csignal>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include "Device.h"

namespace {

const QByteArray track =
    R"({"title":"A","url":"file:///a.flac","serviceId":"files","orvoRoles":"{\"type\":3,\"title\":\"A\"}"})";
const QByteArray addOne = R"({"plid":1,"items":[)" + track + "]}";

constexpr int MaxEndMs = 2000;

const char* const Reading = "BEGIN; SELECT count(*) FROM items;";
const char* const Writing = "BEGIN IMMEDIATE;";
const char* const Alone = "BEGIN EXCLUSIVE;";

class HeldStore : public ::testing::Test {
protected:
    // One playlist, with nothing in it.
    void startWithParty() {
        ASSERT_TRUE(device.start());
        ASSERT_EQ(device.command("playlists:pl/create", R"({"name":"Party"})").status, 200);
    }
    QStringList stored() const { return device.query("SELECT title FROM items"); }
    QByteArray read() const {
        QFile file(device.databaseFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // Without waiting for the answer.
    void begin(const QByteArray& path, const QByteArray& value) {
        client = std::make_unique<HttpClient>(device.port());
        const QByteArray body = "{\"path\":\"" + path + "\",\"value\":" + value + "}";
        client->write("POST /api/data HTTP/1.1\r\nHost: localhost\r\nContent-Type: "
                      "application/json\r\nContent-Length: " +
                      QByteArray::number(body.size()) + "\r\n\r\n" + body);
        client->socket().waitForBytesWritten();
        constexpr int UntilItWaitsMs = 700;
        QThread::msleep(UntilItWaitsMs);
    }
    // Tells the device to end once; how long that took.
    qint64 endMs(int* status) {
        QElapsedTimer clock;
        clock.start();
        *status = device.end();
        return clock.elapsed();
    }

    Device device{{"--audio-sink", "null", "--config", "playlists/startWaitMs=1000"}};
    // Another process that holds the file: this one. A lock stays until it disconnects.
    StoreFile other{device.databaseFile()};
    std::unique_ptr<HttpClient> client;
};

} // namespace

TEST_F(HeldStore, anAdditionWaitsForAReaderToFinish) {
    startWithParty();
    other.run(Reading);
    begin("playlists:pl/addExternalItems", addOne);
    EXPECT_EQ(client->socket().bytesAvailable(), 0) << "it waits";
    other.disconnect();
    EXPECT_EQ(client->readAnswer().status, 200);
    EXPECT_EQ(stored(), QStringList("A"));
    device.expectInvariants();
}

TEST_F(HeldStore, aDeviceThatIsToldToEndGivesUpTheCommit) {
    for (const char* path : {"playlists:pl/addExternalItems", "playlists:pl/moveItems",
                             "playlists:pl/removeItems", "playlists:pl/delete"}) {
        SCOPED_TRACE(path);
        ASSERT_TRUE(device.start());
        device.command("playlists:pl/create", R"({"name":"Party"})");
        const QByteArray id = device.query("SELECT max(uid) FROM playlists").first().toUtf8();
        const QByteArray plid = R"({"plid":)" + id + ",";
        device.command("playlists:pl/addExternalItems",
                       plid + R"("items":[)" + track + "," + track + "]}");
        const char* const content = "SELECT playlist, item, sequenceNumber FROM playlists_items"
                                    " UNION ALL SELECT uid, title, url FROM items"
                                    " UNION ALL SELECT uid, name, shuffle FROM playlists";
        const QStringList before = device.query(content);

        other.run(Reading);
        begin(path, plid + R"("to":0,"items":[)" +
                        (QByteArray(path).endsWith("ExternalItems") ? track : QByteArray("1")) +
                        "]}");
        int status = -1;
        EXPECT_LT(endMs(&status), MaxEndMs);
        EXPECT_EQ(status, 0) << "an ordinary end";
        EXPECT_TRUE(device.log().contains("ERROR PlayLists - Commit transaction failed\n"));
        other.disconnect();
        EXPECT_EQ(device.query(content), before) << "rolled back";
        device.expectInvariants();
    }
}

TEST_F(HeldStore, anEditThatIsGivenUpIsRefusedWithItsOwnText) {
    startWithParty();
    other.run(Reading);
    begin("playlists:pl/addExternalItems", addOne);
    int status = -1;
    EXPECT_LT(endMs(&status), MaxEndMs);
    const HttpAnswer answer = client->readAnswer();
    EXPECT_EQ(answer.errorMessage(),
              "Could not add external items to playlist. No items were added.");
}

TEST_F(HeldStore, anEditThatGetsNoLockIsRefusedSoon) {
    startWithParty();
    other.run(Writing);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(device.command("playlists:pl/addExternalItems", addOne).errorMessage(),
              "Could not add external items to playlist. No items were added.");
    EXPECT_EQ(device.command("playlists:pl/create", R"({"name":"Quiet"})").errorMessage(),
              "Could not create playlist. Create playlist error.");
    EXPECT_LT(clock.elapsed(), 5000);
    int status = -1;
    EXPECT_LT(endMs(&status), MaxEndMs);
    EXPECT_EQ(status, 0);
}

TEST_F(HeldStore, aStartThatWaitsInVainSaysSoAndEnds) {
    startWithParty();
    device.kill();
    const QByteArray before = read();
    for (const char* lock : {Reading, Writing, Alone}) {
        SCOPED_TRACE(lock);
        other.run(lock);
        const Device::ProgramRun ending = device.failingStart();
        EXPECT_EQ(ending.status, 1);
        EXPECT_FALSE(ending.out.contains("ready"));
        EXPECT_EQ(ending.err.count("WARN  PlayLists - Another process holds the PlayList database "
                                   "file, waiting for it for up to 1000 ms\n"),
                  1)
            << qPrintable(ending.err);
        EXPECT_TRUE(ending.err.contains("FATAL PlayLists - Unable to open PlayList database file: "
                                        "database is locked\n"))
            << qPrintable(ending.err);
        EXPECT_TRUE(ending.err.endsWith(
            QStringLiteral(": cannot use the playlists in %1 (left as it is): another process "
                           "holds it\n")
                .arg(device.databaseFile())))
            << qPrintable(ending.err);
        other.disconnect();
    }
    EXPECT_TRUE(read() == before) << "the file has changed";
}

TEST_F(HeldStore, theVeryFirstStartWaitsToo) {
    QDir().mkpath(QFileInfo(device.databaseFile()).path());
    other.run(Alone);
    EXPECT_EQ(device.failingStart().status, 1);
}

TEST_F(HeldStore, aStartGoesOnWhenTheFileIsLetGo) {
    startWithParty();
    device.kill();
    int starts = 0;
    for (const char* lock : {Reading, Writing, Alone}) {
        SCOPED_TRACE(lock);
        other.run(lock);
        ASSERT_TRUE(device.launch());
        ASSERT_TRUE(device.waitForLog("waiting for it for up to 1000 ms", ++starts));
        other.disconnect();
        ASSERT_TRUE(device.waitUntilReady());
        EXPECT_EQ(device.titles("playlists:pl/list").last(), "Party");
        device.kill();
    }
}

TEST_F(HeldStore, aStartThatWaitsEndsWhenItIsTold) {
    Device patient;
    QDir().mkpath(QFileInfo(patient.databaseFile()).path());
    StoreFile held(patient.databaseFile());
    held.run(Alone);
    ASSERT_TRUE(patient.launch());
    ASSERT_TRUE(patient.waitForLog("waiting for it for up to 10000 ms"));
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(patient.end(), 0);
    EXPECT_LT(clock.elapsed(), MaxEndMs);
    EXPECT_TRUE(patient.log().contains("ending during the start"));
    EXPECT_FALSE(patient.log().contains("FATAL"));
}
