#include "StatementTrace.h"
#include "StoreFixture.h"

// The whole file is exact texts: what tools and people see of the store from outside.

namespace {

struct NamedText {
    const char* name;
    const char* sql;
};

// clang-format off
const NamedText statements[] = {
    {"getPlayQueue", R"(SELECT  uid, name, shuffle, repeatAll, lastPlayedIndex,    (SELECT coalesce(MAX(sequenceNumber), -1) FROM playlists_items WHERE playlist=playlists.uid) AS size  FROM playlists  WHERE uid = 0  ORDER BY name ASC)"},
    {"getPlayLists", R"(SELECT  uid, name, shuffle, repeatAll, lastPlayedIndex,    (SELECT coalesce(MAX(sequenceNumber), -1) FROM playlists_items WHERE playlist=playlists.uid) AS size  FROM playlists  WHERE uid > 0  ORDER BY name ASC)"},
    {"createPlayList", R"(INSERT INTO playlists(name, shuffle, repeatAll, lastPlayedIndex)  VALUES(?1, 0, 0, -1);)"},
    {"deletePlayList", R"(DELETE FROM playlists  WHERE uid=?1  AND uid > 0;)"},
    {"updatePlayList", R"(UPDATE playlists SET  name=?1, shuffle=?2, repeatAll=?3, lastPlayedIndex=?4  WHERE uid=?5)"},
    {"getItems", R"(SELECT  nm.sequenceNumber,  uid, title, artist, album, artworkUrl, genre, durationSeconds, url, serviceId,  orvoRoles  FROM (    SELECT item, sequenceNumber      FROM playlists_items      WHERE playlist = ?1      AND sequenceNumber >= ?2 AND sequenceNumber <= ?3    ) AS nm    INNER JOIN items ON nm.item = items.uid  ORDER BY nm.sequenceNumber ASC)"},
    {"moveItem1", R"(UPDATE playlists_items  SET sequenceNumber = sequenceNumber + ?4  WHERE playlist = ?1 AND sequenceNumber >= ?2 AND sequenceNumber <= ?3;)"},
    {"getNextSequenceNumber", R"(SELECT COALESCE(MAX(sequenceNumber), -1) + 1  FROM playlists_items  WHERE playlist = ?1;)"},
    {"insertItem", R"(INSERT INTO items(title, artist, album, artworkUrl, genre, durationSeconds, url, serviceId,  orvoRoles  )  VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9);)"},
    {"insertPlayListItem", R"(INSERT INTO playlists_items(playlist, item, sequenceNumber)  VALUES (?1, ?2, ?3);)"},
    {"deletePlayListItem", R"(DELETE FROM playlists_items  WHERE playlist = ?1 AND sequenceNumber >= ?2 AND sequenceNumber <= ?3)"},
    {"cleanUnusedItems", R"(DELETE FROM items  WHERE uid NOT IN (    SELECT item FROM playlists_items  ))"},
    {"setSequenceNumber", R"(UPDATE playlists_items SET  sequenceNumber=?4  WHERE playlist=?1 AND item=?2 AND sequenceNumber=?3)"},
    {"getItemByUid", R"(SELECT  sequenceNumber,  uid, title, artist, album, artworkUrl, genre, durationSeconds, url, serviceId,  orvoRoles  FROM items JOIN playlists_items ON items.uid = playlists_items.item  where uid = ?1;)"},
    {"getCollections", R"(SELECT  uid, name, GROUP_CONCAT(playlist)  FROM collections LEFT OUTER JOIN collections_playlists ON (uid = collection)  GROUP BY uid   ORDER BY name ASC;)"},
    {"createCollection", R"(INSERT INTO collections(name)  VALUES (?1);)"},
    {"addToCollection", R"(INSERT INTO collections_playlists(collection, playlist)  VALUES(?1, ?2);)"},
    {"removeFromCollection", R"(DELETE FROM collections_playlists  WHERE collection=?1 AND playlist=?2;)"},
    {"deleteCollection", R"(DELETE FROM collections  WHERE uid=?1;)"},
    {"countPlaylists", R"(SELECT Count(*) FROM playlists)"},
    {"countPlaylistItems", R"(SELECT Count(*) FROM items)"},
    {"countCollections", R"(SELECT Count(*) FROM collections)"},
};

// What creating the tables runs, statement by statement.
const char* const schema[] = {
    R"(CREATE TABLE IF NOT EXISTS playlists (  uid INTEGER PRIMARY KEY,  name TEXT NOT NULL,  shuffle INTEGER NOT NULL DEFAULT 0,  repeatAll INTEGER NOT NULL DEFAULT 0,  lastPlayedIndex INTEGER NOT NULL DEFAULT 0);)",
    R"(CREATE TABLE IF NOT EXISTS items (  uid INTEGER PRIMARY KEY,  title TEXT NOT NULL,  artist TEXT,  album TEXT,  artworkUrl TEXT,  genre TEXT,  durationSeconds INTEGER,  url TEXT NOT NULL,  serviceId TEXT NOT NULL,  orvoRoles TEXT);)",
    R"(CREATE INDEX IF NOT EXISTS itemUrlIndex ON items(url);)",
    R"(CREATE TABLE IF NOT EXISTS collections (  uid INTEGER PRIMARY KEY,  name TEXT NOT NULL);)",
    R"(CREATE TABLE IF NOT EXISTS playlists_items (  playlist INTEGER NOT NULL,  item INTEGER NOT NULL,  sequenceNumber INTEGER NOT NULL,  PRIMARY KEY(playlist, item, sequenceNumber),  FOREIGN KEY(playlist) REFERENCES playlists(uid)    ON DELETE CASCADE    ON UPDATE CASCADE,  FOREIGN KEY(item) REFERENCES items(uid)    ON DELETE RESTRICT    ON UPDATE CASCADE,  UNIQUE(playlist,sequenceNumber));)",
    R"(CREATE TABLE IF NOT EXISTS collections_playlists (  collection INTEGER NOT NULL,  playlist INTEGER NOT NULL,  PRIMARY KEY(collection, playlist),  FOREIGN KEY(collection) REFERENCES collections(uid)    ON DELETE CASCADE    ON UPDATE CASCADE,  FOREIGN KEY(playlist) REFERENCES playlists(uid)    ON DELETE CASCADE    ON UPDATE CASCADE);)",
    R"(INSERT OR IGNORE INTO playlists(uid, name, lastPlayedIndex)  VALUES(0, 'PlayQueue', -1);)",
};
// clang-format on

// SQLite keeps the text of a creation from the name on.
QString asKept(const char* sql) {
    return QString::fromLatin1(sql).remove(QStringLiteral("IF NOT EXISTS ")).chopped(1);
}

} // namespace

class CatalogueTest : public StoreFixture {};

TEST_F(CatalogueTest, preparesTheTwentyTwoStatementsInOrder) {
    QStringList expected;
    for (const NamedText& row : statements)
        expected.append(QString::fromLatin1(row.sql));
    ASSERT_EQ(22, expected.size());
    EXPECT_EQ(expected, StoreProbe::preparedTexts(database()));
}

TEST_F(CatalogueTest, everyStatementHasItsName) {
    for (std::size_t i = 0; i < StatementCount; ++i) {
        const StatementRow& row = statementRow(static_cast<StatementId>(i));
        EXPECT_STREQ(statements[i].name, row.name);
        EXPECT_STREQ(statements[i].sql, row.sql) << row.name;
    }
}

TEST_F(CatalogueTest, createsTheTablesInOrder) {
    QStringList expected;
    for (const char* sql : schema)
        expected.append(QString::fromLatin1(sql));
    StatementTrace trace(database());
    database().ensureTablesExist();
    EXPECT_EQ(expected, trace.texts());
}

TEST_F(CatalogueTest, theFileHoldsExactlyFiveTablesAndOneIndex) {
    database();
    QStringList expected;
    for (const char* sql : schema) {
        if (QLatin1String(sql).startsWith(QLatin1String("CREATE")))
            expected.append(asKept(sql));
    }
    ASSERT_EQ(6, expected.size());
    EXPECT_EQ(expected, query(QStringLiteral(
                            "SELECT sql FROM sqlite_master WHERE sql IS NOT NULL ORDER BY rowid")));
    EXPECT_EQ(QStringList({QStringLiteral("playlists"), QStringLiteral("items"),
                           QStringLiteral("collections"), QStringLiteral("playlists_items"),
                           QStringLiteral("collections_playlists")}),
              query(QStringLiteral(
                  "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY rowid")));
    EXPECT_EQ(QStringList(QStringLiteral("itemUrlIndex")),
              query(QStringLiteral(
                  "SELECT name FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL")));
}
