#include <algorithm>
#include <numeric>
#include <random>

#include "StoreTurns.h"

namespace {

using Contents = Workplace::Contents;
using Position = OrvoPlayListAddPosition;

// n entries into an empty list, or into the middle of n.
class AddMany : public StoreTurns {
public:
    AddMany(const Setting& setting, int before)
        : StoreTurns(setting, {1, before}), m_before(before), m_items(Items::of(setting.size)) {}

    void prepare() override {
        startOver();
        if (m_before == 0)
            return;
        floorList.lastPlayedIndex = m_before / 2 - 1;
        floor_update_playlist(store(), &floorList, {"list 0", 6});
        list()->setLastSequenceNumber(m_before / 2 - 1);
    }
    bool base() override {
        return floor_add(store(), &floorList, m_before == 0 ? floor_append : floor_after_current,
                         m_items.forFloor().data(), m_items.size());
    }
    bool ours() override {
        const Position::Enum where = m_before == 0 ? Position::Append : Position::AfterCurrent;
        return list()->addItems(where, m_items.ours()) == m_before / 2;
    }

private:
    int m_before;
    const Items& m_items;
};

class AddOne : public StoreTurns {
public:
    AddOne(const Setting& setting, int itemsLimit)
        : StoreTurns(setting, {1, setting.size}, itemsLimit), m_item(Items::of(1)) {}

    bool base() override {
        return floor_add(store(), &floorList, floor_append, m_item.forFloor().data(), 1);
    }
    bool ours() override { return list()->addItems(Position::Append, m_item.ours()) >= 0; }

private:
    const Items& m_item;
};

// The same move over and over: what stands at `from` is another entry each time.
class Move : public StoreTurns {
public:
    Move(const Setting& setting, int from, int to)
        : StoreTurns(setting, {1, setting.size}), m_from(from), m_to(to) {}

    bool base() override { return floor_move(store(), &floorList, m_from, m_to); }
    bool ours() override { return list()->moveItem(m_from, m_to); }

private:
    int m_from;
    int m_to;
};

// Scattered entries go to the end, or all of the list gets another order.
class Reorder : public StoreTurns {
public:
    enum class Kind { MoveTenth, Move, SetOrder };

    // `count` is how many entries move, where it is not a tenth.
    Reorder(const Setting& setting, Kind kind, int count = 0)
        : StoreTurns(setting, {1, setting.size}), m_kind(kind) {
        if (kind == Kind::SetOrder) {
            m_order.resize(setting.size);
            std::iota(m_order.begin(), m_order.end(), 0);
            std::shuffle(m_order.begin(), m_order.end(), std::mt19937(1));
            m_indices = QList<int>(m_order.begin(), m_order.end());
            return;
        }
        const int step = kind == Kind::MoveTenth ? 10 : setting.size / count;
        for (int i = 0; i < setting.size; ++i) {
            if (i % step == 0)
                m_indices.append(i);
            else
                m_order.append(i);
        }
        m_order += m_indices.toVector();
    }

    bool base() override {
        return floor_reorder(store(), &floorList, 0, m_order.constData(), m_order.size());
    }
    bool ours() override {
        return m_kind == Kind::SetOrder ? list()->setOrder(m_indices)
                                        : list()->moveItems(m_indices, size() - 1);
    }

private:
    Kind m_kind;
    QVector<int> m_order;
    QList<int> m_indices;
};

class Remove : public StoreTurns {
public:
    // Every `step`-th entry, or the first one only where `step` is 0.
    Remove(const Setting& setting, int step) : StoreTurns(setting, {1, setting.size}) {
        for (int i = 0; step > 0 ? i < setting.size : i < 1; i += qMax(1, step))
            m_indices.append(i);
        m_list = QList<int>(m_indices.begin(), m_indices.end());
    }

    void prepare() override {
        if (m_indices.size() > 1)
            startOver();
    }
    bool base() override {
        return floor_remove(store(), &floorList, m_indices.constData(), m_indices.size());
    }
    bool ours() override { return list()->removeItems(m_list) == m_indices.size(); }

private:
    QVector<int> m_indices;
    QList<int> m_list;
};

class RemoveLast : public StoreTurns {
public:
    explicit RemoveLast(const Setting& setting) : StoreTurns(setting, {1, setting.size}) {}

    bool base() override {
        const int last = floorList.size - 1;
        return floor_remove(store(), &floorList, &last, 1);
    }
    bool ours() override { return list()->removeItems({list()->getSize() - 1}) == 1; }
};

class Clear : public StoreTurns {
public:
    explicit Clear(const Setting& setting) : StoreTurns(setting, {2, setting.size}) {}

    void prepare() override { startOver(); }
    bool base() override { return floor_clear(store(), &floorList); }
    bool ours() override { return list()->clearItems(); }
};

class Delete : public StoreTurns {
public:
    explicit Delete(const Setting& setting) : StoreTurns(setting, {2, setting.size}) {}

    void prepare() override { startOver(); }
    bool base() override { return floor_delete_playlist(store(), &floorList); }
    bool ours() override { return manager().deletePlayList(1); }
};

// A list of a hundred, made for each turn, beside `lists` that hold the n others.
class DeleteShort : public StoreTurns {
public:
    DeleteShort(const Setting& setting, int lists)
        : StoreTurns(setting, {lists, setting.size / lists}), m_items(Items::of(100)) {}

    void prepare() override {
        m_uid = manager().createPlayList(QStringLiteral("short"))->getUid();
        manager().getPlayListByUid(m_uid)->addItems(Position::Append, m_items.ours());
        floor_create_playlist(store(), {"short", 5}, &m_short);
        floor_add(store(), &m_short, floor_append, m_items.forFloor().data(), m_items.size());
    }
    bool base() override { return floor_delete_playlist(store(), &m_short); }
    bool ours() override { return manager().deletePlayList(m_uid); }

private:
    const Items& m_items;
    floor_list m_short{};
    int m_uid = -1;
};

template <typename Kind, typename... Arguments>
auto setUp(Arguments... arguments) {
    return [=](const Setting& setting) { return std::make_unique<Kind>(setting, arguments...); };
}

} // namespace

std::vector<Work> editWorks() {
    using Length = Work::Length;
    const QString floor = QStringLiteral("floor");
    const auto addInTheMiddle = [](const Setting& s) {
        return std::make_unique<AddMany>(s, s.size);
    };
    const auto addOneWithLimit = setUp<AddOne>(1000000);
    const auto moveToTheEnd = [](const Setting& s) {
        return std::make_unique<Move>(s, 0, s.size - 1);
    };
    const auto moveToTheFront = [](const Setting& s) {
        return std::make_unique<Move>(s, s.size - 1, 0);
    };
    const auto moveByOne = [](const Setting& s) {
        return std::make_unique<Move>(s, s.size / 2, s.size / 2 + 1);
    };
    const auto moveTenth = setUp<Reorder>(Reorder::Kind::MoveTenth);
    const auto moveSome = [](int count) { return setUp<Reorder>(Reorder::Kind::Move, count); };
    const auto setOrder = setUp<Reorder>(Reorder::Kind::SetOrder);
    const auto deleteOne = setUp<DeleteShort>(1);
    const auto deleteMany = setUp<DeleteShort>(1000);
    return {
        {"add n to an empty list", floor, 1.3, 1.3, Length::Long, {}, setUp<AddMany>(0)},
        {"add n in the middle of n", floor, 1.3, 1.3, Length::Long, {}, addInTheMiddle},
        {"add one at the end", floor, 1.5, 0.8, Length::Short, {}, setUp<AddOne>(0)},
        {"add one, in a store with a limit", floor, 1.5, 0.8, Length::Short, {}, addOneWithLimit},
        {"move first to last", floor, 1.1, 1.2, Length::Long, {}, moveToTheEnd},
        {"move last to first", floor, 1.1, 1.2, Length::Long, {}, moveToTheFront},
        {"move by one", floor, 1.1, 0.2, Length::Short, {}, moveByOne},
        {"move a tenth to the end", floor, 1.2, 1.2, Length::Long, {}, moveTenth},
        {"move 500 to the end", floor, 1.2, {}, Length::Long, 5000, moveSome(500)},
        {"move 1,000 to the end", floor, 1.2, {}, Length::Long, 20000, moveSome(1000)},
        {"set the order", floor, 1.2, {}, Length::Long, 20000, setOrder},
        {"remove last", floor, 1.5, 0.2, Length::Short, {}, setUp<RemoveLast>()},
        {"remove first", floor, 1.15, 1.2, Length::Long, {}, setUp<Remove>(0)},
        {"remove every second", floor, 1.15, 1.2, Length::Long, {}, setUp<Remove>(2)},
        {"clear n, n others stay", floor, 1.15, 1.3, Length::Long, {}, setUp<Clear>()},
        {"delete n, n others stay", floor, 1.15, 1.3, Length::Long, {}, setUp<Delete>()},
        {"delete 100, others in one list", floor, {}, {}, Length::Short, 100000, deleteOne, 5000},
        {"delete 100, others in 1,000", floor, {}, {}, Length::Short, 100000, deleteMany, 5000},
    };
}
