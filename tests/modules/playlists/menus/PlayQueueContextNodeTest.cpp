#include "playlistUI/playqueue/PlayQueueContextNode.h"

#include "MenuFixture.h"
#include "OrvoPlayListPaths.h"

namespace {

const QString nodePath = "playlists:pq/context";
const QString menuTitle = "PlayQueueContextNode|PlayQueue Context Menu";

class PlayQueueContextNodeTest : public MenuFixture {
protected:
    static QList<QJsonObject> menu(const QString& further = {}) {
        const auto title = [](const QString& text) { return "PlayQueueContextNode|" + text; };
        return {Expected::action(title("Play"), nodePath + "?action=playPl&plid=0" + further),
                Expected::menu(title("Merge with playlist"),
                               "playlists:pl/addToPlaylist?action=cmnode&fromplid=0"),
                Expected::separator(),
                Expected::action(title("Clear"), nodePath + "?action=clearPl&plid=0" + further)};
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
            expectMenu(nodePath, menuTitle, menu());
            expectMenu(nodePath + "?plid=0", menuTitle, menu());
            expectMenu(nodePath + "?plid=1", menuTitle, menu());
            expectMenu(nodePath + "?action=cmnode&plid=abc&x=y", menuTitle, menu("&x=y"));
        }
    }
}

TEST_F(PlayQueueContextNodeTest, actionsThatAreNotItsOwnAreNotTaken) {
    addItems(0, {"a"});
    expectNotTaken({nodePath + "?plid=0", nodePath + "?action=cmnode&plid=0",
                    nodePath + "?action=play&plid=0", nodePath + "?action=clear&plid=0",
                    nodePath + "?action=delPL&plid=0"});
    EXPECT_EQ(titles(0), QStringList("a"));
}

TEST_F(PlayQueueContextNodeTest, playingAndClearingHappenAndCloseTheMenu) {
    RecordingWorker player("Player");
    addItems(0, {"a", "b"});
    const RowText closed = Expected::doneAndClosed(Expected::flag(true), nodePath);
    EXPECT_EQ(answerText(select(nodePath + "?action=playPl&plid=0")), closed);
    EXPECT_EQ(player.requests.size(), 1);
    EXPECT_EQ(answerText(select(nodePath + "?action=clearPl&plid=0")), closed);
    EXPECT_EQ(titles(0), QStringList());
    const Answer empty = select(nodePath + "?action=playPl&plid=0");
    EXPECT_EQ(empty.message(),
              "Could not start playback on playlist. There are no items in the playlist.");
    EXPECT_EQ(player.requests.size(), 1);
}

TEST_F(PlayQueueContextNodeAloneTest, everyActionSendsItsCommand) {
    EXPECT_EQ(sent(nodePath + "?action=playPl&plid=0"), R"(playlists:pl/play {"plid":0})");
    EXPECT_EQ(sent(nodePath + "?action=clearPl&plid=0"), R"(playlists:pl/clear {"plid":0})");
    EXPECT_EQ(sent(nodePath + "?action=clearPl"), R"(playlists:pl/clear {"plid":-1})");
    EXPECT_EQ(sent(nodePath + "?action=playPl&plid=x"), R"(playlists:pl/play {"plid":-1})");
    EXPECT_EQ(sent(nodePath + "?action=play&plid=0"), "nothing");
}
