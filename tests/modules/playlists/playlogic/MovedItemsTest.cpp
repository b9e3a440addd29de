#include <QSignalSpy>

#include "PlayLogicFixture.h"

// Items moved within the list that plays.
class MovedItemsTest : public PlayLogicFixture {};

TEST_F(MovedItemsTest, aMoveIsLogged) {
    PlayListBase* pl = playing("abcdef");
    const LogCapture log("PlayListsPlayLogic");
    pl->moveItem(4, 2);
    EXPECT_EQ(
        QStringList{
            "TRACE Enter void PlayListPlayLogic::on_currentPlayList_itemMoved(int, int): from=4 to=2"},
        log.lines());
}

TEST_F(MovedItemsTest, onlyTheTwoNumbersAreExchangedInTheOrder) {
    PlayListBase* pl = playingShuffled("abcdefg", {6, 5, 4, 3, 2, 1, 0}, 3);
    pl->moveItem(2, 5);
    EXPECT_EQ((QVector<int>{6, 2, 4, 3, 5, 1, 0}), probe().order());
    EXPECT_EQ(3, probe().cursor());
    pl->moveItem(5, 2);
    EXPECT_EQ((QVector<int>{6, 5, 4, 3, 2, 1, 0}), probe().order());
}

TEST_F(MovedItemsTest, unshuffledTheOrderIsLeftAlone) {
    PlayListBase* pl = playing("abcd");
    probe().order() = {3, 2, 1, 0};
    pl->moveItem(0, 3);
    EXPECT_EQ((QVector<int>{3, 2, 1, 0}), probe().order());
}

TEST_F(MovedItemsTest, thePlayingItemIsPublishedWithItsNewNumber) {
    struct Row {
        int from, to;
        const char* published;
        int changes;
    };
    const Row rows[] = {{2, 4, "c@4", 1}, {2, 0, "c@0", 1}, {0, 4, "c@1", 1}, {0, 2, "c@1", 1},
                        {4, 0, "c@3", 1}, {4, 2, "c@3", 1}, {3, 4, "c@2", 0}, {1, 0, "c@2", 0}};
    for (const Row& row : rows) {
        PlayListBase* pl = playing("abcde", 2);
        const QSignalSpy changes(logic(), &PlayLogicBase::dataChanged);
        pl->moveItem(row.from, row.to);
        EXPECT_EQ(row.published, published()) << row.from << " to " << row.to;
        EXPECT_EQ(row.changes, changes.count());
        EXPECT_EQ(QStringList(), player.commands);
        // The next one is what follows in the list now.
        const QString titles = letters(pl);
        const int place = titles.indexOf('c');
        next();
        EXPECT_EQ(
            place == 4
                ? QStringList()
                : QStringList{QString("play %1@%2").arg(QString(titles[place + 1])).arg(place + 1)},
            player.takeCommands());
    }
}
