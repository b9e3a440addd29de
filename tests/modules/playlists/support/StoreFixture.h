#pragma once

#include <gtest/gtest.h>
#include <memory>

#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "Database.h"
#include "LogCapture.h"
#include "Printing.h"
#include "StoreFile.h"

// The tests' look behind the store.
class StoreProbe {
public:
    static sqlite3* connection(Database& database);
    static bool foreignKeysOn(sqlite3* connection);
    // Texts of the prepared statements, in the order in which they were prepared.
    static QStringList preparedTexts(Database& database);
    static QStringList busyTexts(Database& database);
    // Lets `sql` run where `id` would, for results that the statement itself cannot be made to
    // have.
    static void replaceStatement(Database& database, StatementId id, const char* sql);
    // Steps of SQLite's virtual machine that the prepared statements have taken since the last
    // call.
    static qint64 takeSteps(Database& database);
};

// A real store in a temporary folder; see README.md.
class StoreFixture : public ::testing::Test, public StoreFile {
protected:
    StoreFixture();
    ~StoreFixture() override;
    // Opens nothing: the first use of database() does, so that a test can prepare the folder first.
    void TearDown() override;

    Database& database();
    // Closes the store and opens it again, like a restart.
    Database& reopen(int itemsLimit = 0, bool vacuumNeeded = false);
    void close();

    static OrvoPlayListItem item(const QString& title);
    // Items "<prefix>0", "<prefix>1", …
    static QList<OrvoPlayListItem> items(int count, const QString& prefix = QStringLiteral("t"));
    // A new playlist with these items, and its record as the store has it.
    PlayListRecord playListOf(const QList<OrvoPlayListItem>& items,
                              const QString& name = QStringLiteral("list"));
    // "abc": items "a", "b", "c".
    PlayListRecord playListOf(const char* titles);
    // The record as the store has it now; uid -1 when there is none.
    PlayListRecord record(int uid);

    void expectInvariants();

private:
    QString m_oldFolder;
    QTemporaryDir m_folder;
    std::unique_ptr<Database> m_database;
};
