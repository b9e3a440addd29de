#pragma once

#include <cstddef>

// Every statement that the store runs again and again, in the order in which they are prepared.
enum class StatementId : std::size_t {
    GetPlayQueue,
    GetPlayLists,
    CreatePlayList,
    DeletePlayList,
    UpdatePlayList,
    GetItems,
    MoveItem1,
    GetNextSequenceNumber,
    InsertItem,
    InsertPlayListItem,
    DeletePlayListItem,
    CleanUnusedItems,
    SetSequenceNumber,
    GetItemByUid,
    GetCollections,
    CreateCollection,
    AddToCollection,
    RemoveFromCollection,
    DeleteCollection,
    CountPlaylists,
    CountPlaylistItems,
    CountCollections,
};

constexpr std::size_t StatementCount = std::size_t(StatementId::CountCollections) + 1;

struct StatementRow {
    StatementId id;
    // Stands in log lines.
    const char* name;
    const char* sql;
};

// The row of `id`; rows stand in the order of their ids.
const StatementRow& statementRow(StatementId id);
