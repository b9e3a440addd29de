#include "playlistUI/playqueue/PlayQueueContextNode.h"

#include "MenuFixture.h"
#include "OrvoPlayListPaths.h"

namespace {

const QString queueNodePath = "playlists:pq/context";
const QString queueMenuTitle = "PlayQueueContextNode|PlayQueue Context Menu";

class PlayQueueContextNodeTest : public MenuFixture {
protected:
    static QList<QJsonObject> menu(const QString& further = {}) {
        const auto title = [](const QString& text) { return "PlayQueueContextNode|" + text; };
        return {
            Expected::action(title("Play"), queueNodePath + "?action=playPl&plid=0" + further),
            Expected::menu(title("Merge with playlist"),
                           "playlists:pl/addToPlaylist?action=cmnode&fromplid=0"),
            Expected::separator(),
            Expected::action(title("Clear"), queueNodePath + "?action=clearPl&plid=0" + further)};
    }
};

class PlayQueueContextNodeAloneTest : public MenuAloneFixture {};

} // namespace

TEST_F(PlayQueueContextNodeTest, theMenuIsThatOfTheQueueWhateverIsVisibleOrAskedFor) {
    createPlayList("Mix");
    for (const bool queueVisible : {false, true}) {
        for (const bool collections : {false, true}) {
            show(queueVisible, collections);
            restart();
            expectMenu(queueNodePath, queueMenuTitle, menu());
            expectMenu(queueNodePath + "?plid=0", queueMenuTitle, menu());
            expectMenu(queueNodePath + "?plid=1", queueMenuTitle, menu());
            expectMenu(queueNodePath + "?action=cmnode&plid=abc&x=y", queueMenuTitle, menu("&x=y"));
        }
    }
}

TEST_F(PlayQueueContextNodeTest, actionsThatAreNotItsOwnAreNotTaken) {
    addItems(0, {"a"});
    expectNotTaken({queueNodePath + "?plid=0", queueNodePath + "?action=cmnode&plid=0",
                    queueNodePath + "?action=play&plid=0", queueNodePath + "?action=clear&plid=0",
                    queueNodePath + "?action=delPL&plid=0"});
    EXPECT_EQ(titles(0), QStringList("a"));
}

TEST_F(PlayQueueContextNodeTest, playingAndClearingHappenAndCloseTheMenu) {
    RecordingWorker player("Player");
    addItems(0, {"a", "b"});
    const RowText closed = Expected::doneAndClosed(Expected::flag(true), queueNodePath);
    EXPECT_EQ(answerText(select(queueNodePath + "?action=playPl&plid=0")), closed);
    EXPECT_EQ(player.requests.size(), 1);
    EXPECT_EQ(answerText(select(queueNodePath + "?action=clearPl&plid=0")), closed);
    EXPECT_EQ(titles(0), QStringList());
    const Answer empty = select(queueNodePath + "?action=playPl&plid=0");
    EXPECT_EQ(empty.message(),
              "Could not start playback on playlist. There are no items in the playlist.");
    EXPECT_EQ(player.requests.size(), 1);
}

TEST_F(PlayQueueContextNodeAloneTest, everyActionSendsItsCommand) {
    EXPECT_EQ(sent(queueNodePath + "?action=playPl&plid=0"), R"(playlists:pl/play {"plid":0})");
    EXPECT_EQ(sent(queueNodePath + "?action=clearPl&plid=0"), R"(playlists:pl/clear {"plid":0})");
    EXPECT_EQ(sent(queueNodePath + "?action=clearPl"), R"(playlists:pl/clear {"plid":-1})");
    EXPECT_EQ(sent(queueNodePath + "?action=playPl&plid=x"), R"(playlists:pl/play {"plid":-1})");
    EXPECT_EQ(sent(queueNodePath + "?action=play&plid=0"), "nothing");
}
