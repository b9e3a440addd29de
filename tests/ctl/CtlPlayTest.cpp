#include <QJsonArray>
#include <QJsonObject>

#include "CtlFixture.h"
#include "FakePlayer.h"
#include "RecordingPlayer.h"

namespace {

class CtlPlay : public CtlFixture {
protected:
    CtlPlay() { m_party = playlist("Party", {"x:a", "x:b", "x:c", "x:d"}); }

    void lastPlayed(int index) { list(m_party)->setLastSequenceNumber(index); }
    // Playback was stopped in the track of that index.
    void stoppedIn(int list, int index, int milliseconds) {
        m_player.resumePoint = {{"mediaPath", QStringLiteral("playlists:pl/items/%1").arg(list)},
                                {"trackPath", QStringLiteral("playlists:item/%1").arg(1 + index)},
                                {"position", milliseconds}};
    }
    // From the beginning of its first track.
    void expectPartyBegins() {
        const CtlRun run = ctl({"play", "Party"});
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err.toStdString(), "playing Party (#1) from track 1\n");
        EXPECT_EQ(std::exchange(m_player.asked, {}), QStringList{"player:playContainer"});
        EXPECT_EQ(m_player.list(), "playlists:pl/items/1");
        EXPECT_EQ(m_player.index(), 0);
        EXPECT_EQ(m_player.startPosition(), 0);
    }

    FakePlayer m_player;
    int m_party;
};

class CtlNextUp : public CtlFixture {
protected:
    // Plays the first of this order.
    void playShuffled(int id, const QVector<int>& order) {
        list(id)->setShuffle(true);
        EXPECT_EQ(ctl({"play", QStringLiteral("#%1").arg(id)}).status, 0);
        m_player.start();
        logic().order() = order;
        logic().cursor() = 0;
    }

    RecordingPlayer m_player;
};

} // namespace

TEST_F(CtlPlay, aListThatWasNeverPlayedOrWasLeftInItsFirstTrackBeginsThere) {
    for (const int last : {-1, 0}) {
        lastPlayed(last);
        expectPartyBegins();
    }
}

TEST_F(CtlPlay, aListGoesOnAtItsLastPlayedTrack) {
    lastPlayed(2);
    const CtlRun run = ctl({"play", "Party"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.toStdString(), "playing Party (#1) from track 3; --from 1 to begin\n");
    EXPECT_EQ(m_player.asked, QStringList{"player:playContainer"});
    EXPECT_EQ(m_player.index(), 2);
    EXPECT_EQ(m_player.startPosition(), 0);
    EXPECT_EQ(m_player.list(), "playlists:pl/items/1");
    EXPECT_EQ(m_player.record.value("trackRoles").toHash().value("path").toString(),
              "playlists:item/3");
}

TEST_F(CtlPlay, afterItsEndAListBeginsAtTheFirstTrack) {
    lastPlayed(3);
    expectPartyBegins();
}

TEST_F(CtlPlay, aShuffledListThatEndedInItsMiddleBeginsAtTheFirstTrack) {
    lastPlayed(2);
    list(m_party)->setEnded(true);
    expectPartyBegins();
}

TEST_F(CtlPlay, aListGoesOnWithinTheTrackInWhichItWasStopped) {
    lastPlayed(2);
    stoppedIn(m_party, 2, 42000);
    EXPECT_EQ(ctl({"play", "Party"}).err.toStdString(),
              "playing Party (#1) from track 3; --from 1 to begin\n");
    EXPECT_EQ(m_player.startPosition(), 42000);
    // Stopped in its last track it was not played to its end.
    lastPlayed(3);
    stoppedIn(m_party, 3, 43000);
    EXPECT_EQ(ctl({"play", "Party"}).err.toStdString(),
              "playing Party (#1) from track 4; --from 1 to begin\n");
    EXPECT_EQ(m_player.index(), 3);
    EXPECT_EQ(m_player.startPosition(), 43000);
}

TEST_F(CtlPlay, aStopInAnotherTrackOrAnotherListSaysNothingOfThisOne) {
    playlist("Quiet", {"x:e", "x:f", "x:g"});
    lastPlayed(2);
    for (const auto& [list, track] : {std::pair(m_party, 1), std::pair(m_party + 1, 2)}) {
        stoppedIn(list, track, 42000);
        EXPECT_EQ(ctl({"play", "Party"}).status, 0);
        EXPECT_EQ(m_player.index(), 2);
        EXPECT_EQ(m_player.startPosition(), 0);
    }
    lastPlayed(3);
    EXPECT_EQ(ctl({"play", "Party"}).err.toStdString(), "playing Party (#1) from track 1\n");
}

TEST_F(CtlPlay, aListThatHasBecomeShorterBeginsAtTheFirstTrack) {
    restartPlayLists("UPDATE playlists SET lastPlayedIndex = 7");
    EXPECT_EQ(ctl({"play", "Party"}).err.toStdString(), "playing Party (#1) from track 1\n");
}

TEST_F(CtlPlay, theTrackToStartWithIsNamedWithOrWithoutFrom) {
    lastPlayed(2);
    stoppedIn(m_party, 2, 42000);
    for (const QStringList& words : {QStringList{"play", "Party", "--from", "1"},
                                     {"play", "Party", "1"},
                                     {"play", "Party", "--from=1"}}) {
        const CtlRun run = ctl(words);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err.toStdString(), "playing Party (#1) from track 1\n");
        EXPECT_EQ(m_player.index(), 0);
        EXPECT_EQ(m_player.startPosition(), 0);
    }
    // It is asked for whatever was played last, and starts at its beginning.
    EXPECT_EQ(ctl({"play", "Party", "--from", "3"}).err.toStdString(),
              "playing Party (#1) from track 3\n");
    EXPECT_EQ(m_player.startPosition(), 0);
    EXPECT_EQ(m_player.asked.size(), 4);
}

TEST_F(CtlPlay, aTrackThatIsNotThereIsRefused) {
    for (const char* position : {"0", "-1", "x", ""})
        EXPECT_EQ(ctl({"play", "Party", "--from", position}).status, 2) << position;
    const CtlRun both = ctl({"play", "Party", "2", "--from", "1"});
    EXPECT_EQ(both.status, 2);
    EXPECT_EQ(both.err.split('\n').first().toStdString(),
              "orvoctl: a track behind --from or without it, not both");
    const CtlRun beyond = ctl({"play", "Party", "--from", "5"});
    EXPECT_EQ(beyond.status, 1);
    EXPECT_EQ(beyond.err.toStdString(), "orvoctl: there is no track 5 in Party (#1)\n");
    const CtlRun unknown = ctl({"play", "#99"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(
        unknown.err.toStdString(),
        "orvoctl: Could not start playback on playlist. There is no playlist with this ID. (99)\n");
    EXPECT_EQ(m_player.asked, QStringList());
}

TEST_F(CtlNextUp, nextUpListsTheTracksInTheOrderInWhichTheyComeWithTheirPlacesInTheList) {
    playShuffled(playlist("Party", {"x:a", "x:b", "x:c", "x:d"}), {1, 3, 0, 2});
    EXPECT_EQ(ctl({"next-up"}).out.toStdString(), "Party (#1): 3 tracks to come\n"
                                                  "POS  TITLE  ARTIST  ALBUM  TIME\n"
                                                  "  4  d      Artist  Album  1:01\n"
                                                  "  1  a      Artist  Album  1:01\n"
                                                  "  3  c      Artist  Album  1:01\n");
    EXPECT_EQ(ctl({"next-up", "--count", "1"}).out.toStdString(),
              "Party (#1): 3 tracks to come\n"
              "POS  TITLE  ARTIST  ALBUM  TIME\n"
              "  4  d      Artist  Album  1:01\n");
    EXPECT_EQ(
        ctl({"next-up", "--count", "1", "--json"}).out.toStdString(),
        R"({"id":1,"name":"Party","tracks":[{"album":"Album","artist":"Artist","duration":61000,"id":"4","path":"playlists:item/4","position":4,"sequenceNumber":3,"title":"d"}],"tracksCount":3})"
        "\n");
}

TEST_F(CtlNextUp, nextUpOfManyTracksIsReadByPages) {
    QStringList tracks;
    QVector<int> order;
    for (int i = 0; i <= 2500; ++i) {
        tracks.append(QStringLiteral("x:t%1").arg(i));
        order.prepend(i);
    }
    playShuffled(playlist("Long", tracks), order); // the last one plays
    const QJsonArray listed = ctl({"next-up", "--json"}).json().object().value("tracks").toArray();
    ASSERT_EQ(listed.size(), 2500);
    for (int i = 0; i < 2500; ++i)
        EXPECT_EQ(listed.at(i).toObject().value("position").toInt(), 2500 - i);
    const QJsonArray some =
        ctl({"next-up", "--json", "--count", "1200"}).json().object().value("tracks").toArray();
    EXPECT_EQ(some.size(), 1200);
}

TEST_F(CtlNextUp, nextUpSaysWhenNothingComes) {
    const CtlRun run = ctl({"next-up"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.toStdString(), "nothing comes next\n");
    EXPECT_EQ(ctl({"next-up", "--json"}).out.toStdString(), "{\"tracks\":[],\"tracksCount\":0}\n");
    EXPECT_EQ(ctl({"next-up", "--count", "0"}).status, 2);
}

TEST_F(CtlNextUp, theQueueIsNextUpUnderItsOwnName) {
    EXPECT_EQ(list(0)->addItems(OrvoPlayListAddPosition::Append,
                                {TrackSource::item("x:a"), TrackSource::item("x:b")}),
              0);
    EXPECT_EQ(ctl({"play", "queue"}).status, 0);
    m_player.start();
    EXPECT_EQ(ctl({"next-up"}).out.split('\n').first().toStdString(),
              "queue (#0): 1 track to come");
}
