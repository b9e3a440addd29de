#include "Baseline.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace {

constexpr const char* FewTexts[] = {
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

void bindText(sqlite3_stmt* s, int index, std::string_view text) {
    sqlite3_bind_text(s, index, text.data(), int(text.size()), SQLITE_STATIC);
}

// Steps once and resets; the reset tells whether it worked.
bool run(sqlite3_stmt* s) {
    sqlite3_step(s);
    return sqlite3_reset(s) == SQLITE_OK;
}

} // namespace

const char* Baseline::statementText(int index) {
    return index < int(StatementCount) ? statementRow(StatementId(index)).sql
                                       : FewTexts[index - int(StatementCount)];
}

// A benchmark has no use for half a baseline.
Baseline::Baseline(const char* file) {
    constexpr std::size_t MaxTextBytes = 8 << 20;
    m_texts.reserve(MaxTextBytes);
    bool ok = sqlite3_open(file, &m_db) == SQLITE_OK && execute("PRAGMA foreign_keys=1;");
    for (int i = 0; i < AllCount; ++i)
        ok = ok &&
             sqlite3_prepare_v2(m_db, statementText(i), -1, &m_statements[i], nullptr) == SQLITE_OK;
    if (!ok)
        std::abort();
}

Baseline::~Baseline() {
    for (sqlite3_stmt* statement : m_statements)
        sqlite3_finalize(statement);
    sqlite3_close(m_db);
}

// The statement, with these numbers as its first parameters.
sqlite3_stmt* Baseline::bound(int statement, std::initializer_list<int> numbers) {
    int index = 0;
    for (const int number : numbers)
        sqlite3_bind_int(m_statements[statement], ++index, number);
    return m_statements[statement];
}

bool Baseline::endTransaction(bool ok) {
    if (ok && execute("COMMIT;"))
        return true;
    execute("ROLLBACK;");
    return false;
}

// --- small removals ---

bool Baseline::holds(int condition, int count) {
    sqlite3_stmt* s = bound(condition, {count});
    const bool held = sqlite3_step(s) == SQLITE_ROW;
    sqlite3_reset(s);
    return held;
}

// Before `count` entries are removed.
Baseline::UnusedItems Baseline::beginRemoval(int count) {
    return {!holds(IsNotingCheaper, count), {}};
}

void Baseline::note(UnusedItems* unused, int uid, int from, int to) {
    if (unused->all)
        return;
    sqlite3_stmt* s = bound(ItemsOfEntries, {uid, from, to});
    while (sqlite3_step(s) == SQLITE_ROW) {
        const int item = sqlite3_column_int(s, 0);
        if (unused->runs.empty() || unused->runs.back().second + 1 != item)
            unused->runs.emplace_back(item, item);
        unused->runs.back().second = item;
    }
    sqlite3_reset(s);
}

bool Baseline::cleanUp(const UnusedItems& unused) {
    const bool all = unused.all || !holds(IsLookingCheaper, int(unused.runs.size()));
    std::string json;
    for (std::size_t i = 0; !all && i < unused.runs.size(); ++i)
        json += (i == 0 ? "[[" : ",[") + std::to_string(unused.runs[i].first) + ',' +
                std::to_string(unused.runs[i].second) + ']';
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_ENABLE_FKEY, 0, nullptr);
    sqlite3_stmt* s = m_statements[all ? int(StatementId::CleanUnusedItems) : int(DeleteUnused)];
    if (!all)
        bindText(s, 1, json.empty() ? json = "[]" : json += ']');
    const bool ok = run(s);
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_ENABLE_FKEY, 1, nullptr);
    return ok;
}

// --- playlists ---

bool Baseline::createPlayList(std::string_view name, List* created) {
    sqlite3_stmt* s = bound(StatementId::CreatePlayList, {});
    bindText(s, 1, name);
    const bool ok = run(s);
    *created = {int(sqlite3_last_insert_rowid(m_db)), 0, -1};
    return ok;
}

bool Baseline::updatePlayList(const List& list, std::string_view name) {
    sqlite3_stmt* s = bound(StatementId::UpdatePlayList, {0, 0, 0, list.lastPlayedIndex, list.uid});
    bindText(s, 1, name);
    return run(s);
}

bool Baseline::deletePlayList(const List& list) {
    if (!execute("BEGIN;"))
        return false;
    UnusedItems unused = beginRemoval(list.size);
    note(&unused, list.uid, 0, INT_MAX);
    return endTransaction(run(bound(StatementId::DeletePlayList, {list.uid})) &&
                          sqlite3_changes(m_db) == 1 && cleanUp(unused));
}

// --- entries ---

bool Baseline::shift(int uid, int from, int to, int offset) {
    return run(bound(StatementId::MoveItem1, {uid, from, to, offset}));
}

bool Baseline::insert(int uid, int number, const Item& item) {
    sqlite3_stmt* s = m_statements[int(StatementId::InsertItem)];
    bindText(s, 1, item.title);
    bindText(s, 2, item.artist);
    bindText(s, 3, item.album);
    bindText(s, 4, item.artworkUrl);
    bindText(s, 5, item.genre);
    sqlite3_bind_int(s, 6, item.durationSeconds);
    bindText(s, 7, item.url);
    bindText(s, 8, item.serviceId);
    bindText(s, 9, item.orvoRoles);
    return run(s) && run(bound(StatementId::InsertPlayListItem,
                               {uid, int(sqlite3_last_insert_rowid(m_db)), number}));
}

bool Baseline::addItems(List* list, Position position, const std::vector<Item>& items) {
    if (!execute("BEGIN IMMEDIATE;"))
        return false;
    // Counted, because the store has a limit to keep.
    bool ok = run(bound(StatementId::CountPlaylistItems, {}));
    int first = list->lastPlayedIndex + 1;
    if (position == Position::Append || first == 0 || list->size == 0) {
        sqlite3_stmt* s = bound(StatementId::GetNextSequenceNumber, {list->uid});
        first = sqlite3_step(s) == SQLITE_ROW ? sqlite3_column_int(s, 0) : -1;
        sqlite3_reset(s);
    }
    ok = ok && first >= 0;
    if (ok && first < list->size) {
        const int away = list->size + 1;
        ok = shift(list->uid, first, list->size, int(items.size()) + away) &&
             shift(list->uid, list->size, INT_MAX, -away);
    }
    int number = first;
    for (auto item = items.begin(); ok && item != items.end(); ++item)
        ok = insert(list->uid, number++, *item);
    ok = endTransaction(ok);
    if (ok)
        list->size += int(items.size());
    return ok;
}

bool Baseline::moveItem(const List& list, int from, int to) {
    const int low = std::min(from, to);
    const int high = std::max(from, to);
    const int direction = from <= to ? 1 : -1;
    if (!execute("BEGIN;"))
        return false;
    return endTransaction(
        shift(list.uid, low, high, list.size) &&
        shift(list.uid, from + list.size, from + list.size, to - from - list.size) &&
        shift(list.uid, low + list.size, high + list.size, -(direction + list.size)));
}

bool Baseline::reorderItems(const List& list, int first, const std::vector<int>& order) {
    const int above = list.size;
    const int count = int(order.size());
    if (!execute("BEGIN IMMEDIATE;"))
        return false;
    bool ok = shift(list.uid, first, first + count - 1, above);
    const int* places = order.data();
    for (int begin = 0, next = 0; ok && begin < count; begin = next) {
        next = begin + 1;
        while (next < count && places[next] == places[next - 1] + 1)
            ++next;
        ok = shift(list.uid, places[begin] + above, places[next - 1] + above,
                   first + begin - places[begin] - above);
    }
    return endTransaction(ok);
}

// The number of entries deleted, or -1.
int Baseline::deleteRun(int uid, int from, int to) {
    return run(bound(StatementId::DeletePlayListItem, {uid, from, to})) ? sqlite3_changes(m_db)
                                                                        : -1;
}

bool Baseline::renumber(const List& list, int first) {
    std::vector<std::pair<int, int>> entries; // number and uid
    entries.reserve(std::size_t(list.size));
    sqlite3_stmt* s = bound(StatementId::GetItems, {list.uid, first, list.size});
    while (sqlite3_step(s) == SQLITE_ROW)
        entries.emplace_back(sqlite3_column_int(s, 0), sqlite3_column_int(s, 1));
    bool ok = sqlite3_reset(s) == SQLITE_OK;
    for (auto entry = entries.begin(); ok && entry != entries.end(); ++entry)
        ok = run(bound(StatementId::SetSequenceNumber,
                       {list.uid, entry->second, entry->first, first++}));
    return ok;
}

bool Baseline::removeItems(List* list, const std::vector<int>& indices) {
    if (!execute("BEGIN IMMEDIATE;"))
        return false;
    const int count = int(indices.size());
    UnusedItems unused = beginRemoval(count);
    int removed = 0;
    for (auto from = indices.begin(); from != indices.end();) {
        auto to = from;
        while (to + 1 != indices.end() && to[1] == *to + 1)
            ++to;
        note(&unused, list->uid, *from, *to);
        removed += deleteRun(list->uid, *from, *to);
        from = to + 1;
    }
    const bool ok =
        endTransaction(removed == count && cleanUp(unused) && renumber(*list, indices.front()));
    if (ok)
        list->size -= count;
    return ok;
}

bool Baseline::clearItems(List* list) {
    UnusedItems unused = beginRemoval(list->size);
    note(&unused, list->uid, 0, INT_MAX);
    const bool ok = deleteRun(list->uid, 0, INT_MAX) == list->size && cleanUp(unused);
    list->size = 0;
    return ok;
}

// --- reading ---

std::string_view Baseline::keep(sqlite3_stmt* s, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(s, column));
    const auto size = std::size_t(sqlite3_column_bytes(s, column));
    if (m_texts.size() + size > m_texts.capacity())
        std::abort();
    m_texts.append(text, size);
    return std::string_view(m_texts).substr(m_texts.size() - size);
}

const std::vector<Baseline::Entry>& Baseline::getItems(const List& list, int from, int to) {
    sqlite3_stmt* s = bound(StatementId::GetItems, {list.uid, from, to});
    m_entries.clear();
    m_texts.clear();
    while (sqlite3_step(s) == SQLITE_ROW)
        m_entries.push_back({sqlite3_column_int(s, 0),
                             sqlite3_column_int(s, 1),
                             {keep(s, 2), keep(s, 3), keep(s, 4), keep(s, 5), keep(s, 6),
                              sqlite3_column_int(s, 7), keep(s, 8), keep(s, 9), keep(s, 10)}});
    if (sqlite3_reset(s) != SQLITE_OK)
        m_entries.clear();
    return m_entries;
}

const std::vector<Baseline::PlayList>& Baseline::loadPlayLists() {
    m_playLists.clear();
    m_texts.clear();
    for (const StatementId id : {StatementId::GetPlayQueue, StatementId::GetPlayLists}) {
        sqlite3_stmt* s = bound(id, {});
        while (sqlite3_step(s) == SQLITE_ROW)
            m_playLists.push_back(
                {{sqlite3_column_int(s, 0), sqlite3_column_int(s, 5) + 1, sqlite3_column_int(s, 4)},
                 keep(s, 1),
                 sqlite3_column_int(s, 2) == 1,
                 sqlite3_column_int(s, 3) == 1});
        sqlite3_reset(s);
    }
    sqlite3_stmt* s = bound(StatementId::GetCollections, {});
    while (sqlite3_step(s) == SQLITE_ROW) {
    }
    sqlite3_reset(s);
    return m_playLists;
}
