#include "CMWorker.h"

#include <gtest/gtest.h>

#include "CMNode.h"
#include "CMRootWorker.h"
#include "FatalToStderr.h"
#include "LogCapture.h"
#include "Printing.h"

namespace {

// A node that refuses, answers or stays silent, as the test wants it.
class MoodyNode : public CMListRowsNode {
public:
    enum class Mood { Refuse, Answer, Silent };

    MoodyNode(const QString& path, CMNodes* nodes) : CMListRowsNode(CMPath(path)) {
        setNodes(nodes);
    }

    bool setDataRequest(const CMSetDataRequest& request) override {
        seen.append(request.path());
        if (mood == Mood::Answer)
            request.reply().setValue(request.value());
        return mood != Mood::Refuse;
    }
    bool getRowsRequest(const CMGetRowsRequest& request) override {
        seen.append(request.path());
        if (mood == Mood::Answer) {
            OrvoRowsRoles rows;
            rows.setRowsCount(3);
            rows.setRows({QVariantList{"Alpha"}, QVariantList{"Beta"}, QVariantList{"alphabet"}});
            request.reply().setValue(rows);
        }
        return mood != Mood::Refuse;
    }

    Mood mood = Mood::Answer;
    QList<CMPath> seen;
};

struct Outcome {
    int answers = 0;
    QVariant value;
    CMError error;
};

class CMWorkerTest : public ::testing::Test {
protected:
    Outcome set(const QString& path, const QVariant& value = {}) {
        const auto outcome = std::make_shared<Outcome>();
        const CMReply<QVariant> reply;
        reply.onSuccess([outcome](const QVariant& result) {
            ++outcome->answers;
            outcome->value = result;
        });
        reply.onError([outcome](const CMError& error) {
            ++outcome->answers;
            outcome->error = error;
        });
        root.invoke(CMPath(path), value, reply);
        return *outcome;
    }
    CMReplyData<OrvoRowsRoles> rows(const QString& path) {
        const CMReplyData<OrvoRowsRoles> reply;
        root.getRowsRequest(
            CMGetRowsRequest(CMPath(path), 0, CMGetRowsRequest::LastRow, {"title"}, reply));
        return reply;
    }
    CMReply<int> match(const QString& path, const QString& text, int from) {
        const CMReply<int> reply;
        root.matchRowRequest(CMMatchRowRequest(CMPath(path), text, from, reply));
        return reply;
    }

    CMRootWorker root;
    CMNodesWorker worker{{{"key", 5}}, "PlayLists"};
    MoodyNode node{"playlists:pl/items/5", worker.nodes()};
};

} // namespace

TEST_F(CMWorkerTest, itsNameInLowerCaseIsItsPrefix) {
    EXPECT_EQ(worker.name(), "PlayLists");
    EXPECT_EQ(worker.prefix(), "playlists");
    EXPECT_EQ(worker.config().value("key"), QVariant(5));
    EXPECT_EQ(root.worker("playlists"), &worker);
    EXPECT_EQ(CMRoot(), &root);
}

TEST_F(CMWorkerTest, theRootRoutesByPrefix) {
    CMNodesWorker files({}, "Files");
    MoodyNode filesNode("files:pl/items/5", files.nodes());
    EXPECT_EQ(set("playlists:pl/items/5", 7).value, QVariant(7));
    EXPECT_EQ(node.seen.size(), 1);
    EXPECT_TRUE(filesNode.seen.isEmpty());
    EXPECT_EQ(set("files:pl/items/5", 8).value, QVariant(8));
    EXPECT_EQ(filesNode.seen.size(), 1);
    EXPECT_EQ(node.seen.size(), 1);
}

TEST_F(CMWorkerTest, theNodeIsFoundWithoutTheParametersAndGetsThem) {
    EXPECT_EQ(set("playlists:pl/items/5?plid=5&action=x", 7).value, QVariant(7));
    EXPECT_EQ(node.seen, QList<CMPath>({CMPath("playlists:pl/items/5?plid=5&action=x")}));
}

TEST_F(CMWorkerTest, aPrefixOfNoModuleIsAnErrorForEveryRequest) {
    const QString text = "There is nothing at nobody:a?b=1.";
    const Outcome outcome = set("nobody:a?b=1");
    EXPECT_EQ(outcome.answers, 1);
    EXPECT_EQ(outcome.error.name(), CMError::NoSuchNode());
    EXPECT_EQ(outcome.error.message().toString(), text);
    EXPECT_EQ(rows("nobody:a?b=1").error().message().toString(), text);
    EXPECT_EQ(match("nobody:a?b=1", "x", 0).error().message().toString(), text);
    const CMReplyData<OrvoRoles> data;
    root.getDataRequest(CMGetDataRequest(CMPath("nobody:a?b=1"), {}, data));
    EXPECT_EQ(data.error().message().toString(), text);
    const CMVoidReply written;
    root.setValue(CMPath("nobody:a?b=1"), 1, written);
    EXPECT_EQ(written.error().message().toString(), text);
    EXPECT_FALSE(root.getValue(CMPath("nobody:a?b=1")).isValid());
    EXPECT_EQ(set(QString()).error.name(), CMError::NoSuchNode());
}

TEST_F(CMWorkerTest, noNodeAtThePathIsAnErrorForEveryRequest) {
    const QString text = "There is nothing at playlists:pl/items/50.";
    EXPECT_EQ(set("playlists:pl/items/50").error.message().toString(), text);
    EXPECT_EQ(set("playlists:pl/items/50").error.name(), CMError::NoSuchNode());
    EXPECT_EQ(rows("playlists:pl/items/50").error().message().toString(), text);
    EXPECT_EQ(match("playlists:pl/items/50", "x", 0).error().message().toString(), text);
    const CMReplyData<OrvoRoles> data;
    root.getDataRequest(CMGetDataRequest(CMPath("playlists:pl/items/50"), {}, data));
    EXPECT_EQ(data.error().message().toString(), text);
    EXPECT_EQ(set("playlists:pl/items").error.name(), CMError::NoSuchNode());
    EXPECT_EQ(set("playlists:").error.name(), CMError::NoSuchNode());
}

TEST_F(CMWorkerTest, aNodeThatReturnsFalseIsAnError) {
    node.mood = MoodyNode::Mood::Refuse;
    const Outcome outcome = set("playlists:pl/items/5?a=b");
    EXPECT_EQ(outcome.answers, 1);
    EXPECT_EQ(outcome.error.name(), CMError::NotSupported());
    EXPECT_EQ(outcome.error.message().toString(), "playlists:pl/items/5?a=b does not do that.");
    EXPECT_EQ(rows("playlists:pl/items/5").error().name(), CMError::NotSupported());
    EXPECT_EQ(match("playlists:pl/items/5", "x", 0).error().name(), CMError::NotSupported());
}

TEST_F(CMWorkerTest, aNodeThatReturnsTrueAnswersItself) {
    node.mood = MoodyNode::Mood::Silent;
    const CMReplyData<OrvoRowsRoles> reply = rows("playlists:pl/items/5");
    EXPECT_FALSE(reply.isFinished());
    EXPECT_EQ(set("playlists:pl/items/5").error.name(), QString());
}

TEST_F(CMWorkerTest, aDisabledNodeIsNotAsked) {
    node.setDisabled(true);
    EXPECT_TRUE(node.isDisabled());
    EXPECT_EQ(set("playlists:pl/items/5").error.name(), CMError::NotSupported());
    EXPECT_EQ(rows("playlists:pl/items/5").error().name(), CMError::NotSupported());
    EXPECT_EQ(match("playlists:pl/items/5", "x", 0).error().name(), CMError::NotSupported());
    EXPECT_TRUE(node.seen.isEmpty());
    node.setDisabled(false);
    EXPECT_EQ(rows("playlists:pl/items/5").value().rowsCount(), 3);
}

TEST_F(CMWorkerTest, aRowIsMatchedByTitleFromTheGivenRowOn) {
    EXPECT_EQ(match("playlists:pl/items/5", "ALPHA", 0).value(), 0);
    EXPECT_EQ(match("playlists:pl/items/5", "alpha", 1).value(), 2);
    EXPECT_EQ(match("playlists:pl/items/5", "eta", 0).value(), 1);
    EXPECT_EQ(match("playlists:pl/items/5", "gamma", 0).value(), -1);
    EXPECT_EQ(match("playlists:pl/items/5", "alpha", 3).value(), -1);
    EXPECT_EQ(match("playlists:pl/items/5", "beta", -7).value(), 1);
}

TEST_F(CMWorkerTest, aMatchOverRowsThatNoNodeSendsIsAnError) {
    node.mood = MoodyNode::Mood::Silent;
    EXPECT_EQ(match("playlists:pl/items/5", "x", 0).error().name(), CMError::NotAnswered());
}

TEST_F(CMWorkerTest, getDataAnswersTheNodesOwnRoles) {
    node.setTitle(TrString(QString("Mix")));
    const CMReplyData<OrvoRoles> reply;
    root.getDataRequest(
        CMGetDataRequest(CMPath("playlists:pl/items/5?a=1"), {"title", "path", "id"}, reply));
    EXPECT_EQ(reply.value().toHash(),
              QVariantHash({{"title", "Mix"}, {"path", "playlists:pl/items/5?a=1"}}));
}

TEST_F(CMWorkerTest, aPlainWorkerHasNoValues) {
    EXPECT_FALSE(root.getValue(CMPath("playlists:pl/items/5")).isValid());
    const CMVoidReply reply;
    root.setValue(CMPath("playlists:pl/items/5"), 1, reply);
    EXPECT_EQ(reply.error().name(), CMError::NoSuchNode());
}

TEST_F(CMWorkerTest, aTakenPrefixStaysWithItsFirstWorker) {
    LogCapture log("Platform");
    {
        const CMNodesWorker second({}, "playLISTS");
        EXPECT_EQ(root.worker("playlists"), &worker);
        EXPECT_EQ(log.errors(),
                  QStringList({"prefix playlists is taken, its second worker gets no requests"}));
    }
    EXPECT_EQ(root.worker("playlists"), &worker)
        << "the second one's end takes nothing from the first";
}

TEST(CMRootWorker, aWorkersEndFreesItsPrefix) {
    CMRootWorker root;
    {
        const CMNodesWorker first({}, "A");
        EXPECT_EQ(root.worker("a"), &first);
    }
    EXPECT_EQ(root.worker("a"), nullptr);
    const CMNodesWorker next({}, "A");
    EXPECT_EQ(root.worker("a"), &next);
}

TEST(CMRootWorker, workersMayOutliveTheRoot) {
    auto root = std::make_unique<CMRootWorker>();
    auto worker = std::make_unique<CMNodesWorker>(QHash<QString, QVariant>(), "A");
    root.reset();
    EXPECT_EQ(CMRootWorker::instance(), nullptr);
    worker.reset();
}

using CMRootWorkerDeathTest = DeathTest;

TEST_F(CMRootWorkerDeathTest, thereIsExactlyOneRoot) {
    EXPECT_DEATH(
        {
            fatalToStderr();
            CMRoot();
        },
        "FATAL <CMRoot\\(\\) before the host has made one>");
    CMRootWorker root;
    EXPECT_DEATH(
        {
            fatalToStderr();
            CMRootWorker second;
        },
        "FATAL <a second CMRootWorker>");
}

TEST_F(CMRootWorkerDeathTest, aRequestThatIsNowhereAnsweredAndHasNoReplyIsFatal) {
    CMRootWorker root;
    EXPECT_DEATH(
        {
            fatalToStderr();
            root.setDataRequest(CMSetDataRequest(CMPath("nobody:a"), QVariant()));
        },
        "FATAL <a request without a reply must be answered: nobody:a>");
}
