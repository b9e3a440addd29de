#include <sqlite3.h>

#include <QElapsedTimer>

#include "Database.h"
#include "FaultSweep.h"
#include "StatementTrace.h"

namespace {

// How often a commit is tried, and when it ends.
class CommitFaultsTest : public ModelFixture {
protected:
    void SetUp() override { FaultVfs::install(); }
    void TearDown() override {
        FaultVfs::clear();
        ModelFixture::TearDown();
    }

    // Commits tried by a move of the first entry to the end that is given `fault` at the commit.
    int triesUnder(const Fault& fault) {
        PlayListBase& pl = playList("abc");
        sqlite3* connection = StoreProbe::connection(database());
        sqlite3_exec(connection, "PRAGMA synchronous=FULL;", nullptr, nullptr, nullptr);
        sqlite3_busy_timeout(connection, 0);
        int commits = 0;
        {
            const StatementTrace trace(database(), [&](const QString& sql) {
                if (sql == QLatin1String("COMMIT;") && ++commits == 1)
                    FaultVfs::set(fault, 1);
            });
            moved = pl.moveItem(0, 2);
        }
        FaultVfs::clear();
        EXPECT_EQ(moved ? "bca" : "abc", letters(pl)) << fault.name;
        expectInStep();
        return commits;
    }

    bool moved = false;
};

TEST_F(CommitFaultsTest, aCommitThatCannotSucceedIsTriedTwice) {
    // The second try finds nothing to commit: the transaction went with the first. So the loop ends
    // while the fault lasts.
    const QList<Fault> lasting = {
        {FileAction::Write, SQLITE_FULL, true, "full"},
        {FileAction::Write, SQLITE_IOERR_WRITE, true, "writes fail"},
        {FileAction::Sync, SQLITE_IOERR_FSYNC, true, "syncs fail"},
        {FileAction::Delete, SQLITE_IOERR_DELETE, true, "unlinks fail"},
        {FileAction::Lock, SQLITE_IOERR_LOCK, true, "locks fail"},
        {FileAction::Anything, SQLITE_IOERR, true, "everything fails"},
        {FileAction::Anything, SQLITE_FULL, true, "everything is full"},
    };
    for (const Fault& fault : lasting) {
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(2, triesUnder(fault)) << fault.name;
        EXPECT_FALSE(moved) << fault.name;
        EXPECT_LT(timer.elapsed(), 2000) << fault.name;
        EXPECT_GT(FaultVfs::failures(), 0) << fault.name;
    }
}

TEST_F(CommitFaultsTest, aCommitThatStandsThoughItIsReportedAsFailedIsASuccess) {
    // The journal has gone, which makes the edit final; what fails is to sync its folder.
    PlayListBase& pl = playList("abc");
    int commits = 0;
    {
        const StatementTrace trace(database(), [&commits](const QString& sql) {
            if (sql == QLatin1String("COMMIT;") && ++commits == 1)
                FaultVfs::set({FileAction::Delete, SQLITE_IOERR_DIR_FSYNC, false, "folder"}, 1);
        });
        EXPECT_EQ(3, add(pl, OrvoPlayListAddPosition::Append, "de"));
    }
    EXPECT_EQ(1, FaultVfs::failures());
    EXPECT_EQ(2, commits);
    FaultVfs::clear();
    EXPECT_EQ("abcde", letters(pl));
    expectInStep();
}

TEST_F(CommitFaultsTest, theLastPlayedOneIsFollowedOnceWhereTheRecordIsReadAgain) {
    PlayListBase& pl = playList("abc");
    pl.setLastSequenceNumber(1);
    {
        const StatementTrace trace(database(), [commits = 0](const QString& sql) mutable {
            if (sql == QLatin1String("COMMIT;") && ++commits == 1)
                FaultVfs::set({FileAction::Delete, SQLITE_IOERR_DIR_FSYNC, false, "folder"}, 1);
        });
        EXPECT_EQ(0, pl.addItemsAt({{0}, true}, letterItems("x")));
    }
    EXPECT_EQ(1, FaultVfs::failures());
    FaultVfs::clear();
    EXPECT_EQ("xabc", letters(pl));
    EXPECT_EQ(2, pl.getLastSequenceNumber());
    expectInStep();
}

TEST_F(CommitFaultsTest, aBusyCommitIsTriedUntilTheOtherLetsGo) {
    EXPECT_EQ(101, triesUnder({FileAction::Lock, SQLITE_BUSY, true, "busy", 100}));
    EXPECT_TRUE(moved);
}

} // namespace
