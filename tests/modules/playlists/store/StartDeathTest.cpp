#include <csignal>
#include <cstdlib>
#include <iostream>
#include <log4cplus/consoleappender.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>

#include <QDir>
#include <QFile>

#include "CMEnding.h"
#include "StoreFixture.h"

// What cannot be used ends the process, after a line at fatal level.
class StartDeathTest : public StoreFixture {
protected:
    void SetUp() override { ::testing::GTEST_FLAG(death_test_style) = "threadsafe"; }

    static void startLoudly() {
        log4cplus::SharedAppenderPtr console(new log4cplus::ConsoleAppender(true, true));
        console->setLayout(
            std::make_unique<log4cplus::PatternLayout>(LOG4CPLUS_TEXT("%p %c %m%n")));
        log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("PlayLists"));
        logger.setLogLevel(log4cplus::TRACE_LOG_LEVEL);
        logger.addAppender(console);
        const Database store(0, false);
    }

    static void writeFile(const QString& name, const QByteArray& bytes) {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
};

TEST_F(StartDeathTest, aFolderThatCannotBeMade) {
    writeFile(QStringLiteral("data-rw"), "in the way");
    EXPECT_EXIT(startLoudly(), testing::KilledBySignal(SIGABRT),
                "FATAL PlayLists Unable to create directory for PlayList database file\n");
}

TEST_F(StartDeathTest, aFileThatCannotBeOpened) {
    QDir().mkpath(QString::fromLatin1(File)); // a folder in its place
    EXPECT_EXIT(
        startLoudly(), testing::KilledBySignal(SIGABRT),
        "FATAL PlayLists Unable to open PlayList database file: unable to open database file\n");
}

TEST_F(StartDeathTest, aFileThatIsNoDatabase) {
    QDir().mkpath(QStringLiteral("data-rw/playlists"));
    writeFile(QString::fromLatin1(File), QByteArray("certainly no database ").repeated(100));
    EXPECT_EXIT(startLoudly(), testing::KilledBySignal(SIGABRT),
                "FATAL PlayLists Unable to create table playlists: file is not a database\n");
}

TEST_F(StartDeathTest, aTableThatCannotBeMade) {
    QDir().mkpath(QStringLiteral("data-rw/playlists"));
    // The index of the items needs a column that this table does not have.
    run(QStringLiteral("CREATE TABLE items (uid INTEGER PRIMARY KEY)"));
    EXPECT_EXIT(startLoudly(), testing::KilledBySignal(SIGABRT),
                "FATAL PlayLists Unable to create table items: no such column: url\n");
}

TEST_F(StartDeathTest, aPlayQueueThatCannotBeMade) {
    QDir().mkpath(QStringLiteral("data-rw/playlists"));
    run(QStringLiteral("CREATE TABLE playlists (uid INTEGER PRIMARY KEY)"));
    EXPECT_EXIT(
        startLoudly(), testing::KilledBySignal(SIGABRT),
        "FATAL PlayLists Unable to create table createplayqueue: table playlists has no column named name\n");
}

TEST_F(StartDeathTest, anyHelperStatementThatFails) {
    EXPECT_EXIT(
        {
            startLoudly();
            Database(0, false).createTableHelper("CREATE NONSENSE", "of mine");
        },
        testing::KilledBySignal(SIGABRT),
        "FATAL PlayLists Unable to create table of mine: near \"NONSENSE\": syntax error\n");
}

// --- told to end, which a process cannot take back ---

TEST_F(StartDeathTest, aCommitThatIsBusyIsGivenUpWhenTheProcessIsToEnd) {
    EXPECT_EXIT(
        {
            startLoudly();
            const PlayListRecord pl = playListOf("abc");
            run(QStringLiteral("BEGIN"));
            queryInt(QStringLiteral("SELECT count(*) FROM items"));
            cmRequestEnd();
            database().moveItem(pl, 0, 2);
            const bool failed = database().lastCommitFailed();
            run(QStringLiteral("COMMIT"));
            const bool whole = stored(pl.uid) == QLatin1String("a b c") &&
                               database().beginTransaction() == 0 &&
                               database().rollbackTransaction() == 0;
            // What meets no lock is done as ever.
            database().moveItem(pl, 0, 2);
            std::_Exit(failed && whole && stored(pl.uid) == QLatin1String("b c a") ? 0 : 1);
        },
        testing::ExitedWithCode(0), "ERROR PlayLists Commit transaction failed\n");
}
