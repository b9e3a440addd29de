#include "floor.h"

#include <limits.h>
#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "statements.h"

struct floor_store {
    sqlite3* connection;
    sqlite3_stmt* statements[all_count];
};

int floor_statement_count(void) {
    return statement_count;
}

int floor_all_statement_count(void) {
    return all_count;
}

const char* floor_statement_text(int index) {
    return statement_texts[index];
}

static int execute(floor_store* store, const char* sql) {
    return sqlite3_exec(store->connection, sql, NULL, NULL, NULL) == SQLITE_OK;
}

floor_store* floor_open(const char* file) {
    floor_store* store = calloc(1, sizeof *store);
    int ok = store && sqlite3_open(file, &store->connection) == SQLITE_OK &&
             execute(store, "PRAGMA foreign_keys=1;");
    for (size_t i = 0; ok && i < sizeof schema_texts / sizeof schema_texts[0]; ++i)
        ok = execute(store, schema_texts[i]);
    for (int i = 0; ok && i < all_count; ++i)
        ok = sqlite3_prepare_v2(store->connection, statement_texts[i], -1, &store->statements[i],
                                NULL) == SQLITE_OK;
    if (ok)
        return store;
    if (store)
        floor_close(store);
    return NULL;
}

void floor_close(floor_store* store) {
    for (int i = 0; i < all_count; ++i)
        sqlite3_finalize(store->statements[i]);
    sqlite3_close(store->connection);
    free(store);
}

void floor_free(floor_rows* rows) {
    free(rows->entries);
    free(rows->playlists);
    free(rows->texts);
    memset(rows, 0, sizeof *rows);
}

static void bind_text(sqlite3_stmt* s, int index, floor_text text) {
    sqlite3_bind_text(s, index, text.data, text.size, SQLITE_STATIC);
}

// Steps once and resets; the reset tells whether it worked.
static int run(sqlite3_stmt* s) {
    sqlite3_step(s);
    return sqlite3_reset(s) == SQLITE_OK;
}

static int end_transaction(floor_store* store, int ok) {
    if (ok && execute(store, "COMMIT;"))
        return 1;
    execute(store, "ROLLBACK;");
    return 0;
}

// The items of the entries that go, as runs of uids that follow each other.
typedef struct {
    int (*runs)[2];
    int count;
    int all; // the runs are not known: all items are to be looked at
} left_items;

static int holds(floor_store* store, int enough, int count) {
    sqlite3_stmt* s = store->statements[enough];
    sqlite3_bind_int(s, 1, count);
    const int held = sqlite3_step(s) == SQLITE_ROW;
    sqlite3_reset(s);
    return held;
}

// Before `count` entries are removed.
static left_items begin_removal(floor_store* store, int count) {
    const int all = !holds(store, few_to_note, count);
    return (left_items){all ? NULL : malloc((size_t)count * sizeof(int[2])), 0, all};
}

static void note(floor_store* store, left_items* left, int uid, int from, int to) {
    if (left->all)
        return;
    sqlite3_stmt* s = store->statements[items_of_entries];
    sqlite3_bind_int(s, 1, uid);
    sqlite3_bind_int(s, 2, from);
    sqlite3_bind_int(s, 3, to);
    while (sqlite3_step(s) == SQLITE_ROW) {
        const int item = sqlite3_column_int(s, 0);
        if (left->count == 0 || left->runs[left->count - 1][1] + 1 != item)
            left->runs[left->count++][0] = item;
        left->runs[left->count - 1][1] = item;
    }
    sqlite3_reset(s);
}

static int delete_runs(floor_store* store, const left_items* left) {
    const size_t digits = 11;
    char* json = malloc((size_t)left->count * (2 * digits + 4) + 3);
    if (!json)
        return 0;
    int size = sprintf(json, "[");
    for (int i = 0; i < left->count; ++i)
        size +=
            sprintf(json + size, "%s[%d,%d]", i > 0 ? "," : "", left->runs[i][0], left->runs[i][1]);
    size += sprintf(json + size, "]");
    sqlite3_stmt* s = store->statements[delete_unused];
    bind_text(s, 1, (floor_text){json, size});
    const int ok = run(s);
    free(json);
    return ok;
}

static int clean_up(floor_store* store, left_items* left) {
    const int all = left->all || !holds(store, few_to_look_for, left->count);
    sqlite3_db_config(store->connection, SQLITE_DBCONFIG_ENABLE_FKEY, 0, NULL);
    const int ok = all ? run(store->statements[clean_items]) : delete_runs(store, left);
    sqlite3_db_config(store->connection, SQLITE_DBCONFIG_ENABLE_FKEY, 1, NULL);
    free(left->runs);
    left->runs = NULL;
    return ok;
}

// --- playlists ---

int floor_create_playlist(floor_store* store, floor_text name, floor_list* created) {
    sqlite3_stmt* s = store->statements[create_playlist];
    bind_text(s, 1, name);
    if (!run(s))
        return 0;
    created->uid = (int)sqlite3_last_insert_rowid(store->connection);
    created->size = 0;
    created->lastPlayedIndex = -1;
    return 1;
}

int floor_update_playlist(floor_store* store, const floor_list* list, floor_text name) {
    sqlite3_stmt* s = store->statements[update_playlist];
    bind_text(s, 1, name);
    sqlite3_bind_int(s, 2, 0);
    sqlite3_bind_int(s, 3, 0);
    sqlite3_bind_int(s, 4, list->lastPlayedIndex);
    sqlite3_bind_int(s, 5, list->uid);
    return run(s);
}

int floor_delete_playlist(floor_store* store, const floor_list* list) {
    sqlite3_stmt* s = store->statements[delete_playlist];
    if (!execute(store, "BEGIN;"))
        return 0;
    left_items left = begin_removal(store, list->size);
    note(store, &left, list->uid, 0, INT_MAX);
    sqlite3_bind_int(s, 1, list->uid);
    return end_transaction(store, run(s) && sqlite3_changes(store->connection) == 1 &&
                                      clean_up(store, &left));
}

// --- entries ---

static int shift(floor_store* store, int uid, int from, int to, int offset) {
    sqlite3_stmt* s = store->statements[move_items];
    sqlite3_bind_int(s, 1, uid);
    sqlite3_bind_int(s, 2, from);
    sqlite3_bind_int(s, 3, to);
    sqlite3_bind_int(s, 4, offset);
    return run(s);
}

static int next_number(floor_store* store, const floor_list* list) {
    sqlite3_stmt* s = store->statements[get_next_number];
    sqlite3_bind_int(s, 1, list->uid);
    const int number = sqlite3_step(s) == SQLITE_ROW ? sqlite3_column_int(s, 0) : -1;
    sqlite3_reset(s);
    return number;
}

static int insert(floor_store* store, int uid, int number, const floor_item* item) {
    sqlite3_stmt* s = store->statements[insert_item];
    bind_text(s, 1, item->title);
    bind_text(s, 2, item->artist);
    bind_text(s, 3, item->album);
    bind_text(s, 4, item->artworkUrl);
    bind_text(s, 5, item->genre);
    sqlite3_bind_int(s, 6, item->durationSeconds);
    bind_text(s, 7, item->url);
    bind_text(s, 8, item->serviceId);
    bind_text(s, 9, item->orvoRoles);
    if (!run(s))
        return 0;
    s = store->statements[insert_entry];
    sqlite3_bind_int(s, 1, uid);
    sqlite3_bind_int(s, 2, (int)sqlite3_last_insert_rowid(store->connection));
    sqlite3_bind_int(s, 3, number);
    return run(s);
}

int floor_add(floor_store* store, floor_list* list, int where, const floor_item* items, int count) {
    if (!execute(store, "BEGIN IMMEDIATE;"))
        return 0;
    // Counted, because the store has a limit to keep.
    sqlite3_stmt* s = store->statements[count_items];
    int ok = sqlite3_step(s) == SQLITE_ROW;
    sqlite3_reset(s);

    const int follows =
        where == floor_after_current && list->lastPlayedIndex >= 0 && list->size > 0;
    const int first = follows ? list->lastPlayedIndex + 1 : next_number(store, list);
    ok = ok && first >= 0;
    if (ok && first < list->size) {
        const int away = list->size + 1;
        ok = shift(store, list->uid, first, list->size, count + away) &&
             shift(store, list->uid, list->size, INT_MAX, -away);
    }
    for (int i = 0; ok && i < count; ++i)
        ok = insert(store, list->uid, first + i, &items[i]);
    ok = end_transaction(store, ok);
    if (ok)
        list->size += count;
    return ok;
}

int floor_move(floor_store* store, const floor_list* list, int from, int to) {
    const int size = list->size;
    const int low = from < to ? from : to;
    const int high = from < to ? to : from;
    const int direction = from <= to ? 1 : -1;
    if (!execute(store, "BEGIN;"))
        return 0;
    return end_transaction(
        store, shift(store, list->uid, low, high, size) &&
                   shift(store, list->uid, from + size, from + size, to - from - size) &&
                   shift(store, list->uid, low + size, high + size, -(direction + size)));
}

int floor_reorder(floor_store* store, const floor_list* list, int first, const int* order,
                  int count) {
    const int above = list->size;
    if (!execute(store, "BEGIN IMMEDIATE;"))
        return 0;
    int ok = shift(store, list->uid, first, first + count - 1, above);
    for (int begin = 0, next; ok && begin < count; begin = next) {
        next = begin + 1;
        while (next < count && order[next] == order[next - 1] + 1)
            ++next;
        ok = shift(store, list->uid, order[begin] + above, order[next - 1] + above,
                   first + begin - order[begin] - above);
    }
    return end_transaction(store, ok);
}

// The number of entries deleted, or -1.
static int delete_run(floor_store* store, int uid, int from, int to) {
    sqlite3_stmt* s = store->statements[delete_entries];
    sqlite3_bind_int(s, 1, uid);
    sqlite3_bind_int(s, 2, from);
    sqlite3_bind_int(s, 3, to);
    return run(s) ? sqlite3_changes(store->connection) : -1;
}

static int renumber(floor_store* store, const floor_list* list, int first) {
    typedef struct {
        int uid, number;
    } entry;
    entry* entries = malloc((size_t)(list->size + 1) * sizeof *entries);
    int count = 0;
    sqlite3_stmt* s = store->statements[get_items];
    sqlite3_bind_int(s, 1, list->uid);
    sqlite3_bind_int(s, 2, first);
    sqlite3_bind_int(s, 3, list->size);
    while (entries && sqlite3_step(s) == SQLITE_ROW) {
        entries[count].number = sqlite3_column_int(s, 0);
        entries[count++].uid = sqlite3_column_int(s, 1);
    }
    int ok = entries && sqlite3_reset(s) == SQLITE_OK;
    s = store->statements[set_number];
    for (int i = 0; ok && i < count; ++i) {
        sqlite3_bind_int(s, 1, list->uid);
        sqlite3_bind_int(s, 2, entries[i].uid);
        sqlite3_bind_int(s, 3, entries[i].number);
        sqlite3_bind_int(s, 4, first + i);
        ok = run(s);
    }
    free(entries);
    return ok;
}

int floor_remove(floor_store* store, floor_list* list, const int* indices, int count) {
    if (!execute(store, "BEGIN IMMEDIATE;"))
        return 0;
    left_items left = begin_removal(store, count);
    int removed = 0;
    int ok = 1;
    for (int from = 0; ok && from < count;) {
        int to = from;
        while (to + 1 < count && indices[to + 1] == indices[to] + 1)
            ++to;
        note(store, &left, list->uid, indices[from], indices[to]);
        const int deleted = delete_run(store, list->uid, indices[from], indices[to]);
        ok = deleted >= 0;
        removed += deleted;
        from = to + 1;
    }
    ok = end_transaction(store, ok && removed == count && clean_up(store, &left) &&
                                    renumber(store, list, indices[0]));
    if (ok)
        list->size -= count;
    return ok;
}

int floor_clear(floor_store* store, floor_list* list) {
    left_items left = begin_removal(store, list->size);
    note(store, &left, list->uid, 0, INT_MAX);
    if (delete_run(store, list->uid, 0, INT_MAX) < 0)
        return 0;
    list->size = 0;
    return clean_up(store, &left);
}

// --- reading ---

static int make_room(void** array, size_t* room, size_t wanted, size_t element) {
    if (wanted <= *room)
        return 1;
    const size_t larger = wanted + wanted / 2 + 64;
    void* moved = realloc(*array, larger * element);
    if (!moved)
        return 0;
    *array = moved;
    *room = larger;
    return 1;
}

// Copies the text behind those before it. Where it is, place() says, since the texts may still
// move.
static int keep_text(floor_rows* rows, sqlite3_stmt* s, int column, floor_text* text) {
    const unsigned char* data = sqlite3_column_text(s, column);
    text->size = sqlite3_column_bytes(s, column);
    if (!make_room((void**)&rows->texts, &rows->textsRoom, rows->textsUsed + (size_t)text->size, 1))
        return 0;
    if (text->size > 0)
        memcpy(rows->texts + rows->textsUsed, data, (size_t)text->size);
    rows->textsUsed += (size_t)text->size;
    return 1;
}

// For all texts in the order in which they were copied.
static void place(const char** next, floor_text* text) {
    text->data = *next;
    *next += text->size;
}

int floor_read(floor_store* store, const floor_list* list, int from, int to, floor_rows* rows) {
    sqlite3_stmt* s = store->statements[get_items];
    sqlite3_bind_int(s, 1, list->uid);
    sqlite3_bind_int(s, 2, from);
    sqlite3_bind_int(s, 3, to);
    rows->count = 0;
    rows->textsUsed = 0;
    int ok = 1;
    while (ok && sqlite3_step(s) == SQLITE_ROW) {
        ok = make_room((void**)&rows->entries, &rows->entriesRoom, (size_t)rows->count + 1,
                       sizeof *rows->entries);
        if (!ok)
            break;
        floor_entry* entry = &rows->entries[rows->count++];
        floor_item* item = &entry->item;
        entry->sequenceNumber = sqlite3_column_int(s, 0);
        entry->uid = sqlite3_column_int(s, 1);
        ok = keep_text(rows, s, 2, &item->title) && keep_text(rows, s, 3, &item->artist) &&
             keep_text(rows, s, 4, &item->album) && keep_text(rows, s, 5, &item->artworkUrl) &&
             keep_text(rows, s, 6, &item->genre) && keep_text(rows, s, 8, &item->url) &&
             keep_text(rows, s, 9, &item->serviceId) && keep_text(rows, s, 10, &item->orvoRoles);
        item->durationSeconds = sqlite3_column_int(s, 7);
    }
    ok = sqlite3_reset(s) == SQLITE_OK && ok;
    const char* next = rows->texts;
    for (int i = 0; ok && i < rows->count; ++i) {
        floor_item* item = &rows->entries[i].item;
        place(&next, &item->title);
        place(&next, &item->artist);
        place(&next, &item->album);
        place(&next, &item->artworkUrl);
        place(&next, &item->genre);
        place(&next, &item->url);
        place(&next, &item->serviceId);
        place(&next, &item->orvoRoles);
    }
    return ok;
}

static int load_playlists(sqlite3_stmt* s, floor_rows* rows) {
    int ok = 1;
    while (ok && sqlite3_step(s) == SQLITE_ROW) {
        ok = make_room((void**)&rows->playlists, &rows->playlistsRoom, (size_t)rows->count + 1,
                       sizeof *rows->playlists);
        if (!ok)
            break;
        floor_playlist* pl = &rows->playlists[rows->count++];
        pl->list.uid = sqlite3_column_int(s, 0);
        ok = keep_text(rows, s, 1, &pl->name);
        pl->shuffle = sqlite3_column_int(s, 2) == 1;
        pl->repeatAll = sqlite3_column_int(s, 3) == 1;
        pl->list.lastPlayedIndex = sqlite3_column_int(s, 4);
        pl->list.size = sqlite3_column_int(s, 5) + 1;
    }
    return sqlite3_reset(s) == SQLITE_OK && ok;
}

int floor_load(floor_store* store, floor_rows* rows) {
    rows->count = 0;
    rows->textsUsed = 0;
    int ok = load_playlists(store->statements[get_play_queue], rows) &&
             load_playlists(store->statements[get_playlists], rows);
    const char* next = rows->texts;
    for (int i = 0; ok && i < rows->count; ++i)
        place(&next, &rows->playlists[i].name);
    sqlite3_stmt* s = store->statements[get_collections];
    while (sqlite3_step(s) == SQLITE_ROW) {
    }
    return sqlite3_reset(s) == SQLITE_OK && ok;
}
