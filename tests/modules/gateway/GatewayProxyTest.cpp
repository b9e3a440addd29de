#include "GatewayFixture.h"
#include "LogCapture.h"
#include "RawSocket.h"
#include "TrustedProxies.h"

// For whom a request counts that comes through a proxy.

namespace {

class GatewayProxy : public GatewayFixture {
protected:
    int login(const QByteArray& forwardedFor, const QByteArray& token = "wrong") {
        HttpClient http(port());
        return http
            .send("POST", "/api/login", "{\"token\":\"" + token + "\"}",
                  "X-Forwarded-For: " + forwardedFor + "\r\n")
            .status;
    }
};

QByteArray clientOf(const char* proxies, const char* peer, const QByteArrayList& fields) {
    QString error;
    const auto parsed = TrustedProxies::parse(QString::fromLatin1(proxies), &error);
    EXPECT_TRUE(parsed) << error.toStdString();
    return parsed->clientOf(*IpAddress::parse(peer), fields).toString();
}

} // namespace

TEST(TrustedProxiesTest, theRightMostAddressThatIsNoProxyIsTheClient) {
    const struct {
        const char* proxies;
        const char* peer;
        QByteArrayList fields;
        const char* client;
    } rows[] = {
        {"", "127.0.0.1", {"192.0.2.1"}, "127.0.0.1"},
        {"127.0.0.1", "127.0.0.1", {"192.0.2.1"}, "192.0.2.1"},
        {"127.0.0.1", "127.0.0.2", {"192.0.2.1"}, "127.0.0.2"},
        {"127.0.0.1", "127.0.0.1", {}, "127.0.0.1"},
        // What a client made up stands to the left.
        {"127.0.0.1", "127.0.0.1", {"198.51.100.7, 192.0.2.1"}, "192.0.2.1"},
        {"127.0.0.1", "127.0.0.1", {"198.51.100.7", "192.0.2.1"}, "192.0.2.1"},
        // A proxy behind a proxy.
        {"127.0.0.1,10.0.0.0/8", "127.0.0.1", {"192.0.2.1, 10.2.3.4"}, "192.0.2.1"},
        {"127.0.0.0/8", "127.0.0.1", {"127.0.0.5, 127.0.0.6"}, "127.0.0.5"},
        {"127.0.0.1", "127.0.0.1", {"192.0.2.1, unknown"}, "127.0.0.1"},
        {"127.0.0.1, 10.0.0.1", "127.0.0.1", {"x, 10.0.0.1"}, "10.0.0.1"},
        {"127.0.0.1", "127.0.0.1", {"192.0.2.1:4711"}, "192.0.2.1"},
        {"::1", "::1", {"[2001:db8::1]:4711"}, "2001:db8::1"},
        {"fd00::/8", "fdff::1", {"2001:DB8:0::1"}, "2001:db8::1"},
        {"127.0.0.1", "::ffff:127.0.0.1", {"192.0.2.1"}, "192.0.2.1"},
        {"127.0.0.1", "127.0.0.1", {"::ffff:192.0.2.1"}, "192.0.2.1"},
        {"0.0.0.0/0", "127.0.0.1", {"2001:db8::1"}, "2001:db8::1"},
        {"192.168.0.128/25", "192.168.0.129", {"192.0.2.1"}, "192.0.2.1"},
        {"192.168.0.128/25", "192.168.0.127", {"192.0.2.1"}, "192.168.0.127"},
        {"127.0.0.1", "127.0.0.1", {""}, "127.0.0.1"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(clientOf(row.proxies, row.peer, row.fields).toStdString(), row.client)
            << row.proxies << ' ' << row.fields.join('|').constData();
}

TEST_F(GatewayProxy, aListThatNamesNoAddressEndsTheStart) {
    for (const char* entry : {"proxy.local", "10.0.0.0/33", "10.0.0.0/-1", "::/129", "10.0.0.0/8/8",
                              "10.0.0.0/", " "}) {
        const LogCapture log(QStringLiteral("Gateway"));
        GatewayWorker worker({{"gateway/listen", "127.0.0.1:0"},
                              {"gateway/trustedProxies", QString("::1,") + entry}});
        EXPECT_FALSE(worker.start());
        EXPECT_EQ(worker.failure().toStdString(), std::string("gateway/trustedProxies: \"") +
                                                      entry +
                                                      "\" is neither an address nor a network");
    }
}

TEST_F(GatewayProxy, wrongTokensCountForTheAddressBehindTheProxy) {
    restart({{"gateway/tokenFile", tokenFile()},
             {"gateway/maxWrongTokens", 2},
             {"gateway/trustedProxies", "127.0.0.1"}});
    EXPECT_EQ(login("192.0.2.1"), 401);
    EXPECT_EQ(login("192.0.2.9, 192.0.2.1"), 401);
    EXPECT_EQ(login("192.0.2.1", Token), 429);
    EXPECT_EQ(login("192.0.2.2", Token), 200);
}

TEST_F(GatewayProxy, withoutTheKeyTheHeaderIsIgnored) {
    restart({{"gateway/tokenFile", tokenFile()}, {"gateway/maxWrongTokens", 2}});
    EXPECT_EQ(login("192.0.2.1"), 401);
    EXPECT_EQ(login("192.0.2.2"), 401);
    EXPECT_EQ(login("192.0.2.3", Token), 429);
}

TEST_F(GatewayProxy, anAddressBehindTheProxyHasOnlySoManyRequestsUnderWay) {
    restart({{"gateway/maxConnectionsPerAddress", 2},
             {"gateway/trustedProxies", "127.0.0.1"},
             {"gateway/commentMs", 50}});
    const QByteArray events = "GET /api/events HTTP/1.1\r\nHost: localhost\r\nX-Forwarded-For: ";
    std::vector<std::unique_ptr<RawSocket>> readers;
    const auto read = [&](const QByteArray& address) {
        readers.push_back(std::make_unique<RawSocket>(port()));
        readers.back()->write(events + address + "\r\n\r\n");
        EXPECT_TRUE(waitUntil([&] { return readers.back()->read().contains("\r\n\r\n"); }));
        return readers.back()->read().mid(9, 3).toInt();
    };
    EXPECT_EQ(read("192.0.2.1"), 200);
    EXPECT_EQ(read("192.0.2.1"), 200);
    EXPECT_EQ(read("192.0.2.1"), 429);
    EXPECT_TRUE(readers.back()->read().contains("TooManyRequests"));
    EXPECT_EQ(read("192.0.2.2"), 200);
    // The proxy's own connections are not counted.
    EXPECT_EQ(read("192.0.2.2"), 200);
    readers.erase(readers.begin());
    EXPECT_TRUE(waitUntil([&] { return read("192.0.2.1") == 200; }));
}
