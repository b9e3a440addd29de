#include "GatewayFixture.h"
#include "RawSocket.h"

// What of a body is kept, by whom it may be sent, and how much all of them may be together.

namespace {

class GatewayBodies : public GatewayFixture {
protected:
    // Announces a body and sends its first byte.
    std::unique_ptr<RawSocket> announce(const QByteArray& line, int size,
                                        const QByteArray& fields = {}) {
        auto socket = std::make_unique<RawSocket>(port());
        socket->write(line + " HTTP/1.1\r\nHost: localhost\r\n" + fields +
                      "Content-Length: " + QByteArray::number(size) + "\r\n\r\n ");
        turnEventsFor(20);
        return socket;
    }

    // A body of so many bytes that is taken where it may come in.
    static QByteArray body(int size) {
        return QByteArray(R"({"path":"test:echo","value":[]})").leftJustified(size);
    }

    HttpAnswer post(int size, const QByteArray& fields = {}) {
        HttpClient http(port());
        return http.send("POST", "/api/data", body(size), fields);
    }

    static bool isClosed(RawSocket& socket) {
        return waitUntil([&] { return socket.isClosed(); }, 3000);
    }
};

QByteArray asChunk(const QByteArray& text) {
    return QByteArray::number(text.size(), 16) + "\r\n" + text + "\r\n";
}

} // namespace

TEST_F(GatewayBodies, whatTakesNoBodyRefusesOne) {
    const struct {
        QByteArray method, target;
        int without;
    } rows[] = {
        {"GET", "/api/paths", 200},
        {"HEAD", "/api/modules", 200},
        {"GET", "/api/value?path=test:x", 404},
        {"POST", "/api/value", 405},
        {"GET", "/api/artwork", 400},
        {"GET", "/", 200},
        {"POST", "/", 405},
        {"POST", "/nothing", 404},
        {"PUT", "/api/nothing", 404},
        {"DELETE", "/api/data", 405},
    };
    for (const auto& row : rows) {
        const bool isHead = row.method == "HEAD";
        const QByteArray name = row.method + ' ' + row.target;
        const QByteArray head = name + " HTTP/1.1\r\nHost: localhost\r\n";
        HttpClient http(port());
        // A body of no bytes is none.
        http.write(head + "Content-Length: 0\r\n\r\n");
        EXPECT_EQ(http.readAnswer(isHead).status, row.without) << name.data();
        http.write(head + "Content-Length: 1\r\n\r\nx");
        const HttpAnswer answer = http.readAnswer(isHead);
        EXPECT_EQ(answer.status, 413) << name.data();
        if (!isHead) {
            EXPECT_EQ(answer.errorName(), "TooLarge") << name.data();
            EXPECT_EQ(answer.errorMessage(),
                      QString::fromLatin1(row.method + ' ' + row.target.split('?').first()) +
                          " takes no body.");
        }
        // The body was read, so the connection goes on.
        http.write(head + "Transfer-Encoding: chunked\r\n\r\n0\r\n\r\n");
        EXPECT_EQ(http.readAnswer(isHead).status, row.without) << name.data();
        HttpClient chunked(port());
        chunked.write(head + "Transfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\n\r\n");
        EXPECT_EQ(chunked.readAnswer(isHead).status, 413) << name.data();
    }
}

TEST_F(GatewayBodies, aLoginTakesFourKibibytes) {
    HttpClient http(port());
    EXPECT_EQ(http.post("/api/login", QByteArray("{}").leftJustified(4096)).status, 200);
    const HttpAnswer answer = http.post("/api/login", QByteArray("{}").leftJustified(4097));
    EXPECT_EQ(answer.status, 413);
    EXPECT_EQ(answer.errorMessage(), "The body is larger than 4096 bytes.");
    // What is larger anyway stays within what any body may be.
    restart({{"gateway/maxBodyBytes", 100}});
    HttpClient small(port());
    EXPECT_EQ(small.post("/api/login", QByteArray("{}").leftJustified(101)).status, 413);
}

TEST_F(GatewayBodies, allBodiesUnderWayHaveASum) {
    restart({{"gateway/maxBodiesBytes", 1000}});
    auto first = announce("POST /api/data", 600);
    EXPECT_EQ(post(400).status, 200);
    const HttpAnswer answer = post(401);
    EXPECT_EQ(answer.status, 503);
    EXPECT_EQ(answer.errorName(), "TooManyBodies");
    EXPECT_EQ(answer.errorMessage(), "Too much is being sent at the moment.");
    EXPECT_EQ(answer.headers.value("retry-after"), "1");
    // Who asks before sending is told before sending.
    HttpClient asking(port());
    asking.write("POST /api/data HTTP/1.1\r\nHost: localhost\r\nExpect: 100-continue\r\n"
                 "Content-Length: 401\r\n\r\n");
    EXPECT_EQ(asking.readAnswer().status, 503);
    // What takes no body goes on.
    EXPECT_EQ(HttpClient(port()).get("/api/paths").status, 200);
    // Its place is free when it has been read, and when it is broken off.
    first->write(body(599));
    EXPECT_TRUE(waitUntil([&] { return first->read().contains("200 OK"); }));
    EXPECT_EQ(post(1000).status, 200);
    auto second = announce("POST /api/data", 600);
    EXPECT_EQ(post(401).status, 503);
    second.reset();
    EXPECT_TRUE(waitUntil([&] { return post(1000).status == 200; }));
}

TEST_F(GatewayBodies, aBodyOfTheLargestSizeFitsWhereNothingElseIsUnderWay) {
    restart({{"gateway/maxBodyBytes", 1000}, {"gateway/maxBodiesBytes", 100}});
    EXPECT_EQ(post(1000).status, 200);
    const auto other = announce("POST /api/data", 50);
    EXPECT_EQ(post(1000).status, 503);
    EXPECT_EQ(post(50).status, 200);
}

TEST_F(GatewayBodies, aBodyInChunksTakesItsPlaceAsItGrows) {
    restart({{"gateway/maxBodyBytes", 1000}, {"gateway/maxBodiesBytes", 1000}});
    const auto other = announce("POST /api/data", 500);
    const QByteArray head =
        "POST /api/data HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n";
    HttpClient small(port());
    small.write(head + asChunk(body(300)) + asChunk(QByteArray(100, ' ')) + "0\r\n\r\n");
    EXPECT_EQ(small.readAnswer().status, 200);
    HttpClient large(port());
    large.write(head + asChunk(body(300)) + asChunk(QByteArray(300, ' ')) + "0\r\n\r\n");
    EXPECT_EQ(large.readAnswer().errorName(), "TooManyBodies");
    restart({{"gateway/maxBodyBytes", 1000}});
    HttpClient alone(port());
    alone.write(head + asChunk(body(300)) + asChunk(QByteArray(701, ' ')) + "0\r\n\r\n");
    EXPECT_EQ(alone.readAnswer().errorName(), "TooLarge");
}

TEST_F(GatewayBodies, nothingIsKeptOfWhatComesWithoutTheToken) {
    restart({{"gateway/tokenFile", tokenFile()}, {"gateway/maxBodiesBytes", 8000}});
    const QByteArray admitted = "Authorization: Bearer " + Token + "\r\n";
    std::vector<std::unique_ptr<RawSocket>> strangers;
    for (const char* line : {"POST /api/data", "PUT /api/value", "GET /api/paths", "POST /",
                             "GET /index.html", "PUT /nothing"})
        strangers.push_back(announce(line, 7000));
    strangers.push_back(announce("POST /api/login", 4097));
    EXPECT_EQ(post(8000, admitted).status, 200);
    // With it they would be in the way.
    const auto known = announce("POST /api/data", 1000, admitted);
    EXPECT_EQ(post(7001, admitted).status, 503);
    EXPECT_EQ(post(7000, admitted).status, 200);
    EXPECT_EQ(post(7000).status, 401);
}
