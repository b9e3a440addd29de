#include <QFile>
#include <QHostAddress>
#include <QTcpServer>

#include "GatewayFixture.h"
#include "LogCapture.h"

using GatewayWorkerTest = GatewayFixture;

TEST_F(GatewayWorkerTest, itSaysWhereItListens) {
    const LogCapture log(QStringLiteral("Gateway"));
    restart();
    EXPECT_TRUE(log.contains(QStringLiteral("INFO"),
                             QStringLiteral("listening on http://127.0.0.1:%1").arg(port())));
    EXPECT_EQ(CMRoot()->getValue(CMPath(QStringLiteral("gateway:port"))),
              OrvoValue::fromI32(port()).toVariant());
}

TEST_F(GatewayWorkerTest, theDeviceHasTheNameThatItWasGivenElseThatOfTheMachine) {
    const CMPath name(QStringLiteral("gateway:name"));
    restart();
    EXPECT_EQ(OrvoValue(CMRoot()->getValue(name)).string(), QSysInfo::machineHostName());
    restart({{"gateway/name", QStringLiteral("Kitchen")}});
    EXPECT_EQ(OrvoValue(CMRoot()->getValue(name)).string(), "Kitchen");
}

TEST_F(GatewayWorkerTest, thePortIsWrittenToTheFileThatWasAskedFor) {
    const QString file = m_folder.filePath(QStringLiteral("port"));
    restart({{"gateway/portFile", file}});
    QFile written(file);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), QByteArray::number(port()) + '\n');
}

TEST_F(GatewayWorkerTest, aPortThatIsTakenIsFatalAndNamed) {
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress(QHostAddress::LocalHost)));
    m_gateway.reset();
    const QString address = QStringLiteral("127.0.0.1:%1").arg(taken.serverPort());
    GatewayWorker worker({{"gateway/listen", address}});
    const LogCapture log(QStringLiteral("Gateway"));
    EXPECT_FALSE(worker.start());
    ASSERT_EQ(log.texts(QStringLiteral("FATAL")).size(), 1);
    EXPECT_TRUE(
        log.texts(QStringLiteral("FATAL")).at(0).startsWith("cannot listen on " + address + ": "));
}

TEST_F(GatewayWorkerTest, anAddressThatIsNoneIsFatal) {
    m_gateway.reset();
    for (const char* address :
         {"", "8080", "127.0.0.1", "127.0.0.1:", ":8080", "127.0.0.1:70000", "no.such.host:1"}) {
        GatewayWorker worker({{"gateway/listen", address}});
        const LogCapture log(QStringLiteral("Gateway"));
        EXPECT_FALSE(worker.start()) << address;
        EXPECT_EQ(log.texts(QStringLiteral("FATAL")).size(), 1) << address;
    }
}

TEST_F(GatewayWorkerTest, aPortFileThatCannotBeWrittenIsFatal) {
    m_gateway.reset();
    GatewayWorker worker({{"gateway/listen", "127.0.0.1:0"},
                          {"gateway/portFile", m_folder.path() + "/no/such/file"}});
    EXPECT_FALSE(worker.start());
}

TEST_F(GatewayWorkerTest, itComesBackOnItsPortAtOnce) {
    HttpClient http(port());
    ASSERT_EQ(http.get("/api/paths").status, 200);
    const quint16 before = port();
    m_gateway.reset();
    m_gateway = std::make_unique<GatewayWorker>(
        QHash<QString, QVariant>{{"gateway/listen", QStringLiteral("127.0.0.1:%1").arg(before)}});
    ASSERT_TRUE(m_gateway->start());
    EXPECT_EQ(port(), before);
}
