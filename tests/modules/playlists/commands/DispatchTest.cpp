#include <QSet>
#include <QSignalSpy>

#include "CMRequestGroup.h"
#include "CommandFixture.h"
#include "Controller.h"
#include "Database.h"
#include "PlayListManager.h"

namespace {

// The controller alone over a real store, to see what it leaves unanswered.
class DispatchTest : public CommandFixture {
protected:
    Database database{0, false};
    PlayListManager manager{&database};
    Controller controller{nullptr, &manager};

    struct Handled {
        bool accepted = false;
        CMReply<QVariant> reply;
    };
    Handled handle(const CMPath& path, const QVariant& value) {
        Handled result;
        result.accepted = controller.handleSetData(CMSetDataRequest(path, value, result.reply));
        return result;
    }
};

TEST_F(DispatchTest, seventeenPathsAreCommandsAndAnswerEvenToNothing) {
    ASSERT_EQ(17, commands().size());
    for (const Command& command : commands()) {
        const Path path = command.path;
        for (const QVariant& value :
             {QVariant(), QVariant("text"), QVariant(5), QVariant(QVariantList{1, "x"}),
              QVariant(QVariantHash{
                  {"plid", QVariantHash()}, {"items", 7}, {"name", QVariantList()}})}) {
            const Handled handled = handle(path(), value);
            EXPECT_TRUE(handled.accepted) << qPrintable(path().toString());
            EXPECT_TRUE(handled.reply.isFinished()) << qPrintable(path().toString());
            // Prepare never fails; nothing else does anything on such values.
            EXPECT_EQ(path != OrvoPlayListPlPrepareItemsPath, handled.reply.isError())
                << qPrintable(path().toString());
        }
    }
    EXPECT_TRUE(manager.getAllPlayList().isEmpty());
    EXPECT_TRUE(manager.getAllCollection().isEmpty());
}

TEST_F(DispatchTest, everyOtherPathIsLeftUnanswered) {
    QSet<QString> paths;
    for (const Command& command : commands())
        paths.insert(command.path().toString());
    ASSERT_EQ(commands().size(), paths.size());
    int others = 0;
    for (const OrvoPathRow& row : orvoPlayListPaths()) {
        if (paths.contains(row.path))
            continue;
        ++others;
        const Handled handled =
            handle(CMPath(QString(row.path)), QVariantHash{{"plid", 0}, {"name", "x"}});
        EXPECT_FALSE(handled.accepted) << row.function;
        EXPECT_FALSE(handled.reply.isFinished()) << row.function;
    }
    EXPECT_EQ(orvoPlayListPaths().size() - paths.size(), others);
    for (const char* path :
         {"playlists:pl/items/1", "playlists:pl", "playlists:", "files:pl/create", "", "pl/create"})
        EXPECT_FALSE(handle(CMPath(QString(path)), QVariantHash{{"name", "x"}}).accepted) << path;
}

TEST_F(DispatchTest, aPathIsACommandOnlyWholeAndWithoutParameters) {
    for (const Command& command : commands()) {
        CMPath withParameter = command.path();
        withParameter.addParam("plid", "1");
        EXPECT_FALSE(handle(withParameter, QVariant()).accepted)
            << qPrintable(withParameter.toString());
        EXPECT_FALSE(handle(command.path() + QString("1"), QVariant()).accepted);
    }
}

TEST_F(DispatchTest, whatIsRoutedIsTraced) {
    const LogCapture log("PlayLists");
    handle(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 7}});
    const QStringList traces = log.texts("TRACE");
    EXPECT_EQ(1, traces.filter(QRegularExpression("^Enter .*Controller::handleSetData")).size());
    EXPECT_EQ(1, traces.filter("routing playlists:pl/delete, value: {\"plid\":7}").size());
    EXPECT_EQ(1, traces.filter(QRegularExpression("^Enter .*Controller::plDelete")).size());
    EXPECT_EQ(1,
              traces
                  .filter(QRegularExpression(
                      "^Enter .*Controller::setReply.*res: 0 msg: "
                      "Could not delete playlist\\. There is no playlist with this ID\\. \\(7\\)$"))
                  .size())
        << ::testing::PrintToString(traces);
}

TEST_F(DispatchTest, aCommandSucceedsWithAnActionReplyThatHoldsTrue) {
    handle(OrvoPlayListPlCreatePath(), QVariantHash{{"name", "Party"}});
    const Handled handled =
        handle(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", 1}, {"name", "Feast"}});
    ASSERT_FALSE(handled.reply.isError());
    const QVariantHash expected{{"xclass", "OrvoActionReply"},
                                {"result", QVariantHash{{"value", QVariantHash{{"bool", true}}}}}};
    EXPECT_EQ(expected, handled.reply.value().toHash());
}

TEST_F(DispatchTest, creatingAnswersWithTheNewIdAndFailingWithAnErrorOnly) {
    for (const auto path : {OrvoPlayListPlCreatePath, OrvoPlayListClCreatePath}) {
        const Handled first = handle(path(), QVariantHash{{"name", "one"}});
        const Handled second = handle(path(), QVariantHash{{"name", "two"}});
        const QVariantHash expected{{"xclass", "OrvoActionReply"},
                                    {"result", QVariantHash{{"value", QVariantHash{{"i32", 2}}}}}};
        EXPECT_EQ(1, OrvoActionReply(first.reply.value().toHash()).result().value().i32());
        EXPECT_EQ(expected, second.reply.value().toHash());
        const Handled failed = handle(path(), QVariantHash{{"name", ""}});
        EXPECT_TRUE(failed.reply.isError());
        EXPECT_FALSE(failed.reply.value().isValid());
    }
}

TEST_F(DispatchTest, creatingTracesItsValueWithTheReply) {
    const LogCapture log("PlayLists");
    handle(OrvoPlayListPlCreatePath(), QVariantHash{{"name", "Party"}});
    handle(OrvoPlayListClCreatePath(), QVariantHash{{"name", ""}});
    const QStringList traces =
        log.texts("TRACE").filter(QRegularExpression("^Enter .*Controller::setReplyInt"));
    ASSERT_EQ(2, traces.size());
    EXPECT_TRUE(traces.at(0).endsWith("res: 1 val: 1 msg: Playlist created successfully. (Party)"));
    EXPECT_TRUE(traces.at(1).endsWith(
        "res: 0 val: -1 msg: Could not create collection. Please provide a non-empty "
        "string as field. (name)"));
}

TEST_F(DispatchTest, addingByPathStaysUnansweredUntilTheSourceAnswers) {
    RecordingWorker files(QStringLiteral("Files"));
    files.keepPrepareRequests = true;
    handle(OrvoPlayListPlCreatePath(), QVariantHash{{"name", "Party"}});
    const Handled handled = handle(OrvoPlayListPlAddItemsPath(),
                                   QVariantHash{{"plid", 1}, {"items", QVariantList{"files:a"}}});
    EXPECT_TRUE(handled.accepted);
    EXPECT_FALSE(handled.reply.isFinished());
    QCoreApplication::processEvents();
    EXPECT_FALSE(handled.reply.isFinished());
    files.requests.first().reply().setValue(itemHashes({"a"}));
    EXPECT_TRUE(handled.reply.isFinished());
    EXPECT_FALSE(handled.reply.isError());
}

TEST_F(DispatchTest, creatingAndDeletingAPlaylistIsAnnouncedAfterTheChangeAndBeforeTheReply) {
    CMReply<QVariant> reply;
    QStringList order;
    reply.onFinished([&order] { order.append("reply"); });
    QObject::connect(&controller, &Controller::playlistCreated, [&](const int& plid) {
        order.append(
            QString("created %1 %2").arg(plid).arg(manager.getPlayListByUid(plid) != nullptr));
    });
    QObject::connect(&controller, &Controller::playlistDeleted, [&](const int& plid) {
        order.append(
            QString("deleted %1 %2").arg(plid).arg(manager.getPlayListByUid(plid) != nullptr));
    });
    controller.handleSetData(
        CMSetDataRequest(OrvoPlayListPlCreatePath(), QVariantHash{{"name", "x"}}, reply));
    EXPECT_EQ(QStringList({"created 1 1", "reply"}), order);
    handle(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 1}});
    EXPECT_EQ(QStringList({"created 1 1", "reply", "deleted 1 0"}), order);
}

TEST_F(DispatchTest, nothingIsAnnouncedWithoutAChangeAndForCollections) {
    QSignalSpy created(&controller, &Controller::playlistCreated);
    QSignalSpy deleted(&controller, &Controller::playlistDeleted);
    handle(OrvoPlayListPlCreatePath(), QVariantHash{{"name", ""}});
    handle(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 0}});
    handle(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 5}});
    handle(OrvoPlayListClCreatePath(), QVariantHash{{"name", "Box"}});
    handle(OrvoPlayListClDeletePath(), QVariantHash{{"clid", 1}});
    EXPECT_EQ(0, created.size());
    EXPECT_EQ(0, deleted.size());
}

TEST_F(DispatchTest, errorsJoinPrefixReasonAndDetail) {
    EXPECT_EQ(QString("A B"), Controller::buildErrMsg("A", "B", ""));
    EXPECT_EQ(QString("A B"), Controller::buildErrMsg("A", "B", QString()));
    EXPECT_EQ(QString("A B (C)"), Controller::buildErrMsg("A", "B", "C"));
}

TEST_F(DispatchTest, successesNameTheirObjectInParentheses) {
    EXPECT_EQ(QString("A (B)"), Controller::buildOkMsg("A", "B", ""));
    EXPECT_EQ(QString("A B (C)"), Controller::buildOkMsg("A", "B", "C"));
}

TEST_F(DispatchTest, argumentsAreFilledInOneAfterTheOther) {
    // For callers that pass texts with a place marker of their own: it takes the next argument.
    EXPECT_EQ(QString("[B] B (C)"), Controller::buildErrMsg("[%2]", "B", "C"));
    EXPECT_EQ(QString("A (%1)"), Controller::buildOkMsg("A", "%1"));
    EXPECT_EQ(QString("A B (%3)"), Controller::buildErrMsg("A", "B", "%3"));
}

TEST_F(DispatchTest, checksPassOrSayWhy) {
    QString msg = "kept";
    EXPECT_TRUE(Controller::checkNonemptyString("x", "name", "No.", msg));
    EXPECT_TRUE(Controller::checkPlayListId(0, "No.", msg));
    EXPECT_TRUE(Controller::checkPlayListId(-2, "No.", msg));
    EXPECT_TRUE(Controller::checkPlayList(manager.getPlayQueue(), 0, "No.", msg));
    EXPECT_EQ(QString("kept"), msg);

    const LogCapture log("PlayLists");
    EXPECT_FALSE(Controller::checkNonemptyString("", "name", "No.", msg));
    EXPECT_EQ(QString("No. Please provide a non-empty string as field. (name)"), msg);
    EXPECT_EQ(QStringList(), log.lines());
    EXPECT_FALSE(Controller::checkPlayListId(-1, "No.", msg));
    EXPECT_EQ(QString("No. Cannot find playlist with invalid ID."), msg);
    EXPECT_FALSE(Controller::checkPlayList(nullptr, 7, "No.", msg));
    EXPECT_EQ(QString("No. There is no playlist with this ID. (7)"), msg);
    EXPECT_EQ(QStringList({"ERROR Cannot find playlist with invalid ID : -1",
                           "ERROR There is no playlist with ID : 7"}),
              log.lines());
}

TEST_F(DispatchTest, theSlotOfAFinishedGroupKnowsItsSender) {
    const LogCapture log("PlayLists");
    EXPECT_TRUE(QMetaObject::invokeMethod(&controller, "on_prepareItemsGroup_finished",
                                          Qt::DirectConnection));
    EXPECT_EQ(QStringList("Called without request group as sender"), log.errors());
}

class DispatchDeathTest : public DispatchTest {
protected:
    // The log has threads of its own, which a mere fork would lose.
    void SetUp() override { ::testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(DispatchDeathTest, aGroupThatWasNeverRememberedEndsTheProcess) {
    CMRequestGroup stranger;
    ASSERT_TRUE(QObject::connect(&stranger, SIGNAL(finished()), &controller,
                                 SLOT(on_prepareItemsGroup_finished())));
    EXPECT_EXIT(stranger.checkAndCallCallback(), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(DispatchDeathTest, aCommandWithoutAReplyEndsTheProcess) {
    EXPECT_EXIT(controller.handleSetData(
                    CMSetDataRequest(OrvoPlayListPlCreatePath(), QVariantHash{{"name", "x"}})),
                ::testing::KilledBySignal(SIGABRT), "");
}

} // namespace
