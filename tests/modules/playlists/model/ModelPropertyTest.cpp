#include <algorithm>
#include <functional>
#include <iostream>
#include <iterator>

#include "ModelFixture.h"
#include "PlainModel.h"
#include "Random.h"

// Random commands to the model and to plain lists: after each both say the same, and so does the
// file.
class ModelPropertyTest : public ModelFixture {
protected:
    void runSequence(unsigned seed);

private:
    static constexpr int MaxLists = 4;
    static constexpr int MaxCollections = 3;

    struct Step {
        const char* name;
        int weight;
        void (ModelPropertyTest::*run)();
    };
    static const QList<Step>& steps();

    void addItems();
    void addItemsAt();
    void removeItems();
    void moveItem();
    void moveItems();
    void setOrder();
    void clearItems();
    void setLast();
    void setModes();
    void rename();
    void createList();
    void deleteList();
    void createCollection();
    void deleteCollection();
    void join();
    void leave();
    void restartModel();

    // A number from `lowest` to `highest`.
    int pick(int lowest, int highest) { return lowest + m_random.below(highest - lowest + 1); }
    bool oneIn(int n) { return pick(1, n) == 1; }
    QList<int> pickIndices(int size);
    QString newTitle() { return QStringLiteral("i%1").arg(m_nextTitle++); }
    PlainList& pickList();
    PlayListBase& real(const PlainList& list) { return *manager().getPlayListByUid(list.uid); }
    CollectionBase& real(const PlainCollection& collection) {
        return *manager().getCollectionByUid(collection.uid);
    }
    void note(const QString& text) { m_notes.append(text); }
    void expectOutcome(const PlainModel::Outcome& expected, int result);
    void expectSame();
    void watchAll();

    Random m_random;
    PlainModel m_plain;
    SignalLog m_signals;
    QStringList m_notes;
    int m_nextTitle = 0;
};

const QList<ModelPropertyTest::Step>& ModelPropertyTest::steps() {
    using T = ModelPropertyTest;
    static const QList<Step> rows = {
        {"add", 8, &T::addItems},
        {"addAt", 4, &T::addItemsAt},
        {"remove", 5, &T::removeItems},
        {"move", 5, &T::moveItem},
        {"moveItems", 5, &T::moveItems},
        {"setOrder", 3, &T::setOrder},
        {"clear", 1, &T::clearItems},
        {"setLast", 4, &T::setLast},
        {"modes", 1, &T::setModes},
        {"rename", 1, &T::rename},
        {"createList", 2, &T::createList},
        {"deleteList", 1, &T::deleteList},
        {"createCollection", 1, &T::createCollection},
        {"deleteCollection", 1, &T::deleteCollection},
        {"join", 2, &T::join},
        {"leave", 1, &T::leave},
        {"restart", 1, &T::restartModel},
    };
    return rows;
}

PlainList& ModelPropertyTest::pickList() {
    return m_plain.lists[pick(0, m_plain.lists.size() - 1)];
}

// Mostly some of what is there, in any order; now and then with a repetition or something that is
// not there.
QList<int> ModelPropertyTest::pickIndices(int size) {
    QList<int> indices;
    for (int i = 0; i < size; ++i) {
        if (oneIn(3))
            indices.append(i);
    }
    if (oneIn(10))
        indices.append(pick(-1, size + 1));
    std::shuffle(indices.begin(), indices.end(), m_random);
    return indices;
}

void ModelPropertyTest::expectOutcome(const PlainModel::Outcome& expected, int result) {
    EXPECT_EQ(expected.result, result);
    EXPECT_EQ(expected.heard, m_signals.take());
}

void ModelPropertyTest::addItems() {
    PlainList& list = pickList();
    const int position = pick(0, 2);
    QStringList titles;
    QList<OrvoPlayListItem> newItems;
    for (int i = pick(0, 4); i > 0; --i) {
        titles.append(newTitle());
        newItems.append(item(titles.last()));
    }
    note(QString("add %1 to %2 at %3").arg(titles.join(' ')).arg(list.uid).arg(position));
    const PlainModel::Outcome expected = m_plain.add(list, position, titles);
    expectOutcome(expected, real(list).addItems(OrvoPlayListAddPosition::Enum(position), newItems));
}

void ModelPropertyTest::addItemsAt() {
    PlainList& list = pickList();
    const bool allOrNothing = oneIn(2);
    QStringList titles;
    QList<OrvoPlayListItem> newItems;
    for (int i = pick(0, 4); i > 0; --i) {
        titles.append(newTitle());
        newItems.append(item(titles.last()));
    }
    QList<int> positions;
    const int size = list.entries.size() + titles.size();
    if (allOrNothing) {
        for (int i = 0; i < size; ++i)
            positions.append(i);
        std::shuffle(positions.begin(), positions.end(), m_random);
        positions = positions.mid(0, titles.size());
        std::sort(positions.begin(), positions.end());
    } else {
        const int first = pick(0, list.entries.size());
        for (int i = 0; i < titles.size(); ++i)
            positions.append(first + i);
    }
    if (oneIn(8))
        positions.append(pick(-1, size));
    note(QString("add %1 to %2 at %3")
             .arg(titles.join(' '))
             .arg(list.uid)
             .arg(::testing::PrintToString(positions).c_str()));
    const PlainModel::Outcome expected = m_plain.addAt(list, positions, titles, allOrNothing);
    expectOutcome(expected, real(list).addItemsAt({positions, allOrNothing}, newItems));
}

void ModelPropertyTest::removeItems() {
    PlainList& list = pickList();
    const QList<int> indices = pickIndices(list.entries.size());
    note(QString("remove %1 from %2").arg(::testing::PrintToString(indices).c_str()).arg(list.uid));
    const PlainModel::Outcome expected = PlainModel::remove(list, indices);
    expectOutcome(expected, real(list).removeItems(indices));
}

void ModelPropertyTest::moveItem() {
    PlainList& list = pickList();
    const int from = pick(-1, list.entries.size() + 1);
    const int to = pick(-1, list.entries.size() + 1);
    note(QString("move %1 to %2 in %3").arg(from).arg(to).arg(list.uid));
    const PlainModel::Outcome expected = PlainModel::move(list, from, to);
    expectOutcome(expected, real(list).moveItem(from, to));
}

void ModelPropertyTest::moveItems() {
    PlainList& list = pickList();
    const QList<int> indices = pickIndices(list.entries.size());
    const int to = pick(-1, list.entries.size() + 1);
    note(QString("move %1 to %2 in %3")
             .arg(::testing::PrintToString(indices).c_str())
             .arg(to)
             .arg(list.uid));
    // A listener that follows the signals arrives at the same list.
    QStringList followed = list.entries;
    const PlainModel::Outcome expected = PlainModel::moveSeveral(list, indices, to);
    EXPECT_EQ(expected.result, real(list).moveItems(indices, to));
    const QStringList heard = m_signals.take();
    for (const QString& line : heard) {
        const QStringList words = line.split(' ');
        ASSERT_EQ(QString("pl%1 itemMoved").arg(list.uid), words.mid(0, 2).join(' '));
        followed.move(words.value(2).toInt(), words.value(3).toInt());
    }
    EXPECT_EQ(list.entries, followed);
}

void ModelPropertyTest::setOrder() {
    PlainList& list = pickList();
    QList<int> order;
    for (int i = 0; i < list.entries.size(); ++i)
        order.append(i);
    if (!oneIn(8))
        std::shuffle(order.begin(), order.end(), m_random);
    if (!order.isEmpty() && oneIn(6))
        order[pick(0, order.size() - 1)] = pick(-1, order.size());
    note(QString("order %1 of %2").arg(::testing::PrintToString(order).c_str()).arg(list.uid));
    const PlainModel::Outcome expected = PlainModel::setOrder(list, order);
    expectOutcome(expected, real(list).setOrder(order));
}

void ModelPropertyTest::clearItems() {
    PlainList& list = pickList();
    note(QString("clear %1").arg(list.uid));
    const PlainModel::Outcome expected = PlainModel::clear(list);
    expectOutcome(expected, real(list).clearItems());
}

void ModelPropertyTest::setLast() {
    PlainList& list = pickList();
    list.last = pick(-1, list.entries.size() + 1);
    note(QString("last %1 in %2").arg(list.last).arg(list.uid));
    real(list).setLastSequenceNumber(list.last);
    expectOutcome({}, 0);
}

void ModelPropertyTest::setModes() {
    PlainList& list = pickList();
    const bool shuffle = oneIn(2);
    const bool repeatAll = oneIn(2);
    note(QString("shuffle %1 repeat %2 in %3").arg(shuffle).arg(repeatAll).arg(list.uid));
    PlainModel::Outcome expected;
    const QString origin = QString("pl%1 ").arg(list.uid);
    if (shuffle != list.shuffle)
        expected.heard.append(origin + "shuffleChanged " + (shuffle ? "true" : "false"));
    if (repeatAll != list.repeatAll)
        expected.heard.append(origin + "repeatAllChanged " + (repeatAll ? "true" : "false"));
    list.shuffle = shuffle;
    list.repeatAll = repeatAll;
    real(list).setShuffle(shuffle);
    real(list).setRepeatAll(repeatAll);
    expectOutcome(expected, 0);
}

void ModelPropertyTest::rename() {
    PlainList& list = pickList();
    list.name = QString("name %1").arg(pick(0, 5));
    note(QString("rename %1 to %2").arg(list.uid).arg(list.name));
    real(list).setName(list.name);
    expectOutcome({0, {QString("pl%1 nameChanged %2").arg(list.uid).arg(list.name)}}, 0);
}

void ModelPropertyTest::createList() {
    if (m_plain.lists.size() == MaxLists)
        return;
    PlainList list;
    list.name = QString("name %1").arg(pick(0, 5));
    PlayListBase* pl = manager().createPlayList(list.name);
    ASSERT_NE(nullptr, pl);
    list.uid = pl->getUid();
    m_plain.lists.append(list);
    note(QString("create playlist %1").arg(list.uid));
    expectOutcome({0, {QString("playlistCreated %1").arg(list.uid)}}, 0);
    m_signals.watch(pl, QString("pl%1").arg(list.uid));
}

void ModelPropertyTest::deleteList() {
    const int index = pick(0, m_plain.lists.size() - 1);
    PlayListBase& pl = real(m_plain.lists.at(index));
    note(QString("delete playlist %1").arg(pl.getUid()));
    const PlainModel::Outcome expected = m_plain.deleteList(index);
    expectOutcome(expected, manager().deletePlayList(&pl));
    if (oneIn(2))
        settle();
}

void ModelPropertyTest::createCollection() {
    if (m_plain.collections.size() == MaxCollections)
        return;
    PlainCollection collection;
    collection.name = QString("group %1").arg(pick(0, 5));
    CollectionBase* cl = manager().createCollection(collection.name);
    ASSERT_NE(nullptr, cl);
    collection.uid = cl->getUid();
    m_plain.collections.append(collection);
    note(QString("create collection %1").arg(collection.uid));
    expectOutcome({0, {QString("collectionCreated %1").arg(collection.uid)}}, 0);
    m_signals.watch(cl, QString("cl%1").arg(collection.uid));
}

void ModelPropertyTest::deleteCollection() {
    if (m_plain.collections.isEmpty())
        return;
    const int uid = m_plain.collections.takeAt(pick(0, m_plain.collections.size() - 1)).uid;
    note(QString("delete collection %1").arg(uid));
    expectOutcome({1, {QString("collectionDeleted %1").arg(uid)}}, manager().deleteCollection(uid));
    if (oneIn(2))
        settle();
}

void ModelPropertyTest::join() {
    if (m_plain.collections.isEmpty())
        return;
    PlainCollection& collection = m_plain.collections[pick(0, m_plain.collections.size() - 1)];
    const PlainList& list = pickList();
    note(QString("%1 joins %2").arg(list.uid).arg(collection.uid));
    PlainModel::Outcome expected;
    if (!collection.members.contains(list.uid))
        expected = {1, {QString("cl%1 playlistAdded").arg(collection.uid)}};
    collection.members.insert(list.uid);
    expectOutcome(expected, real(collection).addPlayList(&real(list)));
}

void ModelPropertyTest::leave() {
    if (m_plain.collections.isEmpty())
        return;
    PlainCollection& collection = m_plain.collections[pick(0, m_plain.collections.size() - 1)];
    const PlainList& list = pickList();
    note(QString("%1 leaves %2").arg(list.uid).arg(collection.uid));
    PlainModel::Outcome expected;
    if (collection.members.remove(list.uid))
        expected = {1, {QString("cl%1 playlistRemoved").arg(collection.uid)}};
    expectOutcome(expected, real(collection).removePlayList(&real(list)));
}

void ModelPropertyTest::restartModel() {
    note("restart");
    m_plain.restart();
    restart(m_plain.itemsLimit);
    watchAll();
    expectOutcome({}, 0);
}

void ModelPropertyTest::watchAll() {
    m_signals.watch(&manager());
    for (const PlainList& list : qAsConst(m_plain.lists))
        m_signals.watch(&real(list), QString("pl%1").arg(list.uid));
    for (const PlainCollection& collection : qAsConst(m_plain.collections))
        m_signals.watch(&real(collection), QString("cl%1").arg(collection.uid));
}

void ModelPropertyTest::expectSame() {
    QStringList expected;
    QStringList found;
    for (const PlainList& list : qAsConst(m_plain.lists)) {
        expected.append(toText(list));
        PlayListBase& pl = real(list);
        PlainList is{pl.getUid(),
                     pl.getName(),
                     pl.getShuffle(),
                     pl.getRepeatAll(),
                     pl.getLastSequenceNumber(),
                     {}};
        const QList<OrvoPlayListItem> entries = pl.getItems(0, pl.getSize() - 1);
        for (const OrvoPlayListItem& entry : entries) {
            EXPECT_EQ(is.entries.size(), entry.sequenceNumber());
            is.entries.append(entry.title());
        }
        found.append(toText(is));
    }
    for (const PlainCollection& collection : qAsConst(m_plain.collections)) {
        expected.append(toText(collection));
        const CollectionBase& cl = real(collection);
        PlainCollection is{cl.getUid(), cl.getName(), {}};
        const QList<PlayListBase*> members = cl.getPlayLists();
        for (PlayListBase* pl : members)
            is.members.insert(pl->getUid());
        EXPECT_EQ(members.size(), is.members.size());
        found.append(toText(is));
    }
    EXPECT_EQ(expected, found);
    EXPECT_EQ(m_plain.lists.size() - 1, manager().getAllPlayList().size());
    EXPECT_EQ(m_plain.itemCount(), manager().getPlaylistsItemsCount());
    expectInStep();
}

void ModelPropertyTest::runSequence(unsigned seed) {
    m_random.seed(seed);
    m_notes.clear();
    m_plain = {};
    m_plain.itemsLimit = oneIn(3) ? pick(4, 12) : 0;
    PlainList queue;
    queue.name = QStringLiteral("PlayQueue");
    m_plain.lists.append(queue);
    dropManager();
    database().clearDatabase();
    restart(m_plain.itemsLimit);
    watchAll();

    int total = 0;
    for (const Step& step : steps())
        total += step.weight;
    for (int i = pick(10, 30); i > 0 && !HasFailure(); --i) {
        int ticket = pick(0, total - 1);
        auto step = steps().begin();
        while (ticket >= step->weight)
            ticket -= (step++)->weight;
        (this->*step->run)();
        if (!HasFatalFailure())
            expectSame();
    }
    if (HasFailure()) {
        std::cout << "seed " << seed << ", limit " << m_plain.itemsLimit << ":\n";
        for (const QString& text : qAsConst(m_notes))
            std::cout << "  " << text.toStdString() << '\n';
        std::cout << "run it again with ORVO_SEED=" << seed << " ORVO_ROUNDS=1" << std::endl;
    }
}

TEST_F(ModelPropertyTest, anySequenceOfCommandsKeepsModelAndFileRight) {
    const unsigned first = Random::firstSeed();
    const int rounds = Random::rounds(300);
    for (int i = 0; i < rounds && !HasFailure(); ++i)
        runSequence(first + unsigned(i));
}
