#include <sqlite3.h>

#include "FaultSweep.h"
#include "FaultTable.h"

namespace {

using Effect = Outcome::Effect;
using Position = OrvoPlayListAddPosition;

// By hand, what the edits do: entries of playlist 1 turned by one place, so many times.
#define TURN(by)                                                                                   \
    "UPDATE playlists_items SET sequenceNumber = (sequenceNumber + " by ") % 6 + 100"              \
    " WHERE playlist = 1;"                                                                         \
    "UPDATE playlists_items SET sequenceNumber = sequenceNumber - 100 WHERE playlist = 1;"
#define LAST_PLAYED(number) "UPDATE playlists SET lastPlayedIndex = " number " WHERE uid = 1;"

constexpr const char* EntriesRemoved =
    "DELETE FROM playlists_items WHERE playlist = 1 AND sequenceNumber IN (1, 2, 4);"
    "DELETE FROM items WHERE uid NOT IN (SELECT item FROM playlists_items);"
    "UPDATE playlists_items SET sequenceNumber = 1 WHERE playlist = 1 AND sequenceNumber = 3;"
    "UPDATE playlists_items SET sequenceNumber = 2 WHERE playlist = 1 AND sequenceNumber = 5;";

Outcome done(const QString& result) {
    return {result, {}, Effect::Done};
}

Outcome refused(const QString& result) {
    return {result, {}};
}

Outcome partly(const QString& result, const char* sql) {
    Outcome outcome{result, {}, Effect::Partly};
    outcome.partly = sql;
    return outcome;
}

// The edits of the objects in memory: what they return, what they announce, and that they say what
// the file says.
class ModelFaultsTest : public FaultSweep {
protected:
    void onRestored() override {
        m_signals = std::make_unique<SignalLog>();
        m_signals->watch(&manager());
        for (PlayListBase* pl : manager().getAllPlayList())
            m_signals->watch(pl);
        for (CollectionBase* cl : manager().getAllCollection())
            m_signals->watch(cl);
    }
    void TearDown() override {
        m_signals.reset();
        FaultSweep::TearDown();
    }

    PlayListBase& pl(int uid = 1) { return *manager().getPlayListByUid(uid); }
    CollectionBase& cl(int uid) { return *manager().getCollectionByUid(uid); }

    // "3|itemsAdded append 6 3": what the edit returned and what was heard of it.
    template <typename Edit>
    std::function<QString()> heard(Edit edit) {
        return [this, edit] {
            m_signals->take();
            const QString result = QVariant(edit()).toString();
            return result + '|' + m_signals->take().join(", ");
        };
    }
    template <typename Edit>
    void sweepEdit(const char* name, Edit edit, const QList<Outcome>& outcomes,
                   bool mayTrail = false) {
        Operation operation{name, heard(edit), outcomes};
        operation.mayTrail = mayTrail;
        operation.anyErrors = true;
        sweep(operation);
    }

private:
    std::unique_ptr<SignalLog> m_signals;
};

TEST_F(ModelFaultsTest, startingShowsWhatIsThere) {
    Operation operation{"PlayListManager, start", {}, {}};
    operation.prepare = "UPDATE playlists_items SET playlist = 0 WHERE playlist = 2;";
    FaultRow row;
    row.operation = operation.name;
    for (const Fault& fault : faults()) {
        for (int nth = 1;; ++nth) {
            SCOPED_TRACE(std::string(fault.name) + ", point " + std::to_string(nth));
            restore(operation);
            dropManager();
            // Full again, as before a start.
            run("UPDATE playlists SET lastPlayedIndex = 3 WHERE uid = 1");
            sqlite3_db_release_memory(StoreProbe::connection(database()));
            FaultVfs::set(fault, nth);
            manager();
            // As the worker does once the device runs.
            database().removeUnusedItems();
            FaultVfs::clear();
            if (FaultVfs::failures() == 0) {
                EXPECT_EQ(inFile(), inMemory());
                break;
            }
            ++row.points;
            // While it lasts, what cannot be read cannot be shown, nor what is left over removed;
            // the next start does both.
            const bool same = inFile() == inMemory() && stateErrors(false).isEmpty();
            if (fault.lasting) {
                dropManager();
                manager();
                database().removeUnusedItems();
            }
            const bool asStated = inFile() == inMemory() && stateErrors(false).isEmpty();
            EXPECT_TRUE(asStated) << qPrintable(inMemory().join(", ")) << " and "
                                  << qPrintable(inFile().join(", "));
            row.asStated += asStated ? 1 : 0;
            ++(same ? row.done : row.partly);
        }
    }
    addFaultRow(row);
}

TEST_F(ModelFaultsTest, anAdditionIsDoneOrNot) {
    sweepEdit("PlayList::addItems", [this] { return pl().addItems(Position::Append, newItems(3)); },
              {done("6|itemsAdded append 6 3"), refused("-1|")});
    sweepEdit("PlayList::addItems, inside",
              [this] { return pl().addItems(Position::AfterCurrent, newItems(3)); },
              {done("4|itemsAdded afterCurrent 4 3"), refused("-1|")});
}

TEST_F(ModelFaultsTest, anAdditionAtPlacesIsDoneOrNot) {
    sweepEdit("PlayList::addItemsAt",
              [this] {
                  return pl().addItemsAt({{0, 4, 8}, true}, newItems(3));
              },
              {done("0|itemsInserted 0,4,8"), refused("-1|")});
}

TEST_F(ModelFaultsTest, aRemovalIsDoneOrNot) {
    // The entries and the last played position are written one after the other; memory has both.
    sweepEdit(
        "PlayList::removeItems",
        [this] {
            return pl().removeItems({4, 1, 2});
        },
        {done("3|itemsRemoved 1,2,4 3"), refused("-1|"),
         partly("3|itemsRemoved 1,2,4 3", EntriesRemoved)},
        true);
}

TEST_F(ModelFaultsTest, aMoveIsDoneOrNot) {
    sweepEdit(
        "PlayList::moveItem", [this] { return pl().moveItem(5, 0); },
        {done("true|itemMoved 5 0"), refused("false|"), partly("true|itemMoved 5 0", TURN("1"))},
        true);
    // Several move together, with the position, or not at all.
    sweepEdit("PlayList::moveItems",
              [this] {
                  return pl().moveItems({0, 1}, 5);
              },
              {done("true|itemMoved 0 5, itemMoved 0 5"), refused("false|")});
}

TEST_F(ModelFaultsTest, anotherOrderIsGivenOrNot) {
    sweepEdit("PlayList::setOrder",
              [this] {
                  return pl().setOrder({3, 1, 2, 5, 0, 4});
              },
              {done("true|itemsReordered 3,1,2,5,0,4"), refused("false|")});
}

TEST_F(ModelFaultsTest, aClearIsDoneInPartsOrNot) {
    // The store removes the items after the entries, outside of their transaction: an error there
    // leaves the list empty, without a signal.
    sweepEdit(
        "PlayList::clearItems", [this] { return pl().clearItems(); },
        {done("true|itemsCleared"), refused("false|"),
         partly("false|", "DELETE FROM playlists_items WHERE playlist = 1")},
        true);
}

TEST_F(ModelFaultsTest, aSettingIsStoredOrStaysAsItWas) {
    sweepEdit("PlayList::setName", [this] { return pl().setName("Renamed"); },
              {done("true|nameChanged Renamed"), refused("false|")});
    sweepEdit("PlayList::setShuffle", [this] { return pl().setShuffle(true); },
              {done("true|shuffleChanged true"), refused("false|")});
    sweepEdit("PlayList::setRepeatAll", [this] { return pl().setRepeatAll(true); },
              {done("true|repeatAllChanged true"), refused("false|")});
    sweepEdit(
        "PlayList::setLastSequenceNumber",
        [this] {
            pl().setLastSequenceNumber(1);
            return "";
        },
        {done("|"), refused("|")}, true);
}

TEST_F(ModelFaultsTest, aPlaylistIsMadeAndDeletedOrNot) {
    sweepEdit("PlayListManager::createPlayList",
              [this] {
                  const PlayListBase* made = manager().createPlayList("x");
                  return made ? made->getUid() : -1;
              },
              {done("3|playlistCreated 3"), refused("-1|")});
    sweepEdit("PlayListManager::deletePlayList", [this] { return manager().deletePlayList(2); },
              {done("true|playlistRemoved, playlistDeleted 2"), refused("false|"),
               partly("false|playlistRemoved", "DELETE FROM collections_playlists")});
}

TEST_F(ModelFaultsTest, aCollectionIsEditedOrNot) {
    sweepEdit("PlayListManager::createCollection",
              [this] {
                  const CollectionBase* made = manager().createCollection("x");
                  return made ? made->getUid() : -1;
              },
              {done("3|collectionCreated 3"), refused("-1|")});
    sweepEdit("PlayListManager::deleteCollection", [this] { return manager().deleteCollection(1); },
              {done("true|collectionDeleted 1"), refused("false|")});
    sweepEdit("Collection::addPlayList", [this] { return cl(2).addPlayList(&pl()); },
              {done("true|playlistAdded"), refused("false|")});
    sweepEdit("Collection::removePlayList", [this] { return cl(1).removePlayList(&pl(2)); },
              {done("true|playlistRemoved"), refused("false|")});
}

} // namespace
