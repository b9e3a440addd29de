#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include "HostProcess.h"

namespace {

class Modules : public HostFixture {};

TEST_F(Modules, areLoadedInOrderAndDestroyedInReverse) {
    HostProcess host(arguments({"--module", OTHER_MODULE}));
    ASSERT_TRUE(host.waitUntilReady());
    EXPECT_EQ(host.endBy(SIGTERM), 0);
    EXPECT_EQ(probeLog().filter("probe") + probeLog().filter("other"),
              (QStringList{"create probe", "destroy probe", "create other", "destroy other"}));
    EXPECT_LT(probeLog().indexOf("create probe"), probeLog().indexOf("create other"));
    EXPECT_LT(probeLog().indexOf("destroy other"), probeLog().indexOf("destroy probe"));
}

TEST_F(Modules, areGivenTheConfiguration) {
    HostProcess host({"--data", "data", "--module", PROBE_MODULE, "--music", "my music", "--listen",
                      "127.0.0.1:0", "--port-file", "port", "--web", "web", "--audio-sink",
                      "wav=sound.wav", "--token-file", "token", "--config", "a/b=c"},
                     {}, path(""));
    ASSERT_TRUE(host.waitUntilReady());
    host.endBy(SIGTERM);
    const QJsonObject config = QJsonDocument::fromJson(read(data("config.json")).toUtf8()).object();
    EXPECT_EQ(config, (QJsonObject{{"dataDir", path("data")},
                                   {"musicDir", path("my music")},
                                   {"gateway/listen", "127.0.0.1:0"},
                                   {"gateway/tokenFile", path("token")},
                                   {"a/b", "c"},
                                   {"gateway/portFile", path("port")},
                                   {"gateway/webRoot", path("web")},
                                   {"player/audioSink", "wav=" + path("sound.wav")}}));
}

TEST_F(Modules, areFoundByTheirBareNameBesideTheProgram) {
    HostProcess host({"--data", path("data"), "--module", QFileInfo(PROBE_MODULE).fileName()});
    ASSERT_TRUE(host.waitUntilReady()) << qPrintable(host.errors());
    EXPECT_EQ(host.endBy(SIGTERM), 0);
}

TEST_F(Modules, thatCannotBeLoadedEndTheStartWithTheirName) {
    QFile text(path("text.so"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("this is no library at all, however long it is");
    text.close();
    struct Case {
        QString module;
        QString mode;
        QString reason;
    };
    const Case cases[] = {
        {path("gone.so"), {}, "there is no such file"},
        {"libgone.so", {}, "there is no such file beside the program"},
        {NO_MODULE, {}, "it has no worker_create"},
        {path("text.so"), {}, path("text.so") + ": file too short"},
        {PROBE_MODULE, "null", "its worker_create made no worker"},
        {PROBE_MODULE, "throw", "no such luck"},
    };
    for (const Case& each : cases) {
        HostProcess host({"--data", path("data"), "--module", each.module}, each.mode);
        EXPECT_EQ(host.end(), 1);
        EXPECT_EQ(host.errors(),
                  QString("orvo-host: cannot load module %1: %2\n").arg(each.module, each.reason));
        EXPECT_EQ(host.output(), "");
    }
}

TEST_F(Modules, loadedBeforeOneThatFailsAreDestroyed) {
    HostProcess host(arguments({"--module", path("gone.so"), "--log-file", path("the.log")}));
    EXPECT_EQ(host.end(), 1);
    EXPECT_EQ(probeLog().constFirst(), "create probe");
    EXPECT_EQ(probeLog().constLast(), "destroy probe");
    // Said to the caller that started it, and to the log where that is somewhere else.
    const QString message = "cannot load module " + path("gone.so") + ": there is no such file\n";
    EXPECT_EQ(host.errors(), "orvo-host: " + message);
    EXPECT_TRUE(read(path("the.log")).endsWith("ERROR Host - " + message));
}

} // namespace
