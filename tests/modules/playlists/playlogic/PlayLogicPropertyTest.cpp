#include <QCoreApplication>

#include "RandomListFixture.h"

// A list that plays, edited and steered at random.
class PlayLogicPropertyTest : public RandomListFixture {
public:
    PlayLogicPropertyTest() { m_random.seed(Random::firstSeed()); }

    // --- steps ---

    void addNow() { addSome(Position::Now); }
    void addNext() { addSome(Position::AfterCurrent); }
    void append() { addSome(Position::Append); }
    void insert() {
        if (m_list->getSize() <= 40)
            insertAnywhere(newItems(8));
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
    void reorder() { m_list->setOrder(anyOrder()); }
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
        if (!player.announced.isEmpty() && titles().contains(title(player.announced)))
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

    void addSome(Position::Enum position) {
        if (m_list->getSize() <= 40)
            m_list->addItems(position, newItems(8));
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
        takeEmptyList();
        m_list->addItems(Position::Append, newItems(8));
        m_list->setShuffle(below(2) == 0);
        m_list->setRepeatAll(below(2) == 0);
        player.sounding = player.opening = player.announced = {};
    }

    QString m_playing;
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
