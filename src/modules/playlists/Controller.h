#pragma once

#include <memory>

#include <QHash>
#include <QObject>
#include <QPointer>

#include "CMRequest.h"
#include "CMRequestGroup.h"
#include "OrvoPlayListEnums.h"
#include "OrvoPlayListItem.h"
#include "PlayListLimits.h"
#include "WantedPlaces.h"

struct AddedItems;
class CollectionBase;
class ItemsCheck;
class PlayListBase;
class PlayListManager;
class PlayListWorker;
class TextBudget;

// Runs the module's commands: recognises the path, checks the request, makes one change in
// the model and answers with a result or with an error text for people. Made by the worker,
// worker's thread only. The table of commands is in Controller.cpp, playlist commands in
// ControllerPlayLists.cpp, collection commands in ControllerCollections.cpp, adding items in
// ControllerAddItems.cpp and ControllerAddItemsJob.cpp.
class Controller : public QObject {
    Q_OBJECT
public:
    Controller(PlayListWorker* worker, PlayListManager* manager, const PlayListLimits& limits = {});

    // False when the path is no command's: nothing was answered then. True: answered, or answered
    // later.
    bool handleSetData(const CMSetDataRequest& request);

    // Result: an action reply whose value is true, or an error with the text.
    void setReply(const CMSetDataRequest& request, bool success, const QString& msg);
    // Result: an action reply whose value is the number, or an error with the text.
    void setReplyInt(const CMSetDataRequest& request, bool success, int value, const QString& msg);

    // "a b (c)", without c "a b".
    static QString buildErrMsg(const QString& a, const QString& b, const QString& c = {});
    // "a b (c)", without c "a (b)": a success names its object in parentheses.
    static QString buildOkMsg(const QString& a, const QString& b, const QString& c = {});

    // Each is true when the check passes; otherwise `msg` says why, after `prefix`.
    static bool checkNonemptyString(const QString& str, const QString& field, const QString& prefix,
                                    QString& msg);
    bool checkNameLength(const QString& name, const QString& prefix, QString& msg) const;
    static bool checkPlayList(const PlayListBase* pl, const int& plid, const QString& prefix,
                              QString& msg);
    static bool checkPlayListId(const int& plid, const QString& prefix, QString& msg);
    static bool checkStored(bool stored, const int& plid, const QString& prefix, QString& msg);
    // Passes when the request names no revision, or that of `pl`. Where the playlist has changed
    // since, the request is answered here: with an error that programs know by its name.
    static bool checkRevision(const CMSetDataRequest& request, const PlayListBase* pl,
                              const QString& prefix, QString& msg);

    // Asks the player to play the playlist from this item on.
    void tryStartItem(const OrvoPlayListItem& item, const PlayListBase* pl, int seqIndex);

Q_SIGNALS:
    void playlistCreated(const int& plid);
    void playlistDeleted(const int& plid);

private Q_SLOTS:
    void on_prepareItemsGroup_finished();

private:
    class AddItemsJob;
    struct Command;
    static const QList<Command>& commands();

    // What is remembered of an add request until it is answered.
    struct ReqGroupProperties {
        int plid = -1;
        // Its number may be another playlist's by the time that the items are there.
        QPointer<PlayListBase> target;
        int fromPlid = -1;
        OrvoPlayListAddPosition::Enum mode = OrvoPlayListAddPosition::Append;
        bool wholePlaylist = false;
        int requested = 0;
        WantedPlaces wanted;
        // With one place for each item: how many each reply must have.
        QList<int> itemsPerReply;
        std::shared_ptr<CMSetDataRequest> request;
        // Begins the text of each refusal.
        QString prefix;
    };

    // Ends a command that fails: logs why. Always false.
    static bool refuse(const QString& logLine);
    // The same with the sentence for people, as buildErrMsg() makes it.
    static bool refuse(QString& msg, const QString& logLine, const QString& prefix,
                       const QString& reason, const QString& detail = {});
    // Null, with the reason in `msg`, when there is none.
    PlayListBase* existingPlayList(int plid, const QString& prefix, QString& msg);
    CollectionBase* existingCollection(int clid, const QString& prefix, const QString& reason,
                                       QString& msg);

    bool plCreate(CMSetDataRequest request, QString& msg, int& id);
    bool plSetName(CMSetDataRequest request, QString& msg);
    bool plSetShuffle(CMSetDataRequest request, QString& msg);
    bool plSetRepeat(CMSetDataRequest request, QString& msg);
    struct ModeCommand;
    bool setMode(const ModeCommand& command, int plid, int mode, QString& msg);
    bool plDelete(CMSetDataRequest request, QString& msg);
    bool plClearItems(CMSetDataRequest request, QString& msg);
    bool plRemoveItems(CMSetDataRequest request, QString& msg);
    bool plMoveItems(CMSetDataRequest request, QString& msg);
    bool plSetOrder(CMSetDataRequest request, QString& msg);
    bool plPlay(CMSetDataRequest request, QString& msg);

    bool clCreate(CMSetDataRequest request, QString& msg, int& id);
    bool clDelete(CMSetDataRequest request, QString& msg);
    bool clAddItem(CMSetDataRequest request, QString& msg);
    bool clRemoveItem(CMSetDataRequest request, QString& msg);

    void plPrepareItems(CMSetDataRequest request);
    // The items at these paths, in order, up to the first path that names none. Where `budget` does
    // not suffice for them it is exceeded afterwards, and the result is of no use.
    QVariantList preparePlaylistItems(const QStringList& paths, TextBudget& budget);
    void plAddItems(CMSetDataRequest request);
    bool plAddExternalItems(CMSetDataRequest request, QString& msg);
    bool readTarget(ReqGroupProperties& props, QString& msg);
    QList<CMPath> readPaths(ReqGroupProperties& props, QString& msg);
    bool appendPathsOfSource(const ReqGroupProperties& props, QList<CMPath>& paths) const;
    void askForItems(ReqGroupProperties& props, const QList<CMPath>& paths);
    // Null when it was deleted.
    PlayListBase* targetOf(const ReqGroupProperties& props) const;
    AddedItems addItemsFromAllReplays(const ReqGroupProperties& props, const ItemsCheck& check);
    // Adds all items that pass the check, or none.
    AddedItems addItemsToPlaylist(PlayListBase* pl, const QList<OrvoPlayListItem>& items,
                                  OrvoPlayListAddPosition::Enum mode, const WantedPlaces& wanted);
    static bool readPlaces(const CMSetDataRequest& request, const QString& prefix,
                           WantedPlaces& wanted, QString& msg);
    bool startFirstNewItem(PlayListBase* pl, int first, const QString& failure,
                           const QString& prefix, QString& msg);

    PlayListWorker* m_worker;
    PlayListManager* m_manager;
    PlayListLimits m_limits;
    QHash<CMRequestGroup*, ReqGroupProperties> m_ReqGroupPropertiesHash;
};
