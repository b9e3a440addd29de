#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include "CMRootWorker.h"
#include "Controller.h"
#include "FaultSweep.h"
#include "OrvoPlayListPaths.h"
#include "OrvoRoles.h"

namespace {

using Effect = Outcome::Effect;
using Path = CMPath (*)();

// What the module's worker is to the root: the commands, and nothing beside them.
class CommandsOnly : public CMNodesWorker {
public:
    explicit CommandsOnly(PlayListManager* manager)
        : CMNodesWorker({}, QStringLiteral("PlayLists")), m_controller(nullptr, manager) {}
    void setDataRequest(const CMSetDataRequest& request) override {
        m_controller.handleSetData(request);
    }

private:
    Controller m_controller;
};

// All commands: the answer, and what became of memory and file.
class CommandFaultsTest : public FaultSweep {
protected:
    CommandFaultsTest() : m_root(std::make_unique<CMRootWorker>()) {}

    void TearDown() override {
        m_worker.reset();
        FaultSweep::TearDown();
        m_root.reset();
    }
    void onRestored() override {
        m_worker.reset();
        m_worker = std::make_unique<CommandsOnly>(&manager());
    }

    // "true", "3", the number of items prepared, or the error's text.
    QString answer(Path path, const QVariant& args) {
        QString text = "unanswered";
        const CMReply<QVariant> reply;
        reply.onSuccess([&text](const QVariant& value) {
            if (value.type() == QVariant::List) {
                text.clear();
                for (const QVariant& item : value.toList())
                    text += item.toHash().isEmpty() ? "-" : "+";
                return;
            }
            const OrvoValue result = OrvoActionReply(value.toHash()).result().value();
            text = result.containsI32_() ? QString::number(result.i32())
                                         : QVariant(result.bool_()).toString();
        });
        reply.onError([&text](const CMError& error) { text = error.message().toString(); });
        m_root->setDataRequest(CMSetDataRequest(path(), args, reply));
        // What is prepared is answered with the next turn, what was deleted goes.
        for (int turn = 0; turn < 3 && text == "unanswered"; ++turn)
            QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return text;
    }

    void sweepCommand(const char* name, Path path, const QVariant& args,
                      const QList<Outcome>& outcomes, bool mayTrail = false, int limit = 0) {
        Operation operation{name, [this, path, args] { return answer(path, args); }, outcomes};
        operation.anyErrors = true;
        operation.mayTrail = mayTrail;
        operation.itemsLimit = limit;
        sweep(operation);
    }

    static QVariantList hashes(int count) {
        QVariantList list;
        for (const OrvoPlayListItem& item : newItems(count))
            list.append(item.toHash());
        return list;
    }
    static QVariantList paths(const QList<int>& uids) {
        QVariantList list;
        for (int uid : uids)
            list.append((OrvoPlayListItemPath() + QString::number(uid)).toString());
        return list;
    }
    static Outcome done(const QString& answer = "true") { return {answer, {}, Effect::Done}; }
    static Outcome refused(const QString& text) { return {text, {}}; }
    static Outcome partly(const QString& text, const char* sql) {
        Outcome outcome{text, {}, Effect::Partly};
        outcome.partly = sql;
        return outcome;
    }
    static Outcome unstored(const QString& prefix) {
        return refused(prefix + " The change could not be stored.");
    }

private:
    std::unique_ptr<CMRootWorker> m_root;
    std::unique_ptr<CommandsOnly> m_worker;
};

TEST_F(CommandFaultsTest, aCommandOnAPlaylistIsDoneOrRefused) {
    sweepCommand("pl/create", OrvoPlayListPlCreatePath, QVariantHash{{"name", "x"}},
                 {done("3"), refused("Could not create playlist. Create playlist error.")});
    sweepCommand("pl/delete", OrvoPlayListPlDeletePath, QVariantHash{{"plid", 2}},
                 {done(), refused("Could not delete playlist. Delete playlist error."),
                  partly("Could not delete playlist. Delete playlist error.",
                         "DELETE FROM collections_playlists")});
    sweepCommand("pl/setName", OrvoPlayListPlSetNamePath, QVariantHash{{"plid", 1}, {"name", "R"}},
                 {done(), unstored("Could not set playlist name.")});
    sweepCommand("pl/setShuffle", OrvoPlayListPlSetShufflePath,
                 QVariantHash{{"plid", 1}, {"mode", 1}},
                 {done(), unstored("Could not set shuffle mode on playlist.")});
    sweepCommand("pl/setRepeat", OrvoPlayListPlSetRepeatPath,
                 QVariantHash{{"plid", 1}, {"mode", 2}},
                 {done(), unstored("Could not set repeat mode on playlist.")});
    sweepCommand(
        "pl/play", OrvoPlayListPlPlayPath, QVariantHash{{"plid", 1}},
        {refused("true"), refused("Could not start playback on playlist. Cannot get first item")});
}

TEST_F(CommandFaultsTest, aCommandOnEntriesIsDoneOrRefused) {
    const QString clear = "Could not clear playlist. Clear playlist failed.";
    sweepCommand(
        "pl/clear", OrvoPlayListPlClearPath, QVariantHash{{"plid", 1}},
        {done(), refused(clear), partly(clear, "DELETE FROM playlists_items WHERE playlist = 1")},
        true);
    sweepCommand("pl/removeItems", OrvoPlayListPlRemoveItemsPath,
                 QVariantHash{{"plid", 1}, {"items", QVariantList{4, 5}}},
                 {done(), refused("Could not remove items from playlist. Remove items failed")});
    sweepCommand("pl/moveItems", OrvoPlayListPlMoveItemspath,
                 QVariantHash{{"plid", 1}, {"to", 5}, {"items", QVariantList{4}}},
                 {done(), refused("Could not move items in playlist. Move items failed")});
    sweepCommand("pl/moveItems, several", OrvoPlayListPlMoveItemspath,
                 QVariantHash{{"plid", 1}, {"to", 5}, {"items", QVariantList{1, 3}}},
                 {done(), refused("Could not move items in playlist. Move items failed")});
    sweepCommand("pl/setOrder", OrvoPlayListPlSetOrderPath,
                 QVariantHash{{"plid", 1}, {"order", QVariantList{5, 4, 3, 2, 1, 0}}},
                 {done(), refused("Could not set order of playlist. Set order failed")});
}

TEST_F(CommandFaultsTest, anAdditionIsDoneOrRefused) {
    const QString external = "Could not add external items to playlist. No items were added.";
    const QString inside = "Could not add items to playlist. ";
    sweepCommand("pl/addExternalItems", OrvoPlayListPlAddExternalItemsPath,
                 QVariantHash{{"plid", 1}, {"items", hashes(3)}}, {done(), refused(external)});
    sweepCommand("pl/addExternalItems, now", OrvoPlayListPlAddExternalItemsPath,
                 QVariantHash{{"plid", 1}, {"items", hashes(3)}, {"mode", "now"}},
                 {done(), refused(external),
                  // Added, but what to play cannot be read.
                  done("Could not add external items to playlist. Cannot get last item.")});
    sweepCommand("pl/addExternalItems, limit", OrvoPlayListPlAddExternalItemsPath,
                 QVariantHash{{"plid", 1}, {"items", hashes(3)}}, {done(), refused(external)},
                 false, 10);
    sweepCommand("pl/addExternalItems, at", OrvoPlayListPlAddExternalItemsPath,
                 QVariantHash{{"plid", 1}, {"items", hashes(3)}, {"at", QVariantList{0, 4, 8}}},
                 {done(), refused(external)});
    // A track that cannot be read is left out.
    const auto added = [](const char* uids) {
        static QList<QByteArray> texts;
        texts.append(QByteArray("INSERT INTO items(title, artist, album, artworkUrl, genre,"
                                " durationSeconds, url, serviceId, orvoRoles) SELECT title, artist,"
                                " album, artworkUrl, genre, durationSeconds, url, serviceId,"
                                " orvoRoles FROM items WHERE uid IN (") +
                     uids +
                     ") ORDER BY uid;"
                     "INSERT INTO playlists_items SELECT 2, uid, uid - 7 FROM items"
                     " WHERE uid > 8;");
        return texts.constLast().constData();
    };
    sweepCommand("pl/addItems", OrvoPlayListPlAddItemsPath,
                 QVariantHash{{"plid", 2}, {"items", paths({1, 2})}},
                 {done(), refused(inside + "No items were added."),
                  refused(inside + "No items were added. (No playitem found.)"),
                  partly("true", added("1")), partly("true", added("2"))});
    sweepCommand("pl/prepareItems", OrvoPlayListPlPrepareItemsPath, paths({1, 2, 7}),
                 {refused("+++"), refused("++-"), refused("+-+"), refused("-++"), refused("+--"),
                  refused("-+-"), refused("--+"), refused("---")});
}

// Nothing of the source may go before all of it is in the target.
TEST_F(CommandFaultsTest, aMergeLosesNoTrackOfTheSource) {
    const QString inside = "Could not add items to playlist. ";
    const char* copied = "INSERT INTO items(title, artist, album, artworkUrl, genre,"
                         " durationSeconds, url, serviceId, orvoRoles) SELECT title, artist,"
                         " album, artworkUrl, genre, durationSeconds, url, serviceId,"
                         " orvoRoles FROM items WHERE uid IN (1, 2, 3, 4, 5, 6) ORDER BY uid;"
                         "INSERT INTO playlists_items SELECT 2, uid, uid - 7 FROM items"
                         " WHERE uid > 8;";
    QList<Outcome> outcomes = {
        done(),
        refused(inside + "Please select one or more items to add."),
        refused(inside + "No items were added."),
        refused(inside + "No items were added. (No playitem found.)"),
        // The source could not be deleted: its tracks are in both.
        partly("true", copied),
    };
    sweepCommand("pl/addItems, a whole playlist", OrvoPlayListPlAddItemsPath,
                 QVariantHash{{"plid", 2}, {"fromPlid", 1}}, outcomes);

    const QByteArray both = "INSERT INTO items(title, artist, album, artworkUrl, genre,"
                            " durationSeconds, url, serviceId, orvoRoles) SELECT title, artist,"
                            " album, artworkUrl, genre, durationSeconds, url, serviceId,"
                            " orvoRoles FROM items WHERE uid IN (7, 8) ORDER BY uid;"
                            "INSERT INTO playlists_items SELECT 1, uid, uid - 3 FROM items"
                            " WHERE uid > 8;";
    const QByteArray left = both + "DELETE FROM collections_playlists;";
    outcomes.removeLast();
    outcomes.append(partly("true", both.constData()));
    outcomes.append(partly("true", left.constData()));
    sweepCommand("pl/addItems, a member", OrvoPlayListPlAddItemsPath,
                 QVariantHash{{"plid", 1}, {"fromPlid", 2}}, outcomes);
}

TEST_F(CommandFaultsTest, aCommandOnACollectionIsDoneOrRefused) {
    sweepCommand("cl/create", OrvoPlayListClCreatePath, QVariantHash{{"name", "x"}},
                 {done("3"), refused("Could not create collection. Create collection error.")});
    sweepCommand("cl/delete", OrvoPlayListClDeletePath, QVariantHash{{"clid", 1}},
                 {done(), refused("Could not delete collection. Delete collection failed")});
    sweepCommand("cl/addItem", OrvoPlayListClAddItemPath, QVariantHash{{"clid", 2}, {"plid", 1}},
                 {done(), refused("Could not add items to collection. Add playlist to collection"
                                  " failed.")});
    sweepCommand("cl/removeItem", OrvoPlayListClRemoveItemPath,
                 QVariantHash{{"clid", 1}, {"plid", 2}},
                 {done(), refused("Could not remove items from collection. Remove playlist from"
                                  " collection failed.")});
}

} // namespace
