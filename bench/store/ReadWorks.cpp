#include "ModuleTurns.h"
#include "StoreTurns.h"

namespace {

constexpr int PageLength = 50;

// The start of a page somewhere in the list, another one each time, the same ones in every run.
int nextPage(int* turn, int size) {
    constexpr int Stride = 7919; // prime, so all of the list is visited
    return int(qint64((*turn)++) * Stride % (size - PageLength));
}

// Rows that are used again.
struct Rows : floor_rows {
    Rows() : floor_rows{} {}
    ~Rows() { floor_free(this); }
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;
};

// Both have read the list before, a piece at a time: the page cache is as full as it gets, which
// it is on a device after its first minutes.
void readThrough(PlayListBase* list, floor_store* store, const floor_list& floorList) {
    constexpr int Piece = 1000;
    Rows rows;
    for (int from = 0; from < list->getSize(); from += Piece) {
        list->getItems(from, from + Piece - 1);
        floor_read(store, &floorList, from, from + Piece - 1, &rows);
    }
}

class Page : public StoreTurns {
public:
    Page(const Setting& setting, Items::Order order)
        : StoreTurns(setting, {1, setting.size, order}) {
        readThrough(list(), store(), floorList);
    }

    void prepare() override { m_from = nextPage(&m_turn, size()); }
    bool base() override {
        return floor_read(store(), &floorList, m_from, m_from + PageLength - 1, &m_rows) &&
               m_rows.count == PageLength;
    }
    bool ours() override {
        return list()->getItems(m_from, m_from + PageLength - 1).size() == PageLength;
    }

private:
    int m_turn = 0;
    int m_from = 0;
    Rows m_rows;
};

class BrowsePage : public ModuleTurns {
public:
    BrowsePage(const Setting& setting, Items::Order order)
        : ModuleTurns(setting, {1, setting.size, order}) {
        readThrough(list(), store(), floorList);
    }

    void prepare() override { m_from = nextPage(&m_turn, size()); }
    bool base() override {
        return floor_read(store(), &floorList, m_from, m_from + PageLength - 1, &m_rows) &&
               m_rows.count == PageLength;
    }
    bool ours() override {
        const CMReplyData<OrvoRowsRoles> reply;
        CMRoot()->getRowsRequest(CMGetRowsRequest(itemsPath(), m_from, m_from + PageLength - 1,
                                                  OrvoRoles::defaultNames(), reply));
        return reply.isFinished() && reply.value().rows().size() == PageLength;
    }

private:
    int m_turn = 0;
    int m_from = 0;
    Rows m_rows;
};

// All items of a list, asked for by their paths as another list that takes them over asks for them;
// held against the model reading the same items where they stand.
class PrepareByPath : public ModuleTurns {
public:
    explicit PrepareByPath(const Setting& setting) : ModuleTurns(setting, {1, setting.size}) {
        for (const OrvoPlayListItem& item : list()->getItems(0, setting.size))
            m_paths.append((OrvoPlayListItemPath() + QString::number(item.uid())).toString());
    }

    bool base() override { return list()->getItems(0, size()).size() == size(); }
    bool ours() override {
        QVariant answer;
        return send(OrvoPlayListPlPrepareItemsPath(), m_paths, &answer) &&
               answer.toList().size() == size();
    }

private:
    QStringList m_paths;
};

// What a start reads: all playlists and collections, on a connection that has read nothing yet.
class Load : public StoreTurns {
public:
    explicit Load(const Setting& setting)
        : StoreTurns(setting, {setting.size / EntriesEach, EntriesEach}) {}

    void prepare() override {
        m_loaded.reset();
        close();
        open(false);
    }
    bool base() override {
        return floor_load(store(), &m_rows) && m_rows.count == size() / EntriesEach + 1;
    }
    bool ours() override {
        m_loaded = std::make_unique<PlayListManager>(&database());
        return m_loaded->getAllPlayList().size() == size() / EntriesEach;
    }
    ~Load() override { m_loaded.reset(); }

private:
    static constexpr int EntriesEach = 100;

    std::unique_ptr<PlayListManager> m_loaded;
    Rows m_rows;
};

template <typename Kind, typename... Arguments>
auto setUp(Arguments... arguments) {
    return [=](const Setting& setting) { return std::make_unique<Kind>(setting, arguments...); };
}

} // namespace

std::vector<Work> readWorks() {
    using Length = Work::Length;
    const QString floor = QStringLiteral("floor");
    const auto albums = Items::Order::Albums;
    const auto mixed = Items::Order::Mixed;
    return {
        {"page of 50", floor, 2.5, 0.1, Length::Short, {}, setUp<Page>(albums)},
        {"page of 50, mixed", floor, 2.5, 0.1, Length::Short, {}, setUp<Page>(mixed)},
        {"page of 50 as browse rows",
         floor,
         6.0,
         0.1,
         Length::Short,
         {},
         setUp<BrowsePage>(albums)},
        {"page of 50 as browse rows, mixed",
         floor,
         6.0,
         0.1,
         Length::Short,
         {},
         setUp<BrowsePage>(mixed)},
        {"prepare n by path", "reading", 3.0, 1.2, Length::Long, {}, setUp<PrepareByPath>()},
        {"load 1,000 lists of 100", floor, 2.0, {}, Length::Long, 100000, setUp<Load>()},
    };
}
