#include <memory>
#include <vector>

#include <QFile>
#include <QUrl>

#include "Device.h"
#include "RawSocket.h"

// Small questions with large answers: what the built device answers, and what it still has in
// memory when they are over.

namespace {

constexpr qint64 MiB = 1024 * 1024;
// What memory may stay after an attack.
constexpr qint64 MaxKept = 16 * MiB;

// A sanitizer's allocator keeps what is freed.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool KeepsFreed = true;
#else
constexpr bool KeepsFreed = false;
#endif
#else
constexpr bool KeepsFreed = false;
#endif

class AnswerLimitsTest : public ::testing::Test {
protected:
    void start(const QStringList& more) {
        m_device = std::make_unique<Device>(QStringList{"--audio-sink", "null"} + more);
        ASSERT_TRUE(m_device->start());
        m_device->waitForScan();
    }

    QByteArray item(int letters) const {
        return R"({"title":"Long","orvoRoles":"{\"title\":\"Long\",\"type\":3,\"mediaData\":)"
               R"({\"metaData\":{\"artist\":\")" +
               QByteArray(letters, 'x') +
               R"(\",\"prePlayPath\":\"files:prePlay\"},\"resources\":[{\"uri\":)"
               R"(\"file:///music/long.flac\"}]}}"})";
    }

    // A playlist of that many items; its id.
    QByteArray listOf(int items, int letters) {
        const HttpAnswer created = m_device->command("playlists:pl/create", R"({"name":"Long"})");
        const QByteArray id = QByteArray::number(created.json()["result"]
                                                     .toObject()["result"]
                                                     .toObject()["value"]
                                                     .toObject()["i32"]
                                                     .toInt());
        QByteArray list;
        for (int i = 0; i < items; ++i)
            list += (i > 0 ? "," : "") + item(letters);
        EXPECT_EQ(m_device
                      ->command("playlists:pl/addExternalItems",
                                R"({"plid":)" + id + R"(,"mode":2,"items":[)" + list + "]}")
                      .status,
                  200);
        return id;
    }

    // Resident bytes, and the most that there were since resetPeak().
    qint64 resident() const { return KeepsFreed ? 0 : status("VmRSS:"); }
    qint64 peak() const { return KeepsFreed ? 0 : status("VmHWM:"); }
    void resetPeak() const {
        QFile file(QStringLiteral("/proc/%1/clear_refs").arg(m_device->pid()));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("5");
    }

    static void expectRefusal(const HttpAnswer& answer) {
        EXPECT_EQ(answer.status, 422);
        EXPECT_EQ(answer.errorName(), "AnswerTooLarge");
        EXPECT_EQ(answer.errorMessage(), "Ask for fewer rows.");
    }

    std::unique_ptr<Device> m_device;

private:
    qint64 status(const char* name) const {
        QFile file(QStringLiteral("/proc/%1/status").arg(m_device->pid()));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith(name))
                return line.mid(int(qstrlen(name))).trimmed().split(' ').first().toLongLong() *
                       1024;
        }
        return -1;
    }
};

} // namespace

TEST_F(AnswerLimitsTest, aCommandThatRepeatsALargeItemIsRefused) {
    start({"--config", "gateway/maxAnswerBytes=1000000"});
    const QByteArray id = listOf(1, 50000);
    HttpClient http(m_device->port());
    const HttpAnswer row = http.get("/api/rows?path=playlists:pl/items/" + id + "&roles=path");
    const QByteArray path = row.json()["rows"].toArray()[0].toObject()["path"].toString().toUtf8();
    QByteArray paths = "\"" + path + "\"";
    EXPECT_EQ(m_device->command("playlists:prepareItems", "[" + paths + "]").status, 200);
    for (int i = 0; i < 500; ++i)
        paths += ",\"" + path + "\"";
    resetPeak();
    const qint64 before = resident();
    expectRefusal(m_device->command("playlists:prepareItems", "[" + paths + "]"));
    EXPECT_LT(peak() - before, 2 * MaxKept);
    EXPECT_LT(resident() - before, MaxKept);
}

TEST_F(AnswerLimitsTest, rowsThatAreTooManyAreRefusedAndFewerCome) {
    start({"--config", "gateway/maxAnswerBytes=1000000"});
    const QByteArray rows = "/api/rows?path=playlists:pl/items/" + listOf(60, 50000);
    HttpClient http(m_device->port());
    resetPeak();
    const qint64 before = resident();
    for (int i = 0; i < 5; ++i)
        expectRefusal(http.get(rows));
    EXPECT_LT(peak() - before, 4 * MaxKept);
    EXPECT_LT(resident() - before, MaxKept);
    EXPECT_EQ(http.get(rows + "&from=0&to=9").json()["rows"].toArray().size(), 10);
    EXPECT_EQ(http.get(rows + "&roles=title").json()["rows"].toArray().size(), 60);
}

TEST_F(AnswerLimitsTest, aBodyOfCountlessValuesIsRefused) {
    start({});
    for (const QByteArray& value : {QByteArray("[],"), QByteArray("{},"), QByteArray("1,"),
                                    QByteArray(R"({"a":1},)"), QByteArray(R"("",)")}) {
        QByteArray list = value.repeated(int(8 * MiB - 100) / value.size());
        list.chop(1);
        resetPeak();
        const qint64 before = resident();
        const HttpAnswer answer = m_device->command("playlists:prepareItems", "[" + list + "]");
        EXPECT_EQ(answer.status, 400) << value.toStdString();
        EXPECT_EQ(answer.errorMessage(), "The body has more than 250000 values.");
        EXPECT_LT(peak() - before, 100 * MiB) << value.toStdString();
        EXPECT_LT(resident() - before, MaxKept) << value.toStdString();
    }
}

TEST_F(AnswerLimitsTest, picturesThatNoClientReadsAreNotHeld) {
    start({});
    QFile file(m_device->musicFolder() + "/large.png");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(16 * MiB));
    const QByteArray request =
        "GET /api/artwork?uri=" +
        QUrl::fromLocalFile(file.fileName()).toEncoded().toPercentEncoding() +
        " HTTP/1.1\r\nHost: localhost\r\n\r\n";
    HttpClient http(m_device->port());
    EXPECT_EQ(http.get("/api/paths").status, 200);
    resetPeak();
    const qint64 before = resident();
    std::vector<std::unique_ptr<RawSocket>> crowd;
    for (int i = 0; i < 50; ++i) {
        crowd.push_back(std::make_unique<RawSocket>(m_device->port()));
        crowd.back()->write(request);
    }
    for (const auto& socket : crowd) {
        EXPECT_TRUE(socket->isOpen());
        while (!socket->hasBytes())
            EXPECT_EQ(http.get("/api/paths").status, 200);
    }
    EXPECT_LT(peak() - before, MaxKept);
    crowd.clear();
    EXPECT_EQ(http.get("/api/paths").status, 200);
    EXPECT_LT(resident() - before, MaxKept);
}
