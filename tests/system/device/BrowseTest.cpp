#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

#include <QTcpServer>

#include "Device.h"
#include "EventLoop.h"
#include "SoundFiles.h"
#include "TerminalProgram.h"

namespace {

const QByteArray Enter = "\r";
const QByteArray Down = "\x1bOB";
const QByteArray Up = "\x1bOA";
const QByteArray Right = "\x1bOC";
const QByteArray Left = "\x1bOD";
const QByteArray End = "\x1bOF";
const QByteArray Backspace = "\x7f";
const QByteArray Escape = "\x1b";

// The port stays the same over a restart of the device.
quint16 freePort() {
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

// A sandbox may have no pseudo-terminals; there is nothing to be tested on then.
bool hasPseudoTerminals() {
    const int leader = ::posix_openpt(O_RDWR | O_NOCTTY);
    const char* name = leader >= 0 && ::unlockpt(leader) == 0 ? ::ptsname(leader) : nullptr;
    const bool has = name && ::access(name, R_OK | W_OK) == 0;
    if (leader >= 0)
        ::close(leader);
    return has;
}

// orvoctl browse against the real device.
class Browse : public ::testing::Test {
protected:
    void SetUp() override {
        if (!hasPseudoTerminals())
            GTEST_SKIP() << "no pseudo-terminals on this machine";
        for (const char* name : {"One", "Two"}) {
            SoundTags tags;
            tags.title = QStringLiteral("Long ") + name;
            tags.artist = "Band L";
            SoundFiles::writeWav(device.musicFolder() + "/Long/" + name + ".wav", tags, 60000);
        }
        ASSERT_TRUE(device.start());
        device.waitForScan();
        EXPECT_EQ(device.ctl({"create", "Party"}).status, 0);
        EXPECT_EQ(device.ctl({"add", "Party", device.musicFolder() + "/Band 1"}).status, 0);
    }
    QStringList browse(const QStringList& words = {}) const {
        return QStringList{"--url", device.url(), "browse"} + words;
    }
    QStringList party() { return device.titles("playlists:pl/items/1"); }
    void order(const QStringList& words) { EXPECT_EQ(device.ctl(words).status, 0); }

    bool waitForVolume(const QByteArray& shown) {
        return waitUntil([&] { return device.ctl({"volume"}).out == shown; }, 10000);
    }

    Device device{{"--audio-sink", "auto", "--listen", "127.0.0.1:" + QString::number(freePort())}};
};

} // namespace

TEST_F(Browse, fromTheRootToATrackItsMenuAndBack) {
    TerminalProgram screen(browse());
    ASSERT_TRUE(screen.waitForBar("Playlists"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText("Orvo › Playlists"));
    ASSERT_TRUE(screen.waitForText("Create New Playlist"));
    ASSERT_TRUE(screen.waitForBar("PlayQueue"));
    screen.type(Down);
    ASSERT_TRUE(screen.waitForBar("+ Create New Playlist")) << "headings are stepped over";
    screen.type(Down);
    ASSERT_TRUE(screen.waitForBar("Party"));
    screen.type(Right);
    ASSERT_TRUE(screen.waitForText("Orvo › Playlists › Party"));
    ASSERT_TRUE(screen.waitForText("4 tracks"));
    screen.type(Down);
    ASSERT_TRUE(screen.waitForBar("2  Track 1.2"));
    screen.type("m");
    ASSERT_TRUE(screen.waitForText("─ Track 1.2 ─"));
    screen.type(End);
    ASSERT_TRUE(screen.waitForBar("Remove track"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText("3 tracks"));
    EXPECT_EQ(party(), (QStringList{"Track 1.1", "Track 1.3", "Track 1.4"}));
    ASSERT_TRUE(screen.waitForNoText("Remove track"));
    ASSERT_TRUE(screen.waitForBar("2  Track 1.3"));
    screen.type(Left);
    ASSERT_TRUE(screen.waitForBar("Party")) << "back at the row it came from";
    screen.type(Escape);
    ASSERT_TRUE(screen.waitForText("Music"));
    ASSERT_TRUE(screen.waitForBar("Playlists"));
    screen.type("q");
    EXPECT_EQ(screen.waitForEnd(), 0);
}

TEST_F(Browse, keysTypedFasterThanListsComeAreNotLost) {
    TerminalProgram screen(browse());
    screen.type(Enter + Down + Down + Enter + Down + Down + "m" + End);
    ASSERT_TRUE(screen.waitForText("─ Track 1.3 ─"));
    ASSERT_TRUE(screen.waitForBar("Remove track"));
}

TEST_F(Browse, whatOthersDoAppearsWithoutAKey) {
    TerminalProgram screen(browse({"playlists:pl/items/1"}));
    ASSERT_TRUE(screen.waitForText("Track 1.4"));
    screen.type(Down + Down);
    ASSERT_TRUE(screen.waitForBar("3  Track 1.3"));
    order({"remove", "Party", "1"});
    ASSERT_TRUE(screen.waitForBar("2  Track 1.3")) << "the bar goes along with its row";
    order({"add", "Party", device.musicFolder() + "/Band 2"});
    ASSERT_TRUE(screen.waitForText("7 tracks"));
    ASSERT_TRUE(screen.waitForText("Track 2.4"));
    order({"rename", "Party", "Late party"});
    ASSERT_TRUE(screen.waitForText("Late party"));
    order({"delete", "Late party"});
    ASSERT_TRUE(screen.waitForText("is gone."));
    ASSERT_TRUE(screen.waitForText("6 items")) << "the view that led there";
}

TEST_F(Browse, aListIsRenamedAndOneIsMadeByTypingTheirNames) {
    TerminalProgram screen(browse({"playlists:root"}));
    ASSERT_TRUE(screen.waitForText("Party"));
    screen.type(Down + Down + "m");
    ASSERT_TRUE(screen.waitForText("Rename"));
    screen.type(Down + Enter);
    ASSERT_TRUE(screen.waitForText("Enter saves"));
    screen.type(Backspace + "ie q/m? " + QByteArray("é") + Left + Left + "x" + Enter);
    ASSERT_TRUE(screen.waitForNoText("Enter saves"));
    EXPECT_EQ(device.titles("playlists:pl/list").value(1), QString::fromUtf8("Partie q/m?x é"));
    ASSERT_TRUE(screen.waitForText(QString::fromUtf8("Partie q/m?x é")));
    screen.type(Escape);
    ASSERT_TRUE(screen.waitForNoText("Merge"));
    screen.type(Up + Enter);
    ASSERT_TRUE(screen.waitForText("Enter creates"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText(
        "Could not create playlist. Please provide a non-empty string as field. (name)"));
    screen.type("Sunday" + Enter);
    ASSERT_TRUE(screen.waitForBar("Sunday")) << "what was made is stood on";
}

TEST_F(Browse, aSwitchIsTurnedAndADeletionAskedTwice) {
    TerminalProgram screen(browse({"playlists:root"}));
    ASSERT_TRUE(screen.waitForText("Party"));
    screen.type(Down + Down + "m");
    ASSERT_TRUE(screen.waitForText("Set shuffle mode"));
    screen.type(Down + Down);
    ASSERT_TRUE(screen.waitForBar("off"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForBar(" on "));
    screen.type(End + Enter);
    ASSERT_TRUE(screen.waitForText("sure? Enter again"));
    EXPECT_EQ(device.titles("playlists:pl/list").size(), 2);
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForNoText("Delete playlist"));
    ASSERT_TRUE(screen.waitForNoText("Party"));
    EXPECT_EQ(device.titles("playlists:pl/list").size(), 1);
}

TEST_F(Browse, aListIsNotOfferedToItself) {
    order({"create", "Sunday"});
    TerminalProgram screen(browse({"playlists:root"}));
    ASSERT_TRUE(screen.waitForText("Sunday"));
    screen.type(Down + Down);
    ASSERT_TRUE(screen.waitForBar("Party"));
    screen.type("m");
    ASSERT_TRUE(screen.waitForText("Merge with playlist"));
    screen.type(Down + Down + Down + Down);
    ASSERT_TRUE(screen.waitForBar("Merge with playlist"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForBar("Create new playlist"));
    screen.type(End);
    ASSERT_TRUE(screen.waitForBar("Sunday"));
    screen.type(Up);
    ASSERT_TRUE(screen.waitForBar("Create new playlist"));
}

TEST_F(Browse, aKilledDeviceIsShownAndItsReturnToo) {
    TerminalProgram screen(browse({"playlists:pl/items/1"}));
    ASSERT_TRUE(screen.waitForText("Track 1.4"));
    screen.type(Down);
    ASSERT_TRUE(screen.waitForBar("Track 1.2"));
    device.kill();
    ASSERT_TRUE(screen.waitForText("No connection"));
    EXPECT_TRUE(screen.waitForText("Track 1.4")) << "what was read stays";
    ASSERT_TRUE(device.start());
    ASSERT_TRUE(screen.waitForNoText("No connection"));
    order({"remove", "Party", "1"});
    ASSERT_TRUE(screen.waitForText("3 tracks"));
    ASSERT_TRUE(screen.waitForBar("1  Track 1.2"));
}

TEST_F(Browse, whatBecameOfThingsMeanwhileIsReadAgain) {
    order({"add", "queue", device.musicFolder() + "/Long"});
    TerminalProgram screen(browse({"playlists:pq/items"}));
    ASSERT_TRUE(screen.waitForText("Long Two"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText("▶ Long One – Band L"));
    device.kill();
    ASSERT_TRUE(screen.waitForText("No connection"));
    ASSERT_TRUE(device.start());
    ASSERT_TRUE(screen.waitForText("Nothing here yet.")) << "the queue does not outlive the device";
    ASSERT_TRUE(screen.waitForText("Nothing plays"));
}

TEST_F(Browse, aTrackIsPlayedMarkedAndPaused) {
    order({"add", "Party", device.musicFolder() + "/Long"});
    TerminalProgram screen(browse({"playlists:pl/items/1"}));
    ASSERT_TRUE(screen.waitForText("Long Two"));
    ASSERT_TRUE(screen.waitForText("Nothing plays"));
    screen.type(End + Enter);
    ASSERT_TRUE(screen.waitForText("▶ Long Two – Band L"));
    ASSERT_TRUE(screen.waitForBar("▶ 6  Long Two"));
    ASSERT_TRUE(screen.waitForText("━")) << "the clock runs";
    screen.type("p");
    ASSERT_TRUE(screen.waitForText("‖ Long Two"));
    EXPECT_TRUE(device.waitForValue("player:state", "paused"));
    screen.type("<");
    ASSERT_TRUE(screen.waitForText("▶ Long One"));
    screen.type(Left);
    ASSERT_TRUE(screen.waitForText("6 items"));
    screen.type("c");
    ASSERT_TRUE(screen.waitForBar("▶ 5  Long One")) << "jumped to what plays";
    screen.type(">");
    ASSERT_TRUE(screen.waitForText("▶ 6  Long Two"));
}

TEST_F(Browse, severalTracksAreChosenAndRemoved) {
    TerminalProgram screen(browse({"playlists:pl/items/1"}));
    ASSERT_TRUE(screen.waitForText("Track 1.4"));
    screen.type(" j ");
    ASSERT_TRUE(screen.waitForText("2 chosen")) << "each choice goes on to the next row";
    ASSERT_TRUE(screen.waitForText("✓ 1  Track 1.1"));
    ASSERT_TRUE(screen.waitForText("✓ 3  Track 1.3"));
    screen.type("dd");
    ASSERT_TRUE(screen.waitForText("2 tracks removed"));
    EXPECT_EQ(party(), (QStringList{"Track 1.2", "Track 1.4"}));
    ASSERT_TRUE(screen.waitForNoText("chosen"));
    screen.type("g\x1b[3~");
    ASSERT_TRUE(screen.waitForText("1 track removed")) << "without a choice the one at the bar";
    EXPECT_EQ(party(), QStringList{"Track 1.4"});
    screen.type("d");
    screen.type("g ");
    ASSERT_TRUE(screen.waitForText("1 chosen")) << "one d alone does nothing";
    screen.type(Escape);
    ASSERT_TRUE(screen.waitForNoText("1 chosen"));
    EXPECT_TRUE(screen.waitForText("1 track")) << "and the list is still open";
    EXPECT_EQ(party().size(), 1);
}

TEST_F(Browse, tracksAreMovedStepByStep) {
    TerminalProgram screen(browse({"playlists:pl/items/1"}));
    ASSERT_TRUE(screen.waitForText("Track 1.4"));
    screen.type("J");
    ASSERT_TRUE(screen.waitForBar("2  Track 1.1"));
    screen.type("JJ");
    ASSERT_TRUE(screen.waitForBar("4  Track 1.1")) << "steps that come fast are all taken";
    EXPECT_EQ(party(), (QStringList{"Track 1.2", "Track 1.3", "Track 1.4", "Track 1.1"}));
    screen.type("J");
    screen.type("KKKKK");
    ASSERT_TRUE(screen.waitForBar("1  Track 1.1"));
    screen.type("  J");
    ASSERT_TRUE(screen.waitForText("✓ 3  Track 1.2"));
    EXPECT_EQ(party(), (QStringList{"Track 1.3", "Track 1.1", "Track 1.2", "Track 1.4"}))
        << "what is chosen moves together";
}

TEST_F(Browse, onlyTracksOfAPlaylistAreRemovedOrMoved) {
    TerminalProgram screen(browse({"files:tree"}));
    ASSERT_TRUE(screen.waitForText("Band 3"));
    for (const char* keys : {"dd", "J"}) {
        screen.type(keys);
        ASSERT_TRUE(screen.waitForText("This is no track of a playlist"));
        screen.type("k");
        ASSERT_TRUE(screen.waitForNoText("This is no track"));
    }
}

TEST_F(Browse, severalFoldersAreAddedTogether) {
    TerminalProgram screen(browse({"files:tree"}));
    ASSERT_TRUE(screen.waitForText("Band 3"));
    screen.type("  m");
    ASSERT_TRUE(screen.waitForText("Add to which list?"));
    screen.type(End + "k");
    ASSERT_TRUE(screen.waitForBar("Party"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText("Add to Party"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText("8 tracks added to Party"));
    EXPECT_TRUE(screen.waitForNoText("2 chosen"));
    EXPECT_EQ(party().size(), 12);
}

TEST_F(Browse, lettersMoveAsArrowsDo) {
    TerminalProgram screen(browse());
    ASSERT_TRUE(screen.waitForBar("Playlists"));
    screen.type("j");
    ASSERT_TRUE(screen.waitForBar("Music"));
    screen.type("kl");
    ASSERT_TRUE(screen.waitForText("Orvo › Playlists"));
    screen.type("jj");
    ASSERT_TRUE(screen.waitForBar("Party"));
    screen.type("h");
    ASSERT_TRUE(screen.waitForBar("Playlists"));
}

TEST_F(Browse, artistsAndAlbumsStandBesideTheMusicFolderAndAreAddedToAList) {
    TerminalProgram screen(browse());
    ASSERT_TRUE(screen.waitForText("Recently added"));
    screen.type(Down + Down);
    ASSERT_TRUE(screen.waitForBar("Artists"));
    screen.type("l");
    ASSERT_TRUE(screen.waitForText("Orvo › Artists"));
    screen.type(Down);
    ASSERT_TRUE(screen.waitForBar("Band 2"));
    screen.type("l");
    ASSERT_TRUE(screen.waitForText("Orvo › Artists › Band 2"));
    ASSERT_TRUE(screen.waitForBar("Album 2"));
    screen.type("l");
    ASSERT_TRUE(screen.waitForText("Track 2.4"));
    screen.type("h");
    ASSERT_TRUE(screen.waitForBar("Album 2"));
    screen.type("m");
    ASSERT_TRUE(screen.waitForText("Add to which list?"));
    screen.type(End + Up);
    ASSERT_TRUE(screen.waitForBar("Party"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText("Add to Party"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText("4 tracks added to Party"));
    EXPECT_EQ(party().mid(4), (QStringList{"Track 2.1", "Track 2.2", "Track 2.3", "Track 2.4"}));
}

TEST_F(Browse, volumeAndPlaceAreChangedByKeys) {
    order({"add", "Party", device.musicFolder() + "/Long"});
    order({"volume", "50"});
    TerminalProgram screen(browse({"playlists:pl/items/1"}));
    ASSERT_TRUE(screen.waitForText("volume 50"));
    screen.type("+++");
    ASSERT_TRUE(screen.waitForText("volume 65"));
    EXPECT_TRUE(waitForVolume("65\n"));
    screen.type("-");
    EXPECT_TRUE(waitForVolume("60\n"));
    screen.type(QByteArray(30, '-'));
    ASSERT_TRUE(screen.waitForText("volume 0"));
    EXPECT_TRUE(waitForVolume("0\n"));
    screen.type(End + Enter);
    ASSERT_TRUE(screen.waitForText("▶ Long Two"));
    screen.type("p");
    EXPECT_TRUE(device.waitForValue("player:state", "paused"));
    screen.type("fff");
    ASSERT_TRUE(screen.waitForText("0:3"));
    screen.type("b");
    ASSERT_TRUE(screen.waitForText("0:2"));
}

TEST_F(Browse, theMouseGoesToRowsAndOpensThem) {
    order({"add", "Party", device.musicFolder() + "/Long"});
    TerminalProgram screen(browse({"playlists:pl/items/1"}));
    ASSERT_TRUE(screen.waitForText("Long Two"));
    ASSERT_TRUE(screen.waitForText("Nothing plays"));
    const auto press = [&screen](int button, int line) {
        const QByteArray at = QByteArray::number(button) + ";10;" + QByteArray::number(line + 1);
        screen.type("\x1b[<" + at + "M\x1b[<" + at + "m");
    };
    press(0, 3);
    ASSERT_TRUE(screen.waitForBar("3  Track 1.3"));
    press(64, 3);
    ASSERT_TRUE(screen.waitForBar("1  Track 1.1"));
    press(65, 3);
    ASSERT_TRUE(screen.waitForBar("4  Track 1.4"));
    press(0, 20);
    press(0, 6);
    ASSERT_TRUE(screen.waitForBar("6  Long Two")) << "below the rows there is nothing";
    press(0, 6);
    ASSERT_TRUE(screen.waitForText("▶ Long Two –")) << "a click on the bar plays";
}

TEST_F(Browse, whatTheDeviceRefusesIsSaidInItsOwnWords) {
    TerminalProgram screen(browse({"playlists:pl/items/1"}), {40, 12});
    ASSERT_TRUE(screen.waitForText("Track 1.4"));
    screen.type("m");
    ASSERT_TRUE(screen.waitForText("Move track"));
    screen.type(End + Up + Enter);
    ASSERT_TRUE(screen.waitForText("Enter saves"));
    screen.type("99" + Enter);
    ASSERT_TRUE(screen.waitForText("Could not move items"));
    ASSERT_TRUE(screen.waitForText("sequence number is")) << "in lines of its own";
    ASSERT_TRUE(screen.waitForText("not in valid"));
    EXPECT_EQ(party().first(), "Track 1.1");
}

TEST_F(Browse, aPathThatIsNotThereIsSaid) {
    TerminalProgram screen(browse({"nothing:here"}));
    ASSERT_TRUE(screen.waitForText("There is nothing at nothing:here."));
    EXPECT_TRUE(screen.waitForText("Music")) << "and home is open";
}

TEST_F(Browse, musicIsAddedFromTheFolders) {
    TerminalProgram screen(browse({"files:tree"}));
    ASSERT_TRUE(screen.waitForText("Band 3"));
    screen.type(Down + "m");
    ASSERT_TRUE(screen.waitForText("Add to which list?"));
    ASSERT_TRUE(screen.waitForText("PlayQueue"));
    screen.type(End + Up);
    ASSERT_TRUE(screen.waitForBar("Party"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText("Add to Party"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText("4 tracks added to Party"));
    EXPECT_EQ(party().size(), 8);
    EXPECT_EQ(party().last(), "Track 2.4");
}

TEST_F(Browse, namesNeverBreakTheScreen) {
    const QByteArray names[] = {
        R"(\u001b]0;gone\u0007\u001b[2J\u001b[31mred)",
        R"(\u009b5mC1 \u202etxt.exe \u2066x)",
        R"(line one\nline two\ttab)",
        R"(音楽 한국어 漢字)",
        R"(👨‍👩‍👧 😀 ❤️ 🇩🇪)",
        R"(e\u0301\u0301\u0301\u0301\u0301\u0301\u0301\u0301 combining)",
        R"(<b>&amp;<script>)",
        R"(\ud83d half)",
        R"(a very long name that goes on and on, wider than the screen is, 音楽音楽音楽音楽音楽音楽 and on)",
    };
    int made = 0;
    for (const QByteArray& name : names)
        made +=
            device.command("playlists:pl/create", R"({"name":")" + name + R"("})").status == 200;
    EXPECT_GE(made, 8) << "half surrogates the device may refuse";
    for (const QSize& size : {QSize(80, 24), QSize(40, 24)}) {
        TerminalProgram screen(browse({"playlists:pl/list"}), size);
        ASSERT_TRUE(screen.waitForText("한국어"));
        for (int line = 2; line < 3 + made; ++line)
            EXPECT_TRUE(screen.waitForColumn(line, 0x203A, size.width() - 2))
                << "the signs at the ends of the rows stand below each other";
        EXPECT_TRUE(screen.waitForText("␛]0;gone␇␛[2J␛[31mred"));
        EXPECT_TRUE(screen.waitForText("line one␊line two␉tab"));
        EXPECT_FALSE(screen.written().contains("\x1b]0;gone"));
        EXPECT_FALSE(screen.written().contains("\xc2\x9b"));
        EXPECT_FALSE(screen.written().contains("\xe2\x80\xae"));
    }
}

TEST_F(Browse, twentyThousandRowsAreWalkedAndSearched) {
    for (int start = 0; start < 20000; start += 4000) {
        QByteArray items;
        for (int i = start; i < start + 4000; ++i) {
            items += i == start ? "" : ",";
            items +=
                R"({"title":"n)" + QByteArray::number(i) +
                R"(","url":"file:///n.flac","serviceId":"files","orvoRoles":"{\"type\":3,\"title\":\"n)" +
                QByteArray::number(i) + R"(\"}"})";
        }
        ASSERT_EQ(
            device.command("playlists:pl/addExternalItems", R"({"plid":1,"items":[)" + items + "]}")
                .status,
            200);
    }
    TerminalProgram screen(browse({"playlists:pl/items/1"}), {60, 20});
    ASSERT_TRUE(screen.waitForText("20004 tracks"));
    screen.type(End);
    ASSERT_TRUE(screen.waitForBar("20004  n19999"));
    EXPECT_TRUE(screen.waitForText("20004 of 20004"));
    screen.type("g/N1234");
    ASSERT_TRUE(screen.waitForText("1 of 11"));
    ASSERT_TRUE(screen.waitForBar("1239  n1234"));
    screen.type(Down);
    ASSERT_TRUE(screen.waitForBar("n12340"));
    screen.type(Enter);
    ASSERT_TRUE(screen.waitForText("12345 of 20004"));
    order({"remove", "Party", "1-4"});
    ASSERT_TRUE(screen.waitForBar("12341  n12340"));
}

TEST_F(Browse, theScreenFollowsTheSizeOfItsWindow) {
    TerminalProgram screen(browse({"playlists:pl/items/1"}));
    ASSERT_TRUE(screen.waitForText("Band 1"));
    for (const QSize& size : {QSize(40, 10), QSize(200, 60), QSize(3, 2), QSize(80, 24)}) {
        screen.resize(size);
        ASSERT_TRUE(screen.waitForText(size.width() < 16 ? "to" : "Track 1.4"));
        if (size.width() == 200) {
            ASSERT_TRUE(screen.waitForText("Album 1"));
        }
    }
    EXPECT_TRUE(screen.waitForText("1 of 4"));
    EXPECT_TRUE(screen.lines().at(21).contains("1 of 4"));
}

TEST_F(Browse, helpNamesTheKeysAndTheTerminalIsGivenBack) {
    TerminalProgram screen(browse());
    ASSERT_TRUE(screen.waitForBar("Playlists"));
    screen.type("?");
    ASSERT_TRUE(screen.waitForText("Play or pause"));
    screen.type(Escape);
    ASSERT_TRUE(screen.waitForNoText("Play or pause"));
    screen.type("\x03");
    EXPECT_EQ(screen.waitForEnd(), 0);
    EXPECT_TRUE(screen.written().contains("\x1b[?1049l")) << "the screen as it was before";
}

TEST_F(Browse, withoutATerminalItSaysSo) {
    const Device::ProgramRun piped = device.ctl({"browse"});
    EXPECT_EQ(piped.status, 2);
    EXPECT_EQ(piped.err, "orvoctl: browse needs a terminal\norvoctl --help lists the verbs\n");
    TerminalProgram dumb(browse(), {80, 24}, "dumb");
    EXPECT_EQ(dumb.waitForEnd(), 2);
    EXPECT_TRUE(dumb.text().contains("TERM=dumb")) << qPrintable(dumb.text());
    EXPECT_FALSE(dumb.written().contains('\x1b'));
}
