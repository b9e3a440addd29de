#pragma once

// The texts that the floor shares with the module's store, to the blank; the tests compare them.

enum {
    get_play_queue,
    get_playlists,
    create_playlist,
    delete_playlist,
    update_playlist,
    get_items,
    move_items,
    get_next_number,
    insert_item,
    insert_entry,
    delete_entries,
    clean_items,
    set_number,
    get_item_by_uid,
    get_collections,
    create_collection,
    add_to_collection,
    remove_from_collection,
    delete_collection,
    count_playlists,
    count_items,
    count_collections,
    statement_count,
    // Not in the module's catalogue: they find the items of a small removal.
    few_to_note = statement_count,
    few_to_look_for,
    items_of_entries,
    delete_unused,
    all_count
};

static const char* const statement_texts[all_count] = {
    "SELECT  uid, name, shuffle, repeatAll, lastPlayedIndex,"
    "    (SELECT coalesce(MAX(sequenceNumber), -1) FROM playlists_items WHERE"
    " playlist=playlists.uid) AS size  FROM playlists  WHERE uid = 0  ORDER BY name ASC",
    "SELECT  uid, name, shuffle, repeatAll, lastPlayedIndex,"
    "    (SELECT coalesce(MAX(sequenceNumber), -1) FROM playlists_items WHERE"
    " playlist=playlists.uid) AS size  FROM playlists  WHERE uid > 0  ORDER BY name ASC",
    "INSERT INTO playlists(name, shuffle, repeatAll, lastPlayedIndex)  VALUES(?1, 0, 0, -1);",
    "DELETE FROM playlists  WHERE uid=?1  AND uid > 0;",
    "UPDATE playlists SET  name=?1, shuffle=?2, repeatAll=?3, lastPlayedIndex=?4  WHERE uid=?5",
    "SELECT  nm.sequenceNumber,  uid, title, artist, album, artworkUrl, genre, durationSeconds,"
    " url, serviceId,  orvoRoles  FROM (    SELECT item, sequenceNumber      FROM playlists_items"
    "      WHERE playlist = ?1      AND sequenceNumber >= ?2 AND sequenceNumber <= ?3    ) AS nm"
    "    INNER JOIN items ON nm.item = items.uid  ORDER BY nm.sequenceNumber ASC",
    "UPDATE playlists_items  SET sequenceNumber = sequenceNumber + ?4"
    "  WHERE playlist = ?1 AND sequenceNumber >= ?2 AND sequenceNumber <= ?3;",
    "SELECT COALESCE(MAX(sequenceNumber), -1) + 1  FROM playlists_items  WHERE playlist = ?1;",
    "INSERT INTO items(title, artist, album, artworkUrl, genre, durationSeconds, url, serviceId,"
    "  orvoRoles  )  VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9);",
    "INSERT INTO playlists_items(playlist, item, sequenceNumber)  VALUES (?1, ?2, ?3);",
    "DELETE FROM playlists_items"
    "  WHERE playlist = ?1 AND sequenceNumber >= ?2 AND sequenceNumber <= ?3",
    "DELETE FROM items  WHERE uid NOT IN (    SELECT item FROM playlists_items  )",
    "UPDATE playlists_items SET  sequenceNumber=?4"
    "  WHERE playlist=?1 AND item=?2 AND sequenceNumber=?3",
    "SELECT  sequenceNumber,  uid, title, artist, album, artworkUrl, genre, durationSeconds, url,"
    " serviceId,  orvoRoles  FROM items JOIN playlists_items ON items.uid = playlists_items.item"
    "  where uid = ?1;",
    "SELECT  uid, name, GROUP_CONCAT(playlist)"
    "  FROM collections LEFT OUTER JOIN collections_playlists ON (uid = collection)"
    "  GROUP BY uid   ORDER BY name ASC;",
    "INSERT INTO collections(name)  VALUES (?1);",
    "INSERT INTO collections_playlists(collection, playlist)  VALUES(?1, ?2);",
    "DELETE FROM collections_playlists  WHERE collection=?1 AND playlist=?2;",
    "DELETE FROM collections  WHERE uid=?1;",
    "SELECT Count(*) FROM playlists",
    "SELECT Count(*) FROM items",
    "SELECT Count(*) FROM collections",
    "SELECT 1 FROM playlists_items LIMIT 1 OFFSET ?1 * 6",
    "SELECT 1 FROM playlists_items LIMIT 1 OFFSET ?1 * (SELECT Count(*) FROM playlists)",
    "SELECT item FROM playlists_items"
    " WHERE playlist = ?1 AND sequenceNumber >= ?2 AND sequenceNumber <= ?3",
    "WITH runs AS MATERIALIZED (SELECT json_extract(value, '$[0]') AS first,"
    " json_extract(value, '$[1]') AS last FROM json_each(?1))"
    " DELETE FROM items WHERE uid IN ("
    "SELECT uid FROM runs CROSS JOIN items ON uid >= first AND uid <= last"
    " EXCEPT SELECT item FROM runs CROSS JOIN playlists CROSS JOIN playlists_items"
    " ON playlist = playlists.uid AND item >= first AND item <= last)",
};

static const char* const schema_texts[] = {
    "CREATE TABLE IF NOT EXISTS playlists (  uid INTEGER PRIMARY KEY,  name TEXT NOT NULL,"
    "  shuffle INTEGER NOT NULL DEFAULT 0,  repeatAll INTEGER NOT NULL DEFAULT 0,"
    "  lastPlayedIndex INTEGER NOT NULL DEFAULT 0);",
    "CREATE TABLE IF NOT EXISTS items (  uid INTEGER PRIMARY KEY,  title TEXT NOT NULL,"
    "  artist TEXT,  album TEXT,  artworkUrl TEXT,  genre TEXT,  durationSeconds INTEGER,"
    "  url TEXT NOT NULL,  serviceId TEXT NOT NULL,  orvoRoles TEXT);"
    "CREATE INDEX IF NOT EXISTS itemUrlIndex ON items(url);",
    "CREATE TABLE IF NOT EXISTS collections (  uid INTEGER PRIMARY KEY,  name TEXT NOT NULL);",
    "CREATE TABLE IF NOT EXISTS playlists_items (  playlist INTEGER NOT NULL,"
    "  item INTEGER NOT NULL,  sequenceNumber INTEGER NOT NULL,"
    "  PRIMARY KEY(playlist, item, sequenceNumber),"
    "  FOREIGN KEY(playlist) REFERENCES playlists(uid)    ON DELETE CASCADE    ON UPDATE CASCADE,"
    "  FOREIGN KEY(item) REFERENCES items(uid)    ON DELETE RESTRICT    ON UPDATE CASCADE,"
    "  UNIQUE(playlist,sequenceNumber));",
    "CREATE TABLE IF NOT EXISTS collections_playlists (  collection INTEGER NOT NULL,"
    "  playlist INTEGER NOT NULL,  PRIMARY KEY(collection, playlist),"
    "  FOREIGN KEY(collection) REFERENCES collections(uid)    ON DELETE CASCADE"
    "    ON UPDATE CASCADE,"
    "  FOREIGN KEY(playlist) REFERENCES playlists(uid)    ON DELETE CASCADE"
    "    ON UPDATE CASCADE);",
    "INSERT OR IGNORE INTO playlists(uid, name, lastPlayedIndex)  VALUES(0, 'PlayQueue', -1);",
};
