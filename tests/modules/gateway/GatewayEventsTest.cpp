#include <QRegularExpression>
#include <QSet>

#include "GatewayFixture.h"

namespace {

class GatewayEvents : public GatewayFixture {
protected:
    // Opens a stream and waits until it is live. `text` is what came so far.
    struct Reader {
        explicit Reader(quint16 port, const QByteArray& query = {}, const QByteArray& headers = {})
            : http(port) {
            http.write("GET /api/events" + query + " HTTP/1.1\r\nHost: localhost\r\n" + headers +
                       "\r\n");
            http.readUntil("retry: 2000\n");
        }
        QByteArray until(const QByteArray& wanted) { return http.readUntil(wanted); }
        HttpClient http;
    };

    void change(int row) {
        events().rowsChanged(CMPath(QStringLiteral("test:list")), {CMSubscribe::RowInserted(row)},
                             0, -1);
    }

    static QList<quint64> idsOf(const QByteArray& text) {
        QList<quint64> ids;
        static const QRegularExpression pattern(QStringLiteral("id: (\\d+)\nevent: "));
        auto it = pattern.globalMatch(QString::fromUtf8(text));
        while (it.hasNext())
            ids.append(it.next().captured(1).toULongLong());
        return ids;
    }
};

} // namespace

TEST_F(GatewayEvents, everyChangeIsOneEvent) {
    Reader reader(port());
    events().rowsChanged(CMPath(QStringLiteral("test:list")), {"+4", "+5"}, 0, -1);
    events().changedStartingWith(CMPath(QStringLiteral("test:a b")), CMSubscribe::RowsChangeReset(),
                                 -1);
    events().valueChanged(CMPath(QStringLiteral("test:number")), OrvoValue::fromI32(2),
                          OrvoValue::fromBool(true));
    const QByteArray text = reader.until("oldValue");
    EXPECT_TRUE(text.contains("Content-Type: text/event-stream\r\n"));
    EXPECT_TRUE(text.contains(
        "event: rows\ndata: {\"path\":\"test:list\",\"changes\":[\"+4\",\"+5\"],\"start\":0,\"count\":-1}\n\n"));
    EXPECT_TRUE(text.contains(
        "event: startingWith\ndata: {\"path\":\"test:a%20b\",\"changes\":[\"reset\"],\"start\":-1,\"count\":-1}\n\n"));
    EXPECT_TRUE(text.contains(
        "event: value\ndata: {\"path\":\"test:number\",\"value\":{\"i32\":2},\"oldValue\":{\"bool\":true}}\n\n"));
    const QList<quint64> ids = idsOf(text);
    ASSERT_EQ(ids.size(), 3);
    EXPECT_EQ(ids.at(1), ids.at(0) + 1);
    EXPECT_EQ(ids.at(2), ids.at(0) + 2);
}

TEST_F(GatewayEvents, aChangeOfRowsCarriesTheRevisionThatItLeadsTo) {
    Reader reader(port());
    events().rowsChanged(CMPath(QStringLiteral("test:list")), {"+4"}, 0, -1, 0);
    events().changedStartingWith(CMPath(QStringLiteral("test:list")),
                                 CMSubscribe::RowsChangeReset(), -1, (qint64(1) << 53) - 1);
    const QByteArray text = reader.until("1}\n\n");
    EXPECT_TRUE(text.contains(
        "data: {\"path\":\"test:list\",\"changes\":[\"+4\"],\"start\":0,\"count\":-1,\"revision\":0}\n\n"));
    EXPECT_TRUE(text.contains(
        "data: {\"path\":\"test:list\",\"changes\":[\"reset\"],\"start\":-1,\"count\":-1,\"revision\":9007199254740991}\n\n"));
}

TEST_F(GatewayEvents, aValueIsWatchedWhileAReaderThatAsksForItIsConnected) {
    restart({{"gateway/commentMs", 10}});
    const CMPath position(QStringLiteral("test:position"));
    {
        Reader other(port());
        EXPECT_FALSE(m_root.isValueWatched(position));
        Reader reader(port(), "?watch=test:number&watch=test:position");
        EXPECT_TRUE(m_root.isValueWatched(position));
    }
    EXPECT_TRUE(waitUntil([&] { return !m_root.isValueWatched(position); }));
}

TEST_F(GatewayEvents, whatCannotBeWatchedIsRefused) {
    HttpClient http(port());
    EXPECT_EQ(http.get("/api/events?watch=").status, 400);
    QByteArray many = "/api/events?watch=test:0";
    for (int i = 1; i <= 16; ++i)
        many += "&watch=test:" + QByteArray::number(i);
    EXPECT_EQ(http.get(many).status, 400);
    EXPECT_FALSE(m_root.isValueWatched(CMPath(QStringLiteral("test:0"))));
}

TEST_F(GatewayEvents, aSettingThatIsSetOverHttpIsAnEvent) {
    Reader reader(port());
    HttpClient http(port());
    ASSERT_EQ(http.put("/api/value", R"({"path":"powermanager:target","value":2})").status, 200);
    EXPECT_TRUE(
        reader.until("oldValue")
            .contains(R"({"path":"powermanager:target","value":{"target":2},"oldValue":{}})"));
}

TEST_F(GatewayEvents, everyReaderGetsEveryEvent) {
    Reader one(port());
    Reader two(port());
    change(1);
    EXPECT_TRUE(one.until("\"+1\"").contains("\"+1\""));
    EXPECT_TRUE(two.until("\"+1\"").contains("\"+1\""));
}

TEST_F(GatewayEvents, aReaderGoesOnWhereItWas) {
    quint64 first = 0;
    {
        Reader reader(port());
        change(1);
        first = idsOf(reader.until("\"+1\"")).value(0);
    }
    change(2);
    change(3);
    for (Reader* reader :
         {new Reader(port(), {}, "Last-Event-ID: " + QByteArray::number(first) + "\r\n"),
          new Reader(port(), "?lastEventId=" + QByteArray::number(first))}) {
        const QByteArray text = reader->until("\"+3\"");
        EXPECT_EQ(idsOf(text), (QList<quint64>{first + 1, first + 2}));
        EXPECT_FALSE(text.contains("resync"));
        EXPECT_FALSE(text.contains("\"+1\""));
        delete reader;
    }
}

TEST_F(GatewayEvents, theHeaderCountsMoreThanTheAddress) {
    Reader reader(port());
    change(1);
    const quint64 first = idsOf(reader.until("\"+1\"")).value(0);
    change(2);
    Reader again(port(), "?lastEventId=5", "Last-Event-ID: " + QByteArray::number(first) + "\r\n");
    EXPECT_EQ(idsOf(again.until("\"+2\"")), QList<quint64>{first + 1});
}

TEST_F(GatewayEvents, aReaderThatSawNoEventYetStillKnowsItsPlace) {
    Reader reader(port());
    static const QRegularExpression pattern(QStringLiteral("retry: 2000\nid: (\\d+)\n\n"));
    const QByteArray id =
        pattern.match(QString::fromUtf8(reader.until("\nid: "))).captured(1).toLatin1();
    ASSERT_FALSE(id.isEmpty());
    reader.http.socket().abort();
    change(1);
    Reader again(port(), {}, "Last-Event-ID: " + id + "\r\n");
    const QByteArray text = again.until("\"+1\"");
    EXPECT_TRUE(text.contains("\"+1\""));
    EXPECT_FALSE(text.contains("resync"));
}

TEST_F(GatewayEvents, whereTheHistoryNoLongerReachesTheReaderIsToldToReadAgain) {
    restart({{"gateway/historyEvents", 3}});
    Reader reader(port());
    change(1);
    const quint64 first = idsOf(reader.until("\"+1\"")).value(0);
    for (int i = 2; i < 10; ++i)
        change(i);
    Reader again(port(), {}, "Last-Event-ID: " + QByteArray::number(first) + "\r\n");
    const QByteArray text = again.until("event: resync\ndata: {}\n\n");
    EXPECT_EQ(idsOf(text), QList<quint64>{first + 8});
    change(77);
    EXPECT_TRUE(
        again.until("\"+77\"").contains("id: " + QByteArray::number(first + 9) + "\nevent: rows"));
}

TEST_F(GatewayEvents, anEventLargerThanTheHistoryMeansReadAgain) {
    Reader reader(port());
    change(1);
    const quint64 first = idsOf(reader.until("\"+1\"")).value(0);
    // A text that is shared a thousand times: 100 MiB as an event.
    QStringList large;
    for (int i = 0; i < 1000; ++i)
        large.append(i == 0 ? QString(100 * 1024, QLatin1Char('x')) : large.first());
    events().rowsChanged(CMPath(QStringLiteral("test:list")), large, 0, -1);
    const QByteArray text = reader.until("event: resync\ndata: {}\n\n");
    EXPECT_EQ(idsOf(text), (QList<quint64>{first, first + 1}));
    EXPECT_LT(text.size(), 10000);
    change(2);
    EXPECT_TRUE(reader.until("\"+2\"").contains("id: " + QByteArray::number(first + 2)));
}

TEST_F(GatewayEvents, anIdOfAnotherRunOrNoneAtAllMeansReadAgain) {
    Reader reader(port());
    change(1);
    const quint64 first = idsOf(reader.until("\"+1\"")).value(0);
    restart();
    for (const QByteArray& id :
         {QByteArray::number(first), QByteArray("0"), QByteArray("abc"), QByteArray("-1"),
          QByteArray("99999999999999999999999"), QByteArray("18446744073709551615")}) {
        Reader again(port(), {}, "Last-Event-ID: " + id + "\r\n");
        EXPECT_TRUE(again.until("event: resync").contains("event: resync\ndata: {}\n\n"))
            << id.data();
    }
}

TEST_F(GatewayEvents, aSilentStreamShowsThatItLives) {
    restart({{"gateway/commentMs", 20}});
    Reader reader(port());
    const QByteArray text = reader.until(": still here\n\n");
    EXPECT_TRUE(text.contains(": still here\n\n"));
    EXPECT_TRUE(idsOf(text).isEmpty());
}

TEST_F(GatewayEvents, aReaderThatTakesNothingDelaysNoOtherAndIsToldToReadAgain) {
    restart({{"gateway/historyEvents", 30}});
    Reader slow(port());
    slow.http.socket().setReadBufferSize(1024);
    Reader quick(port());
    // Far more than the sockets between us and the history hold. The quick reader keeps up all the
    // while.
    const QStringList large{QString(100000, QLatin1Char('x'))};
    QByteArray seen;
    for (int round = 0; round < 40; ++round) {
        for (int i = 0; i < 10; ++i)
            events().rowsChanged(CMPath(QStringLiteral("test:list")), large, 0, -1);
        change(1000 + round);
        const QByteArray marker = "\"+" + QByteArray::number(1000 + round) + '"';
        seen = quick.until(marker);
        ASSERT_TRUE(seen.contains(marker));
        ASSERT_FALSE(seen.contains("resync"));
        quick.http.discard();
    }
    slow.http.socket().setReadBufferSize(0);
    const QByteArray text = slow.until("event: resync");
    EXPECT_TRUE(text.contains("event: resync"));
    EXPECT_LT(idsOf(text).size(), 300);
    // It may have fallen behind more than once; now that it reads it catches up with what comes.
    EXPECT_TRUE(waitUntil([&] {
        change(6);
        return slow.http.readUntil("\"+6\"", 50).contains("\"+6\"");
    }));
}

TEST_F(GatewayEvents, readersThatGoAwayAreForgotten) {
    restart({{"gateway/commentMs", 10}});
    for (int i = 0; i < 20; ++i) {
        Reader reader(port());
        reader.http.socket().abort();
    }
    HttpClient http(port());
    EXPECT_EQ(http.get("/api/paths").status, 200);
    change(1);
    EXPECT_TRUE(waitUntil([this] { return m_gateway->openStreams() == 0; }));
}

TEST_F(GatewayEvents, tooManyReadersAreSentAway) {
    std::vector<std::unique_ptr<HttpClient>> readers;
    for (int i = 0; i < HttpLimits().eventStreams; ++i) {
        readers.push_back(std::make_unique<HttpClient>(port()));
        readers.back()->write("GET /api/events HTTP/1.1\r\nHost: localhost\r\n\r\n");
    }
    ASSERT_TRUE(
        waitUntil([this] { return m_gateway->openStreams() == HttpLimits().eventStreams; }));
    HttpClient http(port());
    const HttpAnswer answer = http.get("/api/events");
    EXPECT_EQ(answer.status, 503);
    EXPECT_EQ(answer.errorName(), "TooManyReaders");
    EXPECT_EQ(http.get("/api/paths").status, 200);
}

TEST_F(GatewayEvents, theGatewayEndsWithReadersConnected) {
    Reader reader(port());
    m_gateway.reset();
    change(1);
    EXPECT_FALSE(reader.until("\"+1\"").contains("\"+1\""));
}
