#include "StatementTrace.h"
#include "StoreFixture.h"

// The lines of operations that succeed. All of them are at trace level, and cost nothing when that
// is off.
class LogTest : public StoreFixture {
protected:
    // The lines of one call, "Enter" lines cut down to "Enter <method>: <arguments>".
    template <typename Call>
    QStringList linesOf(Call call) {
        database();
        LogCapture log(QStringLiteral("PlayLists"));
        call();
        QStringList lines;
        for (QString line : log.lines()) {
            if (line.startsWith(QLatin1String("TRACE Enter "))) {
                const int nameEnd = line.indexOf(QLatin1Char('('));
                const int nameStart = line.lastIndexOf(QLatin1String("::"), nameEnd) + 2;
                const int argumentsStart =
                    line.indexOf(QLatin1String(": "), line.indexOf(QLatin1Char(')')));
                line = QStringLiteral("Enter ") + line.mid(nameStart, nameEnd - nameStart) +
                       (argumentsStart < 0 ? QString() : line.mid(argumentsStart));
            } else {
                EXPECT_TRUE(line.startsWith(QLatin1String("TRACE "))) << line.toStdString();
                line.remove(0, 6);
            }
            lines.append(line);
        }
        return lines;
    }

    static QStringList list(std::initializer_list<const char*> lines) {
        QStringList result;
        for (const char* line : lines)
            result.append(QString::fromUtf8(line));
        return result;
    }
};

TEST_F(LogTest, theEnterLineCarriesTheFullSignature) {
    const PlayListRecord pl = playListOf("abc");
    LogCapture log(QStringLiteral("PlayLists"));
    database().getItems(pl, 1, 2);
    ASSERT_EQ(1, log.lines().size());
    const QString line = log.lines()[0];
    EXPECT_TRUE(line.startsWith(QLatin1String("TRACE Enter "))) << line.toStdString();
    EXPECT_TRUE(line.contains(QLatin1String("Database::getItems(const PlayListRecord&, int, int)")))
        << line.toStdString();
    EXPECT_TRUE(line.endsWith(QLatin1String(": pl=1 from=1 to=2"))) << line.toStdString();
}

TEST_F(LogTest, eachRowReadOrWrittenIsALine) {
    const PlayListRecord pl = playListOf("");
    EXPECT_EQ(list({"Enter createPlayList: name=näme", "Created playlist uid=2 name=näme"}),
              linesOf([&] { database().createPlayList(QStringLiteral("näme")); }));
    EXPECT_EQ(list({"Enter getPlayLists"}), linesOf([&] { database().getPlayLists(); }));
    EXPECT_EQ(list({"Enter updatePlayList: pl=1"}),
              linesOf([&] { database().updatePlayList(pl); }));
    EXPECT_EQ(list({"Enter createCollection: name=c", "Inserted collection uid=1 name=c"}),
              linesOf([&] { database().createCollection(QStringLiteral("c")); }));
    EXPECT_EQ(list({"Enter getCollections"}), linesOf([&] { database().getCollections(); }));
    CollectionRecord cl;
    cl.uid = 1;
    EXPECT_EQ(list({"Enter addToCollection: col=1 pl=2", "Pl=2 added to collection=1"}),
              linesOf([&] { database().addToCollection(cl, 2); }));
    EXPECT_EQ(list({"Enter removeFromCollection: col=1 pl=2"}),
              linesOf([&] { database().removeFromCollection(cl, 2); }));
    EXPECT_EQ(list({"Enter deleteCollection: uid=1"}),
              linesOf([&] { database().deleteCollection(cl); }));
    EXPECT_EQ(list({"Enter deletePlayList: pl uid=1"}),
              linesOf([&] { database().deletePlayList(pl); }));
}

TEST_F(LogTest, anAdditionToAnEmptyListSaysSo) {
    const PlayListRecord pl = playListOf("");
    EXPECT_EQ(
        list({"Enter addItems: pl: 1 pl.size(): 0 position: now items.size(): 2",
              "Enter printItems", "Enter getItems: pl=1 from=0 to=0",
              "dbItemsCount: 0, addedItemsCount: 2, limit: 0", "playlist is empty",
              "Enter getNextSequenceNumber: pl=1", "nextSequenceNumber: 0",
              "Inserted item into DB with uid1", "Inserted item into DB with uid2"}),
        linesOf([&] { database().addItems(pl, OrvoPlayListAddPosition::Now, items(2), nullptr); }));
}

TEST_F(LogTest, anAdditionInsideAListSaysBehindWhichEntry) {
    PlayListRecord pl = playListOf("ab");
    pl.lastPlayedIndex = 0;
    EXPECT_EQ(
        list({"Enter addItems: pl: 1 pl.size(): 2 position: afterCurrent items.size(): 1",
              "Enter printItems", "Enter getItems: pl=1 from=0 to=2", "uid: 1 seqNum: 0 name: a",
              "uid: 2 seqNum: 1 name: b", "dbItemsCount: 2, addedItemsCount: 1, limit: 0",
              "playlist is not empty", "lastSeqNum: 0", "Inserted item into DB with uid3"}),
        linesOf([&] {
            database().addItems(pl, OrvoPlayListAddPosition::AfterCurrent, items(1), nullptr);
        }));
}

TEST_F(LogTest, ofManyItemsAddedTheFirstAreListed) {
    constexpr int Many = 250;
    PlayListRecord pl = playListOf("ab");
    pl.lastPlayedIndex = 0;
    QStringList expected =
        list({"Enter addItems: pl: 1 pl.size(): 2 position: now items.size(): 250",
              "Enter printItems", "Enter getItems: pl=1 from=0 to=2", "uid: 1 seqNum: 0 name: a",
              "uid: 2 seqNum: 1 name: b", "dbItemsCount: 2, addedItemsCount: 250, limit: 0",
              "playlist is not empty", "lastSeqNum: 0"});
    for (int uid = 3; uid < 8; ++uid)
        expected.append(QStringLiteral("Inserted item into DB with uid%1").arg(uid));
    expected.append(QStringLiteral("and 245 more"));
    EXPECT_EQ(expected, linesOf([&] {
                  database().addItems(pl, OrvoPlayListAddPosition::Now, items(Many), nullptr);
              }));
}

// An item by its number has no line of its own, however many are asked for and however they are
// found.
TEST_F(LogTest, readingItemsByTheirNumbersIsNotLogged) {
    const PlayListRecord pl = playListOf("abcdefgh");
    EXPECT_EQ(QStringList(), linesOf([&] { database().getItemByUid(3); }));
    for (const QList<int>& uids : {QList<int>{3}, QList<int>{8, 1, 2, 3, 4, 5, 6, 7}})
        EXPECT_EQ(QStringList(), linesOf([&] { database().getItemsByUids({pl}, uids); }));
}

TEST_F(LogTest, aRemovalSaysItsRangesAndTheNewNumbers) {
    const PlayListRecord pl = playListOf("abcdef");
    EXPECT_EQ(list({"Enter removeItems: pl=1 indices=1, 2, 4", "Remove partial from=1 to=2",
                    "Remove partial from=4 to=4", "update seq: uid=4 old=3 new=1",
                    "update seq: uid=6 old=5 new=2"}),
              linesOf([&] {
                  database().removeItems(pl, {1, 2, 4});
              }));
    EXPECT_EQ(list({"Enter removeItems: pl=1 indices="}),
              linesOf([&] { database().removeItems(pl, {}); }));
}

TEST_F(LogTest, aRemovalOutOfOrderSaysItsRangesInOrder) {
    const PlayListRecord pl = playListOf("abcdefg");
    EXPECT_EQ(list({"Enter removeItems: pl=1 indices=5, 2, 1", "Remove partial from=1 to=2",
                    "Remove partial from=5 to=5", "update seq: uid=7 old=6 new=5"}),
              linesOf([&] {
                  database().removeItems(pl, {5, 2, 1});
              }));
}

TEST_F(LogTest, aMoveAndAClearSayTheirRange) {
    const PlayListRecord pl = playListOf("abc");
    EXPECT_EQ(list({"Enter moveItem: pl=1 from=0 to=2"}),
              linesOf([&] { database().moveItem(pl, 0, 2); }));
    EXPECT_EQ(list({"Enter clearItems: pl=1", "Remove partial from=0 to=2147483647"}),
              linesOf([&] { database().clearItems(pl); }));
}

TEST_F(LogTest, withoutTraceNothingIsReadForTheLog) {
    const PlayListRecord pl = playListOf("abc");
    LogCapture log(QStringLiteral("PlayLists"), log4cplus::DEBUG_LOG_LEVEL);
    StatementTrace trace(database());
    database().printItems(pl);
    EXPECT_EQ(QStringList(), trace.texts());
    database().addItems(pl, OrvoPlayListAddPosition::Append, items(1), nullptr);
    EXPECT_EQ(QStringList(), trace.texts().filter(QStringLiteral("FROM (")));
    EXPECT_EQ(QStringList(), log.lines());
}
