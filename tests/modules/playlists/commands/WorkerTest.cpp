
#include <QCoreApplication>

#include "CommandFixture.h"
#include "PlayListWorker.h"

extern "C" CMAbstractWorker* worker_create(QHash<QString, QVariant> config);

namespace {

class WorkerTest : public CommandFixture {
protected:
    void setPowerTarget(int target) { setSetting(OrvoPowerManagerTargetPath(), target); }
    // A vacuum is owed from here on.
    void oweVacuum() {
        makeParty();
        expectDone(OrvoPlayListPlClearPath(), QVariantHash{{"plid", 1}});
        ASSERT_TRUE(vacuumSetting());
    }
    bool vacuumSetting() {
        return OrvoValue(setting(OrvoPlayListSettingsDataBaseVacuumPath())).bool_();
    }
};

TEST_F(WorkerTest, theEntryBuildsTheWorkerUnderItsName) {
    const std::unique_ptr<CMAbstractWorker> made(worker_create({{"device", "kitchen"}}));
    const auto* asNodesWorker = qobject_cast<CMNodesWorker*>(made.get());
    ASSERT_TRUE(asNodesWorker);
    EXPECT_EQ(QString("PlayLists"), asNodesWorker->name());
    EXPECT_EQ(QVariant("kitchen"), asNodesWorker->config().value("device"));
    EXPECT_EQ(made.get(), root()->worker("playlists"));
}

TEST_F(WorkerTest, absentSettingsMeanNoLimitAndNoVacuum) {
    ASSERT_TRUE(setting(OrvoPlayListsSettingsDataBaseItemsLimitPath()).toHash().isEmpty());
    makeParty();
    addItems(2, QString("0 1 2 3 4 5 6 7 8 9").split(' '));
    EXPECT_EQ(QString("a b c"), stored(1));
    EXPECT_EQ(QString("0 1 2 3 4 5 6 7 8 9"), stored(2));
    EXPECT_EQ(0, storeWatch.vacuums());
    // Nothing was owed, so nothing is written either.
    EXPECT_TRUE(setting(OrvoPlayListSettingsDataBaseVacuumPath()).toHash().isEmpty());
}

TEST_F(WorkerTest, theItemLimitIsReadAtTheStartOnly) {
    setSetting(OrvoPlayListsSettingsDataBaseItemsLimitPath(), 4);
    makeParty();
    addItems(2, {"d", "e", "f"});
    EXPECT_EQ(QString("d"), stored(2));
    setSetting(OrvoPlayListsSettingsDataBaseItemsLimitPath(), 6);
    EXPECT_EQ(QString("Could not add external items to playlist. No items were added."
                      " (Unable to add more items to the playlist. Items reached limit.)"),
              refusal(OrvoPlayListPlAddExternalItemsPath(),
                      QVariantHash{{"plid", 2}, {"items", itemHashes({"e"})}}));
    restart();
    addItems(2, {"e", "f", "g"});
    EXPECT_EQ(QString("d e f"), stored(2));
}

TEST_F(WorkerTest, anOwedVacuumRunsOnce) {
    setSetting(OrvoPlayListSettingsDataBaseVacuumPath(), true);
    worker();
    EXPECT_EQ(1, storeWatch.vacuums());
    EXPECT_FALSE(vacuumSetting());
    restart();
    EXPECT_EQ(1, storeWatch.vacuums());
}

TEST_F(WorkerTest, clearingTheQueueAtTheStartOwesAVacuumAnew) {
    addItems(0, {"a", "b"});
    ASSERT_FALSE(vacuumSetting());
    setSetting(OrvoPlayListSettingsDataBaseVacuumPath(), true);
    restart();
    EXPECT_EQ(QString(), stored(0));
    EXPECT_EQ(1, storeWatch.vacuums());
    EXPECT_TRUE(vacuumSetting());
    restart();
    EXPECT_EQ(2, storeWatch.vacuums());
    EXPECT_FALSE(vacuumSetting());
}

TEST_F(WorkerTest, aStartRemovesTheItemsOfAClearThatWasCutOffAsSoonAsTheDeviceRuns) {
    makeParty();
    addItems(2, {"d", "e"});
    const auto items = [this] { return queryInt("SELECT count(*) FROM items"); };
    ASSERT_EQ(5, items());
    run("DELETE FROM playlists_items WHERE playlist = 1");
    restart();
    EXPECT_EQ(5, items());
    QCoreApplication::processEvents();
    EXPECT_EQ(2, items());
    EXPECT_EQ(QString("d e"), stored(2));
}

TEST_F(WorkerTest, whatRemovesItemsOwesAVacuum) {
    makeParty();
    EXPECT_FALSE(vacuumSetting());
    expectDone(OrvoPlayListPlRemoveItemsPath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{1}}});
    EXPECT_TRUE(vacuumSetting());
    EXPECT_EQ(0, storeWatch.vacuums());
}

TEST_F(WorkerTest, theStepFromTargetOneToTwoRunsTheOwedVacuumOnce) {
    oweVacuum();
    setPowerTarget(1);
    EXPECT_EQ(0, storeWatch.vacuums());
    setPowerTarget(2);
    EXPECT_EQ(1, storeWatch.vacuums());
    EXPECT_FALSE(vacuumSetting());
    setPowerTarget(1);
    setPowerTarget(2);
    EXPECT_EQ(1, storeWatch.vacuums()) << "nothing was owed the second time";
}

TEST_F(WorkerTest, noOtherStepOfTheTargetRunsAVacuum) {
    oweVacuum();
    struct Step {
        int from;
        int to;
    };
    for (const Step step :
         {Step{0, 2}, Step{2, 1}, Step{1, 1}, Step{2, 2}, Step{1, 3}, Step{3, 2}, Step{1, 0}}) {
        // By way of 7, so that getting to `from` is no step of interest itself.
        setPowerTarget(7);
        setPowerTarget(step.from);
        setPowerTarget(step.to);
        EXPECT_EQ(0, storeWatch.vacuums()) << step.from << " to " << step.to;
    }
    EXPECT_TRUE(vacuumSetting());
}

TEST_F(WorkerTest, theFirstTargetEverIsNoStepFromOne) {
    oweVacuum();
    ASSERT_TRUE(setting(OrvoPowerManagerTargetPath()).toHash().isEmpty());
    setPowerTarget(2);
    EXPECT_EQ(0, storeWatch.vacuums());
}

TEST_F(WorkerTest, targetChangesAreLoggedWithBothValues) {
    worker();
    setPowerTarget(1);
    const LogCapture log("PlayLists");
    setPowerTarget(3);
    const QStringList traces = log.texts("TRACE");
    EXPECT_EQ(1, traces.filter(QRegularExpression("newValue=.*3.* oldValue=.*1.*")).size())
        << ::testing::PrintToString(traces);
}

TEST_F(WorkerTest, everyRequestIsAnnouncedOnceAndRoutedAtOnce) {
    int received = 0;
    QObject::connect(worker(), &PlayListWorker::setDataReceived, [&received] { ++received; });
    const LogCapture log("PlayLists");
    const LateAnswer answer = sendLate(OrvoPlayListPlCreatePath(), QVariantHash{{"name", "Party"}});
    EXPECT_EQ(1, received);
    EXPECT_TRUE(answer->answered);
    const QStringList routed = log.texts("TRACE").filter(
        QRegularExpression("^Enter .*PlayListWorker::on_setDataRequest.*: routing$"));
    EXPECT_EQ(1, routed.size()) << ::testing::PrintToString(log.lines());
}

TEST_F(WorkerTest, anUnknownRequestIsAnsweredByTheBase) {
    worker();
    const Answer answer = send(CMPath(QString("playlists:pl/explode")), QVariantHash{{"plid", 1}});
    EXPECT_TRUE(answer.failed);
    EXPECT_EQ(CMError::NoSuchNode(), answer.error.name());
    EXPECT_EQ(QString("There is nothing at playlists:pl/explode."), answer.message());
}

TEST_F(WorkerTest, aNodeThatRefusesIsAnsweredForByTheBase) {
    worker();
    const Answer answer = send(OrvoPlayListsRootPath(), QVariantHash{{"plid", 1}});
    EXPECT_TRUE(answer.failed);
    EXPECT_EQ(CMError::NotSupported(), answer.error.name());
}

TEST_F(WorkerTest, aNodeThatDoesNothingWithARequestStillGetsItAnswered) {
    worker();
    const Answer answer = send(OrvoPlayListPlGetlistPath(), QVariantHash{{"plid", 1}});
    EXPECT_TRUE(answer.answered);
    EXPECT_TRUE(answer.failed);
}

TEST_F(WorkerTest, theModuleStartsAnewOverItsFiles) {
    makeParty();
    expectDone(OrvoPlayListPlSetRepeatPath(), QVariantHash{{"plid", 1}, {"mode", 2}});
    addItems(0, {"q"});
    restart();
    EXPECT_EQ(QStringList({"a", "b", "c"}), titles(1));
    EXPECT_EQ(QString(), stored(0));
    EXPECT_EQ(QStringList("Party"), query("SELECT name FROM playlists WHERE repeatAll = 1"));
    // The membership survives as well: adding it again fails.
    EXPECT_EQ(QString("Could not add items to collection. Add playlist to collection failed."),
              refusal(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", 1}, {"plid", 2}}));
    expectInvariants();
}

} // namespace
