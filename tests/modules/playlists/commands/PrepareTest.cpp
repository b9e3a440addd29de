#include "CommandFixture.h"

namespace {

// The module's own answer to those who want items of its playlists.
class PrepareTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    // The titles of the prepared items; "-" for an empty one.
    QStringList prepare(const QVariant& paths) {
        const Answer answer = send(OrvoPlayListPlPrepareItemsPath(), paths);
        EXPECT_TRUE(answer.answered);
        EXPECT_FALSE(answer.failed) << qPrintable(answer.message());
        QStringList titles;
        const QVariantList items = answer.value.toList();
        for (const QVariant& item : items) {
            EXPECT_EQ(QVariant::Hash, item.type());
            titles.append(item.toHash().isEmpty() ? QString("-")
                                                  : item.toHash().value("title").toString());
        }
        return titles;
    }
};

TEST_F(PrepareTest, thePreparePathIsThePrepareCallBelowTheModulesPrefix) {
    EXPECT_EQ(QString("prepareItems"), OrvoPlayListPrepareItems());
    EXPECT_EQ(OrvoPlayListPlPrepareItemsPath(),
              CMPath::fromPrefix("playlists") + OrvoPlayListPrepareItems());
}

TEST_F(PrepareTest, itemsComeInTheOrderOfTheirPaths) {
    EXPECT_EQ(QStringList({"c", "a", "b", "a"}),
              prepare(QStringList({"playlists:item/3", "playlists:item/1", "playlists:item/2",
                                   "playlists:item/1"})));
}

TEST_F(PrepareTest, aPreparedItemIsComplete) {
    const Answer answer = send(OrvoPlayListPlPrepareItemsPath(), QVariantList{"playlists:item/2"});
    const OrvoPlayListItem item(answer.value.toList().value(0).toHash());
    EXPECT_EQ(2, item.uid());
    EXPECT_EQ(1, item.sequenceNumber());
    EXPECT_EQ(QString("b"), item.title());
    EXPECT_EQ(QString("file:///music/b.flac"), item.url());
    EXPECT_EQ(QString("files"), item.serviceId());
    EXPECT_EQ(makeItem("b").orvoRoles(), item.orvoRoles());
}

TEST_F(PrepareTest, aPathThatNamesNoNumberEndsTheList) {
    addItems(1, {"d", "e"}); // uids 4 and 5
    const LogCapture log("PlayLists");
    EXPECT_EQ(QStringList("e"),
              prepare(QVariantList{"playlists:item/5", "playlists:item/abc", "playlists:item/1"}));
    EXPECT_EQ(QStringList("conversion error occured: uid, str=abc path=playlists:item/abc"),
              log.errors());
    EXPECT_EQ(
        1, log.texts("TRACE").filter(QRegularExpression("^preparedItems: \\[\\{.*\\}\\]$")).size());
}

TEST_F(PrepareTest, whatIsWrongIsLoggedInTheOrderOfThePaths) {
    const LogCapture log("PlayLists");
    EXPECT_EQ(QStringList({"-", "b", "-"}),
              prepare(QVariantList{"playlists:item/70", "playlists:item/2", "playlists:item/80",
                                   "playlists:item/abc", "playlists:item/90"}));
    EXPECT_EQ(QStringList({"Error fetching item by UID", "Error fetching item by UID",
                           "conversion error occured: uid, str=abc path=playlists:item/abc"}),
              log.errors());
}

TEST_F(PrepareTest, whatReadsAsZeroEndsTheListToo) {
    for (const char* path :
         {"playlists:item/0", "playlists:item/", "playlists:item", "", "abc", "playlists:item/1x",
          "playlists:item/1.0", "playlists:item/0x1", "playlists:item/99999999999",
          "playlists:item/4294967297", "playlists:item/1?seqnum=0"}) {
        const LogCapture log("PlayLists");
        EXPECT_EQ(QStringList("b"),
                  prepare(QVariantList{"playlists:item/2", path, "playlists:item/1"}))
            << path;
        EXPECT_EQ(1, log.errors().size()) << path;
        EXPECT_TRUE(log.errors().value(0).endsWith(QString(" path=%1").arg(path)));
    }
}

TEST_F(PrepareTest, onlyWhatFollowsTheLastSlashCounts) {
    EXPECT_EQ(QStringList({"b", "b", "b"}),
              prepare(QVariantList{"2", "files:x/2", "playlists:item/9/2"}));
}

TEST_F(PrepareTest, anUnknownItemIsAnEmptyOne) {
    const LogCapture log("PlayLists");
    EXPECT_EQ(QStringList({"a", "-", "-", "c"}),
              prepare(QVariantList{"playlists:item/1", "playlists:item/77", "playlists:item/-2",
                                   "playlists:item/3"}));
    EXPECT_EQ(QStringList({"Error fetching item by UID", "Error fetching item by UID"}),
              log.errors());
}

TEST_F(PrepareTest, unknownItemsAmongManyAreEmptyOnes) {
    addItems(2, {"x", "y"});
    EXPECT_EQ(
        QStringList({"-", "y", "a", "-", "b", "x", "-", "c", "a"}),
        prepare(QStringList({"i/77", "i/5", "i/1", "i/-1", "i/2", "i/4", "i/78", "i/3", "i/1"})));
}

TEST_F(PrepareTest, nothingIsAnsweredWithNothing) {
    for (const QVariant& nothing :
         {QVariant(), QVariant(QVariantList()), QVariant("playlists:item/1"), QVariant(1),
          QVariant(QVariantHash{{"0", "playlists:item/1"}})}) {
        const Answer answer = send(OrvoPlayListPlPrepareItemsPath(), nothing);
        EXPECT_FALSE(answer.failed);
        EXPECT_EQ(QVariant(QVariantList()), answer.value);
    }
}

TEST_F(PrepareTest, elementsAreReadAsTexts) {
    EXPECT_EQ(QStringList({"b", "c"}), prepare(QVariantList{2, "3", QVariantHash(), 1}));
}

TEST_F(PrepareTest, aFileThatCannotBeReadGivesEmptyItems) {
    run("BEGIN EXCLUSIVE;");
    EXPECT_EQ(QStringList({"-", "-"}),
              prepare(QVariantList{"playlists:item/1", "playlists:item/2"}));
    EXPECT_EQ(QStringList({"-", "-", "-", "-", "-"}),
              prepare(QStringList({"i/1", "i/2", "i/3", "i/4", "i/5"})));
    run("ROLLBACK;");
    EXPECT_EQ(QStringList("a"), prepare(QVariantList{"playlists:item/1"}));
}

// The cost of preparing `count` items that lie spread over four lists.
class PrepareCostTest : public PrepareTest {
protected:
    qint64 cost(int count) {
        run("DELETE FROM playlists_items; DELETE FROM items;");
        run(QString(
                "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1)"
                " INSERT INTO items SELECT i, 't' || i, '', '', '', '', 0, 'u', 'files', '{}' FROM n;")
                .arg(count));
        run("INSERT INTO playlists_items SELECT uid % 4, uid, (uid - 1) / 4 FROM items;");
        QVariantList paths;
        for (int uid = count; uid > 0; --uid)
            paths.append(QString("playlists:item/%1").arg(uid));
        storeWatch.takeSteps();
        const QStringList titles = prepare(paths);
        EXPECT_EQ(count, titles.size());
        EXPECT_EQ(QString("t%1").arg(count), titles.first());
        EXPECT_EQ(QString("t1"), titles.last());
        EXPECT_EQ(0, titles.count("-"));
        return storeWatch.takeSteps();
    }
};

TEST_F(PrepareCostTest, thousandsOfPathsCostNoSearchEach) {
    ASSERT_EQ(3, createPlayList("Third"));
    const qint64 few = cost(400);
    const qint64 many = cost(4000);
    ASSERT_GT(few, 400); // the counter counts
    // Ten times the paths: about ten times the work; a search per path would be a hundred times.
    EXPECT_LT(many, few * 20);
}

} // namespace
