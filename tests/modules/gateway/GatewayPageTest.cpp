#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include "GatewayFixture.h"

namespace {

class GatewayPage : public GatewayFixture {
protected:
    void SetUp() override {
        QDir(m_folder.path()).mkpath(QStringLiteral("web/assets"));
        write("web/index.html", "<p>page</p>");
        write("web/assets/app.js", "run()");
        write("secret.txt", "secret");
        QFile::link(m_folder.filePath("secret.txt"), m_folder.filePath("web/link.txt"));
        restart({{"gateway/webRoot", m_folder.filePath("web")}});
    }

    void write(const char* name, const char* text) {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
};

} // namespace

TEST_F(GatewayPage, filesComeWithTheirMediaType) {
    HttpClient http(port());
    const HttpAnswer page = http.get("/");
    EXPECT_EQ(page.body, "<p>page</p>");
    EXPECT_EQ(page.headers.value("content-type"), "text/html; charset=utf-8");
    const HttpAnswer script = http.get("/assets/app.js?v=1");
    EXPECT_EQ(script.body, "run()");
    EXPECT_EQ(script.headers.value("content-type"), "text/javascript; charset=utf-8");
}

TEST_F(GatewayPage, theStyleSheetInThePageIsAllowedByItsHash) {
    write("web/index.html", "<p>a</p><style>p { color: red; }</style><p>b</p>");
    HttpClient http(port());
    const HttpAnswer page = http.get("/");
    const QByteArray hash =
        QCryptographicHash::hash("p { color: red; }", QCryptographicHash::Sha256).toBase64();
    const QByteArray allowed = "; style-src 'self' 'sha256-" + hash + "'; ";
    EXPECT_TRUE(page.headers.value("content-security-policy").contains(allowed));
    const HttpAnswer held =
        http.send("GET", "/", {}, "If-None-Match: " + page.headers.value("etag") + "\r\n");
    EXPECT_EQ(held.status, 304);
    EXPECT_TRUE(held.headers.value("content-security-policy").contains(allowed));
    EXPECT_TRUE(http.get("/assets/app.js")
                    .headers.value("content-security-policy")
                    .contains("; style-src 'self'; "));
}

TEST_F(GatewayPage, nothingOutsideTheFolderIsServed) {
    HttpClient http(port());
    for (const char* target :
         {"/../secret.txt", "/%2e%2e/secret.txt", "/assets/../../secret.txt", "/link.txt",
          "/assets", "/assets/", "//etc/passwd", "/nothing", "/api", "/api/", "/api/x"})
        EXPECT_EQ(http.get(target).status, 404) << target;
}

TEST_F(GatewayPage, aFileThatTheClientHoldsIsNotSentAgain) {
    HttpClient http(port());
    const QByteArray tag = http.get("/").headers.value("etag");
    ASSERT_FALSE(tag.isEmpty());
    const HttpAnswer answer = http.send("GET", "/", {}, "If-None-Match: " + tag + "\r\n");
    EXPECT_EQ(answer.status, 304);
    write("web/index.html", "<p>another page</p>");
    EXPECT_EQ(http.send("GET", "/", {}, "If-None-Match: " + tag + "\r\n").body,
              "<p>another page</p>");
}

TEST_F(GatewayPage, aFileIsOnlyRead) {
    HttpClient http(port());
    const HttpAnswer answer = http.put("/index.html", {});
    EXPECT_EQ(answer.status, 405);
    EXPECT_EQ(answer.headers.value("allow"), "GET, HEAD");
    EXPECT_EQ(http.get("/index.html").body, "<p>page</p>");
}

TEST_F(GatewayPage, withoutAPageTheRootNamesTheInterface) {
    restart();
    HttpClient http(port());
    const HttpAnswer answer = http.get("/");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.headers.value("content-type"), "text/plain; charset=utf-8");
    EXPECT_TRUE(answer.body.contains("/api/rows"));
    EXPECT_EQ(http.get("/index.html").status, 404);
}
