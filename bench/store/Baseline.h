#pragma once

#include <sqlite3.h>
#include <string>
#include <string_view>
#include <vector>

#include "StatementCatalogue.h"

// What the store's work costs when nothing but SQLite does it: the store's own statements and
// transactions through SQLite's interface, with its defaults for a connection. No Qt, no logging.
//
// Opens a file that has the store's tables. What changes something is false when SQLite refused it,
// and then the transaction is rolled back; a benchmark ends there.
class Baseline {
public:
    // In the order of the columns of `items`, without uid. In UTF-8.
    struct Item {
        std::string_view title, artist, album, artworkUrl, genre;
        int durationSeconds;
        std::string_view url, serviceId, orvoRoles;
    };
    // What the caller keeps of a playlist: current, as the functions below leave it.
    struct List {
        int uid = 0;
        int size = 0;
        int lastPlayedIndex = -1;
    };
    struct Entry {
        int sequenceNumber;
        int uid;
        Item item;
    };
    struct PlayList {
        List list;
        std::string_view name;
        bool shuffle, repeatAll;
    };
    enum class Position { AfterCurrent, Append };

    explicit Baseline(const char* file);
    ~Baseline();
    Baseline(const Baseline&) = delete;
    Baseline& operator=(const Baseline&) = delete;

    bool createPlayList(std::string_view name, List* created);
    // Writes what is kept of the playlist beside its entries.
    bool updatePlayList(const List& list, std::string_view name);
    bool deletePlayList(const List& list);
    bool addItems(List* list, Position position, const std::vector<Item>& items);
    bool moveItem(const List& list, int from, int to);
    // Gives the entries from `first` on another order: `order` has their present places.
    bool reorderItems(const List& list, int first, const std::vector<int>& order);
    // `indices` ascending, each once.
    bool removeItems(List* list, const std::vector<int>& indices);
    bool clearItems(List* list);

    // What is read stays until the next reading; nothing where that failed.
    // Entries numbered `from` to `to`, both included.
    const std::vector<Entry>& getItems(const List& list, int from, int to);
    // What is read at a start: the play queue first, then all playlists by name; the collections
    // are gone through.
    const std::vector<PlayList>& loadPlayLists();

    // Those that find the items of a small removal, behind the module's catalogue.
    enum Few {
        IsNotingCheaper = StatementCount,
        IsLookingCheaper,
        ItemsOfEntries,
        DeleteUnused,
        AllCount
    };
    static const char* statementText(int index);

private:
    using Run = std::pair<int, int>; // uids that follow each other, both ends included
    // The items of the entries that go. Where all items are to be looked at it has none.
    struct UnusedItems {
        bool all;
        std::vector<Run> runs;
    };

    bool execute(const char* sql) {
        return sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    }
    sqlite3_stmt* bound(int statement, std::initializer_list<int> numbers);
    sqlite3_stmt* bound(StatementId id, std::initializer_list<int> numbers) {
        return bound(int(id), numbers);
    }
    bool endTransaction(bool ok);
    bool holds(int condition, int count);
    UnusedItems beginRemoval(int count);
    void note(UnusedItems* unused, int uid, int from, int to);
    bool cleanUp(const UnusedItems& unused);
    bool shift(int uid, int from, int to, int offset);
    bool insert(int uid, int number, const Item& item);
    int deleteRun(int uid, int from, int to);
    bool renumber(const List& list, int first);
    std::string_view keep(sqlite3_stmt* statement, int column);

    sqlite3* m_db = nullptr;
    sqlite3_stmt* m_statements[AllCount] = {};
    std::vector<Entry> m_entries;
    std::vector<PlayList> m_playLists;
    std::string m_texts; // never more than was reserved, because others point into it
};
