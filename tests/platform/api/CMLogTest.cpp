#include "CMLog.h"

#include <gtest/gtest.h>
#include <sstream>

#include "CMRequest.h"
#include "FatalToStderr.h"
#include "LogCapture.h"

namespace {

template <typename T>
std::string printed(const T& value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

log4cplus::Logger& logger() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("CMLogTest"));
    return instance;
}

int evaluated = 0;
int evaluate() {
    return ++evaluated;
}

void entered() {
    CM_ENTER(logger());
}

void enteredWith(int number, const QString& text) {
    CM_ENTER_ARGS(logger(), "number=" << number << " text=" << text << " evaluated=" << evaluate());
}

} // namespace

TEST(CMLog, qtValuesPrintAsText) {
    EXPECT_EQ(printed(QString("Größe")), "Größe");
    EXPECT_EQ(printed(QString()), "");
    EXPECT_EQ(printed(QStringList({"+4", "+5"})), "+4, +5");
    EXPECT_EQ(printed(CMPath("playlists:root?a=%26")), "playlists:root?a=%26");
    EXPECT_EQ(printed(QVariant(5)), "5");
    EXPECT_EQ(printed(QVariant(true)), "true");
    EXPECT_EQ(printed(QVariant("x")), "x");
    EXPECT_EQ(printed(QVariant()), "");
}

TEST(CMLog, hashesAndListsPrintAsJson) {
    EXPECT_EQ(printed(QVariant(QVariantHash{{"plid", 5}})), R"({"plid":5})");
    EXPECT_EQ(printed(QVariant(QVariantMap{{"a", QVariantList{1, "b"}}})), R"({"a":[1,"b"]})");
    EXPECT_EQ(printed(QVariant(QVariantList{1, 2})), "[1,2]");
    EXPECT_EQ(printed(QVariant(QStringList{"a", "b"})), R"(["a","b"])");
}

TEST(CMLog, ofALongValueNoMoreIsPrintedThanALineHolds) {
    const QString text(1'000'000, 'x');
    const QString name = "name";
    const QVariantList numbers = QVector<QVariant>(100'000, 12).toList();
    cmSetMaxLogText(100);
    const std::string textCut = printed(text);
    const std::string pathCut = printed(CMPath("a:" + text));
    const std::string listCut = printed(QStringList({name, text, text}));
    const std::string namesCut = printed(QStringList(QVector<QString>(100'000, name).toList()));
    const std::string jsonCut = printed(QVariant(QVariantMap{{"a", QVariantList{1, text, text}}}));
    const std::string numbersCut = printed(QVariant(numbers));
    const std::string keyCut = printed(QVariant(QVariantHash{{text, 1}}));
    const std::string shortOnes = printed(QVariant(QVariantList{name, 1, QVariantHash{{"a", 2}}}));
    const std::string exactlyAsLong = printed(text.left(100));
    cmSetMaxLogText(0);
    // A character too much each, so that the log cuts the line and says so.
    EXPECT_EQ(textCut, std::string(101, 'x'));
    EXPECT_EQ(pathCut, "a:" + std::string(99, 'x'));
    EXPECT_EQ(listCut, "name, " + std::string(101, 'x'));
    EXPECT_EQ(jsonCut.substr(0, 10), R"({"a":[1,"x)");
    for (const std::string& cut : {namesCut, jsonCut, numbersCut, keyCut}) {
        EXPECT_GT(cut.size(), 100U) << cut;
        EXPECT_LT(cut.size(), 400U) << cut;
    }
    EXPECT_EQ(shortOnes, R"(["name",1,{"a":2}])");
    EXPECT_EQ(exactlyAsLong, std::string(100, 'x'));
    EXPECT_EQ(printed(text), text.toStdString());
}

TEST(CMLog, rolesPrintTheTextOfTheirTitle) {
    OrvoRoles roles;
    roles.setTitle(TrString("C", "Playlist - %1", {"Mix"}));
    EXPECT_EQ(printed(roles.toVariant()), R"({"title":"Playlist - Mix"})");
}

TEST(CMLog, theEnterLineHoldsSignatureAndArguments) {
    LogCapture log("CMLogTest");
    evaluated = 0;
    entered();
    enteredWith(3, "x");
    ASSERT_EQ(log.lines().size(), 2);
    EXPECT_EQ(log.lines().at(0), "TRACE Enter void {anonymous}::entered()");
    EXPECT_EQ(
        log.lines().at(1),
        "TRACE Enter void {anonymous}::enteredWith(int, const QString&): number=3 text=x evaluated=1");
}

TEST(CMLog, argumentsAreNotEvaluatedWhenTraceIsOff) {
    LogCapture log("CMLogTest", log4cplus::DEBUG_LOG_LEVEL);
    evaluated = 0;
    enteredWith(3, "x");
    EXPECT_EQ(evaluated, 0);
    EXPECT_TRUE(log.lines().isEmpty());
}

using CMLogDeathTest = DeathTest;

TEST_F(CMLogDeathTest, aFailedAssertionIsLoggedAsFatalAndEndsTheProcess) {
    EXPECT_DEATH(
        {
            fatalToStderr();
            CM_ASSERT(false, "the text");
        },
        "FATAL <the text>(.|\n)*api_test: the text\n");
    EXPECT_NO_FATAL_FAILURE(CM_ASSERT(true, "not this one"));
}

TEST_F(CMLogDeathTest, answeringARequestWithoutAReplyIsFatal) {
    const CMSetDataRequest request(CMPath("playlists:pl/create?a=1"), QVariant());
    EXPECT_FALSE(request.hasReply());
    EXPECT_DEATH(
        {
            fatalToStderr();
            request.reply().setValue(1);
        },
        "FATAL <a request without a reply must be answered: playlists:pl/create\\?a=1>");
}

TEST(CMRequest, copiesShareTheReply) {
    const CMReply<QVariant> reply;
    const CMSetDataRequest request(CMPath("a:b"), 5, reply);
    const CMSetDataRequest copy = request;
    EXPECT_TRUE(copy.hasReply());
    EXPECT_EQ(copy.path(), CMPath("a:b"));
    EXPECT_EQ(copy.value(), QVariant(5));
    copy.reply().setValue(7);
    EXPECT_EQ(request.reply().value(), QVariant(7));
    EXPECT_EQ(reply.value(), QVariant(7));
}

TEST(CMRequest, aRowsRequestCarriesItsRangeAndRoleNames) {
    const CMGetRowsRequest request(CMPath("a:b"), 3, 9, {"title"}, CMReplyData<OrvoRowsRoles>());
    EXPECT_EQ(request.fromRow(), 3);
    EXPECT_EQ(request.toRow(), 9);
    EXPECT_EQ(request.roleNames(), QStringList({"title"}));
    EXPECT_TRUE(request.hasReply());
}
