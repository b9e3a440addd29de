#include <algorithm>

#include <QCoreApplication>

#include "PlayLogicFixture.h"
#include "Random.h"
#include "TestClock.h"

// A list that plays, edited and steered at random.
class PlayLogicPropertyTest : public PlayLogicFixture {
public:
    // --- steps ---

    void addNow() { addSome(Position::Now); }
    void addNext() { addSome(Position::AfterCurrent); }
    void append() { addSome(Position::Append); }
    void insert() {
        if (m_list->getSize() > 40)
            return;
        const QList<OrvoPlayListItem> items = fewItems();
        QList<int> positions;
        for (int i = 0; i < m_list->getSize() + items.size(); ++i)
            positions.append(i);
        while (positions.size() > items.size())
            positions.removeAt(below(positions.size()));
        m_list->addItemsAt({positions, true}, items);
    }
    void removeOne() {
        if (m_list->getSize() > 0)
            m_list->removeItems({below(m_list->getSize())});
    }
    void removeSeveral() {
        QList<int> indices;
        for (int i = 0; i < m_list->getSize(); ++i) {
            if (below(3) == 0)
                indices.append(i);
        }
        m_list->removeItems(indices);
    }
    void moveOne() { m_list->moveItem(below(m_list->getSize() + 3), below(m_list->getSize() + 3)); }
    void moveSeveral() {
        if (m_list->getSize() == 0)
            return;
        QList<int> indices;
        for (int i = below(4); i > 0; --i)
            indices.append(below(m_list->getSize()));
        m_list->moveItems(indices, below(m_list->getSize()));
    }
    void reorder() {
        QList<int> order;
        for (int i = 0; i < m_list->getSize(); ++i)
            order.append(i);
        std::shuffle(order.begin(), order.end(), m_random);
        m_list->setOrder(order);
    }
    void clear() { m_list->clearItems(); }
    void goOn() { next(); }
    void goBack() { previous(); }
    void setMode() { changeMode(below(6)); }
    void setAnyMode() { changeMode(below(9) - 1); }
    void shuffleByCommand() {
        m_list->setShuffle(!m_list->getShuffle());
        QCoreApplication::processEvents();
    }
    void repeatByCommand() {
        m_list->setRepeatAll(!m_list->getRepeatAll());
        QCoreApplication::processEvents();
    }
    void shuffleByCommandLater() { m_list->setShuffle(!m_list->getShuffle()); }
    void repeatByCommandLater() { m_list->setRepeatAll(!m_list->getRepeatAll()); }
    void prepare() {
        if (!player.sounding.isEmpty() && player.opening.isEmpty())
            logic()->prepareNextMedia();
    }
    void end() {
        if (player.sounding.isEmpty() || !player.opening.isEmpty())
            return;
        if (!player.announced.isEmpty() && isInList(title(player.announced)))
            m_playing = title(player.announced);
        player.end();
    }
    void fail() {
        if (!player.sounding.isEmpty() || !player.opening.isEmpty())
            player.fail();
    }
    void playAnywhere() { play(m_list, below(m_list->getSize() + 2)); }
    void start() {
        if (!player.opening.isEmpty())
            player.start();
    }

protected:
    using Step = void (PlayLogicPropertyTest::*)();
    struct NamedStep {
        const char* name;
        Step step;
    };

    int below(int bound) { return m_random.below(bound); }

    // By titles they are told apart: the uid of a removed item may be given to the next one.
    QList<OrvoPlayListItem> fewItems() {
        QList<OrvoPlayListItem> items;
        for (int i = below(8); i >= 0; --i)
            items.append(makeItem(QString::number(++m_lastTitle)));
        return items;
    }

    void addSome(Position::Enum position) {
        if (m_list->getSize() > 40)
            return;
        m_list->addItems(position, fewItems());
    }

    bool isInList(const QString& title) {
        for (const OrvoPlayListItem& item : m_list->getItems(0, m_list->getSize())) {
            if (item.title() == title)
                return true;
        }
        return false;
    }

    static QString title(const OrvoRoles& roles) { return roles.title().toString(); }

    QString titleAtPosition() {
        const int position = m_list->getLastSequenceNumber();
        const QList<OrvoPlayListItem> items = m_list->getItems(position, position);
        return items.isEmpty() ? QString() : items.first().title();
    }

    // What was sent to be played starts, sooner or later, and playback that has come to an end
    // begins anew.
    void settle() {
        if (!player.opening.isEmpty()) {
            m_playing = title(player.opening);
            if (below(2) == 0)
                player.start();
            return;
        }
        if (!player.sounding.isEmpty() && probe().current())
            return;
        if (m_list->getSize() == 0)
            append();
        play(m_list, below(m_list->getSize()));
        m_playing = title(player.opening);
    }

    void takeNewList() {
        player.sounding = player.opening = player.announced = {};
        if (m_list)
            manager()->deletePlayList(m_list);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_list = playList("");
        m_list->addItems(Position::Append, fewItems());
        m_list->setShuffle(below(2) == 0);
        m_list->setRepeatAll(below(2) == 0);
        player.sounding = player.opening = player.announced = {};
    }

    PlayListBase* m_list = nullptr;
    QString m_playing;
    int m_lastTitle = 0;
    Random m_random{Random::firstSeed()};
    // The orders are drawn from it: standing, it lets a seed repeat them.
    TestClock m_clock{1};
};

TEST_F(PlayLogicPropertyTest, theOrderStaysAPermutationAndThePlayingItemItself) {
    using T = PlayLogicPropertyTest;
    static constexpr NamedStep steps[] = {
        {"add now", &T::addNow},
        {"add next", &T::addNext},
        {"append", &T::append},
        {"insert", &T::insert},
        {"remove", &T::removeOne},
        {"remove", &T::removeOne},
        {"remove", &T::removeOne},
        {"reorder", &T::reorder},
        {"remove", &T::removeOne},
        {"next", &T::goOn},
        {"previous", &T::goBack},
        {"mode", &T::setMode},
        {"shuffle", &T::shuffleByCommand},
        {"repeat", &T::repeatByCommand},
        {"prepare", &T::prepare},
        {"prepare", &T::prepare},
        {"end", &T::end},
        {"end", &T::end},
    };
    player.stopsThePlayLogic = true;
    for (int round = 0; round < 150; ++round) {
        takeNewList();
        settle();
        QStringList history;
        for (int i = 0; i < 40; ++i) {
            const NamedStep& step = steps[below(int(std::size(steps)))];
            history.append(step.name);
            m_clock.set(below(1000000));
            (this->*step.step)();
            settle();
            SCOPED_TRACE(testing::Message()
                         << "round " << round << ": " << qPrintable(history.join(", ")));
            const int size = m_list->getSize();
            if (probe().shuffle()) {
                ASSERT_TRUE(isPermutation(probe().order(), size))
                    << testing::PrintToString(probe().order());
                ASSERT_GE(probe().cursor(), -1);
                ASSERT_LT(probe().cursor(), size);
            }
            ASSERT_EQ(m_list->getShuffle(), probe().shuffle());
            ASSERT_EQ(m_playing, titleAtPosition());
            if (player.opening.isEmpty() && title(player.sounding) == m_playing) {
                ASSERT_EQ(QString("%1@%2").arg(m_playing).arg(m_list->getLastSequenceNumber()),
                          published());
            }
            ASSERT_FALSE(player.takeCommands().contains("play nothing"));
        }
    }
}

TEST_F(PlayLogicPropertyTest, withEveryOddityNothingIsReadOutOfRange) {
    using T = PlayLogicPropertyTest;
    static constexpr Step steps[] = {
        &T::addNow,
        &T::addNext,
        &T::append,
        &T::insert,
        &T::removeOne,
        &T::removeSeveral,
        &T::removeSeveral,
        &T::moveOne,
        &T::moveOne,
        &T::moveSeveral,
        &T::reorder,
        &T::clear,
        &T::goOn,
        &T::goOn,
        &T::goBack,
        &T::goBack,
        &T::setMode,
        &T::setAnyMode,
        &T::shuffleByCommand,
        &T::repeatByCommand,
        &T::prepare,
        &T::end,
        &T::start,
        &T::start,
        &T::fail,
        &T::shuffleByCommandLater,
        &T::playAnywhere,
        &T::append,
        &T::repeatByCommandLater,
    };
    for (int round = 0; round < 150; ++round) {
        player.stopsThePlayLogic = below(2) == 0;
        takeNewList();
        play(m_list, 0);
        start();
        for (int i = 0; i < 60; ++i) {
            player.commands.clear();
            const Step step = steps[below(int(std::size(steps)))];
            m_clock.set(below(1000000));
            (this->*step)();
            SCOPED_TRACE(testing::Message() << "round " << round << ", step " << i);
            ASSERT_GE(probe().cursor(), -1);
            for (const QString& command : qAsConst(player.commands)) {
                // Only a start may name an item that is not there; whatever else is sent stands in
                // the list.
                ASSERT_TRUE(step == &T::playAnywhere || command != "play nothing");
                if (command.contains('@')) {
                    const int number = command.section('@', 1).toInt();
                    ASSERT_GE(number, 0);
                    ASSERT_LT(number, m_list->getSize()) << qPrintable(command);
                }
            }
        }
    }
}
