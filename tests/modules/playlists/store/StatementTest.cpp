#include <malloc.h>
#include <memory>
#include <sqlite3.h>

#include "Sqlite3Statement.h"
#include "StoreFixture.h"

class StatementTest : public StoreFixture {
protected:
    std::unique_ptr<Sqlite3Statement> make(const char* sql, const char* name = "mine") {
        return std::unique_ptr<Sqlite3Statement>(Sqlite3Statement::create(
            StoreProbe::connection(database()), QString::fromUtf8(sql), QString::fromLatin1(name)));
    }
};

TEST_F(StatementTest, bindsStepsAndReads) {
    const auto statement = make("SELECT ?1 + 1, ?2 || '!', ?2");
    ASSERT_TRUE(statement);
    EXPECT_TRUE(statement->bindInt(1, -41));
    EXPECT_TRUE(statement->bindText(2, QStringLiteral("Ünïcødé 🎵")));
    ASSERT_TRUE(statement->step_row());
    EXPECT_EQ(-40, statement->columnInt(0));
    EXPECT_EQ(QStringLiteral("Ünïcødé 🎵!"), statement->columnText(1));
    EXPECT_EQ(QStringLiteral("Ünïcødé 🎵"), statement->columnText(2));
    EXPECT_FALSE(statement->step_row());
    EXPECT_TRUE(statement->reset());
}

TEST_F(StatementTest, aNullColumnReadsAsAnEmptyText) {
    const auto statement = make("SELECT NULL");
    ASSERT_TRUE(statement->step_row());
    EXPECT_EQ(QString(), statement->columnText(0));
    EXPECT_EQ(0, statement->columnInt(0));
    EXPECT_TRUE(statement->reset());
}

TEST_F(StatementTest, noRowIsFalseAndDone) {
    const auto statement = make("SELECT 1 WHERE ?1 = 2");
    ASSERT_TRUE(statement->bindInt(1, 1));
    EXPECT_FALSE(statement->step_row());
    EXPECT_TRUE(statement->reset());
    ASSERT_TRUE(statement->bindInt(1, 1));
    EXPECT_EQ(101, statement->step());
    EXPECT_TRUE(statement->reset());
    ASSERT_TRUE(statement->bindInt(1, 2));
    EXPECT_EQ(100, statement->step());
    EXPECT_TRUE(statement->reset());
}

TEST_F(StatementTest, anEmptyTextIsNoNull) {
    const auto statement = make("SELECT ?1 IS NULL, ?2 IS NULL");
    ASSERT_TRUE(statement->bindText(1, QString()));
    ASSERT_TRUE(statement->bindText(2, QLatin1String("")));
    ASSERT_TRUE(statement->step_row());
    EXPECT_EQ(0, statement->columnInt(0));
    EXPECT_EQ(0, statement->columnInt(1));
    EXPECT_TRUE(statement->reset());
}

TEST_F(StatementTest, aNulInsideATextSurvives) {
    const QString text = QStringLiteral("before") + QChar(0) + QStringLiteral("after");
    const auto statement = make("SELECT ?1");
    ASSERT_TRUE(statement->bindText(1, text));
    ASSERT_TRUE(statement->step_row());
    EXPECT_EQ(text, statement->columnText(0));
    EXPECT_TRUE(statement->reset());
}

TEST_F(StatementTest, textsStayAliveUntilTheReset) {
    const auto statement = make("SELECT ?1, ?2");
    {
        QString first = QString(100000, QLatin1Char('x'));
        ASSERT_TRUE(statement->bindText(1, first));
        first.fill(QLatin1Char('y'));
        ASSERT_TRUE(statement->bindText(2, first));
    }
    ASSERT_TRUE(statement->step_row());
    EXPECT_EQ(QString(100000, QLatin1Char('x')), statement->columnText(0));
    EXPECT_EQ(QString(100000, QLatin1Char('y')), statement->columnText(1));
    EXPECT_TRUE(statement->reset());
    // As every use must, before the next step.
    ASSERT_TRUE(statement->bindText(1, QStringLiteral("a")));
    ASSERT_TRUE(statement->bindText(2, QStringLiteral("b")));
    ASSERT_TRUE(statement->step_row());
    EXPECT_EQ(QStringLiteral("a"), statement->columnText(0));
    EXPECT_EQ(QStringLiteral("b"), statement->columnText(1));
    EXPECT_TRUE(statement->reset());
}

TEST_F(StatementTest, aResetLetsGoOfTheTexts) {
    const auto statement = make("SELECT length(?1)");
    const auto use = [&statement] {
        ASSERT_TRUE(statement->bindText(1, QString(50000, QLatin1Char('x'))));
        ASSERT_TRUE(statement->step_row());
        EXPECT_EQ(50000, statement->columnInt(0));
        ASSERT_TRUE(statement->reset());
    };
    use();
    // Nothing under a sanitizer, which has an allocator of its own.
    const auto allocated = [] {
        const struct mallinfo2 now = mallinfo2();
        return qint64(now.uordblks + now.hblkhd);
    };
    const qint64 before = allocated();
    for (int i = 0; i < 100; ++i)
        use();
    EXPECT_LT(allocated() - before, 10 * 50000);
}

TEST_F(StatementTest, bindingAnUnknownParameterFails) {
    const auto statement = make("SELECT ?1");
    EXPECT_FALSE(statement->bindInt(2, 1));
    EXPECT_FALSE(statement->bindText(0, QStringLiteral("x")));
    EXPECT_FALSE(statement->run(1, QStringLiteral("one too many")));
    EXPECT_TRUE(statement->run(1));
}

TEST_F(StatementTest, bindingAStatementOnItsWayFails) {
    const auto statement = make("SELECT ?1");
    ASSERT_TRUE(statement->bindInt(1, 1));
    ASSERT_TRUE(statement->step_row());
    EXPECT_FALSE(statement->bindInt(1, 2));
    EXPECT_TRUE(statement->reset());
    EXPECT_TRUE(statement->bindInt(1, 2));
}

TEST_F(StatementTest, whatCannotBePreparedIsNullAndFatalInTheLog) {
    database();
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_FALSE(make("SELECT nonsense FROM nowhere", "bad one"));
    EXPECT_EQ(
        QStringList(QStringLiteral("FATAL Unable to prepare statement bad one: SQL logic error")),
        log.lines());
}

TEST_F(StatementTest, aFailedStepShowsInTheReset) {
    const auto statement =
        make("INSERT INTO playlists(uid, name) VALUES(0, 'second queue')", "clash");
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_EQ(SQLITE_CONSTRAINT, statement->step() & 0xFF);
    EXPECT_FALSE(statement->reset());
    EXPECT_EQ(QStringList(QStringLiteral(
                  "ERROR Unable to reset sql statement: clash msg: constraint failed")),
              log.lines());
    EXPECT_TRUE(statement->reset());
}

TEST_F(StatementTest, oneWithoutAStatementFailsEveryUse) {
    Sqlite3Statement statement(nullptr, QStringLiteral("none"));
    EXPECT_FALSE(statement.bindInt(1, 1));
    EXPECT_FALSE(statement.bindText(1, QStringLiteral("x")));
    EXPECT_FALSE(statement.step_row());
    EXPECT_EQ(SQLITE_MISUSE, statement.step());
    EXPECT_EQ(0, statement.columnInt(0));
    EXPECT_EQ(QString(), statement.columnText(0));
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_FALSE(statement.reset());
    EXPECT_EQ(
        QStringList(QStringLiteral(
            "ERROR Unable to reset sql statement: none msg: bad parameter or other API misuse")),
        log.lines());
}

TEST_F(StatementTest, theScopeResetsOnce) {
    const auto statement =
        make("INSERT INTO playlists(uid, name) VALUES(0, 'second queue')", "clash");
    LogCapture log(QStringLiteral("PlayLists"));
    {
        StatementScope scope(*statement);
        scope->step();
    }
    EXPECT_EQ(1, log.errors().size());
    {
        StatementScope scope(*statement);
        scope->step();
        EXPECT_FALSE(scope.reset());
    }
    EXPECT_EQ(2, log.errors().size());
    EXPECT_EQ(QStringList(), StoreProbe::busyTexts(database()));
}
