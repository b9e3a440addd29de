#include <QRandomGenerator>

#include "GatewayFixture.h"

// Whatever comes in is answered, changes nothing, and leaves the gateway at work.

namespace {

struct Input {
    const char* what;
    QByteArray method;
    QByteArray target;
    QByteArray body;
    int status;
    const char* errorName;
};

QByteArray nested(int depth) {
    return R"({"path":"test:echo","value":)" + QByteArray(depth, '[') + QByteArray(depth, ']') +
           '}';
}

QByteArray distinctNames(int count) {
    QByteArray names;
    for (int i = 0; i < count; ++i)
        names += 'r' + QByteArray::number(i) + ',';
    return names;
}

const Input Inputs[] = {
    {"no body", "POST", "/api/data", "", 400, "Malformed"},
    {"half a body", "POST", "/api/data", R"({"path":)", 400, "Malformed"},
    {"a list as body", "POST", "/api/data", R"(["test:echo"])", 400, "Malformed"},
    {"a text as body", "POST", "/api/data", R"("test:echo")", 400, "Malformed"},
    {"something behind the body", "POST", "/api/data", R"({"path":"test:echo","value":{}}{})", 400,
     "Malformed"},
    {"bytes that are no UTF-8", "POST", "/api/data",
     "{\"path\":\"test:echo\",\"value\":{\"a\":\"\xff\xfe\"}}", 400, "Malformed"},
    {"a name that stands twice", "POST", "/api/data",
     R"({"path":"test:echo","value":{"a":[],"a":[]}})", 400, "Malformed"},
    {"a zero behind the body", "POST", "/api/data",
     QByteArray(R"({"path":"test:echo","value":[]})") + QByteArray(1, '\0'), 400, "Malformed"},
    {"a body of zeros", "POST", "/api/data", QByteArray(100, '\0'), 400, "Malformed"},
    {"a form", "POST", "/api/data", "path=test%3Aecho&value=1", 400, "Malformed"},
    {"no path", "POST", "/api/data", R"({"value":{}})", 400, "Malformed"},
    {"a number as path", "POST", "/api/data", R"({"path":5,"value":{}})", 400, "Malformed"},
    {"null as path", "POST", "/api/data", R"({"path":null,"value":{}})", 400, "Malformed"},
    {"a list as path", "POST", "/api/data", R"({"path":["test:echo"],"value":{}})", 400,
     "Malformed"},
    {"an empty path", "POST", "/api/data", R"({"path":"","value":{}})", 400, "Malformed"},
    {"a path without prefix", "POST", "/api/data", R"({"path":"echo","value":{}})", 400,
     "Malformed"},
    {"no value", "POST", "/api/data", R"({"path":"test:echo"})", 400, "Malformed"},
    {"null as data", "POST", "/api/data", R"({"path":"test:echo","value":null})", 400, "Malformed"},
    {"a number as data", "POST", "/api/data", R"({"path":"test:echo","value":1})", 400,
     "Malformed"},
    {"a text as data", "POST", "/api/data", R"({"path":"test:echo","value":"x"})", 400,
     "Malformed"},
    {"deep nesting", "POST", "/api/data", nested(100), 400, "Malformed"},
    {"very deep nesting", "POST", "/api/data", nested(100000), 400, "Malformed"},
    {"an unknown module", "POST", "/api/data", R"({"path":"nobody:x","value":{}})", 404,
     "NoSuchNode"},
    {"an unknown node", "POST", "/api/data", R"({"path":"test:nothing","value":{}})", 404,
     "NoSuchNode"},
    {"a bare prefix", "POST", "/api/data", R"({"path":"test:","value":{}})", 404, "NoSuchNode"},
    {"a list used as a command", "POST", "/api/data", R"({"path":"test:list","value":{}})", 422,
     "NotSupported"},
    {"a command used as a list", "GET", "/api/rows?path=test:echo", "", 422, "NotSupported"},
    {"rows of an unknown node", "GET", "/api/rows?path=test:nothing", "", 404, "NoSuchNode"},
    {"rows of an unknown module", "GET", "/api/rows?path=nobody:x", "", 404, "NoSuchNode"},
    {"rows without a path", "GET", "/api/rows", "", 400, "Malformed"},
    {"rows of nothing", "GET", "/api/rows?path=", "", 400, "Malformed"},
    {"a path that is no UTF-8", "GET", "/api/rows?path=test:%ff%fe", "", 400, "Malformed"},
    {"an address that is no UTF-8", "GET", "/%ff", "", 400, "Malformed"},
    {"a negative row", "GET", "/api/rows?path=test:list&from=-1", "", 400, "Malformed"},
    {"a row that is no number", "GET", "/api/rows?path=test:list&from=x", "", 400, "Malformed"},
    {"a broken row", "GET", "/api/rows?path=test:list&to=1.5", "", 400, "Malformed"},
    {"an empty row", "GET", "/api/rows?path=test:list&to=", "", 400, "Malformed"},
    {"a row with a sign", "GET", "/api/rows?path=test:list&to=%2b1", "", 400, "Malformed"},
    {"too many roles", "GET", "/api/rows?path=test:list&roles=" + distinctNames(65), "", 400,
     "Malformed"},
    {"a huge row", "GET", "/api/rows?path=test:list&to=99999999999999999999", "", 400, "Malformed"},
    {"a row beyond 32 bits", "GET", "/api/rows?path=test:list&to=2147483648", "", 400, "Malformed"},
    {"an unknown value", "GET", "/api/value?path=test:list", "", 404, "NoSuchNode"},
    {"a value without a path", "GET", "/api/value", "", 400, "Malformed"},
    {"setting an unknown value", "PUT", "/api/value", R"({"path":"test:x","value":1})", 404,
     "NoSuchNode"},
    {"setting an unknown setting", "PUT", "/api/value", R"({"path":"settings:x","value":1})", 404,
     "NoSuchNode"},
    {"setting nothing", "PUT", "/api/value", R"({"path":"test:number"})", 400, "Malformed"},
    {"setting without a body", "PUT", "/api/value", "", 400, "Malformed"},
    {"an unknown resource", "GET", "/api/nothing", "", 404, "NoSuchResource"},
    {"a resource with a slash too many", "GET", "/api/rows/?path=test:list", "", 404,
     "NoSuchResource"},
    {"an unknown resource to write", "POST", "/nothing", "", 404, "NoSuchResource"},
};

} // namespace

using GatewayInput = GatewayFixture;

TEST_F(GatewayInput, whatCannotBeUsedIsRefusedAndChangesNothing) {
    HttpClient http(port());
    for (const Input& input : Inputs) {
        const HttpAnswer answer = http.send(input.method, input.target, input.body);
        EXPECT_EQ(answer.status, input.status) << input.what;
        EXPECT_EQ(answer.errorName(), input.errorName) << input.what;
        EXPECT_FALSE(answer.errorMessage().isEmpty()) << input.what;
    }
    EXPECT_EQ(m_module->writes(), 0);
    EXPECT_EQ(http.get("/api/value?path=test:number").body.toStdString(), R"({"value":1})");
}

TEST_F(GatewayInput, hugeNumbersReachAModuleWhole) {
    HttpClient http(port());
    EXPECT_EQ(
        http.post("/api/data", R"({"path":"test:echo","value":[9223372036854775807,1e300,-0.0]})")
            .body.toStdString(),
        R"({"result":[9223372036854775807,1e+300,0]})");
}

TEST_F(GatewayInput, aMethodThatAResourceDoesNotHaveIsNamedWithThoseItHas) {
    const struct {
        QByteArray method, target, allow;
    } rows[] = {
        {"POST", "/api/paths", "GET, HEAD"},
        {"DELETE", "/api/rows", "GET, HEAD"},
        {"GET", "/api/data", "POST"},
        {"POST", "/api/value", "GET, HEAD, PUT"},
        {"HEAD", "/api/events", "GET"},
        {"OPTIONS", "/api/data", "POST"},
        {"BREW", "/api/value", "GET, HEAD, PUT"},
        {"POST", "/", "GET, HEAD"},
    };
    for (const auto& row : rows) {
        HttpClient http(port());
        const HttpAnswer answer = http.send(row.method, row.target);
        EXPECT_EQ(answer.status, 405) << row.method.data() << row.target.data();
        EXPECT_EQ(answer.headers.value("allow"), row.allow) << row.target.data();
    }
}

TEST_F(GatewayInput, aBodyOfExactlyTheLimitIsTaken) {
    HttpClient http(port());
    QByteArray body = R"({"path":"test:echo","value":[")";
    body += QByteArray(HttpLimits().bodyBytes - body.size() - 3, 'x') + "\"]}";
    ASSERT_EQ(body.size(), HttpLimits().bodyBytes);
    EXPECT_EQ(http.post("/api/data", body).status, 200);
    const HttpAnswer answer = http.post("/api/data", body + ' ');
    EXPECT_EQ(answer.status, 413);
    EXPECT_EQ(answer.errorName(), "TooLarge");
    EXPECT_EQ(m_module->writes(), 1);
    EXPECT_EQ(http.get("/api/paths").status, 200);
}

TEST_F(GatewayInput, aBodyThatIsTooLargeIsRefusedBeforeItIsSentWhenTheClientAsks) {
    HttpClient http(port());
    http.write(
        "POST /api/data HTTP/1.1\r\nHost: localhost\r\nExpect: 100-continue\r\nContent-Length: 9437184\r\n\r\n");
    EXPECT_EQ(http.readAnswer().status, 413);
}

TEST_F(GatewayInput, aBodyInChunksIsTaken) {
    HttpClient http(port());
    http.write("POST /api/data HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n"
               "13\r\n{\"path\":\"test:echo\"\r\nd\r\n,\"value\":[1]}\r\n0\r\n\r\n");
    EXPECT_EQ(http.readAnswer().body.toStdString(), R"({"result":[1]})");
}

TEST_F(GatewayInput, randomBytesNeverStopTheGateway) {
    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    RecordProperty("seed", std::to_string(seed));
    const QByteArray valid = R"({"path":"test:echo","value":{"a":[1,2.5,"text",null,{"b":true}]}})";
    HttpClient checker(port());
    for (int i = 0; i < 300; ++i) {
        QByteArray body = valid;
        for (int k = random.bounded(1, 6); k > 0; --k)
            body[random.bounded(body.size())] = char(random.bounded(256));
        HttpClient http(port());
        const int status = http.post("/api/data", body).status;
        ASSERT_TRUE(status == 200 || status == 400 || status == 404 || status == 422)
            << status << " seed " << seed;
        QByteArray raw(random.bounded(1, 200), '\0');
        for (char& c : raw)
            c = char(random.bounded(256));
        HttpClient garbage(port());
        garbage.write(raw + "\r\n\r\n");
    }
    EXPECT_EQ(checker.get("/api/paths").status, 200);
}

TEST_F(GatewayInput, aRequestThatIsBrokenOffIsForgotten) {
    for (const char* part :
         {"GET", "GET /api/paths HTTP/1.1\r\nHo",
          "POST /api/data HTTP/1.1\r\nHost: localhost\r\nContent-Length: 50\r\n\r\n{"}) {
        HttpClient http(port());
        http.write(part);
        http.socket().flush();
        turnEventsFor(10);
        http.socket().abort();
    }
    turnEventsFor(20);
    HttpClient http(port());
    EXPECT_EQ(http.get("/api/paths").status, 200);
    EXPECT_EQ(m_module->writes(), 0);
}
