#include "HostOptions.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

std::optional<HostOptions::Ending> read(HostOptions* options, const QStringList& arguments) {
    return options->read(QStringList{"orvo-host"} + arguments);
}

TEST(HostOptionsTest, theDefaultsAreThoseOfADevice) {
    HostOptions options;
    ASSERT_FALSE(read(&options, {}));
    EXPECT_EQ(options.dataDir(), QDir::currentPath());
    EXPECT_TRUE(options.modules().isEmpty());
    EXPECT_TRUE(options.settings().isEmpty());
    EXPECT_EQ(options.logLevel(), log4cplus::INFO_LOG_LEVEL);
    EXPECT_EQ(options.logFile(), "");
    const QHash<QString, QVariant> config = options.moduleConfig();
    EXPECT_EQ(config.value("gateway/listen"), "127.0.0.1:8080");
    EXPECT_EQ(config.value("musicDir"), "");
    EXPECT_EQ(config.value("gateway/portFile"), "");
    EXPECT_EQ(config.value("dataDir"), QDir::currentPath());
}

TEST(HostOptionsTest, fileNamesBecomeAbsolute) {
    HostOptions options;
    ASSERT_FALSE(read(&options, {"--data", "d/../e", "--music", "./m", "--port-file", "p", "--web",
                                 "w", "--log-file", "l", "--module", "x/liba.so", "--module",
                                 "/y/libb.so", "--module", "libc.so"}));
    const QString here = QDir::currentPath() + "/";
    EXPECT_EQ(options.dataDir(), here + "e");
    EXPECT_EQ(options.logFile(), here + "l");
    EXPECT_EQ(options.modules(), (QStringList{here + "x/liba.so", "/y/libb.so", "libc.so"}));
    const QHash<QString, QVariant> config = options.moduleConfig();
    EXPECT_EQ(config.value("dataDir"), here + "e");
    EXPECT_EQ(config.value("musicDir"), here + "m");
    EXPECT_EQ(config.value("gateway/portFile"), here + "p");
    EXPECT_EQ(config.value("gateway/webRoot"), here + "w");
}

TEST(HostOptionsTest, settingsAreSplitAtTheFirstEqualsSign) {
    HostOptions options;
    ASSERT_FALSE(read(&options, {"--set", "a:b=c=d", "--set", "a:e="}));
    EXPECT_EQ(options.settings(), (QList<QPair<QString, QString>>{{"a:b", "c=d"}, {"a:e", ""}}));
}

TEST(HostOptionsTest, furtherKeysReachTheModulesUnlessTheyHaveAnOption) {
    HostOptions options;
    ASSERT_FALSE(read(&options, {"--config", "gateway/hosts=radio", "--config", "dataDir=/x",
                                 "--token-file", "t"}));
    const QHash<QString, QVariant> config = options.moduleConfig();
    EXPECT_EQ(config.value("gateway/hosts"), "radio");
    EXPECT_EQ(config.value("dataDir"), QDir::currentPath());
    EXPECT_EQ(config.value("gateway/tokenFile"), QDir::currentPath() + "/t");
}

TEST(HostOptionsTest, theLogHasItsLimits) {
    HostOptions options;
    ASSERT_FALSE(read(&options, {}));
    EXPECT_EQ(options.logLimits().lineBytes, 2048);
    EXPECT_EQ(options.logLimits().alike, 20);
    EXPECT_EQ(options.logLimits().fileBytes, 10485760);
    EXPECT_EQ(options.logLimits().files, 5);
    HostOptions other;
    ASSERT_FALSE(
        read(&other, {"--config", "log/maxLineBytes=0", "--config", "log/maxAlike=0", "--config",
                      "log/maxFileBytes=0", "--config", "log/files=1", "--config", "log/files=2"}));
    EXPECT_EQ(other.logLimits().lineBytes, 0);
    EXPECT_EQ(other.logLimits().alike, 0);
    EXPECT_EQ(other.logLimits().fileBytes, 0);
    EXPECT_EQ(other.logLimits().files, 2) << "the last one counts";
}

TEST(HostOptionsTest, everyLogLevelHasItsName) {
    const QList<QPair<const char*, log4cplus::LogLevel>> levels = {
        {"trace", log4cplus::TRACE_LOG_LEVEL}, {"debug", log4cplus::DEBUG_LOG_LEVEL},
        {"info", log4cplus::INFO_LOG_LEVEL},   {"warn", log4cplus::WARN_LOG_LEVEL},
        {"error", log4cplus::ERROR_LOG_LEVEL}, {"fatal", log4cplus::FATAL_LOG_LEVEL}};
    for (const auto& [name, level] : levels) {
        HostOptions options;
        ASSERT_FALSE(read(&options, {"--log-level", name}));
        EXPECT_EQ(options.logLevel(), level) << name;
    }
}

TEST(HostOptionsTest, listenTakesAnAddressAndAPort) {
    for (const char* text : {"127.0.0.1:0", "[::1]:8080", "localhost:65535"}) {
        HostOptions options;
        ASSERT_FALSE(read(&options, {"--listen", text})) << text;
        EXPECT_EQ(options.moduleConfig().value("gateway/listen"), text);
    }
}

TEST(HostOptionsTest, aWrongCallHasStatusTwoAndSaysWhatIsWrong) {
    struct Case {
        QStringList arguments;
        QString message;
    };
    const Case cases[] = {
        {{"--nonsense"}, "Unknown option 'nonsense'."},
        {{"--data"}, "Missing value after '--data'."},
        {{"--data", ""}, "--data needs a value"},
        {{"--module="}, "--module needs a value"},
        {{"music"}, "what is \"music\"?"},
        {{"--audio-sink", "wav="}, "--audio-sink takes auto, null or wav=FILE, not \"wav=\""},
        {{"--audio-sink", "loud"}, "--audio-sink takes auto, null or wav=FILE, not \"loud\""},
        {{"--log-level", "loud"}, "there is no log level \"loud\""},
        {{"--log-level", "INFO"}, "there is no log level \"INFO\""},
        {{"--listen", "8080"}, "--listen takes ADDRESS:PORT, not \"8080\""},
        {{"--listen", ":8080"}, "--listen takes ADDRESS:PORT, not \":8080\""},
        {{"--listen", "127.0.0.1:"}, "--listen takes ADDRESS:PORT, not \"127.0.0.1:\""},
        {{"--listen", "127.0.0.1:65536"}, "--listen takes ADDRESS:PORT, not \"127.0.0.1:65536\""},
        {{"--listen", "127.0.0.1:-1"}, "--listen takes ADDRESS:PORT, not \"127.0.0.1:-1\""},
        {{"--set", "a:b"}, "--set takes PATH=VALUE, not \"a:b\""},
        {{"--set", "=1"}, "--set takes PATH=VALUE, not \"=1\""},
        {{"--config", "a"}, "--config takes KEY=VALUE, not \"a\""},
        {{"--token-file", ""}, "--token-file needs a value"},
        {{"--config", "log/files=0"}, "log/files takes a number from 1 to 1000, not \"0\""},
        {{"--config", "log/files=five"}, "log/files takes a number from 1 to 1000, not \"five\""},
        {{"--config", "log/maxAlike=-1"},
         "log/maxAlike takes 0 or a number from 1 to 2147483647, not \"-1\""},
        {{"--config", "log/maxLineBytes=199"},
         "log/maxLineBytes takes 0 or a number from 200 to 1073741824, not \"199\""},
        {{"--config", "log/maxFileBytes=204799"},
         "log/maxFileBytes takes 0 or a number from 204800 to 2147483647, not \"204799\""},
    };
    for (const Case& each : cases) {
        HostOptions options;
        const auto ending = read(&options, each.arguments);
        ASSERT_TRUE(ending) << qUtf8Printable(each.message);
        EXPECT_EQ(ending->exitStatus, 2);
        EXPECT_EQ(ending->text,
                  "orvo-host: " + each.message + "\norvo-host: --help lists the options\n");
    }
}

} // namespace
