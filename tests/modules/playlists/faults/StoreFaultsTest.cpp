#include <sqlite3.h>

#include "Database.h"
#include "FaultSweep.h"

namespace {

using Effect = Outcome::Effect;
using Position = OrvoPlayListAddPosition;

// A commit that fails undoes its transaction, which the second try finds gone.
const char* const commitFailed = "Commit transaction failed";

QString text(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString titlesOf(const QList<OrvoPlayListItem>& items) {
    QString titles;
    for (const OrvoPlayListItem& item : items)
        titles += item.isEmpty() ? QStringLiteral("-") : item.title();
    return titles;
}

Outcome done(const QString& result) {
    return {result, {}, Effect::Done};
}

Outcome read(const QString& result) {
    return {result, {}};
}

Outcome refused(const QString& result, const QStringList& errors) {
    return {result, errors};
}

// What no caller can tell from success by the result alone.
Outcome lost(const QString& result) {
    Outcome outcome{result, {QString::fromLatin1(commitFailed)}};
    outcome.wronglyAcknowledged = true;
    return outcome;
}

// The store's operations by themselves.
class StoreFaultsTest : public FaultSweep {
protected:
    StoreFaultsTest() { useModel = false; }

    QString add(Position::Enum position, int count = 3) {
        return QString::number(database().addItems(party, position, newItems(count), nullptr));
    }
    // A step of a transaction, undone at the end whatever it came to.
    template <typename Step>
    QString within(Step step) {
        if (database().beginTransaction() != SQLITE_OK)
            return QStringLiteral("not begun");
        const QString result = step();
        database().rollbackTransaction();
        return result;
    }
};

TEST_F(StoreFaultsTest, readingGivesWhatCouldBeRead) {
    Outcome part = refused("abcdef", {"Error fetching PlayList items from DB"});
    part.isPrefix = true;
    sweep({"getItems",
           [this] { return titlesOf(database().getItems(party, 0, 9)); },
           {read("abcdef"), part}});
    sweep({"getItemByUid",
           [this] { return titlesOf({database().getItemByUid(2)}); },
           {read("b"), refused("-", {"Error fetching item by UID"})}});
    sweep({"getNextSequenceNumber",
           [this] { return QString::number(database().getNextSequenceNumber(party)); },
           {read("6"), refused("-1", {"Error fetching the next sequenceNumber"})}});
    sweep({"addItemsNextSequenceNumber",
           [this] {
               return QString::number(
                   database().addItemsNextSequenceNumber(party, Position::Append));
           },
           {read("6"), refused("-1", {"Error fetching the next sequenceNumber"})}});
    const auto names = [this] {
        QStringList texts;
        for (const PlayListRecord& pl : database().getPlayLists())
            texts.append(QStringLiteral("%1:%2").arg(pl.name).arg(pl.size));
        return texts.join(',');
    };
    Outcome some = read("Party:6,Quiet:2");
    some.isPrefix = true;
    sweep({"getPlayLists", names, {read("Party:6,Quiet:2"), some}});
    sweep({"getPlayQueue",
           [this] { return QString::number(database().getPlayQueue().uid); },
           {read("0"), read("-1")}});
    const auto groups = [this] {
        QStringList texts;
        for (const CollectionRecord& cl : database().getCollections())
            texts.append(QStringLiteral("%1:%2").arg(cl.name).arg(cl.playlists.value(0)));
        return texts.join(',');
    };
    some = refused("Box:2,Shelf:0", {"Unable to fetch collections"});
    some.isPrefix = true;
    sweep({"getCollections", groups, {read("Box:2,Shelf:0"), some}});
    sweep({"countPlaylists",
           [this] { return QString::number(database().countPlaylists()); },
           {read("3"), read("0")}});
    sweep({"countPlaylistsItems",
           [this] { return QString::number(database().countPlaylistsItems()); },
           {read("8"), read("0")}});
    sweep({"countCollections",
           [this] { return QString::number(database().countCollections()); },
           {read("2"), read("0")}});
}

TEST_F(StoreFaultsTest, everyItemThatIsNotFoundIsSaid) {
    // Any of them may be missing, each with its line, of which five are written.
    QList<Outcome> outcomes;
    for (const QList<int>& uids : {QList<int>{3, 8}, QList<int>{6, 5, 4, 3, 2, 7}}) {
        const QString all = uids.size() == 2 ? "ch" : "fedcbg";
        outcomes = {read(all)};
        for (int gaps = 1; gaps < 1 << uids.size(); ++gaps) {
            QString titles = all;
            QStringList errors;
            for (int i = 0; i < uids.size(); ++i) {
                if (gaps & 1 << i) {
                    titles[i] = '-';
                    errors.append(errors.size() < 5 ? "Error fetching item by UID" : "and 1 more");
                }
            }
            outcomes.append(refused(titles, errors));
            // A look into a playlist says so itself; there are up to three, and three walks.
            for (int looks = 1; looks <= 6; ++looks) {
                errors.prepend("Error fetching PlayList items from DB");
                outcomes.append(refused(titles, errors));
            }
        }
        // A walk that breaks off may have found all that was wanted by then, or the next one does.
        for (int walks = 1; walks <= 2; ++walks) {
            outcomes.append(refused(all, {}));
            for (int i = 0; i < walks; ++i)
                outcomes.last().errors.append("Error fetching PlayList items from DB");
        }
        sweep({uids.size() == 2 ? "getItemsByUids, few" : "getItemsByUids, many",
               [this, uids] {
                   PlayListRecord queue;
                   queue.uid = 0;
                   return titlesOf(database().getItemsByUids({queue, party, quiet}, uids));
               },
               outcomes});
    }
}

TEST_F(StoreFaultsTest, addingAddsAllOrNothing) {
    const auto outcomes = [](const char* number) {
        return QList<Outcome>{
            done(number),
            lost(number),
            refused("-1", {"Error adding items to list"}),
            refused("-1", {"Error fetching the next sequenceNumber", "Error adding items to list"}),
            refused("-1", {"Unable to move item block before adding items",
                           "Error adding items to list"}),
            refused("-1", {"Error inserting item into DB", "Error adding items to list"}),
            refused("-1", {"Error inserting item into playlist DB", "Error adding items to list"}),
        };
    };
    sweep({"addItems, at the end", [this] { return add(Position::Append); }, outcomes("6")});
    sweep({"addItems, after the current", [this] { return add(Position::AfterCurrent); },
           outcomes("4")});
    sweep({"addItems, many", [this] { return add(Position::Append, 100); }, outcomes("6")});
    Operation limited{"addItems, with a limit", [this] { return add(Position::Append); },
                      outcomes("6")};
    limited.itemsLimit = 10;
    sweep(limited);
    Operation full{"addItems, no room",
                   [this] { return add(Position::Append); },
                   {refused("-2", {"Error adding playlist items: database reached limit!"}),
                    refused("-1", {"Error adding items to list"})}};
    full.itemsLimit = 8;
    sweep(full);
}

TEST_F(StoreFaultsTest, removingRemovesAllOrNothing) {
    // So many that all items are looked at, and one, which is looked for by itself.
    for (const QList<int>& indices : {QList<int>{1, 2, 4}, QList<int>{3}}) {
        const QString count = QString::number(indices.size());
        sweep(
            {indices.size() == 1 ? "removeItems, one" : "removeItems",
             [this, indices] { return QString::number(database().removeItems(party, indices)); },
             {done(count), lost(count), refused("-1", {"Error removing items from list"}),
              refused("-1",
                      {"Unable to remove all item indices", "Error removing items from list"}),
              refused("-1",
                      {"Error removing partial items from list",
                       "Unable to remove all item indices", "Error removing items from list"}),
              refused("-1", {"Unable to clean up unused items", "Error removing items from list"}),
              refused("-1",
                      {"Unable to restore sequence numbers", "Error removing items from list"}),
              refused("-1",
                      {"Error fetching PlayList items from DB",
                       "Unable to restore sequence numbers", "Error removing items from list"})}});
    }
}

TEST_F(StoreFaultsTest, movingIsDoneOrNot) {
    for (int to : {0, 5}) {
        sweep({to == 0 ? "moveItem, to the front" : "moveItem, to the end",
               [this, to] { return text(database().moveItem(party, 3, to)); },
               {done("true"), lost("true"), refused("false", {"Error moving PlayListItem"})}});
    }
}

TEST_F(StoreFaultsTest, anotherOrderIsGivenOrNot) {
    sweep({"reorderItems",
           [this] {
               return text(database().reorderItems(party, 0, {3, 1, 2, 5, 0, 4}, 0));
           },
           {done("true"), lost("true"), refused("false", {"Error moving PlayListItem"}),
            refused("false", {"Error updating PlayList", "Error moving PlayListItem"})}});
}

TEST_F(StoreFaultsTest, aClearIsTwoSteps) {
    for (const PlayListRecord* pl : {&party, &quiet}) {
        const bool isSmall = pl == &quiet;
        Outcome half{"false", {"Unable to clean up unused items"}, Effect::Partly};
        half.partly = isSmall ? "DELETE FROM playlists_items WHERE playlist = 2"
                              : "DELETE FROM playlists_items WHERE playlist = 1";
        sweep({isSmall ? "clearItems, few" : "clearItems",
               [this, pl] { return text(database().clearItems(*pl)); },
               {done("true"),
                refused("false",
                        {"Error removing partial items from list",
                         QStringLiteral("Unable to clear playList %1").arg(isSmall ? 2 : 1)}),
                half}});
    }
}

TEST_F(StoreFaultsTest, unusedItemsGoOrStay) {
    Operation operation{"removeUnusedItems",
                        [this] {
                            database().removeUnusedItems();
                            return QString();
                        },
                        {done("")}};
    operation.prepare = "DELETE FROM playlists_items WHERE playlist = 2;";
    Outcome stay{"", {}, Effect::Partly};
    stay.partly = "SELECT 1";
    operation.outcomes.append(stay);
    sweep(operation);
}

TEST_F(StoreFaultsTest, aStepWithinATransactionIsDoneOrNot) {
    const auto step = [](const char* name, std::function<QString()> run, const char* success,
                         QList<Outcome> failures) {
        failures.prepend(read(success));
        failures.append(refused("not begun", {}));
        return Operation{name, std::move(run), failures};
    };
    sweep(step("offsetItemsFromTransaction",
               [this] {
                   return within(
                       [this] { return text(database().offsetItemsFromTransaction(party, 2, 3)); });
               },
               "true", {read("false")}));
    sweep(step("addItemsFromSequenceNumber",
               [this] {
                   return within([this] {
                       return text(database().addItemsFromSequenceNumber(party, 6, newItems(2)));
                   });
               },
               "true",
               {refused("false", {"Error inserting item into DB"}),
                refused("false", {"Error inserting item into playlist DB"})}));
    sweep(step("removeItemsHelper",
               [this] {
                   return within([this] {
                       return QString::number(database().removeItemsHelper(party, 1, 2));
                   });
               },
               "2", {refused("-1", {"Error removing partial items from list"})}));
    sweep(step("moveItemTransaction",
               [this] {
                   return within(
                       [this] { return text(database().moveItemTransaction(party, 1, 4)); });
               },
               "true", {read("false")}));
    sweep(step("deletePlayListTransaction",
               [this] {
                   return within(
                       [this] { return text(database().deletePlayListTransaction(party)); });
               },
               "true",
               {refused("false", {"Error deleting PlayList: delete commad failed"}),
                refused("false", {"Unable to clean up unused items"})}));
    sweep(step("beginImmediateTransaction",
               [this] {
                   if (database().beginImmediateTransaction() != SQLITE_OK)
                       return QStringLiteral("not begun");
                   return QString::number(database().rollbackTransaction());
               },
               "0", {}));
}

TEST_F(StoreFaultsTest, aRowOfAPlaylistIsWrittenOrNot) {
    sweep({"createPlayList",
           [this] { return QString::number(database().createPlayList(QStringLiteral("x")).uid); },
           {done("3"), refused("-1", {"Unable to create playlist in database"})}});
    sweep({"updatePlayList",
           [this] {
               PlayListRecord changed = party;
               changed.name = QStringLiteral("Renamed");
               changed.lastPlayedIndex = 1;
               return text(database().updatePlayList(changed));
           },
           {done("true"), refused("false", {"Error updating PlayList"})}});
    sweep({"deletePlayList",
           [this] { return text(database().deletePlayList(quiet)); },
           {done("true"), lost("true"), refused("false", {"Error deleting PlayList"}),
            refused("false",
                    {"Error deleting PlayList: delete commad failed", "Error deleting PlayList"}),
            refused("false", {"Unable to clean up unused items", "Error deleting PlayList"})}});
}

TEST_F(StoreFaultsTest, aRowOfACollectionIsWrittenOrNot) {
    sweep({"createCollection",
           [this] { return QString::number(database().createCollection(QStringLiteral("x")).uid); },
           {done("3"), refused("-1", {"Unable to create collection in database"})}});
    sweep({"deleteCollection",
           [this] { return text(database().deleteCollection(box)); },
           {done("true"), refused("false", {"Unable to delete collection uid=1 in database"})}});
    sweep({"addToCollection",
           [this] { return text(database().addToCollection(shelf, 1)); },
           {done("true"), refused("false", {"Unable to add pl=1 to collection=2"})}});
    sweep({"removeFromCollection",
           [this] { return text(database().removeFromCollection(box, 2)); },
           {done("true"),
            refused("false", {"Unable to remove pl=2 from collection=1 in database"})}});
}

TEST_F(StoreFaultsTest, aVacuumThatFailsChangesNothing) {
    sweep({"vacuum",
           [this] {
               database().setVacuumNeeded();
               database().vacuum();
               return QString();
           },
           {read("")}});
}

} // namespace
