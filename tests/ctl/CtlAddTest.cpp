#include <QJsonObject>

#include "CtlFixture.h"
#include "FakePlayer.h"
#include "LogCapture.h"
#include "OrvoPlayListPaths.h"

namespace {

class CtlAdd : public CtlFixture {
protected:
    void setItemsLimit(int limit) {
        const CMVoidReply reply;
        m_root.setValue(OrvoPlayListsSettingsDataBaseItemsLimitPath(), limit, reply);
        ASSERT_FALSE(reply.isError());
        restartPlayLists();
    }
    static QStringList numbered(int count) {
        QStringList paths;
        for (int i = 0; i < count; ++i)
            paths.append(QStringLiteral("x:track/%1").arg(i));
        return paths;
    }
};

} // namespace

TEST_F(CtlAdd, aLocalFileIsAddedByItsPathInTheMusicFolder) {
    const int id = playlist("Party");
    const QString file = makeFile(QString::fromUtf8("Band ü/1 & 2?/a#b.flac"));
    const CtlRun run = ctl({"add", "Party", file});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.toStdString(), "added 1 of 1 tracks to Party (#1)\n");
    EXPECT_EQ(tracks(id), QStringList{QString::fromUtf8("Band ü/1 & 2?/a#b.flac")});
}

TEST_F(CtlAdd, aFolderAddsAllItsTracksInOrder) {
    const int id = playlist("Party");
    for (const char* name :
         {"B/2.flac", "B/1.flac", "A/x/1.flac", "A/cover.jpg", "z.flac", "Empty/readme.txt"})
        makeFile(QString::fromLatin1(name));
    EXPECT_EQ(ctl({"add", "Party", musicFolder()}).status, 0);
    EXPECT_EQ(tracks(id), (QStringList{"A/x/1.flac", "B/1.flac", "B/2.flac", "z.flac"}));
    EXPECT_EQ(ctl({"add", "Party", "files:tree/B", musicFolder() + "/A/"}).status, 0);
    EXPECT_EQ(tracks(id).mid(4), (QStringList{"B/1.flac", "B/2.flac", "A/x/1.flac"}));
}

TEST_F(CtlAdd, aPathOfTheDeviceIsATrackOrAListOfTracks) {
    playlist("Source", {"x:a", "x:b"});
    const int id = playlist("Party");
    makeFile("one.flac");
    EXPECT_EQ(ctl({"add", "Party", "files:tree/one.flac", "playlists:pl/items/1"}).status, 0);
    EXPECT_EQ(tracks(id), (QStringList{"one.flac", "x:a", "x:b"}));
}

TEST_F(CtlAdd, whatIsNotThereOrNotInTheMusicFolderIsRefused) {
    const int id = playlist("Party");
    CtlRun run = ctl({"add", "Party", "/no/such/file.flac"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.toStdString(), "orvoctl: there is no file or folder /no/such/file.flac\n");
    run = ctl({"add", "Party", "/dev/null"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains("is not in the device's music folder"));
    makeFile("Empty/readme.txt");
    EXPECT_EQ(ctl({"add", "Party", musicFolder()}).status, 1);
    EXPECT_EQ(ctl({"add", "Nobody", musicFolder()}).status, 1);
    EXPECT_EQ(
        ctl({"add", "#77", "x:a"}).err.toStdString(),
        "orvoctl: Could not add items to playlist. No items were added. (There is no playlist with this ID. (77))\n");
    EXPECT_EQ(ctl({"add", "Party"}).status, 2);
    EXPECT_EQ(ctl({"add", "Party", "x:a", "--now", "--next"}).status, 2);
    EXPECT_TRUE(tracks(id).isEmpty());
}

TEST_F(CtlAdd, manyTracksAreAppendedInPartsThatKeepTheirOrder) {
    const int id = playlist("Party", {"x:first"});
    const QStringList many = numbered(1201);
    EXPECT_EQ(ctl(QStringList{"add", "Party", "--append"} + many).status, 0);
    EXPECT_EQ(m_source.requestSizes, (QList<int>{500, 500, 201}));
    EXPECT_EQ(tracks(id), QStringList{"x:first"} + many);
}

TEST_F(CtlAdd, manyTracksAreAddedNextInTheirOrderWhateverWasPlayed) {
    const QStringList many = numbered(1201);
    for (const int lastPlayed : {-1, 0}) {
        const int id = playlist("Party", {"x:first", "x:last"});
        list(id)->setLastSequenceNumber(lastPlayed);
        const QString name = QStringLiteral("#%1").arg(id);
        EXPECT_EQ(ctl(QStringList{"add", name, "--next"} + many).status, 0);
        QStringList expected = QStringList{"x:first"} + many;
        expected.insert(lastPlayed < 0 ? 1 : expected.size(), "x:last");
        EXPECT_EQ(tracks(id), expected);
    }
}

TEST_F(CtlAdd, manyTracksAreAddedNowInTheirOrderAndTheFirstOneStarts) {
    const int id = playlist("Party", {"x:first", "x:last"});
    list(id)->setLastSequenceNumber(0);
    FakePlayer player;
    const QStringList many = numbered(1201);
    EXPECT_EQ(ctl(QStringList{"add", "Party", "--now"} + many).status, 0);
    EXPECT_EQ(tracks(id), QStringList{"x:first"} + many + QStringList{"x:last"});
    EXPECT_EQ(player.asked, QStringList{"player:playContainer"});
    EXPECT_EQ(player.index(), 1);
}

TEST_F(CtlAdd, aDeviceThatIsFullSaysHowManyWereAdded) {
    const int id = playlist("Party");
    setItemsLimit(1000);
    CtlRun run = ctl(QStringList{"add", "Party"} + numbered(1201));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(
        run.err.toStdString(),
        "orvoctl: only 1000 of 1201 tracks added: Could not add items to playlist. No items were added. (Unable to add more items to the playlist. Items reached limit.)\n");
    EXPECT_EQ(tracks(id).size(), 1000);
    setItemsLimit(1001);
    EXPECT_EQ(ctl({"add", "Party", "x:a", "x:b", "--json"}).json().object().value("added"), 1);
}

TEST_F(CtlAdd, namesComeFromStandardInputOneALine) {
    const int id = playlist("Party");
    const QByteArray file = makeFile("A & B/1 2.flac").toUtf8();
    const QByteArray other = makeFile("A & B/3.flac").toUtf8();
    EXPECT_EQ(ctl({"add", "Party", "-"}, file + "\n\n" + other + "\nx:a").err.toStdString(),
              "added 3 of 3 tracks to Party (#1)\n");
    const QStringList expected = {"A & B/1 2.flac", "A & B/3.flac", "x:a"};
    EXPECT_EQ(tracks(id), expected);
    // As find -print0 gives them; among other names, too. A device asks each source once.
    EXPECT_EQ(ctl({"add", "Party", "x:b", "-", "x:c"}, file + '\0' + other + '\0').status, 0);
    EXPECT_EQ(tracks(id).mid(3), (QStringList{"x:b", "x:c", expected.at(0), expected.at(1)}));
    const CtlRun empty = ctl({"add", "Party", "-"}, "\n");
    EXPECT_EQ(empty.status, 1);
    EXPECT_EQ(empty.err.toStdString(), "orvoctl: there are no tracks in it\n");
    EXPECT_EQ(ctl({"add", "Party", "-", "-"}, file).status, 2);
    EXPECT_EQ(tracks(id).size(), 7);
}

TEST_F(CtlAdd, theMusicFolderIsLookedAtAgain) {
    ASSERT_TRUE(waitUntil([this] {
        return m_root.getValue(CMPath("files:scan")).toHash().value("state") == "ready";
    }));
    const LogCapture log("Files");
    const CtlRun run = ctl({"rescan"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.toStdString(), "looking at the music folder again\n");
    EXPECT_TRUE(log.contains("INFO", "scanning " + musicFolder()));
}
