#include "GatewayFixture.h"
#include "RawSocket.h"

// A head that two readers would take for two requests is no request.

namespace {

const QByteArray Write = R"({"path":"test:number","value":7})";
const QByteArray Next = "GET /api/value?path=test:number HTTP/1.1\r\nHost: localhost\r\n\r\n";

class GatewayHead : public GatewayFixture {
protected:
    // All that comes back until the gateway closes.
    QByteArray answersTo(const QByteArray& bytes, bool* isClosed) {
        RawSocket socket(port());
        socket.write(bytes);
        *isClosed = waitUntil([&] { return socket.read(), socket.isClosed(); }, 1000);
        return socket.read();
    }
};

QByteArray put(const QByteArray& fields, const QByteArray& body = Write) {
    return "PUT /api/value HTTP/1.1\r\nHost: localhost\r\n" + fields + "\r\n" + body;
}

QByteArray get(const QByteArray& fields) {
    return "GET /api/paths HTTP/1.1\r\nHost: localhost\r\n" + fields + "\r\n";
}

QByteArray length(int size = Write.size()) {
    return "Content-Length: " + QByteArray::number(size) + "\r\n";
}

QByteArray chunks(const QByteArray& text = Write) {
    return QByteArray::number(text.size(), 16) + "\r\n" + text + "\r\n0\r\n\r\n";
}

QByteArray zero(QByteArray text) {
    return text.replace('@', '\0');
}

const QByteArray Chunked = "Transfer-Encoding: chunked\r\n";

const struct {
    const char* what;
    QByteArray bytes;
} Unclear[] = {
    {"chunks and a length", put(Chunked + length(), chunks())},
    {"a length and chunks", put(length(5) + Chunked, chunks())},
    {"two lengths", put(length() + length(5))},
    {"two lengths that are equal", put(length() + length())},
    {"two lengths in one field", put("Content-Length: 32, 32\r\n")},
    {"a length with a sign", put("Content-Length: +32\r\n")},
    {"a length that is no number", put("Content-Length: x\r\n")},
    {"an empty length", put("Content-Length: \r\n")},
    {"two codings", put(Chunked + Chunked, chunks())},
    {"a coding besides chunks", put("Transfer-Encoding: gzip, chunked\r\n", chunks())},
    {"an unknown coding", put("Transfer-Encoding: identity\r\n", chunks())},
    {"a coding with a tab behind it", put("Transfer-Encoding: chunked\t\r\n", chunks())},
    {"chunks in HTTP/1.0",
     "PUT /api/value HTTP/1.0\r\nHost: localhost\r\n" + Chunked + "\r\n" + chunks()},
    {"a blank before the colon", put("Content-Length : 32\r\n")},
    {"a tab before the colon", put("Content-Length\t: 32\r\n")},
    {"a blank before the coding's colon", put(length() + "Transfer-Encoding : chunked\r\n")},
    {"a field without a colon", get("Content-Length\r\n")},
    {"a field without a name", get(": x\r\n")},
    {"a name with a bracket", get("a(b: x\r\n")},
    {"a folded field", get("X: a\r\n b\r\n")},
    {"a field folded by a tab", get("X: a\r\n\tb\r\n")},
    {"a folded coding", put(length() + "Transfer-Encoding:\r\n chunked\r\n")},
    {"a folded first field", "GET /api/paths HTTP/1.1\r\n Host: localhost\r\n\r\n"},
    {"a folded last field", "GET /api/paths HTTP/1.1\r\nHost: localhost\r\n .evil.com\r\n\r\n"},
    {"a zero behind the host", zero("GET / HTTP/1.1\r\nHost: localhost@.evil.com\r\n\r\n")},
    {"a zero before the host", zero("GET / HTTP/1.1\r\nHost: @localhost\r\n\r\n")},
    {"a zero in a name", zero(get("X@Y: x\r\n"))},
    {"a zero in a value", zero(get("X: x@y\r\n"))},
    {"a zero at a line's start", zero(get("@X: y\r\n"))},
    {"a zero in the target", zero("GET /@x HTTP/1.1\r\nHost: localhost\r\n\r\n")},
    {"a zero behind the method", zero("GET@ / HTTP/1.1\r\nHost: localhost\r\n\r\n")},
    {"a bell in a name", get("X\aY: x\r\n")},
    {"a bell in a value", get("X: \a\r\n")},
    {"a delete in a value", get("X: a\x7f\r\n")},
    {"an escape in the target", "GET /\x1b[2J HTTP/1.1\r\nHost: localhost\r\n\r\n"},
    {"a tab in the target", "GET /a\tb HTTP/1.1\r\nHost: localhost\r\n\r\n"},
    {"a blank in the target", "GET /a b HTTP/1.1\r\nHost: localhost\r\n\r\n"},
    {"two blanks before the target", "GET  / HTTP/1.1\r\nHost: localhost\r\n\r\n"},
    {"two blanks behind the target", "GET /  HTTP/1.1\r\nHost: localhost\r\n\r\n"},
    {"a carriage return in the target", "GET /a\rb HTTP/1.1\r\nHost: localhost\r\n\r\n"},
    {"a carriage return in a value", get("X: a\rY: b\r\n")},
    {"two carriage returns at a line's end", get("X: a\r\r\n")},
    {"a lone line feed behind the request line", "GET / HTTP/1.1\nHost: localhost\r\n\r\n"},
    {"a lone line feed behind a field", get("X: a\nY: b\r\n")},
    {"a lone line feed at the end", "GET / HTTP/1.1\r\nHost: localhost\r\n\n"},
    {"a method with a colon", "GE:T / HTTP/1.1\r\nHost: localhost\r\n\r\n"},
};

} // namespace

TEST_F(GatewayHead, aHeadWithTwoReadingsIsRefusedAndNothingBehindItIsRead) {
    for (const auto& row : Unclear) {
        bool isClosed = false;
        const QByteArray answers = answersTo(row.bytes + Next, &isClosed);
        EXPECT_TRUE(answers.startsWith("HTTP/1.1 400 Bad Request\r\n")) << row.what;
        EXPECT_FALSE(answers.contains("HTTP/1.1 200")) << row.what;
        EXPECT_TRUE(isClosed) << row.what;
    }
    EXPECT_EQ(HttpClient(port()).get("/api/value?path=test:number").body.toStdString(),
              R"({"value":1})");
}

TEST_F(GatewayHead, everyWayToWriteAPlainHeadIsTaken) {
    const QByteArray plain[] = {
        get("X:y\r\n"),
        get("X:\t y \t\r\n"),
        get("X:\r\nY: \r\n"),
        get("X-!#$%&'*+-.^_`|~1: \"(),/:;<=>?@[\\]{}\"\r\n"),
        get("X: gr\xc3\xbc\xc3\x9f\xe9\r\n"),
        get(QByteArray("X: ") + QByteArray(20000, 'x') + "\r\n"),
        get(QByteArray("X: y\r\n").repeated(60)),
        "\r\nGET /api/paths HTTP/1.1\r\nHost: localhost\r\n\r\n",
        "GET /api/paths?a=1&b=%20+&&c=%3d%26#x HTTP/1.1\r\nHost: localhost\r\n\r\n",
        "GET /api/%70aths?%7f%20=%c3%bc HTTP/1.1\r\nHost: localhost\r\n\r\n",
        put(length()),
    };
    for (const QByteArray& bytes : plain) {
        RawSocket socket(port());
        // Those behind it are read, too, so that the buffer is used again.
        socket.write((bytes + Next).repeated(3));
        EXPECT_TRUE(waitUntil([&] { return socket.read().count("HTTP/1.1 200 OK") == 6; }, 3000))
            << bytes.left(80).data() << socket.read().constData();
        EXPECT_FALSE(socket.isClosed()) << bytes.left(80).data();
    }
    bool isClosed = false;
    EXPECT_TRUE(answersTo("GET / HTTP/1.0\r\nHost: localhost\r\n\r\n", &isClosed)
                    .startsWith("HTTP/1.1 200"));
}

TEST_F(GatewayHead, aHeadThatComesByteByByteIsTaken) {
    RawSocket socket(port());
    for (const char byte : get("X: y\r\n") + put(length())) {
        socket.write(QByteArray(1, byte));
        turnEventLoop();
    }
    EXPECT_TRUE(waitUntil([&] { return socket.read().count("HTTP/1.1 200 OK") == 2; }, 3000));
}

TEST_F(GatewayHead, nothingBehindABodyInChunksIsRead) {
    for (const QByteArray& end : {QByteArray(), zero("@"), QByteArray("X: y\r\n")}) {
        bool isClosed = false;
        const QByteArray body = chunks().chopped(2) + end + "\r\n";
        const QByteArray answers = answersTo(put(Chunked, body) + Next, &isClosed);
        EXPECT_TRUE(answers.contains(R"({"value":7})"));
        EXPECT_EQ(answers.count("HTTP/1.1 "), 1);
        EXPECT_TRUE(answers.contains("Connection: close\r\n"));
        EXPECT_TRUE(isClosed);
    }
}
