#include "Baseline.h"

#include <sqlite3.h>

#include <QFile>

#include "Items.h"
#include "StatementTrace.h"
#include "StoreFixture.h"

namespace {

constexpr const char* BaselineFile = "baseline.sqlite";

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

// The baseline is a measure only while it does the same work.
class BaselineTest : public StoreFixture {
protected:
    using Position = OrvoPlayListAddPosition;

    void SetUp() override {
        database();
        ASSERT_TRUE(QFile::copy(QString::fromLatin1(File), QString::fromLatin1(BaselineFile)));
        m_baseline = std::make_unique<Baseline>(BaselineFile);
    }
    void TearDown() override {
        m_baseline.reset();
        StoreFixture::TearDown();
    }

    void createLists() {
        for (const char* name : {"one", "zwö"}) {
            database().createPlayList(QString::fromUtf8(name));
            ASSERT_TRUE(m_baseline->createPlayList(name, &m_list));
        }
        m_list = {1, 0, -1};
        expectTheSame("created");
    }
    void add(Position::Enum position, int count) {
        const Items& items = Items::of(count);
        PlayListRecord pl = record(1);
        pl.lastPlayedIndex = m_list.lastPlayedIndex;
        EXPECT_GE(database().addItems(pl, position, items.ours(), nullptr), 0);
        const auto where = position == Position::Append ? Baseline::Position::Append
                                                        : Baseline::Position::AfterCurrent;
        EXPECT_TRUE(m_baseline->addItems(&m_list, where, items.forBaseline()));
        expectTheSame("added");
    }
    void move(int from, int to) {
        EXPECT_TRUE(database().moveItem(record(1), from, to));
        EXPECT_TRUE(m_baseline->moveItem(m_list, from, to));
        expectTheSame("moved");
    }
    void reorder(int first, const std::vector<int>& order) {
        EXPECT_TRUE(database().reorderItems(
            record(1), first, QVector<int>(order.begin(), order.end()), record(1).lastPlayedIndex));
        EXPECT_TRUE(m_baseline->reorderItems(m_list, first, order));
        expectTheSame("reordered");
    }
    void remove(const std::vector<int>& indices) {
        const QList<int> list(indices.begin(), indices.end());
        EXPECT_EQ(list.size(), database().removeItems(record(1), list));
        EXPECT_TRUE(m_baseline->removeItems(&m_list, indices));
        expectTheSame("removed");
    }
    void expectTheSame(const char* when) {
        EXPECT_EQ(contentsOf(File), contentsOf(BaselineFile)) << when;
        EXPECT_EQ(m_list.uid > 0 ? record(m_list.uid).size : 0, m_list.size) << when;
    }

    std::unique_ptr<Baseline> m_baseline;
    Baseline::List m_list;
};

TEST_F(BaselineTest, leavesTheSameRowsAfterEveryStep) {
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
    EXPECT_TRUE(m_baseline->clearItems(&m_list));
    expectTheSame("cleared");
    add(Position::Append, 5);
    EXPECT_TRUE(database().deletePlayList(record(1)));
    EXPECT_TRUE(m_baseline->deletePlayList(m_list));
    m_list = {2, 0, -1};
    expectTheSame("deleted");
}

// What goes is looked for by its items where it is little of all that is stored.
TEST_F(BaselineTest, hasTheStatementsThatTheStoreRunsForASmallRemoval) {
    createLists();
    add(Position::Append, 100);
    StatementTrace trace(database());
    remove({3, 5, 6});
    for (int i = int(StatementCount); i < Baseline::AllCount; ++i)
        EXPECT_TRUE(trace.texts().contains(Baseline::statementText(i)))
            << Baseline::statementText(i);
}

TEST_F(BaselineTest, readsTheSameEntries) {
    createLists();
    add(Position::Append, 30);
    const QList<OrvoPlayListItem> items = database().getItems(record(1), 5, 24);
    const std::vector<Baseline::Entry>& entries = m_baseline->getItems(m_list, 5, 24);
    ASSERT_EQ(std::size_t(items.size()), entries.size());
    const auto text = [](std::string_view t) { return QString::fromUtf8(t.data(), int(t.size())); };
    for (int i = 0; i < items.size(); ++i) {
        const Baseline::Entry& entry = entries[std::size_t(i)];
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

TEST_F(BaselineTest, loadsTheSameLists) {
    createLists();
    add(Position::Append, 3);
    QList<PlayListRecord> records = {database().getPlayQueue()};
    records += database().getPlayLists();
    const std::vector<Baseline::PlayList>& lists = m_baseline->loadPlayLists();
    ASSERT_EQ(std::size_t(records.size()), lists.size());
    for (int i = 0; i < records.size(); ++i) {
        const Baseline::PlayList& list = lists[std::size_t(i)];
        EXPECT_EQ(records[i].uid, list.list.uid);
        EXPECT_EQ(records[i].size, list.list.size);
        EXPECT_EQ(records[i].lastPlayedIndex, list.list.lastPlayedIndex);
        EXPECT_EQ(records[i].name.toStdString(), list.name);
    }
}
