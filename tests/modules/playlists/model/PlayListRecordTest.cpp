#include <QMetaMethod>
#include <QSignalSpy>

#include "ModelFixture.h"

// Getters, setters and what is written of them.
class PlayListRecordTest : public ModelFixture {};

TEST_F(PlayListRecordTest, aNewPlayListHasTheFieldsOfItsRecord) {
    PlayListRecord record;
    record.uid = 12;
    record.name = QStringLiteral("Morning");
    record.shuffle = true;
    record.repeatAll = true;
    record.lastPlayedIndex = 3;
    record.size = 5;
    const PlayList pl(&database(), record);
    EXPECT_EQ(12, pl.getUid());
    EXPECT_EQ("Morning", pl.getName());
    EXPECT_TRUE(pl.getShuffle());
    EXPECT_TRUE(pl.getRepeatAll());
    EXPECT_EQ(3, pl.getLastSequenceNumber());
    EXPECT_EQ(5, pl.getSize());
    EXPECT_TRUE(pl.valid());
    EXPECT_EQ(nullptr, pl.parent());
}

TEST_F(PlayListRecordTest, onlyUidMinusOneIsInvalid) {
    PlayListRecord record;
    EXPECT_FALSE(PlayList(&database(), record).valid());
    record.uid = PlayListRecord::PlayQueueUid;
    EXPECT_TRUE(PlayList(&database(), record).valid());
}

TEST_F(PlayListRecordTest, setNameStoresAndAnnouncesTheName) {
    PlayListBase& pl = playList("ab", 1);
    SignalLog signalLog;
    signalLog.watch(&pl);
    pl.setName(QStringLiteral("Évening"));
    EXPECT_EQ("Évening", pl.getName());
    EXPECT_EQ(QStringList("nameChanged Évening"), signalLog.take());
    expectInStep();
}

TEST_F(PlayListRecordTest, setNameAnnouncesTheNameItAlreadyHas) {
    PlayListBase& pl = playList("", -1, "same");
    SignalLog signalLog;
    signalLog.watch(&pl);
    pl.setName(QStringLiteral("same"));
    EXPECT_EQ(QStringList("nameChanged same"), signalLog.take());
}

struct ModeRow {
    const char* name;
    bool (PlayListBase::*set)(bool);
    bool (PlayListBase::*get)() const;
    const char* signalName;
};

class PlayListModeTest : public ModelFixture, public ::testing::WithParamInterface<ModeRow> {};

TEST_P(PlayListModeTest, aNewValueIsStoredAndAnnounced) {
    const ModeRow& mode = GetParam();
    PlayListBase& pl = playList("ab", 0);
    SignalLog signalLog;
    signalLog.watch(&pl);
    for (bool value : {true, false}) {
        EXPECT_TRUE((pl.*mode.set)(value));
        EXPECT_EQ(value, (pl.*mode.get)());
        EXPECT_EQ(QStringList(QString("%1 %2").arg(mode.signalName, value ? "true" : "false")),
                  signalLog.take());
        expectInStep();
    }
}

TEST_P(PlayListModeTest, theValueItHasIsNeitherWrittenNorAnnounced) {
    const ModeRow& mode = GetParam();
    PlayListBase& pl = playList("ab");
    (pl.*mode.set)(true);
    SignalLog signalLog;
    signalLog.watch(&pl);
    // Any write would fail and be logged.
    forbid("UPDATE ON playlists");
    const LogCapture log("PlayLists");
    EXPECT_TRUE((pl.*mode.set)(true));
    EXPECT_EQ(QStringList(), log.lines());
    EXPECT_EQ(QStringList(), signalLog.take());
    EXPECT_TRUE((pl.*mode.get)());
}

TEST_P(PlayListModeTest, oneModeLeavesTheOtherAlone) {
    const ModeRow& mode = GetParam();
    PlayListBase& pl = playList("ab");
    (pl.*mode.set)(true);
    EXPECT_NE(pl.getShuffle(), pl.getRepeatAll());
}

INSTANTIATE_TEST_SUITE_P(modes, PlayListModeTest,
                         ::testing::Values(ModeRow{"shuffle", &PlayListBase::setShuffle,
                                                   &PlayListBase::getShuffle, "shuffleChanged"},
                                           ModeRow{"repeatAll", &PlayListBase::setRepeatAll,
                                                   &PlayListBase::getRepeatAll,
                                                   "repeatAllChanged"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(PlayListRecordTest, theLastPlayedPositionIsStoredWithoutASignal) {
    PlayListBase& pl = playList("abc");
    SignalLog signalLog;
    signalLog.watch(&pl);
    for (int position : {0, 2, -1, 7}) {
        pl.setLastSequenceNumber(position);
        EXPECT_EQ(position, pl.getLastSequenceNumber());
        expectInStep();
    }
    EXPECT_EQ(QStringList(), signalLog.take());
}

TEST_F(PlayListRecordTest, updateDatabaseWritesTheRecordAsItIs) {
    PlayListBase& pl = playList("ab", 1, "kept");
    run("UPDATE playlists SET name = 'other', shuffle = 1, lastPlayedIndex = 9"
        " WHERE uid > 0");
    EXPECT_TRUE(pl.updateDatabase());
    expectInStep();
}

TEST_F(PlayListRecordTest, updateDatabaseOfAPlayListThatIsGoneFails) {
    PlayListRecord record;
    record.uid = 77;
    const PlayList pl(&database(), record);
    const LogCapture log("PlayLists");
    EXPECT_FALSE(pl.updateDatabase());
    EXPECT_EQ(QStringList("Error updating PlayList: no such uid in DB"), log.errors());
}

TEST_F(PlayListRecordTest, removeDeletesTheRowsAndLeavesTheObject) {
    const PlayListRecord record = playListOf("abc");
    PlayList pl(&database(), record);
    SignalLog signalLog;
    signalLog.watch(&pl);
    EXPECT_TRUE(pl.remove());
    EXPECT_EQ(0, queryInt("SELECT COUNT(*) FROM playlists WHERE uid > 0"));
    EXPECT_EQ(0, queryInt("SELECT COUNT(*) FROM items"));
    EXPECT_EQ(record.uid, pl.getUid());
    EXPECT_EQ(QStringList(), signalLog.take());
    EXPECT_FALSE(pl.remove());
    expectInvariants();
}

TEST_F(PlayListRecordTest, thePlayQueueCannotBeRemoved) {
    PlayList queue(&database(), database().getPlayQueue());
    const LogCapture log("PlayLists");
    EXPECT_FALSE(queue.remove());
    EXPECT_EQ(
        QStringList({"Error deleting PlayList: no such list in DB", "Error deleting PlayList"}),
        log.errors());
    expectInvariants();
}

namespace {
QStringList signalsOf(const QMetaObject& type) {
    QStringList signatures;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        if (method.methodType() == QMetaMethod::Signal)
            signatures.append(QString::fromLatin1(method.methodSignature() + " " +
                                                  method.parameterNames().join(',')));
    }
    return signatures;
}
} // namespace

TEST(ModelSignals, playListSignalsStandInOrderWithTheirParameterNames) {
    EXPECT_EQ(QStringList({"itemsAdded(QString,int,int) positionEnum,firstSeqNum,count",
                           "itemsRemoved(QList<int>,int) indices,lastSeqNumBeforeRemove",
                           "itemMoved(int,int) from,to", "itemsCleared() ",
                           "shuffleChanged(bool) newValue", "repeatAllChanged(bool) newValue",
                           "nameChanged(QString) name", "itemsReordered(QList<int>) order",
                           "itemsInserted(QList<int>) positions", "itemsMoved() "}),
              signalsOf(PlayListBase::staticMetaObject));
    EXPECT_EQ(QStringList(), signalsOf(PlayList::staticMetaObject));
}

TEST(ModelSignals, collectionSignalsHaveNoParameters) {
    EXPECT_EQ(QStringList({"playlistAdded() ", "playlistRemoved() "}),
              signalsOf(CollectionBase::staticMetaObject));
    EXPECT_EQ(QStringList(), signalsOf(Collection::staticMetaObject));
}

TEST(ModelSignals, managerSignalsCarryTheUid) {
    EXPECT_EQ(QStringList({"playlistCreated(int) plid", "playlistDeleted(int) plid",
                           "collectionCreated(int) clid", "collectionDeleted(int) clid"}),
              signalsOf(PlayListManager::staticMetaObject));
}

TEST_F(PlayListRecordTest, argumentsReachASpyAsTheyAre) {
    PlayListBase& pl = playList("abc", 1);
    QSignalSpy removed(&pl, &PlayListBase::itemsRemoved);
    ASSERT_TRUE(removed.isValid());
    EXPECT_EQ(2, pl.removeItems({2, 0}));
    ASSERT_EQ(1, removed.count());
    EXPECT_EQ(QList<int>({0, 2}), removed.at(0).at(0).value<QList<int>>());
    EXPECT_EQ(1, removed.at(0).at(1).toInt());
}
