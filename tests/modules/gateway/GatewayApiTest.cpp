#include <QJsonArray>

#include "CMNode.h"
#include "GatewayFixture.h"
#include "OrvoPlayerPaths.h"
#include "OrvoPlayListPaths.h"

namespace {

class GatewayApi : public GatewayFixture {
protected:
    HttpClient http{port()};
};

} // namespace

TEST_F(GatewayApi, pathsNameEveryPathFunctionAndThePrepareCall) {
    const HttpAnswer answer = http.get("/api/paths");
    ASSERT_EQ(answer.status, 200);
    EXPECT_EQ(answer.headers.value("content-type"), "application/json");
    const QJsonObject paths = answer.json();
    EXPECT_EQ(paths.size(), orvoPlayListPaths().size() + orvoPlayerPaths().size() +
                                CMValueStore::declarations().size() + 1);
    EXPECT_EQ(paths.value("OrvoPlayerPausePath"), "player:pause");
    EXPECT_EQ(paths.value("OrvoPlayListPlMoveItemspath"), "playlists:pl/moveItems");
    EXPECT_EQ(paths.value("OrvoPowerManagerTargetPath"), "powermanager:target");
    EXPECT_EQ(paths.value("OrvoPlayListPrepareItems"), "prepareItems");
}

TEST_F(GatewayApi, modulesAreThosePrefixesThatHaveAWorker) {
    const QJsonArray modules = http.get("/api/modules").json().value("modules").toArray();
    EXPECT_TRUE(modules.contains("test"));
    EXPECT_TRUE(modules.contains("gateway"));
    EXPECT_FALSE(modules.contains("player"));
}

TEST_F(GatewayApi, rowsComeWithTitleCountAndTheAskedForRolesInOrder) {
    const HttpAnswer answer =
        http.get("/api/rows?path=test:list&from=2&to=3&roles=type,title,nosuch,type");
    ASSERT_EQ(answer.status, 200);
    EXPECT_EQ(
        answer.body.toStdString(),
        R"({"title":"List of 10","rowsCount":10,"roles":{"title":"List of 10"},"rows":[)"
        R"({"type":3,"title":"row 2","nosuch":null},{"type":3,"title":"row 3","nosuch":null}]})");
}

TEST_F(GatewayApi, aListsRevisionAndLastPlayedRowStandBesideItsCount) {
    const HttpAnswer answer = http.get("/api/rows?path=test:revised");
    ASSERT_EQ(answer.status, 200);
    EXPECT_EQ(
        answer.body.toStdString(),
        R"({"title":"","rowsCount":0,"revision":9007199254740991,"lastPlayedIndex":4,"resumeIndex":4,"roles":{},"rows":[]})");
}

TEST_F(GatewayApi, withoutRolesTheDefaultSetComes) {
    const QJsonObject row = http.get("/api/rows?path=test:list&from=0&to=0")
                                .json()
                                .value("rows")
                                .toArray()
                                .at(0)
                                .toObject();
    QStringList expected = OrvoRoles::defaultNames();
    expected.sort();
    EXPECT_EQ(row.keys(), expected);
    EXPECT_EQ(row.value("path"), "test:row/0");
}

TEST_F(GatewayApi, withoutARangeAllRowsCome) {
    const QJsonObject answer = http.get("/api/rows?path=test:big&roles=title").json();
    EXPECT_EQ(answer.value("rowsCount"), 20000);
    EXPECT_EQ(answer.value("rows").toArray().size(), 20000);
}

TEST_F(GatewayApi, aRangeFromBehindIsLeftToTheList) {
    const QJsonArray rows =
        http.get("/api/rows?path=test:list&from=5&to=2&roles=title").json().value("rows").toArray();
    ASSERT_EQ(rows.size(), 4);
    EXPECT_EQ(rows.at(0).toObject().value("title"), "row 2");
}

TEST_F(GatewayApi, rowsOfEveryKindHaveAForm) {
    const HttpAnswer answer = http.get("/api/rows?path=test:odd&roles=a,b,c,d,%22");
    ASSERT_EQ(answer.status, 200);
    EXPECT_EQ(
        answer.body.toStdString(),
        R"({"title":"","rowsCount":3,"roles":{},"rows":[{"a":null,"b":1.5,"c":"odd","d":"test:a%20b","\"":null},)"
        R"({"a":null,"b":null,"c":null,"d":null,"\"":null},{"a":null,"b":null,"c":null,"d":null,"\"":null}]})");
}

TEST_F(GatewayApi, aCommandIsAnsweredWithItsResult) {
    const HttpAnswer answer = http.post(
        "/api/data", R"({"path":"test:echo","value":{"b":9007199254740993,"a":[1,{"c":"é"}]}})");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body.toStdString(), R"({"result":{"a":[1,{"c":"é"}],"b":9007199254740993}})");
}

TEST_F(GatewayApi, aListIsDataToo) {
    EXPECT_EQ(
        http.post("/api/data", R"({"path":"test:echo","value":["test:a"]})").body.toStdString(),
        R"({"result":["test:a"]})");
}

TEST_F(GatewayApi, anAsynchronousCommandIsAnsweredWhenItCompletes) {
    EXPECT_EQ(http.post("/api/data", R"({"path":"test:late","value":{"x":1}})").body.toStdString(),
              R"({"result":{"x":1}})");
}

TEST_F(GatewayApi, aSlowCommandHoldsUpNoOtherClient) {
    HttpClient slow(port());
    slow.write("POST /api/data HTTP/1.1\r\nHost: localhost\r\nContent-Length: 38\r\n\r\n"
               R"({"path":"test:silent","value":{"x":1}})");
    ASSERT_TRUE(waitUntil([this] { return m_module->kept().size() == 1; }));
    EXPECT_EQ(http.get("/api/paths").status, 200);
    m_module->kept().takeFirst().reply().setValue(QStringLiteral("done"));
    EXPECT_EQ(slow.readAnswer().body.toStdString(), R"({"result":"done"})");
}

TEST_F(GatewayApi, aRefusalCarriesNameTitleAndMessage) {
    const HttpAnswer answer = http.post("/api/data", R"({"path":"test:refuse","value":{}})");
    EXPECT_EQ(answer.status, 422);
    EXPECT_EQ(answer.body.toStdString(),
              R"({"error":{"name":"Taken","title":"Refused","message":"No \"way\"."}})");
}

TEST_F(GatewayApi, aRefusalBecauseOfAChangeMeanwhileIsAConflict) {
    const HttpAnswer answer = http.post("/api/data", R"({"path":"test:outdated","value":{}})");
    EXPECT_EQ(answer.status, 409);
    EXPECT_EQ(answer.body.toStdString(),
              R"({"error":{"name":"Conflict","title":"Error","message":"It has changed."}})");
}

TEST_F(GatewayApi, aRequestThatItsModuleDropsIsRefusedAtOnce) {
    const HttpAnswer data = http.post("/api/data", R"({"path":"test:dropped","value":{}})");
    EXPECT_EQ(data.status, 422);
    EXPECT_EQ(data.errorName(), "NotAnswered");
    const HttpAnswer rows = http.get("/api/rows?path=test:dropped");
    EXPECT_EQ(rows.status, 422);
    EXPECT_EQ(rows.errorName(), "NotAnswered");
}

TEST_F(GatewayApi, aModuleThatKeepsSilentCostsATimeout) {
    restart({{"gateway/answerTimeoutMs", 40}});
    HttpClient client(port());
    const HttpAnswer answer = client.post("/api/data", R"({"path":"test:silent","value":{}})");
    EXPECT_EQ(answer.status, 504);
    EXPECT_EQ(answer.errorName(), "Timeout");
    // The late answer finds no request, and the connection goes on.
    ASSERT_EQ(m_module->kept().size(), 1);
    m_module->kept().takeFirst().reply().setValue(1);
    EXPECT_EQ(client.get("/api/paths").status, 200);
}

TEST_F(GatewayApi, aClientThatWentAwayIsNotMissed) {
    {
        HttpClient gone(port());
        gone.write("POST /api/data HTTP/1.1\r\nHost: localhost\r\nContent-Length: 38\r\n\r\n"
                   R"({"path":"test:silent","value":{"x":1}})");
        ASSERT_TRUE(waitUntil([this] { return m_module->kept().size() == 1; }));
        gone.socket().abort();
    }
    m_module->kept().takeFirst().reply().setValue(1);
    turnEventsFor(20);
    EXPECT_EQ(http.get("/api/paths").status, 200);
}

TEST_F(GatewayApi, anAnswerAfterTheGatewayIsGoneIsDropped) {
    http.write("POST /api/data HTTP/1.1\r\nHost: localhost\r\nContent-Length: 38\r\n\r\n"
               R"({"path":"test:silent","value":{"x":1}})");
    ASSERT_TRUE(waitUntil([this] { return m_module->kept().size() == 1; }));
    m_gateway.reset();
    m_module->kept().takeFirst().reply().setValue(1);
    m_module->kept().clear();
    EXPECT_EQ(http.readAnswer().status, 0);
}

TEST_F(GatewayApi, aValueIsReadAndSet) {
    EXPECT_EQ(http.get("/api/value?path=settings:playlists/databaseItemsLimit").body.toStdString(),
              R"({"value":{}})");
    const QByteArray limit = R"({"path":"settings:playlists/databaseItemsLimit","value":)";
    EXPECT_EQ(http.put("/api/value", limit + "{\"i32\":100}}").body.toStdString(),
              R"({"value":{"i32":100}})");
    EXPECT_EQ(http.put("/api/value", limit + "7}").body.toStdString(), R"({"value":{"i32":7}})");
    EXPECT_EQ(http.get("/api/value?path=settings:playlists/databaseItemsLimit").body.toStdString(),
              R"({"value":{"i32":7}})");
}

TEST_F(GatewayApi, aValueOfTheWrongTypeIsRefusedAndChangesNothing) {
    const QByteArray limit = R"({"path":"settings:playlists/databaseItemsLimit","value":)";
    ASSERT_EQ(http.put("/api/value", limit + "7}").status, 200);
    for (const char* value :
         {"{}}", "true}", "1.5}", "\"x\"}", "{\"bool\":true}}", "99999999999}"}) {
        const HttpAnswer answer = http.put("/api/value", limit + value);
        EXPECT_EQ(answer.status, 422) << value;
        EXPECT_EQ(answer.errorName(), "InvalidValue") << value;
    }
    EXPECT_EQ(http.get("/api/value?path=settings:playlists/databaseItemsLimit").body.toStdString(),
              R"({"value":{"i32":7}})");
}

TEST_F(GatewayApi, aModulesOwnValueIsReadAndSet) {
    EXPECT_EQ(http.get("/api/value?path=test:number").body.toStdString(), R"({"value":1})");
    EXPECT_EQ(http.put("/api/value", R"({"path":"test:number","value":[2]})").body.toStdString(),
              R"({"value":[2]})");
}

TEST_F(GatewayApi, oneConnectionServesManyRequests) {
    for (int i = 0; i < 50; ++i)
        ASSERT_EQ(http.get("/api/paths").status, 200);
    const quint16 port = http.socket().localPort();
    EXPECT_EQ(http.get("/api/rows?path=test:list").status, 200);
    EXPECT_EQ(http.socket().localPort(), port);
}

TEST_F(GatewayApi, requestsThatArriveTogetherAreAnsweredInOrder) {
    http.write("GET /api/value?path=test:number HTTP/1.1\r\nHost: localhost\r\n\r\n"
               "GET /api/nothing HTTP/1.1\r\nHost: localhost\r\n\r\n"
               "GET /api/paths HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_EQ(http.readAnswer().body.toStdString(), R"({"value":1})");
    EXPECT_EQ(http.readAnswer().status, 404);
    EXPECT_EQ(http.readAnswer().status, 200);
}

TEST_F(GatewayApi, headIsGetWithoutItsBody) {
    const HttpAnswer head = http.send("HEAD", "/api/rows?path=test:list");
    EXPECT_EQ(head.status, 200);
    EXPECT_EQ(head.headers.value("content-length").toInt(),
              http.get("/api/rows?path=test:list").body.size());
    EXPECT_EQ(http.send("HEAD", "/api/rows?path=test:nothing").status, 404);
}
