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

TEST_F(StatementTest, textsOfEveryLengthAndAlphabetComeBackWhole) {
    // Around the blocks that texts are copied in, with one odd character at each place.
    const auto statement = make("SELECT ?1, ?2, ?1 || ?2");
    for (int length = 0; length <= 40; ++length) {
        for (const QChar odd : {QChar('x'), QChar(0x7F), QChar(0x80), QChar(0xFF), QChar(0x100),
                                QChar(0x20AC), QChar(0xFFFD)}) {
            for (int at = 0; at < length; ++at) {
                QString text(length, QLatin1Char('a'));
                text[at] = odd;
                const QString next = QString::number(length * 100 + at);
                ASSERT_TRUE(statement->bindText(1, text));
                ASSERT_TRUE(statement->bindText(2, next));
                ASSERT_TRUE(statement->step_row());
                ASSERT_EQ(text, statement->columnText(0)) << length << ' ' << at;
                ASSERT_EQ(next, statement->columnText(1));
                ASSERT_EQ(text + next, statement->columnText(2));
                ASSERT_TRUE(statement->reset());
            }
        }
    }
}

TEST_F(StatementTest, manyLongTextsOfOneUseDoNotGetInEachOthersWay) {
    QStringList terms;
    QStringList texts;
    for (int i = 1; i <= 20; ++i) {
        terms.append(QStringLiteral("?%1").arg(i));
        texts.append(QString(500 * i, QChar(i % 2 ? 'a' + i : 0xE0 + i)));
    }
    const auto statement = make(("SELECT " + terms.join(" || ")).toUtf8().constData());
    for (int use = 0; use < 3; ++use) {
        for (int i = 0; i < texts.size(); ++i)
            ASSERT_TRUE(statement->bindText(i + 1, texts[i]));
        ASSERT_TRUE(statement->step_row());
        EXPECT_EQ(texts.join(QString()), statement->columnText(0));
        ASSERT_TRUE(statement->reset());
    }
}

TEST_F(StatementTest, aTextThatIsAtHandAlreadyIsShared) {
    const auto statement = make("SELECT 'Album', 'Älbum', '', NULL, 'Albums'");
    ASSERT_TRUE(statement->step_row());
    const auto updated = [&statement](int column, QString text) {
        statement->updateText(column, &text);
        return text;
    };
    const QString album = QStringLiteral("Album");
    EXPECT_EQ(album.constData(), updated(0, album).constData());
    for (const QString& other : {QString(), QStringLiteral("Albun"), QStringLiteral("Älbum"),
                                 QStringLiteral("album"), QStringLiteral("Albums")})
        EXPECT_EQ(album, updated(0, other));
    EXPECT_EQ(QStringLiteral("Älbum"), updated(1, album));
    EXPECT_EQ(QStringLiteral("Älbum"), updated(1, QStringLiteral("Älbum")));
    // Empty, but not null: the two are written differently by some who get them.
    EXPECT_EQ(QString(), updated(2, album));
    EXPECT_FALSE(updated(2, QString()).isNull());
    EXPECT_EQ(QString(), updated(3, album));
    EXPECT_EQ(QStringLiteral("Albums"), updated(4, album));
    // As many characters as the other text has bytes, and the same numbers.
    const QString bytes = QString::fromLatin1(QStringLiteral("Älbum").toUtf8());
    EXPECT_EQ(QStringLiteral("Älbum"), updated(1, bytes));
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
