#include <QJsonArray>

#include "CMNode.h"
#include "MenuFixture.h"
#include "OrvoPlayListPaths.h"
#include "playlistUI/MenuNode.h"
#include "PlayListWorker.h"

namespace {

struct Entry {
    const char* path;
    const char* closes; // the menu's own path, empty when it stays open
};

const Entry entries[] = {
    {"playlists:pl/context?action=play&plid=1", "playlists:pl/context"},
    {"playlists:pl/context?action=rename&plid=1", ""},
    {"playlists:pl/context?action=shuffle&mode=1&plid=1", ""},
    {"playlists:pl/context?action=repeat&mode=1&plid=1", ""},
    {"playlists:pl/context?action=delFromCl&clid=1&plid=1", "playlists:pl/context"},
    {"playlists:pl/context?action=clearPl&plid=1", "playlists:pl/context"},
    {"playlists:pl/context?action=delPL&plid=1", "playlists:pl/context"},
    {"playlists:pl/trackContext?action=moveTr&from=0&plid=1", "playlists:pl/trackContext"},
    {"playlists:pl/trackContext?action=removeTr&fromplid=1&seqnum=0", "playlists:pl/trackContext"},
    {"playlists:pq/context?action=playPl&plid=0", "playlists:pq/context"},
    {"playlists:pq/context?action=clearPl&plid=0", "playlists:pq/context"},
    {"playlists:cl/context?action=delete&clid=1", "playlists:cl/context"},
    {"playlists:pl/addToPlaylist?action=createPl", ""},
    {"playlists:pl/selectAddMode?mode=2&plid=1", "playlists:pl/selectAddMode"},
    {"playlists:pl/selectAddMode?action=cmnode&mode=2&plid=1", "playlists:pl/selectAddMode"},
    {"playlists:pl/selectAddMode?action=rename&mode=2&plid=1", "playlists:pl/selectAddMode"},
    {"playlists:cl/addToCollection?action=createCl", ""},
    {"playlists:cl/addToCollection?action=addItem&clid=1&plid=1", "playlists:cl/addToCollection"},
};

OrvoActionReply commandReply() {
    OrvoEvent event;
    event.setRowsType(7);
    event.setPath(CMPath("playlists:elsewhere"));
    OrvoRoles result;
    result.setValue(OrvoValue::fromI32(42));
    OrvoActionReply reply;
    reply.setXclass("OrvoActionReply");
    reply.setResult(result);
    reply.setEvents({event});
    reply.setAttribute("future", "kept");
    return reply;
}

QJsonObject expectedReply(const QString& closes) {
    QJsonArray events = {QJsonObject{{"rowsType", 7}, {"path", "playlists:elsewhere"}}};
    if (!closes.isEmpty())
        events.append(QJsonObject{{"rowsType", 1}, {"path", closes}});
    return {{"xclass", "OrvoActionReply"},
            {"result", QJsonObject{{"value", QJsonObject{{"i32", 42}}}}},
            {"events", events},
            {"future", "kept"}};
}

const CMError refusal("Refused", TrString("Controller", "No %1.", {"luck"}),
                      TrString("Controller", "Sorry"));

void expectRefusal(const CMReply<QVariant>& reply, const char* path) {
    EXPECT_TRUE(reply.isError()) << path;
    EXPECT_EQ(reply.error().name(), refusal.name()) << path;
    EXPECT_EQ(reply.error().message(), refusal.message()) << path;
    EXPECT_EQ(reply.error().title(), refusal.title()) << path;
    EXPECT_TRUE(reply.value().isNull()) << path;
}

// The reply of the first request; one that no caller waits for when there is none.
CMReply<QVariant> takeReply(QList<CMSetDataRequest>& requests) {
    EXPECT_FALSE(requests.isEmpty()) << "nothing was asked";
    return requests.isEmpty() ? CMReply<QVariant>() : requests.takeFirst().reply();
}

class MenuReplyTest : public MenuAloneFixture {
protected:
    // Chooses an entry and leaves the command unanswered.
    CMReply<QVariant> pending(const char* path) {
        module.requests.clear();
        const CMReply<QVariant> reply;
        EXPECT_TRUE(choose(path, QVariantHash{{"string", "1"}}, reply)) << path;
        EXPECT_EQ(module.requests.size(), 1) << path;
        EXPECT_FALSE(reply.isFinished()) << path;
        return reply;
    }
    CMReply<QVariant> command() { return takeReply(module.requests); }
    void answerCommand(const QVariant& value) { command().setValue(value); }
    void refuseCommand() { command().setError(refusal); }
};

} // namespace

TEST_F(MenuReplyTest, aSuccessClosesTheMenuWhereItShouldAndKeepsTheRestOfTheAnswer) {
    for (const Entry& entry : entries) {
        const CMReply<QVariant> reply = pending(entry.path);
        answerCommand(commandReply().toVariant());
        ASSERT_TRUE(reply.isFinished()) << entry.path;
        EXPECT_FALSE(reply.isError()) << entry.path;
        EXPECT_EQ(RowText(OrvoHash(reply.value().toHash())), RowText(expectedReply(entry.closes)))
            << entry.path;
    }
}

TEST_F(MenuReplyTest, anOpenMenusAnswerIsTheCommandsWhateverItIs) {
    for (const Entry& entry : entries) {
        const CMReply<QVariant> reply = pending(entry.path);
        answerCommand(QVariant("text"));
        ASSERT_TRUE(reply.isFinished()) << entry.path;
        if (QString(entry.closes).isEmpty())
            EXPECT_EQ(reply.value(), QVariant("text")) << entry.path;
        else
            EXPECT_EQ(OrvoActionReply(reply.value().toHash()).events().size(), 1) << entry.path;
    }
}

TEST_F(MenuReplyTest, aRefusalIsPassedOnUnchanged) {
    for (const Entry& entry : entries) {
        const CMReply<QVariant> reply = pending(entry.path);
        refuseCommand();
        expectRefusal(reply, entry.path);
    }
}

TEST_F(MenuReplyTest, aCommandThatNoModuleAnswersIsAnsweredAsSuch) {
    for (const Entry& entry : entries) {
        const CMReply<QVariant> reply = pending(entry.path);
        module.requests.clear();
        EXPECT_TRUE(reply.isError()) << entry.path;
        EXPECT_EQ(reply.error().name(), CMError::NotAnswered()) << entry.path;
    }
}

TEST_F(MenuReplyTest, theFirstAnswerCounts) {
    for (const Entry& entry : entries) {
        const CMReply<QVariant> reply = pending(entry.path);
        const CMReply<QVariant> answer = command();
        answer.setError(refusal);
        answer.setValue(commandReply().toVariant());
        expectRefusal(reply, entry.path);
    }
}

TEST_F(MenuReplyTest, aRequesterThatIsGoneIsNoHindrance) {
    for (const Entry& entry : entries) {
        pending(entry.path);
        answerCommand(commandReply().toVariant());
        pending(entry.path);
        refuseCommand();
    }
}

TEST_F(MenuReplyTest, severalUnansweredCommandsAreToldApart) {
    const CMReply<QVariant> closing = pending("playlists:pl/context?action=play&plid=1");
    const CMReply<QVariant> first = command();
    const CMReply<QVariant> open = pending("playlists:pl/context?action=rename&plid=1");
    answerCommand(commandReply().toVariant());
    EXPECT_FALSE(closing.isFinished());
    EXPECT_EQ(RowText(OrvoHash(open.value().toHash())), RowText(expectedReply("")));
    first.setValue(commandReply().toVariant());
    EXPECT_EQ(RowText(OrvoHash(closing.value().toHash())),
              RowText(expectedReply("playlists:pl/context")));
}

TEST_F(MenuReplyTest, withoutTheNodeTheAnswerComesAllTheSame) {
    QList<CMReply<QVariant>> answered;
    QList<CMReply<QVariant>> refused;
    QList<CMReply<QVariant>> dropped;
    QList<CMReply<QVariant>> commands;
    for (const Entry& entry : entries) {
        for (QList<CMReply<QVariant>>* replies : {&answered, &refused, &dropped}) {
            replies->append(pending(entry.path));
            commands.append(command());
        }
    }
    destroyNodes();
    for (int i = 0; !commands.isEmpty(); ++i) {
        commands.takeFirst().setValue(commandReply().toVariant());
        EXPECT_TRUE(answered.at(i).isFinished() && !answered.at(i).isError()) << entries[i].path;
        // There is no menu left to close.
        EXPECT_EQ(RowText(OrvoHash(answered.at(i).value().toHash())), RowText(expectedReply("")))
            << entries[i].path;
        commands.takeFirst().setError(refusal);
        expectRefusal(refused.at(i), entries[i].path);
        commands.removeFirst();
        EXPECT_EQ(dropped.at(i).error().name(), CMError::NotAnswered()) << entries[i].path;
    }
}

TEST_F(MenuReplyTest, anyFinishedReplyCanBeWatched) {
    auto* node = qobject_cast<MenuNode*>(nodes.find(OrvoPlayListPqContextPath()));
    ASSERT_NE(node, nullptr);
    const CMReply<QVariant> command;
    command.setValue(commandReply().toVariant());
    const CMReply<QVariant> reply;
    node->watchReplyFinished(
        command, CMSetDataRequest(CMPath("playlists:pq/context?action=clearPl"), {}, reply));
    EXPECT_EQ(RowText(OrvoHash(reply.value().toHash())),
              RowText(expectedReply("playlists:pq/context")));
}

namespace {

// The whole module, and a media source that takes its time.
class LateSourceTest : public MenuFixture {
protected:
    void SetUp() override {
        files.keepPrepareRequests = true;
        createPlayList("Mix");
    }
    CMReply<QVariant> add() {
        const CMReply<QVariant> reply;
        root()->setDataRequest(CMSetDataRequest(
            CMPath("playlists:pl/selectAddMode?action=cmnode&itemid=files%3Aa&mode=2&plid=1"), {},
            reply));
        return reply;
    }
    CMReply<QVariant> source() { return takeReply(files.requests); }

    RecordingWorker files{"Files"};
};

} // namespace

TEST_F(LateSourceTest, theMenuClosesWhenTheSourceHasAnsweredAndTheTrackIsThere) {
    const CMReply<QVariant> reply = add();
    turnEventLoop();
    EXPECT_FALSE(reply.isFinished());
    EXPECT_EQ(titles(1), QStringList());
    source().setValue(QVariantList{makeItem("a").toVariant()});
    ASSERT_TRUE(reply.isFinished());
    EXPECT_EQ(titles(1), QStringList("a"));
    EXPECT_EQ(RowText(OrvoHash(reply.value().toHash())),
              Expected::doneAndClosed(Expected::flag(true), "playlists:pl/selectAddMode"));
}

TEST_F(LateSourceTest, whatTheSourceCannotPrepareIsRefusedWithoutClosing) {
    const QString none =
        "Could not add items to playlist. No items were added. (No playitem found.)";
    const CMReply<QVariant> failing = add();
    source().setError(refusal);
    EXPECT_EQ(failing.error().message().toString(), none);
    const CMReply<QVariant> dropping = add();
    files.requests.clear();
    EXPECT_EQ(dropping.error().message().toString(), none);
    EXPECT_TRUE(dropping.value().isNull());
}

TEST_F(LateSourceTest, aMenuThatIsGoneBeforeTheSourceAnswersLosesNothing) {
    const CMReply<QVariant> reply = add();
    auto* node =
        qobject_cast<CMUINode*>(worker()->nodes()->find(OrvoPlayListPlSelectAddModePath()));
    ASSERT_NE(node, nullptr);
    node->deleteLater();
    turnEventLoop();
    source().setValue(QVariantList{makeItem("a").toVariant()});
    EXPECT_EQ(titles(1), QStringList("a"));
    EXPECT_EQ(RowText(OrvoHash(reply.value().toHash())), Expected::done(Expected::flag(true)));
}

TEST_F(LateSourceTest, aTargetDeletedMeanwhileIsRefused) {
    const CMReply<QVariant> reply = add();
    EXPECT_FALSE(select("playlists:pl/context?action=delPL&plid=1").failed);
    source().setValue(QVariantList{makeItem("a").toVariant()});
    EXPECT_EQ(
        reply.error().message().toString(),
        "Could not add items to playlist. No items were added. (There is no playlist with this ID. (1))");
}
