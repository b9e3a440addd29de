#include "StatementCatalogue.h"

#include <array>

namespace {

// The texts are fixed to the blank, doubled ones included: the log and tools compare them.
constexpr std::array<StatementRow, StatementCount> catalogue{{
    {StatementId::GetPlayQueue, "getPlayQueue",
     "SELECT"
     "  uid, name, shuffle, repeatAll, lastPlayedIndex,"
     "    (SELECT coalesce(MAX(sequenceNumber), -1) FROM playlists_items WHERE"
     " playlist=playlists.uid) AS size"
     "  FROM playlists"
     "  WHERE uid = 0"
     "  ORDER BY name ASC"},
    {StatementId::GetPlayLists, "getPlayLists",
     "SELECT"
     "  uid, name, shuffle, repeatAll, lastPlayedIndex,"
     "    (SELECT coalesce(MAX(sequenceNumber), -1) FROM playlists_items WHERE"
     " playlist=playlists.uid) AS size"
     "  FROM playlists"
     "  WHERE uid > 0"
     "  ORDER BY name ASC"},
    {StatementId::CreatePlayList, "createPlayList",
     "INSERT INTO playlists(name, shuffle, repeatAll, lastPlayedIndex)"
     "  VALUES(?1, 0, 0, -1);"},
    {StatementId::DeletePlayList, "deletePlayList",
     "DELETE FROM playlists"
     "  WHERE uid=?1"
     "  AND uid > 0;"},
    {StatementId::UpdatePlayList, "updatePlayList",
     "UPDATE playlists SET"
     "  name=?1, shuffle=?2, repeatAll=?3, lastPlayedIndex=?4"
     "  WHERE uid=?5"},
    {StatementId::GetItems, "getItems",
     "SELECT"
     "  nm.sequenceNumber,"
     "  uid, title, artist, album, artworkUrl, genre, durationSeconds, url, serviceId,"
     "  orvoRoles"
     "  FROM ("
     "    SELECT item, sequenceNumber"
     "      FROM playlists_items"
     "      WHERE playlist = ?1"
     "      AND sequenceNumber >= ?2 AND sequenceNumber <= ?3"
     "    ) AS nm"
     "    INNER JOIN items ON nm.item = items.uid"
     "  ORDER BY nm.sequenceNumber ASC"},
    {StatementId::MoveItem1, "moveItem1",
     "UPDATE playlists_items"
     "  SET sequenceNumber = sequenceNumber + ?4"
     "  WHERE playlist = ?1 AND sequenceNumber >= ?2 AND sequenceNumber <= ?3;"},
    {StatementId::GetNextSequenceNumber, "getNextSequenceNumber",
     "SELECT COALESCE(MAX(sequenceNumber), -1) + 1"
     "  FROM playlists_items"
     "  WHERE playlist = ?1;"},
    {StatementId::InsertItem, "insertItem",
     "INSERT INTO items(title, artist, album, artworkUrl, genre, durationSeconds, url, serviceId,"
     "  orvoRoles"
     "  )"
     "  VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9);"},
    {StatementId::InsertPlayListItem, "insertPlayListItem",
     "INSERT INTO playlists_items(playlist, item, sequenceNumber)"
     "  VALUES (?1, ?2, ?3);"},
    {StatementId::DeletePlayListItem, "deletePlayListItem",
     "DELETE FROM playlists_items"
     "  WHERE playlist = ?1 AND sequenceNumber >= ?2 AND sequenceNumber <= ?3"},
    {StatementId::CleanUnusedItems, "cleanUnusedItems",
     "DELETE FROM items"
     "  WHERE uid NOT IN ("
     "    SELECT item FROM playlists_items"
     "  )"},
    {StatementId::SetSequenceNumber, "setSequenceNumber",
     "UPDATE playlists_items SET"
     "  sequenceNumber=?4"
     "  WHERE playlist=?1 AND item=?2 AND sequenceNumber=?3"},
    {StatementId::GetItemByUid, "getItemByUid",
     "SELECT"
     "  sequenceNumber,"
     "  uid, title, artist, album, artworkUrl, genre, durationSeconds, url, serviceId,"
     "  orvoRoles"
     "  FROM items JOIN playlists_items ON items.uid = playlists_items.item"
     "  where uid = ?1;"},
    {StatementId::GetCollections, "getCollections",
     "SELECT"
     "  uid, name, GROUP_CONCAT(playlist)"
     "  FROM collections LEFT OUTER JOIN collections_playlists ON (uid = collection)"
     "  GROUP BY uid"
     "   ORDER BY name ASC;"},
    {StatementId::CreateCollection, "createCollection",
     "INSERT INTO collections(name)"
     "  VALUES (?1);"},
    {StatementId::AddToCollection, "addToCollection",
     "INSERT INTO collections_playlists(collection, playlist)"
     "  VALUES(?1, ?2);"},
    {StatementId::RemoveFromCollection, "removeFromCollection",
     "DELETE FROM collections_playlists"
     "  WHERE collection=?1 AND playlist=?2;"},
    {StatementId::DeleteCollection, "deleteCollection",
     "DELETE FROM collections"
     "  WHERE uid=?1;"},
    {StatementId::CountPlaylists, "countPlaylists", "SELECT Count(*) FROM playlists"},
    {StatementId::CountPlaylistItems, "countPlaylistItems", "SELECT Count(*) FROM items"},
    {StatementId::CountCollections, "countCollections", "SELECT Count(*) FROM collections"},
}};

constexpr bool rowsStandInOrder() {
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        if (catalogue[i].id != static_cast<StatementId>(i))
            return false;
    }
    return true;
}
static_assert(rowsStandInOrder());

} // namespace

const StatementRow& statementRow(StatementId id) {
    return catalogue[static_cast<std::size_t>(id)];
}
