#include <algorithm>
#include <numeric>

#include <QHash>
#include <QVector>

#include "Random.h"
#include "StoreFixture.h"

namespace {

// What a playlist should be: its titles in order, and where it was played last.
struct Model {
    QStringList titles;
    int lastPlayedIndex = -1;
};

} // namespace

// Random edits against a list of texts.
class PropertyTest : public StoreFixture {
public:
    int below(int bound) { return m_random.below(bound); }

    int anyPlayList() {
        const QList<int> uids = m_model.keys();
        return uids[below(uids.size())];
    }

    // The record as the model has it: what the caller of the store would know.
    PlayListRecord known(int uid) {
        PlayListRecord pl;
        pl.uid = uid;
        pl.name = QStringLiteral("p");
        pl.size = m_model[uid].titles.size();
        pl.lastPlayedIndex = m_model[uid].lastPlayedIndex;
        return pl;
    }

    int total() const {
        int count = 0;
        for (const Model& pl : m_model)
            count += pl.titles.size();
        return count;
    }

    void create() {
        const int uid = database().createPlayList(QStringLiteral("p")).uid;
        ASSERT_FALSE(m_model.contains(uid));
        m_model.insert(uid, Model());
    }

    void remove() {
        const int uid = anyPlayList();
        EXPECT_EQ(uid != 0, database().deletePlayList(known(uid)));
        if (uid != 0)
            m_model.remove(uid);
    }

    void play() {
        const int uid = anyPlayList();
        Model& pl = m_model[uid];
        // Now and then past the end, as a list that was cleared leaves it.
        pl.lastPlayedIndex = below(pl.titles.size() + 4) - 1;
        EXPECT_TRUE(database().updatePlayList(known(uid)));
    }

    void add() {
        const int uid = anyPlayList();
        Model& pl = m_model[uid];
        const int position = below(4);
        QStringList fresh;
        QList<OrvoPlayListItem> list;
        for (int i = below(8); i > 0; --i) {
            fresh.append(QStringLiteral("t%1").arg(m_nextTitle++));
            list.append(item(fresh.last()));
        }
        if (m_limit != 0 && m_limit >= total())
            fresh = fresh.mid(0, m_limit - total());

        const int size = pl.titles.size();
        int expected = size;
        if (fresh.isEmpty())
            expected = -2;
        else if (size > 0 && position > 2)
            expected = -1;
        else if (size > 0 && position < 2 && pl.lastPlayedIndex >= 0 && pl.lastPlayedIndex < size)
            expected = pl.lastPlayedIndex + 1;
        int added = -5;
        EXPECT_EQ(expected, database().addItems(known(uid), OrvoPlayListAddPosition::Enum(position),
                                                list, &added));
        EXPECT_EQ(fresh.size(), added);
        for (int i = 0; expected >= 0 && i < fresh.size(); ++i)
            pl.titles.insert(expected + i, fresh[i]);
    }

    void move() {
        const int uid = anyPlayList();
        QStringList& list = m_model[uid].titles;
        if (list.isEmpty())
            return;
        const int from = below(list.size());
        const int to = below(list.size());
        EXPECT_TRUE(database().moveItem(known(uid), from, to));
        list.move(from, to);
    }

    // The entries from some place on in another order, the played one followed or not.
    void reorder() {
        const int uid = anyPlayList();
        Model& pl = m_model[uid];
        const int first = below(pl.titles.size() + 1);
        QVector<int> order(below(pl.titles.size() - first + 1));
        std::iota(order.begin(), order.end(), first);
        // Mostly some runs, at times each by itself.
        if (below(3) == 0)
            std::shuffle(order.begin(), order.end(), m_random);
        else if (!order.isEmpty())
            std::rotate(order.begin(), order.begin() + below(order.size()), order.end());
        const int played = below(2) == 0 ? pl.lastPlayedIndex : below(9) - 1;
        EXPECT_TRUE(database().reorderItems(known(uid), first, order, played));
        QStringList titles = pl.titles;
        for (int i = 0; i < order.size(); ++i)
            titles[first + i] = pl.titles.at(order.at(i));
        pl.titles = titles;
        pl.lastPlayedIndex = played;
    }

    void take() {
        const int uid = anyPlayList();
        QStringList& list = m_model[uid].titles;
        QList<int> indices;
        for (int i = 0; i < list.size(); ++i) {
            if (below(3) == 0)
                indices.append(i);
        }
        const bool beyond = below(6) == 0;
        if (beyond)
            indices.append(list.size());
        EXPECT_EQ(beyond ? -1 : indices.size(), database().removeItems(known(uid), indices));
        for (int i = indices.size() - 1; !beyond && i >= 0; --i)
            list.removeAt(indices[i]);
    }

    void clear() {
        const int uid = anyPlayList();
        EXPECT_TRUE(database().clearItems(known(uid)));
        m_model[uid].titles.clear();
    }

    void restart() {
        m_limit = below(2) == 0 ? 0 : 10 + below(30);
        reopen(m_limit, below(2) == 0);
    }

    void expectModel() {
        EXPECT_EQ(m_model.size(), database().countPlaylists());
        EXPECT_EQ(total(), database().countPlaylistsItems());
        for (auto pl = m_model.constBegin(); pl != m_model.constEnd(); ++pl) {
            const PlayListRecord stored = record(pl.key());
            EXPECT_EQ(pl->titles.size(), stored.size);
            EXPECT_EQ(pl->lastPlayedIndex, stored.lastPlayedIndex);
            QStringList titles;
            for (const OrvoPlayListItem& entry : database().getItems(stored, 0, stored.size))
                titles.append(entry.title());
            EXPECT_EQ(pl->titles, titles) << "playlist " << pl.key();
        }
        expectInvariants();
    }

    void startOver(unsigned seed) {
        m_random.seed(seed);
        m_limit = 0;
        database().clearDatabase();
        reopen();
        m_model.clear();
        m_model.insert(0, Model());
    }

private:
    Random m_random;
    QHash<int, Model> m_model;
    int m_limit = 0;
    int m_nextTitle = 0;
};

TEST_F(PropertyTest, anySequenceOfEditsLeavesWhatAListOfTextsWouldBe) {
    const unsigned firstSeed = Random::firstSeed();
    const int sequences = Random::rounds(200);
    constexpr int edits = 20;
    using Edit = void (PropertyTest::*)();
    // Adding comes more often than taking away, so that lists grow.
    const Edit kinds[] = {&PropertyTest::create, &PropertyTest::add,    &PropertyTest::add,
                          &PropertyTest::add,    &PropertyTest::move,   &PropertyTest::reorder,
                          &PropertyTest::take,   &PropertyTest::play,   &PropertyTest::clear,
                          &PropertyTest::remove, &PropertyTest::restart};
    for (int sequence = 0; sequence < sequences; ++sequence) {
        startOver(firstSeed + unsigned(sequence));
        for (int edit = 0; edit < edits; ++edit) {
            (this->*kinds[below(int(std::size(kinds)))])();
            expectModel();
            ASSERT_FALSE(HasFailure()) << "sequence " << sequence << ", edit " << edit;
        }
    }
}
