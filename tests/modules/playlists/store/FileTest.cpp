#include <sqlite3.h>
#include <stdexcept>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>

#include "StatementTrace.h"
#include "StoreFixture.h"

class FileTest : public StoreFixture {};

namespace {
QString queueRow() {
    return QStringLiteral(
        "SELECT uid || ',' || name || ',' || shuffle || ',' || repeatAll || ',' || lastPlayedIndex"
        " FROM playlists");
}

const QStringList freshQueue(QStringLiteral("0,PlayQueue,0,0,-1"));

// Everything that connections opened in between run, from the first statement on.
QStringList* openingStatements = nullptr;

int recordOpening(unsigned, void*, void*, void* text) {
    if (openingStatements)
        openingStatements->append(QString::fromUtf8(static_cast<const char*>(text)));
    return 0;
}

int traceNewConnection(sqlite3* connection, const char**, const void*) {
    return sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, recordOpening, nullptr);
}
} // namespace

TEST_F(FileTest, aFreshFolderGetsAnEmptyStoreWithThePlayQueue) {
    database();
    EXPECT_TRUE(QFileInfo::exists(QString::fromLatin1(File)));
    EXPECT_EQ(freshQueue, query(queueRow()));
    for (const char* table : {"items", "collections", "playlists_items", "collections_playlists"})
        EXPECT_EQ(0, queryInt(QStringLiteral("SELECT COUNT(*) FROM %1").arg(QLatin1String(table))))
            << table;
    expectInvariants();
}

TEST_F(FileTest, anExistingFolderIsUsed) {
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("data-rw/playlists")));
    database();
    EXPECT_TRUE(QFileInfo::exists(QString::fromLatin1(File)));
}

TEST_F(FileTest, aFileThatHasHadTablesAndHasNoneIsUsed) {
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("data-rw/playlists")));
    run(QStringLiteral("CREATE TABLE passing(x)"));
    run(QStringLiteral("DROP TABLE passing"));
    ASSERT_LT(0, QFileInfo(QString::fromLatin1(File)).size());
    disconnect();
    database();
    EXPECT_EQ(freshQueue, query(queueRow()));
    expectInvariants();
}

TEST_F(FileTest, existingRowsSurviveARestart) {
    const PlayListRecord pl = playListOf("abc");
    const CollectionRecord cl = database().createCollection(QStringLiteral("shelf"));
    ASSERT_TRUE(database().addToCollection(cl, pl.uid));
    run(QStringLiteral("UPDATE playlists SET lastPlayedIndex = 7, name = 'Q' WHERE uid = 0"));
    reopen();
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    EXPECT_EQ(QStringLiteral("list"), record(pl.uid).name);
    EXPECT_EQ(QList<int>{pl.uid}, database().getCollections().value(0).playlists);
    EXPECT_EQ(7, database().getPlayQueue().lastPlayedIndex);
    EXPECT_EQ(QStringLiteral("Q"), database().getPlayQueue().name);
    expectInvariants();
}

TEST_F(FileTest, aDeletedPlayQueueComesBackAtTheNextStart) {
    database();
    run(QStringLiteral("DELETE FROM playlists"));
    EXPECT_EQ(-1, database().getPlayQueue().uid);
    reopen();
    EXPECT_EQ(freshQueue, query(queueRow()));
}

TEST_F(FileTest, startRunsItsStepsInOrder) {
    QStringList statements;
    openingStatements = &statements;
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(&traceNewConnection));
    const Database store(0, true);
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(&traceNewConnection));
    openingStatements = nullptr;
    ASSERT_EQ(10, statements.size());
    EXPECT_EQ(QStringLiteral("VACUUM;"), statements[0]);
    EXPECT_EQ(QStringLiteral("PRAGMA foreign_keys=1;"), statements[1]);
    EXPECT_TRUE(statements[2].startsWith(QLatin1String("CREATE TABLE IF NOT EXISTS playlists ")));
    EXPECT_TRUE(statements[8].startsWith(QLatin1String("INSERT OR IGNORE")));
    // What only the connection sees comes last.
    EXPECT_EQ(QStringLiteral("PRAGMA cache_size=-16384;"), statements[9]);
}

TEST_F(FileTest, sqlitesLogIsAskedForBetweenForeignKeysAndTables) {
    // SQLite, initialised by the open, refuses, and says so to the log it has.
    QStringList steps;
    sqlite3_shutdown();
    sqlite3_config(
        SQLITE_CONFIG_LOG,
        +[](void* all, int code, const char*) {
            static_cast<QStringList*>(all)->append(QStringLiteral("log %1").arg(code));
        },
        &steps);
    openingStatements = &steps;
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(&traceNewConnection));
    LogCapture log(QStringLiteral("PlayLists"));
    {
        Database store(0, false);
        sqlite3_exec(StoreProbe::connection(store), "INSERT INTO playlists(uid) VALUES(0)", nullptr,
                     nullptr, nullptr);
    }
    openingStatements = nullptr;
    sqlite3_shutdown();
    sqlite3_config(SQLITE_CONFIG_LOG, nullptr, nullptr);
    EXPECT_EQ(QStringLiteral("PRAGMA foreign_keys=1;"), steps.value(0));
    EXPECT_EQ(QStringLiteral("log %1").arg(SQLITE_MISUSE), steps.value(1));
    EXPECT_TRUE(steps.value(2).startsWith(QLatin1String("CREATE TABLE IF NOT EXISTS playlists ")));
    EXPECT_TRUE(steps.last().startsWith(QLatin1String("log "))) << "the failed insertion";
    EXPECT_EQ(QStringList(), log.errors());
}

TEST_F(FileTest, startAndTablesAreTraced) {
    LogCapture log(QStringLiteral("PlayLists"));
    database();
    const QStringList& lines = log.lines();
    ASSERT_EQ(4, lines.size());
    EXPECT_TRUE(lines[0].startsWith(QLatin1String("TRACE Enter ")));
    EXPECT_TRUE(lines[0].endsWith(QLatin1String("Database::ensureTablesExist()")));
    EXPECT_EQ(QStringLiteral("TRACE PlayList tables exist"), lines[1]);
    EXPECT_TRUE(lines[2].endsWith(QLatin1String("Database::prepareStatements()")));
    EXPECT_EQ(QStringLiteral("TRACE PlayList statements prepared"), lines[3]);
}

TEST_F(FileTest, closingLeavesNothingAllocated) {
    { const Database warmUp(0, false); }
    const qint64 before = sqlite3_memory_used();
    {
        Database store(0, false);
        store.createPlayList(QStringLiteral("x"));
        store.getPlayLists();
        EXPECT_LT(before, sqlite3_memory_used());
    }
    EXPECT_EQ(before, sqlite3_memory_used());
}

TEST_F(FileTest, clearDatabaseLeavesOnlyThePlayQueue) {
    const PlayListRecord pl = playListOf("abc");
    ASSERT_EQ(0, database().addItems(database().getPlayQueue(), OrvoPlayListAddPosition::Append,
                                     items(3), nullptr));
    const CollectionRecord cl = database().createCollection(QStringLiteral("shelf"));
    ASSERT_TRUE(database().addToCollection(cl, pl.uid));
    StatementTrace trace(database());
    database().clearDatabase();
    QStringList run = trace.texts();
    run.removeDuplicates(); // a cascade shows as its statement once more
    EXPECT_EQ(
        QStringList({QStringLiteral("DELETE FROM playlists"), QStringLiteral("DELETE FROM items"),
                     QStringLiteral("DELETE FROM collections"),
                     QStringLiteral("DELETE FROM playlists_items"),
                     QStringLiteral("DELETE FROM collections_playlists")}),
        run.mid(0, 5));
    EXPECT_EQ(freshQueue, query(queueRow()));
    EXPECT_EQ(1, database().countPlaylists());
    EXPECT_EQ(0, database().countPlaylistsItems());
    EXPECT_EQ(0, database().countCollections());
    EXPECT_EQ(0, queryInt(QStringLiteral("SELECT COUNT(*) FROM playlists_items")));
    EXPECT_EQ(0, queryInt(QStringLiteral("SELECT COUNT(*) FROM collections_playlists")));
    expectInvariants();
}

TEST_F(FileTest, countsIncludeThePlayQueue) {
    EXPECT_EQ(1, database().countPlaylists());
    playListOf("abc");
    playListOf("de");
    database().createCollection(QStringLiteral("shelf"));
    EXPECT_EQ(3, database().countPlaylists());
    EXPECT_EQ(5, database().countPlaylistsItems());
    EXPECT_EQ(1, database().countCollections());
    expectInvariants();
}

TEST_F(FileTest, aVacuumIsOwedOnceHoweverOftenItIsAsked) {
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    database().setVacuumNeeded();
    database().setVacuumNeeded();
    ASSERT_EQ(1, spy.size());
    EXPECT_TRUE(spy[0][0].toBool());
}

TEST_F(FileTest, vacuumPaysWhatIsOwedAndCanBeOwedAgain) {
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    database().setVacuumNeeded();
    LogCapture log(QStringLiteral("PlayLists"));
    StatementTrace trace(database());
    database().vacuum();
    EXPECT_EQ(QStringLiteral("VACUUM;"), trace.texts().value(0));
    const QStringList infos = log.texts(QStringLiteral("INFO"));
    ASSERT_EQ(1, infos.size());
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^sqlite vacuum duration: [0-9]+ ms$"))
                    .match(infos[0])
                    .hasMatch())
        << infos[0].toStdString();
    database().vacuum();
    database().setVacuumNeeded();
    ASSERT_EQ(3, spy.size());
    EXPECT_FALSE(spy[1][0].toBool());
    EXPECT_TRUE(spy[2][0].toBool());
}

TEST_F(FileTest, vacuumWithoutNeedDoesNothing) {
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    LogCapture log(QStringLiteral("PlayLists"));
    StatementTrace trace(database());
    database().vacuum();
    EXPECT_EQ(QStringList(), trace.texts());
    EXPECT_EQ(QStringList(), log.lines());
    EXPECT_EQ(0, spy.size());
}

TEST_F(FileTest, aFileThatAnotherProcessHoldsIsNotOpened) {
    const PlayListRecord pl = playListOf("abc");
    close();
    for (const char* lock :
         {"BEGIN; SELECT count(*) FROM items", "BEGIN IMMEDIATE", "BEGIN EXCLUSIVE"}) {
        run(QString::fromLatin1(lock));
        const LogCapture log(QStringLiteral("PlayLists"));
        EXPECT_THROW(Database(0, true, 50), std::runtime_error) << lock;
        EXPECT_EQ(QStringList(QStringLiteral("Another process holds the PlayList database file, "
                                             "waiting for it for up to 50 ms")),
                  log.texts(QStringLiteral("WARN")))
            << lock;
        EXPECT_EQ(QStringList(
                      QStringLiteral("Unable to open PlayList database file: database is locked")),
                  log.texts(QStringLiteral("FATAL")))
            << lock;
        run(QStringLiteral("ROLLBACK"));
    }
    reopen();
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    expectInvariants();
}

TEST_F(FileTest, aVacuumThatFailsIsOwedNoLonger) {
    database().setVacuumNeeded();
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    run(QStringLiteral("BEGIN EXCLUSIVE"));
    LogCapture log(QStringLiteral("PlayLists"));
    StatementTrace trace(database());
    database().vacuum();
    database().vacuum();
    run(QStringLiteral("ROLLBACK"));
    EXPECT_EQ(QStringList(QStringLiteral("VACUUM;")), trace.texts());
    EXPECT_EQ(1, log.texts(QStringLiteral("INFO")).size());
    ASSERT_EQ(1, spy.size());
    EXPECT_FALSE(spy[0][0].toBool());
}

TEST_F(FileTest, theSignalGoesOutBeforeTheChangeCounts) {
    Database& store = database();
    bool told = false;
    QObject::connect(&store, &Database::vacuumNeeded, [&](bool needed) {
        told = true;
        if (needed)
            store.vacuum(); // not owed yet
        else
            store.setVacuumNeeded(); // owed still
    });
    QSignalSpy spy(&store, &Database::vacuumNeeded);
    store.setVacuumNeeded();
    EXPECT_TRUE(told);
    EXPECT_EQ(1, spy.size());
    store.vacuum();
    EXPECT_EQ(2, spy.size());
    store.vacuum();
    EXPECT_EQ(2, spy.size());
}

TEST_F(FileTest, anOwedVacuumIsMadeUpForAtStart) {
    const PlayListRecord pl = playListOf(items(2000));
    ASSERT_TRUE(database().deletePlayList(pl));
    close();
    const qint64 before = QFileInfo(QString::fromLatin1(File)).size();
    LogCapture log(QStringLiteral("PlayLists"));
    reopen(0, true);
    EXPECT_LT(QFileInfo(QString::fromLatin1(File)).size(), before / 2);
    EXPECT_EQ(1, log.texts(QStringLiteral("INFO")).size());
    QSignalSpy spy(&database(), &Database::vacuumNeeded);
    database().vacuum();
    EXPECT_EQ(0, spy.size());
    database().setVacuumNeeded();
    EXPECT_EQ(1, spy.size());
    expectInvariants();
}

TEST_F(FileTest, whatSqliteComplainsAboutIsLogged) {
    LogCapture log(QStringLiteral("PlayLists"));
    sqliteErrorLogCallback(nullptr, 17, "statement aborts");
    sqliteErrorLogCallback(nullptr, 21, nullptr);
    sqliteErrorLogCallback(nullptr, 5, "after one without a text");
    EXPECT_EQ(QStringList({QStringLiteral("ERROR SQLite error 17: statement aborts"),
                           QStringLiteral("ERROR SQLite error 21: "),
                           QStringLiteral("ERROR SQLite error 5: after one without a text")}),
              log.lines());
}
