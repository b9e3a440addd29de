#include "StoreFixture.h"

#include <algorithm>
#include <iostream>
#include <sqlite3.h>

#include <QDir>

#include "Sqlite3Statement.h"

namespace {

template <typename Visit>
void visitStatements(sqlite3* connection, Visit visit) {
    for (sqlite3_stmt* s = sqlite3_next_stmt(connection, nullptr); s;
         s = sqlite3_next_stmt(connection, s))
        visit(s);
}

} // namespace

sqlite3* StoreProbe::connection(Database& database) {
    return database.m_connection;
}

bool StoreProbe::foreignKeysOn(sqlite3* connection) {
    int on = 0;
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_FKEY, -1, &on);
    return on == 1;
}

QStringList StoreProbe::preparedTexts(Database& database) {
    QStringList texts;
    visitStatements(connection(database), [&texts](sqlite3_stmt* s) {
        texts.prepend(QString::fromUtf8(sqlite3_sql(s)));
    });
    return texts;
}

QStringList StoreProbe::busyTexts(Database& database) {
    QStringList texts;
    visitStatements(connection(database), [&texts](sqlite3_stmt* s) {
        if (sqlite3_stmt_busy(s))
            texts.append(QString::fromUtf8(sqlite3_sql(s)));
    });
    return texts;
}

void StoreProbe::replaceStatement(Database& database, StatementId id, const char* sql) {
    std::unique_ptr<Sqlite3Statement>& place = database.m_statements[static_cast<std::size_t>(id)];
    place.reset(Sqlite3Statement::create(connection(database), QString::fromUtf8(sql),
                                         QString::fromLatin1(statementRow(id).name)));
    ASSERT_TRUE(place) << sql;
}

qint64 StoreProbe::takeSteps(Database& database) {
    // The counters are 32 bits wide and unsigned; a test that runs into the sign has failed anyway.
    qint64 steps = 0;
    visitStatements(connection(database), [&steps](sqlite3_stmt* s) {
        steps += quint32(sqlite3_stmt_status(s, SQLITE_STMTSTATUS_VM_STEP, 1));
    });
    return steps;
}

StoreFixture::StoreFixture()
    : m_oldFolder(QDir::currentPath()),
      m_folder(QDir::tempPath() + QStringLiteral("/orvo-store-XXXXXX")) {
    QDir::setCurrent(m_folder.path());
}

StoreFixture::~StoreFixture() {
    QDir::setCurrent(m_oldFolder);
}

void StoreFixture::TearDown() {
    disconnect();
    close();
    if (HasFailure()) {
        m_folder.setAutoRemove(false);
        std::cout << "the store of the failed test is kept in " << m_folder.path().toStdString()
                  << std::endl;
    }
}

Database& StoreFixture::database() {
    return m_database ? *m_database : reopen();
}

Database& StoreFixture::reopen(int itemsLimit, bool vacuumNeeded) {
    close();
    m_database = std::make_unique<Database>(itemsLimit, vacuumNeeded);
    // Tests survive no power failure and need not pay for one.
    sqlite3_exec(StoreProbe::connection(*m_database), "PRAGMA synchronous=OFF;", nullptr, nullptr,
                 nullptr);
    return *m_database;
}

void StoreFixture::close() {
    m_database.reset();
}

OrvoPlayListItem StoreFixture::item(const QString& title) {
    OrvoPlayListItem result;
    result.setTitle(title);
    result.setArtist(QStringLiteral("artist of ") + title);
    result.setAlbum(QStringLiteral("album of ") + title);
    result.setArtworkUrl(QStringLiteral("art:") + title);
    result.setGenre(QStringLiteral("genre of ") + title);
    result.setDurationSeconds(100 + title.size());
    result.setUrl(QStringLiteral("file:///") + title);
    result.setServiceId(QStringLiteral("files"));
    result.setOrvoRoles(QStringLiteral("{\"title\":\"%1\"}").arg(title));
    return result;
}

QList<OrvoPlayListItem> StoreFixture::items(int count, const QString& prefix) {
    QList<OrvoPlayListItem> result;
    result.reserve(count);
    for (int i = 0; i < count; ++i)
        result.append(item(prefix + QString::number(i)));
    return result;
}

PlayListRecord StoreFixture::playListOf(const QList<OrvoPlayListItem>& items, const QString& name) {
    const PlayListRecord created = database().createPlayList(name);
    if (!items.isEmpty()) {
        EXPECT_EQ(0, database().addItems(created, OrvoPlayListAddPosition::Append, items, nullptr));
    }
    return record(created.uid);
}

PlayListRecord StoreFixture::playListOf(const char* titles) {
    QList<OrvoPlayListItem> list;
    for (const char* title = titles; *title; ++title)
        list.append(item(QString(QLatin1Char(*title))));
    return playListOf(list);
}

PlayListRecord StoreFixture::record(int uid) {
    if (uid == PlayListRecord::PlayQueueUid)
        return database().getPlayQueue();
    const QList<PlayListRecord> all = database().getPlayLists();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [uid](const PlayListRecord& pl) { return pl.uid == uid; });
    return found == all.end() ? PlayListRecord() : *found;
}

void StoreFixture::expectInvariants() {
    Database& store = database();
    EXPECT_EQ(QStringList(), StoreProbe::busyTexts(store)) << "statements left active";
    EXPECT_TRUE(sqlite3_get_autocommit(StoreProbe::connection(store))) << "a transaction left open";
    EXPECT_TRUE(StoreProbe::foreignKeysOn(StoreProbe::connection(store)));
    EXPECT_EQ(QStringList(), brokenRules());
}
