#include <QCoreApplication>
#include <QSet>

#include "CMSubscribe.h"
#include "CommandFixture.h"

namespace {

class RevisionsTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    static CMPath listPath(int plid) {
        return plid == 0 ? OrvoPlayListPqGetItemsPath()
                         : OrvoPlayListPlGetItemsPath() + QString::number(plid);
    }
    qint64 revision(int plid) {
        const OrvoRowsRoles reply = rows(listPath(plid), 0, 0, {"title"});
        EXPECT_TRUE(reply.containsRevision());
        return reply.revision();
    }
    // The commands that edit a playlist, for this one.
    static QList<Command> edits(int plid) {
        QList<Command> edits;
        for (Command command : commands()) {
            command.args.insert("plid", plid);
            if (command.takesRevision)
                edits.append(command);
        }
        return edits;
    }
    static QVariantHash with(QVariantHash args, const QVariant& revision) {
        args.insert("revision", revision);
        return args;
    }
    // The revisions that the events of the list carried, "-" for none.
    QStringList revisionsTold(int plid, const std::function<void()>& act) {
        QStringList told;
        const QString path = listPath(plid).toString();
        const auto connection =
            QObject::connect(root()->events(), &CMSubscribe::changed, [&](const CMChange& change) {
                if (change.path.toString() == path)
                    told.append(change.revision ? QString::number(*change.revision) : "-");
            });
        act();
        QObject::disconnect(connection);
        return told;
    }

    FakeModules others;
};

} // namespace

TEST_F(RevisionsTest, aListsRowsCarryItsRevisionAndItsLastPlayedPosition) {
    for (int plid : {0, 1, 2}) {
        const OrvoRowsRoles reply = rows(listPath(plid));
        EXPECT_GT(reply.revision(), 0);
        EXPECT_LT(reply.revision(), qint64(1) << 53);
        ASSERT_TRUE(reply.containsLastPlayedIndex());
        EXPECT_EQ(-1, reply.lastPlayedIndex());
    }
    restartAfter("UPDATE playlists SET lastPlayedIndex = 2 WHERE uid = 1");
    EXPECT_EQ(2, rows(listPath(1)).lastPlayedIndex());
    EXPECT_FALSE(rows(OrvoPlayListsRootPath()).containsRevision());
    EXPECT_FALSE(rows(OrvoPlayListsRootPath()).containsLastPlayedIndex());
}

TEST_F(RevisionsTest, eachEditRaisesTheRevisionOfItsListAlone) {
    offer(others.files, "files:x", "x");
    qint64 before = revision(1);
    const qint64 other = revision(2);
    ASSERT_EQ(7, edits(1).size());
    for (const Command& edit : edits(1)) {
        SCOPED_TRACE(edit.handler);
        expectDone(edit.path(), edit.args);
        if (edit.path == OrvoPlayListPlDeletePath)
            continue;
        const qint64 after = revision(1);
        EXPECT_GT(after, before);
        before = after;
    }
    EXPECT_EQ(other, revision(2));
}

TEST_F(RevisionsTest, whatLeavesTheEntriesAsTheyAreLeavesTheRevision) {
    const qint64 before = revision(1);
    expectDone(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", 1}, {"name", "Feast"}});
    expectDone(OrvoPlayListPlSetShufflePath(), QVariantHash{{"plid", 1}, {"mode", 1}});
    expectDone(OrvoPlayListPlSetRepeatPath(), QVariantHash{{"plid", 1}, {"mode", 2}});
    expectDone(OrvoPlayListPlPlayPath(), QVariantHash{{"plid", 1}});
    expectDone(OrvoPlayListPlMoveItemspath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{1}}, {"to", 1}});
    refusal(OrvoPlayListPlRemoveItemsPath(),
            QVariantHash{{"plid", 1}, {"items", QVariantList{0, 3}}});
    forbid("UPDATE ON playlists_items");
    refusal(OrvoPlayListPlMoveItemspath(),
            QVariantHash{{"plid", 1}, {"items", QVariantList{0}}, {"to", 2}});
    allowAll();
    EXPECT_EQ(before, revision(1));
    const qint64 empty = revision(2);
    expectDone(OrvoPlayListPlClearPath(), QVariantHash{{"plid", 2}});
    EXPECT_EQ(empty, revision(2));
}

TEST_F(RevisionsTest, anEditThatWasMadeForAnotherRevisionDoesNothing) {
    const qint64 seen = revision(1);
    expectDone(OrvoPlayListPlMoveItemspath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{0}}, {"to", 2}});
    const qint64 present = revision(1);
    offer(others.files, "files:x", "x");
    for (const Command& edit : edits(1)) {
        SCOPED_TRACE(edit.handler);
        for (qint64 outdated : {seen, present + 1, qint64(0), revision(2)}) {
            events.clear();
            const LogCapture log("PlayLists");
            const Answer answer = send(edit.path(), with(edit.args, outdated));
            EXPECT_TRUE(answer.failed);
            EXPECT_EQ("Conflict", answer.error.name());
            EXPECT_EQ("Error", answer.error.title().toString());
            EXPECT_EQ(QString(edit.prefix) + " The playlist has changed meanwhile.",
                      answer.message());
            EXPECT_EQ(QStringList(QString("Playlist id: 1 has revision %1 instead of %2")
                                      .arg(present)
                                      .arg(outdated)),
                      log.texts("ERROR"));
            EXPECT_EQ("b c a", stored(1));
            EXPECT_EQ(QStringList(), events);
        }
    }
    EXPECT_TRUE(others.files.requests.isEmpty());
    EXPECT_EQ(present, revision(1));
    expectInvariants();
}

TEST_F(RevisionsTest, anEditWithTheListsRevisionIsDone) {
    offer(others.files, "files:x", "x");
    for (const Command& edit : edits(1)) {
        SCOPED_TRACE(edit.handler);
        expectDone(edit.path(), with(edit.args, revision(1)));
    }
    EXPECT_EQ(QStringList("2"), query("SELECT uid FROM playlists WHERE uid > 0"));
    expectDone(OrvoPlayListPlAddExternalItemsPath(),
               with({{"plid", 0}, {"items", itemHashes({"q"})}}, revision(0)));
    EXPECT_EQ("q", stored(0));
}

// Numbers come as JSON has them, and as text from those who keep them so.
TEST_F(RevisionsTest, aRevisionMayBeANumberOrItsText) {
    const auto clear = [this](const QVariant& revision) {
        return send(OrvoPlayListPlClearPath(), with({{"plid", 1}}, revision));
    };
    EXPECT_FALSE(clear(double(revision(1))).failed);
    addItems(1, {"a"});
    EXPECT_FALSE(clear(QString::number(revision(1))).failed);
}

TEST_F(RevisionsTest, aMalformedRevisionIsRefused) {
    const QVariantList malformed = {QVariant(),
                                    "",
                                    "x",
                                    "1.5",
                                    1.5,
                                    1e300,
                                    -1,
                                    -7.0,
                                    true,
                                    QVariantList{revision(1)},
                                    QVariantHash{{"i32", 1}},
                                    QString::number(revision(1)) + "x"};
    for (const Command& edit : edits(1)) {
        SCOPED_TRACE(edit.handler);
        for (const QVariant& revision : malformed) {
            const LogCapture log("PlayLists");
            const Answer answer = send(edit.path(), with(edit.args, revision));
            EXPECT_TRUE(answer.failed);
            EXPECT_EQ("Error", answer.error.name());
            EXPECT_EQ(QString(edit.prefix) + " Invalid revision. (revision)", answer.message());
            EXPECT_EQ(QStringList("Invalid revision for playlist id: 1"), log.texts("ERROR"));
        }
    }
    EXPECT_EQ("a b c", stored(1));
}

TEST_F(RevisionsTest, aMissingListComesBeforeItsRevision) {
    for (const Command& edit : edits(77)) {
        SCOPED_TRACE(edit.handler);
        const Answer answer = send(edit.path(), with(edit.args, 1));
        EXPECT_EQ("Error", answer.error.name());
        EXPECT_TRUE(answer.message().contains("There is no playlist with this ID."))
            << qPrintable(answer.message());
    }
}

TEST_F(RevisionsTest, anAdditionIsComparedAgainWhenItsItemsAreThere) {
    others.files.keepPrepareRequests = true;
    const QVariantHash args = with({{"plid", 2}, {"items", QVariantList{"files:x"}}}, revision(2));
    const auto prepare = [this] {
        const CMReply<QVariant> reply = others.files.requests.takeFirst().reply();
        reply.setValue(itemHashes({"x"}));
        QCoreApplication::processEvents();
    };
    const LateAnswer late = sendLate(OrvoPlayListPlAddItemsPath(), args);
    addItems(2, {"d"});
    EXPECT_FALSE(late->answered);
    prepare();
    EXPECT_TRUE(late->failed);
    EXPECT_EQ("Conflict", late->error.name());
    EXPECT_EQ("Could not add items to playlist. The playlist has changed meanwhile.",
              late->message());
    EXPECT_EQ("d", stored(2));

    const LateAnswer inTime = sendLate(OrvoPlayListPlAddItemsPath(), with(args, revision(2)));
    prepare();
    EXPECT_TRUE(inTime->answered);
    EXPECT_FALSE(inTime->failed);
    EXPECT_EQ("d x", stored(2));
}

TEST_F(RevisionsTest, aPlaylistStaysWhenItsTargetHasChanged) {
    const qint64 seen = revision(2);
    addItems(2, {"d"});
    EXPECT_EQ("Could not add items to playlist. The playlist has changed meanwhile.",
              refusal(OrvoPlayListPlAddItemsPath(),
                      QVariantHash{{"plid", 2}, {"fromPlid", 1}, {"revision", seen}}));
    EXPECT_EQ("a b c", stored(1));
    EXPECT_EQ("d", stored(2));
}

TEST_F(RevisionsTest, noRevisionFitsALaterListOfTheSameNumber) {
    expectDone(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 2}});
    QSet<qint64> seen = {revision(0), revision(1)};
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(2, createPlayList("Again"));
        EXPECT_FALSE(seen.contains(revision(2)));
        seen.insert(revision(2));
        addItems(2, {"x"});
        EXPECT_FALSE(seen.contains(revision(2)));
        seen.insert(revision(2));
        expectDone(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 2}});
    }
}

TEST_F(RevisionsTest, noRevisionComesAgainAfterARestart) {
    QSet<qint64> seen;
    for (int i = 0; i < 3; ++i) {
        for (int plid : {0, 1, 2}) {
            EXPECT_FALSE(seen.contains(revision(plid)));
            seen.insert(revision(plid));
        }
        restart();
    }
}

TEST_F(RevisionsTest, eventsOfTheListCarryTheRevisionThatTheyLeadTo) {
    offer(others.files, "files:x", "x");
    for (int plid : {1, 0}) {
        if (plid == 0)
            addItems(0, {"a", "b", "c"});
        for (const Command& edit : edits(plid)) {
            SCOPED_TRACE(edit.handler);
            if (edit.path == OrvoPlayListPlDeletePath)
                continue;
            const QStringList told =
                revisionsTold(plid, [&] { expectDone(edit.path(), edit.args); });
            EXPECT_EQ(QStringList(QString::number(revision(plid))), told);
        }
    }
    // A list that goes leads to none.
    EXPECT_EQ(QStringList("-"), revisionsTold(1, [this] {
                  expectDone(OrvoPlayListPlDeletePath(), QVariantHash{{"plid", 1}});
                  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
              }));
}

TEST_F(RevisionsTest, whoReadsUponAnEventFindsItsRevision) {
    qint64 told = 0;
    qint64 read = 0;
    const auto connection =
        QObject::connect(root()->events(), &CMSubscribe::changed, [&](const CMChange& change) {
            if (!change.revision)
                return;
            told = *change.revision;
            read = revision(1);
        });
    addItems(1, {"d"});
    EXPECT_NE(0, told);
    EXPECT_EQ(read, told);
    QObject::disconnect(connection);
}
