#include <algorithm>

#include "ModelFixture.h"

// Moving several entries.
class PlayListMoveItemsTest : public ModelFixture {};

namespace {

// Drag and drop: the selected entries are lifted out and dropped as one block, behind the entry at
// `to` when one of them came from there or from before it, else in front of it.
QString dropped(const QString& entries, unsigned selection, int to) {
    const auto selected = [selection](int i) { return (selection >> i & 1U) != 0; };
    bool behind = false;
    for (int i = 0; i <= to; ++i)
        behind = behind || selected(i);
    QString before;
    QString block;
    QString after;
    for (int i = 0; i < entries.size(); ++i) {
        QString& part = selected(i) ? block : (i < to || (i == to && behind)) ? before : after;
        part.append(entries.at(i));
    }
    return before + block + after;
}

QList<int> indicesOf(unsigned selection, int size) {
    QList<int> indices;
    for (int i = 0; i < size; ++i) {
        if ((selection >> i & 1U) != 0)
            indices.append(i);
    }
    return indices;
}

// What a listener makes of the list by following the signals.
QString followed(QString entries, const QStringList& heard) {
    for (const QString& line : heard) {
        const QStringList words = line.split(' ');
        EXPECT_EQ("itemMoved", words.value(0));
        const int from = words.value(1).toInt();
        const QChar entry = entries.at(from);
        entries.remove(from, 1);
        entries.insert(words.value(2).toInt(), entry);
    }
    return entries;
}

} // namespace

TEST_F(PlayListMoveItemsTest, movesAsTheHeaderShows) {
    PlayListBase& forward = playList("0123456789");
    EXPECT_TRUE(forward.moveItems({1, 3}, 5));
    EXPECT_EQ("0245136789", letters(forward));
    PlayListBase& back = playList("0123456789");
    EXPECT_TRUE(back.moveItems({8, 6}, 2));
    EXPECT_EQ("0168234579", letters(back));
    expectInStep();
}

TEST_F(PlayListMoveItemsTest, signalsComeInTheOrderOfTheMoves) {
    PlayListBase& pl = playList("0123456789");
    SignalLog signalLog;
    signalLog.watch(&pl);
    EXPECT_TRUE(pl.moveItems({8, 1, 3, 6}, 4));
    EXPECT_EQ("0241368579", letters(pl));
    EXPECT_EQ(QStringList({"itemMoved 1 4", "itemMoved 2 4", "itemMoved 6 5", "itemMoved 8 6"}),
              signalLog.take());
}

// All selections of a list of six, every target, in any order and with repetitions.
TEST_F(PlayListMoveItemsTest, everySelectionIsDroppedAsOneBlock) {
    const int size = 6;
    QString entries = "abcdef";
    PlayListBase& pl = playList(entries);
    SignalLog signalLog;
    signalLog.watch(&pl);
    int turn = 0;
    for (unsigned selection = 1; selection < 1U << size; ++selection) {
        for (int to = 0; to <= size + 2; ++to) {
            const int last = turn++ % (size + 2) - 1;
            QList<int> indices = indicesOf(selection, size);
            if (turn % 3 == 1)
                std::reverse(indices.begin(), indices.end());
            if (turn % 3 == 2)
                indices.append(indices.mid(0, 2));
            SCOPED_TRACE(QString("selection %1 to %2, played %3, turn %4")
                             .arg(selection)
                             .arg(to)
                             .arg(last)
                             .arg(turn)
                             .toStdString());
            pl.setLastSequenceNumber(last);
            const bool played = last >= 0 && last < size;
            const QString expected = dropped(entries, selection, qMin(to, size - 1));

            ASSERT_TRUE(pl.moveItems(indices, to));
            ASSERT_EQ(expected, letters(pl));
            ASSERT_EQ(expected, followed(entries, signalLog.take()));
            ASSERT_EQ(played ? expected.indexOf(entries.at(last)) : last,
                      pl.getLastSequenceNumber());
            entries = expected;
        }
    }
    expectInStep();
}

// The same for a list of five with each played position.
TEST_F(PlayListMoveItemsTest, everySelectionKeepsThePlayedEntry) {
    const int size = 5;
    QString entries = "abcde";
    PlayListBase& pl = playList(entries);
    for (unsigned selection = 1; selection < 1U << size; ++selection) {
        for (int to = 0; to < size; ++to) {
            for (int last = 0; last < size; ++last) {
                SCOPED_TRACE(QString("selection %1 to %2, played %3")
                                 .arg(selection)
                                 .arg(to)
                                 .arg(last)
                                 .toStdString());
                pl.setLastSequenceNumber(last);
                const QChar playedEntry = entries.at(last);
                entries = dropped(entries, selection, to);
                ASSERT_TRUE(pl.moveItems(indicesOf(selection, size), to));
                ASSERT_EQ(entries, letters(pl));
                ASSERT_EQ(entries.indexOf(playedEntry), pl.getLastSequenceNumber());
            }
        }
    }
    expectInStep();
}

TEST_F(PlayListMoveItemsTest, oneBadIndexMovesNothing) {
    PlayListBase& pl = playList("abcdef", 3);
    SignalLog signalLog;
    signalLog.watch(&pl);
    struct Row {
        QList<int> indices;
        int to;
    };
    const QList<Row> rows = {{{-1}, 2},      {{6}, 2},     {{0, 6}, 2}, {{1, -1, 3}, 5},
                             {{0, 1, 9}, 5}, {{2, 4}, -1}, {{7, 6}, 6}};
    for (const Row& row : rows) {
        const LogCapture log("PlayLists");
        EXPECT_FALSE(pl.moveItems(row.indices, row.to));
        EXPECT_EQ("abcdef", letters(pl));
        EXPECT_EQ(3, pl.getLastSequenceNumber());
        EXPECT_EQ(QStringList(), signalLog.take());
        EXPECT_EQ(QStringList(), log.errors());
    }
    expectInStep();
}

TEST_F(PlayListMoveItemsTest, noIndicesSucceedAndSayNothing) {
    PlayListBase& pl = playList("abcdef");
    SignalLog signalLog;
    signalLog.watch(&pl);
    const LogCapture log("PlayLists");
    EXPECT_TRUE(pl.moveItems({}, 3));
    EXPECT_TRUE(pl.moveItems({}, -1));
    const QStringList lines = {"TRACE indicies.size(): 0", "TRACE indicies.size() is 0, returning"};
    EXPECT_EQ(lines + lines, log.lines());
    EXPECT_EQ(QStringList(), signalLog.take());
}

TEST_F(PlayListMoveItemsTest, theCountLoggedIsThatOfTheRequest) {
    PlayListBase& pl = playList("abcdef");
    const LogCapture log("PlayLists");
    EXPECT_TRUE(pl.moveItems({1, 1, 3}, 4));
    EXPECT_EQ("TRACE indicies.size(): 3", log.lines().value(0));
    EXPECT_FALSE(log.contains("TRACE", "indicies.size() is 0, returning"));
}

TEST_F(PlayListMoveItemsTest, severalMoveTogetherWithThePlayedPositionOrNotAtAll) {
    PlayListBase& pl = playList("abcdef", 1);
    SignalLog signalLog;
    signalLog.watch(&pl);
    for (const char* table : {"playlists_items", "playlists"}) {
        SCOPED_TRACE(table);
        forbid(QString("UPDATE ON %1").arg(table));
        const LogCapture log("PlayLists");
        EXPECT_FALSE(pl.moveItems({0, 1, 2}, 5));
        EXPECT_EQ("Error moving PlayListItem", log.errors().constLast());
        allowAll();
        EXPECT_EQ("abcdef", letters(pl));
        EXPECT_EQ(1, pl.getLastSequenceNumber());
        EXPECT_EQ(QStringList(), signalLog.take());
        expectInStep();
    }
    EXPECT_TRUE(pl.moveItems({0, 1, 2}, 5));
    EXPECT_EQ("defabc", letters(pl));
    EXPECT_EQ(4, pl.getLastSequenceNumber());
    expectInStep();
}

TEST_F(PlayListMoveItemsTest, severalThatStandWhereTheyAreToComeTouchNothing) {
    PlayListBase& pl = playList("abcdef", 1);
    SignalLog signalLog;
    signalLog.watch(&pl);
    const qint64 revision = pl.getRevision();
    forbid("UPDATE ON playlists_items");
    EXPECT_TRUE(pl.moveItems({2, 3, 4}, 2));
    EXPECT_TRUE(pl.moveItems({0, 1, 2, 3, 4, 5}, 0));
    allowAll();
    EXPECT_EQ(revision, pl.getRevision());
    EXPECT_EQ(QStringList(), signalLog.take());
}

TEST_F(PlayListMoveItemsTest, aPositionThatIsOwedIsMadeUpForByTheMove) {
    PlayListBase& pl = playList("abcdef", 1);
    forbid("UPDATE ON playlists");
    pl.setLastSequenceNumber(3);
    allowAll();
    EXPECT_TRUE(pl.moveItems({3, 4}, 0));
    EXPECT_EQ(0, pl.getLastSequenceNumber());
    expectInStep();
}
