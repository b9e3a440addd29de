#include "GatewayFixture.h"
#include "LogCapture.h"
#include "RawSocket.h"
#include "WrongTokens.h"

// What wrong tokens lead to, for the address that they come from and for no other.

namespace {

class GatewayLogins : public GatewayFixture {
protected:
    void restartWith(QHash<QString, QVariant> config = {}) {
        config.insert("gateway/tokenFile", tokenFile());
        restart(config);
    }

    HttpAnswer login(const QByteArray& token) {
        return HttpClient(port()).post("/api/login", "{\"token\":\"" + token + "\"}");
    }
    HttpAnswer ask(const QByteArray& fields) {
        return HttpClient(port()).send("GET", "/api/paths", {}, fields);
    }
};

IpAddress address(const QByteArray& text) {
    return *IpAddress::parse(text);
}

} // namespace

TEST_F(GatewayLogins, afterTenWrongOnesAnAddressWaits) {
    restartWith();
    const LogCapture log(QStringLiteral("Gateway"));
    QStringList lines;
    for (int i = 1; i <= 10; ++i) {
        // A wrong token counts wherever it stands.
        const HttpAnswer answer =
            i % 2 ? login("wrong-token") : ask("Authorization: Bearer wrong-token\r\n");
        EXPECT_EQ(answer.status, 401) << i;
        lines.append(
            QStringLiteral("a wrong token from 127.0.0.1, %1 of 10 before it has to wait").arg(i));
    }
    for (const HttpAnswer& answer :
         {login("wrong-token"), login(Token), ask("Authorization: Bearer wrong-token\r\n")}) {
        EXPECT_EQ(answer.status, 429);
        EXPECT_EQ(answer.errorName(), "TooManyAttempts");
        const int seconds = answer.headers.value("retry-after").toInt();
        EXPECT_GT(seconds, 30);
        EXPECT_LE(seconds, 60);
        EXPECT_EQ(answer.errorMessage(),
                  QStringLiteral("Too many wrong tokens came from 127.0.0.1. Try again in %1 s.")
                      .arg(seconds));
        EXPECT_FALSE(answer.headers.contains("set-cookie"));
    }
    EXPECT_EQ(log.texts(QStringLiteral("WARN")), lines);
    EXPECT_FALSE(log.lines().join('\n').contains("wrong-token"));
}

// Each was let in before the first was wrong.
TEST_F(GatewayLogins, ofManyAtOnceTenAreLookedAt) {
    restartWith();
    const QByteArray body = R"({"token":"wrong-token"})";
    std::vector<std::unique_ptr<RawSocket>> sockets;
    for (int i = 0; i < 15; ++i) {
        sockets.push_back(std::make_unique<RawSocket>(port()));
        sockets.back()->write("POST /api/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: " +
                              QByteArray::number(body.size()) + "\r\n\r\n" + body.chopped(1));
    }
    turnEventsFor(100); // their heads are read
    QMap<QByteArray, int> answers;
    for (const auto& socket : sockets) {
        socket->write(body.right(1));
        QByteArray text;
        EXPECT_TRUE(waitUntil([&] {
            text = socket->read();
            return text.contains("\r\n");
        }));
        ++answers[text.mid(9, 3)];
    }
    EXPECT_EQ(answers, (QMap<QByteArray, int>{{"401", 10}, {"429", 5}}));
}

TEST_F(GatewayLogins, whoIsInStaysInWhileTheAddressWaits) {
    restartWith({{"gateway/maxWrongTokens", 2}});
    const QByteArray cookie = login(Token).headers.value("set-cookie").split(';').first();
    for (int i = 0; i < 3; ++i)
        login("wrong");
    EXPECT_EQ(login(Token).status, 429);
    EXPECT_EQ(ask("Authorization: Bearer " + Token + "\r\n").status, 200);
    EXPECT_EQ(ask("Cookie: " + cookie + "\r\n").status, 200);
    EXPECT_EQ(HttpClient(port()).get("/").status, 200);
    EXPECT_EQ(ask({}).status, 401);
}

TEST_F(GatewayLogins, anAddressTriesAgainWhenItsMinuteIsOver) {
    restartWith({{"gateway/maxWrongTokens", 2}, {"gateway/wrongTokensMs", 300}});
    login("wrong");
    login("wrong");
    const HttpAnswer answer = login(Token);
    EXPECT_EQ(answer.status, 429);
    EXPECT_EQ(answer.headers.value("retry-after"), "1");
    turnEventsFor(310);
    EXPECT_EQ(login(Token).status, 200);
    EXPECT_EQ(login("wrong").status, 401);
}

TEST_F(GatewayLogins, whatIsNoTryDoesNotCount) {
    restartWith({{"gateway/maxWrongTokens", 1}});
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ask({}).status, 401);
        // Left over from another token: the page comes with it before it asks.
        EXPECT_EQ(ask("Cookie: orvo-" + QByteArray::number(port()) + "=old\r\n").status, 401);
        EXPECT_EQ(HttpClient(port()).post("/api/login", "x").status, 400);
        EXPECT_EQ(login(Token).status, 200);
    }
    restart({{"gateway/maxWrongTokens", 1}});
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(login("any").status, 200);
}

TEST_F(GatewayLogins, theCookieOfAnotherPortsDeviceIsNone) {
    restartWith();
    const QByteArray cookie = login(Token).headers.value("set-cookie").split(';').first();
    const QByteArray name = "orvo-" + QByteArray::number(port());
    EXPECT_EQ(cookie.left(cookie.indexOf('=')), name);
    const QByteArray value = cookie.mid(name.size());
    // A browser brings those of all ports of a name.
    EXPECT_EQ(ask("Cookie: orvo-1=x; " + cookie + "; orvo-2=y\r\n").status, 200);
    EXPECT_EQ(ask("Cookie: orvo-1" + value + "\r\n").status, 401);
}

TEST(WrongTokens, countEachAddressByItself) {
    WrongTokens tokens({3, 60000});
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(tokens.blockedSeconds(address("192.0.2.1")), 0);
        tokens.note(address("192.0.2.1"));
        tokens.note(address("2001:db8::1"));
        tokens.note(IpAddress(address("::ffff:192.0.2.2")));
    }
    EXPECT_GT(tokens.blockedSeconds(address("192.0.2.1")), 0);
    EXPECT_GT(tokens.blockedSeconds(address("2001:db8::1")), 0);
    EXPECT_GT(tokens.blockedSeconds(address("192.0.2.2")), 0);
    EXPECT_EQ(tokens.blockedSeconds(address("192.0.2.3")), 0);
}

TEST(WrongTokens, ofManyAddressesRememberTheLatestAndLogTheFirst) {
    const LogCapture log(QStringLiteral("Gateway"));
    WrongTokens tokens({1, 60000});
    const int many = WrongTokens::MaxAddresses + 50;
    for (int i = 0; i < many; ++i)
        tokens.note(
            address("10.0." + QByteArray::number(i / 250) + '.' + QByteArray::number(i % 250)));
    EXPECT_EQ(tokens.addresses(), WrongTokens::MaxAddresses);
    EXPECT_EQ(log.texts(QStringLiteral("WARN")).size(), WrongTokens::MaxLogged);
    EXPECT_GT(tokens.blockedSeconds(address("10.0.4.0")), 0);
}
