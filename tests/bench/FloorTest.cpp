#include "floor.h"

#include <cstring>
#include <sqlite3.h>

#include "Items.h"
#include "StatementTrace.h"
#include "StoreFixture.h"

namespace {

constexpr const char* floorFile = "floor.sqlite";

// Everything that the file says: schema, rows and what is kept of the settings.
QStringList contentsOf(const char* file) {
    sqlite3* connection = nullptr;
    EXPECT_EQ(SQLITE_OK, sqlite3_open_v2(file, &connection, SQLITE_OPEN_READONLY, nullptr));
    QStringList lines;
    for (const char* query :
         {"SELECT * FROM sqlite_schema ORDER BY name", "SELECT * FROM playlists ORDER BY uid",
          "SELECT * FROM items ORDER BY uid",
          "SELECT * FROM playlists_items ORDER BY playlist, sequenceNumber",
          "SELECT * FROM collections", "SELECT * FROM collections_playlists", "PRAGMA journal_mode",
          "PRAGMA page_size", "PRAGMA encoding", "PRAGMA auto_vacuum", "PRAGMA user_version",
          "PRAGMA integrity_check"}) {
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(SQLITE_OK, sqlite3_prepare_v2(connection, query, -1, &statement, nullptr));
        while (sqlite3_step(statement) == SQLITE_ROW) {
            QStringList cells;
            for (int i = 0; i < sqlite3_column_count(statement); ++i) {
                const char* type[] = {"", "i", "r", "t", "b", "n"};
                cells.append(type[sqlite3_column_type(statement, i)] +
                             QString::fromUtf8(
                                 reinterpret_cast<const char*>(sqlite3_column_text(statement, i))));
            }
            lines.append(cells.join(QLatin1Char('|')));
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(connection);
    return lines;
}

} // namespace

// The floor is a measure only while it does the same work.
class FloorTest : public StoreFixture {
protected:
    using Position = OrvoPlayListAddPosition;

    void SetUp() override {
        database();
        m_floor = floor_open(floorFile);
        ASSERT_NE(nullptr, m_floor);
        expectTheSame("opened");
    }
    void TearDown() override {
        floor_close(m_floor);
        floor_free(&m_rows);
        StoreFixture::TearDown();
    }

    void createLists() {
        for (const char* name : {"one", "zwö"}) {
            database().createPlayList(QString::fromUtf8(name));
            ASSERT_TRUE(floor_create_playlist(m_floor, {name, int(std::strlen(name))}, &m_list));
        }
        m_list = {1, 0, -1};
    }
    void add(Position::Enum position, int count) {
        const Items& items = Items::of(count);
        PlayListRecord pl = record(1);
        pl.lastPlayedIndex = m_list.lastPlayedIndex;
        EXPECT_GE(database().addItems(pl, position, items.ours(), nullptr), 0);
        EXPECT_TRUE(floor_add(m_floor, &m_list,
                              position == Position::Append ? floor_append : floor_after_current,
                              items.forFloor().data(), count));
        expectTheSame("added");
    }
    void move(int from, int to) {
        EXPECT_TRUE(database().moveItem(record(1), from, to));
        EXPECT_TRUE(floor_move(m_floor, &m_list, from, to));
        expectTheSame("moved");
    }
    void reorder(int first, const QVector<int>& order) {
        EXPECT_TRUE(database().reorderItems(record(1), first, order, record(1).lastPlayedIndex));
        EXPECT_TRUE(floor_reorder(m_floor, &m_list, first, order.constData(), order.size()));
        expectTheSame("reordered");
    }
    void remove(const QList<int>& indices) {
        const QVector<int> array(indices.begin(), indices.end());
        EXPECT_EQ(indices.size(), database().removeItems(record(1), indices));
        EXPECT_TRUE(floor_remove(m_floor, &m_list, array.constData(), array.size()));
        expectTheSame("removed");
    }
    void expectTheSame(const char* when) {
        EXPECT_EQ(contentsOf(File), contentsOf(floorFile)) << when;
        EXPECT_EQ(m_list.uid > 0 ? record(m_list.uid).size : 0, m_list.size) << when;
    }

    floor_store* m_floor = nullptr;
    floor_list m_list{};
    floor_rows m_rows{};
};

TEST_F(FloorTest, leavesTheSameRowsAfterEveryStep) {
    createLists();
    add(Position::Append, 20);
    m_list.lastPlayedIndex = 9;
    add(Position::AfterCurrent, 20);
    m_list.lastPlayedIndex = -1;
    add(Position::Append, 1);
    move(0, 40);
    move(40, 0);
    move(20, 21);
    reorder(2, {3, 4, 2, 7, 6, 5});
    remove({0});
    remove({0, 2, 4, 6, 8, 9, 10, 39});
    EXPECT_TRUE(database().clearItems(record(1)));
    EXPECT_TRUE(floor_clear(m_floor, &m_list));
    expectTheSame("cleared");
    add(Position::Append, 5);
    EXPECT_TRUE(database().deletePlayList(record(1)));
    EXPECT_TRUE(floor_delete_playlist(m_floor, &m_list));
    m_list = {2, 0, -1};
    expectTheSame("deleted");
}

// What goes is looked for by its items where it is little of all that is stored.
TEST_F(FloorTest, runsTheStoresStatementsOfASmallRemoval) {
    createLists();
    add(Position::Append, 100);
    StatementTrace trace(database());
    remove({3, 5, 6});
    for (int i = floor_statement_count(); i < floor_all_statement_count(); ++i)
        EXPECT_TRUE(trace.texts().contains(floor_statement_text(i))) << floor_statement_text(i);
}

TEST_F(FloorTest, readsTheSameEntries) {
    createLists();
    add(Position::Append, 30);
    const QList<OrvoPlayListItem> items = database().getItems(record(1), 5, 24);
    ASSERT_TRUE(floor_read(m_floor, &m_list, 5, 24, &m_rows));
    ASSERT_EQ(items.size(), m_rows.count);
    const auto text = [](floor_text t) { return QString::fromUtf8(t.data, t.size); };
    for (int i = 0; i < m_rows.count; ++i) {
        const floor_entry& entry = m_rows.entries[i];
        EXPECT_EQ(items[i].sequenceNumber(), entry.sequenceNumber);
        EXPECT_EQ(items[i].uid(), entry.uid);
        EXPECT_EQ(items[i].title(), text(entry.item.title));
        EXPECT_EQ(items[i].artist(), text(entry.item.artist));
        EXPECT_EQ(items[i].album(), text(entry.item.album));
        EXPECT_EQ(items[i].artworkUrl(), text(entry.item.artworkUrl));
        EXPECT_EQ(items[i].genre(), text(entry.item.genre));
        EXPECT_EQ(items[i].durationSeconds(), entry.item.durationSeconds);
        EXPECT_EQ(items[i].url(), text(entry.item.url));
        EXPECT_EQ(items[i].serviceId(), text(entry.item.serviceId));
        EXPECT_EQ(items[i].orvoRoles(), text(entry.item.orvoRoles));
    }
}

TEST_F(FloorTest, loadsTheSameLists) {
    createLists();
    add(Position::Append, 3);
    QList<PlayListRecord> records = {database().getPlayQueue()};
    records += database().getPlayLists();
    ASSERT_TRUE(floor_load(m_floor, &m_rows));
    ASSERT_EQ(records.size(), m_rows.count);
    for (int i = 0; i < m_rows.count; ++i) {
        const floor_playlist& list = m_rows.playlists[i];
        EXPECT_EQ(records[i].uid, list.list.uid);
        EXPECT_EQ(records[i].size, list.list.size);
        EXPECT_EQ(records[i].lastPlayedIndex, list.list.lastPlayedIndex);
        EXPECT_EQ(records[i].name, QString::fromUtf8(list.name.data, list.name.size));
    }
}

TEST_F(FloorTest, runsTheStoresStatements) {
    ASSERT_EQ(int(StatementCount), floor_statement_count());
    for (int i = 0; i < floor_statement_count(); ++i)
        EXPECT_STREQ(statementRow(StatementId(i)).sql, floor_statement_text(i));
}
