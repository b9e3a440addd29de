#include <sys/stat.h>

#include <QFile>

#include "GatewayFixture.h"
#include "LogCapture.h"

// Who may ask, and who may not.

namespace {

class GatewayAccess : public GatewayFixture {
protected:
    // A request whose whole head is the test's own.
    HttpAnswer ask(const QByteArray& head) {
        HttpClient http(port());
        http.write(head + "\r\n");
        return http.readAnswer();
    }

    // Why the gateway does not start.
    QString refusalToStart(const QHash<QString, QVariant>& config) {
        m_gateway.reset();
        const LogCapture log(QStringLiteral("Gateway"));
        GatewayWorker worker(config);
        EXPECT_FALSE(worker.start());
        EXPECT_EQ(log.texts(QStringLiteral("FATAL")), QStringList{worker.failure()});
        return worker.failure();
    }
};

} // namespace

TEST_F(GatewayAccess, aForeignHostReadsNothing) {
    restart({{"gateway/hosts", "Radio.local, kitchen"}});
    const struct {
        const char* host;
        int status;
    } rows[] = {
        {"localhost", 200},
        {"LOCALHOST:1", 200},
        {"127.0.0.1:8080", 200},
        {"127.4.5.6", 200},
        {"[::1]", 200},
        {"[::1]:80", 200},
        {"radio.local", 200},
        {"kitchen:9000", 200},
        {"evil.example", 403},
        {"evil.example:80", 403},
        {"localhost.evil", 403},
        {"127.0.0.1.evil", 403},
        {"radio.local.", 403},
        {"192.168.1.5", 403},
        {"[::2]", 403},
        {"[::1", 403},
        {"[::1]x", 403},
        {"localhost:x", 403},
        {"", 403},
        {"localhost@evil", 403},
        {"128.0.0.1", 403},
        {"0.0.0.0", 403},
        {"localhost, evil", 403},
        {"[]", 403},
        {":80", 403},
        {"127.0.0.1:80:80", 403},
    };
    for (const auto& row : rows) {
        for (const char* target : {"/api/paths", "/"}) {
            const HttpAnswer answer =
                ask("GET " + QByteArray(target) + " HTTP/1.1\r\nHost: " + row.host + "\r\n");
            EXPECT_EQ(answer.status, row.status) << row.host << ' ' << target;
            EXPECT_EQ(answer.errorName(), row.status == 403 ? "Forbidden" : "") << row.host;
        }
    }
    EXPECT_EQ(ask("GET /api/paths HTTP/1.1\r\nHost: localhost\r\nHost: evil\r\n").status, 403);
    EXPECT_EQ(ask("GET /api/paths HTTP/1.0\r\n").status, 403);
}

TEST_F(GatewayAccess, aForeignPageReadsAndWritesNothing) {
    const struct {
        const char* headers;
        int api;
        int page;
    } rows[] = {
        {"Origin: http://localhost:1\r\n", 200, 200},
        {"Origin: HTTPS://LocalHost:1\r\n", 200, 200},
        {"Origin: http://localhost\r\n", 403, 403},
        {"Origin: http://localhost:2\r\n", 403, 403},
        {"Origin: http://127.0.0.1:1\r\n", 403, 403},
        {"Origin: http://evil.example\r\n", 403, 403},
        {"Origin: null\r\n", 403, 403},
        {"Origin: \r\n", 403, 403},
        {"Origin: http://localhost:1\r\nOrigin: http://evil\r\n", 403, 403},
        {"Sec-Fetch-Site: same-origin\r\n", 200, 200},
        {"Sec-Fetch-Site: none\r\n", 200, 200},
        {"Sec-Fetch-Site: same-site\r\n", 403, 403},
        {"Sec-Fetch-Site: cross-site\r\nSec-Fetch-Mode: no-cors\r\n", 403, 403},
        // A link to the page is followed, one into the interface is not.
        {"Sec-Fetch-Site: cross-site\r\nSec-Fetch-Mode: navigate\r\nSec-Fetch-Dest: document\r\n",
         403, 200},
        {"Sec-Fetch-Site: cross-site\r\nSec-Fetch-Mode: navigate\r\nSec-Fetch-Dest: iframe\r\n",
         403, 403},
    };
    for (const auto& row : rows) {
        const QByteArray rest = QByteArray(" HTTP/1.1\r\nHost: localhost:1\r\n") + row.headers;
        EXPECT_EQ(ask("GET /api/paths" + rest).status, row.api) << row.headers;
        EXPECT_EQ(ask("GET /" + rest).status, row.page) << row.headers;
    }
    HttpClient http(port());
    const HttpAnswer answer =
        http.send("PUT", "/api/value", R"({"path":"test:number","value":7})",
                  "Origin: http://evil.example\r\nContent-Type: text/plain\r\n");
    EXPECT_EQ(answer.status, 403);
    EXPECT_EQ(answer.errorName(), "Forbidden");
    EXPECT_EQ(http.send("OPTIONS", "/api/value", {}, "Origin: http://evil.example\r\n").status,
              403);
    EXPECT_EQ(http.get("/api/value?path=test:number").body.toStdString(), R"({"value":1})");
}

TEST_F(GatewayAccess, everyAnswerForbidsWhatThePageDoesNotNeed) {
    HttpClient http(port());
    for (const char* target : {"/", "/nothing", "/api/paths", "/api/rows"}) {
        const auto headers = http.get(target).headers;
        const QByteArray policy = headers.value("content-security-policy");
        EXPECT_TRUE(policy.startsWith("default-src 'none'; script-src 'self';")) << target;
        EXPECT_TRUE(policy.contains("frame-ancestors 'none'")) << target;
        EXPECT_FALSE(policy.contains("unsafe")) << target;
        EXPECT_EQ(headers.value("x-content-type-options"), "nosniff") << target;
        EXPECT_EQ(headers.value("x-frame-options"), "DENY") << target;
        EXPECT_EQ(headers.value("referrer-policy"), "same-origin") << target;
        EXPECT_EQ(headers.value("cross-origin-resource-policy"), "same-origin") << target;
    }
}

TEST_F(GatewayAccess, withATokenOnlyThePagesFilesComeWithoutIt) {
    restart({{"gateway/tokenFile", tokenFile()}});
    const QByteArray wrong = QByteArray(Token).replace("token", "tokem");
    const struct {
        QByteArray header;
        int status;
    } rows[] = {
        {"", 401},
        {"Authorization: Bearer " + Token, 200},
        {"authorization: bearer  " + Token, 200},
        {"Authorization: Bearer " + wrong, 401},
        {"Authorization: Bearer " + Token.chopped(1), 401},
        {"Authorization: Bearer " + Token + 'x', 401},
        {"Authorization: Bearer", 401},
        {"Authorization: Basic " + Token, 401},
        {"Authorization: " + Token, 401},
        {"Cookie: orvo-" + QByteArray::number(port()) + '=' + Token, 401},
    };
    for (const auto& row : rows) {
        HttpClient http(port());
        const QByteArray header = row.header.isEmpty() ? QByteArray() : row.header + "\r\n";
        const HttpAnswer answer = http.send("GET", "/api/paths", {}, header);
        EXPECT_EQ(answer.status, row.status) << row.header.data();
        if (row.status == 401) {
            EXPECT_EQ(answer.errorName(), "Unauthorized");
            EXPECT_EQ(answer.headers.value("www-authenticate"), "Bearer");
        }
    }
    HttpClient http(port());
    EXPECT_EQ(http.get("/").status, 200);
    for (const char* target : {"/api/rows?path=test:list", "/api/events", "/api/nothing",
                               "/%61pi/paths", "/api/artwork?uri=file:///x.png", "/api/modules"})
        EXPECT_EQ(http.get(target).status, 401) << target;
    EXPECT_EQ(http.put("/api/value", R"({"path":"test:number","value":7})").status, 401);
    EXPECT_EQ(http.post("/api/data", QByteArray(100000, 'x')).status, 401);
    EXPECT_EQ(m_module->writes(), 0);
}

TEST_F(GatewayAccess, aPageTradesTheTokenForACookie) {
    restart({{"gateway/tokenFile", tokenFile()}});
    HttpClient http(port());
    const HttpAnswer wrong = http.post("/api/login", R"({"token":"0123456789abcdef-tokem"})");
    EXPECT_EQ(wrong.status, 401);
    EXPECT_FALSE(wrong.headers.contains("set-cookie"));
    for (const char* body : {"{}", R"({"token":5})", R"({"token":""})"})
        EXPECT_EQ(http.post("/api/login", body).status, 401) << body;
    EXPECT_EQ(http.post("/api/login", "x").status, 400);

    const HttpAnswer right = http.post("/api/login", "{\"token\":\"" + Token + "\"}");
    EXPECT_EQ(right.status, 200);
    const QByteArray cookie = right.headers.value("set-cookie");
    EXPECT_TRUE(cookie.contains("; HttpOnly") && cookie.contains("; SameSite=Strict"));
    EXPECT_FALSE(cookie.contains(Token));
    const QByteArray pair = cookie.left(cookie.indexOf(';'));
    EXPECT_EQ(http.send("GET", "/api/paths", {}, "Cookie: a=b; " + pair + "\r\n").status, 200);
    EXPECT_EQ(http.send("GET", "/api/paths", {}, "Cookie: " + pair.chopped(1) + "\r\n").status,
              401);
    // A token that is given counts, and a wrong one is wrong.
    EXPECT_EQ(
        http.send("GET", "/api/paths", {}, "Cookie: " + pair + "\r\nAuthorization: Bearer x\r\n")
            .status,
        401);
    // Another token makes the cookie void.
    restart({{"gateway/tokenFile", tokenFile("another-token-altogether")}});
    HttpClient again(port());
    const QByteArray value = pair.mid(pair.indexOf('='));
    EXPECT_EQ(again
                  .send("GET", "/api/paths", {},
                        "Cookie: orvo-" + QByteArray::number(port()) + value + "\r\n")
                  .status,
              401);
}

TEST_F(GatewayAccess, withoutATokenLoginIsWelcome) {
    HttpClient http(port());
    const HttpAnswer answer = http.post("/api/login", R"({"token":"x"})");
    EXPECT_EQ(answer.status, 200);
    EXPECT_FALSE(answer.headers.contains("set-cookie"));
}

TEST_F(GatewayAccess, anAddressThatOthersReachNeedsAToken) {
    for (const char* address : {"0.0.0.0:0", "[::]:0", "192.0.2.1:0", "[2001:db8::1]:0"}) {
        const QString host = QString(address).remove("[").remove("]").chopped(2);
        EXPECT_EQ(refusalToStart({{"gateway/listen", address}}),
                  QStringLiteral("cannot listen on %1: other machines reach %2: that needs a"
                                 " token file")
                      .arg(address, host));
    }
    for (const char* address : {"127.0.0.1:0", "127.9.9.9:0", "localhost:0"}) {
        GatewayWorker worker({{"gateway/listen", address}});
        EXPECT_TRUE(worker.start()) << address;
    }
    m_gateway = std::make_unique<GatewayWorker>(QHash<QString, QVariant>{
        {"gateway/listen", "0.0.0.0:0"}, {"gateway/tokenFile", tokenFile()}});
    ASSERT_TRUE(m_gateway->start());
    EXPECT_EQ(
        ask("GET /api/paths HTTP/1.1\r\nHost: 127.0.0.1\r\nAuthorization: Bearer " + Token + "\r\n")
            .status,
        200);
    // The address that it listens on is not one that a client can reach.
    EXPECT_EQ(ask("GET / HTTP/1.1\r\nHost: 0.0.0.0\r\n").status, 403);
}

TEST_F(GatewayAccess, aTokenFileThatOthersCouldReadOrThatHoldsNoneEndsTheStart) {
    const auto refusal = [this](const QString& file) {
        return refusalToStart({{"gateway/listen", "127.0.0.1:0"}, {"gateway/tokenFile", file}})
            .remove(0, QStringLiteral("the token file %1 ").arg(file).size());
    };
    for (const mode_t mode : {0640, 0604, 0620, 0601, 0777})
        EXPECT_EQ(refusal(tokenFile(Token, mode)), "is open to others than its owner: chmod 600 it")
            << std::oct << mode;
    const QString wrongText =
        QStringLiteral("must hold one line of 16 to 512 printable characters without blanks");
    for (const QByteArray& text :
         {QByteArray(), QByteArray("\n"), QByteArray(15, 'a'), QByteArray(513, 'a'),
          QByteArray("two words in one line"), QByteArray("first-line-long\nsecond-line"),
          QByteArray("grüße-aus-der-küche")})
        EXPECT_EQ(refusal(tokenFile(text)), wrongText) << text.data();
    EXPECT_EQ(refusal(m_folder.filePath("none")), "cannot be read: No such file or directory");
    EXPECT_EQ(refusal(m_folder.path()), "is no regular file");
    const QString pipe = m_folder.filePath("pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(refusal(pipe), "is no regular file");
    for (const QByteArray& text : {QByteArray(16, 'a'), QByteArray(512, 'a')}) {
        GatewayWorker worker(
            {{"gateway/listen", "127.0.0.1:0"}, {"gateway/tokenFile", tokenFile(text, 0400)}});
        EXPECT_TRUE(worker.start());
    }
}

TEST_F(GatewayAccess, aZeroByteInTheAddressIsRefused) {
    HttpClient http(port());
    for (const char* target : {"/%00", "/index.html%00.js", "/api/paths%00x",
                               "/api/rows?path=test:list%00", "/api/rows?a%00b=1"}) {
        EXPECT_EQ(http.get(target).status, 400) << target;
        EXPECT_EQ(http.get("/api/paths").status, 200) << target;
    }
}
