#include <QRegularExpression>

#include "ModelFixture.h"

// Moving one entry.
class PlayListMoveTest : public ModelFixture {};

namespace {

// A list whose entries have identities, and which of them was played: null for none, or for a
// position past the end.
class DraggedList {
public:
    explicit DraggedList(const QString& entries) : m_entries(entries) {}

    void drag(int from, int to) {
        const QChar entry = m_entries.at(from);
        m_entries.remove(from, 1);
        m_entries.insert(to, entry);
    }
    int positionOf(QChar entry) const { return m_entries.indexOf(entry); }
    const QString& entries() const { return m_entries; }

private:
    QString m_entries;
};

} // namespace

TEST_F(PlayListMoveTest, movesAsTheHeaderShows) {
    PlayListBase& pl = playList("0123456789");
    EXPECT_TRUE(pl.moveItem(2, 5));
    EXPECT_EQ("0134526789", letters(pl));
    EXPECT_TRUE(pl.moveItem(5, 2));
    EXPECT_EQ("0123456789", letters(pl));
    EXPECT_TRUE(pl.moveItem(5, 2));
    EXPECT_EQ("0152346789", letters(pl));
    expectInStep();
}

TEST_F(PlayListMoveTest, movingTheLastTrackToTheFrontKeepsNumbersDense) {
    PlayListBase& pl = playList("abc");
    EXPECT_TRUE(pl.moveItem(2, 0));
    EXPECT_EQ("cab", letters(pl));
    expectInStep();
}

struct FollowRow {
    int from;
    int to;
    int lastAfter;
    QStringList logged;
};

TEST_F(PlayListMoveTest, thePlayedPositionFollowsAndSaysHow) {
    const QString plusOne = "setLastSequenceNumber(lastPlayedSeqNum + 1): ";
    const QString toIndex = "setLastSequenceNumber(toIndex): ";
    const QString minusOne = "setLastSequenceNumber(lastPlayedSeqNum - 1): ";
    const QList<FollowRow> rows = {
        {6, 2, 5, {plusOne + "5"}},
        {6, 4, 5, {plusOne + "5"}},
        {5, 4, 5, {plusOne + "5"}},
        {4, 8, 8, {toIndex + "8"}},
        {4, 0, 0, {toIndex + "0"}},
        {1, 6, 3, {minusOne + "3"}},
        {1, 4, 3, {minusOne + "3"}},
        {3, 4, 3, {minusOne + "3"}},
        {6, 8, 4, {}},
        {0, 3, 4, {}},
        {8, 5, 4, {}},
    };
    for (const FollowRow& row : rows) {
        SCOPED_TRACE(QString("%1 to %2").arg(row.from).arg(row.to).toStdString());
        PlayListBase& pl = playList("0123456789", 4);
        const LogCapture log("PlayLists");
        EXPECT_TRUE(pl.moveItem(row.from, row.to));
        EXPECT_EQ(row.lastAfter, pl.getLastSequenceNumber());
        EXPECT_TRUE(log.lines().value(0).endsWith(
            QString("PlayList::moveItem(int, int): from=%1 to=%2").arg(row.from).arg(row.to)));
        EXPECT_EQ(QStringList("lastPlayedSeqNum: 4"),
                  log.texts("TRACE").filter(QRegularExpression("^lastPlayedSeqNum: ")));
        EXPECT_EQ(row.logged,
                  log.texts("TRACE").filter(QRegularExpression("^setLastSequenceNumber")));
        expectInStep(pl);
    }
}

// Every source, target and played position of a list of six, those that do not exist included.
TEST_F(PlayListMoveTest, everyMoveOfAShortListKeepsOrderAndPlayedEntry) {
    const int size = 6;
    PlayListBase& pl = playList("abcdef");
    DraggedList expected("abcdef");
    SignalLog signalLog;
    signalLog.watch(&pl);
    for (int last = -1; last <= size + 1; ++last) {
        for (int from = -2; from <= size + 2; ++from) {
            for (int to = -2; to <= size + 2; ++to) {
                SCOPED_TRACE(
                    QString("%1 to %2, played %3").arg(from).arg(to).arg(last).toStdString());
                pl.setLastSequenceNumber(last);
                const bool played = last >= 0 && last < size;
                const QChar playedEntry = played ? expected.entries().at(last) : QChar();

                const bool nowhere = from < 0 || to < 0 || from >= size;
                const bool sameAfterLimiting = qMin(from, size) == qMin(to, size);
                const bool moves = !nowhere && from != qMin(to, size - 1);
                const int target = qMin(to, size - 1);
                if (moves)
                    expected.drag(from, target);

                ASSERT_EQ(sameAfterLimiting || !nowhere, pl.moveItem(from, to));
                ASSERT_EQ(expected.entries(), letters(pl));
                ASSERT_EQ(played ? expected.positionOf(playedEntry) : last,
                          pl.getLastSequenceNumber());
                ASSERT_EQ(moves ? QStringList(QString("itemMoved %1 %2").arg(from).arg(target))
                                : QStringList(),
                          signalLog.take());
                ASSERT_EQ(size, pl.getSize());
            }
        }
        expectInStep();
    }
}

TEST_F(PlayListMoveTest, whatDoesNotMoveDoesNotReachTheStore) {
    PlayListBase& pl = playList("abcdef", 2);
    SignalLog signalLog;
    signalLog.watch(&pl);
    struct Row {
        int from;
        int to;
        bool result;
    };
    const QList<Row> rows = {
        {3, 3, true},   {7, 9, true},  {6, 6, true},   {6, 100, true},
        {5, 6, true},   {5, 9, true},  {-1, -1, true}, {-1, 2, false},
        {2, -1, false}, {6, 2, false}, {9, 0, false},  {-1, 9, false},
    };
    run("BEGIN EXCLUSIVE");
    for (const Row& row : rows) {
        SCOPED_TRACE(QString("%1 to %2").arg(row.from).arg(row.to).toStdString());
        const LogCapture log("PlayLists");
        EXPECT_EQ(row.result, pl.moveItem(row.from, row.to));
        EXPECT_EQ(QStringList(), log.errors());
        EXPECT_EQ(QStringList(), signalLog.take());
    }
    run("ROLLBACK");
    EXPECT_EQ("abcdef", letters(pl));
    EXPECT_EQ(2, pl.getLastSequenceNumber());
}

TEST_F(PlayListMoveTest, nothingCanBeMovedInAnEmptyList) {
    PlayListBase& pl = playList("");
    EXPECT_TRUE(pl.moveItem(0, 0));
    EXPECT_TRUE(pl.moveItem(0, 3));
    EXPECT_FALSE(pl.moveItem(0, -1));
    EXPECT_FALSE(pl.moveItems({0}, 0));
    expectInStep();
}
