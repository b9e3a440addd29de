#include <algorithm>

#include "StoreFixture.h"

class CollectionRowsTest : public StoreFixture {};

TEST_F(CollectionRowsTest, aRecordStartsAsNoCollection) {
    const CollectionRecord none;
    EXPECT_EQ(-1, none.uid);
    EXPECT_EQ(QString(), none.name);
    EXPECT_EQ(QList<int>(), none.playlists);
}

TEST_F(CollectionRowsTest, aNewCollectionHasNoMembers) {
    EXPECT_TRUE(database().getCollections().isEmpty());
    const CollectionRecord cl = database().createCollection(QStringLiteral("Ünïcødé 🎵"));
    EXPECT_LT(0, cl.uid);
    EXPECT_EQ(QStringLiteral("Ünïcødé 🎵"), cl.name);
    LogCapture log(QStringLiteral("PlayLists"));
    const QList<CollectionRecord> read = database().getCollections();
    ASSERT_EQ(1, read.size());
    EXPECT_EQ(cl.uid, read[0].uid);
    EXPECT_EQ(cl.name, read[0].name);
    EXPECT_EQ(QList<int>(), read[0].playlists);
    EXPECT_EQ(QStringList(), log.errors());
    expectInvariants();
}

TEST_F(CollectionRowsTest, collectionsComeByNameWithTheirMembers) {
    const int p = playListOf("a").uid;
    const int q = playListOf("b").uid;
    const CollectionRecord z = database().createCollection(QStringLiteral("z"));
    const CollectionRecord a = database().createCollection(QStringLiteral("a"));
    EXPECT_TRUE(database().addToCollection(z, q));
    EXPECT_TRUE(database().addToCollection(z, p));
    EXPECT_TRUE(database().addToCollection(a, q));
    EXPECT_TRUE(database().addToCollection(a, 0));
    reopen();
    const QList<CollectionRecord> read = database().getCollections();
    ASSERT_EQ(2, read.size());
    EXPECT_EQ(a.uid, read[0].uid);
    EXPECT_EQ(z.uid, read[1].uid);
    QList<int> members = read[1].playlists;
    std::sort(members.begin(), members.end());
    EXPECT_EQ((QList<int>{p, q}), members);
    members = read[0].playlists;
    std::sort(members.begin(), members.end());
    EXPECT_EQ((QList<int>{0, q}), members);
    expectInvariants();
}

TEST_F(CollectionRowsTest, aMemberCannotBeAddedTwice) {
    const int p = playListOf("a").uid;
    const CollectionRecord cl = database().createCollection(QStringLiteral("c"));
    EXPECT_TRUE(database().addToCollection(cl, p));
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_FALSE(database().addToCollection(cl, p));
    EXPECT_EQ(
        QStringList({QStringLiteral(
                         "Unable to reset sql statement: addToCollection msg: constraint failed"),
                     QStringLiteral("Unable to add pl=%1 to collection=%2").arg(p).arg(cl.uid)}),
        log.errors());
    EXPECT_EQ(QList<int>{p}, database().getCollections().value(0).playlists);
    expectInvariants();
}

TEST_F(CollectionRowsTest, strangersCannotBeAdded) {
    const int p = playListOf("a").uid;
    const CollectionRecord cl = database().createCollection(QStringLiteral("c"));
    EXPECT_FALSE(database().addToCollection(cl, 4711));
    EXPECT_FALSE(database().addToCollection(CollectionRecord(), p));
    EXPECT_EQ(0, queryInt(QStringLiteral("SELECT COUNT(*) FROM collections_playlists")));
    expectInvariants();
}

TEST_F(CollectionRowsTest, membersCanBeTakenOut) {
    const int p = playListOf("a").uid;
    const int q = playListOf("b").uid;
    const CollectionRecord cl = database().createCollection(QStringLiteral("c"));
    ASSERT_TRUE(database().addToCollection(cl, p));
    ASSERT_TRUE(database().addToCollection(cl, q));
    EXPECT_TRUE(database().removeFromCollection(cl, p));
    EXPECT_EQ(QList<int>{q}, database().getCollections().value(0).playlists);
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_FALSE(database().removeFromCollection(cl, p));
    EXPECT_EQ(QStringList(
                  QStringLiteral(
                      "Unable to remove pl=%1 From collection=%2 in database: no such playlist in "
                      "collection in DB")
                      .arg(p)
                      .arg(cl.uid)),
              log.errors());
    EXPECT_EQ(2, database().getPlayLists().size());
    expectInvariants();
}

TEST_F(CollectionRowsTest, deletingACollectionKeepsItsPlaylists) {
    const PlayListRecord pl = playListOf("abc");
    const CollectionRecord cl = database().createCollection(QStringLiteral("c"));
    ASSERT_TRUE(database().addToCollection(cl, pl.uid));
    EXPECT_TRUE(database().deleteCollection(cl));
    EXPECT_TRUE(database().getCollections().isEmpty());
    EXPECT_EQ(0, queryInt(QStringLiteral("SELECT COUNT(*) FROM collections_playlists")));
    EXPECT_EQ(QStringLiteral("a b c"), stored(pl.uid));
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_FALSE(database().deleteCollection(cl));
    EXPECT_EQ(
        QStringList(QStringLiteral(
                        "Unable to delete collection uid=%1 in database: no such collection in DB")
                        .arg(cl.uid)),
        log.errors());
    expectInvariants();
}

TEST(CommaSeparateNumberToList, readsEveryNumber) {
    EXPECT_EQ((QList<int>{3, 7, 12}), commaSeparateNumberToList(QStringLiteral("3,7,12")));
    EXPECT_EQ((QList<int>{5}), commaSeparateNumberToList(QStringLiteral("5")));
    EXPECT_EQ((QList<int>{-1, 0, 2147483647}),
              commaSeparateNumberToList(QStringLiteral("-1,0,2147483647")));
}

TEST(CommaSeparateNumberToList, emptyPiecesAreNothing) {
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_EQ(QList<int>(), commaSeparateNumberToList(QString()));
    EXPECT_EQ((QList<int>{1, 2}), commaSeparateNumberToList(QStringLiteral(",1,,2,")));
    EXPECT_EQ(QStringList(), log.lines());
}

TEST(CommaSeparateNumberToList, whatIsNoNumberIsLoggedAndSkipped) {
    LogCapture log(QStringLiteral("PlayLists"));
    EXPECT_EQ((QList<int>{1, 4}),
              commaSeparateNumberToList(QStringLiteral("1,x,0x3,2147483648,4")));
    EXPECT_EQ(QStringList({QStringLiteral("ERROR Error parsing collections"),
                           QStringLiteral("ERROR Error parsing collections"),
                           QStringLiteral("ERROR Error parsing collections")}),
              log.lines());
}
