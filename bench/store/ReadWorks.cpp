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

class Page : public StoreTurns {
public:
    explicit Page(const Setting& setting) : StoreTurns(setting, {1, setting.size}) {}

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
    explicit BrowsePage(const Setting& setting) : ModuleTurns(setting, {1, setting.size}) {}

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

template <typename Kind>
std::unique_ptr<Turns> setUp(const Setting& setting) {
    return std::make_unique<Kind>(setting);
}

} // namespace

std::vector<Work> readWorks() {
    using Length = Work::Length;
    const QString floor = QStringLiteral("floor");
    return {
        {"page of 50", floor, 2.5, 0.1, Length::Short, {}, setUp<Page>},
        {"page of 50 as browse rows", floor, 6.0, 0.1, Length::Short, {}, setUp<BrowsePage>},
        {"prepare n by path", "reading", 3.0, 1.2, Length::Long, {}, setUp<PrepareByPath>},
        {"load 1,000 lists of 100", floor, 2.0, {}, Length::Long, 100000, setUp<Load>},
    };
}
