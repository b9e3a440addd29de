#include "CMRequestGroup.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSignalSpy>

#include "CMRootWorker.h"
#include "KeepingWorker.h"
#include "Printing.h"

namespace {

class CMRequestGroupTest : public ::testing::Test {
protected:
    CMRootWorker root;
    KeepingWorker one{"One"};
    KeepingWorker two{"Two"};
    CMRequestGroup group;
    QSignalSpy finished{&group, &CMRequestGroup::finished};
};

} // namespace

TEST_F(CMRequestGroupTest, eachInvokeReachesTheCallBelowItsPath) {
    group.addInvoke("prepareItems", CMPath::fromPrefix("one"), QVariantList{"one:a"});
    group.addInvoke("sub/call", CMPath("two:x?p=1"), 5);
    ASSERT_EQ(one.requests.size(), 1);
    EXPECT_EQ(one.requests.at(0).path(), CMPath("one:prepareItems"));
    EXPECT_EQ(one.requests.at(0).value(), QVariant(QVariantList{"one:a"}));
    ASSERT_EQ(two.requests.size(), 1);
    EXPECT_EQ(two.requests.at(0).path(), CMPath("two:x/sub/call?p=1"));
    EXPECT_EQ(two.requests.at(0).value(), QVariant(5));
}

TEST_F(CMRequestGroupTest, finishedComesWithTheLastAnswer) {
    group.addInvoke("call", CMPath("one:a"), 1);
    group.addInvoke("call", CMPath("two:b"), 2);
    group.checkAndCallCallback();
    EXPECT_EQ(finished.count(), 0);
    two.requests.at(0).reply().setValue("second");
    EXPECT_EQ(finished.count(), 0);
    one.requests.at(0).reply().setValue("first");
    EXPECT_EQ(finished.count(), 1);
}

TEST_F(CMRequestGroupTest, finishedNeverComesBeforeTheCheck) {
    group.addInvoke("call", CMPath("one:a"), 1);
    one.requests.at(0).reply().setValue("early");
    group.addInvoke("call", CMPath("nobody:a"), 1);
    QCoreApplication::processEvents();
    EXPECT_EQ(finished.count(), 0);
    group.checkAndCallCallback();
    EXPECT_EQ(finished.count(), 1);
}

TEST_F(CMRequestGroupTest, finishedComesExactlyOnce) {
    group.addInvoke("call", CMPath("one:a"), 1);
    group.checkAndCallCallback();
    one.requests.at(0).reply().setValue(1);
    one.requests.at(0).reply().setValue(2);
    group.checkAndCallCallback();
    group.addInvoke("call", CMPath("nobody:a"), 1);
    group.checkAndCallCallback();
    EXPECT_EQ(finished.count(), 1);
}

TEST_F(CMRequestGroupTest, aGroupOfNothingFinishesWithTheCheck) {
    EXPECT_EQ(finished.count(), 0);
    group.checkAndCallCallback();
    EXPECT_EQ(finished.count(), 1);
    EXPECT_TRUE(group.getReplyList().isEmpty());
}

TEST_F(CMRequestGroupTest, repliesAreListedInTheOrderAdded) {
    for (int i = 0; i < 4; ++i)
        group.addInvoke("call", CMPath(i % 2 == 0 ? "one:a" : "two:b"), i);
    group.checkAndCallCallback();
    two.requests.at(1).reply().setValue(13);
    one.requests.at(1).reply().setValue(12);
    two.requests.at(0).reply().setError(CMError(TrString(QString("no"))));
    one.requests.at(0).reply().setValue(10);
    ASSERT_EQ(finished.count(), 1);
    const auto replies = group.getReplyList();
    ASSERT_EQ(replies.size(), 4);
    EXPECT_EQ(replies.at(0).value(), QVariant(10));
    EXPECT_TRUE(replies.at(1).isError());
    EXPECT_EQ(replies.at(1).error().message().toString(), "no");
    EXPECT_EQ(replies.at(2).value(), QVariant(12));
    EXPECT_EQ(replies.at(3).value(), QVariant(13));
}

TEST_F(CMRequestGroupTest, everyReplyIsThereWhenFinishedComes) {
    int finishedReplies = 0;
    QObject::connect(&group, &CMRequestGroup::finished, [&] {
        for (const auto& reply : group.getReplyList())
            finishedReplies += reply.isFinished() ? 1 : 0;
    });
    group.addInvoke("call", CMPath("one:a"), 1);
    group.addInvoke("call", CMPath("nobody:b"), 1);
    group.checkAndCallCallback();
    one.requests.at(0).reply().setValue(1);
    EXPECT_EQ(finishedReplies, 2);
}

TEST_F(CMRequestGroupTest, aPrefixOfNoModuleIsAnError) {
    group.addInvoke("prepareItems", CMPath::fromPrefix("nobody"), QVariantList());
    group.checkAndCallCallback();
    ASSERT_EQ(finished.count(), 1);
    const CMReply<QVariant> reply = group.getReplyList().at(0);
    EXPECT_TRUE(reply.isError());
    EXPECT_EQ(reply.error().name(), CMError::NoSuchNode());
    EXPECT_EQ(reply.error().message().toString(), "There is nothing at nobody:prepareItems.");
}

TEST_F(CMRequestGroupTest, aRequestThatItsOwnerDropsIsAnError) {
    group.addInvoke("call", CMPath("one:a"), 1);
    group.checkAndCallCallback();
    EXPECT_EQ(finished.count(), 0);
    one.requests.clear();
    ASSERT_EQ(finished.count(), 1);
    EXPECT_EQ(group.getReplyList().at(0).error().name(), CMError::NotAnswered());
}

TEST_F(CMRequestGroupTest, answersAfterTheGroupIsGoneDoNoHarm) {
    auto shortLived = std::make_unique<CMRequestGroup>();
    shortLived->addInvoke("call", CMPath("one:a"), 1);
    shortLived->checkAndCallCallback();
    shortLived.reset();
    one.requests.at(0).reply().setValue(1);
}

TEST_F(CMRequestGroupTest, theGroupMayBeDeletedWhenItFinishes) {
    QPointer<CMRequestGroup> shortLived = new CMRequestGroup;
    QObject::connect(shortLived, &CMRequestGroup::finished, [&] { delete shortLived; });
    shortLived->addInvoke("call", CMPath("one:a"), 1);
    shortLived->checkAndCallCallback();
    one.requests.at(0).reply().setValue(1);
    EXPECT_TRUE(shortLived.isNull());
}
