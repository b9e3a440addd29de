#include <QElapsedTimer>

#include "GatewayFixture.h"
#include "RawSocket.h"

// Each limit at its edge, and what those get who come too slowly, too often or not at all.

namespace {

class GatewayLimits : public GatewayFixture {
protected:
    // How long one request of another client takes.
    qint64 askedIn(int* status = nullptr) {
        QElapsedTimer clock;
        clock.start();
        HttpClient http(port());
        const int got = http.get("/api/value?path=test:number").status;
        if (status)
            *status = got;
        else
            EXPECT_EQ(got, 200);
        return clock.elapsed();
    }

    static bool isClosed(RawSocket& socket) {
        return waitUntil([&] { return socket.isClosed(); }, 3000);
    }

    static const QByteArray Request;
};

const QByteArray GatewayLimits::Request =
    "GET /api/value?path=test:number HTTP/1.1\r\nHost: localhost\r\n";

} // namespace

TEST_F(GatewayLimits, aHeadOfExactlyTheLimitIsTaken) {
    restart({{"gateway/maxHeadBytes", 2000}});
    const QByteArray start = Request + "X: ";
    for (const int more : {0, 1}) {
        HttpClient http(port());
        http.write(start + QByteArray(2000 + more - start.size() - 4, 'x') + "\r\n\r\n");
        const HttpAnswer answer = http.readAnswer();
        EXPECT_EQ(answer.status, more ? 431 : 200);
        EXPECT_EQ(answer.errorName(), more ? "HeadersTooLarge" : "");
    }
}

TEST_F(GatewayLimits, theHeadsDefaultFitsIntoTheConnectionsMemory) {
    const int limit = HttpLimits().headBytes;
    const QByteArray start = "GET /api/value?path=test:number&x=";
    const QByteArray end = " HTTP/1.1\r\nHost: localhost\r\n\r\n";
    for (const int more : {0, 1}) {
        HttpClient http(port());
        http.write(start + QByteArray(limit + more - start.size() - end.size(), 'x') + end);
        EXPECT_EQ(http.readAnswer().status, more ? 431 : 200);
    }
}

TEST_F(GatewayLimits, asManyHeaderFieldsAsTheLimitAreTaken) {
    const int limit = HttpLimits().headerFields;
    for (const int more : {0, 1}) {
        QByteArray head = Request;
        for (int i = 1; i < limit + more; ++i)
            head += "X: y\r\n";
        HttpClient http(port());
        http.write(head + "\r\n");
        EXPECT_EQ(http.readAnswer().status, more ? 431 : 200);
    }
}

TEST_F(GatewayLimits, theBodysLimitIsAKey) {
    restart({{"gateway/maxBodyBytes", "100"}});
    const QByteArray start = R"({"path":"test:echo","value":[")";
    const QByteArray body = start + QByteArray(100 - start.size() - 3, 'x') + "\"]}";
    HttpClient http(port());
    EXPECT_EQ(http.post("/api/data", body).status, 200);
    const HttpAnswer answer = http.post("/api/data", body + ' ');
    EXPECT_EQ(answer.status, 413);
    EXPECT_EQ(answer.errorMessage(), "The body is larger than 100 bytes.");
}

TEST_F(GatewayLimits, theNumberOfValuesInABodyIsAKey) {
    restart({{"gateway/maxBodyValues", "5"}});
    HttpClient http(port());
    EXPECT_EQ(http.post("/api/data", R"({"path":"test:echo","value":[1,2]})").status, 200);
    for (const auto& answer :
         {http.post("/api/data", R"({"path":"test:echo","value":[1,2,3]})"),
          http.put("/api/value", R"({"path":"test:number","value":[1,2,3]})")}) {
        EXPECT_EQ(answer.status, 400);
        EXPECT_EQ(answer.errorName(), "Malformed");
        EXPECT_EQ(answer.errorMessage(), "The body has more than 5 values.");
    }
    EXPECT_EQ(m_module->writes(), 1);
}

TEST_F(GatewayLimits, anAnswerOfExactlyTheLimitComesAndALargerOneIsRefused) {
    const QByteArray echo = R"({"path":"test:echo","value":[")" + QByteArray(300, 'x') + "\"]}";
    const QByteArray number = R"({"path":"test:number","value":")" + QByteArray(300, 'y') + "\"}";
    const struct {
        const char* method;
        const char* target;
        QByteArray body;
    } requests[] = {
        {"PUT", "/api/value", number},
        {"GET", "/api/value?path=test:number", {}},
        {"GET", "/api/rows?path=test:list", {}},
        {"POST", "/api/data", echo},
    };
    for (const auto& request : requests) {
        restart();
        const QByteArray whole =
            HttpClient(port()).send(request.method, request.target, request.body).body;
        ASSERT_GT(whole.size(), 300) << request.target;
        restart({{"gateway/maxAnswerBytes", whole.size()}});
        EXPECT_EQ(HttpClient(port()).send(request.method, request.target, request.body).body,
                  whole);
        restart({{"gateway/maxAnswerBytes", whole.size() - 1}});
        HttpClient http(port());
        const HttpAnswer answer = http.send(request.method, request.target, request.body);
        EXPECT_EQ(answer.status, 422) << request.target;
        EXPECT_EQ(answer.body, R"({"error":{"name":"AnswerTooLarge","title":"Answer too large",)"
                               R"("message":"Ask for fewer rows."}})");
        // The connection goes on, and fewer rows are answered.
        EXPECT_EQ(http.get("/api/rows?path=test:list&from=0&to=0&roles=title").status, 200);
    }
}

TEST_F(GatewayLimits, answersThatAreNotTakenHaveASum) {
    restart({{"gateway/maxAnswersBytes", 1000}});
    // A single one always fits.
    auto slow = std::make_unique<RawSocket>(port());
    slow->write("GET /api/rows?path=test:big HTTP/1.1\r\nHost: localhost\r\n\r\n");
    ASSERT_TRUE(waitUntil([&] { return slow->hasBytes(); }));
    HttpClient http(port());
    const HttpAnswer refused = http.get("/api/rows?path=test:list");
    EXPECT_EQ(refused.status, 503);
    EXPECT_EQ(refused.headers.value("retry-after"), "1");
    EXPECT_EQ(refused.errorName(), "TooManyAnswers");
    slow.reset();
    EXPECT_TRUE(waitUntil([&] { return http.get("/api/rows?path=test:list").status == 200; }));
}

TEST_F(GatewayLimits, theNumberOfEventStreamsIsAKey) {
    restart({{"gateway/maxEventStreams", 2}});
    HttpClient one(port());
    HttpClient two(port());
    HttpClient three(port());
    for (HttpClient* http : {&one, &two}) {
        http->write("GET /api/events HTTP/1.1\r\nHost: localhost\r\n\r\n");
        EXPECT_TRUE(http->readUntil("retry").contains("200 OK"));
    }
    EXPECT_EQ(three.get("/api/events").errorName(), "TooManyReaders");
}

TEST_F(GatewayLimits, oneAddressHasOnlySoManyConnections) {
    restart({{"gateway/maxConnectionsPerAddress", 3}});
    std::vector<std::unique_ptr<HttpClient>> clients;
    for (int i = 0; i < 3; ++i) {
        clients.push_back(std::make_unique<HttpClient>(port()));
        EXPECT_EQ(clients.back()->get("/api/paths").status, 200);
    }
    int status = -1;
    askedIn(&status);
    EXPECT_EQ(status, 0);
    // Another address is served all the while, and so is this one when a place is free.
    RawSocket other(port(), "127.0.0.2");
    other.write(Request + "\r\n");
    EXPECT_TRUE(waitUntil([&] { return other.read().contains("200 OK"); }));
    clients.pop_back();
    EXPECT_TRUE(waitUntil([&] {
        askedIn(&status);
        return status == 200;
    }));
}

TEST_F(GatewayLimits, oneConnectionTooManyTakesThePlaceOfTheOneThatWaitedLongest) {
    restart({{"gateway/maxConnections", 3}});
    RawSocket first(port());
    turnEventsFor(20);
    RawSocket second(port());
    turnEventsFor(20);
    HttpClient third(port());
    EXPECT_EQ(third.get("/api/paths").status, 200);
    EXPECT_FALSE(first.isClosed());
    HttpClient fourth(port());
    EXPECT_EQ(fourth.get("/api/paths").status, 200);
    EXPECT_TRUE(isClosed(first));
    EXPECT_FALSE(second.isClosed());
}

TEST_F(GatewayLimits, aConnectionTooManyIsClosedWhereNoneWaits) {
    restart({{"gateway/maxConnections", 2}});
    std::vector<std::unique_ptr<HttpClient>> readers;
    for (int i = 0; i < 2; ++i) {
        readers.push_back(std::make_unique<HttpClient>(port()));
        readers.back()->write("GET /api/events HTTP/1.1\r\nHost: localhost\r\n\r\n");
        ASSERT_TRUE(readers.back()->readUntil("retry").contains("retry"));
    }
    RawSocket late(port());
    EXPECT_TRUE(isClosed(late));
    EXPECT_EQ(m_gateway->openStreams(), 2);
}

TEST_F(GatewayLimits, aSlowHeadIsCutWhenItsTimeIsOver) {
    restart({{"gateway/requestTimeoutMs", 400}, {"gateway/idleTimeoutMs", 60000}});
    RawSocket slow(port());
    RawSocket quick(port());
    QElapsedTimer clock;
    clock.start();
    quick.write(Request);
    turnEventsFor(100);
    quick.write("\r\n");
    EXPECT_TRUE(waitUntil([&] { return quick.read().contains("200 OK"); }));
    // A byte now and then keeps no connection open.
    while (!slow.isClosed() && clock.elapsed() < 5000) {
        slow.write("G");
        turnEventsFor(20);
    }
    EXPECT_TRUE(slow.isClosed());
    EXPECT_GE(clock.elapsed(), 390);
    EXPECT_LT(clock.elapsed(), 3000);
}

TEST_F(GatewayLimits, aSlowBodyIsCutWhenItsTimeIsOver) {
    restart({{"gateway/requestTimeoutMs", 300}, {"gateway/idleTimeoutMs", 60000}});
    RawSocket slow(port());
    slow.write("POST /api/data HTTP/1.1\r\nHost: localhost\r\nContent-Length: 5000\r\n\r\n");
    QElapsedTimer clock;
    clock.start();
    while (!slow.isClosed() && clock.elapsed() < 5000) {
        slow.write(" ");
        turnEventsFor(20);
    }
    EXPECT_TRUE(slow.isClosed());
    EXPECT_GE(clock.elapsed(), 290);
    EXPECT_EQ(m_module->writes(), 0);
}

TEST_F(GatewayLimits, aKeptConnectionIsClosedAfterItsIdleTime) {
    restart({{"gateway/requestTimeoutMs", 60000}, {"gateway/idleTimeoutMs", 300}});
    HttpClient http(port());
    EXPECT_EQ(http.get("/api/paths").status, 200);
    turnEventsFor(150);
    EXPECT_EQ(http.get("/api/paths").status, 200);
    EXPECT_EQ(http.socket().state(), QAbstractSocket::ConnectedState);
    EXPECT_TRUE(waitUntil(
        [&] { return http.socket().state() == QAbstractSocket::UnconnectedState; }, 3000));
}

TEST_F(GatewayLimits, anAnswerThatIsNotTakenIsCut) {
    restart({{"gateway/requestTimeoutMs", 300}, {"gateway/idleTimeoutMs", 60000}});
    RawSocket slow(port());
    slow.write("GET /api/rows?path=test:big HTTP/1.1\r\nHost: localhost\r\n\r\n");
    // The time counts from here: a slow machine makes the answer first.
    ASSERT_TRUE(waitUntil([&] { return slow.hasBytes(); }));
    turnEventsFor(900);
    // What is on its way still arrives, but not the whole.
    QByteArray got;
    EXPECT_TRUE(waitUntil([&] {
        got = slow.read();
        return slow.isClosed();
    }));
    EXPECT_FALSE(got.endsWith("]}"));
}

TEST_F(GatewayLimits, aStreamWhoseReaderStopsIsCutAndAReaderThatListensIsNot) {
    restart({{"gateway/idleTimeoutMs", 400}, {"gateway/commentMs", 50}});
    RawSocket stopped(port());
    stopped.write("GET /api/events HTTP/1.1\r\nHost: localhost\r\n\r\n");
    HttpClient reader(port());
    reader.write("GET /api/events HTTP/1.1\r\nHost: localhost\r\n\r\n");
    ASSERT_TRUE(waitUntil([&] { return m_gateway->openStreams() == 2; }));
    // More than the sockets hold, in parts that the one who reads keeps up with.
    const QStringList large{QString(100000, QLatin1Char('x'))};
    QElapsedTimer clock;
    clock.start();
    while (m_gateway->openStreams() == 2 && clock.elapsed() < 8000) {
        events().rowsChanged(CMPath(QStringLiteral("test:list")), large, 0, -1);
        reader.readUntil("never there", 5);
        reader.discard();
    }
    EXPECT_EQ(m_gateway->openStreams(), 1);
    // It stays although nothing but comments comes.
    turnEventsFor(900);
    EXPECT_EQ(m_gateway->openStreams(), 1);
}

TEST_F(GatewayLimits, manySilentAndSlowClientsDelayNoOther) {
    std::vector<std::unique_ptr<RawSocket>> crowd;
    for (int i = 0; i < 60; ++i) {
        for (const QByteArray& part :
             // Making the big answer takes its time; a few of them are enough.
             {QByteArray(), QByteArray("GET /api/pa"),
              QByteArray(
                  "POST /api/data HTTP/1.1\r\nHost: localhost\r\nContent-Length: 99\r\n\r\n{"),
              QByteArray("GET /api/rows?path=test:" + QByteArray(i % 20 ? "list" : "big") +
                         " HTTP/1.1\r\nHost: localhost\r\n\r\n")}) {
            crowd.push_back(std::make_unique<RawSocket>(port()));
            crowd.back()->write(part);
        }
        turnEventsFor(1);
    }
    turnEventsFor(200);
    // The big answers are being made and wait to be taken: ten requests take no longer for it.
    askedIn();
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 10; ++i)
        askedIn();
    EXPECT_LT(clock.elapsed(), 2000);
}

TEST(HttpLimitsTest, fewDescriptorsLowerWhatNeedsThem) {
    const struct {
        long openFiles;
        bool isLowered;
        int connections;
        int eventStreams;
        int files;
    } rows[] = {
        {1048576, false, 512, 256, 320},
        {888, false, 512, 256, 320},
        {887, true, 512, 256, 277},
        {512, true, 304, 152, 152},
        {64, true, 6, 3, 2},
        {60, true, 4, 2, 2},
        {0, true, 4, 2, 2},
    };
    for (const auto& row : rows) {
        HttpLimits limits;
        EXPECT_EQ(limits.fitInto(row.openFiles), row.isLowered) << row.openFiles;
        EXPECT_EQ(limits.connections, row.connections) << row.openFiles;
        EXPECT_EQ(limits.eventStreams, row.eventStreams) << row.openFiles;
        EXPECT_EQ(limits.files, row.files) << row.openFiles;
    }
    HttpLimits few;
    few.connections = 3;
    few.files = 1;
    few.eventStreams = 2;
    EXPECT_FALSE(few.fitInto(64));
    EXPECT_EQ(few.eventStreams, 2);
}
