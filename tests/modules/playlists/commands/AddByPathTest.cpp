#include "CommandFixture.h"

namespace {

// Items that other modules prepare, and what happens until they have.
class AddByPathTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    static QVariantHash toParty(const QStringList& paths) {
        return {{"plid", 1}, {"items", paths}};
    }
    static CMReply<QVariant> prepareReply(const RecordingWorker& source, int request = 0) {
        return source.requests.at(request).reply();
    }

    FakeModules others;
};

TEST_F(AddByPathTest, everyOwnerIsAskedOnceInTheOrderFirstSeen) {
    for (const QString& title : QString("d f").split(' '))
        offer(others.files, "files:" + title, title);
    for (const QString& title : QString("e g").split(' '))
        offer(others.radio, "radio:" + title, title);
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlAddItemsPath(), toParty({"radio:e", "files:d", "radio:g", "files:f"}));
    EXPECT_EQ(QString("a b c e g d f"), stored(1));
    ASSERT_EQ(1, others.radio.requests.size());
    EXPECT_EQ(QString("radio:prepareItems"), others.radio.requests.first().path().toString());
    EXPECT_EQ(QStringList({"radio:e", "radio:g"}),
              others.radio.requests.first().value().toStringList());
    ASSERT_EQ(1, others.files.requests.size());
    EXPECT_EQ(QString("files:prepareItems"), others.files.requests.first().path().toString());
    EXPECT_EQ(QStringList({"files:d", "files:f"}),
              others.files.requests.first().value().toStringList());
    EXPECT_EQ(QStringList({"requestPrefix: radio call: prepareItems",
                           "requestPrefix: files call: prepareItems"}),
              log.texts("DEBUG").filter("requestPrefix: "));
    EXPECT_TRUE(log.contains("TRACE", "items: radio:e, radio:g"));
    EXPECT_TRUE(log.contains("TRACE", "items: files:d, files:f"));
}

TEST_F(AddByPathTest, theOrderOfAskingHoldsWhicheverModuleAnswersFirst) {
    others.files.keepPrepareRequests = true;
    others.radio.keepPrepareRequests = true;
    const LateAnswer answer =
        sendLate(OrvoPlayListPlAddItemsPath(), toParty({"files:d", "radio:e", "files:f"}));
    prepareReply(others.radio).setValue(itemHashes({"e"}));
    EXPECT_FALSE(answer->answered);
    EXPECT_EQ(QString("a b c"), stored(1));
    prepareReply(others.files).setValue(itemHashes({"d", "f"}));
    EXPECT_TRUE(answer->answered);
    EXPECT_FALSE(answer->failed);
    EXPECT_TRUE(answer->value.toHash() ==
                (QVariantHash{{"xclass", "OrvoActionReply"},
                              {"result", QVariantHash{{"value", QVariantHash{{"bool", true}}}}}}));
    EXPECT_EQ(QString("a b c d f e"), stored(1));
}

TEST_F(AddByPathTest, pathsKeepTheirParametersAndOddLetters) {
    const QString path = "files:My%20Music/100%25?seqnum=7";
    offer(others.files, path, "d");
    expectDone(OrvoPlayListPlAddItemsPath(), toParty({path}));
    EXPECT_EQ(QString("a b c d"), stored(1));
    expectDone(
        OrvoPlayListPlAddItemsPath(),
        QVariantHash{{"plid", 1}, {"items", QVariantList{QVariant::fromValue(CMPath(path))}}});
    EXPECT_EQ(QString("a b c d d"), stored(1));
}

TEST_F(AddByPathTest, itemsOfPlaylistsAreCopiedByTheirPath) {
    offer(others.files, "files:d", "d");
    expectDone(
        OrvoPlayListPlAddItemsPath(),
        QVariantHash{{"plid", 2},
                     {"items", QVariantList{"playlists:item/3", "files:d", "playlists:item/1"}}});
    EXPECT_EQ(QString("c a d"), stored(2));
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(AddByPathTest, anErrorOfOneOwnerLeavesTheItemsOfTheOthers) {
    others.files.keepPrepareRequests = true;
    offer(others.radio, "radio:e", "e");
    const LogCapture log("PlayLists");
    const LateAnswer answer =
        sendLate(OrvoPlayListPlAddItemsPath(), toParty({"files:d", "radio:e"}));
    prepareReply(others.files)
        .setError(CMError("Offline", TrString(QString("The disk is gone.")), TrString()));
    EXPECT_TRUE(answer->answered);
    EXPECT_FALSE(answer->failed);
    EXPECT_EQ(QString("a b c e"), stored(1));
    EXPECT_EQ(QStringList("replay error: Offline"), log.errors());
}

TEST_F(AddByPathTest, aPrefixOfNoModuleIsAnErrorAmongTheReplies) {
    offer(others.radio, "radio:e", "e");
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlAddItemsPath(), toParty({"attic:x", "radio:e", "", "no path"}));
    EXPECT_EQ(QString("a b c e"), stored(1));
    EXPECT_EQ(QStringList({"replay error: NoSuchNode", "replay error: NoSuchNode"}), log.errors());
}

TEST_F(AddByPathTest, nothingGatheredIsAnError) {
    const LogCapture log("PlayLists");
    EXPECT_EQ(QString("Could not add items to playlist. No items were added. (No playitem found.)"),
              refusal(OrvoPlayListPlAddItemsPath(), toParty({"attic:x"})));
    EXPECT_EQ(QStringList({"replay error: NoSuchNode", "no playitem found"}), log.errors());
    EXPECT_EQ(QString("Could not add items to playlist. No items were added. (No playitem found.)"),
              refusal(OrvoPlayListPlAddItemsPath(), toParty({"files:unknown"})));
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(AddByPathTest, answersThatAreNoListOfItemsAddNothing) {
    others.files.keepPrepareRequests = true;
    int request = 0;
    for (const QVariant& nonsense :
         {QVariant(), QVariant("text"), QVariant(5), QVariant(QVariantHash{{"title", "x"}}),
          QVariant(QVariantList{1, "x", QVariantList(), QVariantHash()})}) {
        const LateAnswer answer = sendLate(OrvoPlayListPlAddItemsPath(), toParty({"files:d"}));
        prepareReply(others.files, request++).setValue(nonsense);
        EXPECT_TRUE(answer->failed);
        EXPECT_EQ(
            QString("Could not add items to playlist. No items were added. (No playitem found.)"),
            answer->message());
    }
}

TEST_F(AddByPathTest, aModuleThatNeverAnswersHoldsUpNoOtherRequest) {
    others.files.keepPrepareRequests = true;
    offer(others.radio, "radio:e", "e");
    const LateAnswer waiting =
        sendLate(OrvoPlayListPlAddItemsPath(), toParty({"radio:e", "files:d"}));
    expectDone(OrvoPlayListPlAddItemsPath(), toParty({"radio:e"}));
    expectDone(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", 1}, {"name", "Feast"}});
    expectDone(OrvoPlayListPlRemoveItemsPath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{0}}});
    EXPECT_FALSE(waiting->answered);
    EXPECT_EQ(QString("b c e"), stored(1));
    // Dropping the request is an answer as well.
    others.files.requests.clear();
    EXPECT_TRUE(waiting->answered);
    EXPECT_FALSE(waiting->failed);
    EXPECT_EQ(QString("b c e e"), stored(1));
}

TEST_F(AddByPathTest, anOwnerThatDropsTheOnlyRequestMakesItFail) {
    others.files.keepPrepareRequests = true;
    const LogCapture log("PlayLists");
    const LateAnswer waiting = sendLate(OrvoPlayListPlAddItemsPath(), toParty({"files:d"}));
    others.files.requests.clear();
    EXPECT_TRUE(waiting->failed);
    EXPECT_EQ(QString("Could not add items to playlist. No items were added. (No playitem found.)"),
              waiting->message());
    EXPECT_EQ(QStringList({"replay error: NotAnswered", "no playitem found"}), log.errors());
}

TEST_F(AddByPathTest, pendingGroupsAreToldApart) {
    others.files.keepPrepareRequests = true;
    const LateAnswer first = sendLate(OrvoPlayListPlAddItemsPath(), toParty({"files:d"}));
    const LateAnswer second =
        sendLate(OrvoPlayListPlAddItemsPath(), {{"plid", 2}, {"items", QVariantList{"files:e"}}});
    const LateAnswer third =
        sendLate(OrvoPlayListPlAddItemsPath(), {{"plid", 0}, {"items", QVariantList{"files:f"}}});
    prepareReply(others.files, 1).setValue(itemHashes({"e"}));
    EXPECT_TRUE(second->answered && !first->answered && !third->answered);
    prepareReply(others.files, 2).setError(CMError(TrString(QString("no"))));
    EXPECT_TRUE(third->failed && !first->answered);
    prepareReply(others.files, 0).setValue(itemHashes({"d"}));
    EXPECT_TRUE(first->answered && !first->failed);
    EXPECT_EQ(QString("a b c d"), stored(1));
    EXPECT_EQ(QString("e"), stored(2));
    EXPECT_EQ(QString(), stored(0));
    // A second answer changes nothing.
    prepareReply(others.files, 0).setValue(itemHashes({"x"}));
    EXPECT_EQ(QString("a b c d"), stored(1));
    expectInvariants();
}

TEST_F(AddByPathTest, aTargetThatIsDeletedMeanwhileIsAnError) {
    others.files.keepPrepareRequests = true;
    const LateAnswer waiting = sendLate(OrvoPlayListPlAddItemsPath(), toParty({"files:d"}));
    expectDone(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 1}});
    const LogCapture log("PlayLists");
    prepareReply(others.files).setValue(itemHashes({"d"}));
    EXPECT_EQ(
        QString(
            "Could not add items to playlist. No items were added. (There is no playlist with this ID. (1))"),
        waiting->message());
    EXPECT_EQ(QStringList("Cannot find playlist with plid: 1"), log.errors());
    EXPECT_EQ(QStringList("0"), query("SELECT count(*) FROM items"));
}

TEST_F(AddByPathTest, aNewPlaylistWithTheNumberOfTheTargetGetsNothing) {
    others.files.keepPrepareRequests = true;
    const LateAnswer waiting =
        sendLate(OrvoPlayListPlAddItemsPath(), {{"plid", 2}, {"items", QVariantList{"files:d"}}});
    expectDone(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 2}});
    ASSERT_EQ(2, createPlayList("Another"));
    const LogCapture log("PlayLists");
    prepareReply(others.files).setValue(itemHashes({"d"}));
    EXPECT_EQ(
        QString(
            "Could not add items to playlist. No items were added. (There is no playlist with this ID. (2))"),
        waiting->message());
    EXPECT_EQ(QStringList("Cannot find playlist with plid: 2"), log.errors());
    EXPECT_EQ(QString(), stored(2));
    expectInvariants();
}

TEST_F(AddByPathTest, aSourcePlaylistThatIsDeletedMeanwhileHasGivenItsItems) {
    others.files.keepPrepareRequests = true;
    const LateAnswer waiting = sendLate(
        OrvoPlayListPlAddItemsPath(),
        {{"plid", 2}, {"fromPlid", 1}, {"items", QVariantList{"playlists:item/2", "files:d"}}});
    expectDone(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 1}});
    prepareReply(others.files).setValue(itemHashes({"d"}));
    EXPECT_FALSE(waiting->failed);
    EXPECT_EQ(QString("b d"), stored(2));
    EXPECT_EQ(QStringList({"0", "2"}), query("SELECT uid FROM playlists ORDER BY uid"));
    expectInvariants();
}

TEST_F(AddByPathTest, theFromPlaylistOfSingleItemsStays) {
    expectDone(
        OrvoPlayListPlAddItemsPath(),
        QVariantHash{{"plid", 2}, {"fromPlid", 1}, {"items", QVariantList{"playlists:item/2"}}});
    EXPECT_EQ(QString("b"), stored(2));
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(AddByPathTest, whatIsPendingWhenTheModuleEndsIsAnswered) {
    others.files.keepPrepareRequests = true;
    const LateAnswer waiting = sendLate(OrvoPlayListPlAddItemsPath(), toParty({"files:d"}));
    restart();
    EXPECT_TRUE(waiting->failed);
    EXPECT_EQ(CMError::NotAnswered(), waiting->error.name());
    prepareReply(others.files).setValue(itemHashes({"d"}));
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(AddByPathTest, theWayOfARequestIsInTheLog) {
    offer(others.files, "files:d", "d");
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlAddItemsPath(), toParty({"files:d"}));
    EXPECT_EQ(QStringList({"requestPrefix: files call: prepareItems", "addItems() res: 1",
                           "added 1 items", "numItemsAdded: 1 addItemsResMsg: 1 items added.",
                           "plsize: 4", "Add items finished, num added: 1"}),
              log.texts("DEBUG"));
    const QStringList traces = log.texts("TRACE");
    EXPECT_EQ(1, traces.filter(QRegularExpression("^curReplyList: ")).size());
    EXPECT_EQ(1, traces.filter(QRegularExpression("^itemList: \\(\\{.*\\}\\)$")).size());
    EXPECT_EQ(
        1,
        traces
            .filter(QRegularExpression(
                "res: 1 msg: 1 Items added successfully to playlist\\. \\(Party\\) 1 items added\\.$"))
            .size())
        << ::testing::PrintToString(traces);
}

} // namespace
