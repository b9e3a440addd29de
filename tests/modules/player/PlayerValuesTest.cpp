#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>

#include "PlayerFixture.h"
#include "SoundServer.h"

namespace {

// The value changes that reach the outside, as "path=value" lines.
class Watcher {
public:
    Watcher() {
        QObject::connect(CMRoot()->events(), &CMSubscribe::changed, &m_context,
                         [this](const CMChange& change) {
                             if (change.kind == CMChange::Kind::Value)
                                 changes.append(change);
                         });
    }
    QList<OrvoValue> of(const CMPath& path) const {
        QList<OrvoValue> values;
        for (const CMChange& change : changes) {
            if (change.path == path)
                values.append(change.newValue);
        }
        return values;
    }
    QStringList texts(const CMPath& path) const {
        QStringList result;
        for (const OrvoValue& value : of(path))
            result.append(value.string());
        return result;
    }
    QList<CMChange> changes;

private:
    QObject m_context;
};

class PlayerValuesTest : public PlayerFixture {
protected:
    CMVoidReply put(const CMPath& path, const QVariant& value) {
        const CMVoidReply reply;
        CMRoot()->setValue(path, value, reply);
        EXPECT_TRUE(waitUntil([&] { return reply.isFinished(); }));
        return reply;
    }
    int volume() const { return OrvoValue(CMRoot()->getValue(OrvoPlayerVolumePath())).i32(); }
};

TEST_F(PlayerValuesTest, everyValueHasAStateOfRest) {
    EXPECT_EQ(state(), "stopped");
    EXPECT_EQ(OrvoValue(CMRoot()->getValue(OrvoPlayerPlayModePath())).string(), "normal");
    EXPECT_TRUE(CMRoot()->getValue(OrvoPlayerDataPath()).toHash().isEmpty());
    EXPECT_TRUE(CMRoot()->getValue(OrvoPlayerNextMediaPath()).toHash().isEmpty());
    EXPECT_EQ(position(), 0);
    EXPECT_EQ(OrvoValue(CMRoot()->getValue(OrvoPlayerDurationPath())).i64(), 0);
    EXPECT_EQ(volume(), 100);
    EXPECT_FALSE(CMRoot()->getValue(CMPath(QStringLiteral("player:nothing"))).isValid());
}

TEST_F(PlayerValuesTest, changesArePublishedWithOldAndNewValue) {
    const Watcher watcher;
    logic.setTracks({sound("a.wav", 300)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    done(OrvoPlayerStopPath());
    turnEventsFor(20);
    EXPECT_EQ(watcher.texts(OrvoPlayerStatePath()), (QStringList{"opening", "paused", "stopped"}));
    QString old = "stopped";
    for (const CMChange& change : watcher.changes) {
        if (change.path != OrvoPlayerStatePath())
            continue;
        EXPECT_EQ(change.oldValue.string(), old);
        old = change.newValue.string();
    }
    const QList<OrvoValue> durations = watcher.of(OrvoPlayerDurationPath());
    ASSERT_EQ(durations.size(), 2);
    EXPECT_EQ(durations.first().i64(), 300);
    EXPECT_EQ(durations.last().i64(), 0);
}

TEST_F(PlayerValuesTest, theDataThatMediaPlaybackStartedReturnsIsPublished) {
    const Watcher watcher;
    logic.setTracks({sound("a.wav", 300), sound("b.wav", 300)});
    play(logic, 1, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    turnEventsFor(20);
    const QList<OrvoValue> published = watcher.of(OrvoPlayerDataPath());
    ASSERT_FALSE(published.isEmpty());
    EXPECT_EQ(OrvoPlayLogicData(published.last().toHash()).trackRoles(), logic.tracks.at(1));
    EXPECT_EQ(OrvoPlayLogicData(published.last().toHash()).mediaRoles(), container(logic));
}

TEST_F(PlayerValuesTest, whatComesNextIsPublishedWhenItIsAnnounced) {
    const Watcher watcher;
    logic.setTracks({sound("a.wav", 300), sound("b.wav", 30)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitUntil([&] { return !watcher.of(OrvoPlayerNextMediaPath()).isEmpty(); }));
    EXPECT_EQ(watcher.of(OrvoPlayerNextMediaPath()).last().toHash(), logic.tracks.at(1).toHash());
    done(OrvoPlayerResumePath());
    ASSERT_TRUE(waitForCall(logic, "resume"));
    turnEventsFor(20);
    EXPECT_TRUE(watcher.of(OrvoPlayerNextMediaPath()).last().isEmpty());
}

TEST_F(PlayerValuesTest, whatComesNextChangesOnceWhenItIsAnnouncedAnew) {
    logic.setTracks({sound("a.wav", 300), sound("b.wav", 300), sound("c.wav", 300)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    turnEventsFor(30);
    const Watcher watcher;
    const auto seen = [&] {
        turnEventsFor(30);
        QStringList titles;
        for (const OrvoValue& value : watcher.of(OrvoPlayerNextMediaPath()))
            titles.append(OrvoRoles(value.toHash()).title().toString());
        return titles;
    };
    logic.announce(2);
    EXPECT_EQ(CMRoot()->getValue(OrvoPlayerNextMediaPath()).toHash(), logic.tracks.at(2).toHash());
    EXPECT_EQ(seen(), QStringList{"t2"});
    logic.announce(2);
    EXPECT_EQ(seen(), QStringList{"t2"}) << "the same again changes nothing";
    logic.announce(99);
    logic.announce(0);
    logic.announce(1);
    EXPECT_EQ(seen(), (QStringList{"t2", "t1"})) << "only what holds at last";
    logic.announce(0);
    logic.announce(99);
    EXPECT_EQ(seen(), (QStringList{"t2", "t1", QString()}));
}

TEST_F(PlayerValuesTest, whatComesNextChangesOnceWhenAShortTrackFollowsAnother) {
    const Watcher watcher;
    logic.setTracks({sound("a.wav", 50), sound("b.wav", 50), sound("c.wav", 50)});
    play(logic);
    ASSERT_TRUE(waitForCall(logic, "resume"));
    turnEventsFor(20);
    QStringList titles;
    for (const OrvoValue& value : watcher.of(OrvoPlayerNextMediaPath()))
        titles.append(OrvoRoles(value.toHash()).title().toString());
    EXPECT_EQ(titles, (QStringList{"t1", "t2", QString()}));
}

TEST_F(PlayerValuesTest, whatIsAnnouncedInOneGoWithAPlayCommandIsKept) {
    const Watcher watcher;
    logic.setTracks({sound("a.wav", 300), sound("b.wav", 300), sound("c.wav", 300)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForCall(logic, "prepare"));
    turnEventsFor(30);
    logic.announce(2);
    logic.playTrack(1);
    logic.announce(0);
    EXPECT_EQ(CMRoot()->getValue(OrvoPlayerNextMediaPath()).toHash(), logic.tracks.at(0).toHash());
    ASSERT_TRUE(waitForCall(logic, "started:t0>t1"));
    turnEventsFor(30);
    QStringList titles;
    for (const OrvoValue& value : watcher.of(OrvoPlayerNextMediaPath()))
        titles.append(OrvoRoles(value.toHash()).title().toString());
    EXPECT_EQ(titles, (QStringList{"t1", "t0", "t2"})) << "t2 by the preparation of t1";
}

TEST_F(PlayerValuesTest, aModeChosenByThePlayLogicIsPublished) {
    const Watcher watcher;
    logic.setTracks({sound("a.wav", 300)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    logic.setPlayMode(OrvoPlayerPlayMode::ShuffleRepeatAll);
    turnEventsFor(20);
    EXPECT_EQ(watcher.texts(OrvoPlayerPlayModePath()), QStringList{"shuffleRepeatAll"});
    EXPECT_EQ(logic.calls.last(), "mode:shuffleRepeatAll");
}

TEST_F(PlayerValuesTest, thePositionIsPublishedOnlyWhileWatchedAndAtMostTwiceASecond) {
    startPlayer("auto");
    const Watcher watcher;
    logic.setTracks({sound("a.wav", 5000)});
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    turnEventsFor(700);
    EXPECT_TRUE(watcher.of(OrvoPlayerPositionPath()).isEmpty()) << "no client watches";

    auto item = std::make_unique<CMValueItem>(nullptr, OrvoPlayerPositionPath());
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 20; ++i) {
        // What jumps is told soon, but not more often either.
        done(OrvoPlayerSeekTimePath(), {{"time", 100 * i}});
        turnEventsFor(75);
    }
    const double seconds = double(timer.elapsed()) / 1000.0;
    const int count = watcher.of(OrvoPlayerPositionPath()).size();
    EXPECT_GE(count, 2);
    EXPECT_LE(count, int(seconds * 2) + 1);
    item.reset();
    turnEventsFor(20);
    const int before = watcher.of(OrvoPlayerPositionPath()).size();
    turnEventsFor(700);
    EXPECT_EQ(watcher.of(OrvoPlayerPositionPath()).size(), before);
}

TEST_F(PlayerValuesTest, aPausedPositionIsNotRepeated) {
    const Watcher watcher;
    const CMValueItem item(nullptr, OrvoPlayerPositionPath());
    logic.setTracks({sound("a.wav", 3000)});
    play(logic, 0, 1000, true);
    ASSERT_TRUE(waitForState("paused"));
    turnEventsFor(700);
    const QList<OrvoValue> positions = watcher.of(OrvoPlayerPositionPath());
    ASSERT_EQ(positions.size(), 1);
    EXPECT_EQ(positions.first().i64(), 1000);
}

TEST_F(PlayerValuesTest, valuesThatAreCommandsCanBeWritten) {
    logic.setTracks({sound("a.wav", 3000)});
    play(logic, 0, 0, true);
    ASSERT_TRUE(waitForState("paused"));
    EXPECT_FALSE(put(OrvoPlayerPositionPath(), 2000).isError());
    EXPECT_EQ(position(), 2000);
    EXPECT_FALSE(put(OrvoPlayerPlayModePath(), "shuffle").isError());
    EXPECT_EQ(logic.lastMode, OrvoPlayerPlayMode::Shuffle);
    EXPECT_FALSE(put(OrvoPlayerVolumePath(), QVariantHash{{"i32", 30}}).isError());
    EXPECT_EQ(volume(), 30);
    EXPECT_TRUE(put(OrvoPlayerVolumePath(), "loud").isError());
    EXPECT_TRUE(put(OrvoPlayerStatePath(), "playing").isError()) << "only read";
    EXPECT_TRUE(put(OrvoPlayerDurationPath(), 5).isError());
    EXPECT_EQ(volume(), 30);
}

TEST_F(PlayerValuesTest, theVolumeIsKeptAndComesBack) {
    const Watcher watcher;
    for (int step = 0; step <= 40; ++step)
        invoke(OrvoPlayerSetVolumePath(), {{"volume", step}});
    turnEventsFor(20);
    EXPECT_EQ(watcher.of(OrvoPlayerVolumePath()).last().i32(), 40);
    EXPECT_FALSE(root.values()->hasValue(OrvoPlayerSettingsVolumePath()))
        << "a dragged slider is not written at every step";
    startPlayer("null");
    EXPECT_EQ(root.values()->value(OrvoPlayerSettingsVolumePath()).i32(), 40);
    EXPECT_EQ(volume(), 40);
    EXPECT_FALSE(put(OrvoPlayerSettingsVolumePath(), 55).isError());
    EXPECT_EQ(volume(), 55) << "the setting is the volume";
}

// Where playback stopped.
class ResumePointTest : public PlayerValuesTest {
protected:
    ResumePointTest() { setTracks({sound("a.wav", 3000), sound("b.wav", 3000)}); }
    void setTracks(const QStringList& sounds) {
        logic.setTracks(sounds);
        for (int i = 0; i < logic.tracks.size(); ++i)
            logic.tracks[i].setPath(CMPath(QStringLiteral("source:item/%1").arg(i)));
    }
    static OrvoPlayerResumePoint point() {
        return OrvoPlayerResumePoint(CMRoot()->getValue(OrvoPlayerResumePointPath()).toHash());
    }
    static OrvoPlayerResumePoint at(const QString& track, qint64 ms) {
        OrvoPlayerResumePoint result;
        result.setMediaPath(CMPath(QStringLiteral("source:list/1")));
        result.setTrackPath(CMPath(track));
        result.setPosition(ms);
        return result;
    }
    QString stored() { return root.values()->value(OrvoPlayerSettingsResumePointPath()).string(); }
};

TEST_F(ResumePointTest, aStopKeepsWhereItWasAndAPlayRequestGoesOnThere) {
    const Watcher watcher;
    EXPECT_TRUE(point().isEmpty());
    play(logic, 1, 1200, true);
    ASSERT_TRUE(waitForState("paused"));
    EXPECT_TRUE(point().isEmpty()) << "as long as it plays there is nothing to go on with";
    done(OrvoPlayerStopPath());
    turnEventsFor(20);
    EXPECT_EQ(point(), at("source:item/1", 1200));
    EXPECT_EQ(watcher.of(OrvoPlayerResumePointPath()).size(), 1);
    EXPECT_EQ(QJsonDocument::fromJson(stored().toUtf8()).object(),
              (QJsonObject{{"mediaPath", "source:list/1"},
                           {"trackPath", "source:item/1"},
                           {"position", 1200}}));

    play(logic, 1, int(point().position()), true);
    ASSERT_TRUE(waitForState("paused"));
    EXPECT_EQ(position(), 1200);
}

TEST_F(ResumePointTest, anOrderlyEndKeepsItToo) {
    startPlayer("auto");
    play(logic);
    ASSERT_TRUE(waitForState("playing"));
    ASSERT_TRUE(waitUntil([&] { return position() > 300; }));
    startPlayer("null");
    EXPECT_EQ(point().trackPath(), CMPath(QStringLiteral("source:item/0")));
    EXPECT_EQ(point().mediaPath(), CMPath(QStringLiteral("source:list/1")));
    EXPECT_GT(point().position(), 300);
    EXPECT_LT(point().position(), 2000);
}

TEST_F(ResumePointTest, aStopBeforeTheTrackHasBegunKeepsWhereItWasToStart) {
    SoundServer server({});
    setTracks({server.url("/silent")});
    play(logic, 0, 2500, true);
    ASSERT_TRUE(waitForState("opening"));
    done(OrvoPlayerStopPath());
    EXPECT_EQ(point(), at("source:item/0", 2500));
}

TEST_F(ResumePointTest, aStopByThePlayLogicCountsAndASecondStopChangesNothing) {
    play(logic, 1, 700, true);
    ASSERT_TRUE(waitForState("paused"));
    done(logic.path(), {{"request", "stop"}});
    ASSERT_TRUE(waitForState("stopped"));
    EXPECT_EQ(point(), at("source:item/1", 700));
    done(OrvoPlayerStopPath());
    EXPECT_EQ(point(), at("source:item/1", 700));
}

TEST_F(ResumePointTest, theEndOfAListForgetsItsOwnPlaceAlone) {
    const auto playToTheEnd = [this](const char* list) {
        OrvoRoles roles = container(logic);
        roles.setPath(CMPath(QString::fromLatin1(list)));
        logic.calls.clear();
        PlayLogicInterface::playerInstance()->playContainer(roles, {}, 1, 0, false);
        EXPECT_TRUE(waitForCall(logic, "resume"));
        EXPECT_TRUE(waitForTheEnd());
    };
    play(logic, 0, 800, true);
    ASSERT_TRUE(waitForState("paused"));
    done(OrvoPlayerStopPath());
    playToTheEnd("source:list/2");
    EXPECT_EQ(point(), at("source:item/0", 800));
    playToTheEnd("source:list/1");
    EXPECT_TRUE(point().isEmpty());
    EXPECT_EQ(stored(), QString());
}

TEST_F(ResumePointTest, whatIsNoPlaceReadsAsNone) {
    for (const char* text : {"", "no json", "[]", "{\"position\": 5}",
                             "{\"trackPath\": \"source:item/1\", \"position\": -1}",
                             "{\"trackPath\": 7, \"position\": {}}"}) {
        EXPECT_FALSE(put(OrvoPlayerSettingsResumePointPath(), QString::fromLatin1(text)).isError());
        EXPECT_TRUE(point().isEmpty()) << text;
        startPlayer("null");
        EXPECT_TRUE(point().isEmpty()) << text;
    }
    EXPECT_TRUE(put(OrvoPlayerResumePointPath(), QVariantHash{{"position", 1}}).isError())
        << "it can only be read";
}

TEST_F(ResumePointTest, aPlaceThatIsTooLongIsNotKept) {
    logic.tracks[0].setPath(CMPath("source:item/" + QString(5000, QLatin1Char('x'))));
    play(logic, 0, 800, true);
    ASSERT_TRUE(waitForState("paused"));
    startPlayer("null");
    EXPECT_TRUE(point().isEmpty());
}

TEST_F(PlayerValuesTest, unknownPathsAreAnsweredWithAnError) {
    EXPECT_EQ(done(CMPath(QStringLiteral("player:dance"))).error().name(), CMError::NoSuchNode());
    EXPECT_EQ(done(OrvoPlayerStatePath()).error().name(), CMError::NoSuchNode())
        << "a value is no command";
}

} // namespace
