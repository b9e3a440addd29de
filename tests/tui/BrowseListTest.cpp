#include <gtest/gtest.h>

#include <QSignalSpy>

#include "FakeRows.h"
#include "ListCursor.h"
#include "ListFinder.h"
#include "ListStore.h"
#include "Printing.h"

namespace {

const QString Path = QStringLiteral("playlists:pl/items/1");

// A list of tracks, seen through a view of ten rows.
class BrowseList : public ::testing::Test {
protected:
    void load(int count) {
        rows.fill(count);
        cursor.setHeight(10);
        rows.answerAll();
    }
    void tell(const QStringList& changes) { store.apply({Path, false, changes}); }
    QString active() const { return store.row(cursor.active()).title(); }
    QString firstInView() const { return store.row(cursor.top()).title(); }

    FakeRows rows;
    ListStore store{Path, &rows};
    ListCursor cursor{&store};
    ListFinder finder{&store};
};

} // namespace

TEST_F(BrowseList, onlyWhatIsNearTheViewIsRead) {
    load(20000);
    EXPECT_EQ(store.count(), 20000);
    EXPECT_EQ(store.kept(), 100);
    cursor.end();
    EXPECT_EQ(active(), QString());
    rows.answerAll();
    EXPECT_EQ(active(), "t19999");
    EXPECT_EQ(firstInView(), "t19990");
    EXPECT_EQ(rows.asked, (QVector<QPair<int, int>>{{0, 99}, {19900, 19999}}));
}

TEST_F(BrowseList, farRowsAreDroppedAndReadAgainWhenTheyComeIntoView) {
    load(20000);
    for (int at = 0; at < 20000; at += 90) {
        cursor.jumpTo(at);
        rows.answerAll();
        ASSERT_LE(store.kept(), 4000);
    }
    const int before = rows.asked.size();
    cursor.home();
    rows.answerAll();
    EXPECT_EQ(active(), "t0");
    EXPECT_EQ(rows.asked.size(), before + 1);
}

TEST_F(BrowseList, rowsInsertedAboveMoveThePlaceAlong) {
    load(1000);
    cursor.jumpTo(500);
    rows.answerAll();
    const QString top = firstInView();
    rows.list.insert(3, FakeRows::track("new1"));
    rows.list.insert(4, FakeRows::track("new2"));
    tell({"+3", "+4"});
    EXPECT_EQ(cursor.active(), 502);
    EXPECT_EQ(active(), "t500") << "the old row stays until the new one is there";
    EXPECT_FALSE(store.isFresh(502)) << "its position is another one now";
    rows.answerAll();
    EXPECT_EQ(active(), "t500");
    EXPECT_EQ(firstInView(), top);
    EXPECT_TRUE(store.isFresh(502));
    EXPECT_EQ(store.count(), 1002);
}

TEST_F(BrowseList, rowsInsertedInViewShowWhereTheyAre) {
    load(5);
    rows.list.insert(2, FakeRows::track("new"));
    tell({"+2"});
    rows.answerAll();
    EXPECT_EQ(store.row(2).title(), "new");
    EXPECT_EQ(store.row(3).title(), "t2");
    EXPECT_EQ(cursor.active(), 0);
}

TEST_F(BrowseList, aResetKeepsThePlaceOnTheRowThatMoved) {
    load(1000);
    cursor.jumpTo(500);
    rows.answerAll();
    const int line = cursor.active() - cursor.top();
    for (int i = 0; i < 150; ++i)
        rows.list.removeFirst();
    tell({"reset"});
    EXPECT_EQ(active(), "t500") << "shown until it is read again";
    rows.answerAll();
    EXPECT_EQ(cursor.active(), 350);
    EXPECT_EQ(active(), "t500");
    EXPECT_EQ(cursor.active() - cursor.top(), line);
}

TEST_F(BrowseList, whenTheRowIsGoneItsNeighbourIsStoodOn) {
    load(50);
    cursor.jumpTo(20);
    rows.list.removeAt(20);
    tell({"reset"});
    rows.answerAll();
    EXPECT_EQ(active(), "t21");
    cursor.end();
    rows.list.removeLast();
    tell({"reset"});
    rows.answerAll();
    EXPECT_EQ(active(), "t48");
    rows.list.clear();
    tell({"reset"});
    rows.answerAll();
    EXPECT_EQ(cursor.active(), -1);
    rows.fill(2);
    tell({"reset"});
    rows.answerAll();
    EXPECT_EQ(active(), "t0");
}

TEST_F(BrowseList, keysPressedWhileAListIsReadAgainCount) {
    load(50);
    cursor.jumpTo(5);
    rows.list.insert(0, FakeRows::track("new"));
    tell({"reset"});
    cursor.move(1);
    rows.answerAll();
    EXPECT_EQ(active(), "t6");
}

TEST_F(BrowseList, anAnswerFromBeforeAChangeIsNotTaken) {
    rows.fill(10);
    cursor.setHeight(10);
    const FakeRows::Request old = rows.waiting.takeFirst();
    tell({"reset"});
    RowsAnswer stale;
    stale.count = 1;
    stale.rows = {FakeRows::track("stale")};
    old.done(stale);
    EXPECT_FALSE(store.isLoaded());
    rows.answerAll();
    EXPECT_EQ(active(), "t0");
    EXPECT_EQ(store.count(), 10);
}

TEST_F(BrowseList, aListThatShrankWithoutAWordIsReadAnew) {
    load(300);
    rows.list = rows.list.mid(0, 120);
    cursor.end();
    rows.answerAll();
    EXPECT_EQ(store.count(), 120);
    EXPECT_EQ(active(), "t119");
    for (int i = cursor.top(); i < 120; ++i)
        EXPECT_TRUE(store.isFresh(i)) << i;
}

TEST_F(BrowseList, headingsAreNeverStoodOnAndShownWithWhatTheyHead) {
    rows.list = {FakeRows::header("A"), FakeRows::track("a"), FakeRows::header("B"),
                 FakeRows::track("b")};
    cursor.setHeight(2);
    rows.answerAll();
    EXPECT_EQ(active(), "a");
    EXPECT_EQ(cursor.top(), 0);
    cursor.move(1);
    EXPECT_EQ(active(), "b");
    EXPECT_EQ(cursor.top(), 2);
    cursor.home();
    EXPECT_EQ(active(), "a");
    EXPECT_EQ(cursor.top(), 0);
    cursor.move(-1);
    EXPECT_EQ(active(), "a");
}

TEST_F(BrowseList, changesOfOtherListsLeaveThisOneAlone) {
    load(10);
    const int before = rows.asked.size();
    store.apply({"playlists:pl/items/10", false, {"reset", "close"}});
    store.apply({"playlists:pl/items/1/below", true, {"reset"}});
    EXPECT_EQ(rows.asked.size(), before);
    EXPECT_FALSE(store.isClosed());
    store.apply({"playlists:pl", true, {"reset"}});
    EXPECT_EQ(rows.asked.size(), before + 1);
}

TEST_F(BrowseList, aClosedListSaysSoOnceAndAsksForNothingMore) {
    load(10);
    const QSignalSpy closed(&store, &ListStore::closed);
    tell({"close"});
    tell({"close"});
    EXPECT_EQ(closed.count(), 1);
    const int before = rows.asked.size();
    tell({"reset"});
    store.pump();
    EXPECT_EQ(rows.asked.size(), before);
}

TEST_F(BrowseList, whatCouldNotBeReadIsAskedForAgain) {
    const QSignalSpy failed(&store, &ListStore::failed);
    rows.fill(10);
    rows.error = "No.";
    rows.status = 422;
    cursor.setHeight(10);
    rows.answerAll();
    ASSERT_EQ(failed.count(), 1);
    EXPECT_EQ(failed.at(0).at(0).toString(), "No.");
    EXPECT_FALSE(store.isLoaded());
    rows.error.clear();
    store.pump();
    rows.answerAll();
    EXPECT_EQ(active(), "t0");
}

TEST_F(BrowseList, theWholeListIsSearchedInPartsThatAreNotKept) {
    load(20000);
    finder.search("T1234", 0);
    EXPECT_TRUE(finder.isSearching());
    rows.answerAll();
    EXPECT_EQ(finder.matches(), 11); // t1234 and t12340 to t12349
    EXPECT_EQ(finder.match(), 1234);
    finder.step(-1);
    EXPECT_EQ(finder.match(), 12349);
    finder.step(1);
    EXPECT_EQ(finder.match(), 1234);
    EXPECT_EQ(store.kept(), 100);
    for (const auto& range : qAsConst(rows.asked))
        EXPECT_LT(range.second - range.first, 500);
}

TEST_F(BrowseList, findingBeginsAtTheGivenRowAndKnowsNoAccents) {
    rows.list = {FakeRows::track(QString::fromUtf8("Über")), FakeRows::track("x"),
                 FakeRows::track("uberall")};
    cursor.setHeight(10);
    rows.answerAll();
    finder.search("UBER", 1);
    rows.answerAll();
    EXPECT_EQ(finder.matches(), 2);
    EXPECT_EQ(finder.match(), 2);
    finder.search("nothing", 1);
    EXPECT_EQ(finder.matches(), 0);
    EXPECT_EQ(finder.match(), -1);
}

TEST_F(BrowseList, headingsAreNotFound) {
    rows.list = {FakeRows::header("Party"), FakeRows::track("party")};
    cursor.setHeight(10);
    rows.answerAll();
    finder.search("party", 0);
    rows.answerAll();
    EXPECT_EQ(finder.matches(), 1);
    EXPECT_EQ(finder.match(), 1);
}

TEST_F(BrowseList, aPlaceIsFoundBeforeItsListWasEverSeen) {
    rows.fill(1000);
    cursor.setHeight(10);
    cursor.expect(703, "playlists:item/t700");
    rows.answerAll();
    EXPECT_EQ(active(), "t700");
    EXPECT_LT(cursor.top(), 701);
    EXPECT_GT(cursor.top() + 10, 700);
}
