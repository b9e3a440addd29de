#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QUrl>

#include "GatewayFixture.h"
#include "RawSocket.h"

namespace {

class GatewayArtwork : public GatewayFixture {
protected:
    void SetUp() override {
        QDir(m_folder.path()).mkpath(QStringLiteral("music/A & B"));
        QDir(m_folder.path()).mkpath(QStringLiteral("music-private"));
        write("music/A & B/cover.png", "png");
        write("music/A & B/song.flac", "flac");
        write("music/A & B/drawing.svg", "<svg/>");
        write("music-private/cover.png", "private");
        write("secret.png", "secret");
        write("secret.txt", "secret");
        link("secret.png", "music/outside.png");
        link("secret.txt", "music/named-like-a-picture.png");
        link("music/A & B/song.flac", "music/song.png");
        link("music/A & B/cover.png", "music/inside.png");
        restart({{"musicDir", m_folder.filePath("music")}});
    }

    void write(const char* name, const QByteArray& text) {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    void link(const char* to, const char* name) {
        ASSERT_TRUE(QFile::link(m_folder.filePath(QString::fromLatin1(to)),
                                m_folder.filePath(QString::fromLatin1(name))));
    }
    // Far more than the kernel takes for a client that does not read.
    static QByteArray largePicture() {
        QByteArray text;
        for (int i = 0; i < 2000000; ++i)
            text += QByteArray::number(i);
        return text;
    }
    std::unique_ptr<RawSocket> askAndDoNotRead(const char* name) {
        auto socket = std::make_unique<RawSocket>(port());
        socket->write("GET /api/artwork?uri=" + fileUrl(name).toPercentEncoding() +
                      " HTTP/1.1\r\nHost: localhost\r\n\r\n");
        EXPECT_TRUE(waitUntil([&] { return socket->hasBytes(); }));
        return socket;
    }
    QByteArray fileUrl(const char* name) {
        return QUrl::fromLocalFile(m_folder.filePath(QString::fromLatin1(name))).toEncoded();
    }
    HttpAnswer ask(const QByteArray& uri, const QByteArray& headers = {}) {
        HttpClient http(port());
        return http.send("GET", "/api/artwork?uri=" + uri.toPercentEncoding(), {}, headers);
    }
};

} // namespace

TEST_F(GatewayArtwork, aPictureOfTheMusicFolderIsServedAndMayBeKept) {
    const HttpAnswer answer = ask(fileUrl("music/A & B/cover.png"));
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body, "png");
    EXPECT_EQ(answer.headers.value("content-type"), "image/png");
    EXPECT_EQ(answer.headers.value("cache-control"), "private, max-age=600");
    EXPECT_EQ(answer.headers.value("x-content-type-options"), "nosniff");
    const QByteArray tag = answer.headers.value("etag");
    ASSERT_FALSE(tag.isEmpty());
    EXPECT_EQ(ask(fileUrl("music/A & B/cover.png"), "If-None-Match: " + tag + "\r\n").status, 304);
    EXPECT_EQ(ask(fileUrl("music/inside.png")).body, "png");
}

TEST_F(GatewayArtwork, nothingOutsideTheMusicFolderIsServed) {
    const QByteArray music = fileUrl("music");
    for (const QByteArray& uri :
         {fileUrl("secret.png"), fileUrl("music-private/cover.png"), fileUrl("music/outside.png"),
          music + "/../secret.png", music + "/%2e%2e/secret.png",
          music + "/A%20&%20B/../../secret.png", music + "/../music-private/cover.png", music,
          music + "/"})
        EXPECT_EQ(ask(uri).status, 404) << uri.toStdString();
}

TEST_F(GatewayArtwork, picturesFromInsideOfMusicFilesAreServedFromTheDataFolderAndNothingElse) {
    QDir(m_folder.path()).mkpath(QStringLiteral("data/artwork"));
    write("data/artwork/kept.png", "kept");
    write("data/other.png", "other");
    write("data/files.sqlite", "tags");
    link("data/files.sqlite", "data/artwork/link.png");
    EXPECT_EQ(ask(fileUrl("data/artwork/kept.png")).status, 404);
    restart({{"musicDir", m_folder.filePath("music")}, {"dataDir", m_folder.filePath("data")}});
    EXPECT_EQ(ask(fileUrl("data/artwork/kept.png")).body, "kept");
    EXPECT_EQ(ask(fileUrl("music/A & B/cover.png")).body, "png");
    for (const char* name : {"data/other.png", "data/files.sqlite", "data/artwork/link.png"})
        EXPECT_EQ(ask(fileUrl(name)).status, 404) << name;
}

TEST_F(GatewayArtwork, nothingButPicturesIsServed) {
    for (const char* name :
         {"music/A & B/song.flac", "music/A & B/drawing.svg", "music/A & B",
          "music/named-like-a-picture.png", "music/song.png", "music/nothing.png"})
        EXPECT_EQ(ask(fileUrl(name)).status, 404) << name;
}

TEST_F(GatewayArtwork, onlyFileUrlsOfThisDeviceNameAPicture) {
    const QByteArray path = QUrl::fromLocalFile(m_folder.filePath("music/A & B/cover.png"))
                                .path(QUrl::FullyEncoded)
                                .toLatin1();
    for (const QByteArray& uri : {QByteArray("http://127.0.0.1") + path, "file://elsewhere" + path,
                                  path, "qrc:" + path, QByteArray(""), QByteArray("file:"),
                                  "file://" + path + "%00.png", "file://" + path + "%zz"})
        EXPECT_EQ(ask(uri).status, 404) << uri.toStdString();
    HttpClient http(port());
    EXPECT_EQ(http.get("/api/artwork").status, 400);
    EXPECT_EQ(http.post("/api/artwork?uri=x", {}).status, 405);
}

TEST_F(GatewayArtwork, withoutAMusicFolderThereAreNoPictures) {
    restart();
    EXPECT_EQ(ask(fileUrl("music/A & B/cover.png")).status, 404);
    EXPECT_EQ(ask("file:///etc/hostname").status, 404);
}

TEST_F(GatewayArtwork, aLargePictureComesWhole) {
    const QByteArray picture = largePicture();
    write("music/large.png", picture);
    EXPECT_EQ(ask(fileUrl("music/large.png")).body, picture);
    write("music/empty.png", "");
    const HttpAnswer empty = ask(fileUrl("music/empty.png"));
    EXPECT_EQ(empty.status, 200);
    EXPECT_EQ(empty.body, "");
}

TEST_F(GatewayArtwork, headOfAPictureNamesItsLength) {
    write("music/large.png", largePicture());
    HttpClient http(port());
    http.write("HEAD /api/artwork?uri=" + fileUrl("music/large.png").toPercentEncoding() +
               " HTTP/1.1\r\nHost: localhost\r\n\r\n");
    const HttpAnswer answer = http.readAnswer(true);
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.headers.value("content-length"), QByteArray::number(largePicture().size()));
    EXPECT_FALSE(answer.headers.value("etag").isEmpty());
    EXPECT_EQ(http.get("/api/paths").status, 200);
}

TEST_F(GatewayArtwork, aPictureThatGrowsMeanwhileHasTheSizeItHadAtFirst) {
    const QByteArray picture = largePicture();
    write("music/large.png", picture);
    const auto client = askAndDoNotRead("music/large.png");
    QFile file(m_folder.filePath("music/large.png"));
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("more");
    file.close();
    client->write("GET /api/paths HTTP/1.1\r\nHost: localhost\r\n\r\n");
    QByteArray got;
    EXPECT_TRUE(waitUntil([&] {
        got = client->read();
        return got.endsWith('}');
    }));
    EXPECT_TRUE(got.contains("\r\n\r\n" + picture + "HTTP/1.1 200 OK\r\n"));
}

TEST_F(GatewayArtwork, aPictureThatShrinksMeanwhileEndsItsConnectionAndNoOther) {
    write("music/large.png", largePicture());
    const auto client = askAndDoNotRead("music/large.png");
    const auto gone = askAndDoNotRead("music/large.png");
    ASSERT_EQ(::truncate(QFile::encodeName(m_folder.filePath("music/large.png")).constData(), 10),
              0);
    ASSERT_TRUE(QFile::remove(m_folder.filePath("music/large.png")));
    QByteArray got;
    EXPECT_TRUE(waitUntil([&] {
        got = client->read();
        return client->isClosed();
    }));
    EXPECT_LT(got.size(), largePicture().size());
    EXPECT_EQ(ask(fileUrl("music/A & B/cover.png")).body, "png");
}

TEST_F(GatewayArtwork, aPipeIsNoPictureAndIsNotWaitedFor) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(m_folder.filePath("music/pipe.png")).constData(), 0600),
              0);
    EXPECT_EQ(ask(fileUrl("music/pipe.png")).status, 404);
}

TEST_F(GatewayArtwork, onlySoManyFilesAreSentAtATime) {
    write("music/large.png", largePicture());
    restart({{"musicDir", m_folder.filePath("music")}, {"gateway/maxFiles", "2"}});
    auto first = askAndDoNotRead("music/large.png");
    const auto second = askAndDoNotRead("music/large.png");
    const HttpAnswer refused = ask(fileUrl("music/A & B/cover.png"));
    EXPECT_EQ(refused.status, 503);
    EXPECT_EQ(refused.headers.value("retry-after"), "1");
    EXPECT_EQ(refused.body, R"({"error":{"name":"TooManyAnswers","title":"Too many answers",)"
                            R"("message":"Too many answers wait to be taken."}})");
    // What needs no file is answered, and a place that is given back is taken.
    EXPECT_EQ(HttpClient(port()).get("/api/paths").status, 200);
    first.reset();
    EXPECT_TRUE(waitUntil([&] { return ask(fileUrl("music/A & B/cover.png")).status == 200; }));
}
