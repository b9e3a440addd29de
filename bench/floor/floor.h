#pragma once

#include <stddef.h>

// The floor: what the store's work costs when nothing but SQLite does it. A plain C program on the
// same schema, the same statements and the same transactions, with SQLite's defaults for a
// connection. No Qt, no logging, no objects.
//
// Everything belongs to the caller's thread. Functions that change something return 1, or 0 when
// SQLite refused something, and then the transaction is rolled back; a benchmark ends there.

#ifdef __cplusplus
extern "C" {
#endif

typedef struct floor_store floor_store;

// A text and its length in bytes. Not ended by a zero.
typedef struct floor_text {
    const char* data;
    int size;
} floor_text;

// In the order of the columns of `items`, without uid.
typedef struct floor_item {
    floor_text title, artist, album, artworkUrl, genre;
    int durationSeconds;
    floor_text url, serviceId, orvoRoles;
} floor_item;

// What the caller keeps of a playlist: current, as the functions below leave it.
typedef struct floor_list {
    int uid;
    int size;
    int lastPlayedIndex;
} floor_list;

// An entry that was read. The texts point into the rows they belong to.
typedef struct floor_entry {
    int sequenceNumber;
    int uid;
    floor_item item;
} floor_entry;

typedef struct floor_playlist {
    floor_list list;
    floor_text name;
    int shuffle, repeatAll;
} floor_playlist;

// What a reading leaves behind; used again by the next one. Zeroed before the first.
typedef struct floor_rows {
    floor_entry* entries;
    floor_playlist* playlists;
    int count;
    size_t entriesRoom, playlistsRoom;
    char* texts;
    size_t textsUsed, textsRoom;
} floor_rows;

// Opens or makes the file. NULL when that fails.
floor_store* floor_open(const char* file);
void floor_close(floor_store* store);
void floor_free(floor_rows* rows);

// How many statements there are, and their texts: those of the module's catalogue, in its order,
// and behind them those that find the items of a small removal.
int floor_statement_count(void);
int floor_all_statement_count(void);
const char* floor_statement_text(int index);

int floor_create_playlist(floor_store* store, floor_text name, floor_list* created);
// Writes what is kept of the playlist beside its entries; `name` is its name.
int floor_update_playlist(floor_store* store, const floor_list* list, floor_text name);

// Where `floor_add` adds.
enum { floor_after_current, floor_append };
int floor_add(floor_store* store, floor_list* list, int where, const floor_item* items, int count);
// Entries numbered `from` to `to`, both included.
int floor_read(floor_store* store, const floor_list* list, int from, int to, floor_rows* rows);
int floor_move(floor_store* store, const floor_list* list, int from, int to);
// Gives the `count` entries from `first` on another order: `order` has their present places.
int floor_reorder(floor_store* store, const floor_list* list, int first, const int* order,
                  int count);
// `indices` ascending, each once.
int floor_remove(floor_store* store, floor_list* list, const int* indices, int count);
int floor_clear(floor_store* store, floor_list* list);
int floor_delete_playlist(floor_store* store, const floor_list* list);
// What is read at a start: the play queue first, then all playlists by name; the collections are
// gone through.
int floor_load(floor_store* store, floor_rows* rows);

#ifdef __cplusplus
}
#endif
