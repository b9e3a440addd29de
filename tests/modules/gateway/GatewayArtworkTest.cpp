#include <QDir>
#include <QFile>
#include <QUrl>

#include "GatewayFixture.h"

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

    void write(const char* name, const char* text) {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    void link(const char* to, const char* name) {
        ASSERT_TRUE(QFile::link(m_folder.filePath(QString::fromLatin1(to)),
                                m_folder.filePath(QString::fromLatin1(name))));
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
