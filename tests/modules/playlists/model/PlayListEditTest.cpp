#include "ModelFixture.h"

// Reading, adding, removing and clearing.
class PlayListEditTest : public ModelFixture {
protected:
    PlayListBase& watched(PlayListBase& pl) {
        m_signals.watch(&pl);
        return pl;
    }
    QStringList heard() { return m_signals.take(); }

private:
    SignalLog m_signals;
};

using Position = OrvoPlayListAddPosition;

TEST_F(PlayListEditTest, getItemsGivesBothBoundsAndNothingElse) {
    PlayListBase& pl = playList("abcdef");
    QStringList found;
    const QList<OrvoPlayListItem> entries = pl.getItems(2, 4);
    for (const OrvoPlayListItem& entry : entries)
        found.append(QString("%1%2").arg(entry.title()).arg(entry.sequenceNumber()));
    EXPECT_EQ(QStringList({"c2", "d3", "e4"}), found);
    EXPECT_EQ(6, pl.getItems(-4, 100).size());
    EXPECT_EQ(0, pl.getItems(4, 2).size());
    EXPECT_EQ(0, pl.getItems(6, 9).size());
}

struct AddRow {
    const char* name;
    const char* before;
    int last;
    int position;
    int first;
    const char* after;
    const char* heard;
};

class PlayListAddTest : public ModelFixture, public ::testing::WithParamInterface<AddRow> {};

TEST_P(PlayListAddTest, goesWhereThePositionSays) {
    const AddRow& row = GetParam();
    PlayListBase& pl = playList(row.before, row.last);
    SignalLog signalLog;
    signalLog.watch(&pl);
    EXPECT_EQ(row.first, add(pl, Position::Enum(row.position), "XY"));
    EXPECT_EQ(row.after, letters(pl));
    EXPECT_EQ(int(strlen(row.after)), pl.getSize());
    // The played position stays a number: what was added behind it is what comes next.
    EXPECT_EQ(row.last, pl.getLastSequenceNumber());
    EXPECT_EQ(QString(row.heard), signalLog.take().join(';'));
    expectInStep();
}

INSTANTIATE_TEST_SUITE_P(
    positions, PlayListAddTest,
    ::testing::Values(
        AddRow{"nowBehindThePlayed", "abcd", 1, 0, 2, "abXYcd", "itemsAdded now 2 2"},
        AddRow{"nextBehindThePlayed", "abcd", 1, 1, 2, "abXYcd", "itemsAdded afterCurrent 2 2"},
        AddRow{"appendAtTheEnd", "abcd", 1, 2, 4, "abcdXY", "itemsAdded append 4 2"},
        AddRow{"nowBehindTheFirst", "abcd", 0, 0, 1, "aXYbcd", "itemsAdded now 1 2"},
        AddRow{"nowBehindTheLast", "abcd", 3, 0, 4, "abcdXY", "itemsAdded now 4 2"},
        AddRow{"nowWithNothingPlayed", "abcd", -1, 0, 4, "abcdXY", "itemsAdded now 4 2"},
        AddRow{"nextWithNothingPlayed", "abcd", -1, 1, 4, "abcdXY", "itemsAdded afterCurrent 4 2"},
        AddRow{"nowWithThePlayedPastTheEnd", "abcd", 4, 0, 4, "abcdXY", "itemsAdded now 4 2"},
        AddRow{"nextWithThePlayedFarPastTheEnd", "abcd", 9, 1, 4, "abcdXY",
               "itemsAdded afterCurrent 4 2"},
        AddRow{"nowToAnEmptyList", "", -1, 0, 0, "XY", "itemsAdded now 0 2"},
        AddRow{"nowToAListThatWasEmptied", "", 5, 0, 0, "XY", "itemsAdded now 0 2"},
        AddRow{"anyPositionToAnEmptyList", "", -1, 7, 0, "XY", "itemsAdded 7 0 2"},
        AddRow{"noSuchPosition", "abcd", 1, 3, -1, "abcd", ""},
        AddRow{"noSuchNegativePosition", "abcd", 1, -1, -1, "abcd", ""}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(PlayListEditTest, addingLogsPositionAndCount) {
    PlayListBase& pl = playList("ab");
    const LogCapture log("PlayLists");
    add(pl, Position::AfterCurrent, "xyz");
    const QString first = log.lines().value(0);
    EXPECT_TRUE(first.startsWith("TRACE Enter ")) << first.toStdString();
    EXPECT_TRUE(first.contains("PlayList::addItems(")) << first.toStdString();
    EXPECT_TRUE(first.endsWith("): position=afterCurrent count=3")) << first.toStdString();
}

TEST_F(PlayListEditTest, addingNothingIsRefusedLikeAFullStore) {
    PlayListBase& pl = watched(playList("ab"));
    const LogCapture log("PlayLists");
    EXPECT_EQ(-2, pl.addItems(Position::Append, {}));
    EXPECT_EQ(2, pl.getSize());
    EXPECT_EQ(QStringList(), heard());
    EXPECT_EQ(QStringList("Error adding playlist items: database reached limit!"), log.errors());
    expectInStep();
}

TEST_F(PlayListEditTest, theLimitCutsTheListAndTheSignalSaysHowMuchCame) {
    restart(5);
    PlayListBase& other = playList("ab");
    PlayListBase& pl = watched(playList("c", 0));
    EXPECT_EQ(1, add(pl, Position::Now, "vwxyz"));
    EXPECT_EQ("cvw", letters(pl));
    EXPECT_EQ(3, pl.getSize());
    EXPECT_EQ(QStringList("itemsAdded now 1 2"), heard());

    EXPECT_EQ(-2, add(pl, Position::Now, "m"));
    EXPECT_EQ("cvw", letters(pl));
    EXPECT_EQ(3, pl.getSize());
    EXPECT_EQ(QStringList(), heard());

    EXPECT_EQ(1, other.removeItems({0}));
    EXPECT_EQ(3, add(pl, Position::Append, "n"));
    EXPECT_EQ("cvwn", letters(pl));
    expectInStep();
}

struct RemoveRow {
    const char* name;
    QList<int> indices;
    int last;
    const char* after;
    int lastAfter;
    const char* heard;
};

class PlayListRemoveTest : public ModelFixture, public ::testing::WithParamInterface<RemoveRow> {};

TEST_P(PlayListRemoveTest, closesTheGapsAndKeepsThePlayedEntry) {
    const RemoveRow& row = GetParam();
    PlayListBase& pl = playList("abcdefg", row.last);
    SignalLog signalLog;
    signalLog.watch(&pl);
    EXPECT_EQ(row.indices.size(), pl.removeItems(row.indices));
    EXPECT_EQ(row.after, letters(pl));
    EXPECT_EQ(int(strlen(row.after)), pl.getSize());
    EXPECT_EQ(row.lastAfter, pl.getLastSequenceNumber());
    EXPECT_EQ(QStringList(row.heard), signalLog.take());
    expectInStep();
}

INSTANTIATE_TEST_SUITE_P(
    removals, PlayListRemoveTest,
    ::testing::Values(
        RemoveRow{"twoRuns", {1, 2, 5}, -1, "adeg", -1, "itemsRemoved 1,2,5 -1"},
        RemoveRow{"inAnyOrder", {5, 1, 2}, -1, "adeg", -1, "itemsRemoved 1,2,5 -1"},
        RemoveRow{"onlyThoseBeforeThePlayedCount", {0, 2, 5}, 3, "bdeg", 1, "itemsRemoved 0,2,5 3"},
        RemoveRow{"allBeforeThePlayed", {2, 1, 0}, 3, "defg", 0, "itemsRemoved 0,1,2 3"},
        RemoveRow{"thePlayedItselfMovesNothing", {3}, 3, "abcefg", 3, "itemsRemoved 3 3"},
        RemoveRow{"thePlayedAndOneBefore", {3, 1}, 3, "acefg", 2, "itemsRemoved 1,3 3"},
        RemoveRow{"behindThePlayed", {4, 6}, 3, "abcdf", 3, "itemsRemoved 4,6 3"},
        RemoveRow{"thePlayedAtTheEnd", {6}, 6, "abcdef", 6, "itemsRemoved 6 6"},
        RemoveRow{"theFirstWhilePlayed", {0}, 0, "bcdefg", 0, "itemsRemoved 0 0"},
        RemoveRow{"withThePlayedPastTheEnd", {0, 6}, 9, "bcdef", 7, "itemsRemoved 0,6 9"},
        RemoveRow{"everything", {6, 5, 4, 3, 2, 1, 0}, 2, "", 0, "itemsRemoved 0,1,2,3,4,5,6 2"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(PlayListEditTest, removingWhatIsNotThereRemovesNothing) {
    PlayListBase& pl = watched(playList("abcd", 2));
    const QList<QList<int>> bad = {{4}, {-1}, {0, 4}, {-1, 0}, {1, 1}, {0, 1, 2, 3, 4}};
    for (const QList<int>& indices : bad) {
        const LogCapture log("PlayLists");
        EXPECT_EQ(-1, pl.removeItems(indices));
        EXPECT_EQ(
            QStringList({"Unable to remove all item indices", "Error removing items from list"}),
            log.errors());
        EXPECT_EQ("abcd", letters(pl));
        EXPECT_EQ(4, pl.getSize());
        EXPECT_EQ(2, pl.getLastSequenceNumber());
        EXPECT_EQ(QStringList(), heard());
        expectInStep();
    }
}

TEST_F(PlayListEditTest, removingWithoutIndicesTouchesNothing) {
    PlayListBase& pl = watched(playList("abcd", 2));
    // No transaction could be begun while another one writes.
    run("BEGIN EXCLUSIVE");
    const LogCapture log("PlayLists");
    EXPECT_EQ(0, pl.removeItems({}));
    EXPECT_EQ(QStringList(), log.errors());
    run("ROLLBACK");
    EXPECT_EQ(QStringList(), heard());
    expectInStep();
}

TEST_F(PlayListEditTest, removingLogsTheIndicesAsGiven) {
    PlayListBase& pl = playList("abcd");
    const LogCapture log("PlayLists");
    pl.removeItems({3, 0});
    const QString first = log.lines().value(0);
    EXPECT_TRUE(first.startsWith("TRACE Enter ")) << first.toStdString();
    EXPECT_TRUE(first.endsWith("PlayList::removeItems(const QList<int>&): indices=3, 0"))
        << first.toStdString();
}

TEST_F(PlayListEditTest, clearingRemovesEverythingAndKeepsTheLastPlayedPosition) {
    PlayListBase& other = playList("xy");
    PlayListBase& pl = watched(playList("abcd", 2));
    EXPECT_TRUE(pl.clearItems());
    EXPECT_EQ("", letters(pl));
    EXPECT_EQ(0, pl.getSize());
    EXPECT_EQ(2, pl.getLastSequenceNumber());
    EXPECT_EQ(QStringList("itemsCleared"), heard());
    EXPECT_EQ("xy", letters(other));
    expectInStep();
}

TEST_F(PlayListEditTest, clearingAnEmptyListDoesNotTouchTheStore) {
    PlayListBase& pl = watched(playList(""));
    run("BEGIN EXCLUSIVE");
    const LogCapture log("PlayLists");
    EXPECT_TRUE(pl.clearItems());
    EXPECT_EQ(1, log.lines().size());
    EXPECT_TRUE(log.lines().value(0).endsWith("PlayList::clearItems()"));
    run("ROLLBACK");
    EXPECT_EQ(QStringList(), heard());
}

TEST_F(PlayListEditTest, aClearedListIsFilledFromTheStart) {
    PlayListBase& pl = watched(playList("abcd", 2));
    EXPECT_TRUE(pl.clearItems());
    heard();
    EXPECT_EQ(0, add(pl, Position::Now, "xyz"));
    EXPECT_EQ("xyz", letters(pl));
    EXPECT_EQ(QStringList("itemsAdded now 0 3"), heard());
    expectInStep();
}

TEST_F(PlayListEditTest, readingLogsTheBounds) {
    PlayListBase& pl = playList("abcd");
    const LogCapture log("PlayLists");
    pl.getItems(1, 3);
    const QString first = log.lines().value(0);
    EXPECT_TRUE(first.startsWith("TRACE Enter ")) << first.toStdString();
    EXPECT_TRUE(first.endsWith("PlayList::getItems(int, int): from=1 to=3")) << first.toStdString();
}
