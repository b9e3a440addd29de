#include <sys/file.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include "HostProcess.h"

namespace {

class Host : public HostFixture {};

TEST_F(Host, helpAndVersionGoToStandardOutputWithStatusZero) {
    HostProcess help({"--help"});
    EXPECT_EQ(help.end(), 0);
    for (const char* option :
         {"--data", "--music", "--listen", "--module", "--log-level", "--log-file", "--set",
          "--port-file", "--web", "--help", "--version"})
        EXPECT_TRUE(help.output().contains(option)) << option;
    EXPECT_EQ(help.errors(), "");
    HostProcess version({"--version"});
    EXPECT_EQ(version.end(), 0);
    EXPECT_TRUE(
        QRegularExpression("^orvo-host \\d+\\.\\d+\\.\\d+\n$").match(version.output()).hasMatch());
}

TEST_F(Host, aWrongCallHasStatusTwoAndTouchesNothing) {
    HostProcess host({"--data", path("data"), "--log-level", "loud"});
    EXPECT_EQ(host.end(), 2);
    EXPECT_EQ(host.output(), "");
    EXPECT_EQ(host.errors(),
              "orvo-host: there is no log level \"loud\"\norvo-host: --help lists the options\n");
    EXPECT_FALSE(QFile::exists(path("data")));
}

TEST_F(Host, theDataFolderIsMadeAndBecomesTheWorkingDirectory) {
    HostProcess host({"--data", "deep/Größe", "--module", PROBE_MODULE}, {}, path(""));
    ASSERT_TRUE(host.waitUntilReady()) << qPrintable(host.errors());
    EXPECT_EQ(host.endBy(SIGTERM), 0);
    EXPECT_TRUE(QFile::exists(path("deep/Größe/probe.log")));
    EXPECT_TRUE(QFile::exists(path("deep/Größe/settings.json")));
}

TEST_F(Host, standardOutputHasTheReadyLineOnly) {
    HostProcess host(arguments());
    ASSERT_TRUE(host.waitUntilReady());
    EXPECT_EQ(host.endBy(SIGTERM), 0);
    EXPECT_EQ(host.output(), "orvo-host is ready\n");
}

TEST_F(Host, bothSignalsEndItCleanly) {
    for (int number : {SIGINT, SIGTERM}) {
        HostProcess host(arguments());
        ASSERT_TRUE(host.waitUntilReady());
        EXPECT_EQ(host.endBy(number), 0);
        EXPECT_EQ(probeLog().constLast(), "destroy probe");
    }
}

TEST_F(Host, aSignalDuringTheStartIsNotLost) {
    HostProcess host(arguments(), "slow");
    ASSERT_TRUE(host.waitUntil([&] { return host.errors().contains("the probe takes its time"); }));
    EXPECT_EQ(host.endBy(SIGTERM), 0);
    EXPECT_EQ(probeLog().constLast(), "destroy probe");
}

TEST_F(Host, aSecondSignalEndsAHostThatDoesNotEnd) {
    HostProcess host(arguments(), "hang");
    ASSERT_TRUE(host.waitUntilReady());
    host.signal(SIGTERM);
    ASSERT_TRUE(host.waitUntil([&] { return probeLog().contains("destroy probe"); }));
    EXPECT_EQ(host.endBy(SIGTERM), -1);
    EXPECT_TRUE(host.diedBySignal());
}

TEST_F(Host, aClientThatGoesAwayDoesNotEndIt) {
    HostProcess host(arguments());
    ASSERT_TRUE(host.waitUntilReady());
    host.signal(SIGPIPE);
    EXPECT_EQ(host.endBy(SIGTERM), 0);
}

TEST_F(Host, aSecondHostOnTheSameFolderIsRefused) {
    HostProcess first(arguments());
    ASSERT_TRUE(first.waitUntilReady());
    HostProcess second(arguments());
    EXPECT_EQ(second.end(), 1);
    EXPECT_EQ(second.errors(), QString("orvo-host: the data folder %1 is in use by process %2\n")
                                   .arg(path("data"))
                                   .arg(first.pid()));
    EXPECT_EQ(probeLog().filter("create probe").size(), 1);
    EXPECT_EQ(first.endBy(SIGTERM), 0);
}

TEST_F(Host, aSecondHostIsRefusedWhenTheLockFileIsGone) {
    HostProcess first(arguments());
    ASSERT_TRUE(first.waitUntilReady());
    ASSERT_TRUE(QFile::remove(data("orvo-host.lock")));
    HostProcess second(arguments());
    EXPECT_EQ(second.end(), 1);
    EXPECT_EQ(
        second.errors(),
        QString("orvo-host: the data folder %1 is in use by another process\n").arg(path("data")));
    EXPECT_FALSE(QFile::exists(data("orvo-host.lock"))) << "whose number would it hold?";
    EXPECT_EQ(first.endBy(SIGTERM), 0);
}

// Older hosts lock the file alone.
TEST_F(Host, aHostThatHoldsTheLockFileKeepsOthersOut) {
    ASSERT_TRUE(QDir().mkpath(path("data")));
    QFile lock(data("orvo-host.lock"));
    ASSERT_TRUE(lock.open(QIODevice::ReadWrite));
    lock.write("4711\n");
    lock.flush();
    ASSERT_EQ(::flock(lock.handle(), LOCK_EX), 0);
    HostProcess host(arguments());
    EXPECT_EQ(host.end(), 1);
    EXPECT_EQ(
        host.errors(),
        QString("orvo-host: the data folder %1 is in use by process 4711\n").arg(path("data")));
}

TEST_F(Host, aPipeAsLockFileIsAnError) {
    ASSERT_TRUE(QDir().mkpath(path("data")));
    ASSERT_EQ(::mkfifo(QFile::encodeName(data("orvo-host.lock")).constData(), 0600), 0);
    HostProcess host(arguments());
    EXPECT_EQ(host.end(), 1);
    EXPECT_EQ(
        host.errors(),
        QString("orvo-host: cannot lock the data folder %1: orvo-host.lock is no regular file\n")
            .arg(path("data")));
}

TEST_F(Host, aKilledHostLeavesNoLockBehind) {
    HostProcess first(arguments());
    ASSERT_TRUE(first.waitUntilReady());
    first.endBy(SIGKILL);
    HostProcess second(arguments());
    EXPECT_TRUE(second.waitUntilReady()) << qPrintable(second.errors());
    EXPECT_EQ(second.endBy(SIGTERM), 0);
}

// Killed between making the file and writing into it, or restarted where its number is in use.
TEST_F(Host, whatIsInTheLockFileBarsNoHost) {
    ASSERT_TRUE(QDir().mkpath(path("data")));
    for (const char* left : {"", "1\norvo-host\n", "no number"}) {
        QFile lock(path("data/orvo-host.lock"));
        ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
        lock.write(left);
        lock.close();
        HostProcess host(arguments());
        EXPECT_TRUE(host.waitUntilReady()) << left << qPrintable(host.errors());
        EXPECT_EQ(host.endBy(SIGTERM), 0);
    }
}

TEST_F(Host, aDataFolderThatCannotBeMadeIsAnError) {
    QFile inTheWay(path("data"));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    HostProcess host(arguments());
    EXPECT_EQ(host.end(), 1);
    EXPECT_EQ(host.errors(),
              QString("orvo-host: cannot make the data folder %1\n").arg(path("data")));
}

TEST_F(Host, asManyFilesCanBeOpenAsTheSystemAllows) {
    HostProcess host(arguments(), {}, {}, "ulimit -Sn 128 && ulimit -Hn 2048");
    ASSERT_TRUE(host.waitUntilReady()) << qPrintable(host.errors());
    const QString limits = read(QString("/proc/%1/limits").arg(host.pid()));
    static const QRegularExpression openFiles("Max open files +2048 +2048 ");
    EXPECT_TRUE(openFiles.match(limits).hasMatch()) << qPrintable(limits);
    EXPECT_EQ(host.endBy(SIGTERM), 0);
    EXPECT_FALSE(host.errors().contains("WARN")) << qPrintable(host.errors());
}

TEST_F(Host, aLimitOfOpenFilesThatIsTooLowIsSaidOnce) {
    HostProcess host(arguments(), {}, {}, "ulimit -n 100");
    ASSERT_TRUE(host.waitUntilReady()) << qPrintable(host.errors());
    EXPECT_EQ(host.endBy(SIGTERM), 0);
    EXPECT_EQ(host.errors().count("WARN  Host - no more than 100 files can be open at once, "
                                  "1024 are wanted\n"),
              1)
        << qPrintable(host.errors());
}

TEST_F(Host, tooFewFilesForAStartAreAnError) {
    for (int number : {8, 32, 63}) {
        HostProcess host(arguments(), {}, {}, QString("ulimit -n %1").arg(number));
        EXPECT_EQ(host.end(), 1) << number;
        EXPECT_EQ(host.errors(), QString("orvo-host: no more than %1 files can be open at once, "
                                         "64 are needed\n")
                                     .arg(number));
    }
}

TEST_F(Host, theLogHasTimeLevelLoggerAndMessageInOneLine) {
    HostProcess host(arguments(), "forge");
    ASSERT_TRUE(host.waitUntilReady());
    host.endBy(SIGTERM);
    const QStringList lines = host.errors().split('\n', Qt::SkipEmptyParts);
    const QRegularExpression form(
        "^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} (INFO |WARN ) \\w+ - .+$");
    for (const QString& line : lines)
        EXPECT_TRUE(form.match(line).hasMatch()) << qPrintable(line);
    EXPECT_EQ(lines.filter("INFO  Probe - one\\ntwo \\x1b[31mred\\tend").size(), 1);
    // Qt's own messages are lines of the log too.
    EXPECT_EQ(lines.filter("WARN  Qt - a word from Qt").size(), 1);
}

TEST_F(Host, theLogLevelDecidesWhatIsLogged) {
    HostProcess quiet(arguments({"--log-level", "error"}));
    ASSERT_TRUE(quiet.waitUntilReady());
    quiet.endBy(SIGTERM);
    EXPECT_EQ(quiet.errors(), "");
    HostProcess normal(arguments());
    ASSERT_TRUE(normal.waitUntilReady());
    normal.endBy(SIGTERM);
    EXPECT_FALSE(normal.errors().contains("a debug line"));
    HostProcess talkative(arguments({"--log-level", "debug"}));
    ASSERT_TRUE(talkative.waitUntilReady());
    talkative.endBy(SIGTERM);
    EXPECT_TRUE(talkative.errors().contains("DEBUG Probe - a debug line\n"));
}

TEST_F(Host, theLogFileIsAppendedTo) {
    for (int run = 1; run <= 2; ++run) {
        HostProcess host({"--data", "data", "--module", PROBE_MODULE, "--log-file", "the.log"}, {},
                         path(""));
        ASSERT_TRUE(host.waitUntilReady());
        EXPECT_EQ(host.endBy(SIGTERM), 0);
        EXPECT_EQ(host.errors(), "");
        EXPECT_EQ(read(path("the.log")).count("Host - ready"), run);
    }
}

TEST_F(Host, aLogFileThatCannotBeWrittenIsAnError) {
    HostProcess host(arguments({"--log-file", path("no/such/folder.log")}));
    EXPECT_EQ(host.end(), 1);
    EXPECT_EQ(host.errors(),
              QString("orvo-host: cannot write the log file %1: No such file or directory\n")
                  .arg(path("no/such/folder.log")));
}

TEST_F(Host, aFatalLineReachesTheLogBeforeTheEnd) {
    HostProcess host(arguments({"--log-file", path("the.log")}), "fatal");
    EXPECT_EQ(host.end(), -1);
    EXPECT_TRUE(host.diedBySignal());
    EXPECT_TRUE(read(path("the.log")).endsWith("FATAL Platform - the probe cannot go on\n"));
}

} // namespace
