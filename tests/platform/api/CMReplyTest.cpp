#include "CMReply.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include "OrvoRoles.h"
#include "Printing.h"

namespace {
CMError errorNamed(const QString& name) {
    return CMError(name, TrString(name + " message"), TrString(name + " title"));
}
} // namespace

TEST(CMReply, aFreshOneIsPending) {
    const CMReply<int> reply;
    EXPECT_FALSE(reply.isFinished());
    EXPECT_FALSE(reply.isError());
    EXPECT_EQ(reply.value(), 0);
    EXPECT_EQ(reply.error().name(), QString());
}

TEST(CMReply, theFirstValueWins) {
    const CMReply<int> reply;
    reply.setValue(1);
    reply.setValue(2);
    reply.setError(errorNamed("late"));
    reply.setFinished();
    EXPECT_TRUE(reply.isFinished());
    EXPECT_FALSE(reply.isError());
    EXPECT_EQ(reply.value(), 1);
    EXPECT_EQ(reply.error().name(), QString());
}

TEST(CMReply, theFirstErrorWins) {
    const CMReply<int> reply;
    reply.setError(errorNamed("first"));
    reply.setError(errorNamed("second"));
    reply.setValue(2);
    EXPECT_TRUE(reply.isFinished());
    EXPECT_TRUE(reply.isError());
    EXPECT_EQ(reply.error().name(), "first");
    EXPECT_EQ(reply.value(), 0);
}

TEST(CMReply, aVoidReplyIsFinishedOnce) {
    const CMVoidReply reply;
    int finished = 0;
    reply.onFinished([&] { ++finished; });
    reply.setFinished();
    reply.setError(errorNamed("late"));
    reply.setFinished();
    EXPECT_TRUE(reply.isFinished());
    EXPECT_FALSE(reply.isError());
    EXPECT_EQ(finished, 1);
}

TEST(CMReply, copiesShareOneAnswer) {
    const CMReply<QVariant> reply;
    const CMReply<QVariant> copy = reply;
    const CMVoidReply base = reply;
    copy.setValue(5);
    EXPECT_EQ(reply.value(), QVariant(5));
    EXPECT_TRUE(base.isFinished());
}

TEST(CMReply, anErrorSetThroughTheBaseReachesTheValueReply) {
    const CMReply<QVariant> reply;
    QString seen;
    reply.onError([&](const CMError& error) { seen = error.name(); });
    const CMVoidReply base = reply;
    base.setError(errorNamed("refused"));
    EXPECT_EQ(seen, "refused");
}

TEST(CMReply, callbacksRunOnceInTheOrderOfTheirRegistration) {
    const CMReply<int> reply;
    QStringList calls;
    reply.onSuccess([&](const int& value) { calls.append(QString("value %1").arg(value)); });
    reply.onFinished([&] { calls.append("finished"); });
    reply.onError([&](const CMError&) { calls.append("error"); });
    reply.onSuccess([&] { calls.append("success"); });
    EXPECT_TRUE(calls.isEmpty());
    reply.setValue(7);
    EXPECT_EQ(calls, QStringList({"value 7", "finished", "success"}));
    reply.setValue(8);
    reply.setError(errorNamed("late"));
    EXPECT_EQ(calls.size(), 3);
}

TEST(CMReply, onlyErrorCallbacksHearOfAnError) {
    const CMReply<int> reply;
    QStringList calls;
    reply.onSuccess([&](const int&) { calls.append("value"); });
    reply.onSuccess([&] { calls.append("success"); });
    reply.onError([&](const CMError& error) { calls.append(error.message().toString()); });
    reply.onFinished([&] { calls.append("finished"); });
    reply.setError(errorNamed("bad"));
    EXPECT_EQ(calls, QStringList({"bad message", "finished"}));
}

TEST(CMReply, callbacksRegisteredAfterCompletionRunAtOnce) {
    const CMReply<int> good;
    good.setValue(3);
    QStringList calls;
    good.onSuccess([&](const int& value) { calls.append(QString::number(value)); });
    good.onError([&](const CMError&) { calls.append("error"); });
    good.onFinished([&] { calls.append("finished"); });
    EXPECT_EQ(calls, QStringList({"3", "finished"}));

    const CMReply<int> bad;
    bad.setError(errorNamed("bad"));
    calls.clear();
    bad.onSuccess([&] { calls.append("success"); });
    bad.onError([&](const CMError& error) { calls.append(error.name()); });
    EXPECT_EQ(calls, QStringList({"bad"}));
}

TEST(CMReply, aCallbackThatCompletesAgainChangesNothing) {
    const CMReply<int> reply;
    QList<int> seen;
    reply.onSuccess([&](const int& value) {
        seen.append(value);
        reply.setValue(value + 1);
        reply.setError(errorNamed("late"));
    });
    reply.onSuccess([&](const int& value) { seen.append(value); });
    reply.setValue(1);
    EXPECT_EQ(seen, QList<int>({1, 1}));
    EXPECT_FALSE(reply.isError());
}

TEST(CMReply, aCallbackRegisteredInsideACallbackRunsOnce) {
    const CMReply<int> reply;
    QStringList calls;
    reply.onFinished([&] {
        calls.append("outer");
        reply.onFinished([&] { calls.append("inner"); });
    });
    reply.onFinished([&] { calls.append("second"); });
    reply.setValue(1);
    EXPECT_EQ(calls, QStringList({"outer", "inner", "second"}));
}

TEST(CMReply, aCallbackMayDropTheLastHandle) {
    using Value = std::shared_ptr<int>;
    auto reply = std::make_unique<CMReply<Value>>();
    std::weak_ptr<int> watched;
    int calls = 0;
    reply->onSuccess([&](const Value& value) {
        watched = value;
        reply.reset();
        ++calls;
        EXPECT_FALSE(watched.expired()) << "the value is there as long as the callback runs";
        EXPECT_EQ(*value, 4);
    });
    reply->onSuccess([&](const Value& value) {
        ++calls;
        EXPECT_EQ(*value, 4);
    });
    reply->setValue(std::make_shared<int>(4));
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(watched.expired()) << "nothing keeps the answer longer";
}

TEST(CMReply, aLateCallbackMayDropTheLastHandle) {
    using Value = std::shared_ptr<int>;
    auto reply = std::make_unique<CMReply<Value>>();
    reply->setValue(std::make_shared<int>(4));
    bool alive = false;
    reply->onSuccess([&](const Value& value) {
        const std::weak_ptr<int> watched = value;
        reply.reset();
        alive = !watched.expired();
    });
    EXPECT_TRUE(alive);
}

TEST(CMReply, anErrorCallbackMayDropTheLastHandle) {
    auto reply = std::make_unique<CMVoidReply>();
    QString seen;
    reply->onError([&](const CMError& error) {
        reply.reset();
        seen = error.name();
    });
    reply->setError(errorNamed("bad"));
    EXPECT_EQ(seen, "bad");
}

TEST(CMReply, droppingOneOfTwoHandlesCancelsNothing) {
    auto held = std::make_unique<CMReply<int>>();
    int seen = 0;
    {
        const CMReply<int> dropped = *held;
        dropped.onSuccess([&](const int& value) { seen = value; });
    }
    EXPECT_EQ(seen, 0);
    held->setValue(9);
    EXPECT_EQ(seen, 9);
}

TEST(CMReply, whenTheLastHandleGoesTheCallbacksHearThatNoAnswerCame) {
    QStringList calls;
    {
        const CMReply<int> reply;
        reply.onSuccess([&](const int&) { calls.append("value"); });
        reply.onError([&](const CMError& error) {
            calls.append(error.name());
            calls.append(error.message().toString());
            calls.append(error.title().toString());
        });
        reply.onFinished([&] { calls.append("finished"); });
        const CMReply<int> copy = reply; // NOLINT: a second handle that goes as well
        EXPECT_TRUE(calls.isEmpty());
    }
    EXPECT_EQ(calls,
              QStringList({"NotAnswered", "The request was not answered.", "Error", "finished"}));
}

TEST(CMReply, anAnsweredReplySaysNothingWhenItGoes) {
    int errors = 0;
    {
        const CMReply<int> reply;
        reply.onError([&](const CMError&) { ++errors; });
        reply.setValue(1);
    }
    EXPECT_EQ(errors, 0);
}

TEST(CMReply, waitingForAFinishedOneReturnsAtOnce) {
    const CMReply<int> good;
    good.setValue(1);
    const CMReply<int> bad;
    bad.setError(errorNamed("bad"));
    bool eventsHandled = false;
    QTimer::singleShot(0, [&] { eventsHandled = true; });
    EXPECT_TRUE(good.waitForFinished());
    EXPECT_TRUE(bad.waitForFinished(0));
    EXPECT_FALSE(eventsHandled);
    QCoreApplication::processEvents();
}

TEST(CMReply, waitingHandlesEventsUntilTheAnswer) {
    const CMReply<int> reply;
    QTimer::singleShot(5, [&] { reply.setValue(3); });
    EXPECT_TRUE(reply.waitForFinished());
    EXPECT_EQ(reply.value(), 3);
}

TEST(CMReply, waitingEndsWithTheTime) {
    const CMReply<int> reply;
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(reply.waitForFinished(20));
    EXPECT_GE(timer.elapsed(), 19);
    reply.setValue(2);
    EXPECT_EQ(reply.value(), 2) << "an answer after the time is up still counts";
}

TEST(CMReply, rowsTravelAsReplyData) {
    const CMReplyData<OrvoRowsRoles> reply;
    OrvoRowsRoles rows;
    rows.setRowsCount(12);
    reply.setValue(rows);
    EXPECT_EQ(reply.value().rowsCount(), 12);
}
