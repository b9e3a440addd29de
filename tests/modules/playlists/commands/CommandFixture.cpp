#include "CommandFixture.h"

#include <sqlite3.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

CommandFixture::CommandFixture() = default;

CommandFixture::~CommandFixture() {
    closeRaw();
}

void CommandFixture::makeParty() {
    ASSERT_EQ(1, createPlayList(QStringLiteral("Party")));
    ASSERT_EQ(2, createPlayList(QStringLiteral("Quiet")));
    addItems(1, {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
    ASSERT_EQ(1, createCollection(QStringLiteral("Box")));
    expectDone(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", 1}, {"plid", 2}});
}

LateAnswer CommandFixture::sendLate(const CMPath& path, const QVariantHash& args) {
    worker();
    const auto answer = std::make_shared<Answer>();
    const CMReply<QVariant> reply;
    reply.onSuccess([answer](const QVariant& result) {
        EXPECT_FALSE(answer->answered);
        answer->answered = true;
        answer->value = result;
    });
    reply.onError([answer](const CMError& error) {
        EXPECT_FALSE(answer->answered);
        answer->answered = true;
        answer->failed = true;
        answer->error = error;
    });
    root()->setDataRequest(CMSetDataRequest(path, args, reply));
    return answer;
}

QString CommandFixture::refusal(const CMPath& path, const QVariant& args) {
    const Answer answer = send(path, args);
    EXPECT_TRUE(answer.answered) << qPrintable(path.toString());
    EXPECT_TRUE(answer.failed) << qPrintable(path.toString());
    return answer.message();
}

void CommandFixture::expectDone(const CMPath& path, const QVariant& args) {
    const Answer answer = send(path, args);
    EXPECT_TRUE(answer.answered) << qPrintable(path.toString());
    EXPECT_FALSE(answer.failed) << qPrintable(path.toString() + " " + answer.message());
}

QVariantList CommandFixture::itemHashes(const QStringList& titles) {
    QVariantList result;
    for (const QString& title : titles)
        result.append(itemHash(title));
    return result;
}

OrvoRoles CommandFixture::rolesOfItem(const OrvoPlayListItem& item) {
    return OrvoRoles(QJsonDocument::fromJson(item.orvoRoles().toUtf8()).object().toVariantHash());
}

OrvoPlayListItem CommandFixture::itemWithRoles(const OrvoRoles& roles) {
    OrvoPlayListItem item = makeItem(QStringLiteral("x"));
    item.setOrvoRoles(QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantHash(roles.toHash()))
                                            .toJson(QJsonDocument::Compact)));
    return item;
}

void CommandFixture::offer(RecordingWorker& source, const QString& path, const QString& title) {
    source.items.insert(path, makeItem(title));
}

sqlite3* CommandFixture::raw() {
    if (!m_raw) {
        worker();
        m_raw = storeWatch.openUnwatched(QStringLiteral("data-rw/playlists/playlists.sqlite"));
    }
    return m_raw;
}

void CommandFixture::closeRaw() {
    sqlite3_close(m_raw);
    m_raw = nullptr;
}

QString CommandFixture::stored(int plid) {
    return query(
               QStringLiteral(
                   "SELECT title FROM playlists_items JOIN items ON item = uid WHERE playlist = %1"
                   " ORDER BY sequenceNumber")
                   .arg(plid))
        .join(QLatin1Char(' '));
}

QStringList CommandFixture::query(const QString& sql) {
    QStringList texts;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(SQLITE_OK,
              sqlite3_prepare_v2(raw(), sql.toUtf8().constData(), -1, &statement, nullptr))
        << qPrintable(sql) << ": " << sqlite3_errmsg(raw());
    int code = SQLITE_OK;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        texts.append(
            QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)),
                              sqlite3_column_bytes(statement, 0)));
    }
    EXPECT_EQ(SQLITE_DONE, code) << qPrintable(sql) << ": " << sqlite3_errmsg(raw());
    sqlite3_finalize(statement);
    return texts;
}

void CommandFixture::run(const QString& sql) {
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(raw(), sql.toUtf8().constData(), nullptr, nullptr, nullptr))
        << qPrintable(sql) << ": " << sqlite3_errmsg(raw());
}

void CommandFixture::forbid(const QString& operation, const QString& table) {
    const QString name = QStringLiteral("forbid_%1_%2").arg(operation, table);
    run(QStringLiteral(
            "CREATE TRIGGER %1 BEFORE %2 ON %3 BEGIN SELECT RAISE(FAIL, 'forbidden'); END;")
            .arg(name, operation, table));
    m_triggers.append(name);
}

void CommandFixture::allowAll() {
    for (const QString& name : qAsConst(m_triggers))
        run(QStringLiteral("DROP TRIGGER %1;").arg(name));
    m_triggers.clear();
}

void CommandFixture::restartAfter(const QString& sql) {
    run(sql);
    restart();
}

void CommandFixture::expectSoundStore() {
    EXPECT_EQ(QStringList(),
              query(QStringLiteral("SELECT playlist || ': ' || group_concat(sequenceNumber)"
                                   " FROM playlists_items GROUP BY playlist"
                                   " HAVING min(sequenceNumber) <> 0"
                                   " OR max(sequenceNumber) <> count(*) - 1")))
        << "numbers that are not dense";
    EXPECT_EQ(QStringList(),
              query(QStringLiteral("SELECT uid FROM items LEFT JOIN playlists_items ON item = uid"
                                   " GROUP BY uid HAVING count(item) <> 1")))
        << "items without exactly one entry";
    EXPECT_EQ(QStringList(QStringLiteral("PlayQueue")),
              query(QStringLiteral("SELECT name FROM playlists WHERE uid = 0")));
    EXPECT_EQ(QStringList(QStringLiteral("ok")), query(QStringLiteral("PRAGMA integrity_check")));
    EXPECT_EQ(QStringList(), query(QStringLiteral("PRAGMA foreign_key_check")));
}

void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

void PrintTo(const QStringList& texts, std::ostream* out) {
    *out << "[\n";
    for (const QString& text : texts)
        *out << "  " << text.toStdString() << '\n';
    *out << ']';
}
