#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "HostProcess.h"

namespace {

class Log : public HostFixture {
protected:
    // What a host with the probe in that mode has logged, of the probe and of Qt.
    QStringList logged(const QString& mode, const QStringList& more = {}) {
        HostProcess host(arguments(more), mode);
        EXPECT_TRUE(host.waitUntilReady()) << qPrintable(host.errors());
        EXPECT_EQ(host.endBy(SIGTERM), 0);
        QStringList lines;
        for (const QString& line : host.errors().split('\n', Qt::SkipEmptyParts)) {
            if (line.contains(" Probe - ") || line.contains(" Qt - "))
                lines.append(line.mid(QString("2026-03-01 12:00:00.250 ").size()));
        }
        return lines;
    }
    static QStringList alike(int count) {
        QStringList lines;
        for (int i = 1; i <= count; ++i)
            lines.append(QString("WARN  Probe - alike %1").arg(i));
        return lines;
    }
};

TEST_F(Log, hasTwentyLinesAlikeOfOneTurnAndThenTheirCount) {
    const QStringList lines = logged("alike");
    ASSERT_EQ(lines.size(), 22) << qPrintable(lines.mid(0, 30).join('\n'));
    EXPECT_EQ(lines.mid(0, 20), alike(20));
    EXPECT_TRUE(lines.at(20).startsWith("WARN  Probe - … and 599980 more like this, from "
                                        "ProbeModule.cpp:"))
        << qPrintable(lines.at(20));
    EXPECT_EQ(lines.at(21), "WARN  Probe - the next turn");
}

TEST_F(Log, countsEachRequestForItself) {
    const QStringList lines = logged("requests");
    ASSERT_EQ(lines.size(), 3 * 21);
    for (int request = 0; request < 3; ++request) {
        EXPECT_EQ(lines.mid(request * 21, 20), alike(20));
        EXPECT_TRUE(lines.at(request * 21 + 20).startsWith("WARN  Probe - … and 1 more like this"));
    }
}

TEST_F(Log, hasAllLinesAlikeWhereTheLimitIsLifted) {
    EXPECT_EQ(logged("some", {"--config", "log/maxAlike=0"}),
              alike(21) + QStringList{"WARN  Probe - the next turn"});
    EXPECT_EQ(logged("some", {"--config", "log/maxAlike=21"}),
              alike(21) + QStringList{"WARN  Probe - the next turn"});
}

TEST_F(Log, cutsALineAtTwoKibibytes) {
    const QStringList lines = logged("huge");
    ASSERT_EQ(lines.size(), 3);
    const QStringList begins = {"INFO  Probe - the name is ää",
                                "INFO  Probe - the value is [1,\"ää", "WARN  Qt - ää"};
    for (int i = 0; i < lines.size(); ++i) {
        EXPECT_TRUE(lines.at(i).startsWith(begins.at(i))) << qPrintable(lines.at(i).left(80));
        EXPECT_TRUE(lines.at(i).endsWith("ää… (cut)")) << qPrintable(lines.at(i).right(80));
        const int bytes =
            int(QString("2026-03-01 12:00:00.250 ").size()) + int(lines.at(i).toUtf8().size()) + 1;
        EXPECT_LE(bytes, 2048);
        EXPECT_GE(bytes, 2047) << "an ä has two bytes";
    }
}

TEST_F(Log, cutsALineAtWhatTheKeySays) {
    for (const QString& line : logged("long", {"--config", "log/maxLineBytes=300"}))
        EXPECT_NEAR(24 + line.toUtf8().size() + 1, 299.5, 0.6) << qPrintable(line.right(80));
    const QStringList whole = logged("long", {"--config", "log/maxLineBytes=0"});
    ASSERT_EQ(whole.size(), 3);
    EXPECT_TRUE(whole.at(0).endsWith("ä and no other"));
    EXPECT_EQ(whole.at(2), "WARN  Qt - " + QString(10'000, QChar(0xe4)));
}

TEST_F(Log, goesToANewFileWhenTheFileIsFull) {
    HostProcess host(arguments({"--log-file", path("the.log"), "--config", "log/maxAlike=0",
                                "--config", "log/maxFileBytes=204800", "--config", "log/files=3"}),
                     "flood");
    ASSERT_TRUE(host.waitUntilReady()) << qPrintable(host.errors());
    EXPECT_EQ(host.endBy(SIGTERM), 0);
    EXPECT_EQ(QDir(path("")).entryList({"the.log*"}, QDir::Files, QDir::Name),
              (QStringList{"the.log", "the.log.1", "the.log.2"}));
    for (const char* full : {"the.log.1", "the.log.2"}) {
        EXPECT_GT(QFileInfo(path(full)).size(), 204800);
        EXPECT_LT(QFileInfo(path(full)).size(), 204800 + 2048);
    }
    EXPECT_LT(QFileInfo(path("the.log")).size(), 204800 + 2048);
    const QString all = read(path("the.log.2")) + read(path("the.log.1")) + read(path("the.log"));
    EXPECT_TRUE(all.contains("alike 20000\n"));
    EXPECT_TRUE(all.contains("Host - ending on "));
    EXPECT_FALSE(all.contains("alike 1\n")) << "the oldest went";
    for (const QString& line : all.split('\n', Qt::SkipEmptyParts))
        EXPECT_TRUE(line.contains(" - ")) << qPrintable(line);
}

TEST_F(Log, isRefusedAPipeThatNothingReads) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    HostProcess host(arguments({"--log-file", path("pipe")}));
    EXPECT_EQ(host.end(), 1);
    EXPECT_EQ(host.errors(),
              QString("orvo-host: cannot write the log file %1: No such device or address\n")
                  .arg(path("pipe")));
}

// What is no file cannot be renamed when it is full.
TEST_F(Log, goesToADeviceWithoutRotation) {
    HostProcess host(arguments({"--log-file", "/dev/stderr", "--config", "log/maxAlike=0",
                                "--config", "log/maxFileBytes=204800"}),
                     "flood");
    ASSERT_TRUE(host.waitUntilReady()) << qPrintable(host.errors());
    EXPECT_EQ(host.endBy(SIGTERM), 0);
    EXPECT_EQ(host.errors().count(" alike "), 20000);
}

} // namespace
