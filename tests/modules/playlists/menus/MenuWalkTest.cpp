#include "CMNode.h"
#include "MenuFixture.h"
#include "OrvoPlayListPaths.h"
#include "playlistUI/PlayListUI.h"
#include "PlayListWorker.h"

namespace {

// A user's way: only paths that rows gave are followed.
class MenuWalkTest : public MenuFixture {
protected:
    void SetUp() override {
        show(true, true);
        createPlayList("Mix");
        createPlayList("Other");
        addItems(1, {"a", "b", "c"});
        addItems(2, {"x", "y"});
        addItems(0, {"q", "r"});
        createCollection("Rock");
    }

    // The row of that title; fails the test when the list has none, or several.
    OrvoRoles row(const CMPath& list, const QString& title) {
        QList<OrvoRoles> found;
        for (const OrvoRoles& candidate : asRoles(rows(list))) {
            if (candidate.title().toString() == title)
                found.append(candidate);
        }
        EXPECT_EQ(found.size(), 1) << title << " at " << list.toString();
        return found.value(0);
    }
    static CMPath root() { return OrvoPlayListsRootPath(); }
    // The menu of a row in the list.
    CMPath menuOf(const CMPath& list, const QString& title) {
        return row(list, title).context().path();
    }
    CMPath menuOf(const QString& title) { return menuOf(root(), title); }
    // The menu of a track.
    CMPath trackMenu(const QString& list, const QString& track) {
        return menuOf(row(root(), list).path(), track);
    }
    // Opens an entry that leads on.
    CMPath pathOf(const CMPath& menu, const QString& entry) { return row(menu, entry).path(); }
    // Uses an entry; the path that is closed then, the error's text when it is refused.
    QString use(const CMPath& menu, const QString& entry, const QVariantHash& value = {}) {
        return useEntry(row(menu, entry).path(), value);
    }
    // The same for the path that an entry had when its menu was read.
    QString useEntry(const CMPath& path, const QVariantHash& value = {}) {
        const Answer answer = send(path, QVariant(value));
        EXPECT_TRUE(answer.answered) << path.toString();
        QStringList closed;
        for (const OrvoEvent& event : OrvoActionReply(answer.value.toHash()).events())
            closed.append(event.path().toString());
        return answer.failed ? answer.message() : closed.join(' ');
    }
    QStringList namesAt(const CMPath& list, int skip = 0) {
        QStringList names;
        for (const OrvoRoles& candidate : asRoles(rows(list)).mid(skip))
            names.append(candidate.title().toString());
        return names;
    }
    QStringList playLists() { return namesAt(OrvoPlayListPlGetlistPath(), 1); }

    static constexpr const char* PlayListMenu = "playlists:pl/context";
    static constexpr const char* TrackMenu = "playlists:pl/trackContext";
    static constexpr const char* AddModeMenu = "playlists:pl/selectAddMode";
};

} // namespace

TEST_F(MenuWalkTest, aPlaylistIsRenamedInItsMenu) {
    EXPECT_EQ(use(menuOf("Mix"), "Rename", {{"string", "New"}}), "");
    EXPECT_EQ(playLists(), QStringList({"New", "Other"}));
    EXPECT_EQ(row(menuOf("New"), "Rename").value().string(), "New");
}

TEST_F(MenuWalkTest, theSwitchesGoOnAndOffAndOnAgain) {
    for (const char* title : {"Set shuffle mode", "Set repeat mode"}) {
        for (const bool on : {true, false, true}) {
            EXPECT_EQ(use(menuOf("Mix"), title, {{"bool", on}}), "");
            EXPECT_EQ(row(menuOf("Mix"), title).value().bool_(), on) << title;
        }
        restart();
        EXPECT_TRUE(row(menuOf("Mix"), title).value().bool_()) << title;
        EXPECT_FALSE(row(menuOf("Other"), title).value().bool_()) << title;
    }
}

TEST_F(MenuWalkTest, aPlaylistIsPlayedClearedAndDeleted) {
    RecordingWorker player("Player");
    EXPECT_EQ(use(menuOf("Mix"), "Play"), PlayListMenu);
    EXPECT_EQ(player.requests.size(), 1);
    EXPECT_EQ(use(menuOf("Mix"), "Clear playlist"), PlayListMenu);
    EXPECT_EQ(titles(1), QStringList());
    EXPECT_EQ(use(menuOf("Mix"), "Delete playlist"), PlayListMenu);
    EXPECT_EQ(playLists(), QStringList("Other"));
    EXPECT_EQ(titles(2), QStringList({"x", "y"}));
}

TEST_F(MenuWalkTest, aPlaylistIsMergedWithAnother) {
    const CMPath modes = pathOf(pathOf(menuOf("Other"), "Merge with playlist"), "Mix");
    EXPECT_EQ(use(modes, "Append"), AddModeMenu);
    EXPECT_EQ(titles(1), QStringList({"a", "b", "c", "x", "y"}));
    EXPECT_EQ(playLists(), QStringList("Mix"));
}

TEST_F(MenuWalkTest, aPlaylistIsMergedWithOneMadeOnTheWay) {
    const CMPath targets = pathOf(menuOf("Other"), "Merge with playlist");
    EXPECT_EQ(use(targets, "Create new playlist", {{"string", "Third"}}), "");
    EXPECT_EQ(use(pathOf(targets, "Third"), "After current"), AddModeMenu);
    EXPECT_EQ(playLists(), QStringList({"Mix", "Third"}));
    EXPECT_EQ(titles(3), QStringList({"x", "y"}));
}

TEST_F(MenuWalkTest, aPlaylistGoesIntoACollectionAndOutAgain) {
    const CMPath collections = pathOf(menuOf("Mix"), "Add to collection");
    EXPECT_EQ(use(collections, "Create new collection", {{"string", "Jazz"}}), "");
    EXPECT_EQ(use(collections, "Jazz"), "playlists:cl/addToCollection");
    EXPECT_EQ(use(collections, "Rock"), "playlists:cl/addToCollection");
    const CMPath jazz = row(root(), "Jazz").path();
    EXPECT_EQ(namesAt(jazz), QStringList("Mix"));
    EXPECT_EQ(use(menuOf(jazz, "Mix"), "Remove from collection - Jazz"), PlayListMenu);
    EXPECT_EQ(namesAt(jazz), QStringList());
    EXPECT_EQ(namesAt(row(root(), "Rock").path()), QStringList("Mix"));
    EXPECT_EQ(playLists(), QStringList({"Mix", "Other"}));
}

TEST_F(MenuWalkTest, aPlaylistIsWholeInTheMenuThatACollectionOpens) {
    use(pathOf(menuOf("Mix"), "Add to collection"), "Rock");
    const CMPath rock = row(root(), "Rock").path();
    EXPECT_EQ(use(menuOf(rock, "Mix"), "Rename", {{"string", "New"}}), "");
    EXPECT_EQ(use(menuOf(rock, "New"), "Delete playlist"), PlayListMenu);
    EXPECT_EQ(namesAt(rock), QStringList());
    EXPECT_EQ(playLists(), QStringList("Other"));
}

TEST_F(MenuWalkTest, aCollectionIsDeletedAndItsPlaylistsStay) {
    use(pathOf(menuOf("Mix"), "Add to collection"), "Rock");
    EXPECT_EQ(use(menuOf("Rock"), "Delete collection"), "playlists:cl/context");
    EXPECT_EQ(playLists(), QStringList({"Mix", "Other"}));
    EXPECT_FALSE(namesAt(root()).contains("Rock"));
}

TEST_F(MenuWalkTest, aTrackIsMovedAndRemoved) {
    EXPECT_EQ(use(trackMenu("Mix", "a"), "Move track", {{"string", "2"}}), TrackMenu);
    EXPECT_EQ(titles(1), QStringList({"b", "c", "a"}));
    EXPECT_EQ(use(trackMenu("Mix", "a"), "Move track", {{"i32", 0}}), TrackMenu);
    EXPECT_EQ(titles(1), QStringList({"a", "b", "c"}));
    EXPECT_EQ(use(trackMenu("Mix", "b"), "Remove track"), TrackMenu);
    EXPECT_EQ(titles(1), QStringList({"a", "c"}));
    EXPECT_EQ(use(trackMenu("Mix", "a"), "Move track", {{"string", "last"}}),
              "Could not move items in playlist. Cannot move items to negative position.");
    EXPECT_EQ(titles(1), QStringList({"a", "c"}));
}

TEST_F(MenuWalkTest, aMenuLeftOpenMovesTheTrackThatItShows) {
    const CMPath menu = trackMenu("Mix", "a");
    EXPECT_EQ(use(trackMenu("Mix", "a"), "Move track", {{"string", "2"}}), TrackMenu);
    EXPECT_EQ(use(menu, "Remove track"), TrackMenu);
    EXPECT_EQ(titles(1), QStringList({"b", "c"}));
    EXPECT_EQ(namesAt(menu), QStringList());
}

TEST_F(MenuWalkTest, entriesLeftOpenActOnTheirTrackWhereItStandsNow) {
    const CMPath removal = row(trackMenu("Mix", "b"), "Remove track").path();
    const CMPath move = row(trackMenu("Mix", "c"), "Move track").path();
    EXPECT_EQ(use(trackMenu("Mix", "a"), "Move track", {{"string", "2"}}), TrackMenu);
    EXPECT_EQ(titles(1), QStringList({"b", "c", "a"}));
    EXPECT_EQ(useEntry(move, {{"string", "2"}}), TrackMenu);
    EXPECT_EQ(titles(1), QStringList({"b", "a", "c"}));
    EXPECT_EQ(useEntry(removal), TrackMenu);
    EXPECT_EQ(titles(1), QStringList({"a", "c"}));
}

TEST_F(MenuWalkTest, entriesOfATrackThatHasGoneAreRefused) {
    const CMPath removal = row(trackMenu("Mix", "b"), "Remove track").path();
    const CMPath move = row(trackMenu("Mix", "b"), "Move track").path();
    EXPECT_EQ(useEntry(removal), TrackMenu);
    const LogCapture log("PlayLists");
    for (const auto& [path, message] :
         {std::pair(removal, "Could not remove items from playlist. The playlist no longer holds"
                             " this track."),
          std::pair(move, "Could not move items in playlist. The playlist no longer holds this"
                          " track.")}) {
        const Answer answer = send(path, QVariantHash{{"string", "0"}});
        EXPECT_EQ(answer.message(), message);
        EXPECT_EQ(answer.error.name(), CMError::Conflict());
    }
    const QString gone = "Playlist id: 1 no longer holds item: 2";
    EXPECT_EQ(log.errors().filter("Playlist"), QStringList({gone, gone}));
    EXPECT_EQ(titles(1), QStringList({"a", "c"}));
}

TEST_F(MenuWalkTest, aNumberThatWasGivenAgainIsAnotherTrack) {
    const CMPath menu = trackMenu("PlayQueue", "r");
    const QList<CMPath> entries = {
        row(menu, "Remove track").path(), row(menu, "Move track").path(),
        row(pathOf(pathOf(menu, "Add to playlist"), "Mix"), "Append").path()};
    const QString number = menu.param("itemid");
    EXPECT_EQ(useEntry(entries.at(0)), TrackMenu);
    addItems(0, {"s"});
    ASSERT_EQ(trackMenu("PlayQueue", "s").param("itemid"), number);
    for (const CMPath& path : entries) {
        const Answer answer = send(path, QVariantHash{{"string", "0"}});
        EXPECT_TRUE(answer.message().endsWith("The playlist has changed meanwhile."))
            << answer.message();
        EXPECT_EQ(answer.error.name(), CMError::Conflict());
    }
    EXPECT_EQ(titles(0), QStringList({"q", "s"}));
    EXPECT_EQ(titles(1), QStringList({"a", "b", "c"}));
    EXPECT_EQ(use(trackMenu("PlayQueue", "s"), "Remove track"), TrackMenu);
    EXPECT_EQ(titles(0), QStringList("q"));
}

TEST_F(MenuWalkTest, aListThatHasTheNumberOfTheChosenOneIsNotAddedTo) {
    const CMPath targets = pathOf(trackMenu("Mix", "b"), "Add to playlist");
    const CMPath modes = row(targets, "Other").path();
    const CMPath append = row(modes, "Append").path();
    addItems(2, {"z"});
    EXPECT_EQ(useEntry(append), AddModeMenu) << "a list that has changed is still the same one";
    EXPECT_EQ(titles(2), QStringList({"x", "y", "z", "b"}));
    EXPECT_EQ(use(menuOf("Other"), "Delete playlist"), PlayListMenu);
    ASSERT_EQ(createPlayList("Others"), 2);
    const LogCapture log("PlayLists");
    for (const CMPath& entry : {append, row(modes, "Now").path()}) {
        const Answer answer = send(entry, QVariantHash());
        EXPECT_EQ(answer.message(),
                  "Could not add items to playlist. The playlist has changed meanwhile.");
        EXPECT_EQ(answer.error.name(), CMError::Conflict());
    }
    const QString another = "Another playlist by now: 2";
    EXPECT_EQ(log.errors().filter("playlist"), QStringList({another, another}));
    EXPECT_EQ(titles(2), QStringList());
    EXPECT_EQ(use(pathOf(targets, "Others"), "Append"), AddModeMenu);
    EXPECT_EQ(titles(2), QStringList("b"));
}

TEST_F(MenuWalkTest, aNumberGivenElsewhereLeavesOtherMenusAlone) {
    const CMPath removal = row(trackMenu("Mix", "b"), "Remove track").path();
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(use(menuOf("PlayQueue"), "Clear"), "playlists:pq/context");
        addItems(0, {"s", "t"});
    }
    EXPECT_EQ(useEntry(removal), TrackMenu);
    EXPECT_EQ(titles(1), QStringList({"a", "c"}));
}

TEST_F(MenuWalkTest, entriesFromBeforeARestartAreRefused) {
    const CMPath removal = row(trackMenu("Mix", "b"), "Remove track").path();
    restart();
    EXPECT_EQ(useEntry(removal),
              "Could not remove items from playlist. The playlist has changed meanwhile.");
    EXPECT_EQ(titles(1), QStringList({"a", "b", "c"}));
}

TEST_F(MenuWalkTest, aTrackGoesToThePlayQueue) {
    RecordingWorker player("Player");
    EXPECT_EQ(use(pathOf(trackMenu("Mix", "b"), "Add to playqueue"), "Append"), AddModeMenu);
    EXPECT_EQ(titles(0), QStringList({"q", "r", "b"}));
    EXPECT_TRUE(player.requests.isEmpty());
    EXPECT_EQ(use(pathOf(trackMenu("Mix", "c"), "Add to playqueue"), "Now"), AddModeMenu);
    EXPECT_EQ(titles(0).size(), 4);
    EXPECT_EQ(player.requests.size(), 1);
    EXPECT_EQ(titles(1), QStringList({"a", "b", "c"}));
}

TEST_F(MenuWalkTest, aTrackGoesToAnotherPlaylist) {
    EXPECT_EQ(use(pathOf(pathOf(trackMenu("Mix", "b"), "Add to playlist"), "Other"), "Append"),
              AddModeMenu);
    EXPECT_EQ(titles(2), QStringList({"x", "y", "b"}));
    EXPECT_EQ(use(pathOf(pathOf(trackMenu("Mix", "b"), "Add to playlist"), "Mix"), "Append"),
              AddModeMenu);
    EXPECT_EQ(titles(1), QStringList({"a", "b", "c", "b"}));
    const CMPath targets = pathOf(trackMenu("Other", "y"), "Add to playlist");
    EXPECT_EQ(use(targets, "Create new playlist", {{"string", "Third"}}), "");
    EXPECT_EQ(use(pathOf(targets, "Third"), "Append"), AddModeMenu);
    EXPECT_EQ(titles(3), QStringList("y"));
    EXPECT_EQ(playLists(), QStringList({"Mix", "Other", "Third"}));
}

TEST_F(MenuWalkTest, aTrackOfThePlayQueueMovesGoesAndIsKeptElsewhere) {
    EXPECT_FALSE(namesAt(trackMenu("PlayQueue", "q")).contains("Add to playqueue"));
    EXPECT_EQ(use(trackMenu("PlayQueue", "q"), "Move track", {{"string", "1"}}), TrackMenu);
    EXPECT_EQ(titles(0), QStringList({"r", "q"}));
    EXPECT_EQ(use(pathOf(pathOf(trackMenu("PlayQueue", "q"), "Add to playlist"), "Mix"), "Append"),
              AddModeMenu);
    EXPECT_EQ(titles(1), QStringList({"a", "b", "c", "q"}));
    EXPECT_EQ(use(trackMenu("PlayQueue", "q"), "Remove track"), TrackMenu);
    EXPECT_EQ(titles(0), QStringList("r"));
}

TEST_F(MenuWalkTest, thePlayQueueIsPlayedKeptAsAPlaylistAndCleared) {
    RecordingWorker player("Player");
    const CMPath menu = menuOf("PlayQueue");
    EXPECT_EQ(use(menu, "Play"), "playlists:pq/context");
    EXPECT_EQ(player.requests.size(), 1);
    EXPECT_EQ(use(pathOf(pathOf(menu, "Merge with playlist"), "Mix"), "Append"), AddModeMenu);
    EXPECT_EQ(titles(1), QStringList({"a", "b", "c", "q", "r"}));
    EXPECT_EQ(titles(0), QStringList({"q", "r"}));
    EXPECT_EQ(use(menu, "Clear"), "playlists:pq/context");
    EXPECT_EQ(titles(0), QStringList());
}

TEST_F(MenuWalkTest, everyMenuIsSentByRangeWithItsFullCount) {
    const QList<CMPath> menus = {menuOf("Mix"),
                                 trackMenu("Mix", "a"),
                                 menuOf("PlayQueue"),
                                 menuOf("Rock"),
                                 pathOf(menuOf("Mix"), "Merge with playlist"),
                                 pathOf(trackMenu("Mix", "a"), "Add to playqueue"),
                                 pathOf(menuOf("Mix"), "Add to collection")};
    QList<int> counts;
    for (const CMPath& menu : menus) {
        const QList<RowText> all = rowTexts(rows(menu));
        counts.append(all.size());
        for (int i = 0; i < all.size(); ++i) {
            const OrvoRowsRoles one = rows(menu, i, i);
            EXPECT_EQ(rowTexts(one), all.mid(i, 1)) << menu.toString() << i;
            EXPECT_EQ(one.rowsCount(), all.size()) << menu.toString();
        }
    }
    EXPECT_EQ(counts, QList<int>({9, 4, 4, 1, 4, 3, 3}));
}

TEST_F(MenuWalkTest, theFixedNodesAreMadeInTheirOrder) {
    const auto* tree = worker()->findChild<PlayListUI*>();
    ASSERT_NE(tree, nullptr);
    QStringList paths;
    for (const QObject* child : tree->children()) {
        if (const auto* node = qobject_cast<const CMNode*>(child))
            paths.append(node->path().toString());
    }
    EXPECT_EQ(
        paths.mid(0, 10),
        QStringList({"playlists:root", "playlists:pq/context", "playlists:pl/list",
                     "playlists:pl/addToPlaylist", "playlists:pl/selectAddMode",
                     "playlists:pl/context", "playlists:pl/trackContext", "playlists:cl/items",
                     "playlists:cl/addToCollection", "playlists:cl/context"}));
}
