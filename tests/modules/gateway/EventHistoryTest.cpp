#include "EventHistory.h"

#include <gtest/gtest.h>

namespace {
EventHistory::Limits limits(int events, int bytes) {
    EventHistory::Limits result;
    result.events = events;
    result.bytes = bytes;
    return result;
}
} // namespace

TEST(EventHistory, idsRiseByOneFromTheBase) {
    EventHistory history(limits(10, 10000), 100);
    EXPECT_EQ(history.lastId(), 100u);
    history.append("rows", "{}");
    EXPECT_EQ(history.lastId(), 101u);
    EXPECT_EQ(history.frameAfter(100), "id: 101\nevent: rows\ndata: {}\n\n");
}

TEST(EventHistory, anEmptyHistoryReachesItsBaseOnly) {
    const EventHistory history(limits(10, 10000), 100);
    EXPECT_TRUE(history.reaches(100));
    EXPECT_FALSE(history.reaches(99));
    EXPECT_FALSE(history.reaches(101));
    EXPECT_FALSE(history.reaches(EventHistory::NoId));
}

TEST(EventHistory, theOldestEventsAreForgottenBeyondTheNumber) {
    EventHistory history(limits(3, 10000), 0);
    for (int i = 0; i < 5; ++i)
        history.append("rows", QByteArray::number(i));
    EXPECT_EQ(history.lastId(), 5u);
    EXPECT_FALSE(history.reaches(1));
    ASSERT_TRUE(history.reaches(2));
    EXPECT_TRUE(history.frameAfter(2).contains("data: 2\n"));
    EXPECT_TRUE(history.reaches(5));
}

TEST(EventHistory, theOldestEventsAreForgottenBeyondTheBytes) {
    EventHistory history(limits(1000, 200), 0);
    for (int i = 0; i < 50; ++i)
        history.append("rows", "0123456789");
    EXPECT_LE(history.bytes(), 200);
    EXPECT_GT(history.bytes(), 100);
    EXPECT_FALSE(history.reaches(40));
    EXPECT_TRUE(history.reaches(49));
}

TEST(EventHistory, anEventLargerThanTheWholeHistoryLeavesNothingToGoOnFrom) {
    EventHistory history(limits(1000, 200), 0);
    history.append("rows", "small");
    history.append("rows", QByteArray(300, 'x'));
    EXPECT_EQ(history.bytes(), 0);
    EXPECT_EQ(history.lastId(), 2u);
    EXPECT_FALSE(history.reaches(1));
    EXPECT_TRUE(history.reaches(2));
}

TEST(EventHistory, twoRunsHaveDifferentIdsThatAreWholeInADouble) {
    const EventHistory one(limits(10, 10000));
    const EventHistory two(limits(10, 10000));
    EXPECT_NE(one.lastId(), two.lastId());
    EXPECT_LT(one.lastId(), quint64(1) << 53);
    EXPECT_FALSE(two.reaches(one.lastId()));
}

TEST(EventHistory, anEventThatIsSkippedLeavesNothingToGoOnFrom) {
    EventHistory history(limits(1000, 200), 0);
    history.append("rows", "small");
    history.append("rows", "small");
    history.skip();
    EXPECT_EQ(history.bytes(), 0);
    EXPECT_EQ(history.lastId(), 3u);
    EXPECT_FALSE(history.reaches(2));
    EXPECT_TRUE(history.reaches(3));
    history.append("rows", "next");
    EXPECT_EQ(history.frameAfter(3), "id: 4\nevent: rows\ndata: next\n\n");
}
